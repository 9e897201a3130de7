"""Both programs in the smallest stack that a system may be set to."""

import os
import resource
import subprocess
import tempfile
import unittest

import frames
import kernel_memory
import support

STACK = 65536

SCRIPT = b"help\nhelp clsfr\nreg 0 2000\nl3 d 0 40\nclsfr 0 80\nsc lan\nframe r = auto\n" + (
    140 * b"= " + b"\n" + 300 * b"x" + b"\nexit\n"
)


def run(command):
    def shrink():
        resource.setrlimit(resource.RLIMIT_STACK, (STACK, STACK))
        support.die_quietly()

    return subprocess.run(
        command,
        input=SCRIPT,
        capture_output=True,
        timeout=support.DEADLINE,
        check=False,
        preexec_fn=shrink,
    )


class DebugMonitor(kernel_memory.KernelMemoryTest):
    def test_session(self):
        done = run(self.command())
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertTrue(done.stdout.endswith(b"exit\r\n"))


class VirtualBoard(unittest.TestCase):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def board(self, *options, status=0):
        done = run([support.program("VIRTUAL_BOARD"), *options])
        self.assertEqual(done.returncode, status, done.stderr.decode())
        return done

    def test_session_with_every_file(self):
        frames.write_pcap(self.path("in"), 3 * [frames.frame(64)])
        self.board(
            *("--wan", f"pcap:{self.path('in')},{self.path('out')}"),
            *("--lan", "unix:" + self.path("lan")),
            *("--trace", self.path("trace")),
            *("--capture", self.path("capture")),
            *("--uart", self.path("uart")),
            *("--save", self.path("saved")),
        )
        self.board("--load", self.path("saved"), "--save", self.path("again"))

    def test_answers(self):
        for option in ("--help", "--version", "--registers", "--registers=svd", "--registers=json"):
            with self.subTest(option):
                self.assertNotEqual(self.board(option).stdout, b"")

    def test_refusals(self):
        self.board("--nonsense", status=2)
        self.board("--fault", "hang:nothing", status=2)
        with open(self.path("wrong"), "w", encoding="ascii") as file:
            file.write('{"format": 1}')
        self.board("--load", self.path("wrong"), status=1)


if __name__ == "__main__":
    support.main()
