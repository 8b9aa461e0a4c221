# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Kills `vemora-triggers` at every call by which it writes or syncs a file while it brings an older site up to date.

Each time the tables are those of the older version or those of today, whole, with every row as it was; and
repeating the command ends as an undisturbed run does.
"""

import os
import shutil
import sqlite3
import tempfile
import unittest

from crash_test import Site

OLDER_SITES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support", "older_sites")


class Migrations(unittest.TestCase):
    def setUp(self):
        top = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, top)
        self.copies = iter(os.path.join(top, f"copy{n}") for n in range(1000000))
        os.mkdir(os.path.join(top, "template"))
        self.template = Site(os.path.join(top, "template"))
        self.template.write("nothing.json", {"cameras": []})
        shutil.copy(os.path.join(OLDER_SITES, "1.0.0", "site.sqlite"), self.template.database)

    @staticmethod
    def state(site):
        """The version, the schema and every row of a whole database; the version by itself."""
        connection = sqlite3.connect(site.database)
        try:
            check = connection.execute("PRAGMA integrity_check").fetchall()
            if check != [("ok",)]:
                raise AssertionError(f"integrity check: {check[:5]}")
            [(version,)] = connection.execute("SELECT schema_version FROM site")
            schema = sorted(connection.execute("SELECT type, name, tbl_name, sql FROM sqlite_master"), key=repr)
            rows = {name: sorted(connection.execute(f"SELECT * FROM {name}"), key=repr)
                    for kind, name, _, _ in schema if kind == "table"}
            if "history_entry" in rows:  # but when the migration was
                rows["history_entry"] = connection.execute("SELECT pass, author, command, status, config, mapping "
                                                           "FROM history_entry").fetchall()
            return version, schema, rows
        finally:
            connection.close()

    def command(self, site):
        return "init", os.path.join(site.folder, "nothing.json")

    def test_killed_at_every_call(self):
        before = self.state(self.template)
        undisturbed = self.template.copy_to(next(self.copies))
        undisturbed.run(*self.command(undisturbed))
        after = self.state(undisturbed)
        self.assertEqual((before[0], after[0]), (1, 4))
        history = {name: after[2].pop(name) for name in ("history_entry", "history_text")}
        self.assertEqual({**before[2], "site": None}, {**after[2], "site": None})
        after[2].update(history)

        found = {1: 0, 4: 0}
        for call, site in self.template.killed_at_every_call(self.copies, self.command, least=11):
            with self.subTest(call):
                state = self.state(site)
                self.assertIn(state, (before, after))
                found[state[0]] += 1
                site.run(*self.command(site))
                self.assertEqual(self.state(site), after)
            shutil.rmtree(site.folder)
        print(f"{sum(found.values())} calls: version 1 {found[1]} times, version 4 {found[4]} times")
        self.assertGreater(min(found.values()), 0)


if __name__ == "__main__":
    unittest.main()
