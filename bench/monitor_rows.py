"""The rows of debug-monitor and of listings: dumps, start-up, memory, size, long scripts."""

import os
import pathlib
import re
import statistics
import subprocess

import measure
from measure import Row

WINDOW_SIZE = 0x2000
DUMP = b"reg 0 2000\n"
EXIT = b"exit\n"
FEW, MANY = 2, 12


def peers(bench):
    """How other programs dump a file to its end, and the floor dumps the window."""
    return {
        "xxd": lambda path: ["xxd", path],
        "memtool md -b": lambda path: ["memtool", "md", "-b", "-s", path,
                                       f"0+{os.path.getsize(path)}"],
        "busybox hexdump -C": lambda path: ["busybox", "hexdump", "-C", path],
        "hexdump -C": lambda path: ["hexdump", "-C", path],
    }


def dumped_file(bench, windows):
    """A file with the registers that many times."""
    path = bench.path(f"windows{windows}")
    pathlib.Path(path).write_bytes(bench.window() * windows)
    return path


def floor(bench, times):
    return [bench.program("hex_floor"), bench.memory, hex(measure.WINDOW), str(times)]


def dump_instructions(bench, short=False):
    octets = (MANY - FEW) * WINDOW_SIZE
    taken, _ = bench.instructions_of([bench.monitor], DUMP * FEW + EXIT, DUMP * MANY + EXIT,
                                       device=True)
    compared = {}
    if not short:
        per_run = [bench.callgrind(floor(bench, times))[0] for times in (FEW, MANY)]
        compared["floor"] = (per_run[1] - per_run[0]) / octets
        for name, command in peers(bench).items():
            few, many = (bench.callgrind(command(dumped_file(bench, n)))[0] for n in (FEW, MANY))
            compared[name] = (many - few) / octets
    yield Row("reg 0 2000, file-backed device", taken / octets, "instructions/byte", 21, compared)


def dump_to_terminal(bench):
    windows = 300
    script = bench.path("dumps")
    pathlib.Path(script).write_bytes(DUMP * windows + EXIT)
    path = dumped_file(bench, windows)
    runs = {"ours": (bench.on_device(bench.monitor), script),
            "floor": (floor(bench, windows), os.devnull)}
    runs.update({name: (command(path), os.devnull) for name, command in peers(bench).items()})
    rates = {name: [] for name in runs}
    # In turn, so that whatever else the machine does affects all of them.
    for _ in range(7):
        for name, run in runs.items():
            rates[name].append(measure.drain(*run) / 1e6)
    rate = {name: statistics.median(values) for name, values in rates.items()}
    ours, best = rate.pop("ours"), rate.pop("floor")
    yield Row("the same to a pseudo-terminal", ours, "Mchar/s", 1 / 1.3,
              {"floor": best, **rate}, of_ratio=True, least=True)
    name = max(rate, key=rate.get)
    yield Row("  ahead of every peer", ours, "Mchar/s", 1, {name: rate[name]},
              of_ratio=True, least=True)


NAT = b"".join(b"nat %x = 192.168.1.%d %x 10.0.0.65 50 tcp 1.2.3.4 8001 258\n"
               % (i, i % 250 + 1, i + 0x400) for i in range(256))
RULES = b"".join(b"clsfr %x = ff 5 eth 800 sip 10.0.0.%d 18 dp 1f90 1f pro 6 int lan\n"
                 % (i, i) for i in range(128))


def listing(bench, name, setup, line, copies):
    taken, printed = bench.instructions_of([bench.board], setup + line * 2,
                                           setup + line * (2 + copies))
    return Row(name, taken / printed, "instructions/char", 40, notes={"characters": printed})


def listings(bench, short=False):
    yield listing(bench, "nat 0 100, all valid, model included", NAT, b"nat 0 100\n", 4)
    if not short:
        yield listing(bench, "clsfr 0 80, all valid, model included", RULES, b"clsfr 0 80\n", 6)
        yield listing(bench, "sc wan, model included", b"", b"sc wan\n", 100)


