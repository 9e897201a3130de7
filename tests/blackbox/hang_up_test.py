"""A terminal that hangs up ends both programs as SIGHUP does, even where it is not the controlling
terminal and the kernel sends no signal."""

import json
import os
import pty
import signal
import subprocess
import tempfile
import time
import tty
import unittest

import kernel_memory
import support
from support import PROMPT, START

HANGING_LINE = b"l3 0\n"
GIVEN_UP = b"L3 Read failed\n\r"

# Processor time of a second, if the program sleeps.
LONGEST = 0.02


class HangUp:
    """What both programs are put through; a mixin of test cases with a `command`."""

    def start(self, **options):
        """Starts the program on a terminal that controls no session, up to its prompt."""
        self.user_side, terminal = pty.openpty()
        tty.setraw(terminal)
        # What the board itself has to say would come between the monitor's lines.
        streams = {"stdin": terminal, "stdout": terminal, "stderr": subprocess.DEVNULL, **options}
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(self.command(), start_new_session=True, **streams)
        self.addCleanup(support.end, self.process)
        os.close(terminal)
        output = self.process.stdout
        self.screen = support.Screen(self, output.fileno() if output else self.user_side)
        self.screen.until(START)

    def enter_wait(self):
        """Enters the line that waits; its echo shows that the wait has taken long."""
        os.write(self.user_side, HANGING_LINE)
        self.screen.shows(b"l3 0\r\n")

    def hang_up(self):
        os.close(self.user_side)

    def expect_end(self):
        self.assertEqual(self.process.wait(support.DEADLINE), -signal.SIGHUP)

    def test_in_a_wait_that_never_ends(self):
        self.start()
        self.enter_wait()
        self.hang_up()
        self.expect_end()

    def test_at_the_prompt(self):
        self.start()
        self.hang_up()
        self.expect_end()

    def test_output_goes_elsewhere(self):
        self.start(stdout=subprocess.PIPE)
        self.enter_wait()
        self.hang_up()
        self.expect_end()


class DebugMonitor(HangUp, kernel_memory.KernelMemoryTest):
    """Memory that nothing changes is hardware that hangs."""

    def setUp(self):
        super().setUp()
        self.store(0x60D, b"\x03")

    def test_wait_is_given_up_where_the_signal_is_ignored(self):
        ignored = {"preexec_fn": lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN)}
        self.start(stdout=subprocess.PIPE, **ignored)
        self.enter_wait()
        self.hang_up()
        self.screen.shows(GIVEN_UP + PROMPT)
        before = support.processor_seconds(self.process)
        time.sleep(1)
        self.assertIsNone(self.process.poll())
        self.assertLess(support.processor_seconds(self.process) - before, LONGEST)


class VirtualBoard(HangUp, unittest.TestCase):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.saved = os.path.join(folder.name, "saved")

    def command(self):
        return [support.program("VIRTUAL_BOARD"), "--fault", "hang:l3", "--save", self.saved]

    def expect_end(self):
        super().expect_end()
        with open(self.saved, encoding="utf-8") as file:
            self.assertIn("version", json.load(file))


if __name__ == "__main__":
    support.main()
