"""Traffic, commands and faults at once, for SOAK_SECONDS: no frame is lost that is not counted,
memory does not grow, and the operator always gets an answer."""

import os
import pathlib
import random
import re
import socket
import sys
import tempfile
import threading
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "blackbox"))

# pylint: disable=wrong-import-position
import frames
import support
from support import PROMPT, START

SECONDS = float(os.environ.get("SOAK_SECONDS", "6"))

FAULTS = ("hang:pdr", "busy:nat", "fail:mcast", "slow:arp:50", "slow:tx:5", "slow:status:3",
          "slow:release:7", "slow:sc:20")

# No answer, and no frame, takes longer on a busy machine.
PATIENCE = 30

# Frames on their way, at most: what a program that reads slowly leaves lying loses none of them.
WINDOW = 40

# More than the chip has buffers for received frames.
FLOOD = 400

# Kilobytes that memory may grow once everything has run for a while.
GROWTH = 256

FRAME = b"\n\rPacket length=0x"
HEAD = re.compile(FRAME + rb"([0-9a-f]{3})    reason=0x[0-9a-f]{2}\n\r")
DUMP_LINE = len(frames.dump(0, bytes(16)))

# The model's engines and registers; nothing that stops the ports or clears the counters.
COMMANDS = [
    b"version", b"help", b"help clsfr", b"reg 600 10", b"reg 3 =", b"l3 f", b"l3 0 5", b"nat 0",
    b"natcfg", b"nat h 10.0.0.1 50", b"mcast 3 = 224.0.0.1 lan", b"mcast 0 40", b"arp 0 5",
    b"arp r", b"arp 5 = 10.0.0.9 020304050607", b"clsfr 0 20", b"clsfr c", b"sc lan",
    b"sc o wan", b"mii 2 1", b"maccfg lan", b"macaddr", b"qos", b"qos lan 1", b"pst 0",
    b"pxt 0", b"rc", b"ctrl", b"gpio", b"timer", b"tdm", b"cs", b"frame", b"frame s", b"zz",
    b"", 40 * b"long ", 300 * b"x", b"frame t 40 1 dmz 0 low",
]


def numbered(number):
    """The frame of that number: its length and contents follow from it."""
    return frames.frame(60 + number * 7919 % 1455, number=number)


class Tally:
    """Which of the frames that were sent have been seen, exactly once and unchanged."""

    def __init__(self):
        self.changed = threading.Condition()
        self.on_the_way = set()
        self.sent = 0
        self.seen = {"shown": 0, "forwarded": 0}
        self.dropped = 0
        self.wrong = None

    def send(self, peer, window):
        """Sends the next frame once there is room for it."""
        with self.changed:
            if not self.changed.wait_for(lambda: len(self.on_the_way) < window, PATIENCE):
                self.wrong = f"{len(self.on_the_way)} frames have not been seen"
                return
            number = self.sent
            self.sent += 1
            self.on_the_way.add(number)
        peer.send(numbered(number))

    def see(self, where, octets):
        number = int.from_bytes(octets[14:18], "big")
        with self.changed:
            if number in self.on_the_way and octets == numbered(number):
                self.on_the_way.remove(number)
                self.seen[where] += 1
            else:
                self.wrong = f"{where} twice, or changed: {octets[:32].hex(' ')}"
            self.changed.notify_all()

    def wait_until_left(self, count):
        with self.changed:
            self.changed.wait_for(lambda: len(self.on_the_way) <= count or self.wrong, PATIENCE)


class Console:
    """What the board shows: frames go to the tally, the rest are answers."""

    def __init__(self, fd, tally):
        self.fd = fd
        self.tally = tally
        self.pending = b""
        self.answers = b""
        self.arrived = threading.Condition()
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        while True:
            try:
                self.pending += os.read(self.fd, 65536)
            except OSError:
                return
            with self.arrived:
                while self.take():
                    pass
                self.arrived.notify_all()

    def take(self):
        """Takes a frame, or what cannot be the beginning of one; False when that is not known."""
        head = HEAD.search(self.pending)
        if not head:
            # What may be the beginning of a frame waits for the rest.
            at = self.pending.rfind(FRAME)
            if at < 0:
                at = max(self.pending.rfind(b"\n"), 0)
                if not FRAME.startswith(self.pending[at:]):
                    at = len(self.pending)
            self.answers += self.pending[:at]
            self.pending = self.pending[at:]
            return False
        length = int(head[1], 16)
        end = head.end() + (length + 15) // 16 * DUMP_LINE
        if len(self.pending) < end:
            return False
        lines = self.pending[head.end() : end].split(b"\n\r")
        octets = bytes.fromhex("".join(line[10:].decode().replace("..", "") for line in lines))
        self.answers += self.pending[: head.start()]
        self.pending = self.pending[end:]
        self.tally.see("shown", octets)
        return True

    def until(self, text):
        """Waits for an answer that ends in `text`; all of it."""
        with self.arrived:
            if not self.arrived.wait_for(lambda: text in self.answers, PATIENCE):
                raise AssertionError(f"no {text!r} in {self.answers[-200:]!r}")
            at = self.answers.index(text) + len(text)
            answer, self.answers = self.answers[:at], self.answers[at:]
            return answer


