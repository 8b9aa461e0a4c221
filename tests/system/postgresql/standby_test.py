# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A server that replicates synchronously, and whose standby does not answer: what is committed here may be lost."""

import json
import subprocess
import time
import unittest

from cluster import FAILED, Site, TOPICS, inventory, psql, trigger
from tester import url

CAMERAS = 5


class Standby(Site):
    """The cluster of the tests has a standby that is never there. A connection that asks for it waits for it."""

    HERE = "is committed on this server, and it is not known whether a standby has it"

    def setUp(self):
        super().setUp()
        self.waiting = url(self.schema, options="-c%20synchronous_commit%3Don")
        self.site = self.write("inventory.json", inventory(CAMERAS, groups=1))
        self.config = {"triggers": [trigger(7, 0, TOPICS[:2])]}
        self.given = self.write("config.json", self.config)

    def act_when_it_waits(self, function, process):
        """Calls a function of the server with the connection to this site that waits for the standby, each time."""
        act = (f"SELECT {function}(pid) FROM pg_stat_activity WHERE wait_event = 'SyncRep' AND pid IN (SELECT pid FROM "
               "pg_locks WHERE locktype = 'advisory' AND (classid::bigint << 32 | objid::bigint) = "
               f"hashtextextended('vemora {self.schema}', 0))")
        acted = 0
        given_up = time.monotonic() + 60
        while process.poll() is None and time.monotonic() < given_up:
            acted += psql(act).count("t")
            time.sleep(0.01)
        process.kill()  # where it still runs
        self.assertGreater(acted, 0, "it did not wait with the connection that holds the lock")

    def cut_short(self, *arguments, function="pg_cancel_backend", for_programs=True):
        """Runs a command whose commits are not confirmed; answers what it says."""
        command = self.command(*arguments, database=self.waiting)
        if not for_programs:
            command.remove("--json")
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as process:
            self.act_when_it_waits(function, process)
            out, err = process.communicate()
        self.assertEqual(process.returncode, FAILED, (out, err))
        return out, err

    def given_a_site(self):
        self.run_tool("init", self.site)

    def stored(self, what):
        return psql(f"SET search_path = {self.schema}; SELECT {what}").split()

    def test_a_pass_that_may_be_lost_fails_and_tells_nobody(self):
        self.given_a_site()

        out, _ = self.cut_short("apply", self.given)

        outcome = json.loads(out)
        self.assertEqual((outcome["reconciled"], outcome["state"]), ([], None))
        [error] = outcome["errors"]
        self.assertRegex(error["message"], "^Failed to update trigger config: .*: the commit's wait for a standby was "
                                           "cancelled after [0-9]+ ms$")
        [remark] = outcome["remarks"]
        self.assertRegex(remark, f"after [0-9]+ ms; what the pass wrote {self.HERE}$")
        self.assertEqual(outcome["changes"]["triggers"], {"written": 1, "deleted": 0})
        self.assertEqual(self.stored("id FROM trigger_record"), ["7"])
        self.assertEqual(self.stored("kind FROM document"), [])

    def test_what_it_says_to_people_is_true(self):
        self.given_a_site()

        out, err = self.cut_short("apply", self.given, for_programs=False)

        self.assertRegex(out, f"note: .*; what the pass wrote {self.HERE}\n")
        self.assertRegex(out, "Changed:\n  triggers +1 written +0 deleted\n")
        self.assertRegex(out, "Cameras reconciled: 0\nFailed.\n$")
        self.assertNotRegex(out + err, "Done|kept|WARNING")

    def test_a_server_that_ends_the_connection_meanwhile_is_told(self):
        self.given_a_site()

        out, err = self.cut_short("apply", self.given, function="pg_terminate_backend")

        self.assertEqual(err, "")
        outcome = json.loads(out)
        self.assertRegex(outcome["errors"][0]["message"], "the server ended the connection while the commit waited for a "
                                                          "standby$")
        self.assertRegex(outcome["remarks"][0], f"{self.HERE}$")

    def test_the_next_pass_goes_on_where_that_one_was_left(self):
        self.given_a_site()
        self.cut_short("apply", self.given)

        refreshed = self.run_tool("apply", self.given)

        self.assertEqual(refreshed["reconciled"], list(range(1, CAMERAS + 1)))
        self.assertEqual(self.stored("count(*) FROM pending_camera"), ["0"])
        self.assertEqual(self.run_tool("show", "config"), self.config)
        alone = f"{self.folder}/alone.db"
        self.run_tool("init", self.site, database=alone)
        self.run_tool("apply", self.given, database=alone)
        self.assertEqual(self.records(), self.records(alone))

    def test_a_refresh_that_may_be_lost_is_made_good_by_the_next(self):
        self.given_a_site()
        self.run_tool("apply", self.given)
        self.run_tool("init", self.write("more.json", inventory(CAMERAS + 2, groups=1)))

        outcome = json.loads(self.cut_short("refresh")[0])

        self.assertEqual((outcome["success"], outcome["reconciled"]), (False, []))
        self.assertEqual(self.run_tool("refresh")["reconciled"], [CAMERAS + 1, CAMERAS + 2])

    def test_documents_that_may_be_lost_are_told(self):
        self.given_a_site()
        self.run_tool("apply", self.given)
        spaced = f"{self.folder}/spaced.json"
        with open(spaced, "w", encoding="ascii") as file:
            json.dump(self.config, file, indent=4)

        outcome = json.loads(self.cut_short("apply", spaced)[0])

        self.assertRegex(outcome["errors"][0]["message"],
                         "; the documents are stored on this server, and it is not known whether a standby has them$")

    def test_a_site_that_may_be_lost_is_told(self):
        schema = json.loads(self.cut_short("init", self.site)[0])
        records = json.loads(self.cut_short("init", self.site)[0])

        self.assertRegex(schema["errors"][0]["message"], "; its tables are made on this server, and it is not known "
                                                        "whether a standby has them$")
        self.assertRegex(records["errors"][0]["message"], f"; what was written {self.HERE}$")
        self.assertEqual(len(self.run_tool("show", "cameras")), CAMERAS)
        self.run_tool("init", self.site)

    def test_what_writes_nothing_waits_for_nobody(self):
        self.given_a_site()
        self.run_tool("apply", self.given)

        for command in (("refresh",), ("apply", self.given), ("check", self.given), ("show", "triggers")):
            self.run_tool(*command, database=self.waiting)


if __name__ == "__main__":
    unittest.main()
