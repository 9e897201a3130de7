"""The Debian packages, installed into a minimal system and removed from it, and the black-box
tests on the installed programs. Needs root and its own mount namespace, as
`./dev package --check` gives it."""

import glob
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests" / "blackbox"))
# pylint: disable=wrong-import-position
import document_links
import kernel_memory
import support

PACKAGES = support.program("PACKAGES")
ROOT = support.program("ROOT")
NATIVE = subprocess.check_output(["dpkg", "--print-architecture"], text=True).strip()

OURS = ("debug-monitor", "virtual-board", "debug-monitor-doc")

# What the machine keeps when packages come and go.
BOOKS = ("dev", "proc", "var/cache", "var/lib/apt", "var/lib/dpkg", "var/log")

ENVIRONMENT = [
    "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
    "DEBIAN_FRONTEND=noninteractive",
    "LC_ALL=C.UTF-8",
    "HOME=/root",
    "TERM=dumb",
]

# Its suppressions name functions of the C library, whose names the installed program has not.
NEED_SYMBOLS = ("blackbox.valgrind",)

# What the black-box tests take from their environment, where it is installed.
INSTALLED = {
    "VIRTUAL_BOARD": "/usr/bin/virtual-board",
    "DEBUG_MONITOR": "/usr/sbin/debug-monitor",
    "LAUNCHER": "/usr/sbin/debug-monitor-console",
    "COMPLETION": "/usr/share/bash-completion/completions/virtual-board",
}


def inside(*command):
    """The command that runs another one in the system that has the packages."""
    return ["chroot", ROOT, "env", "-i", *ENVIRONMENT, *command]


def do(*command, **options):
    """Runs a command in that system, which has to succeed; what it prints."""
    return subprocess.run(inside(*command), stdout=subprocess.PIPE, check=True, **options).stdout


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


def package(name, architecture):
    (path,) = glob.glob(f"{PACKAGES}/{name}_*_{architecture}.deb")
    return path


def install(*names):
    """Installs packages of ours as a user does, with what they depend on."""
    folder = tempfile.mkdtemp(dir=os.path.join(ROOT, "tmp"))
    for name in names:
        shutil.copy(package(name, "all" if name.endswith("-doc") else NATIVE), folder)
    os.chmod(folder, 0o755)
    paths = [os.path.join("/tmp", os.path.basename(folder), name) for name in os.listdir(folder)]
    do("apt-get", "-q", "-y", "--no-install-recommends", "install", *paths)
    shutil.rmtree(folder)


def files():
    """Every path of that system except those of its package database."""
    found = set()
    for folder, folders, names in os.walk(ROOT):
        inner = os.path.relpath(folder, ROOT)
        folders[:] = [name for name in folders
                      if os.path.normpath(os.path.join(inner, name)) not in BOOKS]
        found.update(os.path.normpath(os.path.join(inner, name)) for name in folders + names)
    return found


def setUpModule():
    # Programs that enter their own namespace need a root that is a mount point.
    mount("--bind", ROOT, ROOT)
    # An installer writes this file, which belongs to no package.
    with open(os.path.join(ROOT, "etc", "hosts"), "w", encoding="ascii") as hosts:
        hosts.write("127.0.0.1 localhost\n")
    mount("-t", "proc", "proc", os.path.join(ROOT, "proc"))
    mount("-t", "devpts", "devpts", os.path.join(ROOT, "dev", "pts"))
    do("apt-get", "-q", "update")


class BoardAlone(unittest.TestCase):
    """What somebody has who installs virtual-board only, with what it depends on."""

    @classmethod
    def setUpClass(cls):
        cls.before = files()
        install("virtual-board", "debug-monitor-doc")

    def test_it_depends_on_the_documentation(self):
        depends = subprocess.check_output(
            ["dpkg-deb", "-f", package("virtual-board", NATIVE), "Depends"], text=True)
        self.assertIn("debug-monitor-doc (= ", depends)

    def test_the_monitor_for_the_real_chip_is_not_installed(self):
        self.assertEqual(glob.glob(f"{ROOT}/usr/sbin/debug-monitor*"), [])

    def test_manual_pages_are_found(self):
        for page in (TOP / "packaging" / "man").iterdir():
            with self.subTest(page.name):
                name, section = page.name.rsplit(".", 1)
                path = f"/usr/share/man/man{section}/{page.name}.gz\n"
                self.assertEqual(do("man", "-w", section, name).decode(), path)
                self.assertNotEqual(do("man", section, name), b"")
        self.assertNotEqual(do("man", "8", "debug-monitor-console"), b"")

    def test_documents_and_examples_are_whole(self):
        folder = pathlib.Path(ROOT, "usr/share/doc/debug-monitor")
        for name in ("README.md", "docs", "examples"):
            self.assertTrue((folder / name).exists(), name)
        self.assertEqual(document_links.broken(folder), [])
        for example in (TOP / "examples").rglob("*.*"):
            installed = folder / example.relative_to(TOP)
            self.assertEqual(installed.read_bytes(), example.read_bytes())


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        install("debug-monitor")
        cls.memory = os.path.join(ROOT, "dev", "kmem")
        with open(cls.memory, "wb") as memory:
            memory.truncate(kernel_memory.WINDOW + kernel_memory.WINDOW_SIZE)
        cls.addClassCleanup(os.unlink, cls.memory)

    def test_board_runs_a_script(self):
        done = support.run(inside("virtual-board"), b"l3 5\n")
        route = support.EMPTY_ROUTE % 5
        self.assertEqual(done.stdout, support.START + b"l3 5\r\n" + route + support.PROMPT)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_board_prints_its_options_and_version(self):
        self.assertIn(b"--trace FILE", do("virtual-board", "--help"))
        version = subprocess.check_output(
            ["dpkg-deb", "-f", package("virtual-board", NATIVE), "Version"], text=True)
        self.assertEqual(do("virtual-board", "--version").decode(), f"virtual-board {version}")

    def test_launcher_and_monitor_on_a_terminal(self):
        terminal = support.Terminal(self)
        before = terminal.settings()
        terminal.start(inside("debug-monitor-console"))
        terminal.screen.until(support.START)
        terminal.type(b"reg 605 = 5a\r")
        terminal.screen.until(support.PROMPT)
        terminal.type(b"exit\r")
        self.assertEqual(terminal.status(), 0)
        self.assertEqual(terminal.settings(), before)
        with open(self.memory, "rb") as memory:
            memory.seek(kernel_memory.WINDOW + 0x605)
            self.assertEqual(memory.read(1), b"\x5a")

    def test_bash_finds_the_completion(self):
        script = (". /usr/share/bash-completion/bash_completion; "
                  "_completion_loader virtual-board; complete -p virtual-board")
        self.assertEqual(
            do("bash", "-c", script), b"complete -F _virtual_board virtual-board\n")


