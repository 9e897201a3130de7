"""virtual-board on a TAP device of a network namespace, with programs we did not write."""

import os
import re
import shutil
import subprocess
import time
import unittest

import board
import frames
import support
from board import BOARD
from support import UNKNOWN

ROOT = os.geteuid() == 0
NAMESPACE = ["unshare", "--net"] if ROOT else ["unshare", "--net", "-r"]

# In its own namespace the kernel sends nothing by itself on the device.
QUIET = 'echo 1 > /proc/sys/net/ipv6/conf/default/disable_ipv6 2>/dev/null; exec "$@"'
INSIDE = [*NAMESPACE, "sh", "-c", QUIET, "sh"]

TOOLS = {"arping": "iputils-arping", "tcpdump": "tcpdump", "ip": "iproute2"}
TOOLS.update({"unshare": "util-linux", "nsenter": "util-linux"})


def why_not():
    """What is missing for a TAP device in our own namespace, or None."""
    os.environ["PATH"] += ":/usr/sbin:/sbin"
    for tool, package in TOOLS.items():
        if shutil.which(tool) is None:
            return f"there is no {tool} (package {package})"
    version = subprocess.run(["arping", "-V"], capture_output=True, check=False)
    if b"iputils" not in version.stdout:
        return "arping is not that of package iputils-arping"
    tried = subprocess.run(
        [*NAMESPACE, "ip", "tuntap", "add", "probe", "mode", "tap"],
        capture_output=True,
        check=False,
    )
    if tried.returncode != 0:
        return "no right to make a TAP device: " + tried.stderr.decode().strip()
    return None


WHY_NOT = why_not()


@unittest.skipIf(WHY_NOT, WHY_NOT)
class TapTest(board.BoardTest):
    def setUp(self):
        super().setUp()
        self.start("--lan", "tap:lan0", "--capture", self.path("record"), before=INSIDE)

    def inside(self, *arguments):
        """Runs a program in the board's namespace to its end; its status and output."""
        enter = ["nsenter", "-t", str(self.board.pid), "--net"]
        if not ROOT:
            enter += ["--user", "--preserve-credentials"]
        done = subprocess.run(
            [*enter, *arguments],
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=support.DEADLINE,
            check=False,
        )
        return done.returncode, done.stdout.decode()

    def ip(self, *arguments):
        self.assertEqual(self.inside("ip", *arguments), (0, ""))


class Arping(TapTest):
    def setUp(self):
        super().setUp()
        self.ip("address", "add", "10.0.0.2/24", "dev", "lan0")
        link = self.inside("ip", "-o", "link", "show", "lan0")[1]
        self.peer_mac = bytes.fromhex(re.search(r"link/ether (\S+)", link)[1].replace(":", ""))
        self.command(b"macaddr m cpu " + frames.CPU_MAC.hex().encode())
        self.command(b"macaddr i lan 10.0.0.1")
        self.command(b"arp auto")

    def reply(self, sender_ip, target_ip):
        """The reply that arping's request draws, as long as the request is with its padding."""
        reply = (
            self.peer_mac
            + frames.CPU_MAC
            + bytes.fromhex("0806 0001 0800 06 04 0002")
            + frames.CPU_MAC
            + bytes(sender_ip)
            + self.peer_mac
            + bytes(target_ip)
        )
        return reply.ljust(60, b"\0")

    def shown_replies(self, count):
        """The frames that the console shows, whose dumps have to be as documented."""
        replies = []
        for _ in range(count):
            self.screen.shows(b"\n\reply ARP packet\n\r")
            lines = [self.screen.until(b"\n\r") for _ in range(4)]
            address = int(lines[0][:8], 16)
            self.assertEqual((address - frames.BUFFERS - 32) % 2048, 0)
            octets = bytes.fromhex("".join(line[10:].decode() for line in lines).replace("..", ""))
            self.assertEqual(b"".join(lines), frames.dump(address, octets))
            replies.append(octets)
        return replies

    def test_gets_answers_with_the_cpus_address(self):
        status, output = self.inside("arping", "-c", "2", "-I", "lan0", "10.0.0.1")
        self.assertEqual(status, 0, output)
        self.assertIn("Received 2 response(s)", output)
        self.assertEqual(len(re.findall(r"reply from 10\.0\.0\.1 +\[02:11:22:33:44:55\]", output)), 2)
        wanted = self.reply((10, 0, 0, 1), (10, 0, 0, 2))
        self.assertEqual(self.shown_replies(2), 2 * [wanted])
        self.check_counters(2)
        self.check_records("10.0.0.1", wanted, 2)

    def test_another_address_is_answered_with_the_askers_own(self):
        status, output = self.inside("arping", "-c", "1", "-w", "1", "-I", "lan0", "10.0.0.77")
        self.assertEqual(status, 1, output)
        wanted = self.reply((10, 0, 0, 2), (10, 0, 0, 77))
        self.assertEqual(self.shown_replies(1), [wanted])
        self.check_records("10.0.0.2", wanted, 1)

    def check_counters(self, count):
        """What a MAC sees of short frames: 64 bytes with the FCS, none too short."""
        for name, value in (("frm64byte", count), ("undersizefrm", 0), ("byterecv", 64 * count),
                            ("bytesent", 64 * count)):
            shown = self.command(b"sc lan sc_" + name.encode())
            self.assertEqual(int(shown.split(b":")[1], 16), value, name)

    def check_records(self, sender_ip, reply, count):
        """The capture of all ports, by its own names and as tcpdump reads it."""
        self.assertEqual(self.leave(), "")
        recorded = frames.read_pcapng(self.path("record"))
        self.assertEqual([(name, way) for name, way, _ in recorded],
                         count * [("lan", "in"), ("lan", "out")])
        self.assertEqual([octets for _, way, octets in recorded if way == "out"], count * [reply])
        for octets in (octets for _, way, octets in recorded if way == "in"):
            self.assertEqual((len(octets), octets[42:]), (60, bytes(18)))
        seen = subprocess.run(
            ["tcpdump", "-nn", "-r", self.path("record"), "arp[6:2] = 2"],
            capture_output=True,
            check=True,
        ).stdout.decode()
        answer = f"ARP, Reply {sender_ip} is-at 02:11:22:33:44:55, length 46"
        self.assertEqual([answer in line for line in seen.splitlines()], count * [True], seen)


