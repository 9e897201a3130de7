"""virtual-board with programs on its ports: sockets, counters, and what waiting costs."""

import contextlib
import os
import re
import resource
import socket
import struct
import subprocess
import threading
import time

import board
import frames
import support
from board import BOARD
from support import PROMPT, UNKNOWN

AUTO = b"frame r = auto"

OWN_IP = bytes([10, 0, 0, 1])
PEER_IP = bytes([10, 0, 0, 2])
OTHER_IP = bytes([10, 0, 0, 77])
ARP_HEAD = struct.pack(">HHHBB", 0x0806, 1, 0x0800, 6, 4)


def arp_request(target_ip):
    body = struct.pack(">H", 1) + frames.PEER_MAC + PEER_IP + bytes(6) + target_ip
    return (frames.BROADCAST + frames.PEER_MAC + ARP_HEAD + body).ljust(60, b"\0")


def arp_reply(sender_ip, target_ip):
    body = struct.pack(">H", 2) + frames.CPU_MAC + sender_ip + frames.PEER_MAC + target_ip
    return (frames.PEER_MAC + frames.CPU_MAC + ARP_HEAD + body).ljust(60, b"\0")


class SocketTest(board.BoardTest):
    def setUp(self):
        super().setUp()
        self.lan = self.path("lan")
        self.wan = self.path("wan")

    def start_with_peer(self, *options):
        self.start("--lan", "unix:" + self.lan, *options)
        self.command(b"macaddr m cpu " + frames.CPU_MAC.hex().encode())
        return self.connect(self.lan)


