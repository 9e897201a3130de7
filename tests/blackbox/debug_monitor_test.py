"""debug-monitor as it ships, on a file that stands in for the kernel's memory."""

import os
import re
import struct
import subprocess
import time
import tty

import frames
import kernel_memory
import support
from kernel_memory import MAPPED
from support import PROMPT, START


class StartUp(kernel_memory.KernelMemoryTest):
    def test_maps_greets_and_leaves_on_exit(self):
        done = support.run(self.command(), b"exit\n")
        self.assertEqual(
            done.stdout, b"db:ret of mmap is 0x50000000\n" + START + b"exit\r\n"
        )
        self.assertEqual(done.stderr, b"")
        self.assertEqual(done.returncode, 0)

    def test_device_is_opened_and_mapped_for_the_whole_run(self):
        # pylint: disable=consider-using-with
        monitor = subprocess.Popen(self.command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(support.end, monitor)
        support.Screen(self, monitor.stdout.fileno()).shows(MAPPED + START)

        proc = f"/proc/{monitor.pid}"
        opened = [f"{proc}/fd/{fd}" for fd in os.listdir(f"{proc}/fd")]
        devices = [os.path.basename(fd) for fd in opened if os.path.samefile(fd, self.path)]
        self.assertEqual(len(devices), 1)
        with open(f"{proc}/fdinfo/{devices[0]}", encoding="ascii") as info:
            flags = int(re.search(r"^flags:\s*0(\d+)", info.read(), re.MULTILINE)[1], 8)
        wanted = os.O_RDWR | os.O_NONBLOCK | os.O_DSYNC
        self.assertEqual(flags & (wanted | os.O_ACCMODE | os.O_SYNC | os.O_APPEND), wanted)
        with open(f"{proc}/maps", encoding="ascii") as maps:
            mapped = [line.split()[:3] for line in maps if line.rstrip().endswith("/kmem")]
        [[place, rights, offset]] = mapped
        start, end = (int(address, 16) for address in place.split("-"))
        self.assertEqual(end - start, 0x2000)
        # An emulator may move all of the program's memory.
        if "EMULATED" not in os.environ:
            self.assertEqual(start, 0x50000000)
        self.assertEqual((rights, offset), ("rw-s", f"{kernel_memory.WINDOW:08x}"))

    def test_exit_in_capitals(self):
        done = support.run(self.command(), b"EXIT\n")
        self.assertEqual(done.stdout, MAPPED + START + b"EXIT\r\n")
        self.assertEqual(done.returncode, 0)

    def test_no_device(self):
        done = support.run(kernel_memory.inside("", support.program("DEBUG_MONITOR")), b"exit\n")
        self.assertEqual(done.stdout, b"db:open fails!\n")
        self.assertEqual(done.stderr, b"")
        self.assertEqual(done.returncode, 256 - 19)

    def test_failed_mapping_is_shown_and_ignored(self):
        fifo = os.path.join(self.folder, "fifo")
        os.mkfifo(fifo)
        command = kernel_memory.inside(fifo, support.program("DEBUG_MONITOR"))
        failed = b"db:ret of mmap is 0xffffffff\n"

        done = support.run(command, b"exit\n")
        self.assertEqual(done.stdout, failed + START + b"exit\r\n")
        self.assertEqual(done.returncode, 0)

        # The first register access faults; the line has been seen by then.
        done = support.run(command, b"reg 0\n")
        self.assertEqual(done.stdout[: len(failed)], failed)
        self.assertNotEqual(done.returncode, 0)


class Registers(kernel_memory.KernelMemoryTest):
    def test_bytes(self):
        self.store(0x600, bytes(range(0xA0, 0xB0)))
        done = support.run(self.command(), b"reg 605 = 12 34 56\nreg 600 10\nexit\n")
        self.assertEqual(
            done.stdout,
            MAPPED
            + START
            + b"reg 605 = 12 34 56\r\n"
            + b"50000600: .. .. .. .. .. 12 34 56 .. .. .. .. .. .. .. .. \n\r"
            + PROMPT
            + b"reg 600 10\r\n"
            + b"50000600: A0 A1 A2 A3 A4 12 34 56 A8 A9 AA AB AC AD AE AF \n\r"
            + PROMPT
            + b"exit\r\n",
        )
        after = bytes.fromhex("a0a1a2a3a4123456a8a9aaabacadaeaf")
        self.assertEqual(self.load(0x600, 0x10), after)

    def test_edge_of_the_window(self):
        size = os.fstat(self.memory).st_size
        done = support.run(self.command(), b"reg 1fff = 5a\nreg 2000 = 5b\nexit\n")
        self.assertEqual(
            done.stdout,
            MAPPED
            + START
            + b"reg 1fff = 5a\r\n"
            + b"50001FF0: .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. 5A \n\r"
            + PROMPT
            + b"reg 2000 = 5b\r\n"
            + b"Invalid Command\n\r"
            + b"  reg      <reg> [<bytes>]                     \n\r"
            + b"  reg      <reg> [<bytes>] = <values>          \n\r"
            + PROMPT
            + b"exit\r\n",
        )
        self.assertEqual(self.load(0x1FFE, 2), b"\x00\x5a")
        self.assertEqual(os.fstat(self.memory).st_size, size)

    def test_halfwords_are_big_endian(self):
        self.store(0x101, b"\x03\x12\x34")
        done = support.run(self.command(), b"version\nexit\n")
        version = b"version\r\nVBQ1234 Version  3\n\r"
        self.assertEqual(done.stdout, MAPPED + START + version + PROMPT + b"exit\r\n")

    def test_words_are_big_endian(self):
        monitor = subprocess.Popen(self.command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(support.end, monitor)
        screen = support.Screen(self, monitor.stdout.fileno())
        screen.shows(MAPPED + START)

        self.store(0x60D, b"\x03")
        line = b"l3 5 = 10.1.2.3 18 172.16.33.4 lan 0 0 direct"
        monitor.stdin.write(line + b"\n")
        monitor.stdin.flush()
        self.answer_engine(0x60D, b"\x09", b"\x0b")
        self.answer_engine(0x60D, b"\x02", b"\x03")
        screen.shows(
            line
            + b"\r\nINDEX:  5\tVALID\n\r"
            + b"IP: 10.1.2.3        MASK: 18 NEXT HOP: 172.16.33.4    \n\r"
            + b"PORT: LAN \tIPOE \tSESSION ID:  0\tDIRECT: TRUE \tWANMAC: FALSE\n\r\n\r"
            + PROMPT
        )
        self.assertEqual(self.load(0x600, 4), bytes([10, 1, 2, 3]))
        self.assertEqual(self.load(0x604, 2), b"\x18\x00")
        self.assertEqual(self.load(0x608, 4), bytes([172, 16, 33, 4]))
        self.assertEqual(self.load(0x60C), b"\x32")
        self.assertEqual(self.load(0x60E), b"\x05")

        # A counter that the engine loads: 0x12345678 lies in memory as it is written.
        monitor.stdin.write(b"l3 c 5\n")
        monitor.stdin.flush()
        self.store(0x610, bytes.fromhex("12345678"))
        self.answer_engine(0x60D, b"\x12", b"\x13")
        screen.shows(b"l3 c 5\r\nINDEX: 5 COUNTER:12345678\n\r" + PROMPT)


class BufferMemory(kernel_memory.KernelMemoryTest):
    def test_longest_frame_of_the_last_buffer(self):
        """It ends after the buffers, in the page that is mapped for that."""
        buffer = 0x01000000 + 255 * 2048
        frame = bytes(number % 251 for number in range(0x7FF))
        self.store(0x10C, b"\x01\x00")
        self.store(0x210, b"\x00\x10")
        self.store(0x426, b"\xff")
        os.pwrite(self.memory, struct.pack("=H7xBB", len(frame), 2, 4), buffer)
        os.pwrite(self.memory, frame, buffer + 32)
        monitor = subprocess.Popen(self.command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(support.end, monitor)
        screen = support.Screen(self, monitor.stdout.fileno())
        monitor.stdin.write(b"frame r\n")
        monitor.stdin.flush()
        screen.until(b"frame r\r\nPacket length=0x7ff    reason=0x04\n\r")
        screen.shows(frames.dump(buffer + 32, frame))


class MovingBase(kernel_memory.KernelMemoryTest):
    SECONDS = 1

    def test_buffer_memory_that_moves_in_the_middle_of_an_operation(self):
        """Addresses formed before are then outside the mapping, and the monitor continues."""
        monitor = subprocess.Popen(self.command(), stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        self.addCleanup(support.end, monitor)
        monitor.stdin.write(b"frame r = forward\n")
        monitor.stdin.flush()
        end = time.monotonic() + self.SECONDS
        while time.monotonic() < end:
            for base in (b"\x01\x00", b"\x20\x00"):
                self.store(0x10C, base)
                # A frame that waits, and engines that are done.
                self.store(0x210, b"\x00\x10")
                self.store(0x426, b"\x10\x04")
                self.store(0x42B, b"\x02")
                self.store(0x430, b"\x06")
        self.assertIsNone(monitor.poll())


class Idle(kernel_memory.KernelMemoryTest):
    SECONDS = 2
    # Ten wake-ups per second are allowed after the end of input.
    LONGEST = 0.02

    def test_no_processor_time_at_the_prompt(self):
        """On a pipe and a terminal that stay silent, and after the end of input, which is not
        an exit."""
        terminal = support.Terminal(self)
        tty.setraw(terminal.fd)
        monitors = [terminal.start(self.command())]
        screens = [terminal.screen]
        for source in (subprocess.PIPE, subprocess.DEVNULL):
            monitors.append(
                subprocess.Popen(self.command(), stdin=source, stdout=subprocess.PIPE)
            )
            self.addCleanup(support.end, monitors[-1])
            screens.append(support.Screen(self, monitors[-1].stdout.fileno()))
        for screen in screens:
            screen.shows(MAPPED + START)

        before = [support.processor_seconds(monitor) for monitor in monitors]
        time.sleep(self.SECONDS)
        used = [support.processor_seconds(m) - then for m, then in zip(monitors, before)]
        self.assertEqual([m.poll() for m in monitors], [None, None, None])
        self.assertLess(max(used), self.LONGEST, f"terminal, pipe, ended: {used} seconds")

    def test_input_may_come_back(self):
        """A named pipe ends with each writer and continues with the next."""
        path = os.path.join(self.folder, "input")
        os.mkfifo(path)
        reader = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        monitor = subprocess.Popen(self.command(), stdin=reader, stdout=subprocess.PIPE)
        self.addCleanup(support.end, monitor)
        screen = support.Screen(self, monitor.stdout.fileno())
        screen.shows(MAPPED + START)
        for line, answer in ((b"a", b"\r\n" + support.UNKNOWN + PROMPT), (b"exit", b"\r\n")):
            with open(path, "wb") as writer:
                writer.write(line + b"\n")
            screen.shows(line + answer)
        self.assertEqual(monitor.wait(support.DEADLINE), 0)


class ClosedStreams(kernel_memory.KernelMemoryTest):
    """The device is opened where a closed stream was, and must not become the console."""

    def test_closed_input(self):
        monitor = subprocess.Popen(
            ["sh", "-c", 'exec "$@" <&-', "sh", *self.command()], stdout=subprocess.PIPE
        )
        self.addCleanup(support.end, monitor)
        support.Screen(self, monitor.stdout.fileno()).shows(MAPPED + START)
        self.assertNotIn("0", os.listdir(f"/proc/{monitor.pid}/fd"))

    def test_closed_output(self):
        done = support.run(["sh", "-c", 'exec "$@" >&-', "sh", *self.command()], b"exit\n")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(os.pread(self.memory, 64, 0), bytes(64))


if __name__ == "__main__":
    support.main()
