# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The disk fails or is full, at every call by which the tool's commands open, write, sync, cut or map a file: what
they say is true of what is stored, and the same command, repeated on a sound disk, ends where an undisturbed run ends.

    FAULT_STRIDE=1      every call (default: every third)
    FAULT_CASE=REGEX    these commands alone
"""

import errno
import os
import re
import unittest

from campaign import Campaign_Test
from fault_server import FILE, Fault

STRIDE = int(os.environ.get("FAULT_STRIDE", "3"))
FIRST = int(os.environ.get("FAULT_FIRST", "1"))
CASES = os.environ.get("FAULT_CASE", "")


class Disks_Test(Campaign_Test):
    def where(self, number, fault):
        forever = " and from then on" if fault.for_good else ""
        return f"call {number}{forever}, {errno.errorcode[fault.error]}"

    def try_every_call(self, error, for_good):
        for case in self.campaign.cases():
            if not re.search(CASES, case.name):
                continue
            self.campaign.prepare(case)
            last = case.undisturbed.file_calls + 1
            self.assertGreater(last, 8)
            numbers = [*range(FIRST, last, STRIDE), last]
            tally = self.try_points(case, numbers, lambda number: Fault(FILE, number, for_good, error))
            print(f"{case.name}: {last - 1} calls: {tally}", flush=True)
        self.assert_no_complaints()

    def test_one_call_fails(self):
        self.try_every_call(errno.EIO, for_good=False)

    def test_every_call_fails_from_some_point_on(self):
        self.try_every_call(errno.EIO, for_good=True)

    def test_no_room_for_one_call(self):
        self.try_every_call(errno.ENOSPC, for_good=False)

    def test_no_room_from_some_point_on(self):
        self.try_every_call(errno.ENOSPC, for_good=True)


if __name__ == "__main__":
    unittest.main()
