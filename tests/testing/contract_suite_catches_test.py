#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The contract suite fails on every fault that is planted in the in-memory repository, by the test that is about it.

    contract_suite_catches_test.py PROGRAM    the tests of contract_suite_test.cpp
"""

import re
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=60, errors="replace")


def failed_tests(fault):
    """The tests that fail with a fault, as SUITE.TEST. The process itself has to end as GoogleTest ends it."""
    ran = run(f"--gtest_filter=Faulty/*/{fault}", "--gtest_brief=1", "--gtest_color=no")
    if ran.returncode not in (0, 1):
        raise AssertionError(f"{fault}: the program ended with {ran.returncode}:\n{ran.stdout}{ran.stderr}")
    return set(re.findall(rf"^\[  FAILED  \] Faulty/(\S+)/{fault}\b", ran.stdout, re.MULTILINE))


class Contract_Suite(unittest.TestCase):
    def test_names_at_least_thirty_faults_each_once(self):
        names = [line.split()[0] for line in run("--list-faults").stdout.splitlines()]
        self.assertGreaterEqual(len(names), 30)
        self.assertEqual(len(names), len(set(names)))

    def test_catches_every_planted_fault_by_the_test_that_is_about_it(self):
        for line in run("--list-faults").stdout.splitlines():
            fault, caught_by = line.split()
            with self.subTest(fault):
                failed = failed_tests(fault)
                self.assertIn(caught_by, failed)
                print(f"caught: {fault} by {caught_by}, {len(failed)} tests in all")

    def passed_and_skipped(self, prefix):
        ran = run(f"--gtest_filter={prefix}/*", "--gtest_color=no")
        self.assertEqual(ran.returncode, 0, ran.stdout)
        passed = int(re.search(r"\[  PASSED  \] (\d+) tests", ran.stdout).group(1))
        return passed, set(re.findall(rf"^\[  SKIPPED \] {prefix}/(\S+)/in_memory$", ran.stdout, re.MULTILINE))

    def test_passes_and_skips_nothing_without_a_fault(self):
        passed, skipped = self.passed_and_skipped("Sound")
        self.assertGreaterEqual(passed, 80)
        self.assertEqual(skipped, set())

    def test_passes_where_the_repositories_are_all_that_there_is(self):
        passed, skipped = self.passed_and_skipped("Bare")
        self.assertGreaterEqual(passed, 80)
        self.assertEqual(skipped, {
            "ETA_Camera_Repository_Contract.deletes_a_record_whose_new_trigger_was_never_handed_over",
            "Subscription_Repository_Contract.calls_stale_what_was_so_when_it_was_handed_over_last",
            "Subscriptions_Of_Half_A_Kind.are_left_to_whoever_looks_at_them",
            "Trigger_Repository_Contract.deletes_links_that_are_held_in_memory_only_half_changed",
            "Trigger_Repository_Contract.does_not_store_what_is_not_handed_over"})


unittest.main()
