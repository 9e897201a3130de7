"""Every system call of a session fails, one after the other: once, and from then on. The program
neither crashes nor hangs, the terminal is restored, and no success hides that something is
missing."""

import contextlib
import errno
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from collections import Counter

import kernel_memory
import support
from typed_sessions import Board, Monitor, Terminal, Wait, in_groups

# What calls fail with; all others with EIO. The break that the kernel answers shows a failure.
# An ioctl that fails with EIO means that the terminal has hung up.
ERRORS = {
    "clock_nanosleep": "EINTR",
    "epoll_create1": "EMFILE",
    "ioctl": "ENOTTY",
    "mmap": "ENOMEM",
    "munmap": "EINVAL",
    "openat": "EMFILE",
    "ppoll": "ENOMEM",
    "rt_sigaction": "EINVAL",
    "sigaltstack": "ENOMEM",
}
CANNOT_FAIL = {"exit_group", "getpgrp", "rt_sigreturn"}


def why_not():
    """What is missing for injecting failures, or None."""
    if shutil.which("strace") is None:
        return "there is no strace (package strace)"
    tried = subprocess.run(["strace", "true"], capture_output=True, check=False)
    if tried.returncode != 0:
        return "no right to trace: " + tried.stderr.decode().strip()
    return None


WHY_NOT = why_not()


class Run:
    """A session under strace, which makes calls fail as `inject` says: "write:error=EIO:when=3"."""

    def __init__(self, session, inject=None, endless=False):
        self.inject = inject
        self.endless = endless
        self.terminated = False
        self.session = session
        self.folder = tempfile.mkdtemp()
        self.log = os.path.join(self.folder, "calls")
        self.terminal = Terminal(session.KEYS)
        strace = ["strace", "--interruptible=waiting", "-o", self.log]
        if inject:
            strace += ["-e", "inject=" + inject]
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(
            session().command(self.folder, strace),
            stdin=self.terminal.fd,
            stdout=self.terminal.fd,
            stderr=subprocess.PIPE,
            preexec_fn=lambda: support.on_terminal(self.terminal.fd),
        )

    def finish(self):
        """Waits for the end, and gathers what is left behind."""
        deadline = time.monotonic() + support.DEADLINE
        while self.process.poll() is None and time.monotonic() < deadline:
            if self.endless and not self.terminated and self.lives_with_it():
                self.process.terminate()
                self.terminated = True
            time.sleep(0.002)
        self.status = self.process.poll()
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        self.restored = self.terminal.restored()
        self.output = self.terminal.output()
        self.terminal.close()
        self.errors = self.process.stderr.read().decode()
        self.process.stderr.close()
        self.sizes = {name: self.size(name) for name in self.session.FILES}
        self.calls = self.logged()
        shutil.rmtree(self.folder)
        return self

    def logged(self):
        """The calls that were made, as strace shows them."""
        with contextlib.suppress(FileNotFoundError):
            with open(self.log, encoding="utf-8", errors="replace") as log:
                return [line for line in log if re.match(r"\w+\(", line)]
        return []

    def lives_with_it(self):
        return sum("INJECTED" in line for line in self.logged()) > 3

    def size(self, name):
        path = os.path.join(self.folder, name)
        return os.path.getsize(path) if os.path.exists(path) else None


