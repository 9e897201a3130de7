"""virtual-board with captures on its ports."""

import os
import re
import subprocess
import time

import board
import frames
import support
from board import BOARD
from support import PROMPT, START

SET_MAC = b"macaddr m cpu 021122334455\n"
MAC_IS_SET = b"macaddr m cpu 021122334455\r\nCPUMAC: 021122334455" + PROMPT
AUTO = b"frame r = auto\n"
AUTO_IS_ON = b"frame r = auto\r\n" + PROMPT


def printed(octets):
    """What a board prints for these frames, from its start on."""
    numbered = (frames.printed(number, one) for number, one in enumerate(octets))
    return START + MAC_IS_SET + AUTO_IS_ON + b"".join(numbered)


class Replay(board.BoardTest):
    def setUp(self):
        super().setUp()
        self.capture = self.path("in")

    def print_all(self, traffic):
        done = support.run([BOARD, "--lan", "pcap:" + self.capture], SET_MAC + AUTO)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        # Compared as a whole first: the megabytes would take long to show.
        if done.stdout != printed(traffic):
            at = len(os.path.commonprefix([done.stdout, printed(traffic)]))
            self.fail(f"differs at byte {at}: {done.stdout[max(0, at - 40) : at + 100]}")

    def test_auto_prints_every_frame(self):
        traffic = frames.mixed_traffic(1200)
        self.assertEqual({min(map(len, traffic)), max(map(len, traffic))}, {60, 1514})
        for write in (frames.write_pcap, frames.write_pcapng):
            with self.subTest(write.__name__):
                write(self.capture, traffic)
                self.print_all(traffic)

    def test_other_byte_order_and_several_interfaces(self):
        traffic = frames.mixed_traffic(10)
        frames.write_pcap(self.capture, traffic, order=">")
        self.print_all(traffic)
        frames.write_pcapng(self.capture, traffic, (1, 1, 1))
        self.print_all(traffic)

    def test_forward_sends_every_frame_out_of_wan(self):
        traffic = frames.mixed_traffic(1200)
        frames.write_pcap(self.capture, traffic)
        ports = ["--lan", "pcap:" + self.capture, "--wan", "pcap:," + self.path("out")]
        record = self.path("record")
        done = support.run([BOARD, *ports, "--capture", record], b"frame r = forward\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(done.stdout, START + b"frame r = forward\r\n" + PROMPT)
        self.assertTrue(frames.read_pcap(self.path("out")) == traffic)
        recorded = frames.read_pcapng(record)
        self.assertTrue([one for *port, one in recorded if port == ["lan", "in"]] == traffic)
        self.assertTrue([one for *port, one in recorded if port == ["wan", "out"]] == traffic)
        self.assertEqual(len(recorded), 2 * len(traffic))

    def test_wan_frames_go_out_of_wan_again(self):
        traffic = frames.mixed_traffic(5)
        frames.write_pcap(self.capture, traffic)
        port = f"pcap:{self.capture},{self.path('out')}"
        done = support.run([BOARD, "--wan", port], b"frame r = forward\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(frames.read_pcap(self.path("out")), traffic)

    def test_one_frame_for_each_key(self):
        """A pass of the monitor takes a key and then at most one frame."""
        traffic = [frames.frame(60, number=number) for number in range(20)]
        frames.write_pcap(self.capture, traffic)
        keys = b"q" * 25
        done = support.run(
            [BOARD, "--lan", "pcap:" + self.capture], SET_MAC + AUTO + keys
        )
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        shown = b"".join(b"q" + frames.printed(*numbered) for numbered in enumerate(traffic))
        self.assertEqual(done.stdout, START + MAC_IS_SET + AUTO_IS_ON + shown + b"q" * 5)

    def test_a_port_that_is_down_keeps_its_capture_waiting(self):
        traffic = [frames.frame(60, number=number) for number in range(3)]
        frames.write_pcap(self.capture, traffic)
        self.start("--lan", "pcap:" + self.capture)
        self.command(SET_MAC.strip())
        # Bit 3 of the LAN port's control byte is its link.
        self.command(b"reg 1 = 00")
        self.type(AUTO + b"zz\n")
        self.screen.shows(AUTO_IS_ON + b"zz\r\n" + support.UNKNOWN + PROMPT)
        up = b"reg 1 = 08"
        self.type(up + b"\n")
        answer = b"\r\n50000000: .. 08 " + 14 * b".. " + b"\n\r"
        shown = b"".join(frames.printed(*numbered) for numbered in enumerate(traffic))
        self.screen.shows(up + answer + PROMPT + shown)


class Timing(board.BoardTest):
    SPACING = 0.2
    # The first may come before the script; where these are sent does not depend on addresses.
    TRAFFIC = [frames.frame(60, frames.BROADCAST, number) for number in range(3)]

    def test_realtime_keeps_the_spacing(self):
        traffic = self.TRAFFIC
        frames.write_pcap(self.path("in"), traffic, self.SPACING)
        begin = time.monotonic()
        self.start("--lan", "pcap:" + self.path("in"), "--realtime")
        self.command(AUTO.strip())
        for _ in traffic:
            self.screen.until(b"Packet length=0x03c")
        took = time.monotonic() - begin
        # Not early, and not late by more than a busy machine.
        self.assertGreater(took, 2 * self.SPACING)
        self.assertLess(took, 2 * self.SPACING + 2)

    def test_a_script_waits_for_the_end(self):
        traffic = self.TRAFFIC
        frames.write_pcap(self.path("in"), traffic, self.SPACING)
        arguments = [BOARD, "--lan", "pcap:" + self.path("in")]
        times = []
        for options in ([], ["--realtime"]):
            begin = time.monotonic()
            done = support.run([*arguments, *options], SET_MAC + AUTO)
            times.append(time.monotonic() - begin)
            self.assertEqual(done.stdout, printed(traffic))
        self.assertGreater(times[1], 2 * self.SPACING)

    def test_times_that_no_clock_shows(self):
        """Frames that go back in time come at once."""
        traffic = self.TRAFFIC
        path = self.path("in")
        frames.write_pcap(path, traffic)
        with open(path, "r+b") as file:
            file.seek(24 + 16 + 60)
            file.write(bytes(8))
        done = support.run([BOARD, "--lan", "pcap:" + path, "--realtime"], SET_MAC + AUTO)
        self.assertEqual(done.stdout, printed(traffic))


class BadCapture(board.BoardTest):
    def setUp(self):
        super().setUp()
        self.good = [frames.frame(60 + number, number=number) for number in range(3)]
        self.capture = self.path("in")

    def expect_after_good_frames(self, number, reason):
        """The frames before the bad one are printed, and the board ends with a complaint."""
        done = support.run([BOARD, "--lan", "pcap:" + self.capture], SET_MAC + AUTO)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, printed(self.good))
        message = done.stderr.decode()
        self.assertRegex(message, f"^virtual-board: pcap:{re.escape(self.capture)}: frame {number}")
        self.assertIn(reason, message)
        self.assertEqual(message.count("\n"), 1)

    def test_cut_short_in_a_frame(self):
        frames.write_pcap(self.capture, [*self.good, frames.frame(100)])
        os.truncate(self.capture, os.path.getsize(self.capture) - 1)
        self.expect_after_good_frames(4, "truncated")

    def test_cut_short_in_a_header(self):
        frames.write_pcap(self.capture, [*self.good, b""])
        os.truncate(self.capture, os.path.getsize(self.capture) - 1)
        self.expect_after_good_frames(4, "truncated")

    def test_cut_short_pcapng(self):
        frames.write_pcapng(self.capture, [*self.good, frames.frame(100)])
        os.truncate(self.capture, os.path.getsize(self.capture) - 1)
        self.expect_after_good_frames(4, "truncated")

    def test_too_long_for_a_buffer(self):
        """2,016 bytes are taken, though the chip's MAC refuses them; one more is not."""
        unseen = frames.frame(2016)
        frames.write_pcap(self.capture, [*self.good, unseen, frames.frame(2017), self.good[0]])
        self.expect_after_good_frames(5, "longer than 2016 bytes")

    def test_frame_not_captured_whole(self):
        frames.write_pcap(self.capture, [*self.good, frames.frame(60)])
        with open(self.capture, "r+b") as file:
            file.seek(-(60 + 4), os.SEEK_END)
            file.write(b"\x3d\0\0\0")
        self.expect_after_good_frames(4, "not captured whole")

    def test_other_link_type_further_on(self):
        frames.write_pcapng(self.capture, [*self.good, self.good[0]], (1, 1, 1, 113))
        self.expect_after_good_frames(4, "type 113")

    def expect_no_start(self, port, *pieces):
        done = support.run([BOARD, "--lan", port], SET_MAC + AUTO)
        message = done.stderr.decode()
        self.assertEqual((done.returncode, done.stdout), (1, b""), message)
        self.assertTrue(message.startswith("virtual-board: "), message)
        self.assertEqual(message.count("\n"), 1)
        for piece in pieces:
            self.assertEqual(message.count(piece), 1, message)

    def test_other_link_type(self):
        frames.write_pcap(self.capture, self.good, link_type=113)
        reason = "frame 1: the link type is not Ethernet"
        self.expect_no_start("pcap:" + self.capture, self.capture, reason)

    def test_no_capture(self):
        for content in (b"", b"\xd4\xc3\xb2", b"This is not a capture, but text.\n" * 10):
            with open(self.capture, "wb") as file:
                file.write(content)
            self.expect_no_start("pcap:" + self.capture, self.capture)

    def test_no_file(self):
        self.expect_no_start("pcap:" + self.capture, self.capture, "No such file")
        out = self.path("missing/out")
        self.expect_no_start("pcap:," + out, out, "No such file")

    def test_full_disk(self):
        self.expect_no_start("pcap:,/dev/full", "'/dev/full': No space left")
        done = support.run([BOARD, "--capture", "/dev/full"], b"exit\n")
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertIn(b"cannot write the capture '/dev/full': No space left", done.stderr)


class OneFile(board.BoardTest):
    """One file is not used in two ways."""

    def setUp(self):
        super().setUp()
        self.file = self.path("file")
        self.good = [frames.frame(64, number=i) for i in range(3)]
        frames.write_pcap(self.file, self.good)

    def refused(self, *options):
        done = support.run([BOARD, *options], AUTO)
        self.assertEqual((done.returncode, done.stdout), (2, b""), done.stderr)
        self.assertIn(b"are one file", done.stderr)

    def test_input_is_not_overwritten(self):
        pcap, elsewhere = "pcap:" + self.file, os.path.join(self.path("."), "file")
        link = self.path("link")
        os.symlink(self.file, link)
        for options in (
            ["--lan", f"{pcap},{self.file}"], ["--lan", pcap, "--wan", "pcap:," + elsewhere],
            ["--wan", pcap, "--capture", link], ["--dmz", pcap, "--trace", self.file],
            ["--wan", pcap, "--uart", self.file], ["--load", self.file, "--trace", self.file],
            ["--wan", pcap, "--save", self.file],
        ):
            with self.subTest(options):
                self.refused(*options)
        self.assertEqual(frames.read_pcap(self.file), self.good)

    def test_outputs_do_not_overwrite_each_other(self):
        new = self.path("new")
        same = os.path.join(self.path("."), "new")
        for options in (
            ["--lan", "pcap:," + new, "--wan", "pcap:," + same], ["--trace", new, "--uart", same],
            ["--capture", new, "--save", same], ["--trace", new, "--capture", new],
        ):
            with self.subTest(options):
                self.refused(*options)
        self.assertFalse(os.path.exists(new))

    def test_what_may_be_shared(self):
        pcap = "pcap:" + self.file
        for options in (
            ["--lan", pcap, "--wan", pcap], ["--trace", "/dev/null", "--uart", "/dev/null"],
        ):
            with self.subTest(options):
                self.assertEqual(support.run([BOARD, *options], b"exit\n").returncode, 0)


class GoneReader(board.BoardTest):
    """A pipe whose reader goes away is a file that can no longer be written."""

    def test_outputs(self):
        pipe, capture, lines = self.path("pipe"), self.path("in"), self.path("lines")
        os.mkfifo(pipe)
        # All of them write more than a pipe holds.
        frames.write_pcap(capture, 1500 * [frames.frame(64)])
        lan = ["--lan", "pcap:" + capture]
        uart = 70_000 * b"uart thr = 41\n"
        for options, script in (
            ([*lan, "--wan", "pcap:," + pipe], b"frame r = forward\n"),
            ([*lan, "--capture", pipe], AUTO),
            (["--uart", pipe], uart),
        ):
            with self.subTest(options):
                with open(lines, "wb") as file:
                    file.write(script)
                with open(lines, "rb") as file:
                    # pylint: disable=consider-using-with
                    started = subprocess.Popen(
                        [BOARD, *options, "--save", self.path("saved")], stdin=file,
                        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
                with open(pipe, "rb", buffering=0) as reader:
                    reader.read(1)
                _, errors = started.communicate(timeout=support.DEADLINE)
                self.assertEqual(started.returncode, 1, errors)
                self.assertIn(b"Broken pipe", errors)
                os.unlink(self.path("saved"))


class OutputOnly(board.BoardTest):
    def test_nothing_comes_in(self):
        out = self.path("out")
        done = support.run([BOARD, "--wan", "pcap:," + out], AUTO + b"frame t 40 1 wan 0 low\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        # Buffers are empty at power-on.
        self.assertEqual(frames.read_pcap(out), [bytes(64)])
        self.assertNotIn(b"Packet", done.stdout)


if __name__ == "__main__":
    support.main()
