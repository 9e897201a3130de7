#!/usr/bin/env python3
"""Compares the programs with floors and other programs; one table, and the same as JSON.

usage: bench.py [--short] BUILD-FOLDER [PATTERN]

PATTERN is a regular expression; the groups of rows whose name has a match are measured. --short
takes only the figures that are instruction counts and fails when one is ten times its goal.
"""

import argparse
import json
import pathlib
import re
import shutil
import sys

SKIPPED = 77
WIDE = 10


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--short", action="store_true", help="a few figures, with wide limits")
    parser.add_argument("build", type=pathlib.Path, help="folder of the build")
    parser.add_argument("pattern", nargs="?", default="", help="which groups of rows")
    return parser.parse_args()


def say(text):
    print(text, file=sys.stderr, flush=True)


def figure(value):
    return f"{value:,.4g}" if value < 1e4 else f"{value:,.0f}"


def cells(row):
    """A row of the table as texts."""
    name, value = next(iter(row.compared.items()), ("", None))
    compared = "" if value is None else f"{name} {figure(value)}"
    ratio = "" if row.ratio is None else f"{row.ratio:.2f}"
    goal = f"at {'least' if row.least else 'most'} {figure(row.goal)}{' x' if row.of_ratio else ''}"
    ours = f"{figure(row.ours)} {row.unit}"
    return row.what, ours, compared, ratio, goal, "met" if row.met else "NOT MET"


def more(row):
    """What else is known: further peers, notes."""
    others = {**dict(list(row.compared.items())[1:]), **row.notes}
    return ", ".join(f"{name} {figure(value)}" for name, value in others.items())


def table(rows):
    lines = [("what", "ours", "peer or floor", "ratio", "goal", "met or not")]
    lines += [cells(row) for row in rows]
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line, row in zip(lines, [None, *rows]):
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())
        if row and more(row):
            print("    " + more(row))


def as_json(rows):
    return [{"what": row.what, "ours": row.ours, "unit": row.unit, "compared": row.compared,
             "ratio": row.ratio, "goal": row.goal, "goal_is": "least" if row.least else "most",
             "goal_of": "ratio" if row.of_ratio else "value", "met": row.met, "notes": row.notes}
            for row in rows]


def groups(wanted):
    # pylint: disable=import-outside-toplevel
    import board_rows
    import monitor_rows

    return [group for group in [*monitor_rows.ROWS, *board_rows.ROWS]
            if re.search(wanted.pattern, group.__name__)]


def measured(wanted):
    # pylint: disable=import-outside-toplevel
    import measure

    rows = []
    with measure.measuring(wanted.build) as bench:
        for group in groups(wanted):
            has_short = "short" in group.__code__.co_varnames
            if wanted.short and not has_short:
                continue
            say(f"bench: {group.__name__}")
            options = {"short": True} if wanted.short else {}
            for row in group(bench, **options):
                say("bench:   " + "  ".join(cells(row)))
                rows.append(row)
    return rows


def why_not():
    """What is missing for the measurements, or None."""
    if shutil.which("valgrind") is None:
        return "there is no valgrind (package valgrind)"
    import kernel_memory  # pylint: disable=import-outside-toplevel

    return kernel_memory.WHY_NOT


def main():
    wanted = arguments()
    sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "blackbox"))
    if reason := why_not():
        say(f"SKIPPED: {reason}")
        return SKIPPED
    rows = measured(wanted)
    if not rows:
        say(f"bench: nothing matches {wanted.pattern!r}")
        return 2
    table(rows)
    if wanted.short:
        return 0 if all(row.ours <= WIDE * row.goal for row in rows) else 1
    folder = wanted.build / "results"
    folder.mkdir(exist_ok=True)
    path = folder / "bench.json"
    path.write_text(json.dumps(as_json(rows), indent=2) + "\n", "utf-8")
    say(f"bench: written to {path}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
