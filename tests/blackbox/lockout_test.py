"""Whatever the hardware does, Ctrl-C returns the operator of a terminal to the prompt."""

import os
import socket
import struct
import subprocess
import tempfile
import time
import unittest
from typing import NamedTuple

import frames
import launcher
import support
from support import PROMPT, START, UNKNOWN

CTRL_C = b"\x03"

# A line made void by its Ctrl-D is where too much was typed in a wait.
VOID = b"\x04\r\n" + PROMPT

# Seconds from Ctrl-C to the prompt.
LONGEST = 0.5


class Wait(NamedTuple):
    """A command that waits for an engine that never finishes."""

    engine: str
    command_byte: int
    line: bytes
    given_up: bytes

    # Both ready bits of the table engines. The frame engines check none before they start.
    READY = b"\x03"
    FRAME_ENGINES = range(0x420, 0x440)


WAITS = [
    Wait("l3", 0x60D, b"l3 0", b"L3 Read failed\n\r"),
    Wait("l3", 0x60D, b"l3 1 = 10.1.2.0 18 10.1.2.1 lan 0 0", b"L3 Write failed\n\r"),
    Wait("l3", 0x60D, b"l3 d 0 40", b"L3 Delete failed\n\r"),
    Wait("l3", 0x60D, b"l3 c", b"L3 ReadCounter failed\n\r"),
    Wait("l3", 0x60D, b"l3 o =", b"L3 ClearOverflow failed\n\r"),
    Wait("mcast", 0x621, b"mcast 0", b"MCAST Read failed\n\r"),
    Wait("mcast", 0x621, b"mcast c = 0", b"MCAST WriteCounter failed\n\r"),
    Wait("arp", 0x63B, b"arp 0", b"ARP Read failed\n\r"),
    Wait("arp", 0x63B, b"arp d 0", b"ARP Delete failed\n\r"),
    Wait("nat", 0x51C, b"nat 0", b"NAT Read failed\n\r"),
    Wait("nat", 0x51C, b"nat h 10.0.0.1 50", b"NAT Hash Read failed\n\r"),
    Wait("nat", 0x51C, b"nat d h 10.0.0.1 50", b"NAT Hash Delete failed\n\r"),
    Wait("cls", 0x720, b"clsfr 0", b"CLS Read failed\n\r"),
    Wait("cls", 0x720, b"clsfr c", b"CLS ReadCounter failed\n\r"),
    Wait("sc", 0x85C, b"sc lan", b"SC BatchRead failed\n\r"),
    Wait("sc", 0x85C, b"sc c lan", b"SC ClearAll failed\n\r"),
    Wait("pst", 0xA0F, b"pst 0", b"PST Read failed\n\r"),
    # These two reads do not check that the engine is ready: a list must not wait once per entry.
    Wait("pdr", 0xA16, b"pdr 0 40", b"PDR Read failed\n\r"),
    Wait("pxt", 0xA3A, b"pxt 0 40", b"PXT Read failed\n\r"),
    Wait("tx", 0x42B, b"frame t 40 1 lan 0 low", b"MAC Tx failed\n\r"),
    Wait("status", 0x430, b"frame s", b"MAC TxBufferStatus failed\n\r"),
]

# Commands whose waits end by themselves although nothing answers.
BOUNDED = [
    ("reset", b"reset hw", b"RESET HARDWARE\n\r"),
    ("reset", b"reset cpu", b"RESET CPU\n\r"),
    ("mii", b"mii 2 1", b"MII Read failed\n\r"),
    ("mii", b"mii 2 0 = 8000", b"MII Write failed\n\r"),
]

# A no_buf word that is not a number is parsed again forever; the end is a usage error.
ENDLESS_LINE = b"qos = 1 2 3 4 5 6 zz"
USAGE = b"Invalid Command\n\r  qos "

PACKET = frames.frame(64)


