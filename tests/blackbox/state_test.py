"""Boards that are saved, damaged, and loaded."""

import ctypes
import glob
import json
import os
import shlex
import shutil
import signal
import stat
import subprocess
import time
import unittest

import board
import support
from board import BOARD

SESSIONS = os.path.join(os.path.dirname(__file__), "..", "sessions", "*.session")

# Something in every block, some of it in the middle: an engine that runs, a paused timer, frames
# that wait at a port that is down and for the CPU.
FILL = b"""\
l3 5 = 10.1.2.0 18 10.1.2.1 lan 1 3 direct
l3 c 5 = 77
nat 10 = 10.0.0.1 1000 20.0.0.2 50 tcp 1.2.3.4 2000 5
nat s 3 = 10.0.0.3 1001 20.0.0.4 51 udp 1.2.3.5 2001 6 server
arp 7 = 10.1.2.3 021122334455
mcast 9 = 224.0.0.9 lan dmz
mcast c 9 = 1234
clsfr 46 = 6 99 eth 800 sip 10.0.0.0 8 dp 80 1f smac 020000000001 drop high
clsfr h = 46
pst 2 = 10.3.3.3 1234 5 020000000002 1 1
pxt 1 = 020000000001 020000000002 1234 5678 0009 0abc 1 0 0 1 2
pdr 11 = 10.4.4.4 1 2
macaddr m cpu 021122334455
macaddr i lan 10.0.0.1
maccfg dmz = up 100 full mii fc vlan
qos = 10 08 20 31 40 48 red 05
rc 1 = 0100 ffff
ctrl mtu 5dc
natcfg = 192.168.100.200 f 258 ffff lw
cs 3 = 1000 5 2
gpiocfg = 1 2 3 4
gpio = ff
tdmcfg = 10 20 auto
timer 0 = 1234 3
timer 0 p
mii 2 4 = 1e0
mii 2 10 = abcd
uart dll = 42
uart thr = 41
uart ier = 2
frame b = 200
frame t 40 1 lan 2 high
frame t 3 2 cpu 0 low
frame t 4 2 cpu 0 low
reg 1f00 = a5
reg 60e = 5
reg 60d = 6
"""

LISTINGS = b"""\
reg 0 100
reg 400 40
reg 60d
reg 60d
reg 600 10
l3 0 40
l3 c
l3 o
l3 f
nat 0 100
nat s 0 10
arp 0 40
arp r
mcast 0 40
mcast c
mcast o
clsfr 0 80
clsfr l 46
clsfr c
clsfr o
pst 0 4
pxt 0 4
pdr 0 40
macaddr
maccfg wan
maccfg lan
maccfg dmz
qos
qos lan
qos lan 1
rc 0 4
ctrl f
ctrl mtu
ctrl ppp
natcfg
cs 0
cs 3
gpio
gpio i
gpiocfg
tdmcfg
tdm
timer
mii 1 1
mii 2 4
mii 2 10
uart
sc wan
sc dmz
sc o lan
frame
frame s
frame r
frame r
reg 1f00
"""


def session_lines():
    """What is typed in the sessions, but for keys that have no letter, lines that end the board
    or never end without an operator, and timers, which go on by themselves."""
    lines = []
    for path in sorted(glob.glob(SESSIONS)):
        endless = False
        with open(path, encoding="ascii") as session:
            for line in session:
                typed = line[8:].rstrip("\n")
                if line.startswith("Debug>> ") and not endless and "\\" not in typed:
                    lines.append(typed)
                endless = line.startswith("@ctrl-c") or (endless and line.startswith("@"))
    skipped = ("exit", "timer", "reset")
    lines = [line for line in lines if not line.lower().startswith(skipped)]
    return "".join(line + "\n" for line in lines).encode()


class StateTest(board.BoardTest):
    def run_board(self, script, *options, status=0):
        """Runs a script to its end; what the board prints."""
        done = support.run([BOARD, *options], script)
        self.assertEqual(done.returncode, status, done.stderr.decode())
        return done.stdout

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def accesses(self, name):
        """The lines of a trace but its marks, which depend on what was marked before."""
        return [line for line in self.content(name).splitlines() if not line.startswith(b"#")]

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def save(self, script, name="saved"):
        """Saves a board on which a script has run; the state."""
        self.run_board(script, "--save", self.path(name))
        return json.loads(self.content(name))


