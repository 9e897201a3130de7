"""Rough use of both programs: output that cannot be delivered, or only bit by bit; input that never
seems to end, or breaks. Nothing is lost when the exit status is 0."""

import fcntl
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
import tty
import unittest

import frames
import kernel_memory
import support
from kernel_memory import MAPPED
from support import PROMPT, START, UNKNOWN

SCRIPT = b"help\nhelp clsfr\nreg 100 40\nreg 3 =\nl3\n" + 40 * b"long " + b"\nexit\n"

MEGABYTE = 1_000_000

# Kilobytes that memory may differ between a short input and a long one.
SAME_MEMORY = 256

SMALL_DISK = 'mount -t tmpfs -o size=16k none "$1" && shift && exec "$@"'


def on_a_small_disk(folder, command):
    """The command that runs another with a file system of 16 kilobytes on a folder."""
    return [*kernel_memory.UNSHARE, "sh", "-c", SMALL_DISK, "sh", folder, *command]

OUTPUT_LOST = b": cannot write console output: No space left on device\n"


class Program:
    """What both programs are put through; a mixin of test cases with a folder."""

    GREETING = START

    def start(self, **options):
        pipes = {name: subprocess.PIPE for name in ("stdin", "stdout", "stderr")}
        monitor = subprocess.Popen(self.command(), **{**pipes, **options})
        self.addCleanup(support.end, monitor)
        return monitor

    def leave_reader(self, **options):
        """Status of a program whose reader goes away while it runs."""
        monitor = self.start(**options)
        support.Screen(self, monitor.stdout.fileno()).shows(self.GREETING)
        monitor.stdout.close()
        monitor.stdin.write(b"help\n")
        monitor.stdin.flush()
        status = monitor.wait(support.DEADLINE)
        self.assertEqual(monitor.stderr.read(), b"")
        return status

    def test_reader_goes_away(self):
        self.assertEqual(self.leave_reader(), -signal.SIGPIPE)

    def test_reader_goes_away_and_the_signal_is_ignored(self):
        def ignore():
            signal.signal(signal.SIGPIPE, signal.SIG_IGN)

        self.assertEqual(self.leave_reader(restore_signals=False, preexec_fn=ignore), 1)

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            done = support.run(self.command(), b"exit\n", stdout=full)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, self.NAME + OUTPUT_LOST)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_disk_fills_up(self):
        """What fitted is there, and it is the beginning of what was to be written."""
        script = 100 * b"help\n" + b"exit\n"
        whole = support.run(self.command(), script).stdout
        disk = os.path.join(self.folder, "disk")
        os.mkdir(disk)
        # The disk is seen by the program's shell only, so that shows what it holds.
        save = 'out=$1; shift; "$@" > "$out/file"; status=$?; cat "$out/file"; exit "$status"'
        shell = ["sh", "-c", save, "sh", disk, *self.command()]
        done = support.run(on_a_small_disk(disk, shell), script)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"No space left on device", done.stderr)
        self.assertEqual(len(done.stdout), 16384)
        self.assertTrue(whole.startswith(done.stdout))

    def deliver(self, reader, writer, read):
        """Runs the session with a lot of output; `read` gets some of what comes, b"" at the end."""
        monitor = self.start(stdout=writer, stderr=subprocess.DEVNULL)
        writer.close()
        keys = b"reg 0 2000\nreg 0 2000\nexit\n"
        monitor.stdin.write(keys)
        monitor.stdin.flush()
        text = b"".join(iter(lambda: read(reader), b""))
        self.assertEqual(monitor.wait(support.DEADLINE), 0)
        self.assertEqual(text, support.run(self.command(), keys).stdout)
        # 512 lines of 60 characters each time.
        self.assertGreater(len(text), 2 * 512 * 60)

    def test_slow_reader_of_a_small_pipe(self):
        for blocking in (True, False):
            with self.subTest(blocking=blocking):
                ends = os.pipe()
                reader, writer = os.fdopen(ends[0], "rb", 0), os.fdopen(ends[1], "wb", 0)
                self.addCleanup(reader.close)
                fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
                os.set_blocking(ends[1], blocking)
                # The pipe is full again each time before anything is taken out of it.
                self.deliver(reader, writer, lambda end: end.read(1000))

    def test_socket_that_takes_little(self):
        """Short writes: as much as there is room for."""
        for blocking in (True, False):
            with self.subTest(blocking=blocking):
                reader, writer = socket.socketpair()
                self.addCleanup(reader.close)
                writer.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, 1)
                writer.setblocking(blocking)
                self.deliver(reader, writer, lambda end: end.recv(777))

    def test_same_bytes_into_pipe_file_and_terminal(self):
        pipe = support.run(self.command(), SCRIPT).stdout
        self.assertEqual(pipe[: len(self.GREETING)], self.GREETING)

        with open(os.path.join(self.folder, "output"), "w+b") as file:
            support.run(self.command(), SCRIPT, stdout=file)
            file.seek(0)
            self.assertEqual(file.read(), pipe)

        terminal = support.Terminal(self)
        tty.setraw(terminal.fd)
        # The model's complaints do not belong to the console.
        streams = {"stdin": subprocess.PIPE, "stderr": subprocess.DEVNULL}
        monitor = terminal.start(self.command(), **streams)
        monitor.stdin.write(SCRIPT)
        monitor.stdin.flush()
        terminal.screen.shows(pipe)
        self.assertEqual(monitor.wait(support.DEADLINE), 0)

    def feed(self, text, answer):
        """Feeds a program with input; it answers exactly that, with at most that many kilobytes of
        memory."""
        monitor = self.start()

        def write():
            monitor.stdin.write(text)
            monitor.stdin.flush()

        writer = threading.Thread(target=write, daemon=True)
        writer.start()
        # Does not wait for a program that answers too little.
        timer = threading.Timer(4 * support.DEADLINE, monitor.kill)
        timer.start()
        self.addCleanup(timer.cancel)
        wanted = self.GREETING + answer
        got = monitor.stdout.read(len(wanted))
        writer.join()
        if got != wanted:
            at = len(os.path.commonprefix([got, wanted]))
            self.fail(f"at byte {at}: {got[max(0, at - 40) : at + 100]}")
        status = pathlib.Path(f"/proc/{monitor.pid}/status").read_text(encoding="ascii")
        monitor.stdin.write(b"\nexit\n")
        monitor.stdin.flush()
        self.assertTrue(monitor.stdout.read(100).endswith(PROMPT + b"exit\r\n"))
        self.assertEqual(monitor.wait(support.DEADLINE), 0)
        return int(re.search(r"VmHWM:\s+(\d+)", status)[1])

    def test_ten_megabytes_of_lines(self):
        """Each line is echoed and answered, in the memory that a few lines take."""
        memory = []
        for count in (100, 10 * MEGABYTE // 34):
            lines = [b"zz %030d" % number for number in range(count)]
            answer = b"".join(line + b"\r\n" + UNKNOWN + PROMPT for line in lines)
            memory.append(self.feed(b"".join(line + b"\n" for line in lines), answer))
        self.assertLess(memory[1], memory[0] + SAME_MEMORY)

    def test_one_line_of_ten_megabytes(self):
        """All of it is echoed, with a line break after the 71st and the 151st character."""
        memory = []
        for count in (1000, 10 * MEGABYTE):
            echo = 71 * b"x" + b"\n\r" + 80 * b"x" + b"\n\r" + (count - 151) * b"x"
            memory.append(self.feed(count * b"x", echo))
        self.assertLess(memory[1], memory[0] + SAME_MEMORY)


class DebugMonitor(Program, kernel_memory.KernelMemoryTest):
    NAME = b"debug-monitor"
    GREETING = MAPPED + START

    def test_full_disk_without_device(self):
        with open("/dev/full", "wb") as full:
            command = kernel_memory.inside("", support.program("DEBUG_MONITOR"))
            self.assertNotEqual(support.run(command, stdout=full).returncode, 0)

    def test_input_that_cannot_be_read(self):
        """It may come back, like one that has ended."""
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        monitor = self.start(stdin=folder)
        support.Screen(self, monitor.stdout.fileno()).shows(self.GREETING)
        used = support.processor_seconds(monitor)
        time.sleep(0.5)
        self.assertLess(support.processor_seconds(monitor) - used, 0.1)
        self.assertIsNone(monitor.poll())


class VirtualBoard(Program, unittest.TestCase):
    NAME = b"virtual-board"

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)

    def command(self):
        return [support.program("VIRTUAL_BOARD")]

    def test_input_that_cannot_be_read(self):
        """The rest of the script has not been run."""
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        monitor = self.start(stdin=folder)
        self.assertEqual(monitor.wait(support.DEADLINE), 1)
        self.assertEqual(monitor.stdout.read(), START)
        message = b"virtual-board: cannot read the console's input: Is a directory\n"
        self.assertEqual(monitor.stderr.read(), message)

    def test_answers_onto_a_full_disk(self):
        for option in ("--help", "--version"):
            with open("/dev/full", "wb") as full:
                done = support.run([*self.command(), option], stdout=full)
            self.assertEqual(done.returncode, 1)
            self.assertEqual(done.stderr, self.NAME + OUTPUT_LOST)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_disk_of_a_file_fills_up(self):
        """One message; the session continues to its end and reports it by its status."""
        traffic = [frames.frame(1000, number=number) for number in range(100)]
        frames.write_pcap(os.path.join(self.folder, "in"), traffic)
        disk = os.path.join(self.folder, "disk")
        os.mkdir(disk)
        file = os.path.join(disk, "file")
        source = "pcap:" + os.path.join(self.folder, "in")
        ports = ["--lan", source, "--wan"]
        cases = {
            "trace": [*ports, "pcap:,/dev/null", "--trace", file],
            "capture": [*ports, "pcap:,/dev/null", "--capture", file],
            "port": [*ports, "pcap:," + file],
            "uart": [*ports, "pcap:,/dev/null", "--uart", file],
        }
        script = b"frame r = forward\n" + 20000 * b"uart thr = 41\n" + b"zz\nexit\n"
        whole = support.run([*self.command(), *ports, "pcap:,/dev/null"], script)
        self.assertEqual((whole.returncode, whole.stderr), (0, b""))
        self.assertTrue(whole.stdout.endswith(UNKNOWN + PROMPT + b"exit\r\n"))
        for name, options in cases.items():
            with self.subTest(name):
                done = support.run(on_a_small_disk(disk, [*self.command(), *options]), script)
                self.assertEqual(done.returncode, 1)
                self.assertEqual(done.stdout, whole.stdout)
                message = done.stderr.decode()
                self.assertEqual(message.count("\n"), 1, message)
                self.assertIn(file, message)
                self.assertIn("No space left on device", message)


if __name__ == "__main__":
    support.main()