class Operator:
    """What both programs are put through; a mixin of test cases with a terminal."""

    def enter(self, line):
        """Enters a line. The end of its echo shows that the monitor looks at the console while
        it waits, as nothing else would have flushed it."""
        self.terminal.type(line + b"\r")
        self.terminal.screen.shows(line + b"\r\n")

    def give_up(self, given_up, keys=CTRL_C):
        """Ctrl-C ends the wait with exactly that text, in time."""
        begin = time.monotonic()
        self.terminal.type(keys)
        self.terminal.screen.shows(given_up + PROMPT)
        self.assertLess(time.monotonic() - begin, LONGEST)

    def still_works(self):
        self.terminal.type(b"zz\r")
        self.terminal.screen.shows(b"zz\r\n" + UNKNOWN + PROMPT)

    def check_wait(self, wait):
        self.enter(wait.line)
        self.give_up(wait.given_up)
        self.still_works()

    def check_endless_arguments(self):
        self.enter(ENDLESS_LINE)
        begin = time.monotonic()
        self.terminal.type(CTRL_C)
        shown = self.terminal.screen.until(PROMPT)
        self.assertLess(time.monotonic() - begin, LONGEST)
        self.assertTrue(shown.startswith(USAGE), shown)
        self.still_works()


def slow(engine, seconds=1):
    """The fault with which an operation of the engine takes about that long on this machine."""
    sample = 10_000_000
    begin = time.monotonic()
    support.run([support.program("VIRTUAL_BOARD"), "--fault", f"slow:l3:{sample}", "-c", "l3 0"])
    return f"slow:{engine}:{int(sample * seconds / (time.monotonic() - begin))}"


