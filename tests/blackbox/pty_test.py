"""The console of virtual-board on its own pseudo-terminal, for terminal programs."""

import os
import shutil
import signal
import subprocess
import tempfile
import unittest

import support
from support import PROMPT, START, UNKNOWN


class PtyTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.link = os.path.join(folder.name, "console")

    def start(self, *options):
        """Starts the board and waits for its console."""
        self.board = subprocess.Popen(
            [support.program("VIRTUAL_BOARD"), "--pty", self.link, *options],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            preexec_fn=support.die_quietly,
        )
        self.addCleanup(support.end, self.board)
        message = support.Screen(self, self.board.stderr.fileno()).until(b"\n")
        self.assertIn(self.link.encode(), message)

    def open(self):
        """A client that talks to the terminal itself."""
        client = os.open(self.link, os.O_RDWR | os.O_NOCTTY)
        return client, support.Screen(self, client)


class Clients(PtyTest):
    @unittest.skipIf(shutil.which("socat") is None, "there is no socat")
    def test_two_clients_one_after_the_other(self):
        self.start()
        first = self.talk(b"l3 f\n", START + b"l3 f\r\nFilter L3: DISABLE\n\r" + PROMPT)
        # Its end does not end the console, and leaves nothing behind.
        self.leave(first)
        second = self.talk(b"zz\n", b"zz\r\n" + UNKNOWN + PROMPT)
        self.assertIsNone(self.board.poll())

        second.stdin.write(b"exit\n")
        second.stdin.flush()
        self.assertEqual(self.board.wait(support.DEADLINE), 0)
        self.assertFalse(os.path.lexists(self.link))
        # Everything went through the terminal.
        self.assertEqual(self.board.stdout.read(), b"")

    def talk(self, keys, shown):
        client = subprocess.Popen(
            ["socat", "-t", "0", "-", self.link + ",raw,echo=0"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
        )
        self.addCleanup(support.end, client)
        client.stdin.write(keys)
        client.stdin.flush()
        support.Screen(self, client.stdout.fileno()).shows(shown)
        return client

    def leave(self, client):
        client.stdin.close()
        self.assertEqual(client.wait(support.DEADLINE), 0)

    def test_bytes_as_they_are(self):
        """No echo by the terminal, line ends untouched; Enter and Delete as keyboards send them."""
        self.start()
        client, screen = self.open()
        self.addCleanup(os.close, client)
        screen.shows(START)
        os.write(client, b"l3 fx\x7f\r")
        screen.shows(b"l3 fx\b \b\r\nFilter L3: DISABLE\n\r" + PROMPT)
        os.write(client, b"\x03\n")
        screen.shows(b"\x03\r\n" + PROMPT)

    def test_kept_delete(self):
        self.start("--keep-delete")
        client, screen = self.open()
        self.addCleanup(os.close, client)
        screen.shows(START)
        os.write(client, b"x\x7f")
        screen.shows(b"x\x7f")


class Link(PtyTest):
    def test_removed_when_a_signal_ends_the_board(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGSEGV):
            with self.subTest(number.name):
                self.start()
                self.assertTrue(os.readlink(self.link).startswith("/dev/pts/"))
                self.board.send_signal(number)
                self.assertEqual(self.board.wait(support.DEADLINE), -number)
                self.assertFalse(os.path.lexists(self.link))

    def test_another_link_in_its_place_stays(self):
        self.start()
        os.unlink(self.link)
        os.symlink("elsewhere", self.link)
        self.board.terminate()
        self.board.wait(support.DEADLINE)
        self.assertEqual(os.readlink(self.link), "elsewhere")

    def test_existing_file_stays(self):
        os.symlink("elsewhere", self.link)
        done = support.run([support.program("VIRTUAL_BOARD"), "--pty", self.link])
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"'{self.link}': File exists\n", done.stderr.decode())
        self.assertEqual(os.readlink(self.link), "elsewhere")


if __name__ == "__main__":
    support.main()
