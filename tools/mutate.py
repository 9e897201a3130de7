#!/usr/bin/env python3
"""Changes the monitor's sources one token at a time and reports the changes that no test notices.

usage: mutate.py BUILD_FOLDER [--count N] [--seed N] [--only REGEX]

Works on a copy of the sources, so the checkout is never touched. Each change is built and run
against driver_tests and the sessions; a change that does not compile counts as noticed.
"""

import argparse
import concurrent.futures
import pathlib
import random
import re
import shutil
import subprocess
import sys
import threading

TOP = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("core", "console", "shell", "system", "mac", "tables", "classifier", "qos", "pppoe")
TIMEOUT_SECONDS = 30
WORKERS = 2

TOKEN = re.compile(
    r"""(?P<text>"(?:[^"\\]|\\.)+")
      | (?P<char>'(?:[^'\\]|\\.)')
      | (?P<number>\b(?:0x[0-9A-Fa-f]+|[0-9][0-9']*)U?\b)
      | (?P<operator><=|>=|==|!=|&&|\|\||<<|>>|\+\+|--|->|\|=|&=|\+=|-=|[<>+\-|&^~!])
      | (?P<word>\b(?:true|false)\b)""",
    re.VERBOSE,
)

OPERATORS = {
    "<=": "<", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&", "<<": ">>", ">>": "<<",
    "|=": "&=", "&=": "|=", "+=": "-=", "-=": "+=", "<": "<=", ">": ">=", "+": "-", "-": "+",
    "|": "&", "&": "|", "^": "|",
}


def change_number(text, rng):
    digits = text.rstrip("U").replace("'", "")
    suffix = "U" if text.endswith("U") else ""
    value = int(digits, 0)
    changed = rng.choice([value + 1, max(value - 1, 0) if value else 2, value ^ 1 << rng.randrange(8)])
    if changed == value:
        changed += 1
    return (f"0x{changed:X}" if digits.startswith("0x") else str(changed)) + suffix


def change_text(text, rng):
    places = [i for i in range(1, len(text) - 1) if text[i].isalnum() and text[i - 1] not in "\\%"]
    if not places:
        return None
    place = rng.choice(places)
    other = "x" if text[place] != "x" else "q"
    if text[place].isdigit():
        other = str((int(text[place]) + 1) % 10)
    return text[:place] + other + text[place + 1:]


def change(match, rng):
    """Another token in place of the matched one, or None."""
    token = match.group()
    if match["number"]:
        return change_number(token, rng)
    if match["text"]:
        return change_text(token, rng)
    if match["char"]:
        return "'q'" if token != "'q'" else "'x'"
    if match["word"]:
        return "false" if token == "true" else "true"
    return OPERATORS.get(token)


def code_of(line):
    """The line without what is not behaviour: comments, includes, templates, documentation."""
    if re.match(r"\s*(#|//|template\b|static_assert\b|namespace\b|using\b)", line):
        return ""
    return re.split(r"\s*//", line)[0]


def candidates(only):
    for folder in FOLDERS:
        for path in sorted((TOP / folder).glob("*")):
            name = str(path.relative_to(TOP))
            if path.suffix not in (".h", ".cpp") or not re.search(only, name):
                continue
            for number, line in enumerate(path.read_text().splitlines()):
                code = code_of(line)
                if re.search("constexpr (RegisterRow|ValueName|ValueType)", code):
                    break
                for match in TOKEN.finditer(code):
                    # Names and meanings of registers explain traffic; they do not make it.
                    if match["text"] and name.endswith("_registers.h"):
                        continue
                    yield name, number, match


class Workplace:
    """A copy of the sources with its own build."""

    def __init__(self, folder):
        self.source = folder / "source"
        self.build = folder / "build"
        self.source.mkdir(parents=True, exist_ok=True)
        listed = subprocess.run(
            ["git", "-C", str(TOP), "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            check=True, capture_output=True, text=True).stdout.split("\0")
        for name in filter(None, listed):
            target = self.source / name
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.exists() or target.read_bytes() != (TOP / name).read_bytes():
                shutil.copy2(TOP / name, target)
        subprocess.run(
            ["cmake", "-S", str(self.source), "-B", str(self.build), "-G", "Ninja",
             "-DCMAKE_BUILD_TYPE=Debug", "-DDEBUG_MONITOR_BOARD=OFF",
             # Quick to build. An index beyond an array damages nothing else that a test could see.
             "-DCMAKE_CXX_FLAGS_DEBUG=-D_GLIBCXX_ASSERTIONS",
             "-DDEBUG_MONITOR_STATIC=OFF"], check=True, stdout=subprocess.DEVNULL)
        if not self.builds():
            sys.exit("mutate: the unchanged sources do not build")
        if self.noticed():
            sys.exit("mutate: the tests fail on the unchanged sources")

    def builds(self):
        return subprocess.run(
            ["cmake", "--build", str(self.build), "-j", "1", "--target", "driver_tests",
             "session_runner"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            check=False).returncode == 0

    def passes(self, *command):
        try:
            return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  check=False, timeout=TIMEOUT_SECONDS).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def noticed(self):
        programs = self.build / "bin"
        for session in sorted((self.source / "tests/sessions").glob("*.session")):
            if not self.passes(str(programs / "session_runner"), str(session)):
                return f"session {session.stem}"
        if not self.passes(str(programs / "driver_tests"), "--gtest_brief=1"):
            return "driver_tests"
        return None

    def judge(self, name, number, match, token):
        """What notices the change; None when nothing does."""
        path = self.source / name
        original = path.read_text()
        lines = original.splitlines(keepends=True)
        line = lines[number]
        lines[number] = line[:match.start()] + token + line[match.end():]
        path.write_text("".join(lines))
        try:
            return self.noticed() if self.builds() else "the compiler"
        finally:
            path.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="")
    options = parser.parse_args()

    rng = random.Random(options.seed)
    places = list(candidates(options.only))
    rng.shuffle(places)
    picked = []
    for place in places:
        token = change(place[2], rng)
        if token is not None:
            picked.append((*place, token))
        if len(picked) == options.count:
            break

    workers = [Workplace(options.build / f"worker{i}") for i in range(WORKERS)]
    survivors = []
    done = 0
    lock = threading.Lock()

    def work(index):
        nonlocal done
        for name, number, match, token in picked[index::WORKERS]:
            who = workers[index].judge(name, number, match, token)
            with lock:
                done += 1
                if sys.stderr.isatty() or done % 50 == 0:
                    print(f"\r{done} of {len(picked)}, {len(survivors)} unnoticed", end="",
                          file=sys.stderr, flush=True)
                if who is None:
                    survivors.append(f"{name}:{number + 1}: {match.group()} -> {token} survives: "
                                     f"{match.string.strip()}")

    with concurrent.futures.ThreadPoolExecutor() as pool:
        for future in [pool.submit(work, i) for i in range(WORKERS)]:
            future.result()
    print(file=sys.stderr)
    print(*sorted(survivors), sep="\n")
    caught = done - len(survivors)
    print(f"{caught} of {done} changes noticed ({100 * caught / max(done, 1):.1f} %)")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
