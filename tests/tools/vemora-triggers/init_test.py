# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""init: what it makes, replaces and leaves alone, and when it refuses."""

import os
import sqlite3
import unittest

from tool_site import (CROSSED, DONE, FAILED, MOTION, REJECTED, Site, camera, config, on_postgresql,
                       on_sqlite, small_inventory, topic_source, trigger)

COUNTED = ("1 server, 2 cameras, 2 schedules, 1 event category, 1 generic subscription, "
           "1 general object type.\n")
STORED = f"Stored: {COUNTED}The site has: {COUNTED}"


class Made_Databases(Site):
    def setUp(self):
        super().setUp()
        self.write("inventory.json", small_inventory())

    def test_people_read_what_was_stored(self):
        self.assertEqual(self.run_tool("init", "inventory.json").text, STORED)

    def test_people_read_what_the_site_has_now(self):
        self.init()
        partial = self.write("partial.json", {"cameras": [camera(11), camera(12)]})
        self.assertEqual(self.run_tool("init", partial).text, """\
Stored: 0 servers, 2 cameras, 0 schedules, 0 event categories, 0 generic subscriptions, 0 general object types.
The site has: 1 server, 3 cameras, 2 schedules, 1 event category, 1 generic subscription, 1 general object type.
""")
        self.apply(config(trigger(7, topic_source(CROSSED))))
        self.assertEqual(self.run_tool("--json", "init", partial).json["site"], {
            "servers": 1, "cameras": 3, "schedules": 2, "eventCategories": 1, "subscriptions": 1, "objectTypes": 1})

    def test_an_id_that_is_given_twice_is_told_with_both_places(self):
        self.write("twice.json", '{"cameras": [{"id": 7},\n {"id": 7}]}')
        self.assertEqual(self.run_tool("init", "twice.json").text, """\
twice.json:2:9: error: The id 7 is given twice, first in line 1, column 21.
     {"id": 7}]}
            ^
""")

    def test_people_read_numbers_of_records_in_words_that_fit(self):
        self.write("several.json", {
            "servers": [{"id": 1}, {"id": 2}], "cameras": [{"id": 1}], "schedules": [{"id": 1}],
            "eventCategories": [{"id": 1}, {"id": 2}], "objectTypes": {"vehicle": ["car"], "living": ["person"]}})
        self.assertEqual(self.run_tool("init", "several.json").text, (
            "Stored: 2 servers, 1 camera, 1 schedule, 2 event categories, 0 generic subscriptions, "
            "2 general object types.\n"
            "The site has: 2 servers, 1 camera, 1 schedule, 2 event categories, 0 generic subscriptions, "
            "2 general object types.\n"))

    def test_a_file_may_be_called_one_of_sqlite(self):
        self.assertEqual(self.run_tool("--database", "sqlite:other.db", "init", "inventory.json").text,
                         STORED)
        self.assertTrue(os.path.exists(self.path("other.db")))

    def test_programs_read_what_was_stored(self):
        outcome = self.run_tool("--json", "init", "inventory.json")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        counted = {"servers": 1, "cameras": 2, "schedules": 2, "eventCategories": 1, "subscriptions": 1,
                   "objectTypes": 1}
        self.assertEqual(outcome.json, {"success": True, "records": counted, "site": counted})

    def test_an_inventory_comes_from_standard_input_when_it_is_asked_to(self):
        outcome = self.run_tool("init", "-", given=b'{"cameras": [{"id": 10}]}')
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual([record["id"] for record in self.show("cameras")], [10])

    @on_sqlite
    def test_an_empty_file_becomes_a_database(self):
        self.write("vemora.db", b"")
        refused = self.run_tool("refresh")
        self.assertEqual((refused.status, refused.err), (
            FAILED, b'vemora-triggers: database vemora.db: it holds no site; "init" makes one\n'))
        self.assertEqual(self.run_tool("init", "inventory.json").status, DONE)
        self.assertEqual(len(self.show("cameras")), 2)

    @on_sqlite
    def test_what_an_init_left_that_was_cut_short_becomes_a_database(self):
        self.sql("PRAGMA journal_mode = WAL")
        self.assertGreater(os.path.getsize(self.database), 0)
        outcome = self.run_tool("init", "inventory.json")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual(len(self.show("cameras")), 2)

    @on_sqlite
    def test_a_disk_that_is_full_is_told_and_the_init_can_be_repeated(self):
        # A limit on the size of files stands for the disk.
        limited = self.run_command(["sh", "-c", 'ulimit -f 40; exec "$@"', "sh",
                                    *self.command("init", "inventory.json")])
        self.assertEqual((limited.status, limited.out), (FAILED, b""))
        self.assertRegex(limited.err.decode(), r"\Avemora-triggers: database vemora.db: .*(full|I/O error)")
        self.assertEqual(self.run_tool("init", "inventory.json").status, DONE)
        self.assertEqual(len(self.show("cameras")), 2)

    def test_the_same_inventory_twice_changes_no_row(self):
        self.init()
        self.run_tool("apply", self.write("config.json", config(trigger(7))))
        before = self.rows()
        self.init()
        self.assertEqual(self.rows(), before)

    def test_what_is_named_is_replaced_as_a_whole_and_what_is_not_stays(self):
        self.init()
        self.init({"cameras": [camera(11, [CROSSED])], "objectTypes": {"vehicle": ["bus"]}})
        self.assertEqual([(record["id"], record["tags"], record["objectDetection"], record["onvifTopics"])
                          for record in self.show("cameras")],
                         [(10, {"area": "gate"}, True, [CROSSED, MOTION]), (11, {}, False, [CROSSED])])
        self.assertEqual(self.sql("SELECT name, type FROM meta_type"), [("vehicle", "bus")])
        self.assertEqual([record["id"] for record in self.show("subscriptions")], [3])

    def test_generic_subscriptions_keep_their_triggers(self):
        self.init()
        self.apply(config(trigger(7, {"type": "metadata-event"})))
        self.init({"subscriptions": [{"id": 3, "name": "renamed"}]})
        [generic] = self.show("subscriptions")
        self.assertEqual((generic["name"], generic["triggerIds"], generic["cameraIds"]), ("renamed", [7], []))


