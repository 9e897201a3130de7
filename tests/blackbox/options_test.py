"""The command line of virtual-board, and scripts on its standard input."""

import json
import os
import tempfile
import unittest

import support
from support import PROMPT, START, UNKNOWN, run

BOARD = support.program("VIRTUAL_BOARD")

# Options, and the pieces of the message that they draw.
BAD_OPTIONS = [
    (["--trase", "x"], ["'--trase'", "'--trace'"]),
    (["--trase=x"], ["'--trase'", "'--trace'"]),
    (["--keep"], ["'--keep'", "'--keep-delete'"]),
    (["--fualt", "hang:l3"], ["'--fualt'", "'--fault'"]),
    (["--tpy", "--halp"], ["'--tpy'", "'--pty'", "'--halp'", "'--help'"]),
    (["-x"], ["'-x'"]),
    (["script"], ["'script'"]),
    (["--", "--pty"], ["--"]),
    (["--trace"], ["--trace", "FILE"]),
    (["--pty"], ["--pty", "LINK"]),
    (["--fault"], ["--fault", "SPEC"]),
    (["--trace", "--pty"], ["--trace", "'--pty'"]),
    (["--trace", ""], ["--trace", "a file needs a name"]),
    (["--trace", "-"], ["--trace", "'-'", "carry the console", "'./-'"]),
    (["--capture", "-"], ["--capture", "'-'", "carry the console"]),
    (["--uart", "-"], ["--uart", "'-'", "carry the console"]),
    (["--load", "-"], ["--load", "'-'", "carry the console"]),
    (["--save", "-"], ["--save", "'-'", "carry the console"]),
    (["--pty", "-"], ["--pty", "'-'", "carry the console"]),
    (["--lan", "pcap:-"], ["--lan", "'-'", "carry the console"]),
    (["--lan", "pcap:,-"], ["--lan", "'-'", "carry the console"]),
    (["--trace", "a", "--trace", "b"], ["--trace", "more than once", "'a'", "'b'"]),
    (["--lan", "none", "--lan=unix:x"], ["--lan", "more than once", "'none'", "'unix:x'"]),
    (["--realtime=5"], ["--realtime", "no value", "'=5'"]),
    (["--plain=true"], ["--plain", "no value", "'=true'"]),
    (["--version=1"], ["--version", "no value"]),
    (["--pty", "a", "--pty", "b"], ["--pty", "'a'", "'b'"]),
    (["--keep-delete=maybe"], ["--keep-delete", "no value", "'=maybe'"]),
    (["--uart"], ["--uart", "FILE"]),
    (["--capture"], ["--capture", "FILE"]),
    (["--gpio-in"], ["--gpio-in", "HEX"]),
    (["--gpio-in", "--trace"], ["--gpio-in", "'--trace'"]),
    (["--gpio-in", ""], ["--gpio-in", "''", "0 to ff"]),
    (["--gpio-in", "g"], ["--gpio-in", "'g'", "0 to ff"]),
    (["--gpio-in", "5x"], ["--gpio-in", "'5x'"]),
    (["--gpio-in", "0x"], ["--gpio-in", "'0x'", "a5 or 0xa5"]),
    (["--gpio-in", "0x100"], ["--gpio-in", "'0x100'"]),
    (["--gpio-in", "0x-1"], ["--gpio-in", "'0x-1'"]),
    (["--gpio-in", "100"], ["--gpio-in", "'100'"]),
    (["--gpio-in", "1", "--gpio-in", "2"], ["--gpio-in", "'1'", "'2'"]),
    (["--fault", ""], ["--fault"]),
    (["--fault", "hang"], ["hang", "engine is missing", "l3"]),
    (["--fault", "hang:"], ["''", "l3"]),
    (["--fault", "hang:l4"], ["'l4'", "known are", "l3"]),
    (["--fault", "hang:L3"], ["'L3'", "known are", "l3"]),
    (["--fault", "hand:l3"], ["'hand'", "known are hang, busy, fail, slow"]),
    (["--fault", "slow:l3"], ["slow:l3", "number of loads is missing"]),
    (["--fault", "slow:l3:"], ["slow:l3:", "''"]),
    (["--fault", "slow:l3:0"], ["'0'"]),
    (["--fault", "slow:l3:5x"], ["'5x'", "is not a number of loads"]),
    (["--fault", "slow:l3:99999999999"], ["'99999999999'", "4294967295"]),
    (["--capture", ""], ["--capture", "a file needs a name"]),
    (["--lan", "pcap:a,b,c"], ["--lan", "'pcap:a,b,c'"]),
    (["--registers", "json"], ["'json'", "follows '='"]),
    (["--fault", "slow:l3:5:6"], ["'6'"]),
    (["--fault", "hang:l3:5"], ["'5'"]),
    (["--fault", "hang:l3", "busy:l3"], ["'busy:l3'"]),
    (["--fault", "hang:l3", "--fault", "oops:l3"], ["'oops'"]),
]


