"""Checks COVERAGE.md against the tests it names and against the monitor's own texts.

A row is a behaviour and, in its last cell, the tests that cover it:
  `Suite.Name`                      a GoogleTest
  `nat.session: nat fe 3`           a whole line of that session, typed or shown
  `debug_monitor_test.StartUp.test_no_device`  a black-box test
A text in quotes, `"NAT Read failed"`, has to be in one of the files that its row names. A row
may name no test only in a section whose heading ends in "(no test)".
"""

import pathlib
import re
import unittest

TESTS = pathlib.Path(__file__).resolve().parent
TOP = TESTS.parent
MONITOR = ("core", "console", "shell", "system", "mac", "tables", "classifier", "qos", "pppoe")

CODE = re.compile(r"`([^`]+)`")
TEST_MACRO = re.compile(r"^TEST(?:_F|_P)?\((\w+), (\w+)\)", re.MULTILINE)
USAGE_ROW = re.compile(r'^    \{"(\w+)", "(.*)", \w+\},$', re.MULTILINE)
FAILURE = re.compile(r'"([^"]* failed)\\n\\r"')


def read(path):
    return path.read_text(encoding="utf-8")


def monitor_sources(pattern):
    return [path for folder in MONITOR for path in sorted((TOP / folder).glob(pattern))]


def google_tests():
    """Suite.Name of every GoogleTest, and its file."""
    return {
        f"{suite}.{name}": path
        for path in TESTS.rglob("*_test.cpp")
        if "chip" not in path.relative_to(TESTS).parts
        for suite, name in TEST_MACRO.findall(read(path))
    }


def black_box_tests():
    """module.Class.method of every black-box test, and its file."""
    found = {}
    for path in (TESTS / "blackbox").glob("*_test.py"):
        owner = None
        for line in read(path).splitlines():
            if match := re.match(r"class (\w+)", line):
                owner = match[1]
            elif match := re.match(r"    def (test_\w+)", line):
                found[f"{path.stem}.{owner}.{match[1]}"] = path
    return found


class Row:
    """A row of a table: where it is, what it says, and the tests that it names."""

    def __init__(self, number, line, needs_no_test):
        cells = re.split(r"(?<!\\)\|", line)[1:-1]
        self.place = f"COVERAGE.md:{number}"
        self.needs_no_test = needs_no_test
        self.said = [text.replace(r"\|", "|") for text in CODE.findall(cells[0])]
        self.held_by = [text.replace(r"\|", "|") for text in CODE.findall(cells[-1])]


def table_rows():
    rows = []
    needs_no_test = False
    for number, line in enumerate(read(TESTS / "COVERAGE.md").splitlines(), 1):
        if line.startswith("#"):
            needs_no_test = line.endswith("(no test)")
        elif line.startswith("|") and not re.match(r"\| (Behaviour|Text) \||\|---", line):
            rows.append(Row(number, line, needs_no_test))
    return rows


class CoverageTable(unittest.TestCase):
    rows = table_rows()
    google = google_tests()
    black_box = black_box_tests()

    def file_of(self, row, test):
        """The file of a test that a row names; there has to be such a test."""
        if found := self.google.get(test) or self.black_box.get(test):
            return found
        name, _, line = test.partition(".session: ")
        path = TESTS / "sessions" / f"{name}.session"
        self.assertTrue(line and path.exists(), f"{row.place}: there is no test '{test}'")
        lines = read(path).splitlines()
        self.assertTrue(
            line in lines or f"Debug>> {line}" in lines,
            f"{row.place}: '{line}' is not a line of {path.name}",
        )
        return path

    def test_named_tests_exist_and_hold_the_quoted_texts(self):
        self.assertGreater(len(self.rows), 200)
        for row in self.rows:
            with self.subTest(row.place):
                self.assertTrue(row.held_by or row.needs_no_test, f"{row.place}: no test")
                texts = "".join(read(self.file_of(row, test)) for test in row.held_by)
                if row.needs_no_test:
                    texts = "".join(read(path) for path in monitor_sources("*.cpp"))
                for said in row.said:
                    if said.startswith('"') and said.endswith('"'):
                        self.assertIn(said[1:-1], texts, row.place)

    def test_every_command_form_has_a_row(self):
        said = {text for row in self.rows for text in row.said}
        table = read(TOP / "shell" / "command_table.cpp")
        forms = USAGE_ROW.findall(table)
        self.assertEqual(len(forms), table.count('\n    {"'))
        missing = [f"{name} {usage}".strip() for name, usage in forms]
        self.assertEqual([form for form in missing if form not in said], [])

    def test_every_failure_text_has_a_row(self):
        said = {text for row in self.rows for text in row.said}
        texts = {t for path in monitor_sources("*.cpp") for t in FAILURE.findall(read(path))}
        self.assertGreater(len(texts), 40)
        self.assertEqual(sorted(text for text in texts if f'"{text}"' not in said), [])

    def test_every_session_and_suite_has_a_row(self):
        held = [test for row in self.rows for test in row.held_by]
        named = {test.split(".")[0] for test in held}
        sessions = {path.stem for path in (TESTS / "sessions").glob("*.session")}
        in_table = {t.partition(".session: ")[0] for t in held if ".session: " in t}
        self.assertEqual(sorted(sessions - in_table), [])
        suites = {test.split(".")[0] for test, path in self.google.items()}
        self.assertEqual(sorted(suites - named), [])


if __name__ == "__main__":
    unittest.main()
