#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What a pass costs in counts, which no other program on the machine can change: instructions, statements and round trips,
beside those recorded in baseline.json.

    counts.py BUILD_FOLDER POSTGRESQL            fails if anything takes more than what was recorded
    counts.py --record BUILD_FOLDER POSTGRESQL   records what it takes now

POSTGRESQL is the location of a database server, to which the name of a schema is appended. Instructions differ a little
from run to run and from one processor to another, so 3 percent more are let pass; statements and round trips do not differ.
"""

import json
import os
import subprocess
import sys
import tempfile

import count_instructions

BASELINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "baseline.json")
SIZES = ("10000", "S")
MOST = 1.03


def passes_of(program, location, size, kind):
    """The statements or round trips of each pass over a new site."""
    said = json.loads(subprocess.run([program, location, size], stdout=subprocess.PIPE, check=True).stdout)
    return said["site"], {name: counts[kind] for name, counts in said["passes"].items()}


def count(build, postgresql):
    """All counts, each with a name that says what it is of."""
    program = os.path.join(build, "benchmarks", "counted_passes")
    found = {f"instructions, {call}": number for call, number in
             count_instructions.count_calls(os.path.join(build, "benchmarks", "repeated_calls")).items()}
    for site, passes in count_instructions.count_passes(program, *SIZES).items():
        found.update((f"instructions, {site}, {name}", number) for name, number in passes.items())
    with tempfile.TemporaryDirectory() as folder:
        for size in SIZES:
            for kind, engine, location in (("statements", "SQLite", os.path.join(folder, f"{size}.db")),
                                           ("round trips", "PostgreSQL", f"{postgresql}counted_{size.lower()}")):
                site, passes = passes_of(program, location, size, kind)
                found.update((f"{kind}, {engine}, {site}, {name}", number) for name, number in passes.items())
    return found


def faults(recorded, found):
    """What takes more than was recorded, and what one of both does not know."""
    for name in sorted(recorded.keys() | found.keys()):
        if name not in found or name not in recorded:
            yield f"{name}: {'not counted any more' if name in recorded else 'not recorded'}"
        elif found[name] > recorded[name] * (MOST if name.startswith("instructions") else 1):
            yield (f"{name}: {found[name]:,.0f}, {found[name] / recorded[name] - 1:.1%} more than the "
                   f"{recorded[name]:,.0f} recorded")


def print_savings(recorded, found):
    for name in sorted(recorded.keys() & found.keys()):
        if found[name] * MOST < recorded[name]:
            print(f"{name}: {found[name]:,.0f}, {1 - found[name] / recorded[name]:.1%} less than recorded")


def main():
    arguments = sys.argv[1:]
    records = arguments[0] == "--record"
    found = count(*arguments[records:])
    if records:
        with open(BASELINE, "w", encoding="utf-8") as file:
            json.dump(found, file, indent=2)
            file.write("\n")
        print(f"{len(found)} counts are recorded")
        return
    with open(BASELINE, encoding="utf-8") as file:
        recorded = json.load(file)
    print_savings(recorded, found)
    if said := list(faults(recorded, found)):
        sys.exit("\n".join([*said, "If that is meant, record it in the same commit: scripts/check-benchmarks --record"]))
    print(f"{len(found)} counts are no higher than recorded")


if __name__ == "__main__":
    main()