class CommandLine(unittest.TestCase):
    def test_bad_options(self):
        for options, pieces in BAD_OPTIONS:
            with self.subTest(options):
                done = run([BOARD, *options], b"exit\n")
                message = done.stderr.decode()
                self.assertEqual(done.returncode, 2)
                self.assertEqual(done.stdout, b"")
                self.assertTrue(message.startswith("virtual-board: "), message)
                self.assertEqual(message.count("\n"), 1)
                for piece in pieces:
                    self.assertIn(piece, message)

    def test_help(self):
        for option in ("--help", "-h"):
            done = run([BOARD, option])
            self.assertEqual(done.returncode, 0)
            self.assertEqual(done.stderr, b"")
            for piece in (b"--pty LINK", b"--trace FILE", b"--fault SPEC", b"--keep-delete",
                          b"--load FILE", b"--save FILE",
                          b"--version", b"hang:ENGINE", b"slow:ENGINE:LOADS", b"l3"):
                self.assertIn(piece, done.stdout)

            self.assertIn(b"  --registers[=FORMAT] ", done.stdout)

    def test_control_bytes_are_shown_as_escapes(self):
        """What a terminal would obey, from the command line and from the system's answers."""
        nowhere = "/nowhere/\n\r\t\x1b]0;\x07\x7f"
        shown = r"/nowhere/\n\r\t\x1b]0;\x07\x7f"
        cases = [
            (["--\x1b[2J"], 2, r"'--\x1b[2J'"),
            (["\x1b[2J"], 2, r"'\x1b[2J'"),
            (["--fault", "hang:\n"], 2, r"hang:\n"),
            (["--gpio-in", "\x07"], 2, r"'\x07'"),
            (["--registers=\x1b"], 2, r"'\x1b'"),
            (["--lan", "\x1b"], 2, r"'\x1b'"),
            (["--plain=\x1b"], 2, r"'=\x1b'"),
            (["--trace", "\x1b", "--trace", "\n"], 2, r"'\x1b' and '\n'"),
            (["--uart", "\x1b", "--trace", "\x1b"], 2, r"'\x1b'"),
            (["--trace", nowhere], 1, shown),
            (["--uart", nowhere], 1, shown),
            (["--capture", nowhere], 1, shown),
            (["--load", nowhere], 1, shown),
            (["--save", nowhere], 1, shown),
            (["--pty", nowhere], 1, shown),
            (["--lan", "pcap:" + nowhere], 1, shown),
            (["--lan", "unix:" + nowhere], 1, shown),
            # Other alphabets stay readable.
            (["--trace", "/nowhere/\u00e9"], 1, "/nowhere/\u00e9"),
        ]
        for options, status, piece in cases:
            with self.subTest(options):
                done = run([BOARD, *options])
                message = done.stderr.decode()
                self.assertEqual((done.returncode, done.stdout), (status, b""))
                self.assertIn(piece, message)
                self.assertRegex(message, r"\A[^\x00-\x1f\x7f]+\n\Z")

    def test_version(self):
        done = run([BOARD, "--version"])
        self.assertEqual(done.stdout.decode(), f"virtual-board {os.environ['BOARD_VERSION']}\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_files_that_cannot_be_made(self):
        with tempfile.TemporaryDirectory() as folder:
            taken = os.path.join(folder, "taken")
            with open(taken, "wb"):
                pass
            missing = os.path.join(folder, "missing", "name")
            cases = [
                ("--trace", folder, "Is a directory"),
                ("--trace", missing, "No such file or directory"),
                ("--uart", folder, "Is a directory"),
                ("--uart", missing, "No such file or directory"),
                ("--capture", folder, "Is a directory"),
                ("--capture", missing, "No such file or directory"),
                ("--pty", taken, "File exists"),
                ("--pty", missing, "No such file or directory"),
            ]
            for option, path, reason in cases:
                with self.subTest([option, path]):
                    done = run([BOARD, option, path], b"exit\n")
                    self.assertEqual(done.returncode, 1)
                    self.assertEqual(done.stdout, b"")
                    message = done.stderr.decode().replace("'", "")
                    self.assertRegex(message, f"{path}: {reason}\n$")
            self.assertEqual(os.listdir(folder), ["taken"])


class Script(unittest.TestCase):
    LINES = b"l3 5\nzz\n"
    OUTPUT = (
        START
        + b"l3 5\r\n"
        + support.EMPTY_ROUTE % 5
        + PROMPT
        + b"zz\r\n"
        + UNKNOWN
        + PROMPT
    )

    def expect(self, done, output):
        self.assertEqual(done.stdout, output)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_from_a_pipe_ends_with_it(self):
        self.expect(run([BOARD], self.LINES), self.OUTPUT)

    def test_from_a_file_ends_with_it(self):
        with tempfile.TemporaryFile() as file:
            file.write(self.LINES)
            file.seek(0)
            self.expect(run([BOARD], None, stdin=file), self.OUTPUT)

    def test_nothing_at_all(self):
        self.expect(run([BOARD]), START)

    def test_exit_ends_it_earlier(self):
        self.expect(run([BOARD], b"exit\nzz\n"), START + b"exit\r\n")

    def test_unfinished_line_is_not_run(self):
        self.expect(run([BOARD], b"help"), START + b"help")

    def test_keys_arrive_as_they_are(self):
        self.expect(run([BOARD], b"a\x7f\r\n"), START + b"a\x7f\r\r\n" + UNKNOWN + PROMPT)

    def test_closed_streams(self):
        done = run(["sh", "-c", 'exec "$0" <&-', BOARD], b"zz\n")
        self.expect(done, START)
        done = run(["sh", "-c", 'exec "$0" >&-', BOARD], b"zz\n")
        self.assertEqual(done.returncode, 1)


class Chip(unittest.TestCase):
    def output(self, line, *options):
        """What a line prints."""
        done = run([BOARD, *options], line + b"\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        head = START + line + b"\r\n"
        self.assertEqual(done.stdout[: len(head)], head)
        self.assertEqual(done.stdout[-len(PROMPT) :], PROMPT)
        return done.stdout[len(head) : -len(PROMPT)]

    def test_busy_engine(self):
        self.assertEqual(self.output(b"l3 0", "--fault", "busy:l3"), b"L3 Read failed\n\r")

    def test_slow_engine(self):
        self.assertEqual(self.output(b"l3 0", "--fault=slow:l3:50"), support.EMPTY_ROUTE % 0)

    def test_last_fault_of_an_engine_holds(self):
        faults = ("--fault", "hang:l3", "--fault", "busy:l3")
        self.assertEqual(self.output(b"l3 0", *faults), b"L3 Read failed\n\r")

    def test_levels_of_the_pins(self):
        """Pins whose direction bit is 0 are inputs; the others show what is written to them."""
        self.assertEqual(self.output(b"gpio", "--gpio-in", "A5"), b"DATA: a5\n\r")
        self.assertEqual(self.output(b"gpio", "--gpio-in=0"), b"DATA:  0\n\r")
        self.assertEqual(self.output(b"gpio", "--gpio-in", "0xA5"), b"DATA: a5\n\r")
        self.assertEqual(self.output(b"gpio", "--gpio-in", "0X10"), b"DATA: 10\n\r")
        self.assertEqual(self.output(b"gpio"), b"DATA:  0\n\r")

    def test_bytes_of_the_uart(self):
        lines = b"".join(b"uart thr = %x\n" % byte for byte in (0x41, 0x0A, 0xFF))
        # A divisor is not a byte that is sent.
        lines += b"uart dll = 42\nuart thr = 0\n"
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "uart")
            done = run([BOARD, "--uart", path], lines)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            with open(path, "rb") as file:
                self.assertEqual(file.read(), b"A\n\xff\0")

    def test_uart_onto_a_full_disk(self):
        done = run([BOARD, "--uart", "/dev/full"], 3 * b"uart thr = 41\n" + b"zz\n")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"\n"), 1)
        self.assertIn(b"'/dev/full': No space left on device", done.stderr)
        self.assertTrue(done.stdout.endswith(UNKNOWN + PROMPT))

    def test_failing_engine_has_no_effect(self):
        line = b"l3 5 = 10.1.2.0 18 10.1.2.1 lan 0 0"
        done = run([BOARD, "--fault", "fail:l3"], line + b"\n" + b"l3 6\n")
        self.assertEqual(done.returncode, 0)
        # A read without effect leaves in the registers what was stored there for another slot.
        self.assertIn(b"INDEX:  6\tVALID\n\rIP: 10.1.2.0        MASK: 18", done.stdout)



