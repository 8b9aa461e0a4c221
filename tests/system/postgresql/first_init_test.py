# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A site that is made while other processes look at its schema: none of them sees half of it, or spoils it."""

import subprocess
import time
import unittest

from cluster import DONE, Site, inventory, psql
from proxy import Proxy
from tester import note, psql_command, url


class First_Init(Site):

    def setUp(self):
        super().setUp()
        self.proxy = Proxy(note("folder"), note("port"))
        self.addCleanup(self.proxy.close)
        self.site = self.write("inventory.json", inventory(2))
        self.other = None

    def given_a_fresh_schema(self, number):
        schema = f"{self.schema}_{number}"
        self.addCleanup(self.drop, schema)
        self.database = url(schema)
        self.delayed_database = url(schema, self.proxy.folder, self.proxy.port)
        self.lock = f"hashtextextended('vemora {schema}', 0)"

    def waits_for_the_lock(self):
        return psql("SELECT count(*) FROM pg_locks WHERE locktype = 'advisory' AND NOT granted AND "
                    f"(classid::bigint << 32 | objid::bigint) = {self.lock}") != "0\n"

    def init_meanwhile(self):
        """Another process makes the site, or comes as far as it is let."""
        self.other = subprocess.Popen(self.command("init", self.site), stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        while self.other.poll() is None and not self.waits_for_the_lock():
            time.sleep(0.005)

    def newer_init_meanwhile(self):
        """A process of a newer version makes the site, unless this one has."""
        schema = self.database.rpartition("=")[2]
        statements = (f"BEGIN; SELECT pg_advisory_xact_lock({self.lock}); CREATE SCHEMA {schema}; CREATE TABLE "
                      f"{schema}.site (id integer, schema_version integer); INSERT INTO {schema}.site VALUES (1, 99); "
                      "COMMIT")
        self.other = subprocess.Popen(psql_command("--command", statements), stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE)
        while self.other.poll() is None and not self.waits_for_the_lock():
            time.sleep(0.005)

    def finish_other(self):
        out, err = self.other.communicate(timeout=60)
        succeeded = self.other.returncode == DONE
        self.other = None
        return succeeded, (out, err)

    def assert_at_every_moment(self, *arguments, meanwhile, expected):
        """Holds a command up behind each answer of the server, until another process has acted."""
        for moment in range(1, 1000):
            with self.subTest(moment=moment):
                self.given_a_fresh_schema(moment)
                self.proxy.delay(moment, meanwhile)
                done = subprocess.run(self.command(*arguments, database=self.delayed_database), capture_output=True,
                                      text=True, check=False, timeout=60)
                self.proxy.wait_for_clients()
                if self.other is None:
                    break
                expected(done)
                self.drop(f"{self.schema}_{moment}")
        print(f"{moment - 1} moments of {arguments[0]}")
        return moment - 1

    def test_beside_another_first_init(self):
        def expected(done):
            self.assertEqual(self.finish_other()[0], True)
            self.assertEqual(done.returncode, DONE, done.stdout)
            self.assertEqual(len(self.run_tool("show", "cameras")), 2)

        self.assertGreater(self.assert_at_every_moment("init", self.site, meanwhile=self.init_meanwhile,
                                                       expected=expected), 20)

    def test_beside_the_first_init_of_a_newer_version(self):
        def expected(done):
            if self.finish_other()[0]:
                self.assertRegex(done.stdout, "it was made by a newer version of this program")
                self.assertEqual(psql(f"SELECT schema_version FROM {self.database.rpartition('=')[2]}.site"), "99\n")
            else:
                self.assertEqual(done.returncode, DONE, done.stdout)

        self.assertGreater(self.assert_at_every_moment("init", self.site, meanwhile=self.newer_init_meanwhile,
                                                       expected=expected), 20)

    def test_beside_a_reader(self):
        def expected(done):
            self.assertEqual(self.finish_other()[0], True)
            if done.returncode != DONE:
                self.assertRegex(done.stdout, "it holds no site")
            self.assertEqual(len(self.run_tool("show", "cameras")), 2)

        self.assertGreaterEqual(self.assert_at_every_moment("show", "triggers", meanwhile=self.init_meanwhile,
                                                            expected=expected), 3)


if __name__ == "__main__":
    unittest.main()