class Restart(StateTest):
    def check(self, script):
        """Saved and loaded, a board has the same state, shows the same and does the same."""
        saved, again, trace = self.path("saved"), self.path("again"), self.path("trace")
        self.save(script)
        self.run_board(b"", "--load", saved, "--save", again)
        self.assertEqual(self.content("saved"), self.content("again"))

        before = self.run_board(script + LISTINGS, "--trace", trace)
        before_load = self.accesses("trace")
        after = self.run_board(LISTINGS, "--load", saved, "--trace", trace)
        self.assertTrue(before.endswith(after[len(support.START):]))
        after_load = self.accesses("trace")
        self.assertGreater(len(after_load), 5000)
        self.assertEqual(before_load[-len(after_load):], after_load)

    def test_something_in_every_block(self):
        self.check(FILL)

    def test_everything_that_sessions_type(self):
        lines = session_lines()
        self.assertGreater(lines.count(b"\n"), 1000)
        self.check(lines)

    def test_untouched_board(self):
        self.check(b"")

    def test_running_operation(self):
        """Started by hand; its second status load completes it, in the life after the first."""
        # `reg` loads the byte once after its store.
        lines = b"l3 5 = 10.1.2.9 20 10.1.2.1 lan 0 0\nl3 6\nreg 60e = 5\nreg 60d = 6\n"
        self.assertEqual(self.save(lines)["l3"]["engine"]["loads_left"], 1)
        shown = self.run_board(b"reg 603\nreg 60d\nreg 603\n", "--load", self.path("saved"))
        self.assertIn(b"603\r\n50000600: .. .. .. 00 ", shown)
        self.assertIn(b"60d\r\n50000600:" + 13 * b" .." + b" 07 ", shown)
        row = b"50000600: .. .. .. 09" + 12 * b" .." + b" \n\r"
        self.assertTrue(shown.endswith(row + support.PROMPT))

    def test_settings_of_the_monitor(self):
        self.save(b"frame r = forward\narp auto\n")
        done = self.run_board(b"frame\n", "--load", self.path("saved"))
        self.assertIn(b"RECEIVING MODE: FORWARD", done)

    def test_transmit_buffer_that_comes_next(self):
        """Forwarding takes one transmit buffer after the other, from the first on."""
        state = self.save(b"frame t 40 f cpu 0 low\nframe r = forward\n")
        self.assertEqual(state["monitor"]["transmit_cursor"], 2)
        self.assertEqual(state["frames"]["queues"]["wan"], [{"handle": "01", "length": 64}])
        load = ("--load", self.path("saved"), "--save", self.path("again"))
        self.run_board(b"frame t 40 f cpu 0 low\n", *load)
        queue = json.loads(self.content("again"))["frames"]["queues"]["wan"]
        self.assertEqual(queue[1:], [{"handle": "02", "length": 64}])

    def test_waiting_frame_leaves_later(self):
        self.save(b"frame t 40 1 lan 2 high\n")
        out = self.path("out.pcap")
        options = ("--load", self.path("saved"), "--lan", "pcap:," + out)
        self.run_board(b"maccfg lan = up 100 full mii\n", *options)
        # The file's header, one frame's header, the frame.
        self.assertEqual(os.path.getsize(out), 24 + 16 + 64)

    def test_ports_keep_their_settings(self):
        """Connecting a port does not switch it on again."""
        self.save(b"")
        before = self.run_board(b"maccfg lan\n", "--load", self.path("saved"))
        load = ("--load", self.path("saved"), "--lan", "unix:" + self.path("lan"))
        self.assertEqual(self.run_board(b"maccfg lan\n", *load), before)
        without_load = self.run_board(b"maccfg lan\n", "--lan", "unix:" + self.path("lan"))
        self.assertNotEqual(without_load, before)

    def test_levels_of_the_pins(self):
        self.run_board(b"", "--gpio-in", "5a", "--save", self.path("saved"))
        load = ("--load", self.path("saved"))
        self.assertIn(b"DATA: 5a\n", self.run_board(b"gpio\n", *load))
        self.assertIn(b"DATA: 12\n", self.run_board(b"gpio\n", *load, "--gpio-in", "12"))

    def test_timer_goes_on_where_it_stood(self):
        """A count takes 65 ms here, so that it hardly moves in a test; all time since the machine
        was started would have moved it anywhere."""
        first = self.save(b"timer 0 = ffff ffff\ntimer 0 r\n")["timers"]["0"]
        self.assertFalse(first["stopped"])
        self.run_board(b"", "--load", self.path("saved"), "--save", self.path("again"))
        second = json.loads(self.content("again"))["timers"]["0"]
        passed = int(first["counter"], 16) - int(second["counter"], 16)
        self.assertIn(passed, range(0, 1000))

    def test_note_survives(self):
        state = self.save(b"")
        self.assertNotIn("note", state)
        state["note"] = "first line\n\"second\", with \u00fc\0\x1b"
        self.write("saved", json.dumps(state).encode())
        for _ in range(2):
            self.run_board(b"l3 5\n", "--load", self.path("saved"), "--save", self.path("saved"))
        self.assertEqual(json.loads(self.content("saved"))["note"], state["note"])

    def test_entries_are_decoded(self):
        state = self.save(FILL + b"macaddr i wan 203.0.113.2\nmacaddr m wan 0200000000aa\n")
        self.assertEqual(state["version"], 2)
        self.assertEqual(state["l3"]["entries"]["05"], {
            "ip": "10.1.2.0", "mask": 24, "next_hop": "10.1.2.1", "port": "lan", "pppoe": True,
            "session": 3, "direct": True, "wan_mac": False, "valid": True, "counter": 0x77})
        self.assertEqual(state["nat"]["server"]["03"], {
            "sip": "10.0.0.3", "sport": "1001", "dip": "20.0.0.4", "dport": "0051", "tcp": False,
            "nsip": "1.2.3.5", "nsport": "2001", "age": 6, "server": True, "valid": True})
        self.assertEqual(state["arp"]["entries"]["07"], {
            "ip": "10.1.2.3", "mac": "02:11:22:33:44:55", "valid": True})
        self.assertEqual(state["mcast"]["entries"]["09"], {
            "ip": "224.0.0.9", "ports": "lan dmz", "valid": True, "counter": 0x1234})
        self.assertEqual(state["pst"]["entries"]["02"], {
            "ip": "10.3.3.3", "session": "1234", "vlan": "0005", "server_mac": "02:00:00:00:00:02",
            "force": True, "tag": True, "used": False, "valid": True})
        self.assertEqual(state["pdr"]["entries"]["11"], {
            "ip": "10.4.4.4", "pppoe": True, "session": 2, "valid": True})
        self.assertEqual(state["pxt"]["entries"]["01"]["external_mac"], "02:00:00:00:00:02")
        self.assertEqual(state["pxt"]["entries"]["01"]["port"], "dmz")
        rule = state["classifier"]["entries"]["46"]
        self.assertEqual((rule["sip"], rule["sip_mask"], rule["ether_type"], rule["smac"]),
                         ("10.0.0.0", 8, "0800", "02:00:00:00:00:01"))
        self.assertEqual((rule["sip_valid"], rule["dip_valid"], rule["drop_high"]),
                         (True, False, True))
        registers = state["registers"]
        self.assertEqual(registers["WAN_IP"], "203.0.113.2")
        self.assertEqual(registers["WAN_MAC"], "02:00:00:00:00:aa")
        self.assertEqual(registers["MAC_CONTROL[2]"], "2f")

    def test_old_state_gives_way_in_place(self):
        path = self.path("saved")
        for line in (b"arp 1 = 10.0.0.1 020000000001\n", b"arp 2 = 10.0.0.2 020000000002\n"):
            load = ["--load", path] if os.path.exists(path) else []
            self.run_board(line, *load, "--save", path)
        self.assertEqual(list(json.loads(self.content("saved"))["arp"]["entries"]), ["01", "02"])