class Exchange(SocketTest):
    def test_arp(self):
        """The console shows the reply as it goes out, from its receive buffer."""
        peer = self.start_with_peer("--capture", self.path("record"))
        self.command(b"macaddr i lan 10.0.0.1")
        self.command(b"arp auto")
        cases = [
            (OWN_IP, arp_reply(OWN_IP, PEER_IP)),
            # A request for another station is answered with its own addresses.
            (OTHER_IP, arp_reply(PEER_IP, OTHER_IP)),
        ]
        record = []
        for number, (target, reply) in enumerate(cases):
            request = arp_request(target)
            peer.send(request)
            self.assertEqual(peer.recv(4096), reply)
            shown = frames.dump(frames.buffer_of(number), reply)
            self.screen.shows(b"\n\reply ARP packet\n\r" + shown)
            record += [("lan", "in", request), ("lan", "out", reply)]
        self.assertEqual(self.leave(), "")
        self.assertEqual(frames.read_pcapng(self.path("record")), record)

    def test_other_frames_are_not_answered(self):
        peer = self.start_with_peer()
        self.command(b"macaddr i lan 10.0.0.1")
        self.command(b"arp auto")
        request = arp_request(OWN_IP)
        peer.send(request[:21] + b"\x02" + request[22:])
        peer.send(request[:12] + b"\x08\x00" + request[14:])
        peer.send(request)
        self.assertEqual(peer.recv(4096), arp_reply(OWN_IP, PEER_IP))
        self.screen.shows(
            b"\n\reply ARP packet\n\r"
            + frames.dump(frames.buffer_of(2), arp_reply(OWN_IP, PEER_IP))
        )

    def test_one_program_after_the_other(self):
        peer = self.start_with_peer()
        self.command(AUTO)
        for number in range(3):
            octets = frames.frame(60 + number, number=number)
            peer.send(octets)
            self.screen.shows(frames.printed(number, octets))
            peer.close()
            peer = self.connect(self.lan)

    def test_a_program_that_does_not_read_loses_frames(self):
        """The monitor continues."""
        self.start_with_peer()
        line = b"frame t 5ea 1 lan 0 low\n"
        self.type(500 * line)
        self.type(b"zz\n")
        self.screen.until(UNKNOWN + PROMPT)

    def limit_descriptors(self, limit):
        _, hard = resource.prlimit(self.board.pid, resource.RLIMIT_NOFILE)
        resource.prlimit(self.board.pid, resource.RLIMIT_NOFILE, (limit, hard))

    def test_program_that_cannot_be_connected_for_a_while(self):
        """The board has no descriptor left; it says so once, waits idly, and takes the program."""
        self.start("--lan", "unix:" + self.lan)
        self.command(b"macaddr m cpu " + frames.CPU_MAC.hex().encode())
        self.command(AUTO)
        before, _ = resource.prlimit(self.board.pid, resource.RLIMIT_NOFILE)
        self.limit_descriptors(len(os.listdir(f"/proc/{self.board.pid}/fd")))
        peer = self.connect(self.lan)
        octets = frames.frame(60)
        peer.send(octets)
        message = f"virtual-board: unix:{self.lan}: cannot accept a connection: Too many open files"
        errors = support.Screen(self, self.board.stderr.fileno())
        errors.shows(message.encode() + b"; trying again every second\n")
        used = self.processor_seconds()
        time.sleep(1.5)
        self.assertLess(self.processor_seconds() - used, 0.1)
        self.limit_descriptors(before)
        self.screen.shows(frames.printed(0, octets))
        peer.close()
        # The next one is served at once, and reported anew when it cannot be.
        peer = self.connect(self.lan)
        peer.send(octets)
        self.screen.shows(frames.printed(1, octets))
        self.limit_descriptors(len(os.listdir(f"/proc/{self.board.pid}/fd")) - 1)
        peer.close()
        self.connect(self.lan)
        errors.shows(message.encode() + b"; trying again every second\n")
        self.assertEqual(self.leave(), "")

    def test_start_without_descriptors(self):
        """Whatever there are too few for, the message names the reason."""
        refused = 0
        for limit in range(4, 16):
            def few(limit=limit):
                resource.setrlimit(resource.RLIMIT_NOFILE, (limit, limit))

            options = ["--lan", "unix:" + self.lan, "--wan", "unix:" + self.wan]
            done = subprocess.run([BOARD, *options], input=b"exit\n", capture_output=True,
                                  preexec_fn=few, check=False, timeout=support.DEADLINE)
            message = done.stderr.decode()
            if done.returncode == 0:
                self.assertEqual(message, "")
                continue
            refused += 1
            self.assertEqual(done.returncode, 1, message)
            self.assertTrue(message.endswith(": Too many open files\n"), message)
            self.assertEqual(os.listdir(self.folder), [])
        self.assertIn(refused, range(1, 12))

    def test_socket_of_another_board_stays(self):
        self.start_with_peer()
        os.unlink(self.lan)
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as other:
            other.bind(self.lan)
            self.type(b"exit\n")
            self.assertEqual(self.board.wait(support.DEADLINE), 0)
            self.assertTrue(os.path.exists(self.lan))

    def test_path_in_use(self):
        with open(self.lan, "wb"):
            pass
        done = support.run([BOARD, "--lan", "unix:" + self.lan], b"exit\n")
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        reason = "Address already in use; remove it if no program uses it any more"
        self.assertIn(f"unix:{self.lan}: {reason}", done.stderr.decode())
        self.assertTrue(os.path.exists(self.lan))
        done = support.run([BOARD, "--lan", "unix:" + 200 * "x"], b"exit\n")
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"the path is too long", done.stderr)

    def test_socket_goes_with_the_board(self):
        self.start_with_peer()
        self.leave()
        self.assertFalse(os.path.exists(self.lan))
        self.start_with_peer()
        self.board.terminate()
        self.assertEqual(self.board.wait(support.DEADLINE), -15)
        self.assertFalse(os.path.exists(self.lan))


