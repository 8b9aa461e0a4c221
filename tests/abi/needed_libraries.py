#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The libraries that the trigger manager loads are the server's own and what both agree on.

A database, or anything else that only one server has, must not come along with it.
"""

import re
import subprocess
import sys

PLATFORM = ["libvemora_persistent", "libvemora_tags_json_converter", "libkuv_logging", "libkuv_utils"]
ALWAYS = PLATFORM + ["libjsoncpp", "libfmt", "libstdc++", "libc"]
PERHAPS = ["libodb", "libm", "libgcc_s", "ld-linux-x86-64"]
BOOST = re.compile(r"libboost_[a-z_]+$")


def needed_libraries(path):
    dynamic = subprocess.run(["readelf", "--dynamic", "--wide", path], check=True,
                             capture_output=True, text=True).stdout
    return re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)


def name_of(library):
    """Without ".so" and version; ODB puts the version before it."""
    return re.sub(r"-\d+\.\d+$", "", library.split(".so")[0])


def faults_of(libraries):
    names = [name_of(library) for library in libraries]
    for library, name in zip(libraries, names):
        if name not in ALWAYS + PERHAPS and not BOOST.match(name):
            yield f"needs {library}, which no server promises"
    for name in ALWAYS:
        if name not in names:
            yield f"does not need {name}"


def main():
    libraries = needed_libraries(sys.argv[1])
    print("\n".join(libraries))
    faults = list(faults_of(libraries))
    for fault in faults:
        print(f"{sys.argv[1]} {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
