# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""How the work of a command grows with its task. Instructions are counted, by valgrind, and not time: those of a task
of twice the size, less those of one of the size, are twice as many when the sizes double.
"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

TOOL = os.environ["TOOL"]

# Sorted containers take a step more for twice as many elements; what grows with the square takes twice the steps.
MOST_GROWTH = 1.3


class Growth(unittest.TestCase):
    """Runs the tool in a folder of its own."""

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)
        return name

    def run_tool(self, *arguments):
        subprocess.run([TOOL, *arguments], cwd=self.folder, capture_output=True, check=True)

    def counted(self, *arguments):
        """The instructions of the tool, and what became of it."""
        command = ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
                   TOOL, *arguments]
        process = subprocess.run(command, cwd=self.folder, capture_output=True, text=True, check=False)
        counted = re.search(r"I +refs: +([0-9,]+)", process.stderr)
        self.assertIsNotNone(counted, process.stderr)
        return int(counted.group(1).replace(",", "")), process

    def assert_linear(self, instructions, size, unit):
        """instructions(size) is what a task of that size takes."""
        once, twice, four_times = (instructions(size * times) for times in (1, 2, 4))
        per_unit = [(twice - once) / size, (four_times - twice) / (2 * size)]
        print(f"{per_unit[0]:.0f} and {per_unit[1]:.0f} instructions a {unit} ... ", end="", flush=True)
        self.assertLess(per_unit[1] / per_unit[0], MOST_GROWTH)
