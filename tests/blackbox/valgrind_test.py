"""debug-monitor as it ships, with each use of memory checked."""

import os
import shutil
import unittest

import kernel_memory
import support

SUPPRESSIONS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "static_libc.supp")

VALGRIND = [
    "valgrind",
    "--quiet",
    "--error-exitcode=99",
    "--leak-check=full",
    "--errors-for-leak-kinds=all",
    f"--suppressions={SUPPRESSIONS}",
]

# A line of each command. The table engines do not run: their ready bits are clear, so each of
# these ends by itself. (pdr starts its engine without a look at them; see below.)
LINES = b"""help
help clsfr
reg 1e0 20 = 1 2 3
timer
timer 0 = 1234 5
reset
reset cpu
version
cs 3 = 1000 5 2
macaddr m wan 021122334455
macaddr
maccfg lan = up 100 full mii fc
frame
frame b = 1
frame r
frame r = auto
frame r = manual
uart dll = 1
natcfg = 1.2.3.4 5 258 10 lw filter
nat 5
nat h = 1.2.3.4 1 5.6.7.8 2 tcp 9.9.9.9 3 4
l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0
l3 o
mcast 5 = 224.0.0.1 lan
arp 5 = 10.0.0.2 001122334455
clsfr 5 = ff 0 sip 10.0.0.1 18 int lan wan smac 001122334455
clsfr l
sc wan
sc o wan
mii 1 0
gpiocfg = 1 2 3 4
gpio i
qos = 10 08 20 31 40 48 red 05
qos lan 1 = 10 20 1 2 5
tdmcfg = 10 20 auto
tdm off
pst 0 4
pxt c 1 = 1 0
rc 1 = 100 7fff
ctrl f mirrlan 1
nosuch
reg 0 = =
[A[A[B
a-word-that-is-longer-than-a-slot-of-it
"""


@unittest.skipIf(shutil.which("valgrind") is None, "there is no valgrind")
class Memcheck(kernel_memory.KernelMemoryTest):
    def run_both(self, script):
        """Runs a script under valgrind and alone: it finds nothing and changes nothing."""
        monitor = support.program("DEBUG_MONITOR")
        alone = support.run(kernel_memory.inside(self.path, monitor), script)
        os.truncate(self.memory, kernel_memory.WINDOW)
        os.truncate(self.memory, kernel_memory.WINDOW + kernel_memory.WINDOW_SIZE)
        checked = support.run(
            kernel_memory.inside(self.path, *VALGRIND, monitor), script, timeout=50
        )
        self.assertEqual(checked.stderr.decode(), "")
        self.assertEqual((checked.returncode, alone.returncode), (0, 0))
        self.assertEqual(checked.stdout, alone.stdout)
        return checked.stdout

    def test_a_line_of_each_command(self):
        shown = self.run_both(LINES + b"exit\n")
        # Every line was answered: one prompt at the start and one after each but the last.
        self.assertEqual(shown.count(support.PROMPT), 1 + LINES.count(b"\n"))
        self.assertIn(b"MCAST Write failed\n\r", shown)

    def test_longest_line_and_most_words(self):
        most_words = b"= " * 140 + b"\nreg 0 100 =" + b" 1" * 110
        self.run_both(b"x" * 300 + b"\n" + most_words + b"\nexit\n")


if __name__ == "__main__":
    support.main()
