# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Runs the tool from the start of main as often as wanted, with faults: the preloaded library does the work."""

import collections
import os
import struct
import subprocess

NONE, ALLOCATION, FILE = 0, 1, 2

Fault = collections.namedtuple("Fault", "kind at for_good error", defaults=(False, 0))
NO_FAULT = Fault(NONE, 0)

Run = collections.namedtuple("Run", "status signal allocations by_operator_new file_calls failed out err")


class Fault_Server:
    def __init__(self, tool, library, trace=False, record=None):
        requests, self.to = os.pipe()
        self.answers, answers = os.pipe()
        environment = {**os.environ, "LD_PRELOAD": library, "FAULT_SERVER": f"{requests},{answers}"}
        environment.pop("VEMORA_DATABASE", None)
        if record is not None:
            environment["FAULT_RECORD"] = record
        if trace:
            environment["FAULT_TRACE"] = "1"
        self.process = subprocess.Popen([tool], env=environment, pass_fds=(requests, answers),
                                        stdin=subprocess.DEVNULL)
        os.close(requests)
        os.close(answers)
        self.lines = os.fdopen(self.answers, "r", encoding="ascii")

    def close(self):
        os.close(self.to)
        self.process.wait()
        self.lines.close()

    def run(self, arguments, folder, fault=NO_FAULT, out=None):
        """Runs `vemora-triggers ARGUMENTS` in a folder; what it prints goes beside that folder."""
        out_file, err_file = out or folder + ".out", folder + ".err"
        fields = [fault.kind, fault.at, int(fault.for_good), fault.error, folder, out_file, err_file,
                  "vemora-triggers", *arguments]
        text = b"".join(str(field).encode("utf-8") + b"\0" for field in fields)
        os.write(self.to, struct.pack("=I", len(text)) + text)
        line = self.lines.readline()
        if not line:
            raise AssertionError("the fault server is gone")
        with open(err_file, "rb") as file:
            err = file.read()
        printed = b""
        if out is None:
            with open(out_file, "rb") as file:
                printed = file.read()
        return Run(*map(int, line.split()), printed, err)
