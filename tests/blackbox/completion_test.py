"""What bash offers for a virtual-board command line when its completion is loaded."""

import os
import re
import shlex
import tempfile
import unittest

import support

import pexpect  # After the module that skips where there is none.

BOARD = support.program("VIRTUAL_BOARD")
COMPLETION = support.program("COMPLETION")
BASH_COMPLETION = "/usr/share/bash-completion/bash_completion"

FILES = ["one.pcap", "three", "two words"]

# What is offered for an option's argument, by the name that the help gives to it.
ARGUMENTS = {
    "FILE": FILES,
    "LINK": FILES,
    "SPEC": ["busy:", "fail:", "hang:", "slow:"],
    "X": ["none", "pcap:", "tap:", "unix:"],
    "HEX": [],
    "LINE": [],
}

# Meta-* puts everything that is offered into the line, Ctrl-A goes to its start.
INSERT_ALL = "\x1b*"
SHOW = "\x01printf '{%s}' \r"


@unittest.skipUnless(os.path.exists(BASH_COMPLETION), "bash-completion is not installed")
class CompletionTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        for name in ("one.pcap", "two words"):
            with open(os.path.join(folder.name, name), "w", encoding="ascii"):
                pass
        os.mkdir(os.path.join(folder.name, "three"))
        environment = {**os.environ, "TERM": "dumb", "PS1": "bash> ", "INPUTRC": "/dev/null"}
        environment["PATH"] = os.path.dirname(BOARD) + ":" + environment["PATH"]
        self.bash = pexpect.spawn(
            "bash", ["--noprofile", "--norc"], cwd=folder.name, env=environment,
            timeout=support.DEADLINE, dimensions=(24, 4000),
        )
        self.addCleanup(self.bash.close, force=True)
        for line in ("bind 'set enable-bracketed-paste off'", f". {BASH_COMPLETION}",
                     f". {shlex.quote(COMPLETION)}"):
            self.bash.sendline(line)
        self.bash.sendline("echo loa''ded")
        self.bash.expect_exact("loaded\r\nbash> ")

    def offered(self, text, keys=INSERT_ALL):
        """What is offered for the last word of the line, which is empty after a space."""
        self.bash.send(f"virtual-board {text}{keys}{SHOW}")
        self.bash.expect(r"\r\n\r?\{virtual-board\}(.*)bash> ")
        words = re.findall(r"\{(.*?)\}", self.bash.match.group(1).decode())
        return words[text.count(" ") :]

    def test_offers_every_option_and_its_argument(self):
        text = support.run([BOARD, "--help"]).stdout.decode()
        options = re.findall(r"^  (?:-\w,)?(--?[\w-]+)(?: ([A-Z]+))?", text, re.MULTILINE)
        self.assertIn(("--trace", "FILE"), options)
        self.assertEqual(self.offered(""), sorted(option for option, _ in options))
        for option, argument in options:
            if argument:
                with self.subTest(option):
                    self.assertEqual(self.offered(option + " "), ARGUMENTS[argument])

    def test_completes_a_word(self):
        self.assertEqual(self.offered("--cap"), ["--capture"])
        self.assertEqual(self.offered("--realtime --keep"), ["--keep-delete"])
        self.assertEqual(self.offered("--nothing"), ["--nothing"])
        self.assertEqual(self.offered("--trace t"), ["three", "two words"])
        self.assertEqual(self.offered("--trace=o"), ["--trace=one.pcap"])
        self.assertEqual(self.offered("--wan n"), ["none"])
        self.assertEqual(self.offered("--lan=p"), ["--lan=pcap:"])

    def test_offers_engines_for_a_fault(self):
        refusal = support.run([BOARD, "--fault", "hang:?"]).stderr.decode()
        engines = refusal.rstrip("\n").split("known are ")[1].split(", ")
        self.assertIn("l3", engines)
        first, *others = sorted(engines)
        self.assertEqual(self.offered("--fault hang:"), ["hang:" + first, *others])
        self.assertEqual(self.offered("--fault fail:l"), ["fail:l3"])
        self.assertEqual(self.offered("--fault slow:l"), ["slow:l3:"])
        self.assertEqual(self.offered("--fault slow:l3:"), ["slow:l3:"])

    def test_offers_files_for_a_port(self):
        self.assertEqual(self.offered("--wan pcap:o"), ["pcap:one.pcap"])
        self.assertEqual(self.offered("--wan pcap:,o"), ["pcap:,one.pcap"])
        self.assertEqual(self.offered("--wan pcap:a,o"), ["pcap:a,one.pcap"])
        self.assertEqual(self.offered("--dmz unix:t"), ["unix:three", "two words"])

    def test_a_word_goes_on_after_a_colon(self):
        self.assertEqual(self.offered("--fault ha", "\tl\t"), ["hang:l3"])
        self.assertEqual(self.offered("--fault sl", "\tl\t5"), ["slow:l3:5"])
        self.assertEqual(self.offered("--wan no", "\t--lan"), ["none", "--lan"])

    def test_offers_forms_of_the_register_map_after_an_equals_sign(self):
        self.assertEqual(self.offered("--registers="), ["--registers=json", "svd"])
        self.assertIn("--trace", self.offered("--registers "))


if __name__ == "__main__":
    support.main()
