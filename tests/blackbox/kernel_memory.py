"""debug-monitor in its own mount namespace, where the memory device is a file of the test."""

import os
import shutil
import subprocess
import tempfile
import time
import unittest

import support

DEVICE = os.environ.get("DEBUG_MONITOR_DEVICE", "/dev/kmem")
WINDOW = int(os.environ.get("DEBUG_MONITOR_WINDOW", "0x40000000"), 0)
WINDOW_SIZE = 0x2000

# What the monitor prints first.
MAPPED = b"db:ret of mmap is 0x50000000\n"

# Arguments: what the device is, a path or nothing; the command.
ENTER = """
mount -t tmpfs none /dev && if [ -n "$1" ]; then ln -s "$1" /dev/kmem; fi && shift && exec "$@"
"""


# A mount namespace of the command's own.
UNSHARE = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--mount", "-r"]


def inside(device, *command):
    """The command that runs another where the memory device is `device`, or absent."""
    return [*UNSHARE, "sh", "-c", ENTER, "sh", device, *command]


def why_not():
    """What is missing for our own memory device, or None."""
    if DEVICE != "/dev/kmem":
        return f"this build's device is {DEVICE}, not /dev/kmem"
    if shutil.which("unshare") is None:
        return "there is no unshare (package util-linux)"
    tried = subprocess.run(inside("", shutil.which("true")), capture_output=True, check=False)
    if tried.returncode != 0:
        return "no right to mount in a namespace: " + tried.stderr.decode().strip()
    return None


WHY_NOT = why_not()


@unittest.skipIf(WHY_NOT, WHY_NOT)
class KernelMemoryTest(unittest.TestCase):
    """A test with a memory device in which the register window lies."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.path = os.path.join(folder.name, "kmem")
        self.memory = os.open(self.path, os.O_RDWR | os.O_CREAT)
        self.addCleanup(os.close, self.memory)
        os.truncate(self.memory, WINDOW + WINDOW_SIZE)

    def command(self):
        return inside(self.path, support.program("DEBUG_MONITOR"))

    def store(self, offset, data):
        """Puts bytes into the register window, bypassing the monitor."""
        os.pwrite(self.memory, data, WINDOW + offset)

    def load(self, offset, count=1):
        return os.pread(self.memory, count, WINDOW + offset)

    def answer_engine(self, command, waiting, done):
        """Plays an engine: waits until the monitor has left `waiting` in the command byte, and
        then stores `done`, the same with a ready bit set."""
        deadline = time.monotonic() + support.DEADLINE
        while self.load(command) != waiting:
            self.assertLess(time.monotonic(), deadline, f"command byte: {self.load(command)}")
        self.store(command, done)
