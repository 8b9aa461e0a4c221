#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A library shows what its version script names, each symbol in the version where the script has it, and nothing else.

    exported_symbols.py VERSION_SCRIPT LIBRARY
"""

import re
import subprocess
import sys


def named_by(script):
    """Each symbol with its version; with none in a script that has none."""
    symbols, version = {}, ""
    with open(script, encoding="utf-8") as file:
        for line in (line.split("#")[0].strip() for line in file):
            if line.endswith("{"):
                version = line[:-1].strip()
            elif re.fullmatch(r"[A-Za-z_]\w*;", line):
                symbols[line[:-1]] = version
    return symbols


def shown_by(library):
    """What nm says without the versions themselves, which are symbols too."""
    lines = subprocess.run(["nm", "--dynamic", "--defined-only", "--with-symbol-versions", library], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    symbols = {}
    for kind, symbol in (line.split()[-2:] for line in lines):
        name, _, version = symbol.partition("@")
        if kind != "A":
            symbols[name] = version.lstrip("@")
    return symbols


def plain(symbol):
    return subprocess.run(["c++filt", symbol], check=True, capture_output=True, text=True).stdout.strip()


def faults_of(named, shown):
    for symbol in sorted(shown.keys() - named.keys()):
        yield f"shows {plain(symbol)}, which its version script does not name"
    for symbol in sorted(named.keys() - shown.keys()):
        yield f"does not show {plain(symbol)}, which its version script names"
    for symbol in sorted(named.keys() & shown.keys()):
        if named[symbol] != shown[symbol]:
            yield (f"shows {plain(symbol)} in version \"{shown[symbol]}\", and its version script names it in "
                   f"\"{named[symbol]}\"")


def main():
    script, library = sys.argv[1:]
    named = named_by(script)
    faults = list(faults_of(named, shown_by(library)))
    for fault in faults:
        print(f"{library} {fault}", file=sys.stderr)
    if not named:
        sys.exit(f"{script} names nothing")
    if not faults:
        print(f"{library} shows the {len(named)} symbols that {script} names")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
