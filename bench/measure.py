"""How the benchmark measures: instructions, characters on a terminal, memory, processor time."""

import contextlib
import os
import pathlib
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
import tty
from dataclasses import dataclass, field

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "blackbox"))
# pylint: disable=wrong-import-position
import frames
import kernel_memory
import support

WINDOW = kernel_memory.WINDOW

# Seconds after which a program hangs.
LIMIT = 120


@dataclass
class Row:
    """One line of the table. The goal holds for our figure or, with `of_ratio`, for its ratio to
    the first of those next to it; it is a maximum, or with `least` a minimum."""

    what: str
    ours: float
    unit: str
    goal: float
    compared: dict = field(default_factory=dict)
    of_ratio: bool = False
    least: bool = False
    notes: dict = field(default_factory=dict)

    @property
    def ratio(self):
        first = next(iter(self.compared.values()), 0)
        return self.ours / first if first else None

    @property
    def met(self):
        judged = self.ratio if self.of_ratio else self.ours
        return judged >= self.goal if self.least else judged <= self.goal


class Bench:
    """The programs under test and folders for the files of one run: one that is seen where /dev
    is replaced, and one in memory for captures, so that no disk is measured."""

    def __init__(self, build, folder, captures):
        self.build = pathlib.Path(build).resolve()
        self.folder = pathlib.Path(folder)
        self.captures = pathlib.Path(captures)
        self.monitor = str(self.build / "bin" / "debug-monitor")
        self.board = str(self.build / "bin" / "virtual-board")
        self.memory = self.path("kmem")
        with open(self.memory, "wb") as file:
            file.truncate(WINDOW + kernel_memory.WINDOW_SIZE)
            file.seek(WINDOW)
            file.write(self.window())

    def path(self, name):
        return str(self.folder / name)

    def program(self, name):
        return str(self.build / "bin" / name)

    @staticmethod
    def window():
        """What the registers hold: every value, so that no program is faster on zeros, but no
        event in the interrupt status."""
        octets = bytearray(i * 167 & 0xFF for i in range(kernel_memory.WINDOW_SIZE))
        octets[0x210:0x212] = bytes(2)
        return bytes(octets)

    def on_device(self, *command):
        """The command where /dev/kmem is our file, under the name that peers open too."""
        both = 'ln -s /dev/kmem /dev/mem && exec "$@"'
        return kernel_memory.inside(self.memory, "sh", "-c", both, "sh", *command)

    def run(self, command, text=b""):
        """Runs a command on a script to its end; returns what it prints."""
        done = subprocess.run(command, input=text, capture_output=True, check=False,
                              timeout=LIMIT)
        if done.returncode != 0:
            raise RuntimeError(f"{command}: status {done.returncode}: {done.stderr.decode()[-500:]}")
        return done.stdout

    def callgrind(self, command, text=b"", device=False, options=()):
        """Runs a command under callgrind; instructions, what it prints, the path of the profile."""
        profile = self.path("profile")
        log = self.path("log")
        grind = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={profile}",
                 f"--log-file={log}", *options, *command]
        output = self.run(self.on_device(*grind) if device else grind, text)
        collected = re.search(r"Collected : (\d+)", pathlib.Path(log).read_text("utf-8"))
        return int(collected[1]), output, profile

    def instructions_of(self, command, first, second, device=False):
        """What the second script takes and prints beyond the first: instructions, characters."""
        few, less, _ = self.callgrind(command, first, device)
        many, more, _ = self.callgrind(command, second, device)
        return many - few, len(more) - len(less)

    def processor_time(self, command, text=b""):
        """Processor seconds, the kernel's included, that a command takes."""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.run(command, text)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

    def capture(self, length, count):
        """A capture with that many frames of that length."""
        path = str(self.captures / f"{count}x{length}.pcap")
        if not os.path.exists(path):
            frames.write_pcap(path, (frames.frame(length, number=i) for i in range(count)))
        return path


def drain(command, script=os.devnull):
    """Characters per second that a command writes to a terminal, from first to last read."""
    reader, writer = os.openpty()
    tty.setraw(writer)
    with open(script, "rb") as text:
        process = subprocess.Popen(command, stdin=text, stdout=writer, stderr=subprocess.DEVNULL)
    os.close(writer)
    count, begin = 0, None
    with contextlib.suppress(OSError):
        while piece := os.read(reader, 1 << 16):
            if begin is None:
                begin = time.perf_counter()
            else:
                count += len(piece)
    seconds = time.perf_counter() - begin
    os.close(reader)
    if process.wait() not in (0, 1):
        raise RuntimeError(f"{command}: status {process.returncode}")
    return count / seconds


@contextlib.contextmanager
def running(command, on_terminal=False):
    """A program at its prompt: the process, and the descriptors of its input and output."""
    if on_terminal:
        ours, its = os.openpty()
        tty.setraw(its)
        process = subprocess.Popen(command, stdin=its, stdout=its, stderr=subprocess.DEVNULL)
        os.close(its)
        ends = (ours, ours)
    else:
        process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        ends = (process.stdin.fileno(), process.stdout.fileno())
    try:
        read_to(ends[1], b">> ")
        yield process, *ends
    finally:
        process.send_signal(signal.SIGTERM)
        process.wait()
        for stream in (process.stdin, process.stdout):
            if stream:
                stream.close()
        if on_terminal:
            os.close(ends[0])


def read_to(descriptor, text):
    """Reads until the text has come."""
    got = b""
    while text not in got:
        got += os.read(descriptor, 4096)


def command(line, entry, out):
    """Types a command into a running monitor and waits for its prompt."""
    os.write(entry, line + b"\n")
    read_to(out, b"\n\rDebug>> ")


def memory(process):
    """Peak resident and private dirty memory of a process in KiB."""
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text("utf-8")
    rollup = pathlib.Path(f"/proc/{process.pid}/smaps_rollup").read_text("utf-8")
    return (int(re.search(r"VmHWM:\s+(\d+)", status)[1]),
            int(re.search(r"Private_Dirty:\s+(\d+)", rollup)[1]))


def processor_share(process, seconds):
    """Percent of a core that a process takes during that time."""
    # Everything before the prompt is over.
    time.sleep(0.3)
    before = support.processor_seconds(process)
    time.sleep(seconds)
    return (support.processor_seconds(process) - before) / seconds * 100


@contextlib.contextmanager
def measuring(build):
    """A Bench whose files go with it."""
    memory_disk = "/dev/shm"
    parent = memory_disk if os.access(memory_disk, os.W_OK) else None
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryDirectory(dir=parent) as other:
        yield Bench(build, folder, other)
