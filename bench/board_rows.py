"""The rows of virtual-board: the model, frames, echoes, processor time."""

import contextlib
import json
import os
import statistics
import subprocess
import sys
import time

import measure
from measure import Row

FORWARD = b"frame r = forward\n"

FEEDER = """
import socket, sys
peer = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
peer.connect(sys.argv[1])
frame = bytes(64)
while True:
    peer.send(frame)
"""

FLOOD = """
import socket, sys
link = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
link.bind((sys.argv[1], 0))
frame = bytes(range(64))
while True:
    try:
        link.send(frame)
    except OSError:
        pass
"""


def chip_accesses(bench):
    out = bench.run([bench.program("chip_benchmark"), "--benchmark_format=json",
                     "--benchmark_repetitions=5", "--benchmark_report_aggregates_only=true"])
    for one in json.loads(out)["benchmarks"]:
        if one["aggregate_name"] == "median":
            name = one["run_name"]
            yield Row(f"model: one register access, {name}", 1e9 / one["items_per_second"], "ns", 3)


def forward_command(bench, capture, out):
    return [bench.board, "--lan", f"pcap:{capture}", "--wan", f"pcap:,{out}"]


def forward_instructions(bench, short=False):
    few, many = 100, 1100
    out = bench.path("out.pcap")
    counts = [bench.callgrind(forward_command(bench, bench.capture(64, n), out), FORWARD)[0]
              for n in (few, many)]
    yield Row("forward, 64 bytes", (counts[1] - counts[0]) / (many - few),
              "instructions/frame", 7000)


def forward_captures(bench):
    """Processor time for each frame, start-up taken off, above a copy in memory; the captures read
    and written by a program that inspects nothing are listed next to it. Of several runs the least
    counts: whatever else the machine does, such as finding memory for the output, only adds."""
    out = str(bench.captures / "out.pcap")
    for length, count in ((64, 400_000), (1514, 50_000)):
        capture = bench.capture(length, count)
        board = forward_command(bench, capture, out)
        start = forward_command(bench, bench.capture(length, 1), out)
        copy = ["dd", f"if={capture}", f"of={out}", "bs=64k"]
        times = {"whole": [], "start": [], "copy": [], "ring": []}
        for _ in range(9):
            times["whole"].append(bench.processor_time(board, FORWARD))
            size = os.path.getsize(out)
            times["start"].append(bench.processor_time(start, FORWARD))
            times["copy"].append(bench.processor_time(copy))
            ring = bench.run([bench.program("ring_floor"), str(length), "2000000"])
            times["ring"].append(float(ring))
        if size != os.path.getsize(capture):
            raise RuntimeError("forward mode has lost frames")
        least = {name: min(values) for name, values in times.items()}
        each = (least["whole"] - least["start"]) / count * 1e9
        copied = least["copy"] / count * 1e9
        yield Row(f"forward, capture to capture, {length} bytes, above memcpy",
                  each - least["ring"], "ns/frame", 500,
                  {"memcpy": least["ring"], "dd of the captures": copied},
                  notes={"ns above dd": each - copied, "frames/s": 1e9 / each,
                         "GB/s": length / each})


TAP_SETUP = """
echo 1 > /proc/sys/net/ipv6/conf/default/disable_ipv6
ip tuntap add in0 mode tap && ip tuntap add out0 mode tap
exec "$@"
"""


