"""The examples for driving the console, each run as its user would, against a board."""

import glob
import os
import re
import shlex
import shutil
import socket
import subprocess
import sys
import tempfile
import termios
import time
import unittest

import support
from pages import SOURCES, blocks, read
from support import PROMPT, START

BOARD = support.program("VIRTUAL_BOARD")
EXAMPLES = os.path.join(SOURCES, "examples")
AUTOMATION = os.path.join(SOURCES, "docs/automation.md")
REFUSED = re.compile(rb"Invalid Command|No command found|ailed")


def example(name):
    return os.path.join(EXAMPLES, name)


def free_port():
    with socket.create_server(("localhost", 0)) as server:
        return server.getsockname()[1]


def steps(block):
    """The commands of a printed shell session, each with the lines that it prints."""
    found = []
    for line in block:
        if line.startswith("$ "):
            found.append((line[2:], []))
        else:
            found[-1][1].append(line)
    return found


def wait_for_listener(port):
    """Waits until a program listens on a TCP port of this machine."""
    row = re.compile(rf"^ *\d+: [0-9A-F]+:{int(port):04X} [0-9A-F]+:0000 0A", re.MULTILINE)
    deadline = time.monotonic() + support.DEADLINE
    while not any(row.search(read(path)) for path in glob.glob("/proc/net/tcp*")):
        if time.monotonic() > deadline:
            raise TimeoutError(f"nobody listens on port {port}")
        time.sleep(0.01)


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
        self.started = support.Screen(self, self.board.stderr.fileno()).until(b"\n")

    def leave_half_a_line(self):
        """What an earlier user may have left behind."""
        with open(self.console, "wb") as console:
            console.write(b"reg 0 = ff half a l")

    def board_is_free(self):
        """The board runs, and its console answers the next user at once."""
        self.assertIsNone(self.board.poll())
        with open(self.console, "r+b", buffering=0) as console:
            console.write(b"version\n")
            support.Screen(self, console.fileno()).shows(
                b"version\r\nVBQ5910 Version  2\n\r" + PROMPT
            )

    def recipe(self, port):
        """The path of a ser2net.yaml for this board and a TCP port."""
        with open(example("ser2net.yaml"), encoding="ascii") as file:
            recipe = file.read()
        for mine, theirs, count in ((str(port), "3000", 2), (self.console, "/tmp/console", 1)):
            self.assertEqual(recipe.count(theirs), count)
            recipe = recipe.replace(theirs, mine)
        path = os.path.join(self.folder, "ser2net.yaml")
        with open(path, "w", encoding="ascii") as file:
            file.write(recipe)
        return path

    def serve(self, *command):
        """Starts a program that offers the console elsewhere; ends with the test."""
        # pylint: disable=consider-using-with
        server = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE
        )
        self.addCleanup(support.end, server)
        return server

    def telnet(self, port):
        """The terminal of a telnet client that has agreed who echoes."""
        terminal = support.Terminal(self)
        terminal.start(["telnet", "localhost", str(port)])
        terminal.screen.until(b"Escape character is '^]'.\r\n")
        deadline = time.monotonic() + support.DEADLINE
        while terminal.settings()[3] & termios.ECHO:
            self.assertLess(time.monotonic(), deadline, "the client echoes by itself")
            time.sleep(0.01)
        return terminal

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
        self.board_is_free()

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
        self.board_is_free()

    def test_pexpect_without_a_console(self):
        environment = {name: os.environ[name] for name in os.environ if name != "CONSOLE"}
        done = support.run([sys.executable, "-B", example("console_test.py")], env=environment)
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertEqual(
            done.stderr, b"console_test.py: set CONSOLE to the device of the console\n"
        )


