# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Kills `vemora-triggers restore` and `backup` at every call by which they write or sync a file.

Each time the site is the one before or the one of the backup, whole, and never a mix; so is the backup; and
repeating the command ends as an undisturbed run does.
"""

import os
import shutil
import sqlite3
import tempfile
import unittest

from crash_test import Site, config_after, config_before, inventory


class Copies(unittest.TestCase):
    def setUp(self):
        top = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, top)
        self.copies = iter(os.path.join(top, f"copy{n}") for n in range(1000000))
        os.mkdir(os.path.join(top, "template"))
        self.template = Site(os.path.join(top, "template"))
        self.template.run("init", self.template.write("inventory.json", inventory(20)))
        self.template.run("apply", self.template.write("before.json", config_before()))
        self.template.run("backup", self.of(self.template, "backup.db"))
        self.template.run("apply", self.template.write("after.json", config_after()))
        self.new = self.content(self.template.database)
        self.old = self.content(self.of(self.template, "backup.db"))
        self.assertNotEqual(self.new, self.old)

    @staticmethod
    def of(site, name):
        return os.path.join(site.folder, name)

    @staticmethod
    def content(database):
        """Every row of every table, but for the cameras that are to be reconciled."""
        connection = sqlite3.connect(database)
        try:
            check = connection.execute("PRAGMA integrity_check").fetchall()
            if check != [("ok",)]:
                raise AssertionError(f"integrity check: {check[:5]}")
            names = [name for (name,) in connection.execute("SELECT name FROM sqlite_master WHERE type = 'table'")
                     if name != "pending_camera"]
            return {name: sorted(connection.execute(f"SELECT * FROM {name}"), key=repr) for name in names}
        finally:
            connection.close()

    @staticmethod
    def pending(database):
        connection = sqlite3.connect(database)
        try:
            return [camera for (camera,) in connection.execute("SELECT camera_id FROM pending_camera ORDER BY 1")]
        finally:
            connection.close()

    def kill_at_every_call(self, *command, check):
        """Runs the command on fresh copies of the template, killed at one call after the other, and checks each."""
        found = {}
        for call, site in self.template.killed_at_every_call(
                self.copies, lambda site: self.placed(site, command), least=6):
            with self.subTest(call):
                what = check(site)
                found[what] = found.get(what, 0) + 1
                site.run(*self.placed(site, command))
                self.check_done(site)
            shutil.rmtree(site.folder)
        print(f"{command}: {sum(found.values())} calls: {found}")
        return found

    def placed(self, site, command):
        return [self.of(site, word) if word.endswith(".db") else word for word in command]


class Restores(Copies):
    def check_done(self, site):
        self.assertEqual(self.content(site.database), self.old)
        self.assertEqual(self.pending(site.database), list(range(1, 21)))

    def check_site(self, site):
        found = self.content(site.database)
        if found == self.new:
            self.assertEqual(self.pending(site.database), [])
            return "the site before"
        self.check_done(site)
        return "the site of the backup"

    def test_over_a_site(self):
        found = self.kill_at_every_call("restore", "backup.db", check=self.check_site)
        self.assertEqual(set(found), {"the site before", "the site of the backup"})

    def test_over_a_site_whose_log_was_left_by_a_process_that_was_killed(self):
        connection = sqlite3.connect(self.template.database)
        connection.execute("UPDATE schedule SET name = name")
        connection.execute("INSERT INTO schedule VALUES (77, 'late', 1)")
        connection.commit()
        os.mkdir(self.template.folder + ".killed")
        for name in os.listdir(self.template.folder):  # as it is amid the other program's work
            shutil.copy(self.of(self.template, name), self.template.folder + ".killed")
        connection.close()
        self.template = Site(self.template.folder + ".killed")
        self.assertGreater(os.path.getsize(self.of(self.template, "site.db-wal")), 0)
        self.new["schedule"].append((77, "late", 1))
        found = self.kill_at_every_call("restore", "backup.db", check=self.check_site)
        self.assertEqual(set(found), {"the site before", "the site of the backup"})

    def test_where_there_is_no_site(self):
        for name in os.listdir(self.template.folder):
            if name.startswith("site.db"):
                os.remove(self.of(self.template, name))

        def check(site):
            if self.content(site.database) == {}:
                return "no site"
            self.check_done(site)
            return "the site of the backup"
        found = self.kill_at_every_call("restore", "backup.db", check=check)
        self.assertEqual(set(found), {"no site", "the site of the backup"})

    def test_over_a_site_that_is_damaged(self):
        with open(self.template.database, "r+b") as file:
            file.seek(100)
            file.write(b"\xff" * (os.path.getsize(self.template.database) - 100))

        def check(site):
            try:
                self.check_done(site)
                return "the site of the backup"
            except sqlite3.DatabaseError as error:
                self.assertIn("malformed", str(error))
                return "damaged"
        found = self.kill_at_every_call("restore", "backup.db", check=check)
        self.assertEqual(set(found), {"damaged", "the site of the backup"})


class Backups(Copies):
    def check_done(self, site):
        self.assertEqual(self.content(self.of(site, "backup.db")), self.new)
        self.assertFalse(os.path.exists(self.of(site, "backup.db.part")))

    def test_over_an_older_one(self):
        def check(site):
            self.assertEqual(self.content(site.database), self.new)
            found = self.content(self.of(site, "backup.db"))
            self.assertIn(found, (self.old, self.new))
            return "the older backup" if found == self.old else "the new backup"
        found = self.kill_at_every_call("backup", "backup.db", check=check)
        self.assertEqual(set(found), {"the older backup", "the new backup"})


if __name__ == "__main__":
    unittest.main()
