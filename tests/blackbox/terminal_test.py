"""What virtual-board does to its terminal, and that it puts it back."""

import os
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

import support
from support import PROMPT, START


# A shell that stops its foreground job, takes the terminal back, and lets the job go on in the
# background, until its end. No process is stopped for setting a terminal from the background.
SHELL = """
import os, signal, sys, termios, time
signal.signal(signal.SIGTTOU, signal.SIG_IGN)
before = termios.tcgetattr(0)
job = os.fork()
if job == 0:
    os.setpgid(0, 0)
    os.tcsetpgrp(0, os.getpid())
    os.execv(sys.argv[1], sys.argv[1:])
while termios.tcgetattr(0) == before:
    time.sleep(0.005)
os.kill(job, signal.SIGSTOP)
os.waitpid(job, os.WUNTRACED)
os.tcsetpgrp(0, os.getpid())
termios.tcsetattr(0, termios.TCSANOW, before)
os.kill(job, signal.SIGCONT)
os.kill(job, signal.SIGTERM)
sys.exit(os.waitstatus_to_exitcode(os.waitpid(job, 0)[1]) + signal.SIGTERM)
"""


class TerminalTest(unittest.TestCase):
    def setUp(self):
        self.terminal = support.Terminal(self)
        # Not what a fresh terminal has, so that a restored one shows.
        settings = self.terminal.settings()
        settings[0] |= termios.IXOFF
        settings[3] &= ~termios.ECHOK
        termios.tcsetattr(self.terminal.fd, termios.TCSANOW, settings)
        self.before = self.terminal.settings()

    def start(self, **streams):
        self.terminal.start([support.program("VIRTUAL_BOARD")], **streams)

    def expect_restored(self):
        self.assertEqual(self.terminal.settings(), self.before)


class Settings(TerminalTest):
    def test_hint_comes_first_and_the_terminal_is_set(self):
        self.start()
        shown = self.terminal.screen.until(START)
        hint = shown[: -len(START)]
        self.assertEqual(hint.count(b"\r\n"), 1)
        self.assertTrue(hint.endswith(b"\r\n"))
        self.assertIn(b"help", hint)
        self.assertIn(b"exit", hint)
        self.assertTrue(support.is_editor_mode(self.terminal.settings()))

    def test_hint_is_on_standard_error(self):
        self.start(stderr=subprocess.DEVNULL)
        self.terminal.screen.shows(START)

    def test_typed_ahead_is_not_lost(self):
        self.terminal.type(b"zz\r")
        self.start(stderr=subprocess.DEVNULL)
        shown = self.terminal.screen.until(support.UNKNOWN + PROMPT)
        self.assertTrue(shown.endswith(START + b"zz\r\n" + support.UNKNOWN + PROMPT))


class Restored(TerminalTest):
    def test_after_exit(self):
        self.start()
        self.terminal.screen.until(START)
        self.terminal.type(b"exit\r")
        self.assertEqual(self.terminal.status(), 0)
        self.expect_restored()

    def test_after_signals(self):
        ending = [signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGUSR1,
                  signal.SIGUSR2, signal.SIGALRM, signal.SIGVTALRM, signal.SIGPROF, signal.SIGXCPU,
                  signal.SIGSYS, signal.SIGTRAP, signal.SIGIO, signal.SIGPWR]
        crashes = [signal.SIGSEGV, signal.SIGBUS, signal.SIGABRT, signal.SIGILL, signal.SIGFPE]
        for number in ending + crashes:
            with self.subTest(number.name):
                self.start()
                self.terminal.screen.until(START)
                self.assertNotEqual(self.terminal.settings(), self.before)
                self.terminal.process.send_signal(number)
                self.assertEqual(self.terminal.status(), -number)
                self.expect_restored()

    def test_mode_comes_back_after_a_stop(self):
        self.start()
        self.terminal.screen.until(START)
        mode = self.terminal.settings()
        self.terminal.process.send_signal(signal.SIGSTOP)
        os.waitpid(self.terminal.process.pid, os.WUNTRACED)
        termios.tcsetattr(self.terminal.fd, termios.TCSANOW, self.before)
        self.terminal.process.send_signal(signal.SIGCONT)
        deadline = time.monotonic() + support.DEADLINE
        while self.terminal.settings() != mode and time.monotonic() < deadline:
            time.sleep(0.005)
        self.assertEqual(self.terminal.settings(), mode)

    def test_mode_stays_in_the_background(self):
        """By then it is another program that sets it."""
        self.terminal.start([sys.executable, "-c", SHELL, support.program("VIRTUAL_BOARD")])
        self.assertEqual(self.terminal.status(), 0)
        self.expect_restored()

    def test_ignored_signals_stay_ignored(self):
        script = 'trap "" INT; exec "$0"'
        self.terminal.start(["sh", "-c", script, support.program("VIRTUAL_BOARD")])
        self.terminal.screen.until(START)
        self.terminal.process.send_signal(signal.SIGINT)
        self.terminal.type(b"exit\r")
        self.assertEqual(self.terminal.status(), 0)

    def test_when_the_reader_of_the_output_goes_away(self):
        self.start(stdout=subprocess.PIPE)
        output = self.terminal.process.stdout
        support.Screen(self, output.fileno()).shows(START)
        output.close()
        self.terminal.type(b"help\r")
        self.assertEqual(self.terminal.status(), -signal.SIGPIPE)
        self.expect_restored()

    def test_when_the_output_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            self.start(stdout=full)
            self.assertEqual(self.terminal.status(), 1)
        self.terminal.screen.until(b"No space left on device")
        self.expect_restored()


class Untouched(TerminalTest):
    def test_bad_options_leave_the_terminal_alone(self):
        for options in (["--nonsense"], ["--trace", "/"], ["--pty", "/"], ["--fault", "hang"]):
            with self.subTest(options):
                self.terminal.start([support.program("VIRTUAL_BOARD"), *options])
                self.assertIn(self.terminal.status(), (1, 2))
                self.expect_restored()

    def test_with_the_console_elsewhere(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        link = os.path.join(folder.name, "console")
        self.terminal.start([support.program("VIRTUAL_BOARD"), "--pty", link])
        self.terminal.screen.until(b"console is")
        self.expect_restored()


if __name__ == "__main__":
    support.main()
