"""The manual pages as they are shown: what they quote is what the programs print, and nothing is
missing.

Between “ and ” is a whole text that a program prints, or a part of one between tabs, line ends and
colons. Keys, words and other parts of lines are between ‘ and ’.
"""

import glob
import os
import re
import shutil
import unittest

import support
from board import BOARD, BoardTest
from pages import PAGES, SOURCES, blocks, read, shown

CONSOLE_PAGE = os.path.join(SOURCES, "packaging/man/debug-monitor.8")
BOARD_PAGE = os.path.join(SOURCES, "packaging/man/virtual-board.1")

# Folders without texts of the programs.
OTHERS = ("bench", "build", "fuzz", "tests")


def printed_texts():
    """A pattern that matches the texts in string literals of the programs' sources."""
    texts = set()
    for folder, _, names in os.walk(SOURCES):
        if os.path.relpath(folder, SOURCES).split(os.sep)[0] in OTHERS:
            continue
        for name in names:
            if name.endswith((".cpp", ".h")):
                source = re.sub(r'"\s*\n\s*"', "", read(os.path.join(folder, name)))
                for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', source):
                    texts.update(re.split(r"\\[nrt]", literal))
    patterns = (re.escape(text.strip(" :")) for text in texts)
    return re.compile("|".join(re.sub("%x", "[0-9a-f]+", pattern) for pattern in patterns))


def stripped(text):
    return "\n".join(line.strip() for line in text.splitlines())


@unittest.skipIf(shutil.which("mandoc") is None, "there is no mandoc")
class Shown(BoardTest):
    def test_quoted_texts_are_those_of_the_programs(self):
        printed = printed_texts()
        for path in PAGES:
            for text in re.findall("“([^”]*)”", shown(path)):
                with self.subTest(f"{os.path.basename(path)}: {text}"):
                    self.assertIsNotNone(printed.fullmatch(text))

    def test_every_refusal_and_every_failure_is_quoted(self):
        answers = {"Invalid Command", "No command found"}
        for path in glob.glob(os.path.join(SOURCES, "*", "*.cpp")):
            answers.update(re.findall(r'"([^"\n]* failed)\\n\\r"', read(path)))
        self.assertGreater(len(answers), 50)
        answers.remove("SDRAM WriteType failed")  # No command gets there.
        quoted = re.findall("“([^”]*)”", shown(CONSOLE_PAGE))
        self.assertEqual(answers - set(quoted), set())

    def test_scripts_are_told_what_to_look_for(self):
        page = shown(os.path.join(SOURCES, "packaging/man/debug-monitor-script.5"))
        self.assertIn("“Invalid Command”, “No command found” and ‘failed’ in the output", page)

    def test_every_form_of_every_command(self):
        parts = re.split(r"^   (\S.*)\n", shown(CONSOLE_PAGE), flags=re.MULTILINE)
        described = dict(zip(parts[1::2], parts[2::2]))
        self.start()
        commands = self.help().split()
        self.assertEqual([name for name in described if name in commands], commands)
        for command in commands:
            forms = [" ".join(row.split()) for row in self.help(command).strip().splitlines()]
            # The description of a short form begins on the same line.
            heads = [line.split("  ")[0] for line in stripped(described[command]).splitlines()]
            with self.subTest(command):
                self.assertEqual([head for head in heads if head in forms], forms)

    def help(self, *words):
        """The answer to help, its broken lines whole again."""
        answer = self.command(" ".join(["help", *words]).encode()).decode()
        return answer.replace("\n\r\t   ", "").replace("\r", "")

    def test_examples_are_shown_as_they_are_run(self):
        for path in PAGES:
            page = stripped(shown(path))
            for line, block in blocks(path):
                with self.subTest(f"{os.path.basename(path)}, line {line}"):
                    self.assertIn(stripped("\n".join(block)), page)


class Options(BoardTest):
    def test_every_option(self):
        text = support.run([BOARD, "--help"]).stdout.decode()
        rows = re.findall(r"^  (-.*?)(?:  |$)", text, re.MULTILINE)
        known = {name for row in rows for name in re.findall(r"(?<![-\w])--?[a-z][-\w]*", row)}
        page = read(BOARD_PAGE)
        heads = re.findall(r"^\.It (Fl .*)$", page, re.MULTILINE)
        described = {"-" + name for head in heads for name in re.findall(r"Fl ([-\w]+)", head)}
        self.assertEqual(described, known)
        for engine in re.search(r"Engines: (.*)", text)[1].split(", "):
            self.assertTrue(re.search(rf"\b{engine}\b", page), engine)


if __name__ == "__main__":
    support.main()
