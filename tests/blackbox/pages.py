"""The manual pages and documents: their examples, and how pages are shown."""

import glob
import os
import re
import subprocess

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
PAGES = sorted(glob.glob(os.path.join(SOURCES, "packaging/man/*.[1-9]")))


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def plain(text):
    """A line of a literal block of a page as it is shown."""
    return text.replace(r"\&", "").replace(r"\-", "-").replace(r"\e", "\\")


def blocks(path, language=""):
    """The literal blocks of a page, or those of a document in that language: line number and
    lines."""
    page = not path.endswith(".md")
    begin, end = (r"\.Bd -literal.*()", r"\.Ed") if page else (r"```(\w*)", r"```")
    block = None
    for number, line in enumerate(read(path).splitlines(), 1):
        if block is None:
            if match := re.fullmatch(begin, line):
                first, found, block = number + 1, match[1], []
        elif re.fullmatch(end, line):
            if found == language:
                yield first, block
            block = None
        else:
            block.append(plain(line) if page else line)


def shown(path):
    """A page as a wide terminal shows it, without bold and underlined."""
    page = ["mandoc", "-T", "utf8", "-O", "width=900", path]
    text = subprocess.run(page, stdout=subprocess.PIPE, check=True).stdout.decode()
    return re.sub(".\b", "", text)
