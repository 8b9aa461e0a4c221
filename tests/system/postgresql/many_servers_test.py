# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Many servers in one cluster, and many processes on one."""

import json
import subprocess
import unittest

from cluster import DONE, Site, TOPICS, inventory, trigger
from tester import url

# Its documents have little in common with those before.
APPLY = ("apply", "--allow-mass-deletion")


class Many_Servers(Site):

    def start(self, *arguments, database):
        return subprocess.Popen(self.command(*arguments, database=database), stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def finish(self, process):
        out, err = process.communicate(timeout=600)
        self.assertEqual(process.returncode, DONE, (out[:2000], err[:2000]))
        return json.loads(out)

    def config_of(self, server):
        return {"triggers": [trigger(number, (number + server) % 10, TOPICS[:1 + server % 4], server % 2 == 0)
                             for number in range(server, server + 30)]}

    def test_work_side_by_side_in_schemas_of_their_own(self):
        servers = {number: url(f"{self.schema}_{number}") for number in range(16)}
        site = self.write("inventory.json", inventory(400))
        for number, database in servers.items():
            self.addCleanup(self.drop, f"{self.schema}_{number}")
            self.write(f"config_{number}.json", self.config_of(number))
        for process in [self.start("init", site, database=database) for database in servers.values()]:
            self.finish(process)

        applied = [self.start(*APPLY, f"{self.folder}/config_{number}.json", database=database)
                   for number, database in servers.items()]
        outcomes = [self.finish(process) for process in applied]

        for number, database in servers.items():
            with self.subTest(server=number):
                self.assertEqual(outcomes[number]["errors"], [])
                self.assertEqual([shown["id"] for shown in self.run_tool("show", "triggers", database=database)],
                                 list(range(number, number + 30)))
                alone = f"{self.folder}/alone_{number}.db"
                self.run_tool("init", site, database=alone)
                self.run_tool(*APPLY, f"{self.folder}/config_{number}.json", database=alone)
                self.assertEqual(self.records(database), self.records(alone))

    def test_of_one_schema_take_turns(self):
        site = self.write("inventory.json", inventory(400))
        self.run_tool("init", site)
        for number in range(6):
            self.write(f"config_{number}.json", self.config_of(number))

        running = [self.start(*APPLY, f"{self.folder}/config_{number}.json", database=self.database)
                   for number in range(6)]
        for process in running:
            self.finish(process)

        stored = self.run_tool("show", "config")
        last = next(number for number in range(6) if self.config_of(number) == stored)
        alone = f"{self.folder}/alone.db"
        self.run_tool("init", site, database=alone)
        self.run_tool(*APPLY, f"{self.folder}/config_{last}.json", database=alone)
        self.assertEqual(self.records(), self.records(alone))


if __name__ == "__main__":
    unittest.main()
