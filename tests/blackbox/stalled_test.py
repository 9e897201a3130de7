"""Readers that stall. A signal ends the board nevertheless, with its state saved, wherever it waits
for them."""

import contextlib
import fcntl
import itertools
import json
import os
import random
import signal
import socket
import subprocess
import time
import unittest

import board
import frames
import support
from board import BOARD
from support import PROMPT, START

SIGNALS = (signal.SIGTERM, signal.SIGHUP, signal.SIGINT)
ROUNDS = 4

# Seconds from what makes the board stall to the signal: some come before the board has to wait,
# some while it does.
LATEST = 0.03

# Less than what any of the outputs has to take. It has a page for the echo and one for a part of
# what the board then writes at once.
SMALL_PIPE = 8192

# Enough for the board to stall, and less than the half second that it then gives readers.
MOMENT = 0.2

ENTRY = b"arp 7 = 10.1.2.3 021122334455"
LISTINGS = 200 * b"l3 5\n"
TRANSMISSIONS = 200 * b"frame t 40 1 wan 0 low\n"


def fill(fd):
    """Leaves no room in a pipe."""
    os.set_blocking(fd, False)
    with contextlib.suppress(BlockingIOError):
        while True:
            os.write(fd, SMALL_PIPE * b"x")
    os.set_blocking(fd, True)


class Stalled:
    """A board that has run ENTRY, and whose output is not read from then on."""

    LINES = 50 * b"help\nl3 0 40\n"

    def __init__(self, test, *options):
        self.test = test
        self.process = None
        self.screen = None
        self.start([BOARD, *options])
        self.screen.until(START)
        self.type(ENTRY + b"\n")
        self.screen.until(ENTRY + b"\r\n")
        self.screen.until(PROMPT)

    def start(self, command):
        raise NotImplementedError

    def launch(self, command, output, **streams):
        """Starts the board on pipes; what it prints can be read from `output`."""
        self.screen = support.Screen(self.test, output)
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen(
            command, stdin=subprocess.PIPE, preexec_fn=support.die_quietly, **streams
        )
        self.test.addCleanup(support.end, self.process)

    def pipe(self):
        ends = os.pipe()
        for end in ends:
            self.test.addCleanup(os.close, end)
        fcntl.fcntl(ends[0], fcntl.F_SETPIPE_SZ, SMALL_PIPE)
        return ends

    def type(self, keys):
        self.process.stdin.write(keys)
        self.process.stdin.flush()


class OnTerminal(Stalled):
    def start(self, command):
        self.terminal = support.Terminal(self.test)
        self.before = self.terminal.settings()
        self.process = self.terminal.start(command)
        self.screen = self.terminal.screen

    def type(self, keys):
        self.terminal.type(keys)


class OnPseudoTerminal(Stalled):
    def start(self, command):
        link = self.test.new_path()
        # pylint: disable=consider-using-with
        self.process = subprocess.Popen([*command, "--pty", link], stderr=subprocess.PIPE)
        self.test.addCleanup(support.end, self.process)
        self.process.stderr.readline()
        self.client = os.open(link, os.O_RDWR | os.O_NOCTTY)
        self.test.addCleanup(os.close, self.client)
        self.screen = support.Screen(self.test, self.client)

    def type(self, keys):
        os.write(self.client, keys)


class IntoPipe(Stalled):
    def start(self, command):
        reader, writer = self.pipe()
        self.launch(command, reader, stdout=writer)


class IntoNonBlockingPipe(Stalled):
    def start(self, command):
        reader, writer = self.pipe()
        os.set_blocking(writer, False)
        self.launch(command, reader, stdout=writer)


class IntoSocket(Stalled):
    def start(self, command):
        reader, writer = socket.socketpair()
        self.test.addCleanup(reader.close)
        self.test.addCleanup(writer.close)
        self.launch(command, reader.fileno(), stdout=writer)


class Messages(Stalled):
    """In the middle of an access to the chip, about which it complains."""

    LINES = 20 * b"reg 1f00 20\n"

    def start(self, command):
        reader, writer = self.pipe()
        _, messages = self.pipe()
        fill(messages)
        self.launch(command, reader, stdout=writer, stderr=messages)