class Soak(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = {port: os.path.join(folder.name, port) for port in ("wan", "lan", "dmz")}
        options = ["--capture", "/dev/null"]
        for port, path in self.path.items():
            options += ["--" + port, "unix:" + path]
        for fault in FAULTS:
            options += ["--fault", fault]
        terminal = support.Terminal(self)
        self.board = terminal.start([support.program("VIRTUAL_BOARD"), *options])
        self.type = terminal.type
        self.tally = Tally()
        self.console = Console(terminal.user_side, self.tally)
        self.console.until(START)
        self.peers = {port: self.connect(port) for port in self.path}
        threading.Thread(target=self.read_wan, args=[self.peers["wan"]], daemon=True).start()
        self.commands = 0
        self.slowest = 0.0
        self.memory = []

    def connect(self, port):
        peer = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        self.addCleanup(peer.close)
        peer.connect(self.path[port])
        return peer

    def read_wan(self, wan):
        while octets := wan.recv(4096):
            self.tally.see("forwarded", octets)

    def command(self, line):
        self.commands += 1
        self.type(line + b"\r")
        return self.console.until(PROMPT)

    def give_up_a_wait(self):
        """Ctrl-C at an engine that hangs, and that does so at every start."""
        self.commands += 1
        self.type(b"pdr 0\r")
        self.console.until(b"pdr 0\r")
        begin = time.monotonic()
        self.type(b"\x03")
        self.assertIn(b"PDR Read failed\n\r", self.console.until(PROMPT))
        self.slowest = max(self.slowest, time.monotonic() - begin)

    def drops(self):
        answers = [self.command(b"sc %s sc_drop" % port) for port in (b"lan", b"dmz")]
        return sum(int(re.search(rb"SC_DROP +: +(\w+)", answer)[1], 16) for answer in answers)

    def traffic(self, count):
        """Frames while commands run; then all of them have been seen."""

        def send():
            for i in range(count):
                self.tally.send(self.peers["dmz" if i % 3 == 0 else "lan"], WINDOW)

        self.command(b"frame r = " + random.choice((b"auto", b"forward")))
        sender = threading.Thread(target=send, daemon=True)
        sender.start()
        while sender.is_alive():
            self.command(random.choice(COMMANDS))
            if random.random() < 0.1:
                self.give_up_a_wait()
            if random.random() < 0.1:
                self.command(b"frame r = " + random.choice((b"auto", b"forward")))
        sender.join()
        self.expect_left(0)

    def flood(self):
        """More frames than buffers while nothing takes them: the rest are counted, and the others
        are still there."""
        self.command(b"frame r = manual")
        before = self.drops()
        arrived = (self.received() + FLOOD) % 0x1000000
        for _ in range(FLOOD):
            self.tally.send(self.peers["lan"], FLOOD)
        deadline = time.monotonic() + PATIENCE
        while self.received() != arrived:
            self.assertLess(time.monotonic(), deadline)
        dropped = (self.drops() - before) % 0x10000
        self.assertEqual(dropped, FLOOD - frames.HANDLES)
        self.command(b"frame r = auto")
        self.expect_left(dropped)
        self.tally.on_the_way.clear()
        self.tally.dropped += dropped

    def expect_left(self, count):
        self.tally.wait_until_left(count)
        self.assertIsNone(self.tally.wrong)
        self.assertEqual(len(self.tally.on_the_way), count, "frames were lost and not counted")

    def received(self):
        answer = self.command(b"sc lan sc_totalfrmrecv")
        return int(re.search(rb": +(\w+)", answer)[1], 16)

    def note_memory(self):
        status = pathlib.Path(f"/proc/{self.board.pid}/status").read_text(encoding="ascii")
        self.memory.append(int(re.search(r"VmRSS:\s+(\d+)", status)[1]))

    def test_nothing_is_lost_and_nothing_grows(self):
        end = time.monotonic() + SECONDS
        while time.monotonic() < end or len(self.memory) < 5:
            self.traffic(random.randint(100, 400))
            self.flood()
            # One program after the other.
            self.peers["dmz"].close()
            self.peers["dmz"] = self.connect("dmz")
            self.note_memory()
        settled = max(self.memory[: len(self.memory) // 5 + 1])
        tally = self.tally
        print(
            f"{len(self.memory)} rounds, {self.commands} commands, {tally.sent} frames: "
            f"{tally.seen['shown']} shown, {tally.seen['forwarded']} forwarded, "
            f"{tally.dropped} dropped and counted; slowest Ctrl-C {self.slowest:.3f} s; "
            f"memory {self.memory[0]} kB at first, {settled} settled, {self.memory[-1]} at last",
            file=sys.stderr,
        )
        self.assertEqual(tally.sent, sum(tally.seen.values()) + tally.dropped)
        self.assertLessEqual(max(self.memory), settled + GROWTH)
        self.type(b"exit\r")
        self.assertEqual(self.board.wait(PATIENCE), 0)


if __name__ == "__main__":
    support.main()
