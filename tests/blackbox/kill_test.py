"""Killed at any moment, virtual-board and the launcher restore the terminal and leave no process
running."""

import contextlib
import os
import pathlib
import random
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

import kernel_memory
import support
from typed_sessions import Board, Monitor, Terminal, in_groups

MOMENTS = 100
SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


class Run:
    """A session that is to be killed that many seconds after its start."""

    def __init__(self, session, keys, moment):
        self.moment = moment
        self.folder = tempfile.mkdtemp()
        self.terminal = Terminal(keys)
        command = session().command(self.folder, [])
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(
            command,
            stdin=self.terminal.fd,
            stdout=self.terminal.fd,
            stderr=self.terminal.fd,
            preexec_fn=lambda: support.on_terminal(self.terminal.fd),
        )
        self.due = time.monotonic() + moment

    def finish(self):
        """Waits for the end: the status, None when there was none."""
        with contextlib.suppress(subprocess.TimeoutExpired):
            self.process.wait(support.DEADLINE)
        status = self.process.poll()
        self.process.kill()
        self.process.wait()
        self.restored = self.terminal.restored()
        self.terminal.close()
        shutil.rmtree(self.folder)
        return status


def processes():
    """The living processes: number, process group, name."""
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        with contextlib.suppress(OSError):
            head, rest = stat.read_text(encoding="ascii", errors="replace").rsplit(")", 1)
            state, _, group = rest.split()[:3]
            if state not in "ZX":
                pid, name = head.split(" (", 1)
                yield int(pid), int(group), name


class Kill(unittest.TestCase):
    def length(self, session):
        """Seconds that a session takes."""
        begin = time.monotonic()
        run = Run(session, session.KEYS, 0)
        self.assertEqual(run.finish(), 0)
        return time.monotonic() - begin

    def kill_all(self, session, kill):
        """Kills sessions at random moments. Half of them stay at the prompt, so that each of their
        moments comes before the end; the moments of the others lie around it too."""
        longest = 1.2 * min(self.length(session) for _ in range(3))
        ending = session.KEYS
        staying = ending.removesuffix(b"exit\r")
        for numbers in in_groups(range(MOMENTS)):
            runs = [
                Run(session, (ending, staying)[number % 2], random.uniform(0, longest))
                for number in numbers
            ]
            for number, run in sorted(zip(numbers, runs), key=lambda one: one[1].due):
                time.sleep(max(0.0, run.due - time.monotonic()))
                kill(run.process, number // 2)
            for number, run in zip(numbers, runs):
                with self.subTest(number=number, moment=run.moment):
                    status = run.finish()
                    self.assertIsNotNone(status, "hangs")
                    if number % 2:
                        self.assertNotEqual(status, 0)
                    self.assertTrue(run.restored, f"status {status}")
            self.expect_no_process({run.process.pid for run in runs})

    def expect_no_process(self, groups):
        """No process of these groups stays; what the monitor started may take a moment to end."""
        deadline = time.monotonic() + support.DEADLINE
        while left := [(pid, name) for pid, group, name in processes() if group in groups]:
            if time.monotonic() > deadline:
                for pid, _ in left:
                    os.kill(pid, signal.SIGKILL)
                self.fail(f"left behind: {left}")

    def test_board(self):
        def kill(process, number):
            process.send_signal(SIGNALS[number % len(SIGNALS)])

        self.kill_all(Board, kill)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_launcher(self):
        """Alone, and, as a terminal does it, together with all that it has started."""

        def kill(process, number):
            with contextlib.suppress(ProcessLookupError):
                whom = os.killpg if number % 2 else os.kill
                whom(process.pid, SIGNALS[number // 2 % len(SIGNALS)])

        self.kill_all(Monitor, kill)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_monitor_of_the_launcher(self):
        """SIGKILL, which the monitor cannot see."""
        # While the script becomes the program.
        names = ("debug-monitor", "unshare", "sh", "mount", "ln")

        def kill(process, _):
            killed = False
            while not killed and process.poll() is None:
                for pid, group, name in processes():
                    if group == process.pid and name in names:
                        with contextlib.suppress(ProcessLookupError):
                            os.kill(pid, signal.SIGKILL)
                            killed = True

        self.kill_all(Monitor, kill)


if __name__ == "__main__":
    support.main()
