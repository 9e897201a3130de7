"""What the black-box tests share: terminals, programs under test, what the screen shows."""

import os
import pty
import resource
import signal
import subprocess
import sys
import termios
import unittest

# Who starts the tests may ignore these, as for a job in the background, and the programs would
# inherit that.
signal.signal(signal.SIGINT, signal.default_int_handler)
for number in (signal.SIGHUP, signal.SIGQUIT, signal.SIGTERM):
    signal.signal(number, signal.SIG_DFL)

SKIPPED = 77

try:
    from pexpect import EOF, TIMEOUT, fdpexpect
except ImportError:
    print("SKIPPED: python3-pexpect is not installed", file=sys.stderr)
    sys.exit(SKIPPED)

DEADLINE = 10

BANNER = b"\n\rDebug Monitor v0.9995.6.0(07-17-2002)"
PROMPT = b"\n\rDebug>> "
START = BANNER + PROMPT
UNKNOWN = b"No command found\n\r"

# The prompt line as the Up and Down keys blank it before they show a text.
REDRAW = b"\rDebug>> " + 71 * b" " + b"\rDebug>> "

# A listing of an unused route.
EMPTY_ROUTE = (
    b"INDEX: %2x\tINVALID\n\r"
    b"IP: 0.0.0.0         MASK:  0 NEXT HOP: 0.0.0.0        \n\r"
    b"PORT:     \tIPOE \tSESSION ID:  0\tDIRECT: FALSE \tWANMAC: FALSE\n\r\n\r"
)


def program(variable):
    """Path of a program that the build has put into the environment."""
    return os.environ[variable]


def die_quietly():
    """In the child: a crash that a test asks for leaves no core file."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(arguments, text=b"", **options):
    """Runs a program on a script to its end; its status, output and errors."""
    return subprocess.run(
        arguments,
        input=text,
        stdout=options.pop("stdout", subprocess.PIPE),
        stderr=subprocess.PIPE,
        timeout=options.pop("timeout", DEADLINE),
        check=False,
        preexec_fn=die_quietly,
        **options,
    )


def processor_seconds(process):
    """Processor time that a program with one thread has used, to the nanosecond."""
    with open(f"/proc/{process.pid}/schedstat", encoding="ascii") as times:
        return int(times.read().split()[0]) / 1e9


class Screen:
    """What comes out of a file descriptor, compared to the byte."""

    def __init__(self, test, fd):
        self.test = test
        self.stream = fdpexpect.fdspawn(fd, timeout=DEADLINE)

    def until(self, text):
        """Reads up to and including `text`, which has to come; all that was read."""
        if self.stream.expect_exact([text, EOF, TIMEOUT]) != 0:
            self.fail(text, self.stream.before)
        return self.stream.before + text

    def shows(self, text):
        """The next bytes are exactly `text`."""
        shown = self.until(text)
        if shown != text:
            self.fail(text, shown)

    def fail(self, wanted, got):
        """Shows where the texts part."""
        at = len(os.path.commonprefix([wanted, got]))
        part = slice(max(0, at - 40), at + 100)
        self.test.fail(f"at byte {at}:\n  wanted {wanted[part]}\n  got    {got[part]}")


def on_terminal(fd):
    """In the child: starts a session whose terminal is that of the descriptor."""
    die_quietly()
    os.setsid()
    os.close(os.open(os.ttyname(fd), os.O_RDWR))


class Terminal:
    """A terminal whose user is the test. Both sides stay open, so that its settings can be seen
    before, during and after a program's run."""

    def __init__(self, test):
        self.test = test
        self.user_side, self.fd = pty.openpty()
        test.addCleanup(os.close, self.user_side)
        test.addCleanup(os.close, self.fd)
        self.screen = Screen(test, self.user_side)
        self.process = None

    def start(self, arguments, **options):
        """Starts a program as the terminal's foreground job; streams can be sent elsewhere."""
        streams = {"stdin": self.fd, "stdout": self.fd, "stderr": self.fd, **options}
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(
            arguments, preexec_fn=lambda: on_terminal(self.fd), **streams
        )
        self.test.addCleanup(end, self.process)
        return self.process

    def type(self, keys):
        os.write(self.user_side, keys)

    def hang_up(self):
        """The user's side goes; only its descriptor stays, for the clean-up."""
        with open(os.devnull, "rb") as nothing:
            os.dup2(nothing.fileno(), self.user_side)

    def settings(self):
        return termios.tcgetattr(self.fd)

    def status(self):
        """Waits for the program's end: its exit status, negative for a signal."""
        return self.process.wait(DEADLINE)


def end(process):
    """For clean-ups: ends the program, whatever it is doing."""
    if process.poll() is None:
        process.kill()
        process.wait(DEADLINE)
    for stream in (process.stdin, process.stdout, process.stderr):
        if stream:
            stream.close()


def is_editor_mode(settings):
    """True for a terminal in which every key arrives at once and as it is, Enter as a line feed,
    without echo, and output goes out as it is."""
    iflag, oflag, _, lflag, *_ = settings
    keys = termios.ECHO | termios.ICANON | termios.ISIG | termios.IEXTEN
    changed = termios.INLCR | termios.IGNCR | termios.ISTRIP | termios.IXON | termios.BRKINT
    return (
        lflag & keys == 0
        and iflag & changed == 0
        and iflag & termios.ICRNL != 0
        and oflag & termios.OPOST == 0
    )


def main():
    """Runs the module's tests. The exit status shows skipped tests, as a pass would hide them."""
    signal.signal(signal.SIGTTOU, signal.SIG_IGN)
    result = unittest.main(module="__main__", exit=False, verbosity=2).result
    if not result.wasSuccessful() or result.testsRun == 0:
        sys.exit(1)
    for test, reason in result.skipped:
        print(f"SKIPPED: {test.id()}: {reason}", file=sys.stderr)
    sys.exit(SKIPPED if result.skipped else 0)
