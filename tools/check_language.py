#!/usr/bin/env python3
"""Checks the text of tracked files for slips that a native engineer would not make."""

import pathlib
import re
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent

# Not read: the files that name the slips, and the inputs of the fuzzers.
EXCLUDED = ("CONTRIBUTING.md", "tools/check_language.py", "fuzz/corpus/")

NUMBER = r"(?:\d+|one|two|three|four|six|eight|bits|bytes|frames|lines|words)"
UNIT = r"(?:byte|group|line|nibble|packet|pass|pin|port|queue|second|slot)"
ADJECTIVE = r"(?:longer|more|less|better|worse)\b"

# A slip, and what to write instead. "There is no port" is right, "it is no port" is not.
SLIPS = (
    (r"(?i)\bbehind\b|(?<=[a-z0-9])Behind(?=[A-Z0-9])|(?<=_)behind_", "after, past, through"),
    (rf"(?<!here )\b(?:is|are|was|were) no\b(?! {ADJECTIVE})", "is not a"),
    (r"(?i)\bfor ever\b", "forever"),
    (r"(?i)\b(?:there|comes|stands) twice\b", "duplicate"),
    (r"(?i)\blets? (?:an?|the|each|every|one) [\w ]{1,24}?\bfail\b", "make ... fail"),
    (rf"(?i)\b{NUMBER} an? {UNIT}\b", "per"),
    (r"(?i)\bcheck sequence\b", "FCS"),
    (r"(?i)\b(?:tell|tells|told|telling) of\b", "say, report; call, for a hook"),
    (r"(?i)\bbeside\b", "next to, besides, in addition to, bypassing"),
)

# Where the same words are right.
IDIOMS = re.compile(r"\b(?:left|leaves?|leaving)(?: \w+)? behind\b")


def files():
    command = ["git", "-C", TOP, "ls-files", "--cached", "--others", "--exclude-standard", "-z"]
    names = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    for name in sorted(filter(None, names.split("\0"))):
        if not name.startswith(EXCLUDED) and (TOP / name).is_file():
            yield name


def slips(name):
    """The slips of a file, each with its place; none for a file that is not text."""
    try:
        lines = (TOP / name).read_text().splitlines()
    except UnicodeDecodeError:
        return
    for number, line in enumerate(lines, 1):
        for slip, instead in SLIPS:
            found = re.search(slip, IDIOMS.sub("", line))
            if found:
                yield f"{name}:{number}: '{found[0]}': better: {instead}"


def main():
    found = [slip for name in files() for slip in slips(name)]
    for slip in found:
        print(slip)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