class Counters(SocketTest):
    def counters(self, port):
        shown = self.command(b"sc " + port).decode()
        pairs = re.findall(r"(SC_\w+) *: +([0-9a-f]+)", shown)
        self.assertEqual(len(pairs), 28)
        return {name: int(value, 16) for name, value in pairs if int(value, 16) != 0}

    def test_known_traffic(self):
        """Lengths at both edges of each size class; the four bytes of the FCS are added."""
        lengths = [20, 59, 60, 61, 123, 124, 251, 252, 507, 508, 1019, 1020, 1514, 1524]
        good = [frames.frame(length) for length in lengths]
        good += [frames.frame(100, frames.BROADCAST), frames.frame(200, frames.GROUP)]
        good += [frames.frame(300, frames.BROADCAST)]
        oversize = [frames.frame(1525), frames.frame(2000)]
        peer = self.start_with_peer("--wan", "unix:" + self.wan)
        wan = self.connect(self.wan)
        self.command(b"frame r = forward")
        for octets in [*oversize, *good]:
            peer.send(octets)
        for octets in good:
            self.assertEqual(wan.recv(4096), octets)

        received = sum(map(len, good)) + 4 * len(good)
        self.assertEqual(
            self.counters(b"lan"),
            {
                "SC_BYTERECV": received,
                "SC_FRAMERECV": 17,
                "SC_TOTALBYTERECV": received + 1525 + 2000 + 8,
                "SC_TOTALFRMRECV": 19,
                "SC_MCASTFRMRECV": 1,
                "SC_BCASTFRMRECV": 2,
                "SC_UNDERSIZEFRM": 2,
                "SC_FRM64BYTE": 1,
                "SC_FRM65TO127BYTE": 3,
                "SC_FRM128TO255BYTE": 3,
                "SC_FRM256TO511BYTE": 3,
                "SC_FRM512TO1023BYTE": 2,
                "SC_FRM1024TO1528BYTE": 3,
                "SC_OVERSIZEFRM": 2,
            },
        )
        self.assertEqual(
            self.counters(b"wan"),
            {"SC_BYTESENT": received, "SC_UNICASTSENT": 14, "SC_NONUNICASTSENT": 3},
        )
        self.assertEqual(self.counters(b"dmz"), {})

    def test_frames_that_are_not_taken_are_dropped(self):
        """240 buffers for received frames, and nothing that empties them."""
        peer = self.start_with_peer()
        for number in range(300):
            peer.send(frames.frame(60, number=number))
        arrived = f"{300:8x}".encode()
        self.wait_for(lambda: arrived in self.command(b"sc lan sc_totalfrmrecv"))
        self.assertEqual(self.command(b"sc lan sc_drop"), b"SC_DROP              :       3c\n\r")


class Flood:
    """Sends frames to a socket as fast as they are taken, until it is stopped."""

    def __init__(self, test, peer):
        self.peer = peer
        self.running = True
        self.sent = 0
        self.thread = threading.Thread(target=self.run)
        test.addCleanup(self.stop)
        self.thread.start()

    def run(self):
        octets = frames.frame(60)
        while self.running:
            try:
                self.peer.send(octets)
            except OSError:
                return
            self.sent += 1

    def stop(self):
        self.running = False
        with contextlib.suppress(OSError):
            self.peer.shutdown(socket.SHUT_RDWR)
        self.thread.join(support.DEADLINE)


