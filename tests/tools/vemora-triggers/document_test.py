# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""check: which documents are refused, with which text and place; documents that cannot be read at all."""

import json
import os
import re
import unittest

from tool_site import DONE, NO_OBJECT, REJECTED, Site, config, mapping, object_source, on_sqlite, trigger


def before_warnings(text):
    """The errors of a check; its documents have keys that nobody knows."""
    return text[:re.search("^.*: warning: ", text, re.MULTILINE).start()]


class Checked_Documents(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def errors(self, configuration, associations=None):
        answer = self.check(configuration, associations)
        self.assertEqual(set(answer), {"success", "errors", "warnings"})
        self.assertIs(answer["success"], False)
        return answer["errors"]

    def test_valid_documents_have_no_errors(self):
        self.assertEqual(self.check(config(trigger(7, scheduleIds=[1])), mapping(([1], [7])), expected=DONE),
                         {"success": True, "errors": [], "warnings": []})
        self.assertEqual(self.run_tool("check", "config.json", "mapping.json").text, "Valid.\n")

    def test_a_fault_of_a_trigger_is_told_with_its_place_index_and_id(self):
        document = """{"triggers": [
  {"id": 6, "name": "fine", "tags": {}, "sources": [{"type": "metadata-event"}]},
  {"id": 7, "name": 12, "tags": {},
   "sources": [{"type": "metadata-event"}]}
]}
"""
        [error] = self.errors(document)
        self.assertEqual(error["message"], "\"name\" field is missing or invalid.")
        self.assertEqual((error["document"], error["index"], error["id"], error["line"]), ("config", 1, 7, 3))
        self.assertEqual(set(error), {"document", "message", "index", "id", "line", "column"})

    def test_a_fault_deep_in_a_source_is_told_with_its_line_and_column(self):
        document = """{"triggers": [
  {"id": 7, "name": "seven", "tags": {}, "sources": [
    {"type": "metadata-event"},
    {"type": "onvif-metadata", "onvifTopic": ""}
  ]}
]}
"""
        [error] = self.errors(document)
        self.assertEqual(error["message"],
                         "An onvif-metadata source has an \"onvifTopic\" field with an empty string.")
        self.assertEqual((error["index"], error["id"], error["line"]), (0, 7, 4))

    def test_every_trigger_and_association_with_a_fault_is_told(self):
        errors = self.errors(config({**trigger(1), "name": None}, trigger(2), {**trigger(3), "sources": []}),
                             mapping(([], [1]), ([], []), (["x"], [1])))
        self.assertEqual([(error["document"], error["index"], error.get("id"), error["message"]) for error in errors], [
            ("mapping", 1, None, "\"triggerIds\" array is empty."),
            ("mapping", 2, None, "\"scheduleIds\" must be an array of unsigned integers."),
            ("config", 0, 1, "\"name\" field is missing or invalid."),
            ("config", 2, 3, "\"sources\" array is empty.")])
        self.assertEqual(self.run_tool("check", "config.json", "mapping.json").text.count(": error: "), 4)

    def test_wrong_schedules_and_tags_are_marked_themselves(self):
        document = """{"triggers": [{"id": 7, "name": "",
  "tags": {"camera": {"area": 3}},
  "sources": [{"type": "metadata-event"}],
  "scheduleIds": 3}]}
"""
        self.assertEqual([(error["message"], error["line"], error["column"]) for error in self.errors(document)], [
            ("Tag \"area\" must be a string, null or an array of them.", 2, 31),
            ("\"scheduleIds\" array is missing or invalid.", 4, 18)])

    def test_a_name_of_any_length_is_told_of(self):
        name = "x" * 30000
        document = config({**trigger(7), "tags": {"server": {name: 1}}})
        [error] = self.errors(document)
        self.assertEqual(error["message"], f"Tag \"{name}\" must be a string, null or an array of them.")
        self.assertEqual(self.apply(document, expected=REJECTED)["errors"][0]["id"], 7)

    def test_people_are_told_of_a_thousand_faults_and_how_many_more_there_are(self):
        self.write("config.json", config(*[7] * 2500))
        outcome = self.run_tool("check", "config.json")
        self.assertEqual(outcome.status, REJECTED)
        lines = outcome.text.splitlines()
        self.assertEqual(sum(": error: " in line for line in lines), 1000)
        self.assertEqual(lines[-1], "1500 more errors; use --json to see all.")
        errors = self.run_tool("--json", "check", "config.json").json["errors"]
        self.assertEqual([error["index"] for error in errors], list(range(2500)))

    def test_a_trigger_without_an_id_is_told_by_its_index(self):
        [error] = self.errors(config(trigger(6), {**trigger(7), "id": None}))
        self.assertEqual((error["message"], error["index"]), ("\"id\" field is missing or invalid.", 1))
        self.assertNotIn("id", error)

    def test_a_duplicate_is_told_where_it_stands(self):
        [error] = self.errors('{"triggers": [\n%s,\n%s]}' % ((
            '{"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]}',) * 2))
        self.assertEqual(error["message"], "All \"id\" values must be unique, 7 is duplicated.")
        self.assertEqual((error["index"], error["id"], error["line"]), (1, 7, 3))

    def test_a_duplicate_is_told_with_both_places(self):
        element = '{"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]}'
        name = self.write("config.json", '{"triggers": [\n%s,\n%s,\n  %s]}' % ((element,) * 3))
        [first, second] = re.findall(".*: (?:error|note): .*\n.*: note: .*\n", re.sub(
            r"^ .*\n", "", self.run_tool("check", name).text, flags=re.MULTILINE))
        self.assertEqual(first, """\
config.json:3:8: error: All "id" values must be unique, 7 is duplicated. (trigger 7)
config.json:2:8: note: The id is first given here.
""")
        self.assertEqual(second, """\
config.json:4:10: error: All "id" values must be unique, 7 is duplicated. (trigger 7)
config.json:2:8: note: The id is first given here.
""")
        applied = self.run_tool("apply", name)
        self.assertIn("config.json:2:8: note: The id is first given here.\n", applied.text)

    def test_a_fault_of_the_properties_has_a_place_and_no_trigger(self):
        [error] = self.errors('{"triggers": [],\n "properties": {\n  "notificationNackDelayMs": "1"}}')
        self.assertEqual(error, {"document": "config", "line": 3, "column": 30, "message":
                                 "\"properties.notificationNackDelayMs\" must be an unsigned integer."})

    def test_a_fault_of_the_mapping_names_the_mapping(self):
        [error] = self.errors(config(), '{"triggerMapping": [\n {"scheduleIds": [], "triggerIds": [1]},\n'
                                        ' {"scheduleIds": [], "triggerIds": []}\n]}')
        self.assertEqual((error["document"], error["message"], error["index"], error["line"]),
                         ("mapping", "\"triggerIds\" array is empty.", 1, 3))

    def test_the_documents_are_checked_in_the_order_of_a_pass(self):
        broken = {"triggers": 1, "properties": 1}
        self.assertEqual(self.errors(broken, [])[0]["message"], "\"properties\" must be a JSON object.")
        del broken["properties"]
        self.assertEqual(self.errors(broken, [])[0]["message"], "Trigger mapping must be a JSON object.")
        self.assertEqual(self.errors(broken)[0]["message"], "Missing \"triggers\" array.")

    def test_documents_that_are_no_objects_are_rejected(self):
        self.assertEqual(self.errors([]), [{"document": "config", "message": NO_OBJECT, "line": 1, "column": 1}])
        self.assertEqual(self.errors(config(), [])[0]["message"], "Trigger mapping must be a JSON object.")

    def test_apply_says_what_check_says(self):
        for what, broken in (("id", {"id": -1}), ("tags", {"tags": None}), ("sources", {"sources": []})):
            with self.subTest(what):
                document = config({**trigger(7), **broken})
                [applied] = self.apply(document, expected=REJECTED)["errors"]
                first = self.errors(document)[0]
                self.assertEqual(applied, {**first, "category": 0,
                                           "message": "Failed to parse trigger config: " + first["message"]})

    def test_people_read_file_line_and_column_and_the_line(self):
        self.write("config.json", '{"triggers": [\n  {"id": "x"},\n  7\n]}')
        outcome = self.run_tool("check", "config.json")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (REJECTED, b"", """\
config.json:2:10: error: "id" field is missing or invalid. (element 0)
      {"id": "x"},
             ^
config.json:2:3: error: "name" field is missing or invalid. (element 0)
      {"id": "x"},
      ^
config.json:2:3: error: "tags" must be a JSON object. (element 0)
      {"id": "x"},
      ^
config.json:2:3: error: "sources" array is missing or invalid. (element 0)
      {"id": "x"},
      ^
config.json:3:3: error: "triggers" must be an array of JSON objects. (element 1)
      7
      ^
"""))

    def test_people_read_of_a_long_line_what_surrounds_the_fault(self):
        before, after = "x" * 5000, "y" * 5000
        self.write("config.json", f'{{"a": "{before}", "triggers": 1, "b": "{after}"}}')
        outcome = self.run_tool("check", "config.json")
        self.assertEqual((outcome.status, before_warnings(outcome.text)), (REJECTED, f"""\
config.json:1:5023: error: Missing "triggers" array.
    ...{"x" * 45}", "triggers": 1, "b": "{"y" * 51}...
    {" " * 63}^
"""))

    def test_the_mark_stands_under_its_letter_whatever_comes_before(self):
        document = '{"first": 0,\r\n "Tür \u202e": "門", "triggers": 1}'
        [error] = self.errors(document)
        self.assertEqual((error["line"], error["column"]), (2, 28))
        self.assertEqual(before_warnings(self.run_tool("check", "config.json").text), """\
config.json:2:28: error: Missing "triggers" array.
     "Tür \\u202e": "門", "triggers": 1}
                                     ^
""")

    def test_the_line_is_quoted_with_its_tabs_and_the_mark_stands_under_the_value(self):
        self.write("config.json", '{\n\t"first":\t"\u95e8e\u0301",\t"triggers":\t1}')
        self.assertEqual(before_warnings(self.run_tool("check", "config.json").text), """\
config.json:2:30: error: Missing "triggers" array.
    \t"first":\t"\u95e8e\u0301",\t"triggers":\t1}
    \t        \t      \t           \t^
""")

    def test_people_read_the_line_of_a_document_that_cannot_be_read(self):
        self.write("config.json", '{"triggers": [\n  {"id": 7,, "name": ""}\n]}')
        self.assertEqual(self.run_tool("check", "config.json").text, """\
config.json:2:12: error: Expected a key in double quotes.
      {"id": 7,, "name": ""}
               ^
""")

    def test_a_check_writes_nothing(self):
        self.apply(config(trigger(7)), mapping(([1], [7])))
        self.write("new.json", config(trigger(8), trigger(9, object_source())))
        self.write("broken.json", config({}))
        self.write("none.json", mapping())
        rows = self.rows()
        self.show("triggers")  # a foreign program that closes a database takes its log away
        before = self.files()
        for arguments in (["new.json"], ["new.json", "none.json"], ["broken.json"], ["missing.json"]):
            self.run_tool("check", *arguments)
        after = self.files()
        self.assertEqual(list(after), list(before))
        for name, content in before.items():
            if not name.endswith("-shm"):  # where SQLite notes who reads, not what is stored
                self.assertTrue(after[name] == content, f"{name} was changed")
        self.assertEqual(self.rows(), rows)


