"""What `cmake --install` puts where, with every folder of the installation named otherwise."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOP = os.environ["SOURCES"]
PROGRAMS = os.environ["PROGRAMS"]

FOLDERS = {"BINDIR": "tools", "SBINDIR": "system", "DATADIR": "data", "MANDIR": "manual"}

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
            root = pathlib.Path(folder, "root")
            self.do("cmake", "--install", build, env={**os.environ, "DESTDIR": str(root)})
            installed = {
                str(path.relative_to(root)): path.stat().st_mode & 0o777
                for path in root.rglob("*") if path.is_file()
            }
        pages = os.path.join(TOP, "packaging", "man")
        names = os.listdir(pages) if os.path.isdir(pages) else []
        manual = {f"opt/here/manual/man{name[-1]}/{name}": 0o644 for name in names}
        self.assertEqual(installed, EXPECTED | manual)

    def test_packages_have_the_version_of_the_programs(self):
        with open(os.path.join(TOP, "debian", "changelog"), encoding="utf-8") as changes:
            first = changes.readline()
        self.assertEqual(first.split()[:2], ["debug-monitor", f"({os.environ['VERSION']})"])

    def do(self, *command, **options):
        done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