VERSION1 = os.path.join(os.path.dirname(__file__), "..", "state", "version1")


class Version1(StateTest):
    """Files that were saved in the first version, each with the commands that led to it."""

    def test_is_the_board_that_it_was(self):
        states = sorted(glob.glob(os.path.join(VERSION1, "*.json")))
        self.assertEqual(len(states), 3)
        for path in states:
            with self.subTest(path):
                with open(path[:-len("json")] + "commands", "rb") as commands:
                    support.run([BOARD, "--plain", "--save", self.path("typed")], commands.read())
                self.run_board(b"", "--load", path, "--save", self.path("converted"))
                self.assertEqual(json.loads(self.content("converted"))["version"], 2)
                self.assertEqual(self.content("converted"), self.content("typed"))

    def test_damage_is_noticed(self):
        with open(os.path.join(VERSION1, "every_block.json"), "rb") as file:
            text = file.read()
        for edit, reason in VERSION1_EDITS:
            with self.subTest(reason):
                state = json.loads(text)
                edit(state)
                path = self.write("damaged", json.dumps(state).encode())
                done = support.run([BOARD, "--load", path], b"l3 5\n")
                self.assertEqual((done.returncode, done.stdout), (1, b""))
                self.assertIn(reason, done.stderr.decode())


def change(pointer, value):
    """An edit: the member gets that value."""
    def edit(state):
        *parents, last = pointer.split("/")[1:]
        for name in parents:
            state = state[int(name) if isinstance(state, list) else name]
        state[last] = value
    return edit


def leave_out(pointer):
    def edit(state):
        *parents, last = pointer.split("/")[1:]
        for name in parents:
            state = state[name]
        del state[last]
    return edit


