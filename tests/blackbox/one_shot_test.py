"""Commands on the command line of virtual-board, plain answers, and the exit status of lines."""

import os
import tempfile
import unittest

import frames
import support
from support import PROMPT, START, UNKNOWN, run

BOARD = support.program("VIRTUAL_BOARD")

# What `l3 5` prints while nothing is there.
ROUTE = support.EMPTY_ROUTE % 5
ROUTE_FAILED = b"L3 Read failed\n\r"
USAGE = b"Invalid Command\n\r  tdm      [off]                               \n\r"


def commands(*lines):
    """The options for commands."""
    return [option for line in lines for option in ("-c", line)]


def plain(text):
    return text.replace(b"\r", b"")


class OneShot(unittest.TestCase):
    maxDiff = None

    def expect(self, arguments, output, status=0, errors=b"", script=b"never read\n"):
        done = run([BOARD, *arguments], script)
        self.assertEqual(done.stdout, output)
        self.assertEqual(done.stderr, errors)
        self.assertEqual(done.returncode, status)

    def test_prints_what_a_console_would(self):
        output = START + b"l3 5\r\n" + ROUTE + PROMPT + b"zz\r\n" + UNKNOWN + PROMPT
        self.expect(commands("l3 5", "zz"), output, status=3)
        self.assertEqual(run([BOARD], b"l3 5\nzz\n").stdout, output)

    def test_one_board_runs_all_commands_in_order(self):
        done = run([BOARD, "--plain", *commands("reg 604 = 12", "reg 604", "reg 604 = 0")])
        values = [line.split(b":")[1].split()[4] for line in done.stdout.splitlines()]
        self.assertEqual(values, [b"12", b"12", b"00"])

    def test_long_option_and_attached_argument(self):
        self.expect(["--command=zz", "-czz", "--plain"], plain(2 * UNKNOWN), status=3)

    def test_brackets_are_not_a_list(self):
        self.expect(["--plain", *commands("[zz,zz]")], plain(UNKNOWN), status=3)

    def test_plain_answers(self):
        lines = commands("l3 5", "zz", "tdm on", "x" * 33)
        answers = ROUTE + UNKNOWN + USAGE + b"\n\rInvalid Command\n\r"
        self.expect([*lines, "--plain"], plain(answers), status=3)

    def test_plain_answers_end_with_a_line_feed(self):
        lines = commands("macaddr m cpu 1", "qos wan = mode2", "l3 f")
        answers = b"CPUMAC: 000000000001\nport: WAN QOS MODE: MODE2\nFilter L3: DISABLE\n"
        self.expect([*lines, "--plain"], answers)

    def test_last_line_without_its_end(self):
        lost = b"virtual-board: the script's last line has no line end and was not run\n"
        self.expect(["--plain"], plain(ROUTE), 3, lost, script=b"l3 5\nzz")
        self.assertEqual(run([BOARD], b"l3 5\nzz").returncode, 0)

    def test_plain_answers_of_a_script(self):
        self.expect(["--plain"], plain(ROUTE + UNKNOWN), 3, script=b"l3 5\nzz\n")
        self.expect(["--plain"], plain(ROUTE), script=b"l3 6\x085\nexit\nzz\n")
        self.expect(["--plain"], b"", script=b"")

    def test_shown_frames_are_not_an_echo(self):
        octets = frames.frame(16, frames.BROADCAST)
        with tempfile.NamedTemporaryFile() as capture:
            frames.write_pcap(capture.name, [octets])
            options = ["--plain", "--lan", "pcap:" + capture.name]
            done = run([BOARD, *options, *commands("frame r = auto")])
        head, *dump = done.stdout.split(b"\n")[1:]
        self.assertEqual(head, b"Packet length=0x010    reason=0x02")
        shown = b" ".join(line.partition(b": ")[2] for line in dump).split()
        self.assertEqual(bytes.fromhex(b"".join(x for x in shown if x != b"..").decode()), octets)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_status_of_scripts_stays_0(self):
        self.assertEqual(run([BOARD, "--fault", "busy:l3"], b"zz\nl3 5\n").returncode, 0)

    def test_empty_command_is_an_empty_line(self):
        self.expect(commands(""), START + b"\r\n" + PROMPT)
        self.expect(["--plain", *commands("", "zz")], plain(UNKNOWN), status=3)

    def test_exit(self):
        self.expect(commands("exit"), START + b"exit\r\n")
        self.expect(["--plain", *commands("exit")], b"")
        message = b"virtual-board: 'l3 5' comes after an 'exit' and was not run\n"
        self.expect(["--plain", *commands("zz", "EXIT now", "l3 5", "zz")], plain(UNKNOWN), 3, message)

    def test_a_driver_that_fails_outweighs_a_refused_line(self):
        options = ["--plain", "--fault", "busy:l3"]
        self.expect([*options, *commands("l3 5")], plain(ROUTE_FAILED), status=4)
        self.expect([*options, *commands("l3 5", "zz")], plain(ROUTE_FAILED + UNKNOWN), status=4)
        self.expect([*options, *commands("zz", "l3 5")], plain(UNKNOWN + ROUTE_FAILED), status=4)

    def test_a_reset_is_not_judged(self):
        """Whether it has worked is what a plain `reset` is for."""
        answer = b"RESET CPU\nRESET IS NOT DONE!\n"
        self.expect(["--plain", "--fault", "hang:reset", *commands("reset cpu", "reset")], answer)

    def test_failures_of_the_program_outweigh_both(self):
        options = ["--plain", "--fault", "busy:l3", "--trace", "/dev/full"]
        done = run([BOARD, *options, *commands("l3 5", "zz")])
        self.assertEqual((done.returncode, done.stdout), (1, plain(ROUTE_FAILED + UNKNOWN)))
        self.assertEqual(done.stderr.count(b"\n"), 1)
        self.assertIn(b"'/dev/full': No space left on device", done.stderr)
        with open("/dev/full", "wb") as full:
            done = run([BOARD, *commands("zz")], stdout=full)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"No space left on device", done.stderr)

    def test_longest_command(self):
        """The console takes 254 characters."""
        line = "help" + 246 * " " + "zz x"
        self.assertEqual(len(line), 254)
        done = run([BOARD, "--plain", *commands(line)])
        self.assertEqual((done.returncode, done.stdout[:15]), (3, b"Invalid Command"))
        self.refused(commands(line + " "), "--command", "255 characters", "254")

    def refused(self, arguments, *pieces):
        done = run([BOARD, *arguments])
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        for piece in pieces:
            self.assertIn(piece, done.stderr.decode())
        self.assertEqual(done.stderr.count(b"\n"), 1)

    def test_editing_keys_are_not_a_command(self):
        for text in ("zz\nzz", "zz\n", "zz\r", "zz\t", "zz\x08", "\x1b[A", "zz\x03", "z\x7fz"):
            with self.subTest(text):
                self.refused(commands(text), "--command", "control characters")
        self.expect(["--plain", *commands("h\xe9")], plain(UNKNOWN), status=3)

    def test_bad_combinations(self):
        with tempfile.TemporaryDirectory() as folder:
            link = os.path.join(folder, "console")
            self.refused([*commands("zz"), "--pty", link], "--command", "--pty")
            self.refused(["--plain", "--pty", link], "--plain", "-c")
            self.assertEqual(os.listdir(folder), [])
        self.refused(["-c"], "--command", "LINE")
        self.refused(["-c", "--plain"], "--command", "'--plain'")
        self.refused(["-c", "zz", "yy"], "'yy'")
        self.refused(["--plan"], "'--plan'", "'--plain'")
        self.refused(["--comand=x"], "'--comand'", "'--command'")

    def test_plain_on_a_terminal(self):
        terminal = support.Terminal(self)
        terminal.start([BOARD, "--plain"])
        self.assertEqual(terminal.status(), 2)
        terminal.screen.until(b"--plain is for lines given with -c or as a script")
        terminal.start([BOARD, "--plain", "-c", "zz"])
        self.assertEqual(terminal.status(), 3)


if __name__ == "__main__":
    support.main()
