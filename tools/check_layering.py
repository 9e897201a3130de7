#!/usr/bin/env python3
"""Checks that the layers of the code include only what is below them."""

import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
BLOCKS = ("system", "mac", "tables", "classifier", "qos", "pppoe")
CONSOLE = ("console/console.h", "console/console_port.h", "console/command.h")

# Who may include what, by folder of the included file. A folder may always include itself.
MAY_INCLUDE = {
    "core": (),
    "net": (),
    "console": ("core", "net"),
    "shell": ("core", "console", *BLOCKS),
    "debug_monitor": ("core", "console", "shell"),
    "chip": ("core", "net", *BLOCKS),
    "host": ("console",),
    "machine": ("core", "chip", "host", "virtual_board", *BLOCKS),
    "virtual_board": ("core", "console", "shell", "chip", "host", "machine", *BLOCKS),
    **{block: ("core", "net", "console", *BLOCKS) for block in BLOCKS},
}


def includes(path):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        match = re.match(r'\s*#include "([^"]+)"', line)
        if match:
            yield number, match.group(1)


def is_registers(name):
    return name.endswith("_registers.h") or name in ("core/registers.h", "core/register_map.h")


def fault(path, target):
    """What is wrong with an include of `target` in `path`, or None."""
    layer = path.parts[0]
    other = pathlib.PurePath(target).parts[0]
    if other != layer and other not in MAY_INCLUDE[layer]:
        return f"{layer}/ must not know {other}/"
    if layer == "chip" and other in BLOCKS and not is_registers(target):
        return "the model knows register headers only"
    if layer in BLOCKS and path.name.endswith("_command.cpp") and is_registers(target):
        return "a command never knows registers"
    # In system/ a driver and its command share one source.
    if layer in BLOCKS and layer != "system" and path.suffix == ".cpp":
        is_driver = any(is_registers(name) for _, name in includes(TOP / path))
        if is_driver and target in CONSOLE:
            return "a driver never knows the console"
    return None


def main():
    faults = 0
    for layer in MAY_INCLUDE:
        for path in sorted((TOP / layer).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            relative = path.relative_to(TOP)
            for number, target in includes(path):
                why = fault(relative, target)
                if why:
                    print(f"{relative}:{number}: includes {target}: {why}")
                    faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
