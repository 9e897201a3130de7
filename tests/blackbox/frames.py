"""Ethernet frames for the tests of the ports: captures of them, and how the monitor prints them."""

import contextlib
import random
import struct

CPU_MAC = bytes.fromhex("021122334455")
PEER_MAC = bytes.fromhex("0200000000aa")
BROADCAST = 6 * b"\xff"
GROUP = bytes.fromhex("01005e000001")

ETHERNET = 1

# Where the monitor sees frame buffers, and the handles that received frames take in turn.
BUFFERS = 0x01000000
FIRST_HANDLE = 16
HANDLES = 240


def frame(length, destination=CPU_MAC, number=0):
    """A frame of that many bytes; the number makes it differ from others."""
    body = struct.pack(">HI", 0x88B5, number) + bytes(i & 0xFF for i in range(length))
    return (destination + PEER_MAC + body)[:length]


def mixed_traffic(count, shortest=60, longest=1514):
    """Broadcast frames of random lengths, the shortest and the longest among them. The same at
    each call."""
    source = random.Random(count)
    lengths = [shortest, longest] + [source.randint(shortest, longest) for _ in range(count - 2)]
    destinations = (CPU_MAC, BROADCAST, GROUP, PEER_MAC)
    return [
        source.choice(destinations) + PEER_MAC + source.randbytes(length - 12)
        for length in lengths
    ]


def reason(octets):
    """Why the chip hands a frame to a CPU whose address is CPU_MAC."""
    if octets[:6] == BROADCAST:
        return 2
    if octets[0] & 1:
        return 3
    return 1 if octets[:6] == CPU_MAC else 4


def dump(address, octets):
    """Memory as the monitor shows it, from the start of a line on."""
    lines = []
    for at in range(0, len(octets), 16):
        pieces = [f"{octet:02X} " for octet in octets[at : at + 16]]
        missing = (16 - len(pieces)) * ".. "
        lines.append(f"{address + at:08X}: {''.join(pieces)}{missing}\n\r")
    return "".join(lines).encode()


def buffer_of(number):
    """Data address of the received frame of that number, counted from 0."""
    return BUFFERS + (FIRST_HANDLE + number % HANDLES) * 2048 + 32


def printed(number, octets):
    """A received frame as `frame r = auto` prints it."""
    head = f"\n\rPacket length=0x{len(octets):03x}    reason=0x{reason(octets):02x}\n\r"
    return head.encode() + dump(buffer_of(number), octets)


def write_pcap(path, frames, spacing=0.0, link_type=ETHERNET, order="<"):
    """A classic capture; `order` is the byte order of its numbers."""
    with open(path, "wb") as file:
        file.write(struct.pack(order + "IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 262144, link_type))
        for number, octets in enumerate(frames):
            microseconds = round(number * spacing * 1e6)
            stamp = (1_000_000_000 + microseconds // 1_000_000, microseconds % 1_000_000)
            file.write(struct.pack(order + "IIII", *stamp, len(octets), len(octets)) + octets)


def block(kind, body):
    """A block of a pcapng file."""
    body += -len(body) % 4 * b"\0"
    length = struct.pack("<I", len(body) + 12)
    return struct.pack("<I", kind) + length + body + length


def write_pcapng(path, frames, link_types=(ETHERNET,)):
    """A capture of the newer format; its interfaces take the frames in turn, and are
    described where they are first needed."""
    with open(path, "wb") as file:
        file.write(block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)))
        for number, octets in enumerate(frames):
            if number < len(link_types):
                file.write(block(1, struct.pack("<HHI", link_types[number], 0, 0)))
            lengths = (len(octets), len(octets))
            head = struct.pack("<IIIII", number % len(link_types), 0, number, *lengths)
            file.write(block(6, head + octets + -len(octets) % 4 * b"\0"))


def read_pcap(path):
    """The frames of a classic capture, as far as they are complete."""
    with open(path, "rb") as file:
        data = file.read()
    if len(data) < 24:
        return []
    magic, link_type = struct.unpack("<I16xI", data[:24])
    assert magic in (0xA1B2C3D4, 0xA1B23C4D) and link_type == ETHERNET, data[:24]
    frames = []
    at = 24
    while at + 16 <= len(data):
        captured, length = struct.unpack("<8xII", data[at : at + 16])
        if at + 16 + captured > len(data):
            break
        assert captured == length
        frames.append(data[at + 16 : at + 16 + captured])
        at += 16 + captured
    return frames


def options(data):
    """The options of a pcapng block."""
    found = {}
    with contextlib.suppress(struct.error):
        while True:
            code, length = struct.unpack("<HH", data[:4])
            if code == 0:
                break
            found[code] = data[4 : 4 + length]
            data = data[4 + length + -length % 4 :]
    return found


def read_pcapng(path):
    """The frames of a pcapng file: (interface name, "in" or "out", frame)."""
    with open(path, "rb") as file:
        data = file.read()
    names = []
    frames = []
    while data:
        kind, length = struct.unpack("<II", data[:8])
        assert data[length - 4 : length] == data[4:8]
        body = data[8 : length - 4]
        data = data[length:]
        if kind == 1:
            names.append(options(body[8:])[2].decode())
        elif kind == 6:
            interface, captured, original = struct.unpack("<I8xII", body[:20])
            assert captured == original
            flags = options(body[20 + captured + -captured % 4 :])[2]
            direction = {1: "in", 2: "out"}[struct.unpack("<I", flags)[0]]
            frames.append((names[interface], direction, body[20 : 20 + captured]))
    return frames