# An edit of a good state, and what the message has to say.
EDITS = [
    (change("/format", "something"), "/format: is not 'virtual-board state'"),
    (leave_out("/format"), "/format: is missing"),
    (change("/version", 3), "/version: is 3, which needs a newer virtual-board"),
    (change("/version", 0), "/version: is below 1"),
    (change("/version", "1"), "/version: is not a number"),
    (change("/version", -1), "/version: is not a number"),
    (change("/version", 1e30), "/version: is not a number"),
    (leave_out("/uart/fifos_on"), "/uart/fifos_on: is missing"),
    (leave_out("/arp"), "/arp: is missing"),
    (change("/arp", []), "/arp: is not an object"),
    (change("/uart/fifos_on", 1), "/uart/fifos_on: is neither true nor false"),
    (change("/uart/received", "4"), "/uart/received: is not a string of pairs of hexadecimal"),
    (change("/uart/received", "4g"), "/uart/received: is not a string of pairs of hexadecimal"),
    (change("/uart/received", 4), "/uart/received: is not a string of hexadecimal digits"),
    (change("/uart/surprise", 1), "/uart/surprise: has no meaning here"),
    (change("/a~b", 1), "/a~0b: has no meaning here"),
    (change("/sur\x1b[2Jprise", 1), "/sur?[2Jprise: has no meaning here"),
    *((change("/l3/entries/05/ip", text), "/l3/entries/05/ip: is not an IP address")
      for text in ("10.1.2", "10.1.2.0.", "10.1.2.256", "10.1.2.-1", "10.1.02.0", "10.1.2.0 ", "",
                   "a.1.2.0", "0a010200", "10.1..0")),
    (change("/l3/entries/05/ip", 5), "/l3/entries/05/ip: is not a string"),
    *((change("/arp/entries/07/mac", text), "/arp/entries/07/mac: is not a MAC address")
      for text in ("021122334455", "02:11:22:33:44", "02:11:22:33:44:5", "02-11-22-33-44-55",
                   "02:11:22:33:44:5g", "02:11:22:33:44:55:66", "02:11:22:33:44-55", "")),
    *((change("/l3/entries/05/port", text), "/l3/entries/05/port: is not a list of wan, lan, dmz")
      for text in ("eth0", "lan lan", "lan ", " lan", "lan,wan", "LAN")),
    (change("/pxt/entries/01/port", "wan"), "/pxt/entries/01/port: is not one of its possible"),
    (change("/pst/entries/02/session", "123"), "/session: is not a string of 4 hexadecimal"),
    (change("/pst/entries/02/session", "123g"), "/session: is not a string of 4 hexadecimal"),
    (change("/pst/entries/02/session", "-123"), "/session: is not a string of 4 hexadecimal"),
    (change("/classifier/entries/46/interfaces", 1), "/interfaces: is not a string"),
    (change("/classifier/entries/46/flags3_rest", "04"), "flags3_rest: has bits set that do not"),
    (change("/nat/main/10/age", 65536), "/nat/main/10/age: is above 65535"),
    (change("/l3/entries/05/counter", -1), "/l3/entries/05/counter: is not a number"),
    (change("/l3/entries/05/counter", 2**32), "/l3/entries/05/counter: is above 4294967295"),
    (change("/l3/entries/05/session", 4), "/l3/entries/05/session: is above 3"),
    (leave_out("/l3/entries/05/counter"), "/l3/entries/05/counter: is missing"),
    (change("/l3/entries/40", {}), "/l3/entries/40: has no meaning here"),
    (change("/l3/entries/5", {}), "/l3/entries/5: has no meaning here"),
    (change("/l3/overflow", "00"), "/l3/overflow: has 1 bytes, not 8"),
    (change("/l3/engine/status", "ff"), "/l3/engine/status: has bits set that do not exist"),
    (change("/registers/L3_IQ", "00000000"), "/registers/L3_IQ: has no meaning here"),
    (change("/registers/MAC_CONTROL", "00"), "/registers/MAC_CONTROL: has no meaning here"),
    (change("/registers/L3_IP", "0a010200"), "/registers/L3_IP: is not an IP address"),
    (change("/registers/CPU_MAC", "00"), "/registers/CPU_MAC: is not a MAC address"),
    (change("/registers/L3_COUNTER", "00"), "/registers/L3_COUNTER: has 1 bytes, not 4"),
    (change("/note", 1), "/note: is not a string"),
    (change("/no_register/0600", "00"), "/no_register/0600: has no meaning here"),
    (change("/stat_counters/wan/SC_FRMSNDFAIL", 256), "SC_FRMSNDFAIL: is above 255"),
    (change("/monitor/receive_mode", 2), "/monitor/receive_mode: is not a receive mode"),
    (change("/monitor/transmit_cursor", 17), "/monitor/transmit_cursor: is above 16"),
    (change("/monitor/transmit_cursor", 0), "/monitor/transmit_cursor: is below 1"),
    (change("/frames/pool", ""), "/frames/pool: buffer 12 is missing"),
    (change("/frames/pool", "05"), "/frames/pool: buffer 05 is not a receive buffer"),
    (change("/frames/pool", "2020"), "/frames/pool: buffer 20 is listed twice"),
    (change("/frames/held", "101103"), "/frames/held: buffer 03 is not a receive buffer"),
    (change("/frames/held", "101120"), "/frames/held: buffer 20 is in the pool too"),
    (change("/frames/held", "101110"), "/frames/held: buffer 10 is listed twice"),
    (change("/frames/held", "11"), "/frames/received: buffer 10 is not held"),
    (change("/frames/received", "1010"), "/frames/received: buffer 10 is listed twice"),
    (change("/frames/queues/lan", {}), "/frames/queues/lan: is not a list"),
    (change("/frames/queues/lan", [1]), "/frames/queues/lan/0: is not an object"),
    (change("/frames/queues/lan", [{"handle": "01"}]), "/frames/queues/lan/0/length: is missing"),
    (change("/frames/queues/lan", [{"handle": "01", "length": 1525}]), "length: is above 1524"),
    (change("/frames/queues/lan", [{"handle": "01", "length": 0}]), "empty frames are not sent"),
    (change("/frames/queues/lan", 257 * [{}]), "/frames/queues/lan: has more than 256 elements"),
    (change("/frames/memory/101", {}), "/frames/memory/101: has no meaning here"),
    (change("/frames/memory/01/801", "00"), "/frames/memory/01/801: has no meaning here"),
]


