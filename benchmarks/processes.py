# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What whole processes take."""

import os
import subprocess
import sys
import time


def measured(command):
    """One run: the seconds, the most memory in bytes, and standard output."""
    start = time.monotonic()
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
        out = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    seconds = time.monotonic() - start
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)} answers {process.returncode}")
    return seconds, usage.ru_maxrss << 10, out


def measured_in_turns(commands, repetitions):
    """Of each name, the seconds of each run and the most memory of all. In turns: what slows the machine for a minute
    slows both sides of a ratio."""
    figures = {name: {"seconds": [], "memory": 0} for name in commands}
    for _ in range(repetitions):
        for name, command in commands.items():
            seconds, memory, _ = measured(command)
            figures[name]["seconds"].append(seconds)
            figures[name]["memory"] = max(figures[name]["memory"], memory)
    return figures
