"""Whole sessions of both programs, typed before they start, on a terminal that shows whether it is
restored."""

import os
import pty
import shutil
import signal
import termios

import frames
import kernel_memory
import support

# Sessions that run at the same time.
SIDE_BY_SIDE = 4

END = b"<end of the output>"


def in_groups(items):
    for at in range(0, len(items), SIDE_BY_SIDE):
        yield items[at : at + SIDE_BY_SIDE]


class Board:
    """virtual-board with a file for everything that can have one."""

    KEYS = b"version\rl3 0\rframe r\ruart thr = 41\rframe t 40 1 lan 0 low\rexit\r"
    FILES = ("trace", "record", "out", "uart")
    # The program's first call, after those of the loader.
    FIRST = "fcntl(0, F_GETFD)"
    # Failures with which the program continues forever: (call, from then on).
    ENDLESS = ()

    def command(self, folder, strace):
        path = {name: os.path.join(folder, name) for name in (*self.FILES, "in")}
        frames.write_pcap(path["in"], [frames.frame(60)])
        options = ["--trace", path["trace"], "--capture", path["record"], "--uart", path["uart"]]
        options += ["--lan", f"pcap:{path['in']},{path['out']}"]
        return [*strace, support.program("VIRTUAL_BOARD"), *options]


class Wait:
    """virtual-board with a wait that Ctrl-C ends."""

    KEYS = b"version\rl3 0\r\x03help\rexit\r"
    FILES = ()
    FIRST = Board.FIRST
    # Without a terminal nothing ends a wait.
    ENDLESS = (("ioctl", True),)

    def command(self, _, strace):
        return [*strace, support.program("VIRTUAL_BOARD"), "--fault", "hang:l3"]


class Monitor:
    """debug-monitor, started by its launcher, with a wait that Ctrl-C ends."""

    KEYS = Wait.KEYS
    FILES = ()
    FIRST = 'openat(AT_FDCWD, "/dev/kmem"'
    # The end of its input does not end it, and without a terminal nothing ends a wait.
    ENDLESS = (("read", True), ("ioctl", True))
    # No device, and a window that is not there, are shown; the first access then faults.
    STATUS = {"openat": 256 - 19, "mmap": 128 + signal.SIGSEGV}

    def command(self, folder, strace):
        device = os.path.join(folder, "kmem")
        with open(device, "wb") as memory:
            memory.truncate(kernel_memory.WINDOW + kernel_memory.WINDOW_SIZE)
            memory.seek(kernel_memory.WINDOW + 0x60D)
            memory.write(b"\x03")
        monitor = os.path.join(folder, "debug-monitor")
        words = kernel_memory.inside(device, *strace, support.program("DEBUG_MONITOR"))
        with open(monitor, "w", encoding="ascii") as file:
            file.write("#!/bin/sh\nexec " + " ".join(f"'{word}'" for word in words) + "\n")
        os.chmod(monitor, 0o755)
        return [shutil.copy(support.program("LAUNCHER"), folder)]


class Terminal:
    """A terminal on which a session has been typed before the program starts. It differs from a
    fresh one and from the editor's mode, so that both show."""

    def __init__(self, keys):
        self.user_side, self.fd = pty.openpty()
        settings = termios.tcgetattr(self.fd)
        settings[3] &= ~(termios.ECHO | termios.ISIG)
        termios.tcsetattr(self.fd, termios.TCSANOW, settings)
        self.before = termios.tcgetattr(self.fd)
        os.write(self.user_side, keys)

    def restored(self):
        return termios.tcgetattr(self.fd) == self.before

    def output(self):
        """All that was written; nothing more is to come."""
        os.write(self.fd, END)
        text = b""
        while END not in text:
            text += os.read(self.user_side, 65536)
        return text[: text.index(END)]

    def close(self):
        os.close(self.user_side)
        os.close(self.fd)
