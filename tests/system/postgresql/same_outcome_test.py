# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Both engines end in the same: the sample site, and one of forty thousand cameras."""

import os
import unittest

from cluster import Site, TOPICS, inventory

EXAMPLE = os.environ["EXAMPLE"]
LARGE = int(os.environ.get("LARGE_SITE", "40000"))


class Same_Outcome(Site):

    def both(self, *arguments, expected):
        """Runs the tool on both engines; answers what it said."""
        return [self.run_tool(*arguments, database=database, expected=expected)
                for database in (self.database, os.path.join(self.folder, "site.db"))]

    def assert_same(self, *arguments, expected=0):
        postgresql, sqlite = self.both(*arguments, expected=expected)
        self.assertTrue(postgresql == sqlite, arguments)
        return postgresql

    def assert_same_records(self):
        self.assertTrue(self.records() == self.records(os.path.join(self.folder, "site.db")))

    def test_on_the_sample_site(self):
        self.assert_same("init", f"{EXAMPLE}/inventory.json")
        documents = (f"{EXAMPLE}/triggers.json", f"{EXAMPLE}/mapping.json")
        self.assert_same("check", *documents)
        applied = self.assert_same("apply", *documents)
        self.assertGreater(len(applied["state"]["appliedTriggers"]), 10)
        self.assert_same("refresh")
        for what in ("triggers", "cameras", "config", "mapping"):
            self.assert_same("show", what)
        self.assert_same_records()

    def test_on_a_large_site(self):
        self.assert_same("init", self.write("inventory.json", inventory(LARGE)))
        everywhere = {"id": 1, "name": "everywhere", "tags": {"camera": {"group": None}},
                      "sources": [{"type": "onvif-metadata", "onvifTopic": topic} for topic in TOPICS[:3]] +
                                 [{"type": "object-detection", "searchItem": {"type": "person"}}]}
        applied = self.assert_same("apply", self.write("config.json", {"triggers": [everywhere]}))
        self.assertEqual(len(applied["reconciled"]), LARGE)
        self.assert_same_records()
        everywhere["sources"].pop(0)
        self.assert_same("apply", self.write("config.json", {"triggers": [everywhere]}))
        self.assert_same_records()


if __name__ == "__main__":
    unittest.main()
