# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""An apply over PostgreSQL that is cut short at each answer of the server: the tool killed, or the line cut."""

import collections
import itertools
import json
import re
import signal
import subprocess
import threading
import unittest

from cluster import DONE, FAILED, RECORDS, Site, TOPICS, inventory, psql, trigger
from proxy import Proxy
from tester import note, url

# Its documents have little in common with those before.
APPLY = ("apply", "--allow-mass-deletion")

CAMERAS = 40


class Cut_Short(Site):
    """The server has done what it was asked for; the tool does not hear of it."""

    def setUp(self):
        super().setUp()
        self.proxy = Proxy(note("folder"), note("port"))
        self.addCleanup(self.proxy.close)
        self.through_proxy = url(self.schema, self.proxy.folder, self.proxy.port)
        self.before = self.write("before.json", {"triggers": [
            trigger(number, number % 10, TOPICS[:2], True) for number in range(10)]})
        self.after = self.write("after.json", {"triggers": [
            trigger(number, number % 10, TOPICS[1:4]) for number in range(5, 15)]})
        self.run_tool("init", self.write("inventory.json", inventory(CAMERAS)))

    def remains(self):
        """The records, the documents, and the cameras that are still to be reconciled."""
        return tuple(psql(f"SET search_path = {self.schema}; {query}") for query in (
            RECORDS, "SELECT kind, text FROM document ORDER BY 1", "SELECT camera_id FROM pending_camera ORDER BY 1"))

    def given_undisturbed_runs(self):
        self.run_tool(*APPLY, self.before)
        self.remains_before = self.remains()
        outcome = self.run_tool(*APPLY, self.after)
        self.assertEqual(len(outcome["reconciled"]), CAMERAS)
        self.every_camera = "".join(f"{camera}\n" for camera in outcome["reconciled"])
        self.remains_after = self.remains()

    def apply_without(self, answer, act):
        """Applies, and acts on the process at this answer, which it does not get."""
        self.run_tool(*APPLY, self.before)
        self.assertEqual(self.remains(), self.remains_before)
        started = threading.Event()
        processes = []

        def act_when_started():
            started.wait()
            act(processes[0])

        self.proxy.withhold(answer, act_when_started)
        processes.append(subprocess.Popen(self.command(*APPLY, self.after, database=self.through_proxy),
                                          stdout=subprocess.PIPE, stderr=subprocess.PIPE))
        started.set()
        out, err = processes[0].communicate(timeout=600)
        return processes[0].returncode, out, err

    def runs_cut_short(self, act):
        """A run without its first answer, one without its second, and on until one ends before that answer."""
        self.given_undisturbed_runs()
        for answer in itertools.count(1):
            status, out, err = self.apply_without(answer, act)
            if self.proxy.answers < answer:
                self.assertEqual(status, DONE, (out, err))
                return
            yield answer, status, out, err

    def phase(self):
        """Where the run was cut short."""
        records, documents, pending = self.remains()
        if (records, documents, pending) == self.remains_before:
            return "before the commit"
        self.assertEqual(records, self.remains_after[0], "neither the state before the pass nor the committed one")
        if documents == self.remains_before[1]:
            self.assertEqual(pending, self.every_camera)
            return "before the storing"
        self.assertEqual((documents, pending), self.remains_after[1:])
        return "stored"

    def assert_true(self, outcome, phase):
        """What the tool says of the rows is so, and of what it cannot know it says that."""
        said = " ".join([error["message"] for error in outcome["errors"]] + outcome.get("remarks", []))
        if "nothing that the pass wrote was kept" in said:
            self.assertEqual(phase, "before the commit", said)
        elif "it is not known whether what the pass wrote was kept" in said:
            self.assertIn(phase, ("before the commit", "before the storing"), said)
        elif "it is not known whether the documents were stored" in said:
            self.assertIn(phase, ("before the storing", "stored"), said)
        elif "are committed." in said or "before the failure is committed." in said:
            self.assertEqual(phase, "before the storing", said)
        else:
            self.assertEqual((phase, outcome.get("state")), ("before the commit", None), said)
        self.words[" ".join(re.findall("nothing that|not known whether .* (?:kept|stored)|(?:are|is) committed", said))] += 1

    def assert_repeated(self, phase):
        """Repeating the apply ends as if nothing had been, and forgets no camera."""
        outcome = self.run_tool(*APPLY, self.after)
        self.assertEqual(self.remains(), self.remains_after)
        self.assertEqual(len(outcome["reconciled"]), 0 if phase == "stored" else CAMERAS)

    def test_by_killing_the_tool(self):
        phases = collections.Counter()
        for answer, status, out, err in self.runs_cut_short(lambda process: process.kill()):
            with self.subTest(answer=answer):
                self.assertEqual(status, -signal.SIGKILL, (out, err))
                phase = self.phase()
                self.assert_repeated(phase)
                phases[phase] += 1
        print(f"cut short at each of {sum(phases.values())} answers: {dict(phases)}")
        self.assertEqual(set(phases), {"before the commit", "before the storing", "stored"})

    def test_by_cutting_the_line(self):
        phases = collections.Counter()
        self.words = collections.Counter()
        for answer, status, out, err in self.runs_cut_short(lambda process: None):
            with self.subTest(answer=answer):
                phase = self.phase()
                self.assertIn(status, (DONE, FAILED), (out, err))
                outcome = json.loads(out)
                if status == FAILED:
                    self.assert_clear(outcome, err.decode())
                    self.assert_true(outcome, phase)
                else:  # it had done it all, and only said goodbye
                    self.assertEqual(phase, "stored")
                    self.assertEqual(len(outcome["reconciled"]), CAMERAS)
                self.assert_repeated(phase)
                phases[phase] += 1
        print(f"cut short at each of {sum(phases.values())} answers: {dict(phases)}; {dict(self.words)}")
        self.assertEqual(set(phases), {"before the commit", "before the storing", "stored"})


if __name__ == "__main__":
    unittest.main()