class Load(SocketTest):
    def test_typing_while_frames_pour_in(self):
        for mode, often in (b"manual", 0), (b"auto", 1):
            with self.subTest(mode):
                peer = self.start_with_peer()
                self.command(b"frame r = " + mode)
                flood = Flood(self, peer)
                self.wait_for(lambda flood=flood: flood.sent > 100)
                longest = 0.0
                for _ in range(5):
                    for key in (b"z", b"z", b"\n"):
                        begin = time.monotonic()
                        self.type(key)
                        # A frame may come between the end of the line and its answer.
                        shown = self.screen.until(UNKNOWN + PROMPT if key == b"\n" else key)
                        longest = max(longest, time.monotonic() - begin)
                        self.assertTrue(often or b"Packet" not in shown)
                flood.stop()
                self.assertLess(longest, 1)
                support.end(self.board)
                os.unlink(self.lan)

    def test_waiting_costs_next_to_nothing(self):
        seconds = 1
        self.start_with_peer("--wan", "unix:" + self.wan)
        self.command(AUTO)
        self.command(b"arp auto")
        time.sleep(0.1)
        before = self.processor_seconds()
        time.sleep(seconds)
        self.assertLess(self.processor_seconds() - before, 0.03 * seconds)

    def test_a_frame_is_served_at_once(self):
        peer = self.start_with_peer()
        self.command(b"macaddr i lan 10.0.0.1")
        self.command(b"arp auto")
        waits = []
        for _ in range(20):
            time.sleep(0.02)
            begin = time.monotonic()
            peer.send(arp_request(OWN_IP))
            peer.recv(4096)
            waits.append(time.monotonic() - begin)
        # The quickest quarter: on a busy machine the rest measure the machine.
        self.assertLess(sorted(waits)[len(waits) // 4], 0.002)


class CommandLine(board.BoardTest):
    def expect(self, options, status, *pieces):
        done = support.run([BOARD, *options], b"exit\n")
        message = done.stderr.decode()
        self.assertEqual((done.returncode, done.stdout), (status, b""), message)
        self.assertEqual(message.count("\n"), 1)
        for piece in pieces:
            self.assertIn(piece, message)

    def test_no_ports(self):
        wrong = ["", "tap", "tap:", "pcap:", "pcap:,", "unix:", "eth0", "TAP:x", "none:", "pipe:"]
        for what in wrong:
            with self.subTest(what):
                self.expect(["--dmz", what], 2, "--dmz", f"'{what}'", "tap:NAME")
        self.expect(["--wan"], 2, "--wan")
        self.expect(["--wan", "--lan"], 2, "--wan", "'--lan'")
        self.expect(["--wan", "none", "--wan", "none"], 2, "--wan")

    def test_help_names_the_kinds(self):
        text = support.run([BOARD, "--help"]).stdout
        for piece in (b"--wan X", b"--lan X", b"--dmz X", b"--realtime", b"--capture FILE",
                      b"--uart FILE", b"--gpio-in HEX", b"tap:NAME", b"pcap:IN,OUT",
                      b"pcap:,OUT", b"unix:PATH", b"SOCK_SEQPACKET"):
            self.assertIn(piece, text)

    def test_connected_ports_start_as_a_boot_loader_leaves_them(self):
        up = (b"LINK: UP\tSPEED: 100MBPS\n\rDUPLEX: FULL\tINTERFACE: MII\tLOOPBACK: NO\n\r"
              b"FLOW CONTROL: OFF\tVLAN AWARE: FALSE\n\r")
        down = (b"LINK: DOWN\tSPEED: 10MBPS\n\rDUPLEX: HALF\tINTERFACE: SERIAL\tLOOPBACK: NO\n\r"
                b"FLOW CONTROL: OFF\tVLAN AWARE: FALSE\n\r")
        names = ("wan", "lan", "dmz")
        for connected in (("wan",), ("lan",), ("dmz",), names):
            with self.subTest(connected):
                options = [f"--{name}=pcap:,{self.path(name)}" for name in connected]
                self.start(*options)
                for name in names:
                    shown = self.command(b"maccfg " + name.encode())
                    wanted = up if name in connected else down
                    self.assertEqual(shown, b"Port: " + name.upper().encode() + b"\t" + wanted)
                self.leave()

    def test_none(self):
        done = support.run([BOARD, "--wan", "none", "--lan", "none", "--dmz", "none"], b"exit\n")
        self.assertEqual((done.returncode, done.stderr), (0, b""))


if __name__ == "__main__":
    support.main()
