"""debug-monitor-console: the terminal while the monitor runs and after it."""

import os
import shutil
import signal
import subprocess
import unittest

import launcher
import support
from support import PROMPT, UNKNOWN

# Stands in for the monitor: says that it runs and its number, takes a line, exits with it.
MONITOR = """#!/bin/sh
echo "running $$"
read -r line
exit "$line"
"""


class StandInTest(launcher.LauncherTest):
    def start(self, **options):
        """Starts the launcher and waits for the monitor; the monitor's process number."""
        self.terminal.start([self.launcher], **options)
        self.terminal.screen.until(b"running ")
        return int(self.terminal.screen.until(b"\n"))


class Terminal(StandInTest):
    def setUp(self):
        super().setUp()
        self.install(self.folder, MONITOR)

    def test_is_set_and_restored_and_the_status_passed_on(self):
        self.start()
        self.assertTrue(support.is_editor_mode(self.terminal.settings()))
        # Enter ends the line that the stand-in reads.
        self.terminal.type(b"7\r")
        self.expect_end(7)

    def test_signals(self):
        named = (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGPIPE, signal.SIGALRM,
                 signal.SIGTERM)
        others = (signal.SIGUSR1, signal.SIGUSR2, signal.SIGXCPU)
        for number in named + others:
            with self.subTest(number.name):
                monitor = self.start()
                self.terminal.process.send_signal(number)
                self.expect_end(128 + number if number in named else 1)
                self.assertFalse(os.path.exists(f"/proc/{monitor}"))

    def test_monitor_dies_of_a_signal(self):
        monitor = self.start()
        os.kill(monitor, signal.SIGKILL)
        self.expect_end(128 + signal.SIGKILL)

    def test_no_terminal(self):
        done = support.run([self.launcher], b"5\n")
        self.assertEqual(done.returncode, 5)
        self.assertTrue(done.stdout.startswith(b"running "))
        self.assertEqual(done.stderr, b"")


class Search(StandInTest):
    def environment(self, *folders):
        return {**os.environ, "PATH": os.pathsep.join([*folders, os.environ["PATH"]])}

    def test_in_path(self):
        other = os.path.join(self.folder, "a folder")
        os.mkdir(other)
        self.install(other, MONITOR)
        self.start(env=self.environment(other))
        self.terminal.type(b"3\r")
        self.expect_end(3)

    def test_next_to_it_first(self):
        other = os.path.join(self.folder, "other")
        os.mkdir(other)
        self.install(other, "#!/bin/sh\nexit 1\n")
        self.install(self.folder, MONITOR)
        self.start(env=self.environment(other))
        self.terminal.type(b"4\r")
        self.expect_end(4)

    def test_nowhere(self):
        # Without the folders for system programs, as a monitor may be installed there.
        self.terminal.start([self.launcher], env={"PATH": "/usr/bin:/bin"})
        self.terminal.screen.until(b"debug-monitor is neither in")
        self.expect_end(127)


class RealMonitor(launcher.RealMonitorTest):
    def test_session(self):
        self.start_monitor()
        screen = self.terminal.screen
        self.terminal.type(b"ab\x08c\x03\r")
        screen.shows(b"ab\b \bc\x03\r\n" + PROMPT)
        self.terminal.type(b"zz\r")
        screen.shows(b"zz\r\n" + UNKNOWN + PROMPT)
        self.terminal.type(b"exit\r")
        screen.shows(b"exit\r\n")
        self.expect_end(0)

    def test_no_device(self):
        self.install_monitor("")
        self.terminal.start([self.launcher])
        self.terminal.screen.shows(b"db:open fails!\n")
        self.expect_end(256 - 19)


class Script(unittest.TestCase):
    @unittest.skipIf(shutil.which("shellcheck") is None, "there is no shellcheck")
    def test_shellcheck_finds_nothing(self):
        done = subprocess.run(
            ["shellcheck", support.program("LAUNCHER")], capture_output=True, check=False
        )
        self.assertEqual((done.returncode, done.stdout), (0, b""))


if __name__ == "__main__":
    support.main()