TEXTS_THAT_ARE_NO_DOCUMENT = {
    "nothing": "",
    "blanks": " \n\n",
    "a number": "7",
    "a text": '"triggers"',
    "null": "null",
    "cut off": '{"triggers": [',
    "a comment": '{"triggers": [] /* none */}',
    "a line comment": '// none\n{"triggers": []}',
    "a comma too many": '{"triggers": [],}',
    "a duplicate key": '{"triggers": [], "triggers": []}',
    "a duplicate key of a trigger": '{"triggers": [{"id": 1, "id": 2}]}',
    "something behind it": '{"triggers": []} x',
    "a second document": '{"triggers": []}{}',
    "single quotes": "{'triggers': []}",
    "a number key": "{1: 2}",
    "NaN": '{"triggers": [NaN]}',
    "huge nesting": '{"triggers": ' + "[" * 100000 + "]" * 100000 + "}",
    "a control character": '{"triggers": [] \x01}',
    "a control character in a text": '{"triggers": ["\x01"]}',
    "a number that ends with its point": '{"triggers": [1.]}',
    "a number that begins with a zero": '{"triggers": [01]}',
    "a number without an end": '{"triggers": [1e999]}',
    "half a letter": '{"triggers": ["\\udc00"]}',
    "an escape of one's own": '{"triggers": ["\\x41"]}',
}


