# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Counts the instructions of calls and passes with valgrind, and prints them as a JSON object.

    count_instructions.py calls REPEATED_CALLS
    count_instructions.py passes COUNTED_PASSES SIZE...
"""

import json
import os
import re
import subprocess
import sys
import tempfile

CALLS = {  # what to call, how often at first and again, and how many are counted then
    "unchanged trigger": ("refresh", 2, 4, 2000),
    "log call, logging off": ("log-off", 1000, 11000, 10000),
    "log call, below the level": ("log-below", 1000, 11000, 10000),
}
PASSES = ("first apply", "unchanged refresh", "one trigger changed")  # as counted_passes makes them


def count(options, command):
    return subprocess.run(["valgrind", "--tool=callgrind", *options, *command], capture_output=True, text=True, check=True)


def instructions_of_run(command):
    return int(re.search(r"Collected : (\d+)", count(["--callgrind-out-file=/dev/null"], command).stderr).group(1))


def count_calls(program):
    return {name: (instructions_of_run([program, call, str(more)]) - instructions_of_run([program, call, str(few)])) / counted
            for name, (call, few, more, counted) in CALLS.items()}


def instructions_of_dump(path):
    with open(path, encoding="utf-8") as file:
        return int(re.search(r"^(?:summary|totals): (\d+)", file.read(), re.MULTILINE).group(1))


def count_passes(program, *sizes):
    counted = {}
    for size in sizes:
        with tempfile.TemporaryDirectory() as folder:
            options = [f"--callgrind-out-file={folder}/out", "--toggle-collect=counted_pass", "--dump-after=counted_pass"]
            done = count(options, [program, os.path.join(folder, "site.db"), size])
            dumps = [f"{folder}/out.{number}" for number in range(1, len(PASSES) + 1)]
            site = json.loads(done.stdout)["site"]
            counted[site] = {name: instructions_of_dump(dump) for name, dump in zip(PASSES, dumps)}
        print(f"{size}: counted", file=sys.stderr)
    return counted


if __name__ == "__main__":
    print(json.dumps({"calls": count_calls, "passes": count_passes}[sys.argv[1]](*sys.argv[2:])))
