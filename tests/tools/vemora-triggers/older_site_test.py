# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Databases that earlier versions made go on where they were left."""

import json
import os
import unittest

from older_site import OLDER_SITES, Older_Site
from tool_site import DONE


class Older_Sites(Older_Site):
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
