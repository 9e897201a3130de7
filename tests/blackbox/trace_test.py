"""The bus accesses that virtual-board writes down."""

import os
import re
import signal
import subprocess
import tempfile
import unittest

import frames
import support

BOARD = support.program("VIRTUAL_BOARD")

IDLE = "  L3_COMMAND counter=0 write=0 start=0 write_ready=1 read_ready=1\n"
READ_STARTED = "  L3_COMMAND counter=0 write=0 start=1 write_ready=1 read_ready=0\n"
READ_RUNNING = "  L3_COMMAND counter=0 write=0 start=0 write_ready=1 read_ready=0\n"

MARK = "# l3 5\n"

# l3 5: slot, busy test, start (old | 04) & e6, end of the pulse, wait; then the registers. The
# model completes at the second load after the start, which is the first one of the wait.
LISTING = (
    "w8 060e 05  L3_INDEX\n"
    "r8 060d 03 x2" + IDLE + "w8 060d 06" + READ_STARTED + "r8 060d 06" + READ_STARTED +
    "w8 060d 02" + READ_RUNNING + "r8 060d 03" + IDLE
)
EMPTY = (
    "r32 0600 00000000  L3_IP\n"
    "r32 0608 00000000  L3_NEXT_HOP\n"
    "r8 0604 00  L3_MASK\n"
    "r8 060c 00  L3_FLAGS wan_mac=0 direct=0 valid=0 port=0\n"
    "r8 0605 00  L3_ENCAPSULATION session=0 pppoe=0\n"
)

# l3 5 = 10.1.2.0 18 10.1.2.1 lan 1 3 direct: the registers, then the step (old | 0c) & ed.
WRITING = (
    "lock\n"
    "w8 060e 05  L3_INDEX\n"
    "w32 0600 0a010200  L3_IP\n"
    "w32 0608 0a010201  L3_NEXT_HOP\n"
    "w8 0604 18  L3_MASK\n"
    "w8 060c 32  L3_FLAGS wan_mac=0 direct=1 valid=1 port=2\n"
    "w8 0605 07  L3_ENCAPSULATION session=3 pppoe=1\n"
    "r8 060d 03 x2" + IDLE +
    "w8 060d 0d  L3_COMMAND counter=0 write=1 start=1 write_ready=0 read_ready=1\n"
    "r8 060d 0d  L3_COMMAND counter=0 write=1 start=1 write_ready=0 read_ready=1\n"
    "w8 060d 09  L3_COMMAND counter=0 write=1 start=0 write_ready=0 read_ready=1\n"
    "unlock\n"
    "r8 060d 0b  L3_COMMAND counter=0 write=1 start=0 write_ready=1 read_ready=1\n"
)
# The read-back begins with the direction bit as the write has left it.
READING_BACK = (
    "w8 060e 05  L3_INDEX\n"
    "r8 060d 0b x2  L3_COMMAND counter=0 write=1 start=0 write_ready=1 read_ready=1\n"
    "w8 060d 06" + READ_STARTED + "r8 060d 06" + READ_STARTED +
    "w8 060d 02" + READ_RUNNING + "r8 060d 03" + IDLE +
    "r32 0600 0a010200  L3_IP\n"
    "r32 0608 0a010201  L3_NEXT_HOP\n"
    "r8 0604 18  L3_MASK\n"
    "r8 060c 32  L3_FLAGS wan_mac=0 direct=1 valid=1 port=2\n"
    "r8 0605 07  L3_ENCAPSULATION session=3 pppoe=1\n"
)