class Device(TapTest):
    def test_is_made_and_up(self):
        flags = self.inside("ip", "-o", "link", "show", "lan0")[1]
        self.assertIn(",UP,", flags)

    def link_is_up(self):
        """What the PHY of the LAN port reports."""
        self.command(b"mii 2 1")
        # The first read showed what was lost in the past.
        status = re.search(rb"VALUE: (\w{4})", self.command(b"mii 2 1"))
        return int(status[1], 16) & 0x0004 != 0

    def test_vanishes(self):
        self.assertTrue(self.link_is_up())
        self.ip("link", "delete", "lan0")
        line = self.board.stderr.readline().decode()
        self.assertRegex(line, "^virtual-board: tap:lan0: the device is gone.*link is down")
        self.assertFalse(self.link_is_up())
        self.assertEqual(self.command(b"frame t 40 1 lan 0 low"), b"")
        self.assertEqual(self.command(b"zz"), UNKNOWN)
        used = self.processor_seconds()
        time.sleep(0.5)
        self.assertLess(self.processor_seconds() - used, 0.1)
        # Nothing more is said.
        self.assertEqual(self.leave(), "")

    def test_is_down_for_a_while(self):
        self.ip("address", "add", "10.0.0.2/24", "dev", "lan0")
        self.command(b"macaddr i lan 10.0.0.1")
        self.command(b"arp auto")
        self.ip("link", "set", "lan0", "down")
        self.assertEqual(self.command(b"frame t 40 1 lan 0 low"), b"")
        used = self.processor_seconds()
        time.sleep(0.5)
        self.assertLess(self.processor_seconds() - used, 0.1)
        self.ip("link", "set", "lan0", "up")
        status, output = self.inside("arping", "-c", "1", "-I", "lan0", "10.0.0.1")
        self.assertEqual(status, 0, output)
        self.assertEqual(self.leave(), "")


class NoRight(board.BoardTest):
    def expect_refusal(self, command, name, *pieces):
        done = support.run([*command, BOARD, "--lan", "tap:" + name], b"exit\n")
        message = done.stderr.decode()
        self.assertEqual((done.returncode, done.stdout), (1, b""), message)
        self.assertEqual(message.count("\n"), 1)
        for piece in pieces:
            self.assertIn(piece, message)

    @unittest.skipIf(shutil.which("setpriv") is None, "there is no setpriv (package util-linux)")
    def test_says_what_is_missing(self):
        user = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"] if ROOT else []
        self.expect_refusal(user, "dm-test0", "CAP_NET_ADMIN", "run as root")

    @unittest.skipIf(WHY_NOT, WHY_NOT)
    def test_bad_names(self):
        self.expect_refusal(NAMESPACE, "a-name-too-long0", "tap:a-name-too-long0", "too long")
        self.expect_refusal(NAMESPACE, "a/b", "tap:a/b", "Invalid argument")

    @unittest.skipIf(WHY_NOT, WHY_NOT)
    def test_devices_of_other_kinds(self):
        """The loopback device, one end of a pair, a tunnel without Ethernet."""
        make = "ip link add pair0 type veth peer name pair1; ip tuntap add tun0 mode tun; "
        for name in ("lo", "pair0", "tun0"):
            with self.subTest(name):
                inside = [*NAMESPACE, "sh", "-c", make + 'exec "$@"', "sh"]
                self.expect_refusal(inside, name, f"tap:{name}: {name} is not a TAP device; name one")

    @unittest.skipIf(WHY_NOT, WHY_NOT)
    def test_device_in_use(self):
        done = support.run(
            [*NAMESPACE, BOARD, "--wan", "tap:t0", "--lan", "tap:t0"], b"exit\n"
        )
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertIn(b"tap:t0: Device or resource busy", done.stderr)


if __name__ == "__main__":
    support.main()