def start_up(bench, short=False):
    taken, _, _ = bench.callgrind([bench.monitor], EXIT, device=True)
    if short:
        yield Row("start-up to exit", taken, "instructions", 60_000)
        return
    start_floor = [bench.program("start_floor"), "/dev/kmem", hex(measure.WINDOW)]
    least, _, _ = bench.callgrind(start_floor, device=True)
    devmem = ["busybox", "devmem", hex(measure.WINDOW), "8"]
    peer, _, _ = bench.callgrind(devmem, device=True)
    yield Row("start-up to exit, debug-monitor", taken, "instructions", 60_000,
              {"floor": least, "busybox devmem": peer})
    with measure.running(bench.on_device(bench.monitor)) as (process, _, _):
        peak, dirty = measure.memory(process)
    with measure.running(bench.on_device(*start_floor)) as (process, _, _):
        floor_peak, floor_dirty = measure.memory(process)
    yield Row("  peak memory at the prompt", peak, "KiB", 900, {"floor": floor_peak})
    yield Row("  dirty memory at the prompt", dirty, "KiB", 120, {"floor": floor_dirty})


HEAP = re.compile(r"(__libc_)?(malloc|calloc|realloc|memalign|posix_memalign|aligned_alloc)"
                  r"|operator new.*|_?s?brk|__sbrk")

EVERYTHING = (b"help\nhelp nat\nreg 0 40\nreg 100 = 1 2 3\ngpio\ngpiocfg\ntimer 0\nuart\ncs 0\n"
              b"maccfg wan\nmacaddr m cpu 021122334455\nnatcfg\nctrl\nrc wan\nqos wan\nmii 0\n"
              b"zz\n\x1b[A\n" + EXIT)


def heap_calls(profile):
    """Calls of allocation functions that a callgrind profile shows."""
    names, calls, called = {}, 0, ""
    with open(profile, encoding="utf-8") as lines:
        for line in lines:
            if match := re.match(r"c?fn=\((\d+)\)(?: (.*))?", line):
                if match[2]:
                    names[match[1]] = re.sub(r"['@].*", "", match[2].strip())
                if line.startswith("cfn"):
                    called = names[match[1]]
            elif match := re.match(r"calls=(\d+)", line):
                calls += int(match[1]) if HEAP.fullmatch(called) else 0
    return calls


def heap(bench):
    inside_main = ["--toggle-collect=main"]
    _, printed, profile = bench.callgrind([bench.monitor], EVERYTHING, True, inside_main)
    calls = heap_calls(profile)
    _, _, profile = bench.callgrind([bench.board], EXIT, options=inside_main)
    yield Row("heap allocations, main to exit", calls, "calls", 0,
              {"virtual-board, to see that they show": heap_calls(profile)},
              notes={"characters": len(printed)})


def stripped_size(bench, strip, path):
    out = bench.path("stripped")
    bench.run([strip, "-o", out, str(path)])
    return os.path.getsize(out) / 1024


def sizes(bench):
    for machine, folder, strip in (
        ("x86-64", bench.build / "bin", "strip"),
        ("armhf", bench.build / "armhf" / "bin", "arm-linux-gnueabihf-strip"),
    ):
        ours = stripped_size(bench, strip, folder / "debug-monitor")
        empty = stripped_size(bench, strip, folder / "empty_floor")
        yield Row(f"stripped size above an empty program, {machine}", ours - empty, "KiB", 100,
                  {"empty program": empty})


def long_script(bench):
    """Identical lines, through a pipe."""
    line, lines = b"reg 0 1\n", 100_000
    def taken(count):
        return bench.callgrind([bench.monitor], line * count + EXIT, True)[0]
    first = taken(1000) - taken(0)
    last = taken(lines) - taken(lines - 1000)
    yield Row("100,000 lines: last thousand against first", (last / first - 1) * 100,
              "% growth", 5, notes={"instructions/line": last / 1000})


ROWS = [dump_instructions, dump_to_terminal, listings, start_up, heap, sizes, long_script]
