# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Many commands at the same time on one database: none of them fails, and the records end as those of one.

Each round has a fresh database, which several `init`s make at the same time.

    SIDE_BY_SIDE_RUNS=20000   how many processes to run (default 240)
    SIDE_BY_SIDE_AT_ONCE=8    how many of them at a time
    SIDE_BY_SIDE_SEED=7       another draw of the commands
"""

import collections
import concurrent.futures
import json
import os
import random
import unittest

from tool_site import CROSSED, DONE, Site, config, mapping, object_source, small_inventory, topic_source, trigger

RUNS = int(os.environ.get("SIDE_BY_SIDE_RUNS", "240"))
AT_ONCE = int(os.environ.get("SIDE_BY_SIDE_AT_ONCE", "8"))
SEED = int(os.environ.get("SIDE_BY_SIDE_SEED", "1"))
RUNS_OF_A_ROUND = 120
FIRST_INITS = 6

DOCUMENTS = {
    "inventory.json": small_inventory(),
    "one.json": config(trigger(7, topic_source()), trigger(8, object_source())),
    "two.json": config(trigger(8, topic_source(CROSSED), object_source("car")), trigger(9, topic_source())),
    "mapping.json": mapping(([1], [7, 8, 9])),
}
TRIGGERS = {"one.json": {7, 8}, "two.json": {8, 9}}

# What is drawn from, reading more often than writing.
COMMANDS = [("show", "triggers"), ("show", "subscriptions"), ("show", "detection"), ("show", "config"),
            ("check", "one.json"), ("check", "two.json", "mapping.json"),
            ("apply", "one.json"), ("apply", "two.json"), ("apply", "two.json", "mapping.json"),
            ("refresh",), ("refresh",), ("init", "inventory.json")]


def ids_in(command, answer):
    """The triggers that a `show` saw; nothing for what shows none."""
    if command == ("show", "triggers"):
        return {record["id"] for record in answer}
    if command in (("show", "subscriptions"), ("show", "detection")):
        return {number for record in answer for number in record["triggerIds"]}
    return set()


def without_ids(records):
    """Whatever the order in which the records were made."""
    return sorted(json.dumps({key: value for key, value in record.items() if key != "id"}) for record in records)


class Side_By_Side(Site):
    def setUp(self):
        super().setUp()
        for name, document in DOCUMENTS.items():
            self.write(name, document)
        self.counts = collections.Counter()

    def fresh_database(self):
        self.behind.drop()
        self.remove_files()
        self.behind = type(self.behind)(self.folder)
        self.addCleanup(self.behind.drop)

    def remove_files(self):
        for name in os.listdir(self.folder):
            if name not in DOCUMENTS:
                os.remove(self.path(name))

    def run_command_of(self, command):
        """What went wrong with it; nothing where all is well."""
        outcome = self.run_tool("--json", *command)
        if (outcome.status, outcome.err) != (DONE, b""):
            return f"{' '.join(command)}: exit {outcome.status} {outcome.out!r} {outcome.err!r}"
        seen = ids_in(command, outcome.json)
        if not any(seen <= known for known in TRIGGERS.values()):
            return f"{' '.join(command)}: {sorted(seen)}, which are of two passes"
        return None

    def run_all(self, pool, commands):
        faults = [fault for fault in pool.map(self.run_command_of, commands) if fault]
        self.counts.update(command[0] for command in commands)
        self.counts["faults"] += len(faults)
        return faults

    def records(self):
        return {what: without_ids(self.show(what)) for what in ("triggers", "subscriptions", "detection")}

    def undisturbed(self):
        for command in (("init", "inventory.json"), ("apply", "one.json", "mapping.json"), ("apply", "two.json")):
            self.assertIsNone(self.run_command_of(command))
        return self.records()

    def test_commands_at_the_same_time_do_not_fail(self):
        expected = self.undisturbed()
        draw = random.Random(SEED)
        faults = []
        with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
            while sum(self.counts.values()) - self.counts["faults"] < RUNS:
                self.fresh_database()
                faults += self.run_all(pool, [("init", "inventory.json")] * FIRST_INITS)
                faults += self.run_all(pool, draw.choices(COMMANDS, k=RUNS_OF_A_ROUND - FIRST_INITS))
                faults += self.run_all(pool, [("apply", "two.json", "mapping.json")])
                self.assertEqual(self.records(), expected)
        print(dict(self.counts), flush=True)
        self.assertEqual(faults, [])


if __name__ == "__main__":
    unittest.main()