class IntoFifo(Stalled):
    """Into a file that the board writes as it runs; its console has a reader."""

    def options(self, fifo):
        raise NotImplementedError

    def start(self, command):
        self.fifo = self.test.new_path()
        os.mkfifo(self.fifo)
        self.reader = os.open(self.fifo, os.O_RDONLY | os.O_NONBLOCK)
        self.test.addCleanup(os.close, self.reader)
        fcntl.fcntl(self.reader, fcntl.F_SETPIPE_SZ, SMALL_PIPE)
        reader, writer = os.pipe()
        self.test.addCleanup(os.close, reader)
        self.test.addCleanup(os.close, writer)
        self.launch([*command, *self.options(self.fifo)], reader, stdout=writer,
                    stderr=subprocess.PIPE)


class Trace(IntoFifo):
    LINES = LISTINGS

    def options(self, fifo):
        return ["--trace", fifo]


class Capture(IntoFifo):
    LINES = TRANSMISSIONS

    def options(self, fifo):
        return ["--capture", fifo]


class Port(IntoFifo):
    LINES = TRANSMISSIONS

    def options(self, fifo):
        return ["--wan", "pcap:," + fifo]


class Uart(IntoFifo):
    LINES = 2 * b"uart thr = 41\n"

    def options(self, fifo):
        writer = os.open(fifo, os.O_WRONLY)
        fill(writer)
        os.close(writer)
        return ["--uart", fifo]


class Source(Stalled):
    """A FIFO that frames come from, and whose writer sends only the first."""

    LINES = b"frame r = auto\n"

    def start(self, command):
        fifo, first = self.test.new_path(), self.test.new_path()
        os.mkfifo(fifo)
        frames.write_pcap(first, [frames.frame(60)])
        writer = os.open(fifo, os.O_RDWR)
        self.test.addCleanup(os.close, writer)
        with open(first, "rb") as file:
            os.write(writer, file.read())
        reader, output = self.pipe()
        self.launch([*command, "--lan", "pcap:" + fifo], reader, stdout=output)


KINDS = (OnTerminal, OnPseudoTerminal, IntoPipe, IntoNonBlockingPipe, IntoSocket, Messages, Trace,
         Capture, Port, Uart, Source)


class StalledTest(board.BoardTest):
    def setUp(self):
        super().setUp()
        self.paths = 0

    def new_path(self):
        self.paths += 1
        return self.path(str(self.paths))

    def full_fifo(self):
        """A FIFO that takes nothing and whose reader stalls."""
        fifo = self.new_path()
        os.mkfifo(fifo)
        both = os.open(fifo, os.O_RDWR)
        self.addCleanup(os.close, both)
        fill(both)
        return fifo

    def saved(self, path):
        """The ARP entries of a saved state."""
        with open(path, encoding="ascii") as file:
            return list(json.load(file)["arp"]["entries"])


