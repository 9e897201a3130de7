#!/usr/bin/env python3
"""Writes in.pcap: what a host on the LAN sends first, for the router that commands/*.cmd set up.

usage: make_in_pcap.py > in.pcap
"""

import socket
import struct
import sys

HOST, HOST_MAC = "192.168.1.10", "020000000110"
ROUTER, ROUTER_MAC = "192.168.1.1", "020000000001"
SERVER = "198.51.100.7"


def checksum(octets):
    """The Internet checksum."""
    octets += b"\0" * (len(octets) % 2)
    total = sum(struct.unpack(f">{len(octets) // 2}H", octets))
    while total > 0xFFFF:
        total = (total & 0xFFFF) + (total >> 16)
    return struct.pack(">H", total ^ 0xFFFF)


def ethernet(destination, ethertype, payload):
    """A frame without its FCS, padded as a network card pads it."""
    head = bytes.fromhex(destination + HOST_MAC) + struct.pack(">H", ethertype)
    return (head + payload).ljust(60, b"\0")


def arp_request(address):
    addresses = bytes.fromhex(HOST_MAC) + socket.inet_aton(HOST) + bytes(6)
    fixed = struct.pack(">HHBBH", 1, 0x0800, 6, 4, 1)
    return ethernet("ffffffffffff", 0x0806, fixed + addresses + socket.inet_aton(address))


def ipv4(destination, protocol, payload):
    addresses = socket.inet_aton(HOST) + socket.inet_aton(destination)
    head = struct.pack(">BBHHHBB", 0x45, 0, 20 + len(payload), 1, 0, 64, protocol)
    head += checksum(head + b"\0\0" + addresses) + addresses
    return ethernet(ROUTER_MAC, 0x0800, head + payload)


def ping(destination):
    head, rest = struct.pack(">BB", 8, 0), struct.pack(">HH", 1, 1) + b"debug monitor"
    return ipv4(destination, 1, head + checksum(head + b"\0\0" + rest) + rest)


def tcp_syn(destination, source_port, port):
    head = struct.pack(">HHIIBBH", source_port, port, 0, 0, 5 << 4, 2, 64240)
    addresses = socket.inet_aton(HOST) + socket.inet_aton(destination)
    pseudo = addresses + struct.pack(">BBH", 0, 6, 20)
    return ipv4(destination, 6, head + checksum(pseudo + head + b"\0\0\0\0") + b"\0\0")


def capture(frames):
    """A pcap file, a millisecond between frames."""
    data = struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1)
    for number, frame in enumerate(frames):
        data += struct.pack("<IIII", 0, 1000 * number, len(frame), len(frame)) + frame
    return data


sys.stdout.buffer.write(
    capture([arp_request(ROUTER), ping(ROUTER), tcp_syn(SERVER, 0xC000, 0x50)])
)
