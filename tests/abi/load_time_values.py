#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The values that a library takes from its platform's headers are set once it is loaded.

    load_time_values.py LIBRARY

No code of the library uses them, so that nothing else would notice if they were missing or wrong. They are found
by the library's symbols and read where the library has them in memory.
"""

import ctypes
import datetime
import os
import re
import subprocess
import sys

JULIAN_DAY_0001_01_01 = 1721426  # of datetime's day 1
MICROSECONDS_PER_DAY = 24 * 60 * 60 * 1000000


def ticks_of(year, month, day):
    """A time point as Boost keeps it: microseconds since Julian day 0."""
    return (datetime.date(year, month, day).toordinal() - 1 + JULIAN_DAY_0001_01_01) * MICROSECONDS_PER_DAY


def read_integer(address):
    return ctypes.c_int64.from_address(address).value


def read_string(address):
    """A std::string: where its characters are, and how many."""
    characters = ctypes.c_void_p.from_address(address).value
    length = ctypes.c_size_t.from_address(address + 8).value
    return ctypes.string_at(characters, length).decode() if characters and length < 100 else None


EXPECTED = {
    "kuv::utils::UNIX_EPOCH": (read_integer, ticks_of(1970, 1, 1)),
    "kuv::utils::NTP_EPOCH": (read_integer, ticks_of(1900, 1, 1)),
    "kuv::vemora::Stream_Pipeline::DEFAULT_MIN_MOTION_DURATION": (read_integer, 5000000),
    "kuv::vemora::CACHED_CAPABILITIES_KEY": (read_string, "CachedCaps"),
}


def symbols_of(library):
    """The offset of each symbol by its name; a tag such as [abi:cxx11] is no part of it."""
    lines = subprocess.run(["nm", "--demangle", "--defined-only", library], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    found = (re.match(r"([0-9a-f]+) \w (.*?)(\[abi:cxx11\])?$", line) for line in lines)
    return {symbol[2]: int(symbol[1], 16) for symbol in found if symbol}


def load(library):
    """Loads the library; answers where its first byte is."""
    ctypes.CDLL(library)
    path = os.path.realpath(library)
    with open("/proc/self/maps", encoding="utf-8") as maps:
        for line in maps:
            fields = line.split(maxsplit=5)
            if len(fields) == 6 and fields[5].strip() == path and int(fields[2], 16) == 0:
                return int(fields[0].split("-")[0], 16)
    sys.exit(f"{library} is not where it was loaded")


def faults_of(library):
    symbols = symbols_of(library)
    base = load(library)
    for name, (read, expected) in EXPECTED.items():
        guard = f"guard variable for {name}"
        if name not in symbols or guard not in symbols:
            yield f"has no {name} that is set at load time"
            continue
        value = read(base + symbols[name])
        print(f"{name} = {value}")
        if value != expected:
            yield f"has {name} = {value}, not {expected}"
        if ctypes.c_ubyte.from_address(base + symbols[guard]).value != 1:
            yield f"did not set {name} under its guard"


def main():
    faults = list(faults_of(sys.argv[1]))
    for fault in faults:
        print(f"{sys.argv[1]} {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