VERSION1_EDITS = [
    (leave_out("/arp"), "/arp: is missing"),
    (change("/arp", []), "/arp: is not an object"),
    (change("/arp/entries", None), "/arp/entries: is not an object"),
    (change("/arp/entries/40", {}), "/arp/entries/40: has no meaning here"),
    (change("/arp/entries/7", {}), "/arp/entries/7: has no meaning here"),
    (change("/arp/entries/07", 7), "/arp/entries/07: is not an object"),
    (leave_out("/arp/entries/07/mac"), "/arp/entries/07/mac: is missing"),
    (change("/arp/entries/07/more", 1), "/arp/entries/07: has members that have no meaning here"),
    (change("/arp/entries/07/mac", "0211"), "/arp/entries/07/mac: is not a string of 12"),
    (change("/arp/entries/07/mac", "02112233445g"), "/arp/entries/07/mac: is not a string of 12"),
    (change("/arp/entries/07/valid", 1), "/arp/entries/07/valid: is neither true nor false"),
    (change("/l3/entries/05/counter", 2**32), "/l3/entries/05/counter: is too large"),
    (leave_out("/nat/main/10/valid"), "/nat/main/10/valid: is missing"),
    (leave_out("/classifier/stored_since_start/rule"), "/classifier/stored_since_start/rule: is"),
    (change("/pdr/stored_since_start", 1), "/pdr/stored_since_start: is neither true nor false"),
    (change("/registers", 1), "/registers: is not an object"),
    (change("/registers/1f00 X", "00"), "/registers/1f00 X: has no meaning here"),
    (change("/registers/L3_IP", "00"), "/registers/L3_IP: has no meaning here"),
    (change("/registers/0600 L3_IP", "0"), "/registers/0600 L3_IP: is not the content of"),
    (change("/registers/0600 L3_IP", 7), "/registers/0600 L3_IP: is not the content of"),
    (change("/uart/surprise", 1), "/uart/surprise: has no meaning here"),
]


