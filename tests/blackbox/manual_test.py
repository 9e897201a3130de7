"""The manual pages, the README and the documents with examples: they show what the programs do, and
nothing is missing in them.

A literal block of a page, or a fenced block of a document, is an example when it has prompts. It is
a session when it begins with the console's prompt, or with the start of a board and nothing else for
the shell. Sessions are typed on a board of their own, and the terminal then shows the block:

    $ virtual-board --fault busy:l3
    ...
    Debug>> l3 5
    L3 Read failed

In other examples "$ " begins a line for the shell, "> " continues it, and its output follows.
The shell finds the programs in PATH and a capture in.pcap of one frame in its folder. Blocks with
unshare or nsenter need a network of their own; tap_test.py does what they show.
"""

import glob
import os
import re
import shlex
import subprocess
import unittest

import frames
import support
from board import BOARD, BoardTest

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
PAGES = sorted(glob.glob(os.path.join(SOURCES, "packaging/man/*.[1-9]")))
DOCUMENTS = [os.path.join(SOURCES, name) for name in ("README.md", "docs/ports.md")]
CONSOLE_PAGE = os.path.join(SOURCES, "packaging/man/debug-monitor.8")
BOARD_PAGE = os.path.join(SOURCES, "packaging/man/virtual-board.1")

PROMPT = "Debug>> "


def read(path):
    with open(path, encoding="ascii") as file:
        return file.read()


def plain(text):
    """A line of a page as it is shown."""
    return text.replace(r"\&", "").replace(r"\-", "-").replace(r"\e", "\\")


def blocks(path, language=""):
    """The literal blocks of a page or document: line number and lines."""
    page = not path.endswith(".md")
    begin, end = (r"\.Bd -literal.*", r"\.Ed") if page else (r"```" + language, r"```")
    block = None
    for number, line in enumerate(read(path).splitlines(), 1):
        if block is None:
            if re.fullmatch(begin, line):
                first, block = number + 1, []
        elif re.fullmatch(end, line):
            yield first, block
            block = None
        else:
            block.append(plain(line) if page else line)


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

    def in_shell(self, block):
        """What is seen of a shell that shows its script and runs it."""
        lines = [line[2:] for line in block if line.startswith(("$ ", "> "))]
        with open(self.path("script"), "w", encoding="ascii") as script:
            script.write("\n".join(lines) + "\n")
        os.makedirs(self.path("build"), exist_ok=True)
        if not os.path.exists(self.path("build/bin")):
            os.symlink(os.path.dirname(BOARD), self.path("build/bin"))
        frames.write_pcap(self.path("in.pcap"), [frames.frame(60, frames.BROADCAST)])
        done = subprocess.run(
            ["sh", "-v", "script"],
            cwd=self.folder,
            env={**os.environ, "PATH": os.path.dirname(BOARD) + ":" + os.environ["PATH"]},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=support.DEADLINE,
            check=False,
        )
        return done.stdout

    def check(self, block):
        if is_session(block):
            wanted, shown = block, self.on_board(block)
        else:
            wanted = [re.sub(r"^[$>] ", "", line) for line in block]
            shown = self.in_shell(block)
        self.assertEqual("\n".join(wanted), "\n".join(screen(shown)).rstrip("\n"))

    def test_examples(self):
        for path in [*PAGES, *DOCUMENTS]:
            examples = [(line, block) for line, block in blocks(path) if is_example(block)]
            self.assertNotEqual(examples, [], f"{path} has no examples")
            for line, block in examples:
                with self.subTest(f"{os.path.basename(path)}, line {line}"):
                    self.check(block)


class ProgramOnAPort(BoardTest):
    def test_it_exchanges_frames(self):
        """Once its frame has come in, it is sent one of zeros."""
        [(_, block)] = blocks(os.path.join(SOURCES, "docs/ports.md"), "python")
        self.start("--lan", "unix:lan.socket", before=["env", "-C", self.folder])
        self.command(b"frame r = auto")
        # pylint: disable=consider-using-with
        program = subprocess.Popen(
            ["python3", "-c", "\n".join(block)], cwd=self.folder, stdout=subprocess.PIPE
        )
        self.addCleanup(support.end, program)
        self.screen.until(b"Packet length=0x03c    reason=0x04")
        self.command(b"frame t 3c 1 lan 0 low")
        self.assertEqual(program.stdout.read(), 60 * b"00" + b"\n")
        self.assertEqual(program.wait(support.DEADLINE), 0)


def sections(path, macro):
    """The text below each heading of a page, by heading."""
    parts = re.split(rf"^\.{macro} (.*)\n", read(path), flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


class Completeness(BoardTest):
    def help(self, *words):
        """The answer to help, its wrapped lines joined again."""
        answer = self.command(" ".join(["help", *words]).encode()).decode()
        return answer.replace("\n\r\t   ", "").replace("\r", "")

    def test_every_form_of_every_command(self):
        self.start()
        described = sections(CONSOLE_PAGE, "Ss")
        commands = self.help().split()
        self.assertEqual([name for name in described if name in commands], commands)
        for command in commands:
            forms = [" ".join(row.split()) for row in self.help(command).strip().splitlines()]
            heads = re.findall(r"^\.It Ic (.*)$", described[command], re.MULTILINE)
            with self.subTest(command):
                self.assertEqual([head for head in heads if head in forms], forms)

    def test_every_failure(self):
        page = read(CONSOLE_PAGE)
        for folder in ("system", "mac", "tables", "classifier", "qos", "pppoe"):
            for path in glob.glob(os.path.join(SOURCES, folder, "*_command.cpp")):
                for failure in re.findall(r'"([^"\n]* failed)', read(path)):
                    self.assertTrue(failure in page, failure)

    def test_every_option(self):
        """With its argument, and whether it may be repeated."""
        text = support.run([BOARD, "--help"]).stdout.decode()
        rows = re.findall(r"^  (-[-\w,]+)(| [A-Z]+|\[=[A-Z]+\])( \.\.\.|)(?:  |$)", text,
                          re.MULTILINE)
        known = sorted((name, argument, repeated != "")
                       for names, argument, repeated in rows for name in names.split(","))
        self.assertIn(("--fault", " SPEC", True), known)
        page = read(BOARD_PAGE)
        items = re.findall(r"^\.It (Fl .*)\n((?:(?!\.It |\.El).*\n)*)", page, re.MULTILINE)
        described = [(head.replace(" Ns Op = Ns Ar FORMAT", "[=FORMAT]").replace(" Ar", ""),
                      "\nMay be repeated.\n" in "\n" + body)
                     for heads, body in items for head in heads.split(" , ")]
        described = sorted((*re.fullmatch(r"Fl ([-\w]+)(.*)", head).groups(), repeated)
                           for head, repeated in described)
        self.assertEqual([("-" + name, *rest) for name, *rest in described], known)
        for engine in re.search(r"Engines: (.*)", text)[1].split(", "):
            self.assertTrue(re.search(rf"\b{engine}\b", page), engine)


if __name__ == "__main__":
    support.main()