class Refused_Inventories(Site):
    def refused(self, inventory, status=REJECTED):
        outcome = self.run_tool("--json", "init", self.write("inventory.json", inventory))
        self.assertEqual((outcome.status, outcome.err), (status, b""))
        self.assertIs(outcome.json["success"], False)
        return outcome.json["errors"]

    def test_no_database_is_made_for_an_inventory_that_is_refused(self):
        self.refused({"doors": []})
        self.refused("{")
        missing = self.run_tool("init", "missing.json")
        self.assertEqual((missing.status, missing.err, missing.text), (
            REJECTED, b"", "missing.json: error: cannot open missing.json: No such file or directory\n"))
        self.assertEqual((list(self.files()), self.behind.all()), (["inventory.json"], []))

    def test_every_fault_is_told_with_its_place(self):
        self.assertEqual(self.refused('{"doors": [],\n "cameras": [{"id": 7.0},\n  {"id": 1, "name": 5}]}'), [
            {"document": "inventory", "line": 1, "column": 2, "message": "Unknown key \"doors\"."},
            {"document": "inventory", "line": 2, "column": 21,
             "message": "\"id\" must be an unsigned 64-bit integer."},
            {"document": "inventory", "line": 3, "column": 21, "message": "\"name\" must be a string."}])
        self.assertEqual(self.run_tool("init", "inventory.json").text, """\
inventory.json:1:2: error: Unknown key "doors".
    {"doors": [],
     ^
inventory.json:2:21: error: "id" must be an unsigned 64-bit integer.
     "cameras": [{"id": 7.0},
                        ^
inventory.json:3:21: error: "name" must be a string.
      {"id": 1, "name": 5}]}
                        ^
""")

    def test_of_very_many_faults_people_read_the_lines_of_the_first_hundred(self):
        self.write("inventory.json", {"cameras": [1] * 150})
        lines = self.run_tool("init", "inventory.json").text.splitlines()
        self.assertEqual(len(lines), 150 + 2 * 100)
        self.assertEqual(len(self.refused({"cameras": [1] * 150})), 150)

    def test_a_refused_inventory_changes_nothing(self):
        self.init()
        before = self.rows()
        for inventory in ({"servers": [{"id": 1, "name": "new"}], "doors": []},
                          {"servers": [{"id": 1, "name": "new"}], "subscriptions": [{"id": 4, "cameraIds": [99]}]},
                          {"objectTypes": {"car": ["vehicle"]}}):
            self.refused(inventory)
        self.assertEqual(self.rows(), before)

    def test_a_ring_of_object_types_is_refused_with_the_stored_ones(self):
        self.init()
        [error] = self.refused({"objectTypes": {"car": ["vehicle"]}})
        self.assertEqual(error["message"], "Object type \"car\" stands for itself: \"car\" > \"vehicle\" > \"car\".")

    def test_the_id_of_a_topic_subscription_is_refused(self):
        self.init()
        self.apply(config(trigger(7, topic_source())))
        [error] = self.refused({"subscriptions": [{"id": 1}]})
        self.assertEqual((error["message"], error["column"]), ("The id 1 is that of a topic subscription.", 27))


