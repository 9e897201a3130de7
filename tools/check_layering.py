#!/usr/bin/env python3
"""Holds the includes against the table of rooms in docs/architecture.md.

Each row of that table names a room and the rooms that it includes, all of them on lower floors or,
for neighbours on one floor, further up in the table. An include that the table does not allow fails,
and so does an arrow of the table that no include needs, a room without a row, and a circle among
files. Some includes between allowed rooms are still wrong: see fault().
"""

import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
TABLE = TOP / "docs/architecture.md"
ROW = re.compile(r"^\| (?P<floor>\d) \| `(?P<room>[a-z_]+)/` \|.*\|(?P<includes>[^|]*)\|$")
INCLUDE = re.compile(r'\s*#include "([^"]+)"')
NO_ROOMS = ("tests", "fuzz", "bench")


def read_table():
    """Rooms in the order of the table: name -> (floor, rooms that it includes)."""
    rooms = {}
    for line in TABLE.read_text().splitlines():
        row = ROW.match(line)
        if row:
            rooms[row["room"]] = (int(row["floor"]), re.findall(r"`([a-z_]+)`", row["includes"]))
    return rooms


def table_faults(rooms):
    order = list(rooms)
    for room, (floor, included) in rooms.items():
        for other in included:
            if other not in rooms:
                yield f"{room}/: the table has no room {other}/"
            elif rooms[other][0] > floor:
                yield f"{room}/: includes {other}/, which is on a higher floor"
            elif order.index(other) > order.index(room):
                yield f"{room}/: includes {other}/, which stands further down in the table"


def includes(path):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match[1]


def is_registers(name):
    return name.endswith("_registers.h") or name in ("core/registers.h", "core/register_map.h")


def fault(path, target, rooms, blocks):
    """What is wrong with an include of `target` in `path`, or None."""
    room, other = path.parts[0], pathlib.PurePath(target).parts[0]
    if other != room and other not in rooms[room][1]:
        return f"{room}/ must not know {other}/"
    if room == "chip" and other in blocks and not is_registers(target):
        return "the model knows register headers only"
    if room not in blocks or path.suffix != ".cpp":
        return None
    if path.name.endswith("_command.cpp") and is_registers(target):
        return "a command never knows registers"
    # In system/ a driver and its command share one source.
    is_driver = room != "system" and any(is_registers(name) for _, name in includes(TOP / path))
    if is_driver and other == "console" and target != "console/parse.h":
        return "a driver never knows the console"
    return None


def circles(graph):
    """Files that include each other in a circle, each circle once."""
    done, path = set(), []

    def walk(name):
        if name in path:
            yield path[path.index(name):] + [name]
        elif name not in done:
            path.append(name)
            for target in graph.get(name, ()):
                yield from walk(target)
            path.pop()
            done.add(name)

    for name in sorted(graph):
        yield from walk(name)


def main():
    rooms = read_table()
    # The blocks are the rooms on the floor of the first of them.
    blocks = [room for room, (floor, _) in rooms.items() if floor == rooms["system"][0]]
    faults = list(table_faults(rooms))
    graph, used = {}, set()
    for path in sorted(TOP.glob("*/**/*")):
        relative = path.relative_to(TOP)
        if path.suffix not in (".h", ".cpp") or relative.parts[0] in (*NO_ROOMS, "build", "debian"):
            continue
        room = relative.parts[0]
        if room not in rooms:
            faults.append(f"{relative}: the table has no room {room}/")
            continue
        graph[str(relative)] = [target for _, target in includes(path)]
        for number, target in includes(path):
            used.add((room, pathlib.PurePath(target).parts[0]))
            why = fault(relative, target, rooms, blocks)
            if why:
                faults.append(f"{relative}:{number}: includes {target}: {why}")
    for room, (_, included) in rooms.items():
        faults += [f"{room}/: nothing includes {other}/; take it out of the table"
                   for other in included if (room, other) not in used]
    faults += ["circle: " + " > ".join(circle) for circle in circles(graph)]
    for line in faults:
        print(line)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