class Damaged(StateTest):
    def setUp(self):
        super().setUp()
        self.save(FILL)
        self.text = self.content("saved")

    def refused(self, content, *pieces):
        """The board says why it does not start; nothing is run, nothing is saved."""
        path = self.write("damaged", content)
        other = self.write("other", b"as it was")
        ports = ("--capture", self.path("capture"), "--trace", self.path("trace"))
        done = support.run([BOARD, "--load", path, "--save", other, *ports], b"l3 5\n")
        message = done.stderr.decode()
        self.assertEqual((done.returncode, done.stdout), (1, b""), message)
        self.assertTrue(message.startswith(f"virtual-board: cannot load the state '{path}': "))
        self.assertEqual(message.count("\n"), 1)
        self.assertLess(len(message), 500 + len(path))
        for piece in pieces:
            self.assertIn(piece, message)
        self.assertEqual(self.content("other"), b"as it was")
        self.assertEqual(sorted(os.listdir(self.folder)), ["damaged", "other", "saved"])

    def test_edits(self):
        for edit, reason in EDITS:
            with self.subTest(reason):
                state = json.loads(self.text)
                edit(state)
                self.refused(json.dumps(state).encode(), reason)

    def test_cut_short(self):
        """Wherever it is cut, except before the last line end."""
        for length in range(0, len(self.text) - 2, len(self.text) // 40):
            with self.subTest(length):
                self.refused(self.text[:length], "parse error at line ")
        self.refused(self.text[:-2], "unexpected end of input")

    def test_changed_bytes(self):
        line = b' "version": 2,'
        self.assertEqual(self.text.splitlines()[2], line)
        for broken in (b' "version" 2,', b' "version": 2', b' \x00"version": 2,', b' "\xff": 1,'):
            with self.subTest(broken):
                place = "parse error at line " + ("4" if broken.endswith(b"2") else "3")
                self.refused(self.text.replace(line, broken), place)
        self.refused(self.text + b"x", "parse error")

    def test_member_that_comes_twice(self):
        twice = self.text.replace(b'"holding"', b'"received": "",\n  "holding"')
        self.refused(twice, "/uart/received: is a duplicate")

    def test_something_else(self):
        self.refused(b"[]", "it is not a JSON object")
        self.refused(b"7", "it is not a JSON object")
        self.refused(b"{}", "/format: is missing")
        self.refused(os.urandom(4096))
        self.refused(b"[" * 16, "parse error")
        self.refused(b'{"' + b"x" * 100000 + b'":1', "parse error")
        self.refused(b'{"format":' + 4 * 2**20 * b" ", "longer than any state")

    def test_nul(self):
        """Nothing is ignored that follows one."""
        for text in (self.text, b"{}\n"):
            place = f"parse error at line {text.count(10) + 1}, column 1: a NUL byte"
            self.refused(text + b"\x00", place)
            self.refused(text + b"\x00 and more", place)
        self.refused(b"\x00" + self.text, "parse error at line 1, column 1: a NUL byte")
        self.refused(self.text.replace(b'"reset"', b'"re\x00set"'), "a NUL byte")

    def test_hostile_shapes(self):
        """Refused within a second and 100 MB, whatever the file would grow to in memory."""
        shapes = {
            b"[" * 2**24: "longer than any state",
            b"[" * 2**22: "parse error at line 1, column 17: nested deeper than any state",
            b'{"a":' * 2**19: "parse error at line 1, column 81: nested deeper than any state",
            b"[" + b"[],\n" * (2**20 - 1): "parse error at line 50000, column 3: more values than",
            b"[" + b"1," * (2**21 - 1): "parse error at line 1, column 200001: more values than",
            b"{" + b"".join(b'"%x":0,' % i for i in range(2**18)): "more values than any state has",
            b'{"format":"' + b"x" * 2**22: "longer than any state",
            b'{"format":"' + b"x" * (2**22 - 13) + b'"}': "/format: is not 'virtual-board state'",
        }
        for shape, reason in shapes.items():
            with self.subTest(shape[:8]):
                path = self.write("hostile", shape)
                begin = time.monotonic()
                with subprocess.Popen([BOARD, "--load", path], stdin=subprocess.DEVNULL,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as process:
                    message = process.stderr.read().decode()
                    _, status, usage = os.wait4(process.pid, 0)
                    process.returncode = os.waitstatus_to_exitcode(status)
                self.assertLess(time.monotonic() - begin, support.DEADLINE)
                self.assertEqual(process.returncode, 1, message)
                self.assertIn(reason, message)
                self.assertLess(usage.ru_maxrss, 100 * 1024)
                self.assertLess(usage.ru_utime + usage.ru_stime, 1)

    def test_depth_counts_brackets_outside_texts_alone(self):
        noted = json.loads(self.text)
        noted["note"] = '\\"[{' * 1000
        self.run_board(b"", "--load", self.write("noted", json.dumps(noted).encode()))

    def test_files_that_cannot_be_read(self):
        for path, reason in ((self.path("missing"), "No such file or directory"),
                             (self.folder, "Is a directory"),
                             ("/dev/zero", "it is longer than any state"),
                             ("", "No such file or directory")):
            done = support.run([BOARD, "--load", path], b"l3 5\n")
            self.assertEqual((done.returncode, done.stdout), (1, b""))
            message = f"virtual-board: cannot load the state '{path}': {reason}\n"
            self.assertEqual(done.stderr.decode(), message)

    def test_load_needs_no_right_to_write(self):
        os.chmod(self.path("saved"), 0o444)
        self.run_board(b"", "--load", self.path("saved"))


MOUNTS = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--mount", "-r"]


def why_no_mounts():
    """What is missing for file systems of our own, or None."""
    if shutil.which("unshare") is None:
        return "there is no unshare (package util-linux)"
    tried = subprocess.run([*MOUNTS, "mount", "-t", "tmpfs", "probe", "/mnt"],
                           capture_output=True, check=False)
    if tried.returncode != 0:
        return "no right to mount: " + tried.stderr.decode().strip()
    return None


WHY_NO_MOUNTS = why_no_mounts()


class Saving(StateTest):
    def refused(self, path, reason):
        """The board does not even start."""
        done = support.run([BOARD, "--save", path], b"zz\n")
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        message = f"virtual-board: cannot save the state in '{path}': {reason}\n"
        self.assertEqual(done.stderr.decode(), message)

    def test_places_that_take_no_state(self):
        os.mkfifo(self.path("fifo"))
        self.refused(self.path("missing/name"), "No such file or directory")
        self.refused(self.folder, "it is not a regular file")
        self.refused(self.path("fifo"), "it is not a regular file")
        self.refused("/dev/null", "it is not a regular file")
        self.refused("", "a file needs a name")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))

    def test_only_the_file_appears(self):
        self.save(b"exit\n")
        self.assertEqual(os.listdir(self.folder), ["saved"])

    def test_link_to_what_is_not_there_yet(self):
        os.symlink("first", self.path("second"))
        os.symlink(self.path("second"), self.path("saved"))
        self.save(b"version\n")
        self.assertTrue(os.path.islink(self.path("saved")))
        self.assertFalse(os.path.islink(self.path("first")))
        self.assertTrue(os.path.exists(self.path("first")))

    def test_permissions(self):
        os.umask(0o027)
        self.addCleanup(os.umask, 0o022)
        self.save(b"")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("saved")).st_mode), 0o640)
        os.chmod(self.path("saved"), 0o604)
        self.save(b"l3 5\n")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("saved")).st_mode), 0o604)

    def test_special_permissions_go(self):
        """A state is never a program, with its owner's rights least of all."""
        self.save(b"")
        os.chmod(self.path("saved"), 0o7755)
        self.save(b"l3 5\n")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("saved")).st_mode), 0o755)

    @unittest.skipUnless(os.geteuid() == 0, "only root can save over another user's file")
    def test_owner_stays(self):
        self.save(b"")
        os.chown(self.path("saved"), 1234, 4321)
        os.chmod(self.path("saved"), 0o6750)
        self.save(b"l3 5\n")
        now = os.stat(self.path("saved"))
        self.assertEqual((now.st_uid, now.st_gid), (1234, 4321))
        self.assertEqual(stat.S_IMODE(now.st_mode), 0o750)

    @unittest.skipUnless(os.geteuid() == 0, "only root can play two users")
    def test_group_stays_where_the_owner_cannot(self):
        """Another user saves, who is in the file's group."""
        os.chmod(self.folder, 0o777)
        self.save(b"")
        os.chown(self.path("saved"), 1234, 4321)
        done = subprocess.run([BOARD, "--save", self.path("saved")], input=b"", check=False,
                              capture_output=True, user=1235, group=1235, extra_groups=[4321])
        self.assertEqual(done.returncode, 0, done.stderr)
        now = os.stat(self.path("saved"))
        self.assertEqual((now.st_uid, now.st_gid), (1235, 4321))

    def test_link_stays(self):
        os.mkdir(self.path("far"))
        self.write("far/state", b"old")
        os.symlink("far/state", self.path("saved"))
        self.save(b"")
        self.assertTrue(os.path.islink(self.path("saved")))
        self.assertEqual(sorted(os.listdir(self.path("far"))), ["state"])

    def test_name_without_folder(self):
        done = support.run([BOARD, "--save", "saved"], b"", cwd=self.folder)
        self.assertEqual(done.returncode, 0)
        self.assertIn("format", json.loads(self.content("saved")))

    def failed(self, done, reason):
        """The session ran to its end; the old file is intact, and nothing is left next to it."""
        self.assertEqual(done.returncode, 1)
        self.assertTrue(done.stdout.endswith(support.UNKNOWN + support.PROMPT))
        self.assertIn(f"cannot save the state in '{self.path('saved')}': {reason}\n",
                      done.stderr.decode())

    def test_limit_of_the_file_size(self):
        self.write("saved", b"old")
        limited = ["sh", "-c", 'ulimit -f 1; exec "$@"', "sh"]
        done = support.run([*limited, BOARD, "--save", self.path("saved")], b"zz\n")
        self.failed(done, "File too large")
        self.assertEqual(self.content("saved"), b"old")
        self.assertEqual(os.listdir(self.folder), ["saved"])

    def on_a_small_disk(self, commands):
        """Runs a board whose folder is a file system of 16 KiB that holds an old state, then shows
        what is there. `commands` come before the board."""
        script = (
            f"mount -t tmpfs -o size=16k disk {self.folder} && cd {self.folder} && "
            f"echo old >saved && {commands} && "
            f"{shlex.quote(BOARD)} --save {self.path('saved')}; status=$?; "
            "echo; echo AFTER; ls; cat saved; exit $status"
        )
        done = support.run([*MOUNTS, "sh", "-c", script], b"zz\n")
        done.stdout, _, after = done.stdout.partition(b"\nAFTER\n")
        return done, after

    @unittest.skipIf(WHY_NO_MOUNTS, WHY_NO_MOUNTS)
    def test_full_disk(self):
        done, after = self.on_a_small_disk("! dd if=/dev/zero of=filler bs=1k count=64 2>/dev/null")
        self.failed(done, "No space left on device")
        self.assertEqual(after, b"filler\nsaved\nold\n")

    @unittest.skipIf(WHY_NO_MOUNTS, WHY_NO_MOUNTS)
    def test_read_only_disk(self):
        """Found out before the session, not after it."""
        done, after = self.on_a_small_disk(f"mount -o remount,ro {self.folder}")
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertIn(b"Read-only file system", done.stderr)
        self.assertEqual(after, b"saved\nold\n")

    @unittest.skipIf(WHY_NO_MOUNTS, WHY_NO_MOUNTS)
    def test_disk_with_room(self):
        """The same with nothing in the way."""
        done, after = self.on_a_small_disk("true")
        self.assertEqual(done.returncode, 0)
        self.assertTrue(after.startswith(b"saved\n{\n"))


