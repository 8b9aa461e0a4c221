"""Databases that earlier versions made, with all that a site can hold, go on where they were left.

`older_sites/VERSION` holds the database of each engine as that version left it (one camera's stream was yet to
be reconciled), the documents that it had applied, and what its `show` printed.
"""

import json
import os
import shutil
import subprocess
import unittest

from tester import psql_command
from tool_site import DONE, ENGINE, Site

OLDER_SITES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "older_sites")


class Older_Sites(Site):
    def content(self, name):
        with open(os.path.join(self.kept, name), "rb") as file:
            return file.read()

    def lay_out(self, version):
        """Puts the database of a version where the tool looks for it."""
        self.kept = os.path.join(OLDER_SITES, version)
        if ENGINE == "sqlite":
            shutil.copy(os.path.join(self.kept, "site.sqlite"), self.database)
            return
        made = self.content("site.postgresql.sql").decode("utf-8").replace("kept_site", self.behind.schema)
        subprocess.run(psql_command(), input=made, text=True, check=True, stdout=subprocess.DEVNULL)

    def show_everything(self):
        return {what: self.show(what) for what in ("triggers", "subscriptions", "detection", "cameras")}

    def kept_records(self):
        return {what: json.loads(self.content(what + ".json"))
                for what in ("triggers", "subscriptions", "detection", "cameras")}

    def assert_documents_are_kept(self):
        for what in ("config", "mapping"):
            self.assertEqual(self.run_tool("show", what).out.rstrip(b"\n"),
                             self.content(what + ".json").rstrip(b"\n"))

    def test_are_shown_as_they_were(self):
        for version in os.listdir(OLDER_SITES):
            with self.subTest(version):
                self.lay_out(version)
                self.assertEqual(self.show_everything(), self.kept_records())
                self.assert_documents_are_kept()

    def test_need_no_change_and_have_what_was_left_over_reconciled(self):
        for version in os.listdir(OLDER_SITES):
            with self.subTest(version):
                self.lay_out(version)
                outcome = self.run_tool("--json", "refresh")
                self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
                self.assertEqual(outcome.json["reconciled"], [4])
                self.assertEqual(self.show_everything(), self.kept_records())
                self.assert_documents_are_kept()
                self.assertEqual(self.run_tool("--json", "refresh").json["reconciled"], [])

    def test_take_new_documents(self):
        for version in os.listdir(OLDER_SITES):
            with self.subTest(version):
                self.lay_out(version)
                without_one = json.loads(self.content("config.json"))
                gone = without_one["triggers"].pop(0)["id"]
                self.apply(without_one)
                left = [trigger for trigger in self.kept_records()["triggers"] if trigger["id"] != gone]
                self.assertEqual(self.show("triggers"), left)


if __name__ == "__main__":
    unittest.main()
