#!/usr/bin/env python3
"""A console driver for a test bench, over TCP. It has the shape that bench frameworks ask of a
shell driver: activate, run, run_check, deactivate.

The bench's host offers the console:
    socat -t 0 TCP-LISTEN:4000,bind=localhost,reuseaddr,fork FILE:/tmp/console,raw,echo=0
and the test uses it:
    bench_driver.py localhost:4000 'l3 0' 'version'
"""

import re
import socket
import sys

import pexpect
from pexpect import fdpexpect

REFUSED = re.compile("^(No command found|Invalid Command)$", re.MULTILINE)
FAILED = re.compile("failed!?$", re.MULTILINE)


class CommandError(Exception):
    """A command that was refused or failed, with what it printed."""


class DebugMonitorDriver:
    prompt = "\n\rDebug>> "
    erase_line = "\b" * 255

    def __init__(self, host, port, deadline=5):
        self.address = (host, port)
        self.deadline = deadline
        self.connection = self.console = None

    def activate(self):
        """Connects, and takes the console to a prompt whatever is in its line."""
        self.connection = socket.create_connection(self.address, self.deadline)
        self.console = fdpexpect.fdspawn(
            self.connection, timeout=self.deadline, encoding="latin-1"
        )
        self.console.send(self.erase_line + "\n")
        self.console.expect_exact("\r\n" + self.prompt)

    def run(self, command):
        """The lines that the command prints, and 0, or 1 when it was refused or failed."""
        self.console.send(command + "\n")
        self.console.expect_exact("\r\n")
        self.console.expect_exact(self.prompt)
        text = self.console.before.replace("\r", "")
        status = 1 if REFUSED.search(text) or FAILED.search(text) else 0
        return text.splitlines(), status

    def run_check(self, command):
        """The lines that the command prints. Raises CommandError if it was refused or
        failed."""
        lines, status = self.run(command)
        if status != 0:
            raise CommandError(f"{command}: " + "\n".join(lines))
        return lines

    def deactivate(self):
        """Leaves the monitor at its prompt, and waits until the bench's host has noticed: two
        that read from one console take each other's answers."""
        self.connection.shutdown(socket.SHUT_WR)
        while self.connection.recv(4096):
            continue
        self.connection.close()


def main(address, *commands):
    host, _, port = address.rpartition(":")
    if not host or not port.isdigit():
        sys.exit(f"bench_driver: {address}: the address is HOST:PORT")
    driver = DebugMonitorDriver(host, int(port))
    try:
        driver.activate()
        try:
            for command in commands:
                print("\n".join(driver.run_check(command)))
        finally:
            driver.deactivate()
    except CommandError as error:
        sys.exit(f"bench_driver: {error}")
    except pexpect.TIMEOUT:
        sys.exit(f"bench_driver: {address}: no prompt within {driver.deadline} seconds")
    except OSError as error:
        sys.exit(f"bench_driver: {address}: {error}")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    main(*sys.argv[1:])
