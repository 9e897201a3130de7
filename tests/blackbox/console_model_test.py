"""The console on random keys, compared with a second implementation of it."""

import copy
import os
import random

import board
import console_model
import support

# The CPU's MAC address: six bytes that do nothing but hold what is stored.
START, SIZE = 0x400, 6

SCRIPTS = 60
LINES = 40

ARROWS = (b"\x1b[A", b"\x1b[A", b"\x1b[B")
# Sequences that vanish, with what follows them, and a key that is erased again.
NOTHINGS = (b"\x1bx", b"\x1b[C", b"\x1b\n", b"\x1b[\n", b"\x1b[\x1b", b"z\x08")


def digits(pick):
    return "".join(pick.choices("0123456789abcdefABCDEF", k=pick.choice((1, 2, 2, 2, 3)))).encode()


def register_line(pick):
    """A dump or a store of the registers, sometimes slightly wrong."""
    offset = pick.randrange(START, START + SIZE)
    room = START + SIZE - offset
    line = pick.choice((b"reg ", b"REG ", b" Reg  ")) + pick.choice((b"", b"0x")) + b"%x" % offset
    if pick.random() < 0.6:
        line += b" %x" % pick.randrange(room + 1)
    if pick.random() < 0.7:
        values = [digits(pick) for _ in range(pick.randrange(1, room + 1))]
        line += pick.choice((b"=", b" = ", b" : ", b" ")) + b" ".join(values)
    return line


def odd_line(pick):
    """Words and lines around every length that means something."""
    padded = b"reg 400 6"
    padded += b" " * (pick.choice((70, 71, 72, 150, 151, 152, *range(250, 260), 300)) - 10)
    return pick.choice(
        (
            b"version" + pick.choice((b"", b" x", b"=", b"  ", b"\0zz")),
            b" " * pick.randrange(4),
            bytes(pick.choices(b"abcXYZ019=:.\t\x7f\x80\xff\0!", k=pick.randrange(1, 40))),
            b"x" * pick.choice((31, 32, 33)) + pick.choice((b"", b"=", b" y")),
            padded + pick.choice((b"=", b"2", b"x")) + pick.choice((b"", b"1")),
            b"= " * pick.choice((63, 64, 65, 126, 127, 130)),
            b"reg 400 3 = 1 2 3" + pick.choice((b"\x03", b"\x04", b"\r junk")),
            b"".join(pick.choices(ARROWS, k=pick.randrange(1, 12))) + pick.choice((b"", b"\x08")),
        )
    )


def keys(pick):
    """A line as it is typed, Enter included."""
    line = register_line(pick) if pick.random() < 0.5 else odd_line(pick)
    if pick.random() < 0.3:
        at = pick.randrange(len(line) + 1)
        line = line[:at] + pick.choice(NOTHINGS + ARROWS) + line[at:]
    if pick.random() < 0.1:
        line += b"\x08" * pick.randrange(60)
    return line + b"\n"


class RandomKeys(board.BoardTest):
    def test_every_byte_is_as_predicted(self):
        self.start()
        version = self.command(b"version")
        self.leave()
        for seed in range(SCRIPTS):
            pick = random.Random(seed)
            console = console_model.Console(START, SIZE, version)
            script = b""
            while script.count(b"\n") < LINES:
                typed = keys(pick)
                ahead = copy.deepcopy(console)
                try:
                    ahead.feed(typed)
                except console_model.OutOfReach:
                    continue
                console = ahead
                script += typed
            console.feed(b"exit")
            shown = support.run([board.BOARD], script + b"exit\n").stdout
            wanted = bytes(console.output + b"\r\n")
            at = len(os.path.commonprefix([shown, wanted]))
            part = slice(max(0, at - 40), at + 100)
            self.assertEqual(shown[part], wanted[part], f"seed {seed}, byte {at}")


if __name__ == "__main__":
    support.main()
