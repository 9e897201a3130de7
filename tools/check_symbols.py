#!/usr/bin/env python3
"""Checks that the monitor's objects use no heap, no exceptions and no static constructors.

usage: check_symbols.py BUILD_FOLDER
"""

import pathlib
import re
import subprocess
import sys

FORBIDDEN = re.compile(
    r"^(malloc|calloc|realloc|free|strdup|_Zn[wa]|_Zd[la]|__cxa_|_Unwind|_ZSt|_ZNSt|"
    r"__gxx_personality|__dynamic_cast|_ZTI|_ZTS|printf|sprintf|snprintf|vsnprintf|puts|putchar|"
    r"getchar|std(in|out|err)$|fopen|fwrite|fread)"
)
CONSTRUCTORS = re.compile(r"\.(init_array|ctors)\b")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main():
    build = pathlib.Path(sys.argv[1])
    objects = [build / "libmonitor.a", build / "libconsole.a"]
    objects += sorted((build / "CMakeFiles/debug-monitor.dir").rglob("*.o"))
    faults = 0
    for path in objects:
        for line in output("nm", "--undefined-only", "--format=posix", str(path)).splitlines():
            symbol = line.split(" ")[0]
            if FORBIDDEN.match(symbol):
                print(f"{path}: uses {symbol}")
                faults += 1
        for line in output("objdump", "--section-headers", str(path)).splitlines():
            if CONSTRUCTORS.search(line):
                print(f"{path}: has static constructors: {line.strip()}")
                faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
