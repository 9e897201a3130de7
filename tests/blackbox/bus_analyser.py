"""A bus analyser on the shipped debug-monitor: valgrind records each memory access of the program,
those to the register window are what its bus would see."""

import re
import subprocess
import sys

import kernel_memory
import support

BASE = 0x50000000
ACCESS = re.compile(r"^ ([LSM]) ([0-9a-f]+),([0-9]+)$")
MEANING = {"L": "r", "S": "w", "M": "rw"}


def why_not():
    """What is missing, or None."""
    tool = ["valgrind", "--tool=lackey", "--version"]
    try:
        subprocess.run(tool, capture_output=True, check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        return f"valgrind with its tool lackey does not run: {error}"
    return kernel_memory.WHY_NOT


def record(memory, program, script, log):
    """Runs the script on the file `memory` as the memory device. Returns what the program printed,
    and its accesses to the window in order, as "r8 0101"; one that loads and stores at once counts
    as both."""
    # Optimised, valgrind leaves out loads whose values are not used.
    analyser = ["valgrind", "--tool=lackey", "--trace-mem=yes", "--vex-iropt-level=0"]
    analyser.append(f"--log-file={log}")
    done = support.run(kernel_memory.inside(memory, *analyser, program), script)
    if done.returncode != 0:
        sys.exit(f"{program} under valgrind: status {done.returncode}\n{done.stderr.decode()}")
    with open(log, encoding="ascii") as file:
        return done.stdout, list(window_accesses(file))


def window_accesses(lines):
    for line in lines:
        match = ACCESS.match(line)
        offset = int(match[2], 16) - BASE if match else -1
        if 0 <= offset < kernel_memory.WINDOW_SIZE:
            yield from (f"{kind}{8 * int(match[3])} {offset:04x}" for kind in MEANING[match[1]])
