"""The disk fails or is full, at every call by which the tool's commands open, write, sync, cut or map a file: what
they say is true of what is stored, and the same command, repeated on a sound disk, ends where an undisturbed run ends.

    FAULT_STRIDE=1      every call (default: every third)
    FAULT_CASE=REGEX    these commands alone
"""

import collections
import errno
import os
import re
import unittest

from campaign import Campaign
from fault_server import FILE, Fault

STRIDE = int(os.environ.get("FAULT_STRIDE", "3"))
FIRST = int(os.environ.get("FAULT_FIRST", "1"))
CASES = os.environ.get("FAULT_CASE", "")


class Disks_Test(unittest.TestCase):
    def setUp(self):
        self.campaign = Campaign()
        self.addCleanup(self.campaign.close)
        self.complaints = collections.Counter()
        self.examples = {}

    def report(self, case, number, fault, complaint, run):
        key = (case.name, complaint)
        self.complaints[key] += 1
        if key not in self.examples:
            said = (run.out + run.err).decode("utf-8", "replace")[:300]
            forever = " and from then on" if fault.for_good else ""
            self.examples[key] = (f"first at call {number}{forever}, {errno.errorcode[fault.error]}, "
                                  f"exit {run.status}: {said!r}")

    def try_every_call(self, error, for_good):
        total = collections.Counter()
        for case in self.campaign.cases():
            if not re.search(CASES, case.name):
                continue
            self.campaign.prepare(case)
            last = case.undisturbed.file_calls + 1
            self.assertGreater(last, 8)
            numbers = [*range(FIRST, last, STRIDE), last]
            tally = self.campaign.run(
                case, ((number, Fault(FILE, number, for_good, error)) for number in numbers), self.report)
            self.assertGreater(tally["beyond the end"], 0)
            total += tally
            print(f"{case.name}: {last - 1} calls: {dict(tally)}", flush=True)
        print(f"{sum(total.values()) - total['beyond the end']} points: {dict(total)}")
        self.assertFalse(self.complaints, "\n".join(
            f"{name}: {complaint}: {count} times, {self.examples[name, complaint]}"
            for (name, complaint), count in sorted(self.complaints.items())))

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