class VirtualBoard(Operator, unittest.TestCase):
    def start(self, *options):
        self.terminal = support.Terminal(self)
        # The board's own messages would appear between the monitor's lines.
        command = [support.program("VIRTUAL_BOARD"), *options]
        self.terminal.start(command, stderr=subprocess.DEVNULL)
        self.terminal.screen.until(START)

    def capture(self, count):
        """The port option that brings in that many frames."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "in")
        frames.write_pcap(path, count * [PACKET])
        return "pcap:" + path

    def test_waits(self):
        for wait in WAITS:
            with self.subTest(wait.line):
                self.start("--fault", "hang:" + wait.engine)
                self.check_wait(wait)

    def test_with_a_trace(self):
        """Each look at the engine costs more then."""
        self.start("--fault", "hang:l3", "--trace", "/dev/null")
        self.check_wait(WAITS[0])

    def test_bounded_waits(self):
        for engine, line, shown in BOUNDED:
            with self.subTest(line):
                self.start("--fault", "hang:" + engine)
                self.enter(line)
                self.give_up(shown, b"")
                self.still_works()

    def test_port_whose_phy_is_dead(self):
        """A PHY that cannot be read counts as 0."""
        self.start("--fault", "hang:mii")
        begin = time.monotonic()
        self.terminal.type(b"maccfg wan\r")
        self.terminal.screen.until(PROMPT)
        self.assertLess(time.monotonic() - begin, LONGEST)

    def test_endless_arguments(self):
        self.start()
        self.check_endless_arguments()

    def test_release_shows_the_frame_first(self):
        self.start("--fault", "hang:release", "--lan", self.capture(1))
        self.enter(b"frame r")
        # Another station's address.
        self.terminal.screen.shows(b"Packet length=0x040    reason=0x04\n\r")
        self.terminal.screen.shows(frames.dump(frames.buffer_of(0), PACKET))
        self.give_up(b"")
        self.still_works()

    def test_packet_service_takes_a_key_after_each_ctrl_c(self):
        """Each frame waits for its release in vain; between two of them a key gets through."""
        self.start("--fault", "hang:release", "--lan", self.capture(100))
        self.enter(b"frame r = auto")
        self.terminal.screen.shows(PROMPT)
        line = b"frame r = manual\r"
        for key in line:
            self.terminal.screen.until(b"Packet length=0x040")
            self.terminal.type(CTRL_C + bytes([key]))
        # The service runs once more before the command does.
        self.terminal.screen.until(b"Packet length=0x040")
        self.terminal.type(CTRL_C)
        self.terminal.screen.until(PROMPT)
        self.still_works()

    def test_packet_service_that_cannot_forward(self):
        for engine, told in (("status", b"Fail to allocate Tx buffer"), ("tx", b"Tx fail")):
            with self.subTest(engine):
                self.start("--fault", "hang:" + engine, "--lan", self.capture(1))
                self.enter(b"frame r = forward")
                # The prompt may be flushed by the wait only.
                self.terminal.screen.shows(PROMPT)
                begin = time.monotonic()
                self.terminal.type(CTRL_C)
                self.terminal.screen.until(told)
                self.assertLess(time.monotonic() - begin, LONGEST)
                self.terminal.type(b"\r")
                self.terminal.screen.until(b"\r\n" + PROMPT)
                self.still_works()

    def test_typed_ahead_is_kept_without_ctrl_c(self):
        self.start("--fault", "slow:l3:2000000")
        self.enter(b"l3 0")
        self.terminal.type(b"kept\r")
        self.terminal.screen.shows(support.EMPTY_ROUTE % 0 + PROMPT)
        self.terminal.screen.shows(b"kept\r\n" + UNKNOWN + PROMPT)

    def check_too_much(self, last, later, answered):
        """During a wait 300 lines of 13 characters are typed, and `last`; 236 of them are 3072
        characters but four. The wait is over when they have been shown; then `later` is typed."""
        self.start("--fault", slow("l3"))
        self.enter(b"l3 0")
        lines = [b"zz %09d\r" % number for number in range(300)]
        self.terminal.type(b"".join(lines) + last)
        self.terminal.screen.shows(support.EMPTY_ROUTE % 0 + PROMPT)
        for line in lines[:236]:
            self.terminal.screen.shows(line + b"\n" + UNKNOWN + PROMPT)
        self.terminal.screen.shows(VOID)
        self.terminal.type(later)
        self.terminal.screen.shows(answered)
        self.still_works()

    def test_too_much_typed_ahead_is_lost_in_whole_lines(self):
        self.check_too_much(b"", b"kept\r", b"kept\r\n" + UNKNOWN + PROMPT)

    def test_all_that_may_be_typed_ahead(self):
        """256 lines of 12 characters are the 3072 that are kept."""
        self.start("--fault", slow("l3"))
        self.enter(b"l3 0")
        lines = [b"zz %08d\r" % number for number in range(256)]
        self.terminal.type(b"".join(lines))
        self.terminal.screen.shows(support.EMPTY_ROUTE % 0 + PROMPT)
        for line in lines:
            self.terminal.screen.shows(line + b"\n" + UNKNOWN + PROMPT)
        self.still_works()

    def test_rest_of_a_line_whose_beginning_is_lost(self):
        self.check_too_much(b"zz zz", b"zz\rkept\r", b"kept\r\n" + UNKNOWN + PROMPT)

    def test_too_much_without_a_line_end(self):
        self.start("--fault", slow("l3"))
        self.enter(b"l3 0")
        self.terminal.type(4000 * b"x")
        self.terminal.screen.shows(support.EMPTY_ROUTE % 0 + PROMPT + VOID)
        self.terminal.type(b"x\rkept\r")
        self.terminal.screen.shows(b"kept\r\n" + UNKNOWN + PROMPT)

    def test_too_much_after_the_beginning_of_a_line(self):
        """The editor holds it when a frame makes the packet service wait."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, "lan")
        self.start("--fault", slow("release"), "--lan", "unix:" + path)
        self.enter(b"frame r = auto")
        self.terminal.screen.shows(PROMPT)
        self.terminal.type(b"reg 102 2")
        self.terminal.screen.shows(b"reg 102 2")
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as peer:
            peer.connect(path)
            peer.send(PACKET)
            self.terminal.screen.until(frames.dump(frames.buffer_of(0), PACKET))
            self.terminal.type(4000 * b" ")
            self.terminal.screen.shows(VOID)
            self.terminal.type(b" \r = 77\r")
            self.terminal.screen.shows(b" = 77\r\n" + UNKNOWN + PROMPT)

    def test_keys_get_through_between_waits_of_the_service(self):
        """Each frame waits in vain; a key typed after a Ctrl-C is taken before the next."""
        self.start("--fault", "hang:tx", "--lan", self.capture(100))
        self.enter(b"frame r = forward")
        for key in b"frame r = manual\r":
            time.sleep(0.05)
            self.terminal.type(CTRL_C)
            time.sleep(0.05)
            self.terminal.type(bytes([key]))
        self.terminal.type(CTRL_C + b"zz\r")
        self.terminal.screen.until(b"zz\r\n" + UNKNOWN + PROMPT)

    def test_ctrl_c_after_too_much(self):
        self.start("--fault", "hang:l3")
        self.enter(b"l3 0")
        self.terminal.type(4000 * b"x")
        self.give_up(b"L3 Read failed\n\r", CTRL_C + b"kept\r")
        self.terminal.screen.shows(b"kept\r\n" + UNKNOWN + PROMPT)

    def test_typed_ahead_of_ctrl_c_is_discarded(self):
        self.start("--fault", "hang:l3")
        self.enter(b"l3 0")
        self.give_up(b"L3 Read failed\n\r", b"lost\r" + CTRL_C + b"kept\r")
        self.terminal.screen.shows(b"kept\r\n" + UNKNOWN + PROMPT)

    def test_typed_with_the_line(self):
        self.start("--fault", "hang:l3")
        begin = time.monotonic()
        self.terminal.type(b"l3 0\r" + CTRL_C)
        self.terminal.screen.shows(b"l3 0\r\nL3 Read failed\n\r" + PROMPT)
        self.assertLess(time.monotonic() - begin, LONGEST)

    def test_after_a_lot_of_input(self):
        self.start("--fault", "hang:l3")
        self.enter(b"l3 0")
        for _ in range(40):
            self.terminal.type(1000 * b"x")
        self.give_up(b"L3 Read failed\n\r")

    def test_on_a_pseudo_terminal_of_its_own(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        link = os.path.join(folder.name, "console")
        self.terminal = support.Terminal(self)
        board = [support.program("VIRTUAL_BOARD"), "--pty", link, "--fault", "hang:l3"]
        self.terminal.start(board)
        self.terminal.screen.until(link.encode())
        self.terminal.user_side = os.open(link, os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, self.terminal.user_side)
        self.terminal.screen = support.Screen(self, self.terminal.user_side)
        self.terminal.screen.shows(START)
        self.check_wait(WAITS[0])


class DebugMonitor(Operator, launcher.RealMonitorTest):
    """Memory that nothing changes is hardware that hangs."""

    def test_waits(self):
        for wait in WAITS:
            with self.subTest(wait.line):
                ready = b"\0" if wait.command_byte in wait.FRAME_ENGINES else wait.READY
                self.store(wait.command_byte, ready)
                self.start_monitor()
                self.check_wait(wait)
                self.terminal.type(b"exit\r")
                self.terminal.screen.shows(b"exit\r\n")
                self.expect_end(0)

    def test_bounded_waits(self):
        self.store(0x408, b"\x40\x00")
        self.start_monitor()
        for engine, line, shown in BOUNDED:
            with self.subTest(line):
                self.enter(line)
                self.give_up(shown, b"")

    def test_reset_delay_ends_by_itself(self):
        self.store(0x100, b"\x04")
        self.start_monitor()
        self.enter(b"reset hw")
        self.terminal.screen.shows(b"RESET HARDWARE\n\r" + PROMPT)

    def test_endless_arguments(self):
        self.start_monitor()
        self.check_endless_arguments()

    def test_first_entry_is_shown_while_the_second_waits(self):
        self.store(0x60D, b"\x03")
        # A list shows valid routes only: bit 4, with the port LAN.
        self.store(0x60C, b"\x12")
        self.start_monitor()
        self.terminal.type(b"l3 0 2\r")
        self.answer_engine(0x60D, b"\x02", b"\x03")
        shown = self.terminal.screen.until(b"\n\r\n\r")
        self.assertTrue(shown.startswith(b"l3 0 2\r\nINDEX:  0\tVALID\n\r"), shown)
        self.give_up(b"L3 Read failed\n\r")

    def test_release_shows_the_frame_first(self):
        buffer = 0x01000000 + 16 * 2048
        self.store(0x10C, b"\x01\x00")
        self.store(0x210, b"\x00\x10")
        self.store(0x426, b"\x10")
        # The length is in the processor's own byte order.
        os.pwrite(self.memory, struct.pack("=H7xBB", len(PACKET), 2, 4), buffer)
        os.pwrite(self.memory, PACKET, buffer + 32)
        self.start_monitor()
        self.enter(b"frame r")
        self.terminal.screen.shows(b"Packet length=0x040    reason=0x04\n\r")
        self.terminal.screen.shows(frames.dump(buffer + 32, PACKET))
        self.give_up(b"")
        self.still_works()


if __name__ == "__main__":
    support.main()
