"""The console a second time: line editor, history, words and the `reg` and `version` commands, as
simple as possible, to compare the monitor with on any keys. None of what these commands print is
long enough to be wrapped."""

from support import PROMPT, START, UNKNOWN

BLANKED = b"\rDebug>> " + 71 * b" " + b"\rDebug>> "
REG_ROWS = ("<reg> [<bytes>]", "<reg> [<bytes>] = <values>")
WINDOW = 0x50000000

ESCAPE, LINE_FEED, BACKSPACE = 27, 10, 8
UP, DOWN = b"AB"


class OutOfReach(Exception):
    """A command would touch registers other than the storage that the model has."""


class Console:
    """Fed with keys, it collects what the monitor has to print. `storage` are the bytes of the
    registers from `start` on, which do nothing but hold what is stored."""

    def __init__(self, start, size, version):
        self.start, self.storage, self.version = start, bytearray(size), version
        self.output = bytearray(START)
        self.line = bytearray()
        self.history = []  # the newest line first
        self.cursor = None  # the line that Up shows next
        self.slots = bytearray(128 * 32 + 1)

    def feed(self, keys):
        keys = iter(keys)
        for key in keys:
            if key == LINE_FEED:
                self.output += b"\r\n"
                self.run_line()
                self.line.clear()
                self.output += PROMPT
            elif key == BACKSPACE:
                if self.line:
                    self.line.pop()
                    self.output += b"\b \b"
            elif key == ESCAPE:
                if next(keys, None) == ord("[") and (arrow := next(keys, None)) in (UP, DOWN):
                    self.line = bytearray(self.older() if arrow == UP else self.newer())
                    self.output += BLANKED + self.line
            else:
                self.line.append(key)
                self.output.append(key)
                if len(self.line) in (71, 151):
                    self.output += b"\n\r"

    def older(self):
        if self.cursor is None:
            return self.history[-1] if self.history else b""
        shown = self.history[self.cursor]
        self.cursor = self.cursor + 1 if self.cursor + 1 < len(self.history) else None
        return shown

    def newer(self):
        if not self.history:
            return b""
        shown = len(self.history) - 1 if self.cursor is None else self.cursor - 1
        if shown < 1:
            self.cursor = 0
            return b""
        self.cursor = shown
        return self.history[shown - 1]

    def take_line(self):
        """The line for the words: up to a carriage return, at most 254 characters."""
        line, end, _ = bytes(self.line + b"\r").partition(b"\r")
        looked_at = line[:254]
        if b"\x03" in looked_at or b"\x04" in looked_at:
            return b""
        if end and 0 < len(line) < 254:
            self.history = [line.partition(b"\0")[0], *self.history[:7]]
            self.cursor = 0
        return looked_at

    def take_words(self):
        """Fills the slots; the number of words, -1 when one is too long."""
        line = self.take_line()
        at = count = 0
        while count < 128:
            while line[at : at + 1] == b" ":
                at += 1
            word = bytearray()
            while at < len(line) and line[at] != ord(" "):
                if len(word) == 32:
                    self.slots[32 * count : 32 * count + 32] = word
                    return -1
                sign = line[at] in b"=:"
                if sign and word:
                    break
                word += line[at : at + 1].upper()
                at += 1
                if sign:
                    break
            if not word:
                break
            self.put_word(count, word)
            count += 1
        return count

    def put_word(self, slot, word):
        self.slots[32 * slot : 32 * slot + len(word) + 1] = word + b"\0"

    def word(self, slot):
        return bytes(self.slots[32 * slot : self.slots.index(0, 32 * slot)])

    def run_line(self):
        count = self.take_words()
        if count < 0:
            self.output += b"\n\rInvalid Command\n\r"
        elif count > 0:
            name = self.word(0).lower()
            if name == b"reg":
                self.put_word(0, name)
                if not self.reg(count):
                    self.misused("reg", REG_ROWS)
            elif name == b"version":
                self.put_word(0, name)
                if count == 1:
                    self.output += self.version
                else:
                    self.misused("version", ("",))
            else:
                self.output += UNKNOWN

    def misused(self, name, rows):
        self.put_word(1, name.encode())
        shown = "".join(f"  {name:8} {row:36}\n\r" for row in rows)
        self.output += b"Invalid Command\n\r" + shown.encode()

    def number(self, slot, digits):
        word = self.word(slot).removeprefix(b"0X")
        good = 0 < len(word) <= digits and not word.strip(b"0123456789ABCDEF")
        return int(word, 16) if good else None

    def reg(self, count):
        """False when the words do not fit."""
        start = self.number(1, 8) if count > 1 else None
        first, length = 0, 1
        if count >= 4 and self.word(2) == b"=":
            first, length = 3, count - 3
        elif count >= 3:
            length = self.number(2, 8)
            if count >= 4:
                first = 4
                if self.word(3) != b"=" or count == 4:
                    return False
        if start is None or length is None or start + length > 0x2000:
            return False
        for i in range(length if first else 0):
            value = self.number(first + i % (count - first), 2)
            if value is None:
                return False
            self.storage[self.place(start + i)] = value
        self.dump(start, length)
        return True

    def place(self, offset):
        if not 0 <= offset - self.start < len(self.storage):
            raise OutOfReach
        return offset - self.start

    def dump(self, start, length):
        for line in range(start & ~15, max(start + length, start + (start % 16 != 0)), 16):
            shown = (
                f"{self.storage[self.place(at)]:02X}" if start <= at < start + length else ".."
                for at in range(line, line + 16)
            )
            self.output += f"{WINDOW + line:08X}: {' '.join(shown)} \n\r".encode()
