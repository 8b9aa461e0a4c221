# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""One allocation fails, at every point of the tool's commands: it never aborts, what it says is true of what is
stored, and the same command ends, repeated, where an undisturbed run ends.

    FAULT_STRIDE=1      every point (default: as many as go into a minute); with an ordinal number, FAULT_FIRST,
                        where to begin
    FAULT_CASE=REGEX    these commands alone
    FAULT_TRACE=1       prints to standard error where the failing calls came from
"""

import os
import re
import unittest

from campaign import Campaign_Test
from fault_server import ALLOCATION, Fault

STRIDE = int(os.environ.get("FAULT_STRIDE", "0"))
FIRST = int(os.environ.get("FAULT_FIRST", "1"))
CASES = os.environ.get("FAULT_CASE", "")
POINTS_OF_A_SHORT_RUN = 1500


class Allocations_Test(Campaign_Test):
    def where(self, number, fault):
        return f"allocation {number}"

    def test_one_failed_allocation(self):
        self.try_every_point(for_good=False)

    def test_no_allocation_succeeds_from_some_point_on(self):
        self.try_every_point(for_good=True)

    def test_one_failed_allocation_while_the_command_line_is_understood(self):
        self.try_every_point(for_good=False, cases="^apply, with a log$", stride=1, most=900)

    def try_every_point(self, for_good, cases=CASES, stride=STRIDE, most=None):
        cases = [case for case in self.campaign.cases() if re.search(cases, case.name)]
        for case in cases:
            self.campaign.prepare(case)
            self.assertGreater(case.undisturbed.by_operator_new, 300)
            self.assertGreater(case.undisturbed.allocations, case.undisturbed.by_operator_new)
        points = sum(case.undisturbed.allocations for case in cases)
        stride = stride or max(1, points // POINTS_OF_A_SHORT_RUN)
        for case in cases:
            last = case.undisturbed.allocations + 1
            numbers = [*range(FIRST, min(last, most or last), stride), last]
            tally = self.try_points(case, numbers, lambda number: Fault(ALLOCATION, number, for_good))
            print(f"{case.name}: {case.undisturbed.allocations} allocations, "
                  f"{case.undisturbed.by_operator_new} of them by operator new: {tally}", flush=True)
        self.assert_no_complaints()


if __name__ == "__main__":
    unittest.main()
