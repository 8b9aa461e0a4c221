# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What an operator surely did not mean, though the document is valid."""

import re
import unittest

from tool_site import (CROSSED, DONE, REJECTED, TRIGGER_ERRORS, Site, config, mapping, object_source, on_postgresql, on_sqlite,
                       topic_source, trigger)

# A trigger that cannot be stored on PostgreSQL, between others.
DOCUMENT = b"""{"triggers": [
  {"id": 6, "name": "fine", "tags": {}, "sources": [{"type": "metadata-event"}]},
  {"id": 7, "name": "T\xfcr", "tags": {}, "sources": [{"type": "metadata-event"}]},
  {"id": 8, "name": "door", "tags": {}, "sources": [
    {"type": "onvif-metadata", "onvifTopic": "tns1:Door\\u0000"},
    {"type": "object-detection", "searchItem": {"type": "v\xe9lo"}}]}
]}
"""
# Every place of a trigger that takes any text, marked.
MARKED = """{"note": "marker 0", "triggers": [{"id": 7, "name": "marker 1", "note": "marker 2",
  "tags": {"server": {"site": ["north", "marker 3"], "marker 4": null},
           "camera": {"area": ["gate", "marker 5"], "marker 6": null}, "eventSubscription": {"marker 7": "marker 8"}},
  "sources": [{"type": "onvif-metadata", "onvifTopic": "marker 9"},
              {"type": "object-detection", "searchItem": {"type": "marker 10"}},
              {"type": "metadata-event", "note": "marker 11"}, {"type": "marker 12"}]}]}
"""
MARKERS = re.findall("marker [0-9]+", MARKED)
LATIN_1 = "cannot be stored in this database: it has bytes that are no UTF-8."
ZERO = "cannot be stored in this database: it has a zero byte (\\u0000)."


def warning(index, number, line, column, message):
    return {"document": "config", "code": "not-storable", "message": message, "index": index, "id": number,
            "line": line, "column": column}


WARNINGS = [warning(1, 7, 3, 21, f'"name" {LATIN_1}'), warning(2, 8, 5, 46, f'"onvifTopic" {ZERO}'),
            warning(2, 8, 6, 57, f'"type" {LATIN_1}')]


