"""What an operator surely did not mean, though the document is valid."""

import unittest

from tool_site import (CROSSED, DONE, TRIGGER_ERRORS, Site, config, mapping, object_source, on_postgresql, on_sqlite,
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

    @on_postgresql
    def test_a_check_warns_of_each_and_finds_the_document_valid(self):
        outcome = self.run_tool("--json", "check", self.given)
        self.assertEqual((outcome.status, outcome.json), (DONE, {"success": True, "errors": [], "warnings": WARNINGS}))
        told = self.run_tool("check", self.given)
        self.assertEqual((told.status, told.out.count(b": warning: ")), (DONE, 3))
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
        self.assertEqual(outcome.json["warnings"], WARNINGS)
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
        self.assertEqual((outcome.status, outcome.json["warnings"]), (TRIGGER_ERRORS, WARNINGS))
        self.assertIn(b"stored config:3:21: warning: ", self.run_tool("refresh").out)

    @on_postgresql
    def test_a_trigger_that_is_not_at_work_here_has_nothing_stored(self):
        elsewhere = DOCUMENT.replace(b'"tags": {}', b'"tags": {"server": {"site": "south"}}')
        outcome = self.run_tool("--json", "apply", self.write("elsewhere.json", elsewhere))
        self.assertEqual((outcome.status, outcome.json["errors"], outcome.json["warnings"]), (DONE, [], []))

    @on_sqlite
    def test_sqlite_stores_them(self):
        for command in ("check", "apply"):
            outcome = self.run_tool("--json", command, self.given)
            self.assertEqual((outcome.status, outcome.json["errors"], outcome.json["warnings"]), (DONE, [], []))

    def test_other_documents_have_none(self):
        answer = self.apply(config(trigger(7, topic_source(CROSSED), object_source("\u00e9"))), mapping(([1], [7])))
        self.assertEqual(answer["warnings"], [])
        self.assertEqual(self.run_tool("--json", "refresh").json["warnings"], [])


if __name__ == "__main__":
    unittest.main()