class Complaints(unittest.TestCase):
    """What standard error says about accesses that software should not make."""

    PREFIX = "virtual-board: the chip complains: "

    def complaints(self, lines, *options, status=0):
        done = run([BOARD, *options], lines)
        self.assertEqual(done.returncode, status, done.stderr)
        reported = done.stderr.decode().splitlines()
        self.assertEqual([line for line in reported if not line.startswith(self.PREFIX)], [])
        return [line.removeprefix(self.PREFIX) for line in reported]

    def test_come_once_each(self):
        reported = self.complaints(b"reg 1f00\nreg 1f01\nreg 1f00\n")
        self.assertEqual(reported, ["no register at 1f00", "no register at 1f01"])

    def test_neighbours_are_one_range(self):
        reported = self.complaints(b"reg 1f00 2\nreg 1eff 4\nreg 1ff0 10\n")
        ranges = ["1f00-1f01", "1eff, 1f02", "1ff0-1fff"]
        self.assertEqual(reported, ["no register at " + text for text in ranges])

    def test_whole_window(self):
        """The ranges are those that the register map leaves free, on few lines."""
        blocks = json.loads(run([BOARD, "--registers=json"]).stdout)["blocks"]
        taken = set()
        for register in (register for block in blocks for register in block["registers"]):
            start = register["offset"]
            taken.update(range(start, start + register["width"] // 8 * register["count"]))
        free = [offset for offset in range(0x2000) if offset not in taken]
        reported = self.complaints(b"reg 0 2000\n")
        self.assertLess(len(reported), 10)
        named = []
        for text in reported:
            self.assertTrue(text.startswith("no register at "), text)
            for part in text.removeprefix("no register at ").split(", "):
                first, _, last = part.partition("-")
                named += range(int(first, 16), int(last or first, 16) + 1)
                self.assertNotEqual(first, last)
        self.assertEqual(named, free)

    def test_other_complaints_stay_in_order(self):
        """The first offset comes before what the same line does next."""
        reported = self.complaints(b"reg 0ff 4 = 1 2 3 4\n")
        self.assertEqual(
            reported,
            ["no register at 00ff", "store to read-only CHIP_REVISION at 0101",
             "store to read-only CHIP_MODEL at 0102"],
        )

    def test_come_between_the_answer_and_the_prompt(self):
        done = run(["sh", "-c", '"$0" 2>&1', BOARD], b"reg 1f00\n")
        answer = done.stdout.removeprefix(START + b"reg 1f00\r\n").removesuffix(PROMPT)
        self.assertTrue(answer.startswith(b"50001F00: 00"), answer)
        reported = self.PREFIX.encode() + b"no register at 1f00\n"
        self.assertTrue(answer.endswith(b"\n\r" + reported), answer)

    def test_come_before_an_early_end(self):
        for script in (b"reg 1f00\nexit\nzz\n", b"reg 1f00\nzz"):
            self.assertEqual(self.complaints(script), ["no register at 1f00"])
        with open("/dev/full", "wb") as full:
            done = run([BOARD, "-c", "reg 1f00"], b"", stdout=full)
        self.assertIn(b"no register at 1f00\n", done.stderr)

    def test_strict(self):
        for line in (b"reg 1f00\n", b"reg 101 = 0\n"):
            for end in (b"", b"exit\n"):
                self.complaints(line + end, "--strict", status=1)
        self.complaints(b"reg 100\nl3 5\nzz\n", "--strict")
        for lines, status in ((["reg 1f00", "zz"], 1), (["zz"], 3), (["reg 100"], 0)):
            commands = [word for line in lines for word in ("-c", line)]
            self.complaints(b"", "--strict", "--plain", *commands, status=status)


if __name__ == "__main__":
    support.main()
