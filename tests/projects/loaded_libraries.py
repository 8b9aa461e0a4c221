#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A server loads the product and platform libraries of its own, and nothing else of ours.

    loaded_libraries.py OURS OWN PROGRAM    of the folder OURS it loads the product alone, and four libraries from OWN

What is loaded is what the dynamic linker says of it.
"""

import os
import re
import subprocess
import sys
import tempfile

PRODUCT = "libvemora_trigger_manager.so"


def loaded(program):
    with tempfile.TemporaryDirectory() as work:
        environment = os.environ | {"LD_DEBUG": "libs", "LD_DEBUG_OUTPUT": os.path.join(work, "said"), "LD_BIND_NOW": "1"}
        subprocess.run([program], check=True, env=environment)
        said = ""
        for name in os.listdir(work):
            with open(os.path.join(work, name), encoding="utf-8", errors="replace") as file:
                said += file.read()
    return sorted({os.path.realpath(path) for path in re.findall(r"calling init: (\S+)", said)})


def faults_of(paths, ours, own):
    from_own = [path for path in paths if os.path.dirname(path) == os.path.realpath(own)]
    from_us = [path for path in paths if path.startswith(os.path.realpath(ours) + os.sep) and path not in from_own]
    if [os.path.basename(path).split(".so")[0] + ".so" for path in from_us] != [PRODUCT]:
        yield "loads of ours, and not the product alone: " + " ".join(from_us)
    if len(from_own) != 4:
        yield f"loads {len(from_own)} libraries of its own, not four: " + " ".join(from_own)
    elsewhere = [path for path in paths if re.search("/lib(vemora|kuv)_", path) and path not in from_own + from_us]
    if elsewhere:
        yield "loads from elsewhere: " + " ".join(elsewhere)


def main():
    ours, own, program = sys.argv[1:]
    paths = loaded(program)
    faults = list(faults_of(paths, ours, own))
    for fault in faults:
        print(f"{program} {fault}", file=sys.stderr)
    return 1 if faults else 0


sys.exit(main())
