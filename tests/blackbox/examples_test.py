"""The examples for driving the console, each run as its user would, against a board."""

import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

import support
from support import PROMPT, START

BOARD = support.program("VIRTUAL_BOARD")
EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples")
REFUSED = re.compile(rb"Invalid Command|No command found|ailed")


def example(name):
    return os.path.join(EXAMPLES, name)


def free_port():
    with socket.create_server(("localhost", 0)) as server:
        return server.getsockname()[1]


def needs(program):
    return unittest.skipIf(shutil.which(program) is None, f"there is no {program}")


class ConsoleTest(unittest.TestCase):
    """A board whose console is a pseudo-terminal under self.console."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.console = os.path.join(folder.name, "console")
        # pylint: disable=consider-using-with
        self.board = subprocess.Popen([BOARD, "--pty", self.console], stderr=subprocess.PIPE)
        self.addCleanup(support.end, self.board)
        support.Screen(self, self.board.stderr.fileno()).until(b"\n")

    def leave_half_a_line(self):
        """What an earlier user may have left behind."""
        with open(self.console, "wb") as console:
            console.write(b"reg 0 = ff half a l")

    def board_ends(self):
        self.assertEqual(self.board.wait(support.DEADLINE), 0)

    def serve(self, *command):
        """Starts a program that offers the console elsewhere; ends with the test."""
        # pylint: disable=consider-using-with
        server = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE
        )
        self.addCleanup(support.end, server)
        return server

    def drive(self, port, *commands):
        """Runs commands with the bench driver once a program listens on the port."""
        driver = [sys.executable, "-B", example("bench_driver.py"), f"localhost:{port}"]
        for _ in range(100):
            done = support.run([*driver, *commands])
            if b"Connection refused" not in done.stderr:
                break
        return done


class Scripts(ConsoleTest):
    @needs("expect")
    def test_expect(self):
        self.leave_half_a_line()
        done = support.run([example("version.exp"), self.console])
        self.assertEqual(
            (done.stdout, done.stderr, done.returncode),
            (b"chip VBQ5910, revision 2\nroute 0 is not in use\n", b"", 0),
        )
        self.board_ends()

    @needs("expect")
    def test_expect_without_a_board(self):
        self.board.kill()
        self.board.wait(support.DEADLINE)
        done = support.run([example("version.exp"), os.path.join(self.folder, "absent")])
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"version.exp: ", done.stderr)

    def test_pexpect(self):
        self.leave_half_a_line()
        done = support.run(
            [sys.executable, "-B", example("console_test.py")],
            env={**os.environ, "CONSOLE": self.console},
        )
        self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertIn(b"Ran 3 tests", done.stderr)
        self.board_ends()


class Network(ConsoleTest):
    ROUTE_0 = (
        b"INDEX:  0\tINVALID\n"
        b"IP: 0.0.0.0         MASK:  0 NEXT HOP: 0.0.0.0        \n"
        b"PORT:     \tIPOE \tSESSION ID:  0\tDIRECT: FALSE \tWANMAC: FALSE\n"
    )

    def check(self, port):
        self.leave_half_a_line()
        done = self.drive(port, "version", "l3 0")
        shown = b"VBQ5910 Version  2\n" + self.ROUTE_0
        self.assertEqual((done.stdout.rstrip(b"\n") + b"\n", done.stderr), (shown, b""))
        refused = self.drive(port, "version", "l3 zz", "l3 0")
        self.assertEqual(refused.returncode, 1)
        self.assertIn(b"bench_driver: l3 zz: Invalid Command\n", refused.stderr)
        self.assertNotIn(b"INDEX", refused.stdout)

    @needs("socat")
    def test_socat(self):
        port = free_port()
        listen = f"TCP-LISTEN:{port},bind=localhost,reuseaddr,fork"
        self.serve("socat", "-t", "0", listen, f"FILE:{self.console},raw,echo=0")
        self.check(port)

    @needs("ser2net")
    def test_ser2net(self):
        port = free_port()
        with open(example("ser2net.yaml"), encoding="ascii") as file:
            recipe = file.read()
        for mine, theirs in ((str(port), "3000"), (self.console, "/tmp/console")):
            self.assertEqual(recipe.count(theirs), 2 if theirs == "3000" else 1)
            recipe = recipe.replace(theirs, mine)
        path = os.path.join(self.folder, "ser2net.yaml")
        with open(path, "w", encoding="ascii") as file:
            file.write(recipe)
        self.serve("ser2net", "-n", "-u", "-c", path)
        self.check(port)

    def test_nothing_listens(self):
        done = support.run([sys.executable, "-B", example("bench_driver.py"), "localhost:1"])
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertIn(b"bench_driver: localhost:1: ", done.stderr)


class Commands(unittest.TestCase):
    """The files that set up a router, as the board's script."""

    # For each file, something that is in the chip afterwards: the question and its answer.
    ANSWERS = {
        "ports": [(b"maccfg lan", b"VLAN AWARE: TRUE"), (b"macaddr", b"WANIP: 203.0.113.2")],
        "routes": [(b"l3 3", b"NEXT HOP: 203.0.113.1 "), (b"l3 f", b"ENABLE")],
        "arp": [(b"arp 3", b"MAC: 020000000280"), (b"arp f", b"ENABLE")],
        "nat": [(b"nat h 198.51.100.7 1bb", b"NSPORT: 8001"), (b"nat s 0", b"INSIDESERVER: TRUE")],
        "classifier": [(b"clsfr 1", b"DIPMASK: 20"), (b"clsfr f", b"ENABLE")],
        "qos": [(b"qos wan", b"MODE2"), (b"qos wan 3", b"CREDIT: 20")],
        "pppoe": [(b"pst 0", b"SESSION ID: 1234"), (b"ctrl mtu", b"5d4")],
    }

    def test_every_file_is_asked_about(self):
        files = sorted(os.listdir(example("commands")))
        self.assertEqual(files, sorted(name + ".cmd" for name in self.ANSWERS))

    def test_all_together(self):
        script = b""
        for name in self.ANSWERS:
            with open(example(f"commands/{name}.cmd"), "rb") as file:
                script += file.read()
        questions = [question for pairs in self.ANSWERS.values() for question in pairs]
        lines = script + b"".join(command + b"\n" for command, _ in questions) + b"exit\n"
        done = support.run([BOARD], lines)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(done.stdout[: len(START)], START)
        self.assertIsNone(REFUSED.search(done.stdout))
        answers = done.stdout[len(START):].split(PROMPT)[script.count(b"\n"):-1]
        self.assertEqual(len(answers), len(questions))
        for shown, (command, answer) in zip(answers, questions):
            self.assertTrue(shown.startswith(command + b"\r\n"), shown)
            self.assertIn(answer, shown)


if __name__ == "__main__":
    support.main()
