# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Takes PostgreSQL away in the middle of an apply and looks at what is left.

Killed, restarted, or cut off by the network: each time a clear error, no half of a pass, and repeating the
apply ends in the records of an undisturbed run. So does killing the tool.

    LOST_MOMENTS=50   how many random moments (default 12)
    LOST_SEED=7       another draw of them
"""

import collections
import json
import os
import random
import signal
import subprocess
import tempfile
import time
import unittest

import cluster
from cluster import DONE, FAILED, RECORDS, TOPICS, inventory, psql, trigger
from proxy import Proxy
from tester import note, url

MOMENTS = int(os.environ.get("LOST_MOMENTS", "12"))
SEED = int(os.environ.get("LOST_SEED", "1"))
CAMERAS = int(os.environ.get("LOST_CAMERAS", "20000"))

# Its documents have little in common with those before.
APPLY = ("apply", "--allow-mass-deletion")


def config(numbers, topics, detecting):
    return {"triggers": [trigger(number, number % 10, TOPICS[topics:topics + 3], detecting) for number in numbers]}


class Lost_Server(cluster.Site):

    @classmethod
    def setUpClass(cls):
        """A cluster of its own: it is not the only test at work."""
        cls.notes = tempfile.mkdtemp()
        cluster.cluster("start", cls.notes)
        cls.server_folder = note("folder", cls.notes)
        cls.server_port = note("port", cls.notes)

    @classmethod
    def tearDownClass(cls):
        cluster.cluster("stop", cls.notes)

    def setUp(self):
        super().setUp()
        self.schema = "site"
        self.proxy = Proxy(self.server_folder, self.server_port)
        self.addCleanup(self.proxy.close)
        self.database = url("site", self.server_folder, self.server_port)
        self.through_proxy = url("site", self.proxy.folder, self.proxy.port)
        self.random = random.Random(SEED)
        self.before = self.write("before.json", config(range(1, 9), 0, True))
        self.config_after = config(range(5, 13), 2, False)
        self.after = self.write("after.json", self.config_after)

    def drop(self, schema):
        pass  # it goes with the cluster

    def records(self):
        return psql(f"SET search_path = site; {RECORDS}", self.server_folder, self.server_port)

    def pending(self):
        return psql("SELECT camera_id FROM site.pending_camera", self.server_folder, self.server_port)

    # Ways to lose a server.

    def kill(self, _process):
        cluster.cluster("kill", self.notes)

    def restart(self, _process):
        cluster.cluster("restart", self.notes)

    def cut(self, _process):
        self.proxy.cut()

    def kill_the_tool(self, process):
        process.kill()

    def bring_back(self):
        """Starts the server where it is not running."""
        for _ in range(100):
            try:
                psql("SELECT 1", self.server_folder, self.server_port)
                return
            except subprocess.CalledProcessError:
                try:
                    cluster.cluster("again", self.notes)
                except subprocess.CalledProcessError:
                    time.sleep(0.2)  # what it left behind is still going away
        self.fail("the server did not come back")

    def given_a_pass_of_over_a_second(self):
        """Answers the records before and after it, and how long it took."""
        self.cameras = CAMERAS
        while True:
            self.run_tool("init", self.write("inventory.json", inventory(self.cameras)))
            before, after, seconds = self.undisturbed()
            self.assertFalse(before == after)
            if seconds > 1:
                return before, after, seconds
            self.cameras *= 2

    def undisturbed(self):
        """Applies both; answers the records after each and how long the second took."""
        self.run_tool(*APPLY, self.before)
        before = self.records()
        started = time.monotonic()
        self.run_tool(*APPLY, self.after)
        return before, self.records(), time.monotonic() - started

    def disturb(self, lose, moment):
        """Applies, and loses the server meanwhile; answers the outcome."""
        process = subprocess.Popen(self.command(*APPLY, self.after, database=self.through_proxy),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        time.sleep(moment)
        lose(process)
        out, err = process.communicate(timeout=600)
        self.bring_back()
        if process.returncode == -signal.SIGKILL:
            return {"success": False, "reconciled": []}
        self.assertIn(process.returncode, (DONE, FAILED), (out[:500], err[:500]))
        outcome = json.loads(out)
        if process.returncode == FAILED:
            self.assert_clear(outcome, err.decode())
        return outcome

    def assert_no_half(self, lose, moment):
        """Loses the server in an apply and repeats it; answers how far that got and whether it failed."""
        self.run_tool(*APPLY, self.before)
        self.assertTrue(self.records() == self.records_before)
        outcome = self.disturb(lose, moment)
        left = self.records()
        self.assertTrue(left in (self.records_before, self.records_after), "half of a pass is left")
        repeated = self.run_tool(*APPLY, self.after)
        self.assertTrue(self.records() == self.records_after, "a repeated apply ends elsewhere")
        self.assertEqual(self.run_tool("show", "config"), self.config_after)
        self.assertEqual(self.pending(), "")
        if lose != self.kill_the_tool:  # what that one reconciled, nobody heard
            self.assertEqual(len(set(outcome["reconciled"] + repeated["reconciled"])), self.cameras)
        return "before" if left == self.records_before else "committed", not outcome["success"]

    def test_leaves_no_half_of_a_pass(self):
        self.records_before, self.records_after, seconds = self.given_a_pass_of_over_a_second()
        ways = (self.kill, self.restart, self.cut, self.kill_the_tool)
        moments = failures = 0
        found = collections.Counter()
        while moments < MOMENTS or failures < MOMENTS // 4:
            self.assertLess(moments, 5 * MOMENTS, f"too few of the moments were amid a pass: {found}")
            lose = ways[moments % len(ways)]
            moments += 1
            with self.subTest(moment=moments, by=lose.__name__):
                phase, failed = self.assert_no_half(lose, self.random.uniform(0, seconds))
                found[phase] += 1
                failures += failed
        print(f"{moments} moments of {seconds:.2f} s: {dict(found)}, {failures} failures")


if __name__ == "__main__":
    unittest.main()