class Removed(unittest.TestCase):
    def test_nothing_is_left(self):
        do("apt-get", "-q", "-y", "purge", "--auto-remove", *OURS)
        self.assertEqual(files(), BoardAlone.before)
        known = do("dpkg-query", "-W", "-f", "${Package}\n").decode().split()
        self.assertFalse(set(OURS) & set(known))


class BlackBox(unittest.TestCase):
    """The tests of the programs as they are built, once more on the installed ones. What has been
    built is out of their sight."""

    def test_on_the_installed_programs(self):
        tools = support.program("TOOLS").split()
        do("apt-get", "-q", "-y", "--no-install-recommends", "install", *tools)
        install(*OURS)
        seen = os.path.join(ROOT, str(TOP)[1:])
        os.makedirs(seen)
        mount("--bind", str(TOP), seen)
        mount("-t", "tmpfs", "none", os.path.join(seen, "build"))
        mount("--rbind", "/dev", os.path.join(ROOT, "dev"))
        mount("-t", "sysfs", "sysfs", os.path.join(ROOT, "sys"))
        with open(support.program("TESTS"), encoding="utf-8") as listing:
            tests = json.load(listing)["tests"]
        ran = 0
        for test in tests:
            environment = self.environment(test)
            if not environment or test["name"] in NEED_SYMBOLS:
                continue
            ran += 1
            with self.subTest(test["name"]):
                command = inside("env", *environment, *test["command"])
                done = subprocess.run(command, stderr=subprocess.PIPE, check=False)
                self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertGreater(ran, 0)

    @staticmethod
    def environment(test):
        """The test's own environment with the installed programs in it, or None if it names
        none of them."""
        properties = {each["name"]: each["value"] for each in test.get("properties", ())}
        settings = dict(line.split("=", 1) for line in properties.get("ENVIRONMENT", ()))
        if not settings.keys() & INSTALLED.keys():
            return None
        settings.update(INSTALLED)
        return [f"{name}={value}" for name, value in settings.items()]


class OtherMachines(kernel_memory.KernelMemoryTest):
    """The packages for boards, whose program an emulator runs."""

    # Debian architecture, machine in the program's header, emulator.
    MACHINES = [("armel", 40, "qemu-arm"), ("armhf", 40, "qemu-arm"), ("mipsel", 8, "qemu-mipsel")]

    def test_hold_a_static_program_of_their_machine(self):
        for architecture, machine, emulator in self.MACHINES:
            with self.subTest(architecture):
                path = package("debug-monitor", architecture)
                field = subprocess.check_output(["dpkg-deb", "-f", path, "Architecture"], text=True)
                self.assertEqual(field, architecture + "\n")
                folder = os.path.join(self.folder, architecture)
                subprocess.run(["dpkg-deb", "-x", path, folder], check=True)
                program = os.path.join(folder, "usr", "sbin", "debug-monitor")
                with open(program, "rb") as file:
                    self.assertEqual(int.from_bytes(file.read()[18:20], "little"), machine)
                headers = subprocess.check_output(["readelf", "-l", program], text=True)
                self.assertNotIn("INTERP", headers)
                self.run_it(emulator, program)

    def run_it(self, emulator, program):
        start = os.path.join(self.folder, "start")
        with open(start, "w", encoding="ascii") as script:
            script.write(f"#!/bin/sh\nexec {emulator} {program}\n")
        os.chmod(start, 0o755)
        self.store(0x605, b"\0")
        command = kernel_memory.inside(self.path, start)
        done = support.run(command, b"reg 605 = 5a\nexit\n")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.load(0x605), b"\x5a")


def load_tests(loader, _tests, _pattern):
    """In this order, as each begins with the system that the one before leaves."""
    cases = (BoardAlone, Installed, Removed, BlackBox, OtherMachines)
    return unittest.TestSuite(loader.loadTestsFromTestCase(case) for case in cases)


if __name__ == "__main__":
    support.main()
