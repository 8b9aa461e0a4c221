# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Bounds of what the tool takes in: what lies at one passes, what lies beyond is told in whole."""

import unittest

from tool_site import DONE, FAILED, REJECTED, Site, camera, config, object_source, on_sqlite, trigger


def general_type(count):
    return {"objectTypes": {"vehicle": [f"type {number}" for number in range(count)]}}


class Bounds(Site):
    def assert_rejected(self, fault, *arguments):
        outcome = self.run_tool(*arguments)
        self.assertEqual((outcome.status, outcome.err, outcome.text.splitlines()[0]), (REJECTED, b"", fault))

    def test_a_document_may_have_as_many_values_as_are_allowed(self):
        self.init()
        name = self.write("config.json", '{"triggers": [],\n "properties": {}}')  # 3 values
        empty = self.write("mapping.json", '{"triggerMapping": []}')  # 2
        for command in ("check", "apply"):
            with self.subTest(command):
                self.assertEqual(self.run_tool("--max-values", "3", command, name, empty).status, DONE)
                self.assert_rejected("config.json:2:16: error: The document has more than 2 values.", "--max-values", "2", command, name)
                self.assert_rejected("mapping.json:1:20: error: The document has more than 1 values.", "--max-values", "1", command,
                                     self.write("[].json", "[]"), empty)
        answer = self.run_tool("--json", "--max-values", "2", "apply", name).json
        self.assertEqual((answer["success"], answer["errors"]), (False, [
            {"category": 0, "document": "config", "message": "The document has more than 2 values.", "line": 2, "column": 16}]))
        inventory = self.write("inventory.json", '{"servers": []}')
        self.assertEqual(self.run_tool("--max-values", "2", "init", inventory).status, DONE)
        self.assert_rejected("inventory.json:1:13: error: The document has more than 1 values.", "--max-values", "1", "init", inventory)

    def test_a_document_that_was_let_in_is_refreshed_whatever_is_allowed_now(self):
        self.init()
        self.apply(config(trigger(7)))
        self.assertEqual(self.run_tool("--max-values", "1", "refresh").status, DONE)

    def test_a_general_object_type_stands_for_a_thousand_types(self):
        self.init()
        self.init(general_type(1000))
        answer = self.apply(config(trigger(7, object_source("vehicle"))))
        self.assertEqual(len(answer["state"]["searchItemsByTrigger"]["7"]["10"]), 1000)
        self.assert_rejected('inventory.json:1:29: error: Object type "vehicle" stands for more than 1000 types.',
                             "init", self.write("inventory.json", general_type(1001)))

    def test_a_site_with_more_from_before_fails_before_its_pass(self):
        self.init()
        self.init(general_type(1000))
        self.sql("INSERT INTO meta_type VALUES (?, ?)", "vehicle", "one more")
        rows = self.rows()
        outcome = self.run_tool("--json", "apply", self.write("config.json", config(trigger(7))))
        self.assertEqual((outcome.status, outcome.json["errors"]), (FAILED, [{"category": 1, "message":
            'object type "vehicle" of the site stands for more than 1000 types; change the inventory'}]))
        self.assertEqual(self.run_tool("refresh").err.decode(), "vemora-triggers: object type \"vehicle\" of the site "
                         "stands for more than 1000 types; change the inventory\n")
        self.assertEqual(self.rows(), rows)
        self.init(general_type(2))
        self.assertEqual(self.run_tool("apply", "config.json").status, DONE)

    @on_sqlite
    def test_a_capability_document_of_the_database_is_nested_a_thousand_levels_deep(self):
        self.init({"servers": [{"id": 1}], "cameras": [camera(10, ["a"])]})
        name = self.write("config.json", config(trigger(7)))

        def store(levels):
            self.sql("UPDATE capability_document SET text = ?", '{"a":' * levels + "1" + "}" * levels)

        store(1000)
        self.assertEqual(self.run_tool("apply", name).status, DONE)
        store(200000)
        fault = ("database vemora.db: the capability document of camera 10 is corrupt: nested more than 1000 levels "
                 "deep")
        shown = self.run_tool("show", "cameras")
        self.assertEqual((shown.status, shown.out, shown.err.decode()), (FAILED, b"", f"vemora-triggers: {fault}\n"))
        applied = self.run_tool("--json", "apply", name)
        self.assertEqual((applied.status, [error["message"] for error in applied.json["errors"]]),
                         (FAILED, [f"Failed to update trigger config: {fault}"]))

    def test_one_long_name_does_not_widen_every_row_of_a_table(self):
        self.init({"servers": [{"id": 1}]})
        triggers = [{**trigger(number), "name": "x" * length} for number, length in ((1, 200), (2, 200), (3, 5000))]
        self.apply(config(*triggers))
        lines = self.run_tool("show", "triggers").text.splitlines()
        self.assertEqual([lines[1].index("onvif-metadata"), lines[-1].index("onvif-metadata")], [206, 5006])


if __name__ == "__main__":
    unittest.main()
