"""debug-monitor-console in its own folder, on a terminal whose user is the test."""

import os
import shutil
import tempfile
import unittest

import kernel_memory
import support
from kernel_memory import MAPPED
from support import START


class LauncherTest(unittest.TestCase):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.launcher = os.path.join(self.folder, "debug-monitor-console")
        shutil.copy(support.program("LAUNCHER"), self.launcher)
        self.terminal = support.Terminal(self)
        self.before = self.terminal.settings()

    def install(self, folder, text):
        path = os.path.join(folder, "debug-monitor")
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        os.chmod(path, 0o755)

    def expect_end(self, status):
        self.assertEqual(self.terminal.status(), status)
        self.assertEqual(self.terminal.settings(), self.before)


class RealMonitorTest(LauncherTest, kernel_memory.KernelMemoryTest):
    """The launcher starts the real program in its namespace."""

    def install_monitor(self, device):
        command = kernel_memory.inside(device, support.program("DEBUG_MONITOR"))
        words = " ".join("'" + word + "'" for word in command)
        self.install(self.folder, f"#!/bin/sh\nexec {words}\n")

    def start_monitor(self):
        """Starts the launcher on the memory device and waits for the prompt."""
        self.install_monitor(self.path)
        self.terminal.start([self.launcher])
        self.terminal.screen.shows(MAPPED + START)
