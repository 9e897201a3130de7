"""What virtual-board says about waits that do not end."""

import os
import re
import subprocess

import board
import support
from support import BANNER, PROMPT

BOARD = support.program("VIRTUAL_BOARD")

WITHOUT_TERMINAL = "; without a terminal only the end of the program ends it"

# A command, the engine that hangs, and what the command waits for.
WAITS = [
    ("l3 5", "l3", "bit 0 (read_ready) of L3_COMMAND (L3 routes) at 060d"),
    ("l3 c 5 = 1", "l3", "bit 1 (write_ready) of L3_COMMAND (L3 routes) at 060d"),
    ("mcast 5", "mcast", "bit 0 (read_ready) of MCAST_COMMAND (multicast table) at 0621"),
    ("arp 5", "arp", "bit 0 (read_ready) of ARP_COMMAND (ARP table) at 063b"),
    ("nat 5", "nat", "bit 0 (read_ready) of NAT_COMMAND (NAT tables) at 051c"),
    ("clsfr 5", "cls", "bit 0 (read_ready) of CLS_COMMAND (classifier) at 0720"),
    ("sc wan", "sc", "bit 0 (read_ready) of SC_COMMAND (statistics counters) at 085c"),
    ("pst 1", "pst", "bit 0 (read_ready) of PST_COMMAND (PPPoE sessions) at 0a0f"),
    ("pdr 1", "pdr", "bit 0 (read_ready) of PDR_COMMAND (PPPoE destinations) at 0a16"),
    ("pxt 1", "pxt", "bit 0 (read_ready) of PXT_COMMAND (PPPoE translations) at 0a3a"),
    ("frame t 40 1 wan 0 low", "tx", "bit 1 (done) of FRAME_TX_COMMAND (frame buffers) at 042b"),
    ("frame s 10", "status", "bit 1 (done) of FRAME_STATUS (frame buffers) at 0430"),
]


class Waits(board.BoardTest):
    def message(self, arguments, script=None):
        """The only line on standard error of a board that waits forever: nothing follows it,
        although many more looks are taken."""
        # pylint: disable=consider-using-with
        process = subprocess.Popen(
            [BOARD, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        self.addCleanup(support.end, process)
        if script:
            process.stdin.write(script)
            process.stdin.flush()
        line = process.stderr.readline().decode()
        used = support.processor_seconds(process)
        # Time for at least ten looks, each after 10,000 loads.
        self.wait_for(lambda: support.processor_seconds(process) > used + 0.05)
        os.set_blocking(process.stderr.fileno(), False)
        self.assertIsNone(process.stderr.read())
        process.kill()
        return line

    def test_engines(self):
        for command, engine, awaited in WAITS:
            with self.subTest(command):
                line = self.message(["--fault", "hang:" + engine, "-c", command])
                wanted = f"virtual-board: '{command}' waits for {awaited}, which is clear"
                self.assertEqual(line, wanted + " after 100000 loads" + WITHOUT_TERMINAL + "\n")

    def test_release(self):
        """The packet service releases a buffer between two commands."""
        path = self.path("port")
        self.start("--lan", "unix:" + path, "--fault", "hang:release")
        self.command(b"frame r = auto")
        self.connect(path).send(64 * b"\xff")
        line = self.board.stderr.readline().decode()
        awaited = "bit 2 (release_done) of FRAME_CONTROL (frame buffers) at 0427"
        self.assertTrue(line.startswith("virtual-board: 'packet service' waits for " + awaited), line)

    def test_word_that_is_never_a_number(self):
        command = "qos = 1 2 3 4 5 6 zz"
        line = self.message(["-c", command])
        wanted = f"virtual-board: '{command}' keeps reading a word that will never be a"
        wanted += " number; no register is involved" + WITHOUT_TERMINAL + "\n"
        self.assertEqual(line, wanted)

    def test_script_from_a_pipe(self):
        line = self.message(["--fault", "hang:l3"], b"l3 7\n\x03")
        self.assertIn("'l3 7' waits for bit 0 (read_ready) of L3_COMMAND", line)
        self.assertIn(WITHOUT_TERMINAL, line)

    def test_terminal(self):
        """Ctrl-C ends the wait; the next one is reported again."""
        terminal = support.Terminal(self)
        terminal.start([BOARD, "--fault", "hang:l3", "--fault", "hang:arp"])
        terminal.screen.until(BANNER + PROMPT)
        for name, register in ((b"L3", b"L3_COMMAND (L3 routes) at 060d"),
                               (b"ARP", b"ARP_COMMAND (ARP table) at 063b")):
            line = name + b" 5"
            terminal.type(line + b"\n")
            terminal.screen.shows(
                line + b"\r\n\r\nvirtual-board: '" + line + b"' waits for bit 0 (read_ready) of "
                + register + b", which is clear after 100000 loads; Ctrl-C ends the wait\r\n"
            )
            terminal.type(b"\x03")
            terminal.screen.shows(name + b" Read failed\n\r" + PROMPT)
        terminal.type(b"exit\n")
        self.assertEqual(terminal.status(), 0)

    def test_pseudo_terminal(self):
        link = self.path("console")
        # pylint: disable=consider-using-with
        process = subprocess.Popen(
            [BOARD, "--pty", link, "--fault", "hang:l3"], stderr=subprocess.PIPE
        )
        self.addCleanup(support.end, process)
        process.stderr.readline()
        console = os.open(link, os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, console)
        os.write(console, b"l3 5\r")
        self.assertIn(b"; Ctrl-C ends the wait\n", process.stderr.readline())
        os.write(console, b"\x03exit\r")
        self.assertEqual(process.wait(support.DEADLINE), 0)

    def test_waits_with_an_end_of_their_own(self):
        """Waits for dead PHYs and resets end after a fixed number of looks."""
        options = ("--fault", "hang:mii", "--fault", "hang:reset", "--fault", "slow:l3:99000")
        commands = [f"-c{line}" for line in ("mii 1 1", "maccfg wan", "reset cpu", "l3 5")]
        done = support.run([BOARD, *options, *commands])
        self.assertEqual((done.returncode, done.stderr), (4, b""))

    def test_trace_is_not_changed_by_the_look(self):
        traces = []
        for loads in (99_000, 130_000):
            with open(self.path("out"), "wb"):
                arguments = ["--fault", f"slow:l3:{loads}", "--trace", self.path("out")]
                done = support.run([BOARD, *arguments, "-c", "l3 5"])
            self.assertEqual((done.returncode, done.stderr.count(b"\n")), (0, loads // 100_000))
            with open(self.path("out"), encoding="ascii") as trace:
                traces.append(trace.read())
        polls = [re.search(r"^r8 060d 02 x(\d+)", trace, re.MULTILINE)[1] for trace in traces]
        self.assertEqual(traces[0].replace(polls[0], polls[1]), traces[1])
        self.assertEqual(int(polls[1]) - int(polls[0]), 31_000)


if __name__ == "__main__":
    support.main()
