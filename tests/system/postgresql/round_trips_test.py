# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""How often a pass waits for the network: not once more for more cameras, triggers or links."""

import unittest

from cluster import Site, inventory, trigger, TOPICS
from proxy import Proxy
from tester import note, url

# A pass takes at most FIXED round trips, and one more for each thousand of rows that it changes.
FIXED = 112


class Round_Trips(Site):

    def setUp(self):
        super().setUp()
        self.schemas = [f"{self.schema}_{number}" for number in range(9)]
        for schema in self.schemas:
            self.addCleanup(self.drop, schema)
        self.proxy = Proxy(note("folder"), note("port"))
        self.addCleanup(self.proxy.close)

    def given_a_fresh_site(self):
        schema = self.schemas.pop()
        self.database = url(schema)
        self.counted = url(schema, self.proxy.folder, self.proxy.port)

    def counting(self, *arguments):
        """Runs the tool through the proxy; answers its outcome and the round trips that it took."""
        self.proxy.round_trips = 0
        outcome = self.run_tool(*arguments, database=self.counted)
        self.proxy.wait_for_clients()
        return outcome, self.proxy.round_trips

    def rows_changed(self, outcome):
        return sum(numbers["written"] + numbers["deleted"] for numbers in outcome["changes"].values())

    def allowed(self, rows):
        return FIXED + -(-rows // 1000)

    def measure(self, cameras, triggers):
        self.given_a_fresh_site()
        groups = max(10, cameras * triggers // 100000)  # as many links as a test has time for
        self.run_tool("init", self.write("inventory.json", inventory(cameras, groups)))
        documents = {"triggers": [trigger(number, number % 10, TOPICS[:1 + number % 3], number % 5 == 0)
                                  for number in range(1, triggers + 1)]}
        applied, first = self.counting("apply", self.write("config.json", documents))
        refreshed, unchanged = self.counting("refresh")
        self.assertEqual(self.rows_changed(refreshed), 0)
        return self.rows_changed(applied), first, unchanged

    def test_do_not_grow_with_cameras_triggers_or_links(self):
        refreshes = set()
        for cameras in (100, 1000, 10000):
            for triggers in (10, 100, 1000):
                with self.subTest(cameras=cameras, triggers=triggers):
                    rows, first, unchanged = self.measure(cameras, triggers)
                    print(f"{cameras} cameras, {triggers} triggers: {rows} rows, first apply {first} round trips, "
                          f"unchanged refresh {unchanged}")
                    self.assertGreaterEqual(rows, triggers)
                    self.assertLessEqual(first, self.allowed(rows))
                    refreshes.add(unchanged)
        self.assertEqual(len(refreshes), 1, f"an unchanged refresh takes the same for every site: {refreshes}")
        self.assertLessEqual(max(refreshes), FIXED)


if __name__ == "__main__":
    unittest.main()
