"""debug-monitor-console: the terminal while the monitor runs and after it."""

import os
import shutil
import signal
import subprocess
import termios
import time
import unittest

import launcher
import support
from kernel_memory import MAPPED
from support import PROMPT, START, UNKNOWN

# Stands in for the monitor: says that it runs and its number, takes a line, exits with it.
MONITOR = """#!/bin/sh
echo "running $$"
read -r line
exit "$line"
"""


def only_child(pid):
    with open(f"/proc/{pid}/task/{pid}/children", encoding="ascii") as file:
        [child] = file.read().split()
    return int(child)


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

    def check_stopped_line(self, last_command):
        self.install(self.folder, MONITOR.replace('exit "$line"', last_command))
        monitor = self.start()
        termios.tcflow(self.terminal.fd, termios.TCOOFF)
        self.addCleanup(termios.tcflow, self.terminal.fd, termios.TCOON)
        self.terminal.type(b"\r")
        # Nothing shows that the output waits; a signal before that is as easy to obey.
        time.sleep(0.2)
        self.terminal.process.terminate()
        self.expect_end(128 + signal.SIGTERM)
        self.assertFalse(os.path.exists(f"/proc/{monitor}"))

    def test_line_is_stopped(self):
        """The monitor waits for the line in the middle of its output when the signal comes."""
        self.check_stopped_line("exec head -c 100000 /dev/zero")

    def test_line_is_stopped_and_others_wait_for_it(self):
        self.check_stopped_line("head -c 100000 /dev/zero; exit")

    def test_no_terminal(self):
        done = support.run([self.launcher], b"5\n")
        self.assertEqual(done.returncode, 5)
        self.assertTrue(done.stdout.startswith(b"running "))
        self.assertEqual(done.stderr, b"")


class Arguments(StandInTest):
    """It takes none: the monitor, and so the device, is left alone."""

    def setUp(self):
        super().setUp()
        self.install(self.folder, MONITOR)

    def test_help(self):
        for option in ("--help", "-h"):
            done = support.run([self.launcher, option], b"5\n")
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertTrue(done.stdout.startswith(b"usage: debug-monitor-console"))
            self.assertEqual(done.stdout.count(b"\n"), 1)

    def test_others_are_refused(self):
        for words in (["--version"], ["x"], [""], ["--help", "x"]):
            done = support.run([self.launcher, *words], b"5\n")
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            message = f"debug-monitor-console: unexpected argument '{words[0]}'"
            self.assertTrue(done.stderr.decode().startswith(message), done.stderr)
            self.assertEqual(done.stderr.count(b"\n"), 1)


class JobControl(StandInTest):
    """The launcher as the job of a shell that takes the terminal back when the job stops."""

    def start_job(self, script):
        """Runs the launcher, $0, in a script of the shell; its process group."""
        self.install(self.folder, MONITOR)
        self.terminal.start(["sh", "-c", "set -m; " + script, self.launcher])
        self.terminal.screen.until(b"running ")
        return os.getpgid(int(self.terminal.screen.until(b"\n")))

    def stop(self, group):
        os.killpg(group, signal.SIGSTOP)
        self.terminal.screen.until(b"stopped")

    def test_stop_and_go_on(self):
        group = self.start_job('set=$(stty -g); "$0"; stty "$set"; echo stopped; read -r line; fg')
        self.assertTrue(support.is_editor_mode(self.terminal.settings()))
        self.stop(group)
        self.assertEqual(self.terminal.settings(), self.before)
        self.terminal.type(b"\r")
        deadline = time.monotonic() + support.DEADLINE
        while not support.is_editor_mode(self.terminal.settings()):
            self.assertLess(time.monotonic(), deadline, "the terminal is not set again")
            time.sleep(0.01)
        self.terminal.type(b"7\r")
        self.expect_end(7)

    def test_end_in_the_background(self):
        """The terminal is the shell's then, and keeps the shell's settings."""
        end = "kill -s TERM %1; bg; wait %1; exit $?"
        group = self.start_job(f'"$0"; stty -echo; echo stopped; read -r line; {end}')
        self.stop(group)
        shells = self.terminal.settings()
        self.terminal.type(b"\r")
        self.assertEqual(self.terminal.status(), 128 + signal.SIGTERM)
        self.assertEqual(self.terminal.settings(), shells)


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

    def test_killed_launcher_leaves_no_monitor_on_a_terminal_that_hangs_up(self):
        """In the background of a shell that continues, no signal reports that to the monitor."""
        self.install_monitor(self.path)
        self.terminal.start(["sh", "-c", 'set -m; "$0"; read -r line', self.launcher])
        self.terminal.screen.shows(MAPPED + START)
        launched = only_child(self.terminal.process.pid)
        monitor = only_child(launched)
        os.kill(launched, signal.SIGKILL)
        self.terminal.screen.until(b"Killed")
        self.assertTrue(os.path.exists(f"/proc/{monitor}"))
        self.terminal.hang_up()
        deadline = time.monotonic() + support.DEADLINE
        while os.path.exists(f"/proc/{monitor}"):
            self.assertLess(time.monotonic(), deadline, "the monitor stays")
            time.sleep(0.01)

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
