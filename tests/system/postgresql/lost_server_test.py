"""Takes PostgreSQL away in the middle of an apply and looks at what is left.

Killed, restarted, or cut off by the network: each time a clear error, no half of a pass, and repeating the
apply ends in the records of an undisturbed run. So does killing the tool.

    LOST_MOMENTS=50   how many random moments (default 8)
    LOST_SEED=7       another draw of them
"""

import json
import os
import random
import signal
import subprocess
import tempfile
import time
import unittest

import cluster
from cluster import DONE, FAILED, TOPICS, inventory, psql, trigger, url
from proxy import Proxy

MOMENTS = int(os.environ.get("LOST_MOMENTS", "8"))
SEED = int(os.environ.get("LOST_SEED", "1"))
CAMERAS = int(os.environ.get("LOST_CAMERAS", "20000"))

# All that a pass writes, but for the ids that it gives out, as one text.
RECORDS = """
SET search_path = site;
SELECT 'trigger', id, name, '', '' FROM trigger_record
UNION ALL SELECT 'source', trigger_id, onvif_topic, object_type, position::text FROM trigger_source
UNION ALL SELECT 'subscription', s.camera_id, s.onvif_topic, l.linked_id::text, ''
  FROM subscription s LEFT JOIN subscription_trigger l ON l.record_id = s.id
UNION ALL SELECT 'detection', e.camera_id, '', l.linked_id::text, ''
  FROM eta_camera e LEFT JOIN eta_camera_trigger l ON l.record_id = e.id
ORDER BY 1, 2, 3, 4, 5"""

# What the tool may say of a server that goes away.
COMPLAINTS = ("connection to the server was lost", "server closed the connection", "terminating connection",
              "the database system is", "could not connect", "connection to server", "no connection to the server")


def config(numbers, topics, detecting):
    return {"triggers": [trigger(number, number % 10, TOPICS[topics:topics + 3], detecting) for number in numbers]}


class Lost_Server(cluster.Site):

    @classmethod
    def setUpClass(cls):
        """A cluster of its own: it is not the only test at work."""
        cls.notes = tempfile.mkdtemp()
        cluster.cluster("start", cls.notes)
        cls.server_folder = cls.read_note("folder")
        cls.server_port = cls.read_note("port")

    @classmethod
    def tearDownClass(cls):
        cluster.cluster("stop", cls.notes)

    @classmethod
    def read_note(cls, name):
        with open(os.path.join(cls.notes, name), encoding="ascii") as file:
            return file.read().strip()

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
        return psql(RECORDS, self.server_folder, self.server_port)

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

    def undisturbed(self):
        """Applies both; answers the records after each and how long the second took."""
        self.run_tool("apply", self.before)
        before = self.records()
        started = time.monotonic()
        self.run_tool("apply", self.after)
        return before, self.records(), time.monotonic() - started

    def disturb(self, lose, moment):
        """Applies, and loses the server meanwhile; answers the outcome."""
        process = subprocess.Popen(self.command("apply", self.after, database=self.through_proxy),
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

    def assert_clear(self, outcome, log):
        said = " ".join(error["message"] for error in outcome["errors"]) + str(outcome.get("remarks", "")) + log
        self.assertTrue(any(complaint in said for complaint in COMPLAINTS), said[:1000])

    def test_leaves_no_half_of_a_pass(self):
        self.run_tool("init", self.write("inventory.json", inventory(CAMERAS)))
        before, after, seconds = self.undisturbed()
        self.assertNotEqual(before, after)
        self.assertGreater(seconds, 1)
        seen = {"before": 0, "committed": 0, "failed": 0}
        for number in range(MOMENTS):
            lose = (self.kill, self.restart, self.cut, self.kill_the_tool)[number % 4]
            with self.subTest(moment=number, by=lose.__name__):
                self.run_tool("apply", self.before)
                self.assertEqual(self.records(), before)
                outcome = self.disturb(lose, self.random.uniform(0, seconds))
                reconciled = set(outcome["reconciled"])
                left = self.records()
                self.assertIn(left, (before, after))
                seen["before" if left == before else "committed"] += 1
                seen["failed"] += not outcome["success"]
                reconciled.update(self.run_tool("apply", self.after)["reconciled"])
                self.assertEqual(self.records(), after)
                self.assertEqual(self.run_tool("show", "config"), self.config_after)
                self.assertEqual(self.pending(), "")
                if lose != self.kill_the_tool:  # what that one reconciled, nobody heard
                    self.assertEqual(len(reconciled), CAMERAS)
        print(f"{MOMENTS} moments of {seconds:.2f} s: {seen}")


if __name__ == "__main__":
    unittest.main()