class Signals(StateTest):
    LINE = b"arp 7 = 10.1.2.3 021122334455"

    def saved_entries(self):
        return list(json.loads(self.content("saved"))["arp"]["entries"])

    def test_state_is_saved_first(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            with self.subTest(number):
                self.write("saved", b"old")
                self.start("--save", self.path("saved"))
                self.command(self.LINE)
                self.board.send_signal(number)
                self.assertEqual(self.board.wait(support.DEADLINE), -number)
                self.assertEqual(self.saved_entries(), ["07"])

    def test_in_a_wait_that_never_ends(self):
        self.start("--save", self.path("saved"), "--fault", "hang:l3")
        self.command(self.LINE)
        self.type(b"l3 5\n")
        self.screen.until(b"l3 5\r\n")
        self.board.send_signal(signal.SIGTERM)
        self.assertEqual(self.board.wait(support.DEADLINE), -signal.SIGTERM)
        self.assertEqual(self.saved_entries(), ["07"])

    def test_in_the_middle_of_a_line(self):
        self.start("--save", self.path("saved"))
        self.type(b"arp")
        self.screen.until(b"arp")
        self.board.send_signal(signal.SIGTERM)
        self.assertEqual(self.board.wait(support.DEADLINE), -signal.SIGTERM)
        self.assertEqual(self.saved_entries(), [])

    def test_failure_is_reported(self):
        limited = ["sh", "-c", 'ulimit -f 1; exec "$@"', "sh"]
        self.start("--save", self.path("saved"), before=limited)
        self.board.send_signal(signal.SIGTERM)
        self.assertEqual(self.board.wait(support.DEADLINE), 1)
        self.assertIn(b"File too large", self.board.stderr.read())

    def test_ignored_signal_stays_ignored(self):
        self.start("--save", self.path("saved"), before=["nohup"])
        self.board.send_signal(signal.SIGHUP)
        self.command(self.LINE)
        self.leave()
        self.assertEqual(self.saved_entries(), ["07"])

    def test_terminal_is_restored(self):
        terminal = support.Terminal(self)
        before = terminal.settings()
        terminal.start([BOARD, "--save", self.path("saved")])
        terminal.screen.until(support.PROMPT)
        self.assertTrue(support.is_editor_mode(terminal.settings()))
        terminal.process.send_signal(signal.SIGTERM)
        self.assertEqual(terminal.status(), -signal.SIGTERM)
        self.assertEqual(terminal.settings(), before)
        self.assertEqual(self.saved_entries(), [])

    def test_without_save_nothing_waits(self):
        self.start()
        self.board.send_signal(signal.SIGTERM)
        self.assertEqual(self.board.wait(support.DEADLINE), -signal.SIGTERM)


LIBC = ctypes.CDLL(None, use_errno=True)
PTRACE_TRACEME, PTRACE_SETOPTIONS, PTRACE_SYSCALL = 0, 0x4200, 24
PTRACE_O_EXITKILL = 0x100000


class Killed(StateTest):
    def temporary_files(self):
        """What is written and then takes the place of the saved state."""
        return glob.glob(glob.escape(self.path("saved")) + ".*")

    def run_traced(self, script, stops):
        """Runs a board, stopping at the beginning and end of each of its system calls, and kills
        it that many stops after the one at which there was a temporary file; how many there were.
        How many come before differs from run to run."""
        with open(script, "rb") as lines:
            # pylint: disable=consider-using-with
            process = subprocess.Popen(
                [BOARD, "--load", self.path("new"), "--save", self.path("saved")],
                stdin=lines, stdout=subprocess.DEVNULL,
                preexec_fn=lambda: LIBC.ptrace(PTRACE_TRACEME, 0, None, None),
            )
        LIBC.ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
        _, status = os.waitpid(process.pid, 0)
        if not os.WIFSTOPPED(status):
            process.returncode = 0
            self.skipTest("no right to trace a program")
        LIBC.ptrace(PTRACE_SETOPTIONS, process.pid, None, PTRACE_O_EXITKILL)
        count = -1
        while os.WIFSTOPPED(status) and count != stops:
            LIBC.ptrace(PTRACE_SYSCALL, process.pid, None, None)
            _, status = os.waitpid(process.pid, 0)
            if count >= 0 or self.temporary_files():
                count += 1
        if os.WIFSTOPPED(status):
            os.kill(process.pid, signal.SIGKILL)
            os.waitpid(process.pid, 0)
        process.returncode = status
        return count

    def test_old_or_new(self):
        """At whichever system call the board is killed while it saves."""
        self.save(b"", "old")
        self.save(FILL, "new")
        script = self.write("script", b"")
        old, new = self.content("old"), self.content("new")
        everything = self.run_traced(script, None)
        self.assertEqual(self.content("saved"), new)
        seen = []
        for stops in range(everything):
            self.write("saved", old)
            self.run_traced(script, stops)
            self.assertIn(self.content("saved"), (old, new))
            for file in self.temporary_files():
                os.unlink(file)
            seen.append(self.content("saved") == new)
        # There is one moment at which it is replaced, and it lies among these.
        self.assertEqual(seen, sorted(seen))
        self.assertFalse(seen[0])
        self.assertTrue(seen[-1])


if __name__ == "__main__":
    support.main()
