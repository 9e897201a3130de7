"""A running virtual-board whose operator is the test."""

import os
import socket
import subprocess
import tempfile
import time
import unittest

import support

BOARD = support.program("VIRTUAL_BOARD")


class BoardTest(unittest.TestCase):
    """A test with its own folder and boards that end with it."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.board = None
        self.screen = None

    def path(self, name):
        return os.path.join(self.folder, name)

    def start(self, *options, before=()):
        """Starts a board, with words before the command, and waits for its prompt."""
        # pylint: disable=consider-using-with
        self.board = subprocess.Popen(
            [*before, BOARD, *options],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            preexec_fn=support.die_quietly,
        )
        self.addCleanup(support.end, self.board)
        self.screen = support.Screen(self, self.board.stdout.fileno())
        self.screen.shows(support.START)

    def type(self, keys):
        self.board.stdin.write(keys)
        self.board.stdin.flush()

    def command(self, line):
        """Runs a command; what it prints."""
        self.type(line + b"\n")
        self.screen.until(line + b"\r\n")
        return self.screen.until(support.PROMPT)[: -len(support.PROMPT)]

    def leave(self, status=0):
        """Ends the board; what it has printed on standard error."""
        self.type(b"exit\n")
        self.screen.until(b"exit\r\n")
        self.assertEqual(self.board.wait(support.DEADLINE), status)
        return self.board.stderr.read().decode()

    def connect(self, path):
        """A program on a port of the board."""
        peer = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        self.addCleanup(peer.close)
        peer.settimeout(support.DEADLINE)
        peer.connect(path)
        return peer

    def wait_for(self, condition):
        """Waits until the condition holds."""
        deadline = time.monotonic() + support.DEADLINE
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.005)

    def processor_seconds(self):
        """Processor time that the board has used."""
        return support.processor_seconds(self.board)