@unittest.skipIf(WHY_NOT, WHY_NOT)
class SystemCallTest(unittest.TestCase):
    def reference(self, session):
        """A run without failures."""
        whole = Run(session).finish()
        self.assertEqual(whole.status, 0, whole.errors)
        self.assertTrue(whole.restored)
        self.assertTrue(whole.output.endswith(b"exit\r\n"), whole.output)
        self.assertNotIn(None, whole.sizes.values())
        return whole

    def run_all(self, session, injections, check):
        """Runs the session with each of the injections; True in `endless` for a program that has
        to be ended."""
        whole = self.reference(session)
        for group in in_groups(injections):
            runs = [Run(session, inject, endless) for inject, endless in group]
            for run in [run.finish() for run in runs]:
                with self.subTest(run.inject):
                    check(run, whole)

    def failures(self, session):
        """Each call of the session, failing once and from then on."""
        calls = Run(session).finish().calls
        first = next(i for i, call in enumerate(calls) if call.startswith(session.FIRST))
        names = [call[: call.index("(")] for call in calls]
        made = Counter(names[:first])
        for name in names[first:]:
            made[name] += 1
            if name in CANNOT_FAIL:
                continue
            answer = "retval=0" if name == "brk" else "error=" + ERRORS.get(name, "EIO")
            fault = f"{name}:{answer}:when={made[name]}"
            yield fault, (name, False) in session.ENDLESS
            yield fault + "+", (name, True) in session.ENDLESS

    def check_failure(self, run, whole):
        self.assertIsNotNone(run.status, "hangs")
        call, error = re.match(r"(\w+):\w+=(\w+)", run.inject).groups()
        for_good = run.inject.endswith("+")
        if run.terminated and run.status in (-signal.SIGTERM, 128 + signal.SIGTERM):
            pass
        elif run.status == 0:
            self.check_nothing_missing(run, whole)
        elif run.session is Monitor and call in Monitor.STATUS:
            self.assertEqual(run.status, Monitor.STATUS[call])
        else:
            self.assertEqual(run.status, 1, run.errors)
            # No message is possible where nothing can be written.
            if (call, for_good) != ("write", True):
                self.assertIn(os.strerror(getattr(errno, error)), run.errors)
        # A terminal that refuses to be set stays as it is.
        if (call, for_good) != ("ioctl", True):
            self.assertTrue(run.restored)

    def check_nothing_missing(self, run, whole):
        wanted, got = whole.output, run.output
        if run.inject.startswith("ioctl:"):
            # A terminal that is not recognised stays as it is, and adds to line ends.
            wanted, got = wanted.replace(b"\r", b""), got.replace(b"\r", b"")
        self.assertEqual(got, wanted)
        self.assertEqual(run.sizes, whole.sizes)

    def check_interruption(self, run, whole):
        self.assertEqual(run.status, 0, run.errors)
        self.assertTrue(run.restored)
        self.check_nothing_missing(run, whole)

    def test_board(self):
        self.run_all(Board, list(self.failures(Board)), self.check_failure)

    def test_wait(self):
        self.run_all(Wait, list(self.failures(Wait)), self.check_failure)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_monitor(self):
        self.run_all(Monitor, list(self.failures(Monitor)), self.check_failure)

    @unittest.skipIf(kernel_memory.WHY_NOT, kernel_memory.WHY_NOT)
    def test_interruptions(self):
        """Every n-th call to the console comes back with nothing done. Nothing is lost, and the
        exit status knows nothing of it."""
        injections = [
            (f"{call}:error={error}:when={start}+{step}", False)
            for call, error in (
                ("read", "EINTR"),
                ("ppoll", "EINTR"),
                ("write", "EINTR"),
                ("write", "EAGAIN"),
            )
            for start, step in ((1, 2), (2, 2), (1, 3), (2, 3), (3, 5))
        ]
        # The board's first reads are the loader's.
        board = [(i, endless) for i, endless in injections if not i.startswith("read")]
        self.run_all(Monitor, injections, self.check_interruption)
        self.run_all(Wait, board, self.check_interruption)


@unittest.skipIf(WHY_NOT, WHY_NOT)
class Saving(unittest.TestCase):
    def test_is_on_the_disk_before_it_replaces_the_old_state(self):
        """And its name is, before the board ends."""
        with tempfile.TemporaryDirectory() as folder:
            log = os.path.join(folder, "calls")
            strace = ["strace", "-y", "-s", "0", "-o", log, "-e", "trace=write,fsync,rename"]
            board = [support.program("VIRTUAL_BOARD"), "--save", os.path.join(folder, "saved")]
            self.assertEqual(support.run([*strace, *board], b"exit\n").returncode, 0)
            with open(log, encoding="utf-8") as lines:
                calls = [line for line in lines if folder in line]
        place = re.escape(os.path.realpath(folder))
        temporary = place + r"/saved\.\w{6}"
        wanted = [
            rf"write\(\d+<{temporary}>, .*\) = \d+",
            rf"fsync\(\d+<{temporary}>\) += 0",
            rf'rename\("{temporary}", "{place}/saved"\) = 0',
            rf"fsync\(\d+<{place}>\) += 0",
        ]
        self.assertRegex("".join(calls), "^" + "\\n".join(wanted) + "\\n$")


if __name__ == "__main__":
    support.main()