TX = "FRAME_TX_COMMAND "
RX = "FRAME_CONTROL "
# frame t 3 1 cpu 0 low: the address, then the driver. The buffer comes back as received.
TRANSMITTING = (
    "r16 010c 0100 x2  FRAME_BASE\n"
    "map 0100\n"
    "lock\n"
    "mw16 01000800 0003\n"
    "w8 042a 08  FRAME_TX_CONTROL high=0 class=0 port=8\n"
    "w8 0429 01  FRAME_TX_HANDLE\n"
    "r8 042b 02  " + TX + "done=1 start=0\n"
    "w8 042b 03  " + TX + "done=1 start=1\n"
    "r8 042b 01  " + TX + "done=0 start=1\n"
    "r8 042b 03 x99  " + TX + "done=1 start=1\n"
    "w8 042b 02  " + TX + "done=1 start=0\n"
    "unlock\n"
    "r8 042b 02  " + TX + "done=1 start=0\n"
)
# frame r: the header, acknowledge, the dump, release, the event.
RECEIVING = (
    "r16 010c 0100  FRAME_BASE\n"
    "r16 0210 0010 x2  INT_STATUS frame_received=1\n"
    "map 0100\n"
    "r8 0426 10  FRAME_RX_HANDLE\n"
    "mr16 01008000 0003\n"
    "mr8 01008009 08\n"
    "mr8 0100800a 01\n"
    "lock\n"
    "r8 0427 04  " + RX + "release_done=1 rx_acknowledge=0 release_start=0\n"
    "w8 0427 06  " + RX + "release_done=1 rx_acknowledge=1 release_start=0\n"
    "r8 0427 06  " + RX + "release_done=1 rx_acknowledge=1 release_start=0\n"
    "w8 0427 04  " + RX + "release_done=1 rx_acknowledge=0 release_start=0\n"
    "unlock\n"
    "mr8 01008020 00\n"
    "mr8 01008021 00\n"
    "mr8 01008022 00\n"
    "r16 010c 0100  FRAME_BASE\n"
    "lock\n"
    "w8 0428 10  FRAME_RELEASE_HANDLE\n"
    "w8 0427 01  " + RX + "release_done=0 rx_acknowledge=0 release_start=1\n"
    "r8 0427 01  " + RX + "release_done=0 rx_acknowledge=0 release_start=1\n"
    "w8 0427 00  " + RX + "release_done=0 rx_acknowledge=0 release_start=0\n"
    "unlock\n"
    "r8 0427 04  " + RX + "release_done=1 rx_acknowledge=0 release_start=0\n"
    "lock\n"
    "w16 0210 0010  INT_STATUS frame_received=1\n"
    "unlock\n"
)


def script_file(text):
    """A script that is there as a whole: the board reads to its end before it prints."""
    file = tempfile.TemporaryFile()
    file.write(text)
    file.seek(0)
    return file


class TraceTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "trace")

    def trace(self):
        with open(self.path, encoding="ascii") as file:
            return file.read()

    def run_board(self, script, *options, status=0):
        done = support.run([BOARD, "--trace", self.path, *options], script)
        self.assertEqual(done.returncode, status)
        return self.trace()


