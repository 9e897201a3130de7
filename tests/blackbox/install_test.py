"""What `cmake --install` puts where, with every folder of the installation named otherwise."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import document_links

TOP = pathlib.Path(os.environ["SOURCES"])
PROGRAMS = os.environ["PROGRAMS"]

FOLDERS = {"BINDIR": "tools", "SBINDIR": "system", "DATADIR": "data", "MANDIR": "manual",
           "DOCDIR": "documents"}

EXPECTED = {
    "opt/here/tools/virtual-board": 0o755,
    "opt/here/system/debug-monitor": 0o755,
    "opt/here/system/debug-monitor-console": 0o755,
    "opt/here/data/bash-completion/completions/virtual-board": 0o644,
}


class Install(unittest.TestCase):
    def test_every_file_is_where_it_was_asked_for(self):
        with tempfile.TemporaryDirectory() as folder:
            build = os.path.join(folder, "build")
            settings = [f"-DCMAKE_INSTALL_{name}={value}" for name, value in FOLDERS.items()]
            settings += ["-DCMAKE_INSTALL_PREFIX=/opt/here", "-DDEBUG_MONITOR_TESTS=OFF"]
            self.do("cmake", "-S", TOP, "-B", build, "-G", "Ninja", *settings)
            # The programs are there already.
            os.makedirs(os.path.join(build, "bin"), exist_ok=True)
            for name in ("debug-monitor", "virtual-board"):
                shutil.copy(os.path.join(PROGRAMS, name), os.path.join(build, "bin"))
            everything = self.installed(build, pathlib.Path(folder, "all"))
            for_the_board = self.installed(
                build, pathlib.Path(folder, "board"), "virtual-board", "debug-monitor-doc"
            )
        manual = {
            f"opt/here/manual/man{page.name[-1]}/{page.name}": 0o644
            for page in (TOP / "packaging/man").iterdir()
        }
        expected = EXPECTED | manual | self.documents()
        self.assertEqual(everything, expected)
        for name in ("debug-monitor", "debug-monitor-console"):
            del expected[f"opt/here/system/{name}"]
        self.assertEqual(for_the_board, expected)

    def installed(self, build, root, *components):
        """Installs the components, or all: the files and their modes."""
        for component in [["--component", name] for name in components] or [[]]:
            self.do("cmake", "--install", build, *component, env={**os.environ, "DESTDIR": root})
        self.assertEqual(document_links.broken(root / "opt/here/documents"), [])
        return {
            str(path.relative_to(root)): path.stat().st_mode & 0o777
            for path in root.rglob("*") if path.is_file()
        }

    @staticmethod
    def documents():
        """README, documents and examples stand to each other as in the sources."""
        documents = [TOP / "README.md", TOP / "CONTRIBUTING.md", *(TOP / "docs").rglob("*.md")]
        modes = {path: 0o644 for path in documents}
        for path in (TOP / "examples").rglob("*.*"):
            modes[path] = path.stat().st_mode & 0o777
        return {f"opt/here/documents/{path.relative_to(TOP)}": modes[path] for path in modes}

    def test_packages_have_the_version_of_the_programs(self):
        with open(TOP / "debian/changelog", encoding="utf-8") as changes:
            first = changes.readline()
        self.assertEqual(first.split()[:2], ["debug-monitor", f"({os.environ['VERSION']})"])

    def do(self, *command, **options):
        done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