class Capture(unittest.TestCase):
    def test_it_is_what_its_program_writes(self):
        done = support.run([sys.executable, "-B", example("make_in_pcap.py")])
        with open(example("in.pcap"), "rb") as file:
            self.assertEqual(done.stdout, file.read())


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
    @needs("telnet")
    def test_telnet(self):
        port = free_port()
        self.serve("ser2net", "-n", "-u", "-c", self.recipe(port))
        wait_for_listener(port)
        # What one leaves behind would be seen by the next.
        for greeting in (START, b""):
            terminal = self.telnet(port)
            terminal.type(b"\r")
            terminal.screen.shows(greeting + b"\r\n" + PROMPT)
            terminal.type(b"l3 \x7f f\r")
            terminal.screen.shows(b"l3 \b \b f\r\nFilter L3: DISABLE\n\r" + PROMPT)
            terminal.type(b"\x1d")
            terminal.screen.until(b"telnet> ")
            terminal.type(b"quit\r")
            self.assertEqual(terminal.status(), 0)
        self.board_is_free()

    def test_nothing_listens(self):
        done = support.run([sys.executable, "-B", example("bench_driver.py"), "localhost:1"])
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertIn(b"bench_driver: localhost:1: ", done.stderr)


@needs("expect")
@needs("socat")
@needs("ser2net")
@needs("telnet")
class AsPrinted(ConsoleTest):
    """The examples of automation.md in their order, on a board started as in its first line."""

    def setUp(self):
        super().setUp()
        shutil.copytree(EXAMPLES, os.path.join(self.folder, "examples"))
        self.ports = {"3000": str(free_port()), "4000": str(free_port())}

    def test_one_after_the_other(self):
        [(_, console), (_, commands)] = blocks(AUTOMATION)
        start, [started] = steps(console)[0]
        self.assertEqual(start, "virtual-board --pty /tmp/console &")
        device = re.compile("/dev/pts/[0-9]+")
        self.assertEqual(
            device.sub("PTY", self.mine(started)), device.sub("PTY", self.started.decode().rstrip())
        )
        for command, printed in steps(console)[1:]:
            with self.subTest(command):
                self.follow(self.mine(command), printed)
        self.assertEqual(self.board.wait(support.DEADLINE), 0)
        for command, printed in steps(commands):
            with self.subTest(command):
                self.follow(command, printed)

    def mine(self, command):
        """A command on the console and ports of this test."""
        for theirs, mine in ({"/tmp/console": self.console} | self.ports).items():
            command = command.replace(theirs, mine)
        return command

    def follow(self, command, printed):
        if command.startswith("telnet "):
            self.talk(self.telnet(self.ports["3000"]), printed)
        elif command.endswith(" &"):
            if "ser2net" in command:
                self.recipe(self.ports["3000"])
            self.serve("env", "-C", self.folder, *shlex.split(command[:-2]))
            wait_for_listener(self.ports["3000" if "ser2net" in command else "4000"])
        else:
            path = os.path.dirname(BOARD) + ":" + os.environ["PATH"]
            done = subprocess.run(
                ["sh", "-c", command],
                cwd=os.path.join(self.folder, "examples"),
                env={**os.environ, "PATH": path},
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                timeout=support.DEADLINE,
                check=False,
            )
            shown = re.sub(r"in [0-9.]+s", "in 0.010s", done.stdout.decode().expandtabs())
            lines = [line.rstrip() for line in shown.splitlines()]
            self.assertEqual(lines, printed)

    @staticmethod
    def talk(terminal, printed):
        """A telnet session, whose printed prompts are those that Enter and Ctrl-] show."""
        for keys, line in zip((b"\r", None, b"\x1d"), printed):
            prompt, typed = re.fullmatch("((?:Debug>|telnet)> )?(.*)", line).groups()
            if prompt is None:
                terminal.screen.until(b"\r\n" + line.encode() + b"\n\r")
                continue
            terminal.type(keys)
            terminal.screen.until(prompt.encode())
            terminal.type(typed.encode() + b"\r")
        terminal.status()


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
