#!/usr/bin/env python3
"""Checks that every driver operation has a hostile test of its name, and that no such test names
something else.

usage: operations_test.py HOSTILE_TESTS
"""

import pathlib
import re
import subprocess
import sys
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
BLOCKS = ("system", "mac", "tables", "classifier", "qos", "pppoe")

# Functions of the blocks that make no bus access: commands and prints go through the operations,
# the rest turns words into records and records into words.
NO_OPERATION = re.compile(
    r"\w+Command|\w+Print|ParseRuleKeywords|EncodeRule|Decode(Match|Extended|Common)")

DECLARATION = re.compile(r"^(?:\[\[nodiscard\]\] )?[\w:]+ (\w+)\(", re.MULTILINE)


def declared():
    """The operations that the blocks' headers declare."""
    names = set()
    for block in BLOCKS:
        for header in (TOP / block).glob("*.h"):
            if not header.name.endswith("_registers.h"):
                names.update(DECLARATION.findall(header.read_text()))
    return {name for name in names if not NO_OPERATION.fullmatch(name)}


def tested(program):
    """The names of the tests in the program."""
    listing = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True,
                             text=True).stdout
    return set(re.findall(r"^  (\w+)", listing, re.MULTILINE))


class OperationsTest(unittest.TestCase):
    program = ""

    def test_every_operation_has_a_hostile_test(self):
        self.assertEqual(declared() - tested(self.program), set(),
                         "declared in a block's header, but not in tests/hostile/")

    def test_every_hostile_test_is_of_an_operation(self):
        self.assertEqual(tested(self.program) - declared(), set(),
                         "in tests/hostile/, but declared in no block's header")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    OperationsTest.program = sys.argv.pop()
    unittest.main()
