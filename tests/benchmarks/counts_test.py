# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What counts.py lets pass beside the recorded counts, and what it names."""

import os
import sys
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
sys.path.insert(0, os.path.join(ROOT, "benchmarks"))

import counts  # noqa: E402

RECORDED = {"instructions, refresh": 1000, "statements, refresh": 28}


class Faults(unittest.TestCase):
    def test_are_none_when_nothing_takes_more(self):
        self.assertEqual(list(counts.faults(RECORDED, {"instructions, refresh": 500, "statements, refresh": 28})), [])

    def test_let_three_percent_more_instructions_pass(self):
        self.assertEqual(list(counts.faults(RECORDED, RECORDED | {"instructions, refresh": 1030})), [])

    def test_name_more_instructions_than_that(self):
        self.assertEqual(list(counts.faults(RECORDED, RECORDED | {"instructions, refresh": 1040})),
                         ["instructions, refresh: 1,040, 4.0% more than the 1,000 recorded"])

    def test_name_a_single_statement_more(self):
        self.assertEqual(list(counts.faults(RECORDED, RECORDED | {"statements, refresh": 29})),
                         ["statements, refresh: 29, 3.6% more than the 28 recorded"])

    def test_name_what_is_counted_on_one_side_alone(self):
        self.assertEqual(list(counts.faults({"a": 1}, {"b": 1})), ["a: not counted any more", "b: not recorded"])


if __name__ == "__main__":
    unittest.main()
