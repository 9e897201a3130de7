"""Commands on the command line of virtual-board, plain answers, and the exit status of lines."""

import os
import subprocess
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


class BoardRun(unittest.TestCase):
    maxDiff = None

    def expect(self, arguments, output, status=0, errors=b"", script=b"never read\n"):
        done = run([BOARD, *arguments], script)
        self.assertEqual(done.stdout, output)
        self.assertEqual(done.stderr, errors)
        self.assertEqual(done.returncode, status)

    def refused(self, arguments, *pieces, status=2):
        done = run([BOARD, *arguments])
        self.assertEqual((done.returncode, done.stdout), (status, b""))
        for piece in pieces:
            self.assertIn(piece, done.stderr.decode())
        self.assertEqual(done.stderr.count(b"\n"), 1)


class OneShot(BoardRun):
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
        message = b"virtual-board: 'l3 5' follows an 'exit' and was not run\n"
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

    def test_keys_that_edit_are_no_command(self):
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


class Init(BoardRun):
    """Lines that run before those of the console."""

    SHOWN = b"l3 5\r\n" + ROUTE + PROMPT

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, content, name="init"):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def test_script_goes_on(self):
        """Lines are echoed once, with no more Enter than they have; the last needs no line feed."""
        for content in (b"l3 5\n", b"l3 5"):
            shown = START + self.SHOWN + b"zz\r\n" + UNKNOWN + PROMPT
            self.expect(["--init", self.file(content)], shown, script=b"zz\n")
        self.expect(["--init", self.file(b"")], START, script=b"")

    def test_files_and_commands_in_order(self):
        options = ["--plain", "-c", "reg 604", "--init", self.file(b"reg 604 = 1\nreg 604\n", "a"),
                   "--init", self.file(b"reg 604 = 2", "b")]
        done = run([BOARD, *options], b"reg 604 = 7\n")
        values = [line.split(b":")[1].split()[4] for line in done.stdout.splitlines()]
        self.assertEqual(values, [b"01", b"01", b"02", b"02"])
        done = run([BOARD, *options, "--stay"], b"reg 604 = 7\n")
        values = [line.split(b":")[1].split()[4] for line in done.stdout.splitlines()]
        self.assertEqual(values, [b"01", b"01", b"02", b"02", b"07"])

    def test_status(self):
        """That of the lines which were given; with --plain, of those of the script too."""
        refused, good = ("--init", self.file(b"zz\n", "bad")), ("--init", self.file(b"\n", "good"))
        self.assertEqual(run([BOARD, *refused], b"").returncode, 3)
        self.assertEqual(run([BOARD, *good], b"zz\n").returncode, 0)
        self.assertEqual(run([BOARD, *good, "--plain"], b"zz\n").returncode, 3)
        self.assertEqual(run([BOARD, "-c", "", "--stay"], b"zz\n").returncode, 0)
        self.assertEqual(run([BOARD, "-c", "zz", "--stay"], b"exit\n").returncode, 3)

    def test_exit_in_the_file(self):
        message = b"virtual-board: 'l3 5' follows an 'exit' and was not run\n"
        path = self.file(b"exit\nl3 5\n")
        self.expect(["--init", path], START + b"exit\r\n", 3, message, script=b"zz\n")
        self.expect(["--init", self.file(b"exit")], START + b"exit\r\n", script=b"zz\n")

    def test_files_that_are_refused(self):
        missing = os.path.join(self.folder, "missing")
        self.refused(["--init", missing], f"'{missing}': No such file or directory", status=1)
        self.refused(["--init", self.folder], f"'{self.folder}': Is a directory", status=1)
        for content in (b"l3 5\r\n", b"l3\t5", b"\0", b"l3\x1b[A", b"\x7f"):
            path = self.file(b"\n" + content)
            self.refused(["--init", path], f"'{path}', line 2: ", "control characters", status=1)
        self.refused(["--init", "/dev/zero"], "line 1: ", "control characters", status=1)
        path = self.file(b"x" * 255)
        self.refused(["--init", path], "line 1: ", "254", status=1)
        self.expect(["--plain", "--init", self.file(b"help" + 250 * b" "), "-c", "exit"],
                    run([BOARD, "--plain", "-c", "help"]).stdout)
        self.refused(["--init", path, "--trace", path], "--init", "--trace", "are one file")
        self.assertEqual(os.path.getsize(path), 254)
        self.refused(["--init", "-"], "--init", "'-'", "carry the console")

    def test_packet_service(self):
        """Lines after the one that switches it on run in order, whatever frames come between."""
        capture = os.path.join(self.folder, "in.pcap")
        frames.write_pcap(capture, 100 * [frames.frame(16, frames.BROADCAST)])
        lines = b"".join(b"reg 604 = %x\nreg 604\n" % number for number in range(1, 40))
        path = self.file(b"frame r = auto\n" + lines)
        done = run([BOARD, "--plain", "--lan", "pcap:" + capture, "--init", path], b"reg 604\n")
        values = [line.split(b":")[1].split()[4]
                  for line in done.stdout.splitlines() if line.startswith(b"50000600:")]
        self.assertEqual(values, [b"%02X" % (i // 2 + 1) for i in range(2 * 39)] + [b"27"])
        self.assertEqual(done.stdout.count(b"Packet length"), 100)

    def test_terminal(self):
        """The keyboard comes next, and Ctrl-C ends a wait of the lines already."""
        terminal = support.Terminal(self)
        terminal.start([BOARD, "--fault", "hang:l3", "--init", self.file(b"l3 5\nzz\n")])
        terminal.screen.until(b"Ctrl-C ends the wait\r\n")
        terminal.type(b"\x03")
        shown = ROUTE_FAILED + PROMPT + b"zz\r\n" + UNKNOWN + PROMPT
        terminal.screen.shows(shown)
        terminal.type(b"l3 f\r")
        terminal.screen.shows(b"l3 f\r\nFilter L3: DISABLE\n\r" + PROMPT)
        terminal.type(b"exit\r")
        self.assertEqual(terminal.status(), 4)
        terminal.start([BOARD, "-c", "zz", "--stay"])
        terminal.screen.until(b"zz\r\n" + UNKNOWN + PROMPT)
        terminal.type(b"exit\r")
        self.assertEqual(terminal.status(), 3)
        terminal.start([BOARD, "--plain", "--stay", "-c", "zz"])
        self.assertEqual(terminal.status(), 2)

    def test_pseudo_terminal(self):
        link = os.path.join(self.folder, "console")
        # pylint: disable=consider-using-with
        board = subprocess.Popen(
            [BOARD, "--pty", link, "--init", self.file(b"l3 5\n"), "--stay", "-c", "zz"],
            stderr=subprocess.PIPE,
        )
        self.addCleanup(support.end, board)
        board.stderr.readline()
        client = os.open(link, os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, client)
        screen = support.Screen(self, client)
        screen.shows(START + self.SHOWN + b"zz\r\n" + UNKNOWN + PROMPT)
        os.write(client, b"exit\r")
        self.assertEqual(board.wait(support.DEADLINE), 3)


if __name__ == "__main__":
    support.main()