# Inventories with "@" in the place of a text.
WITH_A_TEXT = {
    "a name of a server": '{"servers": [{"id": 1, "name": "@"}]}',
    "a name of a camera": '{"cameras": [{"id": 1, "name": "@"}]}',
    "a name of a schedule": '{"schedules": [{"id": 1, "name": "@"}]}',
    "a name of a category": '{"eventCategories": [{"id": 1, "name": "@"}]}',
    "a name of a subscription": '{"subscriptions": [{"id": 1, "name": "@"}]}',
    "a tag": '{"servers": [{"id": 1, "tags": {"@": null}}]}',
    "a value of a tag": '{"cameras": [{"id": 1, "tags": {"area": "@"}}]}',
    "a general object type": '{"objectTypes": {"@": ["car"]}}',
    "an object type": '{"objectTypes": {"vehicle": ["car", "@"]}}',
}
WITH_A_TEXT_IN_JSON = {
    "a key of capabilities": '{"cameras": [{"id": 1, "capabilities": {"Metadata": {"@": ""}}}]}',
    "a text of capabilities": '{"cameras": [{"id": 1, "capabilities": {"Metadata": ["", "@"]}}]}',
}
WITH_A_NUL = b'"before\\u0000after"'
NO_UTF8 = b'"before \xff\xc3 after"'
CANNOT_STORE = {
    WITH_A_NUL: "This database cannot store the text: it has a zero byte (\\u0000).",
    NO_UTF8: "This database cannot store the text: it has bytes that are no UTF-8; the document looks like Latin-1, "
             "save it as UTF-8."}


class Texts_To_Hold(Site):
    def assert_held(self, inventory, text):
        outcome = self.run_tool("init", self.write("inventory.json", inventory.encode().replace(b'"@"', text)))
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)

    def assert_refused(self, inventory, text, message):
        self.write("inventory.json", b"\n" + inventory.encode().replace(b'"@"', text))
        outcome = self.run_tool("--json", "init", "inventory.json")
        self.assertEqual((outcome.status, outcome.err), (REJECTED, b""), outcome.out)
        self.assertEqual(outcome.json["errors"], [{
            "document": "inventory", "line": 2, "column": 1 + inventory.index('"@"'), "message": message}])

    @on_sqlite
    def test_any_text_is_held(self):
        for what, inventory in WITH_A_TEXT.items():
            for text in (WITH_A_NUL, NO_UTF8):
                with self.subTest(what, text=text):
                    self.assert_held(inventory, text)

    @on_postgresql
    def test_a_text_that_the_database_cannot_hold_is_told_with_its_place(self):
        self.init()
        before = self.rows()
        for what, inventory in WITH_A_TEXT.items():
            for text, objection in CANNOT_STORE.items():
                with self.subTest(what, text=text):
                    self.assert_refused(inventory, text, objection)
        self.assertEqual(self.rows(), before)

    def test_capabilities_may_have_a_nul_since_json_writes_it_as_an_escape(self):
        for what, inventory in WITH_A_TEXT_IN_JSON.items():
            with self.subTest(what):
                self.assert_held(inventory, WITH_A_NUL)
                self.assertEqual(len(self.show("cameras")), 1)

    def test_capabilities_that_are_no_utf8_are_refused(self):
        for what, inventory in WITH_A_TEXT_IN_JSON.items():
            with self.subTest(what):
                self.assert_refused(inventory, NO_UTF8, "\"capabilities\" must be UTF-8; the document looks like "
                                                        "Latin-1, save it as UTF-8.")

    @on_postgresql
    def test_people_read_every_text_that_the_database_cannot_hold(self):
        self.write("inventory.json", b'{"servers": [{"id": 1, "name": "a\\u0000"}],\n'
                                     b' "schedules": [{"id": 1, "name": "\xff"}]}')
        outcome = self.run_tool("init", "inventory.json")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (REJECTED, b"", """\
inventory.json:1:32: error: This database cannot store the text: it has a zero byte (\\u0000).
    {"servers": [{"id": 1, "name": "a\\u0000"}],
                                   ^
inventory.json:2:34: error: This database cannot store the text: it has bytes that are no UTF-8; the document looks \
like Latin-1, save it as UTF-8.
     "schedules": [{"id": 1, "name": "\\xff"}]}
                                     ^
"""))


LATIN_1 = '{"cameras": [{"id": 10, "name": "T\u00fcr"}],\n "schedules": [{"id": 1, "name": "sch\u00f6n"}]}'.encode("latin-1")
LOOKS_LIKE_LATIN_1 = "the document looks like Latin-1, save it as UTF-8."