def forwarded(command, started):
    """Frames per second that a program moves from device in0 to out0 while in0 is flooded."""
    namespace = ["unshare", "--net"] if os.geteuid() == 0 else ["unshare", "--net", "-r"]
    process = subprocess.Popen([*namespace, "sh", "-c", TAP_SETUP, "sh", *command],
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    enter = ["nsenter", "-t", str(process.pid), "--net"]
    if os.geteuid() != 0:
        enter += ["--user", "--preserve-credentials"]
    def count():
        shown = subprocess.run([*enter, "ip", "-s", "-j", "link", "show", "out0"],
                               capture_output=True, check=True)
        return json.loads(shown.stdout)[0]["stats64"]["rx"]["packets"]
    with contextlib.ExitStack() as stack:
        stack.callback(process.wait)
        stack.callback(process.kill)
        started(process)
        for device in ("in0", "out0"):
            subprocess.run([*enter, "ip", "link", "set", device, "up"], check=True)
        flood = subprocess.Popen([*enter, sys.executable, "-c", FLOOD, "in0"])
        stack.callback(flood.wait)
        stack.callback(flood.kill)
        time.sleep(0.3)
        before, begin = count(), time.perf_counter()
        time.sleep(1)
        return (count() - before) / (time.perf_counter() - begin)


def tap_to_tap(bench):
    def board_started(process):
        measure.read_to(process.stdout.fileno(), b">> ")
        measure.command(FORWARD.strip(), process.stdin.fileno(), process.stdout.fileno())
    rates = {"board": [], "floor": []}
    for _ in range(5):
        rates["board"].append(forwarded([bench.board, "--lan", "tap:in0", "--wan", "tap:out0"],
                                        board_started))
        rates["floor"].append(forwarded([bench.program("tap_floor"), "in0", "out0"],
                                        lambda process: time.sleep(0.2)))
    ours, bare = (statistics.median(rates[name]) for name in ("board", "floor"))
    yield Row("TAP to TAP, forward mode, 64 bytes", ours, "frames/s", 0.5, {"bare loop": bare},
              of_ratio=True, least=True)


def echoes(entry, out):
    """Microseconds from a typed character to its echo: median, 99th percentile."""
    times = []
    for _ in range(2000):
        begin = time.perf_counter_ns()
        os.write(entry, b"x")
        measure.read_to(out, b"x")
        times.append((time.perf_counter_ns() - begin) / 1000)
        os.write(entry, b"\b")
        measure.read_to(out, b"\b")
        # The next key finds the monitor waiting.
        time.sleep(0.0002)
    times.sort()
    return statistics.median(times), times[len(times) * 99 // 100]


def echo_rows(name, entry, out):
    median, late = echoes(entry, out)
    yield Row(f"echo, {name}: median", median, "us", 100)
    yield Row(f"echo, {name}: 99th percentile", late, "us", 2000)


def echo(bench):
    with measure.running(bench.on_device(bench.monitor), True) as (_, entry, out):
        yield from echo_rows("debug-monitor, idle", entry, out)
    with measure.running([bench.board], True) as (_, entry, out):
        yield from echo_rows("virtual-board, idle", entry, out)
    lan = bench.path("lan")
    with measure.running([bench.board, "--lan", f"unix:{lan}"], True) as (_, entry, out):
        measure.command(FORWARD.strip(), entry, out)
        with subprocess.Popen([sys.executable, "-c", FEEDER, lan]) as feeder:
            time.sleep(0.3)
            yield from echo_rows("frames pouring in", entry, out)
            feeder.kill()


def processor(bench):
    seconds = 3
    with subprocess.Popen([bench.program("sleep_floor")]) as floor:
        sleeping = measure.processor_share(floor, seconds)
        floor.kill()
    programs = {"debug-monitor": bench.on_device(bench.monitor),
                "virtual-board": [bench.board, "--lan", "unix:" + bench.path("idle")]}
    for name, started in programs.items():
        with measure.running(started) as (process, entry, out):
            idle = measure.processor_share(process, seconds)
            yield Row(f"CPU, {name}, idle prompt", idle, "% of a core", 0)
            measure.command(FORWARD.strip(), entry, out)
            serving = measure.processor_share(process, seconds)
            yield Row(f"CPU, {name}, packet service, no traffic", serving, "% of a core", 3,
                      {"sleeping a millisecond": sleeping})


ROWS = [chip_accesses, forward_instructions, forward_captures, tap_to_tap, echo, processor]
