"""The examples of the manual pages, the README and the documents, in order, as printed.

A literal block of a page, or a fenced block of a document, is an example when it has prompts. It is
a session when it begins with the console's prompt, or with the start of a board and nothing else for
the shell. Sessions are typed on a board of their own, and the terminal then shows the block:

    $ virtual-board --fault busy:l3
    ...
    Debug>> l3 5
    L3 Read failed

In other examples "$ " begins a line for the shell, "> " continues it, and its output follows; a
block of commands alone must succeed. The shell finds the programs in PATH and the in.pcap of the
examples in its folder. Blocks with unshare or nsenter need a network of their own; tap_test.py does
what they show. The blocks of automation.md are run by examples_test.py.
"""

import os
import re
import shlex
import shutil
import subprocess
import unittest

import support
from board import BOARD, BoardTest
from pages import PAGES, SOURCES, blocks

DOCUMENTS = [
    os.path.join(SOURCES, name)
    for name in ("README.md", "docs/ports.md", "docs/state.md", "docs/virtual-board.md")
]

PROMPT = "Debug>> "


def has(block, prompts):
    return any(line.startswith(prompts) for line in block)


def names_options(block):
    """True for a block that begins with the start of a board."""
    return re.fullmatch(r"\$ (build/bin/)?virtual-board( [-\w:,./]+)*", block[0]) is not None


def is_session(block):
    return block[0].startswith(PROMPT) or (names_options(block) and has(block, PROMPT))


def is_example(block):
    return has(block, (PROMPT, "$ ")) and not has(block, ("$ unshare ", "# nsenter "))


def screen(output):
    """The lines that a terminal shows."""
    lines = output.decode().replace("\r", "").expandtabs(8).split("\n")
    return [line.rstrip() for line in lines]


class Examples(BoardTest):
    def on_board(self, block):
        """What the screen shows when the lines of the block are typed on a board."""
        options = shlex.split(block[0])[2:] if names_options(block) else []
        terminal = support.Terminal(self)
        terminal.start([BOARD, *options], cwd=self.folder)
        shown = terminal.screen.until(support.PROMPT)
        if names_options(block):
            shown = block[0].encode() + b"\n" + shown
        else:
            shown = PROMPT.encode()
        for line in block:
            if not line.startswith(PROMPT):
                continue
            typed = line[len(PROMPT) :].encode()
            terminal.type(typed + b"\n")
            shown += terminal.screen.until(typed + b"\r\n")
            if typed == b"exit":
                self.assertEqual(terminal.status(), 0)
                return shown
            shown += terminal.screen.until(support.PROMPT)
        return shown[: -len(support.PROMPT)]

    def in_shell(self, block, *options):
        """A shell that runs a block, with what is seen of it."""
        lines = [line[2:] for line in block if line.startswith(("$ ", "> "))]
        with open(self.path("script"), "w", encoding="ascii") as script:
            script.write("\n".join(lines) + "\n")
        os.makedirs(self.path("build"), exist_ok=True)
        if not os.path.exists(self.path("build/bin")):
            os.symlink(os.path.dirname(BOARD), self.path("build/bin"))
        shutil.copy(os.path.join(SOURCES, "examples/in.pcap"), self.folder)
        return subprocess.run(
            ["sh", *options, "script"],
            cwd=self.folder,
            env={**os.environ, "PATH": os.path.dirname(BOARD) + ":" + os.environ["PATH"]},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=support.DEADLINE,
            check=False,
        )

    def check(self, block):
        if is_session(block):
            wanted, shown = block, self.on_board(block)
        elif all(line.startswith("$ ") for line in block):
            self.assertEqual(self.in_shell(block, "-e").returncode, 0)
            return
        else:
            wanted = [re.sub(r"^[$>] ", "", line) for line in block]
            shown = self.in_shell(block, "-v").stdout
        self.assertEqual("\n".join(wanted), "\n".join(screen(shown)).rstrip("\n"))

    def test_examples(self):
        for path in [*PAGES, *DOCUMENTS]:
            examples = [(line, block) for line, block in blocks(path) if is_example(block)]
            self.assertNotEqual(examples, [], f"{path} has no examples")
            for line, block in examples:
                with self.subTest(f"{os.path.basename(path)}, line {line}"):
                    self.check(block)


class ProgramOnAPort(BoardTest):
    """The program of ports.md, on the board that stands before it."""

    def test_it_is_answered(self):
        document = os.path.join(SOURCES, "docs/ports.md")
        [(_, program)] = blocks(document, "python")
        [(_, printed)] = blocks(document, "text")
        [board] = [block for _, block in blocks(document) if "unix:" in block[0]]
        self.start(*shlex.split(board[0])[2:], before=["env", "-C", self.folder])
        for line in board:
            if line.startswith(PROMPT):
                self.command(line[len(PROMPT) :].encode())
        done = support.run(["python3", "-c", "\n".join(program)], cwd=self.folder)
        self.assertEqual(done.stdout.decode().splitlines(), printed, done.stderr)


if __name__ == "__main__":
    support.main()
