# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What people read: tables, faults, complaints and the log, with names in them that would spoil a terminal."""

import os
import pty
import re
import unittest

from tool_site import DONE, FAILED, REJECTED, WRONG_USAGE, Site, camera, config, object_source, topic_source, trigger

# Commands of a terminal, a line that says something else, what turns the rest of the line, what nobody sees.
HOSTILE = ("\x1b[31mred\x07\r\n1999-12-31T00:00:00 [error] Trigger_Manager: forged\t\x7f\u009b2J"
           "\u061c\u200b\u202e\u2066\u2028\ufeff\u00ad\u2060\U000e0041 a\u200db")
SHOWN = ("\\x1b[31mred\\x07\\x0d\\x0a1999-12-31T00:00:00 [error] Trigger_Manager: forged\\x09\\x7f\\u009b2J"
         "\\u061c\\u200b\\u202e\\u2066\\u2028\\ufeff\\u00ad\\u2060\\U000e0041 a\\u200db")
UNSHOWN = set(HOSTILE[HOSTILE.index("forged"):]) - set("forged2J ab") | {"\x1b", "\x07", "\r"}
# A newline that was let through begins such a line.
FORGED = re.compile("^1999-12-31", re.MULTILINE)
LOG_LINE = re.compile(r"\d{4}-\d\d-\d\dT[0-9:.]+ \[[a-z]+\] [A-Za-z_]+: .+")


class What_People_Read(Site):
    def setUp(self):
        super().setUp()
        self.init({"servers": [{"id": 1, "name": HOSTILE}],
                   "cameras": [{**camera(10, [HOSTILE], {HOSTILE: HOSTILE}, objectDetection=True), "name": HOSTILE}],
                   "subscriptions": [{"id": 3, "name": HOSTILE, "tags": {HOSTILE: HOSTILE}}]})
        sources = (topic_source(HOSTILE), object_source(HOSTILE), {"type": "metadata-event"})
        self.config = config({**trigger(7, *sources), "name": HOSTILE})

    def assert_harmless(self, text):
        self.assertEqual(UNSHOWN & set(text), set(), text)
        self.assertIsNone(FORGED.search(text), text)

    def assert_shown(self, text):
        self.assert_harmless(text)
        self.assertIn(SHOWN, text)

    def test_tables_show_names_topics_types_and_tags_in_one_line_each(self):
        self.apply(self.config)
        for what in ("triggers", "subscriptions", "cameras"):
            with self.subTest(what):
                self.assert_shown(self.run_tool("show", what).text)

    def test_the_log_has_one_line_a_record(self):
        for command in (["apply", self.write("config.json", self.config)], ["refresh"],
                        ["apply", self.write("none.json", config())]):
            with self.subTest(command):
                outcome = self.run_tool("--log-level", "trace", *command)
                self.assertEqual(outcome.status, DONE)
                log = outcome.err.decode("utf-8")
                self.assert_harmless(log)
                self.assertNotEqual(log, "")
                for line in log.splitlines():
                    self.assertRegex(line, LOG_LINE)
                if command[1:] == ["config.json"]:
                    self.assertIn("[info] Trigger_Manager: Trigger 7 | Creating subscription for camera 10 with "
                                  f"ONVIF topic {SHOWN}\n", log)

    def test_a_rejected_document_is_told_with_its_line_and_logged(self):
        wrong = config({**trigger(7), "tags": {"camera": {HOSTILE: 1}}})
        name = self.write("config.json", wrong)
        for command in ("check", "apply"):
            with self.subTest(command):
                outcome = self.run_tool("--log-level", "trace", command, name)
                self.assertEqual(outcome.status, REJECTED)
                self.assert_shown(outcome.text)
                self.assert_harmless(outcome.err.decode("utf-8"))

    def test_an_inventory_is_told_of_with_its_names(self):
        outcome = self.run_tool("init", self.write("inventory.json", {HOSTILE: 1}))
        self.assertEqual((outcome.status, outcome.err), (REJECTED, b""))
        self.assertTrue(outcome.text.startswith(f'inventory.json:1:2: error: Unknown key "{SHOWN}".\n'), outcome.text)
        self.assert_harmless(outcome.text)

    def test_names_of_files_and_words_of_the_command_line(self):
        absent = f"{self.behind.absent}{HOSTILE}"
        for status, arguments in ((FAILED, ["--database", absent, "show", "triggers"]),
                                  (REJECTED, ["check", HOSTILE]), (REJECTED, ["init", HOSTILE]),
                                  (WRONG_USAGE, ["show", HOSTILE]), (WRONG_USAGE, [HOSTILE]),
                                  (WRONG_USAGE, ["--" + HOSTILE]), (WRONG_USAGE, ["refresh", HOSTILE]),
                                  (WRONG_USAGE, ["--log-level", HOSTILE, "refresh"]),
                                  (WRONG_USAGE, ["--server-id", HOSTILE, "refresh"])):
            with self.subTest(arguments):
                outcome = self.run_tool(*arguments)
                self.assertEqual(outcome.status, status)
                self.assert_harmless((outcome.out + outcome.err).decode("utf-8"))

    def test_a_stored_document_is_shown_to_the_byte_but_on_a_terminal(self):
        text = '{\r\n\t"triggers": [],\r\n "T\u00fcr \u009b2J \u202e \x7f": "\u95e8"}\n'
        self.run_tool("apply", self.write("config.json", text))
        self.assertEqual(self.run_tool("show", "config").out, text.encode("utf-8"))
        shown = '{\n\t"triggers": [],\n "T\u00fcr \\u009b2J \\u202e \\x7f": "\u95e8"}\n'
        self.assertEqual(self.run_on_terminal("show", "config"), shown)

    def run_on_terminal(self, *arguments):
        """Standard output where it is a terminal."""
        reading, writing = pty.openpty()
        try:
            self.assertEqual(self.run_tool(*arguments, stdout=writing).status, DONE)
            os.close(writing)
            return os.read(reading, 1 << 16).decode("utf-8").replace("\r\n", "\n")
        finally:
            os.close(reading)


if __name__ == "__main__":
    unittest.main()
