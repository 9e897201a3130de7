"""What a bus analyser sees of the shipped debug-monitor: no access more or less, none wider or
narrower, after all that the compiler and the linker have done."""

import os
import unittest

import bus_analyser
import kernel_memory
import support

WHY_NOT = bus_analyser.why_not()

# Neither the start nor the end touches anything.
STORY = [
    ("version", "r8 0101  r16 0102  r16 0102"),
    ("reg 605 = 12 34", "w8 0605  w8 0606  r8 0605  r8 0606"),
    ("reg 605 3", "r8 0605  r8 0606  r8 0607"),
    ("reg 1fff 2", ""),
    ("timer", "r16 0200  r16 0202  r16 0204  r16 0208  r16 020a  r16 020c"),
    ("timer 1 = 100 4", "w16 020a  w16 020c"),
    (
        "qos = 10 08 20 31 40 48 red 05",
        # What is there, the new values, and what is there then.
        "r8 0823  r8 0821  r8 0822  r8 0820  r8 0845  r8 0846  r8 0844 "
        "w8 0823  w8 0821  w8 0822  w8 0820  w8 0845  w8 0846  w8 0844 "
        "r8 0823  r8 0821  r8 0822  r8 0820  r8 0845  r8 0846  r8 0844",
    ),
    ("l3 f", "r8 0105"),
    ("l3 f enable", "r8 0105  w8 0105  r8 0105"),
    ("macaddr i lan 10.0.0.1", "w32 0418  r32 0418"),
    ("help", ""),
    ("no such command", ""),
    ("exit", ""),
]


@unittest.skipIf(WHY_NOT, WHY_NOT)
class Bus(kernel_memory.KernelMemoryTest):
    def test_each_access_once_in_order_and_width(self):
        script = "".join(line + "\n" for line, _ in STORY).encode()
        _, accesses = bus_analyser.record(
            self.path, support.program("DEBUG_MONITOR"), script, os.path.join(self.folder, "log")
        )
        expected = " ".join(accesses for _, accesses in STORY).split()
        self.assertEqual(accesses, [" ".join(pair) for pair in zip(expected[::2], expected[1::2])])


if __name__ == "__main__":
    support.main()
