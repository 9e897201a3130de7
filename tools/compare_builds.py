#!/usr/bin/env python3
"""Checks that builds of different compilers make the same bus accesses in the same order.

usage: compare_builds.py BUILD...

Each BUILD is a build folder. Their debug-monitor runs under a bus analyser on a file, with the
commands that no engine has to answer; their virtual-board traces every line that the sessions of
the tests type."""

import os
import random
import re
import subprocess
import sys
import tempfile

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TOP, "tests", "blackbox"))

# pylint: disable=wrong-import-position
import bus_analyser
import kernel_memory

SESSIONS = os.path.join(TOP, "tests", "sessions")
PROMPT = "Debug>> "
SECONDS = 120

# For plain memory, on which a wait for an engine would not end.
PLAIN_COMMANDS = """\
version
reset hw
reg 600 20
reg 1ff0 10 = 1 2 3
timer
timer 0 = 1234 5
timer 1 s
gpiocfg
gpiocfg = 12 34 56 78
gpio
gpio = a5
uart
tdmcfg
tdm
cs
cs a
maccfg wan
macaddr
macaddr m cpu 021122334455
macaddr i lan 10.0.0.1
natcfg
natcfg = 10.0.0.1 80 100 10 lw dw filter
nat f
l3 f enable
arp f disable
mcast f
clsfr f enable
pst
qos
qos = 10 08 20 31 40 48 red 05
qos dmz = mode2
qos lan 3 = 10 20 3 4 5
rc
ctrl f
ctrl mtu = 5dc
exit
"""


def typed(session):
    """The lines that a session types; none when an operator has to end a wait."""
    with open(os.path.join(SESSIONS, session), encoding="latin-1") as file:
        text = file.read()
    if "@ctrl-c" in text:
        return []
    return [line[len(PROMPT):] for line in text.splitlines() if line.startswith(PROMPT)]


def board_trace(board, lines, path):
    """Kinds and offsets of all accesses, what was stored; what is loaded may depend on a clock."""
    script = "".join(line + "\n" for line in lines).encode("latin-1")
    done = subprocess.run(
        [board, "--trace", path], input=script, capture_output=True, timeout=SECONDS, check=False
    )
    if done.returncode != 0:
        sys.exit(f"{board}: status {done.returncode}\n{done.stderr.decode()}")
    with open(path, encoding="latin-1") as file:
        return [access for line in file for access in times(line) * [without_answer(line)] if access]


def times(line):
    """How often the access happened: the trace counts equal ones in a row."""
    count = re.match(r"(?:\w+ )+x(\d+)\b", line)
    return int(count[1]) if count else 1


def without_answer(line):
    words = re.sub(r" x\d+\b", "", line.partition("#")[0]).split()
    return " ".join(words[:2] if re.match("m?r", line) else words[:3])


def first_difference(left, right):
    for number, (one, other) in enumerate(zip(left, right)):
        if one != other:
            return f"access {number}: {one} or {other}"
    return f"{len(left)} or {len(right)} accesses"


class Comparison:
    """Compares each build's accesses with those of the first."""

    def __init__(self):
        self.first = {}
        self.counted = 0
        self.differences = 0

    def add(self, build, story, accesses):
        self.counted += len(accesses)
        name, expected = self.first.setdefault(story, (build, accesses))
        if accesses != expected:
            self.differences += 1
            print(f"{story}: {name} and {build} differ: {first_difference(expected, accesses)}")


def main(builds):
    if not builds:
        sys.exit(__doc__)
    if bus_analyser.why_not():
        sys.exit(bus_analyser.why_not())
    comparison = Comparison()
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "file")
        for build in builds:
            print(f"{build} ...", flush=True)
            programs = os.path.join(build, "bin")
            memory = os.path.join(folder, "kmem")
            with open(memory, "wb") as file:
                file.seek(kernel_memory.WINDOW)
                file.write(random.Random(1).randbytes(kernel_memory.WINDOW_SIZE))
            _, accesses = bus_analyser.record(
                memory, os.path.join(programs, "debug-monitor"), PLAIN_COMMANDS.encode(), path
            )
            comparison.add(build, "debug-monitor", accesses)
            for session in sorted(os.listdir(SESSIONS)):
                trace = board_trace(os.path.join(programs, "virtual-board"), typed(session), path)
                comparison.add(build, session, trace)
    print(f"{len(builds)} builds, {comparison.counted} accesses, "
          f"{comparison.differences} differences")
    sys.exit(1 if comparison.differences else 0)


if __name__ == "__main__":
    main(sys.argv[1:])