class Content(TraceTest):
    maxDiff = None

    def test_listing(self):
        self.assertEqual(self.run_board(b"l3 5\n"), MARK + LISTING + EMPTY)

    def test_write_and_read_back(self):
        line = "l3 5 = 10.1.2.0 18 10.1.2.1 lan 1 3 direct\n"
        wanted = "# " + line + WRITING + READING_BACK
        self.assertEqual(self.run_board(line.encode()), wanted)

    def test_frame_buffer_memory(self):
        trace = self.run_board(b"frame t 3 1 cpu 0 low\nframe r\n")
        wanted = "# frame t 3 1 cpu 0 low\n" + TRANSMITTING + "# frame r\n" + RECEIVING
        self.assertEqual(trace, wanted)

    def test_parts_of_registers(self):
        trace = self.run_board(b"reg 103\nreg 60a = 7f\nreg 617\n")
        self.assertEqual(
            trace,
            # The model number is 5910.
            "# reg 103\n"
            "r8 0103 10  CHIP_MODEL[7:0]\n"
            "# reg 60a = 7f\n"
            "w8 060a 7f  L3_NEXT_HOP[15:8]\n"
            "r8 060a 7f  L3_NEXT_HOP[15:8]\n"
            "# reg 617\n"
            "r8 0617 00  L3_OVERFLOW[3]\n",
        )

    def test_no_register(self):
        trace = self.run_board(b"reg 1f00 = a5\n")
        self.assertEqual(trace, "# reg 1f00 = a5\nw8 1f00 a5\nr8 1f00 a5\n")

    def test_frame_that_is_sent(self):
        """The transmission is done at the second load after the start."""
        trace = self.run_board(b"frame t 40 1 lan 2 high\n")
        events = [line.split("  ")[0] for line in trace.splitlines()]
        wanted = ["# frame t 40 1 lan 2 high", "r16 010c 0100 x2", "map 0100", "lock"]
        wanted += ["mw16 01000800 0040", "w8 042a 62", "w8 0429 01", "r8 042b 02", "w8 042b 03"]
        wanted += ["r8 042b 01", "r8 042b 03 x99", "w8 042b 02", "unlock", "r8 042b 02"]
        self.assertEqual(events, wanted)
        self.assertIn("w8 042a 62  FRAME_TX_CONTROL high=1 class=2 port=2\n", trace)

    def test_frame_that_is_received(self):
        """In the first buffer for received frames: length, port, reason, then its bytes; the
        halfword is in the byte order of the processor."""
        with tempfile.NamedTemporaryFile() as capture:
            octets = frames.frame(64, frames.BROADCAST)
            frames.write_pcap(capture.name, [octets])
            trace = self.run_board(b"frame r\n", "--dmz", "pcap:" + capture.name)
        wanted = ["map 0100", "mr16 01008000 0040", "mr8 01008009 04", "mr8 0100800a 02"]
        wanted += [f"mr8 {0x01008020 + at:08x} {octet:02x}" for at, octet in enumerate(octets)]
        self.assertEqual([line for line in trace.splitlines() if line[0] == "m"], wanted)
        self.assertIn("r16 0210 0010 x2  INT_STATUS frame_received=1\n", trace)

    def test_exit_unlocks(self):
        self.assertEqual(self.run_board(b"exit\n"), "# exit\nunlock\n")

    def test_commands_are_named_before_their_first_access(self):
        """Once for each time they run, as edited, unless they touch nothing."""
        trace = self.run_board(b"zz\nl3 40\nreg 103  \nreg 103\nreg 105\b2 = 1 q\b\n\n")
        access = "r8 0103 10  CHIP_MODEL[7:0]\n"
        store = "w8 0102 01  CHIP_MODEL[15:8]\nr8 0102 59  CHIP_MODEL[15:8]\n"
        wanted = "# reg 103  \n" + access + "# reg 103\n" + access + "# reg 102 = 1 \n" + store
        self.assertEqual(trace, wanted)

    def test_unprintable_characters_stay_on_their_line(self):
        trace = self.run_board(b"version \r x\nexit \xff\t~\n")
        marks = [line for line in trace.splitlines() if line[0] == "#"]
        self.assertEqual(marks, ["# version ", "# exit \\xff\\x09~"])

    def test_packet_service_is_named_once_in_a_row(self):
        """It looks for frames between the characters of each line."""
        trace = self.run_board(b"frame r = auto\nreg 103\nreg 103\nframe r = manual\nreg 103\n")
        marks = [line for line in trace.splitlines() if line[0] == "#"]
        service = "# packet service"
        wanted = [service, "# reg 103", service, "# reg 103", service, "# reg 103"]
        self.assertEqual(marks, wanted)
        after = trace.splitlines()[1]
        self.assertEqual(after, "r16 010c 0100  FRAME_BASE")

    def test_slow_engine(self):
        """Fifty loads after the start: one ends the pulse, the others wait."""
        trace = self.run_board(b"l3 5\n", "--fault", "slow:l3:50")
        _, _, after_start = trace.partition("w8 060d 06")
        loads = re.findall(r"^r8 060d \w\w(?: x(\d+))?  ", after_start, re.MULTILINE)
        self.assertEqual(sum(int(times or 1) for times in loads), 50)

    def test_refused_line_touches_nothing(self):
        self.assertEqual(self.run_board(b"l3 40\nl3 0 = 1.2.3\n"), "")

    def test_old_content_is_replaced(self):
        self.run_board(b"l3 5\n")
        self.assertEqual(self.run_board(b"zz\n"), "")

    def test_equal_accesses_share_a_line(self):
        """What comes between, another value and another command keep them apart."""
        trace = self.run_board(b"reg 60c\n" + 3 * b"reg 60c = 1\n" + b"reg 60c 2\n")
        flags = "  L3_FLAGS wan_mac=0 direct=0 valid=0 port="
        step = "# reg 60c = 1\nw8 060c 01" + flags + "1\nr8 060c 01" + flags + "1\n"
        command = "  L3_COMMAND counter=0 write=0 start=0 write_ready=1 read_ready=1\n"
        wanted = "# reg 60c\nr8 060c 00" + flags + "0\n" + 3 * step
        wanted += "# reg 60c 2\nr8 060c 01" + flags + "1\nr8 060d 03" + command
        self.assertEqual(trace, wanted)

    def test_wait_that_never_ends(self):
        """One line however long it takes, and it is there when a signal comes."""
        for number in (signal.SIGTERM, signal.SIGQUIT):
            with self.subTest(number):
                # pylint: disable=consider-using-with
                board = subprocess.Popen(
                    [BOARD, "--trace", self.path, "--fault", "hang:l3", "-c", "l3 5"],
                    stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                    preexec_fn=support.die_quietly,
                )
                self.addCleanup(support.end, board)
                # The wait has gone on for a hundred thousand loads.
                self.assertIn(b"waits for bit 0", board.stderr.readline())
                board.send_signal(number)
                self.assertEqual(board.wait(support.DEADLINE), -number)
                first, _, last = self.trace().partition("w8 060d 02")
                self.assertEqual(MARK + LISTING, first + "w8 060d 02" + READ_RUNNING
                                 + "r8 060d 03" + IDLE)
                times = re.fullmatch(READ_RUNNING + r"r8 060d 02 x(\d+)" + READ_RUNNING, last)
                self.assertGreaterEqual(int(times[1]), 100_000)

    def test_reset_is_small(self):
        self.assertLess(len(self.run_board(b"reset hw\n")), 2000)

    def test_up_to_date_at_the_prompt(self):
        board = subprocess.Popen(
            [BOARD, "--trace", self.path], stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.addCleanup(support.end, board)
        screen = support.Screen(self, board.stdout.fileno())
        board.stdin.write(b"l3 5\n")
        board.stdin.flush()
        screen.until(b"\n\r\n\r" + support.PROMPT)
        # One more exchange: the trace follows the output.
        board.stdin.write(b"x")
        board.stdin.flush()
        screen.shows(b"x")
        self.assertEqual(self.trace(), MARK + LISTING + EMPTY)

    def test_complete_when_a_signal_ends_the_board(self):
        reader, writer = os.pipe()
        os.close(reader)
        with script_file(b"l3 5\n") as script, os.fdopen(writer, "wb") as output:
            arguments = [BOARD, "--trace", self.path]
            done = support.run(arguments, None, stdin=script, stdout=output)
        self.assertEqual(done.returncode, -signal.SIGPIPE)
        self.assertEqual(self.trace(), MARK + LISTING + EMPTY)


class Failure(unittest.TestCase):
    def run_session(self, trace, **options):
        """A session of two commands, complete in spite of the trace."""
        done = support.run([BOARD, "--trace", trace], b"l3 5\nzz\nexit\n", **options)
        self.assertEqual(
            done.stdout,
            support.START
            + b"l3 5\r\n"
            + support.EMPTY_ROUTE % 5
            + support.PROMPT
            + b"zz\r\n"
            + support.UNKNOWN
            + support.PROMPT
            + b"exit\r\n",
        )
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"\n"), 1)
        return done.stderr.decode()

    def test_full_disk(self):
        message = self.run_session("/dev/full")
        self.assertIn("'/dev/full': No space left on device", message)

    def test_closed_output_does_not_go_into_the_trace(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "trace")
            closed = ["sh", "-c", 'exec "$@" >&-', "sh", BOARD, "--trace", path]
            with script_file(b"l3 5\n") as script:
                self.assertEqual(support.run(closed, None, stdin=script).returncode, 1)
            with open(path, encoding="ascii") as trace:
                self.assertEqual(trace.read(), MARK + LISTING + EMPTY)

    def test_reader_goes_away(self):
        reader, writer = os.pipe()
        trace = f"/proc/self/fd/{writer}"
        os.set_inheritable(writer, True)
        os.close(reader)
        self.addCleanup(os.close, writer)
        self.assertIn("Broken pipe", self.run_session(trace, pass_fds=[writer]))

    def test_limit_of_the_file_size(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "trace")
            limited = ["sh", "-c", 'ulimit -f 1; exec "$@"', "sh", BOARD, "--trace", path]
            done = support.run(limited, b"l3 c\nzz\n")
            self.assertEqual(done.returncode, 1)
            self.assertIn(b"File too large", done.stderr)
            self.assertTrue(done.stdout.endswith(support.UNKNOWN + support.PROMPT))
            # A block is 512 bytes for some shells, 1024 for others.
            self.assertIn(os.path.getsize(path), (512, 1024))


if __name__ == "__main__":
    support.main()