class Inventories_In_Latin_1(Site):
    @on_sqlite
    def test_are_stored_and_named_as_such(self):
        self.write("inventory.json", LATIN_1)
        for _ in ("a new site", "the same site"):
            outcome = self.run_tool("init", "inventory.json")
            self.assertEqual((outcome.status, outcome.text.splitlines()[:6]), (DONE, [
                "inventory.json:1:33: warning: This text has bytes that are no UTF-8, the first one 0xFC; "
                + LOOKS_LIKE_LATIN_1,
                '    {"cameras": [{"id": 10, "name": "T\\xfcr"}],', "                                    ^",
                "inventory.json:2:34: warning: This text has bytes that are no UTF-8, the first one 0xF6; "
                + LOOKS_LIKE_LATIN_1,
                '     "schedules": [{"id": 1, "name": "sch\\xf6n"}]}', "                                     ^"]))
        answer = self.run_tool("--json", "init", "inventory.json").json
        self.assertEqual((answer["success"], [(warning["document"], warning["code"], warning["line"], warning["column"])
                                              for warning in answer["warnings"]]),
                         (True, [("inventory", "not-utf8", 1, 33), ("inventory", "not-utf8", 2, 34)]))

    @on_sqlite
    def test_are_named_as_such_beside_their_faults(self):
        name = self.write("inventory.json", LATIN_1.replace(b'"id": 1,', b'"id": "x",'))
        outcome = self.run_tool("--json", "init", name)
        self.assertEqual((outcome.status, outcome.json["success"], len(outcome.json["errors"]),
                          [warning["code"] for warning in outcome.json["warnings"]]),
                         (REJECTED, False, 1, ["not-utf8", "not-utf8"]))
        self.assertIn("inventory.json:1:33: warning: ", self.run_tool("init", name).text)

    @on_sqlite
    def test_a_text_in_the_middle_of_another_encoding_is_told_without_a_guess(self):
        name = self.write("inventory.json", b'{"cameras": [{"id": 10, "name": "T\xc3\xbcr \xfc"}]}')
        [warning] = self.run_tool("--json", "init", name).json["warnings"]
        self.assertEqual(warning["message"], "This text has bytes that are no UTF-8, the first one 0xFC; save the "
                                             "document as UTF-8.")

    @on_postgresql
    def test_are_refused_and_named_as_such(self):
        outcome = self.run_tool("--json", "init", self.write("inventory.json", LATIN_1))
        self.assertEqual((outcome.status, [(error["line"], error["column"]) for error in outcome.json["errors"]]),
                         (REJECTED, [(1, 33), (2, 34)]))
        for error in outcome.json["errors"]:
            self.assertIn(LOOKS_LIKE_LATIN_1, error["message"])
        self.assertNotIn("warnings", outcome.json)

    def test_capabilities_are_refused_and_named_as_such(self):
        name = self.write("inventory.json", b'{"cameras": [{"id": 1, "capabilities": {"a": "\xfc"}}]}')
        outcome = self.run_tool("--json", "init", name)
        self.assertEqual((outcome.status, outcome.json["errors"]), (REJECTED, [{
            "document": "inventory", "line": 1, "column": 46, "message":
            "\"capabilities\" must be UTF-8; the document looks like Latin-1, save it as UTF-8."}]))


@on_sqlite
class Places_For_Databases(Site):
    def setUp(self):
        super().setUp()
        self.write("inventory.json", small_inventory())

    def fails(self, database):
        outcome = self.run_tool("--database", database, "init", "inventory.json")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        return outcome.err.decode()

    def test_a_folder_that_is_missing_is_told_and_not_made(self):
        self.assertEqual(self.fails("none/vemora.db"),
                         "vemora-triggers: database none/vemora.db: unable to open database file\n")
        self.assertEqual(list(self.files()), ["inventory.json"])

    def test_a_folder_is_no_database(self):
        self.assertEqual(self.fails("."), "vemora-triggers: . is a directory, not a database\n")

    def test_files_of_others_are_told_and_left_alone(self):
        notes = sqlite3.connect(self.path("notes.db"))
        notes.execute("CREATE TABLE notes (text TEXT)")
        notes.close()
        self.write("inventory.db", small_inventory())
        before = self.files()
        self.assertEqual(self.fails("notes.db"),
                         "vemora-triggers: database notes.db: it is a database of another program\n")
        self.assertEqual(self.fails("inventory.db"),
                         "vemora-triggers: database inventory.db: file is not a database\n")
        after = self.files()
        self.assertEqual({name: after[name] for name in before}, before)


if __name__ == "__main__":
    unittest.main()
