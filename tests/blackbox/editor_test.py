"""The line editor of virtual-board on a terminal: keys in, bytes out."""

import time
import unittest

import support
from support import PROMPT, REDRAW, START, UNKNOWN

UP = b"\x1b[A"
DOWN = b"\x1b[B"
CTRL_C = b"\x03"
CTRL_D = b"\x04"
BACKSPACE = b"\x08"
DELETE = b"\x7f"
ERASED = b"\b \b"

# What "help help" and "version" answer.
HELP_ROWS = (
    b"  help                                         \n\r"
    b"  help     <command>                           \n\r"
)
VERSION = b"VBQ5910 Version  2\n\r"


class EditorTest(unittest.TestCase):
    def start(self, *options):
        self.terminal = support.Terminal(self)
        self.terminal.start([support.program("VIRTUAL_BOARD"), *options])
        self.terminal.screen.until(START)

    def press(self, keys, shown):
        """Types the keys; exactly `shown` has to appear."""
        self.terminal.type(keys)
        self.terminal.screen.shows(shown)

    def enter(self, line):
        """Enters a line that is not a command."""
        self.press(line + b"\r", line + b"\r\n" + UNKNOWN + PROMPT)


class Keys(EditorTest):
    def setUp(self):
        self.start()

    def test_each_key_is_echoed_at_once(self):
        for key in (b"h", b"e", b"l", b"p", b"\t", b"\x01", b"\x80", b"\xff"):
            self.press(key, key)

    def test_enter_is_a_line_feed(self):
        self.press(b"\r", b"\r\n" + PROMPT)
        self.press(b"\n", b"\r\n" + PROMPT)

    def test_backspace(self):
        self.press(b"a", b"a")
        self.press(b"b", b"b")
        self.press(BACKSPACE, ERASED)
        self.press(b"c", b"c")
        self.press(b"\r", b"\r\n" + UNKNOWN + PROMPT)
        self.press(UP, REDRAW + b"ac")

    def test_delete_is_a_backspace(self):
        self.press(b"ab", b"ab")
        self.press(DELETE, ERASED)
        self.press(DELETE, ERASED)
        self.press(DELETE + BACKSPACE + b"x", b"x")

    def test_backspace_in_an_empty_line(self):
        self.press(BACKSPACE + b"x", b"x")

    def test_unknown_escape_sequences_vanish(self):
        self.press(b"a\x1bxb\x1b[Cc", b"abc")
        self.press(b"\r", b"\r\n" + UNKNOWN + PROMPT)
        self.press(UP, REDRAW + b"abc")

    def test_sequence_that_does_not_go_on_takes_no_later_key(self):
        for keys in (b"\x1b", b"\x1b["):
            self.press(keys, b"")
            # It is given up after 20 ms and what a busy machine adds.
            time.sleep(1)
            self.press(b"x", b"x")

    def test_echo_breaks_after_the_71st_character(self):
        self.press(70 * b"x", 70 * b"x")
        self.press(b"y", b"y\n\r")
        self.press(b"z", b"z")

    def test_line_of_300_characters_is_cut_at_254(self):
        line = b"help help" + 245 * b" " + 46 * b"x"
        echo = line[:71] + b"\n\r" + line[71:151] + b"\n\r" + line[151:]
        self.press(line + b"\r", echo + b"\r\n" + HELP_ROWS + PROMPT)
        # A cut line is not entered into the history.
        self.press(UP, REDRAW)

    def test_ctrl_c_and_ctrl_d_discard_the_line(self):
        for key in (CTRL_C, CTRL_D):
            self.press(b"help" + key, b"help" + key)
            self.press(b"\r", b"\r\n" + PROMPT)
            self.press(UP, REDRAW)
            self.press(b"\r", b"\r\n" + PROMPT)


class History(EditorTest):
    def setUp(self):
        self.start()

    def test_empty(self):
        self.press(UP, REDRAW)
        self.press(DOWN, REDRAW)

    def test_up_and_down(self):
        self.enter(b"one")
        self.enter(b"two")
        self.press(UP, REDRAW + b"two")
        self.press(UP, REDRAW + b"one")
        self.press(DOWN, REDRAW + b"two")
        self.press(DOWN, REDRAW)
        self.press(UP, REDRAW + b"two")

    def test_recalled_line_can_be_edited_and_entered(self):
        self.enter(b"versiom")
        self.press(UP, REDRAW + b"versiom")
        self.press(BACKSPACE + b"n", ERASED + b"n")
        self.press(b"\r", b"\r\n" + VERSION + PROMPT)

    def test_nine_lines_leave_the_last_eight(self):
        lines = [b"line%d" % i for i in range(1, 10)]
        for line in lines:
            self.enter(line)
        for line in reversed(lines[1:]):
            self.press(UP, REDRAW + line)
        self.press(UP, REDRAW + b"line2")


class KeptDelete(EditorTest):
    def test_delete_is_an_ordinary_character(self):
        self.start("--keep-delete")
        self.press(b"a" + DELETE, b"a" + DELETE)
        self.press(BACKSPACE, ERASED)


if __name__ == "__main__":
    support.main()
