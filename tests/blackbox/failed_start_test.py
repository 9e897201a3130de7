"""A board that does not start leaves every file as it was."""

import os
import unittest

import board
import support
from board import BOARD

OLD = b"what was there before\n"


class FailedStart(board.BoardTest):
    def written(self):
        """The options that write a file, with the name of that file."""
        return {
            "trace": ["--trace", self.path("file")],
            "capture": ["--capture", self.path("file")],
            "first port": ["--wan", "pcap:," + self.path("file")],
            "last port": ["--dmz", "pcap:," + self.path("file")],
            "uart": ["--uart", self.path("file")],
            "save": ["--save", self.path("file")],
        }

    def failing(self):
        """Options with which no board starts."""
        missing = self.path("missing/name")
        with open(self.path("text"), "w", encoding="ascii") as file:
            file.write("This is not a capture or a state.\n")
        return [
            ["--trace", missing],
            ["--capture", missing],
            ["--uart", missing],
            ["--save", missing],
            ["--load", missing],
            ["--load", self.path("text")],
            ["--pty", missing],
            ["--pty", self.folder],
            ["--lan", "pcap:" + missing],
            ["--lan", "pcap:," + missing],
            ["--lan", "pcap:" + self.path("text")],
            ["--lan", "unix:" + missing],
            ["--lan", "tap:a-name-that-is-too-long"],
            ["--capture", "/dev/full"],
            ["--lan", "pcap:,/dev/full"],
            ["--fault", "hang:nothing"],
            ["--nonsense"],
        ]

    def check(self, prepare, look):
        for failing in self.failing():
            for name, written in self.written().items():
                if written[0] != failing[0]:
                    with self.subTest(name, failing=failing):
                        prepare()
                        done = support.run([BOARD, *written, *failing], b"l3 5\n")
                        self.assertIn(done.returncode, (1, 2))
                        self.assertEqual(done.stdout, b"")
                        look()

    def write(self, name):
        with open(self.path(name), "wb") as file:
            file.write(OLD)

    def content(self):
        with open(self.path("file"), "rb") as file:
            return file.read()

    def test_what_was_there_stays(self):
        self.check(lambda: self.write("file"), lambda: self.assertEqual(self.content(), OLD))

    def test_what_was_not_there_goes_away_again(self):
        self.check(lambda: None, lambda: self.assertEqual(os.listdir(self.folder), ["text"]))

    def test_what_a_link_leads_to_stays(self):
        os.symlink("target", self.path("file"))
        self.check(lambda: self.write("target"), lambda: self.assertEqual(self.content(), OLD))
        self.assertTrue(os.path.islink(self.path("file")))

    def test_link_to_what_is_not_there_stays(self):
        os.symlink("target", self.path("file"))
        self.check(lambda: None, lambda: self.assertTrue(os.path.islink(self.path("file"))))

    def test_start_replaces_what_was_there(self):
        """The same without what fails."""
        for name, written in self.written().items():
            with self.subTest(name):
                self.write("file")
                self.assertEqual(support.run([BOARD, *written], b"").returncode, 0)
                self.assertNotIn(OLD, self.content())


if __name__ == "__main__":
    support.main()
