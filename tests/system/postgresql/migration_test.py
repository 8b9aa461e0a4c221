# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""An older site's tables are brought up to date beside other processes, and cut short at answers of the server.

    MIGRATION_STRIDE=1   at every answer (default: at each eighth, and at all around the one that keeps the new tables)
"""

import itertools
import math
import os
import signal
import subprocess
import threading
import time
import unittest

from cluster import DONE, FAILED, Site, psql
from proxy import Proxy
from tester import note, psql_command, url

STRIDE = int(os.environ.get("MIGRATION_STRIDE", "8"))
OLDER_SITE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support", "older_sites", "1.0.0",
                          "site.postgresql.sql")


class Migration(Site):
    def setUp(self):
        super().setUp()
        self.proxy = Proxy(note("folder"), note("port"))
        self.addCleanup(self.proxy.close)
        self.through_proxy = url(self.schema, self.proxy.folder, self.proxy.port)
        self.nothing = self.write("nothing.json", {"cameras": []})
        with open(OLDER_SITE, encoding="utf-8") as file:
            self.older_site = file.read().replace("kept_site", self.schema)
        self.lay_out()
        self.before = self.state()
        self.run_tool("init", self.nothing)
        self.after = self.state()
        self.assertEqual((self.before[0], self.after[0]), ("1\n", "4\n"))
        self.assertEqual(self.before[2], self.after[2])

    def lay_out(self):
        self.drop(self.schema)
        subprocess.run(psql_command(), input=self.older_site, text=True, check=True, stdout=subprocess.DEVNULL)

    def state(self):
        """The version, the rules, and every row of the other tables."""
        of_this = f"SET search_path = {self.schema}; "
        return (psql(of_this + "SELECT schema_version FROM site"),
                psql(of_this + "SELECT conname, pg_get_constraintdef(oid) FROM pg_constraint WHERE connamespace = "
                     "current_schema()::regnamespace ORDER BY 1, 2"),
                psql(of_this + "SELECT relname, query_to_xml(format('SELECT * FROM %I ORDER BY 1, 2', relname), true, "
                     "true, '') FROM pg_class WHERE relnamespace = current_schema()::regnamespace AND relkind = 'r' "
                     "AND relname NOT IN ('site', 'pending_camera', 'history_entry', 'history_text') ORDER BY 1"))

    def waits_for_another(self):
        """Whether some process waits for its turn, or for a table."""
        turn = f"(classid::bigint << 32 | objid::bigint) = hashtextextended('vemora {self.schema}', 0)"
        table = f"relation IN (SELECT oid FROM pg_class WHERE relnamespace = '{self.schema}'::regnamespace)"
        return psql(f"SELECT count(*) FROM pg_locks WHERE NOT granted AND ((locktype = 'advisory' AND {turn}) OR "
                    f"{table})") != "0\n"

    def start(self, database=None):
        return subprocess.Popen(self.command("init", self.nothing, database=database), stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def test_beside_another_at_any_moment(self):
        for moment in itertools.count(1, STRIDE):
            self.lay_out()
            others = []

            def migrate_meanwhile(others=others):
                others.append(self.start())
                # Who holds a table here is waited for without a lock in hand, which nobody sees.
                longest = time.monotonic() + 2
                while others[0].poll() is None and not self.waits_for_another() and time.monotonic() < longest:
                    time.sleep(0.005)

            self.proxy.delay(moment, migrate_meanwhile)
            with self.subTest(moment=moment):
                done = self.start(self.through_proxy)
                answers = [(done.communicate(timeout=60), done.returncode)]
                self.proxy.wait_for_clients()
                answers += [(other.communicate(timeout=60), other.returncode) for other in others]
                self.assertEqual([status for _, status in answers], [DONE] * len(answers), answers)
                self.assertEqual(self.state(), self.after)
            if not others:
                break
        print(f"beside another at each {STRIDE}. of {moment - 1} moments")
        self.assertGreater(moment, 10)

    def test_waits_for_no_one_at_a_table_of_another_program(self):
        self.lay_out()
        psql(f"CREATE TABLE {self.schema}.audit (id integer)")
        with subprocess.Popen(psql_command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as other:
            other.stdin.write(f"BEGIN; SELECT 'at work' FROM (SELECT count(*) FROM {self.schema}.audit) audit;\n")
            other.stdin.flush()
            self.assertEqual(other.stdout.readline(), "at work\n")
            migrating = self.start()
            out, err = migrating.communicate(timeout=60)
            self.assertEqual(migrating.returncode, DONE, (out + err).decode())
            other.communicate("ROLLBACK;\n")
        self.assertEqual(psql(f"SELECT schema_version FROM {self.schema}.site"), "4\n")

    def run_without(self, answer, act):
        """Runs a command that migrates, and acts on the process at this answer, which it does not get."""
        self.lay_out()
        started = threading.Event()
        processes = []

        def act_when_started():
            started.wait()
            act(processes[0])

        self.proxy.withhold(answer, act_when_started)
        processes.append(self.start(self.through_proxy))
        started.set()
        out, err = processes[0].communicate(timeout=60)
        return processes[0].returncode, (out + err).decode()

    def cut_short(self, act):
        """Runs that lack one answer each; yields what came of them and the state that they left."""
        self.assertEqual(self.run_without(math.inf, act)[0], DONE)
        self.proxy.wait_for_clients()
        answers = self.proxy.answers
        left = {}
        for answer in range(1, answers + 1, STRIDE):
            left[answer], status, said = self.cut_short_at(answer, act)
            yield status, said, left[answer]
        last_before = max(answer for answer, state in left.items() if state == self.before)
        first_after = min(answer for answer, state in left.items() if state == self.after)
        for answer in range(last_before + 1, first_after):
            state, status, said = self.cut_short_at(answer, act)
            yield status, said, state

    def cut_short_at(self, answer, act):
        status, said = self.run_without(answer, act)
        state = self.state()
        with self.subTest(answer=answer):
            self.assertIn(state, (self.before, self.after))
            self.run_tool("init", self.nothing)
            self.assertEqual(self.state(), self.after)
        return state, status, said

    def test_cut_short_by_killing_the_tool(self):
        found = []
        for status, said, state in self.cut_short(lambda process: process.kill()):
            self.assertEqual(status, -signal.SIGKILL, said)
            found.append(state[0].strip())
        print(f"left as version {' '.join(found)}")
        self.assertEqual(set(found), {"1", "4"})

    def test_cut_short_by_cutting_the_line(self):
        told = {"1": 0, "4": 0}
        not_known = 0
        for status, said, state in self.cut_short(lambda process: None):
            self.assertIn(status, (DONE, FAILED), said)
            told[state[0].strip()] += 1
            not_known += "it is not known whether what was written was kept" in said
        print(f"left as versions {told}, not known {not_known} times")
        self.assertGreater(min(told.values()), 0)
        self.assertEqual(not_known, 1)


if __name__ == "__main__":
    unittest.main()
