#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The program has an allocator of its own, for everything that it loads; the libraries have none: they use what the
process that loads them has.

    allocator.py PROGRAM LIBRARY...
"""

import os
import re
import subprocess
import sys

ALLOCATOR = "libmimalloc"
FUNCTIONS = {"malloc", "calloc", "realloc", "free", "_Znwm", "_ZdlPv", "_ZdlPvm"}
BINDING = re.compile(r"binding file (\S+) \[0\] to (\S+) \[0\]: normal symbol `(\w+)'")


def bindings(program):
    """Which file calls which function of which other."""
    environment = {**os.environ, "LD_DEBUG": "bindings", "LD_BIND_NOW": "1"}
    loaded = subprocess.run([program, "--version"], env=environment, check=True, capture_output=True, text=True)
    return BINDING.findall(loaded.stderr)


def faults_of_program(program):
    callers = set()
    for caller, callee, function in bindings(program):
        if function in FUNCTIONS and ALLOCATOR not in caller:
            callers.add(os.path.basename(caller))
            if ALLOCATOR not in callee:
                yield f"{caller} has {function} of {callee}"
    for library in ("libvemora_persistent", "libsqlite3", "libjsoncpp", "libstdc++"):
        if not any(caller.startswith(library) for caller in callers):
            yield f"{library} calls no allocator"


def faults_of_library(library):
    dynamic = subprocess.run(["readelf", "--dynamic", "--wide", library], check=True, capture_output=True, text=True).stdout
    if ALLOCATOR in dynamic:
        yield f"{library} has an allocator"
    symbols = subprocess.run(["nm", "--dynamic", "--defined-only", library], check=True, capture_output=True, text=True)
    for symbol in FUNCTIONS.intersection(line.split()[-1] for line in symbols.stdout.splitlines()):
        yield f"{library} defines {symbol}"


def main(program, *libraries):
    faults = [*faults_of_program(program), *(fault for library in libraries for fault in faults_of_library(library))]
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(libraries)} libraries")
    return 1 if faults or not libraries else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