class EndSignals(StalledTest):
    def end_all(self, number, save):
        """Ends a board of each kind at random moments."""
        ended = []
        for kind in KINDS:
            path = self.new_path()
            stalled = kind(self, *(("--save", path) if save else ()))
            stalled.type(kind.LINES)
            time.sleep(random.uniform(0, LATEST))
            stalled.process.send_signal(number)
            ended.append((kind, stalled, path))
        for kind, stalled, path in ended:
            with self.subTest(kind.__name__, number=number, save=save):
                self.assertEqual(stalled.process.wait(support.DEADLINE), -number)
                if save:
                    self.assertEqual(self.saved(path), ["07"])
                if kind is OnTerminal:
                    self.assertEqual(stalled.terminal.settings(), stalled.before)

    def test_any_stalled_reader(self):
        for number, save, _ in itertools.product(SIGNALS, (False, True), range(ROUNDS)):
            self.end_all(number, save)

    def test_several_stalled_readers(self):
        """The state is saved although neither console, nor messages, nor the trace have readers."""
        trace, path = self.new_path(), self.new_path()
        os.mkfifo(trace)
        reader = os.open(trace, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        stalled = Messages(self, "--save", path, "--trace", trace)
        stalled.type(LISTINGS + Messages.LINES)
        time.sleep(MOMENT)
        stalled.process.send_signal(signal.SIGTERM)
        self.assertEqual(stalled.process.wait(support.DEADLINE), -signal.SIGTERM)
        self.assertEqual(self.saved(path), ["07"])

    def test_second_signal_ends_the_board_at_once(self):
        stalled = OnTerminal(self, "--save", self.path("saved"), "--uart", self.full_fifo())
        stalled.type(Uart.LINES)
        time.sleep(MOMENT)
        stalled.process.send_signal(signal.SIGTERM)
        time.sleep(LATEST)
        stalled.process.send_signal(signal.SIGTERM)
        self.assertEqual(stalled.process.wait(support.DEADLINE), -signal.SIGTERM)
        self.assertEqual(stalled.terminal.settings(), stalled.before)
        self.assertFalse(os.path.exists(self.path("saved")))

    def test_cut_file_is_reported(self):
        stalled = Trace(self)
        stalled.type(LISTINGS)
        time.sleep(MOMENT)
        stalled.process.send_signal(signal.SIGTERM)
        self.assertEqual(stalled.process.wait(support.DEADLINE), -signal.SIGTERM)
        message = f"virtual-board: cannot write the trace '{stalled.fifo}': "
        message += "Interrupted system call; the file ends here\n"
        self.assertEqual(stalled.process.stderr.read().decode(), message)

    def test_reader_that_goes_on_gets_everything(self):
        """The command that runs is finished first."""
        line = b"nat 0 100"
        whole = self.new_path()
        done = support.run([BOARD, "--trace", whole, f"-c{ENTRY.decode()}", f"-c{line.decode()}"])
        self.assertEqual(done.returncode, 0)
        with open(whole, "rb") as file:
            wanted = file.read()
        stalled = Trace(self)
        stalled.type(line + b"\n")
        time.sleep(MOMENT)
        stalled.process.send_signal(signal.SIGTERM)
        time.sleep(MOMENT)
        os.set_blocking(stalled.reader, True)
        got = b"".join(iter(lambda: os.read(stalled.reader, SMALL_PIPE), b""))
        self.assertEqual(stalled.process.wait(support.DEADLINE), -signal.SIGTERM)
        self.assertEqual(got, wanted)
        self.assertEqual(stalled.process.stderr.read(), b"")


class OtherSignals(StalledTest):
    """A signal handler waits for no reader, not even for the rest of the trace."""

    SIGNALS = (signal.SIGQUIT, signal.SIGALRM, signal.SIGUSR1, signal.SIGSEGV)

    def test_while_the_trace_is_written(self):
        for number in self.SIGNALS:
            with self.subTest(number):
                stalled = Trace(self)
                stalled.type(LISTINGS)
                time.sleep(random.uniform(0, LATEST))
                stalled.process.send_signal(number)
                self.assertEqual(stalled.process.wait(support.DEADLINE), -number)

    def test_while_some_of_the_trace_is_yet_to_be_written(self):
        """Nothing is written in a command that never ends and has no accesses."""
        fifo = self.full_fifo()
        for number in self.SIGNALS:
            with self.subTest(number):
                # pylint: disable=consider-using-with
                process = subprocess.Popen(
                    [BOARD, "--trace", fifo, "-c", "l3 5", "-c", "qos = 1 2 3 4 5 6 zz"],
                    stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                    preexec_fn=support.die_quietly,
                )
                self.addCleanup(support.end, process)
                self.assertIn(b"keeps reading a word", process.stderr.readline())
                process.send_signal(number)
                self.assertEqual(process.wait(support.DEADLINE), -number)


class Start(StalledTest):
    def test_wait_for_the_reader_of_a_fifo(self):
        """A signal ends it; other files are as they were."""
        fifo, old = self.new_path(), self.new_path()
        os.mkfifo(fifo)
        for option in ("--trace", "--uart"):
            for number in SIGNALS:
                with self.subTest(option, number=number):
                    with open(old, "w", encoding="ascii") as file:
                        file.write("old")
                    # pylint: disable=consider-using-with
                    process = subprocess.Popen([BOARD, "--capture", old, option, fifo])
                    self.addCleanup(support.end, process)
                    time.sleep(MOMENT)
                    self.assertIsNone(process.poll())
                    process.send_signal(number)
                    self.assertEqual(process.wait(support.DEADLINE), -number)
                    with open(old, encoding="ascii") as file:
                        self.assertEqual(file.read(), "old")


if __name__ == "__main__":
    support.main()