class Texts_That_Cannot_Be_Stored(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.given = self.write("given.json", DOCUMENT)

    def about_storing(self, outcome):
        """Their topic and object type are none of the site's either; a text that cannot be stored is not told twice."""
        self.assertLessEqual({warning["code"] for warning in outcome.json["warnings"]},
                             {"not-storable", "topic-not-supported", "unknown-object-type"} if WARNINGS[0] in
                             outcome.json["warnings"] else {"not-utf8", "topic-not-supported", "unknown-object-type"})
        return [warning for warning in outcome.json["warnings"] if warning["code"] == "not-storable"]

    @on_postgresql
    def test_a_check_warns_of_each_and_finds_the_document_valid(self):
        outcome = self.run_tool("--json", "check", self.given)
        self.assertEqual((outcome.status, outcome.json["success"], outcome.json["errors"]), (DONE, True, []))
        self.assertEqual(self.about_storing(outcome), WARNINGS)
        told = self.run_tool("check", self.given)
        self.assertEqual((told.status, told.out.count(b"cannot be stored")), (DONE, 3))
        self.assertRegex(told.out, b'^given.json:3:21: warning: "name" cannot be stored in this database: it has bytes that '
                                   b'are no UTF-8. \\(trigger 7\\)\n    .*\n +\\^\n')
        self.assertRegex(told.out, b"\nValid.\n$")

    @on_postgresql
    def test_an_apply_leaves_the_errors_as_they_are_and_says_why(self):
        self.apply(config(*(trigger(number) for number in (6, 7, 8))))
        outcome = self.run_tool("--json", "apply", self.given)
        self.assertEqual(outcome.status, TRIGGER_ERRORS)
        self.assertEqual([error["message"] for error in outcome.json["errors"]],
                         [f"Trigger {number}: Failed to process config (Failed to update trigger)."
                          for number in (7, 8)])
        self.assertEqual(self.about_storing(outcome), WARNINGS)
        self.assertEqual([record["id"] for record in self.show("triggers")], [6])

    @on_postgresql
    def test_an_apply_tells_people(self):
        told = self.run_tool("apply", self.given)
        self.assertEqual(told.status, TRIGGER_ERRORS)
        self.assertRegex(told.out, b'(?s)error: Trigger 8: .*given.json:3:21: warning: "name" cannot be .*'
                                   b"Done, with errors.\n$")

    @on_postgresql
    def test_a_refresh_warns_of_what_is_stored(self):
        self.run_tool("apply", self.given)
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual((outcome.status, self.about_storing(outcome)), (TRIGGER_ERRORS, WARNINGS))
        self.assertIn(b"stored config:3:21: warning: ", self.run_tool("refresh").out)

    @on_postgresql
    def test_a_trigger_that_is_not_at_work_here_has_nothing_stored(self):
        elsewhere = DOCUMENT.replace(b'"tags": {}', b'"tags": {"server": {"site": "south"}}')
        outcome = self.run_tool("--json", "apply", self.write("elsewhere.json", elsewhere))
        self.assertEqual((outcome.status, outcome.json["errors"], outcome.json["warnings"]), (DONE, [], []))

    @on_postgresql
    def test_they_are_the_texts_of_triggers_that_tables_hold(self):
        self.apply_text(MARKED)
        stored = self.text_cells() & set(MARKERS)
        self.assertGreater(len(stored), 2)
        for text in MARKERS:
            with self.subTest(text):
                given = self.write("marked.json", MARKED.replace(f'"{text}"', f'"{text}\\u0000"'))
                outcome = self.run_tool("--json", "check", given)
                self.assertEqual((outcome.status, outcome.json["errors"]), (DONE, []))
                warned = [told["code"] for told in outcome.json["warnings"] if told["code"] == "not-storable"]
                self.assertEqual(warned, ["not-storable"] if text in stored else [])

    def apply_text(self, text):
        self.assertEqual(self.run_tool("apply", self.write("marked.json", text)).status, DONE)

    def text_cells(self):
        columns = self.sql("SELECT table_name, column_name FROM information_schema.columns "
                           "WHERE table_schema = current_schema() AND data_type = 'text'")
        return {cell for table, column in columns for row in self.sql(f"SELECT {column} FROM {table}") for cell in row}

    @on_sqlite
    def test_sqlite_stores_them_and_those_that_are_no_utf8_are_told_as_that(self):
        for command in ("check", "apply"):
            outcome = self.run_tool("--json", command, self.given)
            self.assertEqual((outcome.status, outcome.json["errors"], self.about_storing(outcome)), (DONE, [], []))
            self.assertEqual([(told["id"], told["line"], told["column"]) for told in outcome.json["warnings"]
                              if told["code"] == "not-utf8"], [(7, 3, 21), (8, 6, 57)])

    def test_other_documents_have_none(self):
        answer = self.apply(config(trigger(7, topic_source(CROSSED), object_source("car"), name="\u00e9", scheduleIds=[1])),
                            mapping(([1], [7])))
        self.assertEqual(answer["warnings"], [])
        self.assertEqual(self.run_tool("--json", "refresh").json["warnings"], [])


class Unknown_Keys(Site):
    """One misspelt key spread a trigger from 8 cameras to 60, another undid the stored mapping."""

    MISSPELT = b"""{"triggers": [
  {"id": 7, "name": "gate", "tags": {"cameras": {"area": "gate"}},
   "sources": [{"type": "metadata-event", "onvifTopic": "tns1:Door"}]}
], "version": 2}
"""
    WARNINGS = [
        {"document": "config", "code": "unknown-key", "index": 0, "id": 7, "line": 2, "column": 38,
         "message": 'Unknown key "cameras" is ignored; did you mean "camera"?'},
        {"document": "config", "code": "unknown-key", "index": 0, "id": 7, "line": 3, "column": 43,
         "message": 'Unknown key "onvifTopic" is ignored; known here: "type".'},
        {"document": "config", "code": "unknown-key", "line": 4, "column": 4,
         "message": 'Unknown key "version" is ignored; known here: "properties", "triggers".'}]

    def setUp(self):
        super().setUp()
        self.init()
        self.given = self.write("given.json", self.MISSPELT)

    def test_are_told_with_the_key_that_was_meant_and_change_nothing_else(self):
        checked = self.run_tool("--json", "check", self.given)
        self.assertEqual((checked.status, checked.json), (DONE, {"success": True, "errors": [], "warnings": self.WARNINGS}))
        for command in (["apply", self.given], ["refresh"]):
            outcome = self.run_tool("--json", *command)
            self.assertEqual((outcome.status, outcome.json["success"], outcome.json["errors"], outcome.json["warnings"]),
                             (DONE, True, [], self.WARNINGS))

    def test_are_quoted_for_people_and_marked(self):
        told = """{}:2:38: warning: Unknown key "cameras" is ignored; did you mean "camera"? (trigger 7)
      {{"id": 7, "name": "gate", "tags": {{"cameras": {{"area": "gate"}}}},
                                         ^
"""
        for command in ("check", "apply"):
            self.assertIn(told.format("given.json"), self.run_tool(command, self.given).text)
        self.assertIn(told.format("stored config"), self.run_tool("refresh").text)

    def test_of_a_mapping_are_told_too_of_the_stored_one_as_well(self):
        misspelt = self.write("mapping.json", b'{"triggerMapping": [\n{"scheduleIds": [], "triggerIds": [7], "x": 1}],\n'
                                              b' "triggerMappings": []}')
        warnings = [{"document": "mapping", "code": "unknown-key", "index": 0, "line": 2, "column": 40,
                     "message": 'Unknown key "x" is ignored; known here: "scheduleIds", "triggerIds".'},
                    {"document": "mapping", "code": "unknown-key", "line": 3, "column": 2,
                     "message": 'Unknown key "triggerMappings" is ignored; known here: "triggerMapping".'}]
        plain = self.write("plain.json", config(trigger(7)))
        for command in (["check", plain, misspelt], ["apply", plain, misspelt], ["check", plain], ["apply", plain],
                        ["refresh"]):
            self.assertEqual(self.run_tool("--json", *command).json["warnings"], warnings)
        self.assertIn("""stored mapping:2:40: warning: Unknown key "x" is ignored; known here: "scheduleIds", "triggerIds". (element 0)
    {"scheduleIds": [], "triggerIds": [7], "x": 1}],
                                           ^
""", self.run_tool("check", plain).text)

    def test_stand_beside_the_faults_of_a_document(self):
        outcome = self.run_tool("--json", "check", self.write("mapping.json", config(trigger(7))),
                                self.write("misspelt.json", {"triggerMappings": []}))
        self.assertEqual(outcome.status, REJECTED)
        self.assertEqual([fault["message"] for fault in outcome.json["errors"]],
                         ['"triggerMapping" array is missing or invalid.'])
        self.assertEqual([fault["message"] for fault in outcome.json["warnings"]],
                         ['Unknown key "triggerMappings" is ignored; did you mean "triggerMapping"?'])

    def test_of_a_trigger_for_another_server_are_left_to_that_one(self):
        elsewhere = trigger(7, tags={"server": {"site": "south"}, "room": {}}, prio=1)
        unknown = trigger(8, {"type": "radar", "range": 7}, topic_source())
        self.assertEqual(self.check(config(elsewhere), expected=DONE)["warnings"], [])
        self.assertNotIn("unknown-key", [warning["code"] for warning in self.check(config(unknown), expected=DONE)["warnings"]])

    def test_are_none_in_tags_whose_names_are_free(self):
        filters = {"server": {"site": "north"}, "camera": {"cameras": None}, "eventSubscription": {"id": "7"}}
        self.assertNotIn("unknown-key", [warning["code"] for warning in
                                         self.check(config(trigger(7, tags=filters)), expected=DONE)["warnings"]])

    def test_reject_a_document_when_they_shall(self):
        self.apply(config(trigger(6)))
        before = self.rows()
        self.apply(config(trigger(6), more=1))
        self.assertNotEqual(self.rows(), before)
        before = self.rows()
        checked = self.run_tool("--json", "check", "--strict", self.given)
        self.assertEqual((checked.status, checked.json), (REJECTED, {"success": False, "errors": [], "warnings": self.WARNINGS}))
        applied = self.run_tool("--json", "apply", "--strict", self.given)
        self.assertEqual(applied.status, REJECTED)
        nothing = {"written": 0, "deleted": 0}
        self.assertEqual(applied.json, {
            "success": False, "errors": [], "warnings": self.WARNINGS, "reconciled": [], "state": None,
            "changes": {kind: nothing for kind in applied.json["changes"]},
            "remarks": ["With --strict, warnings reject a document."]})
        refreshed = self.run_tool("--json", "refresh", "--strict")
        self.assertEqual((refreshed.status, refreshed.json["success"], len(refreshed.json["warnings"])), (REJECTED, False, 1))
        self.assertEqual(self.rows(), before)
        self.assertTrue(self.run_tool("check", "--strict", self.given).text.endswith(
            "\nValid, but rejected for its warnings (--strict).\n"))
        self.assertTrue(self.run_tool("apply", "--strict", self.given).text.endswith(
            "\nnote: With --strict, warnings reject a document.\nRejected; nothing changed.\n"))

    def test_no_warning_is_no_reason_to_reject(self):
        plain = self.write("plain.json", config(trigger(7)))
        for command in (["check", "--strict", plain], ["apply", "--strict", plain], ["refresh", "--strict"]):
            outcome = self.run_tool("--json", *command)
            self.assertEqual((outcome.status, outcome.json["success"]), (DONE, True))


if __name__ == "__main__":
    unittest.main()
