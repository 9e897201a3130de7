#!/usr/bin/env python3
"""Sets a route on a console device and reads it back, as a test of a board would.

usage: CONSOLE=DEVICE console_test.py
"""

import os
import sys
import unittest

from pexpect import fdpexpect

PROMPT = "\n\rDebug>> "
ERASE_LINE = "\b" * 255
DEADLINE = 5


class RouteTest(unittest.TestCase):
    def setUp(self):
        device = os.open(os.environ["CONSOLE"], os.O_RDWR | os.O_NOCTTY)
        self.console = fdpexpect.fdspawn(device, timeout=DEADLINE, encoding="latin-1")
        self.addCleanup(self.console.close)
        self.console.send(ERASE_LINE + "\n")
        self.console.expect_exact("\r\n" + PROMPT)

    def run_command(self, command):
        """What the command prints, with plain line ends."""
        self.console.send(command + "\n")
        # The first line end is that of the echo.
        self.console.expect_exact("\r\n")
        self.console.expect_exact(PROMPT)
        return self.console.before.replace("\r", "")

    def test_a_route_is_kept(self):
        self.run_command("l3 7 = 10.1.2.0 18 10.1.2.1 lan 0 0 direct")
        shown = self.run_command("l3 7")
        self.assertIn("INDEX:  7\tVALID\n", shown)
        self.assertIn("IP: 10.1.2.0 ", shown)

    def test_a_deleted_route_is_gone(self):
        self.run_command("l3 7 = 10.1.2.0 18 10.1.2.1 lan 0 0 direct")
        self.run_command("l3 d 7")
        self.assertIn("INDEX:  7\tINVALID\n", self.run_command("l3 7"))

    def test_nonsense_is_refused(self):
        self.assertEqual(self.run_command("l4 7"), "No command found\n")
        self.assertTrue(self.run_command("l3 zz").startswith("Invalid Command\n"))


if __name__ == "__main__":
    if "CONSOLE" not in os.environ:
        print("console_test.py: set CONSOLE to the device of the console", file=sys.stderr)
        sys.exit(2)
    unittest.main()