class Unreadable_Documents(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.apply(config(trigger(7)))
        self.write("good.json", config())
        self.before = self.rows()

    def assert_unreadable(self, path, role="config"):
        """Each command that takes documents refuses it with one located error, and changes nothing."""
        commands = {
            "config": (["check", path], ["apply", path]),
            "mapping": (["check", "good.json", path], ["apply", "good.json", path]),
            "inventory": (["init", path],),
        }[role]
        for command in commands:
            outcome = self.run_tool("--json", *command)
            self.assertEqual((outcome.status, outcome.err), (REJECTED, b""), command)
            self.assertIs(outcome.json["success"], False)
            [error] = outcome.json["errors"]
            self.assertEqual(error["document"], role)
            self.assertNotEqual(error["message"], "")
            self.assertIn(error["message"].encode("utf-8", "replace").split(b"\n")[0],
                          self.run_tool(*command).out)
        self.assertEqual(self.rows(), self.before)
        return error

    def test_texts_that_are_no_document_are_rejected_in_every_role(self):
        for what, text in TEXTS_THAT_ARE_NO_DOCUMENT.items():
            for role in ("config", "mapping", "inventory"):
                with self.subTest(what, role=role):
                    self.assert_unreadable(self.write("text.json", text), role)

    def test_the_place_of_a_syntax_error_is_told(self):
        error = self.assert_unreadable(self.write("text.json", '{"triggers": [\n  {"id": 7,, "name": ""}\n]}'))
        self.assertEqual((error["line"], error["column"]), (2, 12))

    def test_the_place_of_a_duplicate_key_is_told(self):
        error = self.assert_unreadable(self.write("text.json", '{"triggers": [],\n "triggers": []}'))
        self.assertEqual(error["line"], 2)
        self.assertIn("triggers", error["message"])

    def test_binary_files_are_rejected(self):
        self.assert_unreadable(self.write("binary", bytes(range(256)) * 100))
        self.assert_unreadable(TOOL_FILE)

    def test_missing_files_and_folders_are_rejected_with_the_reason(self):
        self.assertIn("missing.json", self.assert_unreadable("missing.json")["message"])
        os.mkdir(self.path("folder"))
        self.assertIn("directory", self.assert_unreadable("folder")["message"])
        os.rmdir(self.path("folder"))
        self.assert_unreadable("good.json/inside")

    def test_files_in_other_encodings_are_named_as_such(self):
        text = '{"triggers": []}\n'
        for name, encodings in {"UTF-16": ("utf-16", "utf-16-le", "utf-16-be"),
                                "UTF-32": ("utf-32", "utf-32-le", "utf-32-be")}.items():
            for encoding in encodings:
                with self.subTest(encoding):
                    file = self.write("text.json", text.encode(encoding))
                    error = self.assert_unreadable(file)
                    self.assertEqual(error["message"], f"The file is {name}; save it as UTF-8.")
                    self.assertEqual(self.run_tool("check", file).text,
                                     f"text.json: error: The file is {name}; save it as UTF-8.\n")
                    self.assert_unreadable(file, "mapping")
                    self.assert_unreadable(file, "inventory")

    @on_sqlite  # PostgreSQL cannot hold it, and that is what is said there
    def test_a_document_in_latin_1_is_named_as_such(self):
        document = config({**trigger(7, object_source()), "name": "T\u00fcr"})
        name = self.write("text.json", json.dumps(document, ensure_ascii=False).encode("latin-1"))
        warnings = self.run_tool("--json", "check", name).json["warnings"]
        self.assertEqual([warning["message"] for warning in warnings if warning["code"] == "not-utf8"], [
            "This text has bytes that are no UTF-8, the first one 0xFC; the document looks like Latin-1, save it as "
            "UTF-8."])

    @unittest.skipIf(os.geteuid() == 0, "root may read every file")
    def test_files_without_permission_are_rejected(self):
        name = self.write("secret.json", config())
        os.chmod(self.path(name), 0)
        self.assert_unreadable(name)

    def test_a_byte_order_mark_is_no_fault_and_moves_no_place(self):
        mark = b"\xef\xbb\xbf"
        self.assertEqual(self.run_tool("check", self.write("good.json", mark + b'{"triggers": []}')).status, DONE)
        outcome = self.run_tool("check", self.write("bad.json", mark + b'{"triggers": 1}'))
        self.assertEqual((outcome.status, outcome.out), (REJECTED, b"""\
bad.json:1:14: error: Missing "triggers" array.
    {"triggers": 1}
                 ^
"""))


TOOL_FILE = os.environ["TOOL"]

if __name__ == "__main__":
    unittest.main()
