# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""history, diff and rollback: what passes leave in the history, and the way back."""

import datetime
import getpass
import hashlib
import json
import os
import re
import socket
import unittest

from tool_site import (DONE, ENGINE, FAILED, MOTION, REJECTED, TRIGGER_ERRORS, WRONG_USAGE, Site, camera, config,
                       mapping, object_source, on_postgresql, on_sqlite, topic_source, trigger)

REFUSED, TO_CHANGE = 4, 5

NO_COUNTS = {kind: {"written": 0, "deleted": 0}
             for kind in ("triggers", "subscriptions", "subscriptionLinks", "detection", "detectionLinks")}
NO_TRIGGERS = {"created": [], "changed": [], "deleted": []}


def counts(**changed):
    return {**NO_COUNTS, **{kind: {"written": written, "deleted": deleted}
                            for kind, (written, deleted) in changed.items()}}


class History(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def history(self, *arguments):
        outcome = self.run_tool("--json", "history", *arguments)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
        return outcome.json

    def last(self):
        """The newest entry, but for when and by whom."""
        entry = self.history()[0]
        entry.pop("at")
        entry.pop("by")
        return entry

    def passes(self):
        return [entry["pass"] for entry in self.history()]

    def run_json(self, *arguments, expected=DONE):
        outcome = self.run_tool("--json", *arguments)
        self.assertEqual((outcome.status, outcome.err), (expected, b""), outcome.out)
        return outcome.json

    def complaint(self, *arguments, expected=WRONG_USAGE):
        outcome = self.run_tool(*arguments)
        self.assertEqual(outcome.status, expected, outcome.out)
        return (outcome.out + outcome.err).decode("utf-8")


class Entries(History):
    def test_a_site_without_passes_has_none(self):
        self.assertEqual(self.history(), [])
        self.assertEqual(self.run_tool("history").text, "No pass has changed anything yet.\n")

    def test_a_pass_leaves_one(self):
        before = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        self.apply(config(trigger(7), trigger(8, object_source())))
        after = datetime.datetime.now(datetime.timezone.utc)
        [entry] = self.history()
        at = datetime.datetime.strptime(entry.pop("at"), "%Y-%m-%dT%H:%M:%SZ").replace(tzinfo=datetime.timezone.utc)
        self.assertTrue(before <= at <= after, (before, at, after))
        self.assertEqual(entry.pop("by"), f"{getpass.getuser()}@{socket.gethostname()}")
        self.assertEqual(entry, {
            "pass": 1, "command": "apply", "note": None, "success": True, "errors": 0,
            "changes": counts(triggers=(2, 0), subscriptions=(2, 0), subscriptionLinks=(2, 0), detection=(2, 0),
                              detectionLinks=(2, 0)),
            "triggers": {"created": [7, 8], "changed": [], "deleted": []}, "reconciled": [10, 11]})

    def test_they_are_listed_from_the_newest(self):
        self.apply(config(trigger(7), trigger(8), trigger(9)))
        self.apply(config(trigger(7), {**trigger(8), "name": "other"}, trigger(10)))
        self.assertEqual(self.passes(), [2, 1])
        self.assertEqual(self.last()["triggers"], {"created": [10], "changed": [8], "deleted": [9]})

    def shown(self, columns, *arguments):
        outcome = self.run_command(self.command("history", *arguments), env={**os.environ, "COLUMNS": str(columns)})
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        return re.sub(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "2026-11-22 04:00:00", outcome.text).replace(
            f"{getpass.getuser()}@{socket.gethostname()}", "ann@gate1").splitlines()

    def test_a_narrow_terminal_shows_what_fits_and_says_what_does_not(self):
        self.apply(config(trigger(7), trigger(8, object_source())))
        self.run_json("apply", self.write("config.json", config(trigger(7))), "--note", "nobody looks at persons at night")
        whole = self.shown(200)
        self.assertEqual(whole[0].split(), ["PASS", "BEGUN", "(UTC)", "BY", "COMMAND", "RESULT", "TRIGGERS",
                                            "SUBSCRIPTIONS", "DETECTION", "RECONCILED", "NOTE"])
        self.assertEqual(len(whole), 3)
        narrow = self.shown(80)
        self.assertEqual(narrow[0].split(), ["PASS", "BEGUN", "(UTC)", "BY", "COMMAND", "RESULT", "TRIGGERS", "NOTE"])
        self.assertEqual(narrow[-1], "Not shown for lack of room: SUBSCRIPTIONS, DETECTION, RECONCILED")
        self.assertLessEqual(max(map(len, narrow)), 80)

    def test_a_narrow_terminal_breaks_no_id(self):
        self.apply(config(*(trigger(number) for number in range(1000, 1030))))
        lines = self.shown(40, "1")
        begin = next(place for place, line in enumerate(lines) if line.startswith("Triggers created: "))
        end = lines.index("Changed:")
        self.assertEqual(" ".join(lines[begin:end]),
                         "Triggers created: " + ", ".join(map(str, range(1000, 1030))))
        self.assertLessEqual(max(map(len, lines[begin:end])), 40)

    def test_a_refresh_leaves_one_if_it_changes_something(self):
        self.apply(config(trigger(7)))
        self.init({"cameras": [camera(12, [MOTION])]})
        self.assertEqual(self.passes(), [1])  # an inventory is no pass
        self.run_json("refresh", "--note", "camera 12 is mounted")
        self.assertEqual(self.last(), {
            "pass": 2, "command": "refresh", "note": "camera 12 is mounted", "success": True, "errors": 0,
            "changes": counts(subscriptions=(1, 0), subscriptionLinks=(1, 0)), "triggers": NO_TRIGGERS,
            "reconciled": [12]})

    def test_a_pass_that_changes_nothing_leaves_none_and_writes_nothing(self):
        self.apply(config(trigger(7)))
        files, rows = self.files(), self.rows()
        self.run_json("refresh", "--note", "nothing")
        self.run_json("apply", "config.json")
        self.run_json("plan", self.write("other.json", config(trigger(8))))
        self.assertEqual(self.rows(), rows)
        self.assertEqual({name: data for name, data in self.files().items() if name.endswith(".db")},
                         {name: data for name, data in files.items() if name.endswith(".db")})

    def test_documents_that_are_written_otherwise_leave_one(self):
        self.apply(config(trigger(7)))
        self.write("config.json", b' {"triggers": [' + json.dumps(trigger(7)).encode() + b"]}")
        self.run_json("apply", "config.json")
        self.assertEqual((self.last()["pass"], self.last()["changes"], self.last()["reconciled"]), (2, NO_COUNTS, []))
        self.assertTrue(self.history("2")["config"].startswith(' {"triggers": ['))

    def test_what_is_rejected_or_refused_leaves_none(self):
        self.apply(config(*(trigger(number) for number in range(12))))
        self.apply([], expected=REJECTED)
        self.run_json("apply", self.write("none.json", config()), expected=REFUSED)
        self.assertEqual(self.passes(), [1])

    def test_a_note_may_say_anything(self):
        note = 'Ö "x"\n\t\x1b[31m ' + "long " * 1000
        self.write("config.json", config(trigger(7)))
        self.run_json("apply", "config.json", "--note", note)
        self.assertEqual(self.last()["note"], note)
        self.assertIn('Ö "x"\\x0a\\x09\\x1b[31m long', self.run_tool("history").text)

    def test_a_note_that_is_no_utf8_is_spelled_out(self):
        self.write("config.json", config(trigger(7)))
        self.run_json("apply", "config.json", "--note", b"caf\xe9")
        self.assertEqual(self.last()["note"], "caf\\xe9")

    @on_postgresql
    def test_other_errors_leave_one_and_the_same_ones_none(self):
        self.apply(config({**trigger(7), "name": "\0"}, trigger(8)), expected=TRIGGER_ERRORS)
        self.assertEqual((self.last()["success"], self.last()["errors"]), (True, 1))
        self.assertEqual(self.history("1")["errorTexts"],
                         ["Trigger 7: Failed to process config (Failed to create trigger)."])
        self.run_json("refresh", expected=TRIGGER_ERRORS)
        self.assertEqual(self.passes(), [1])

    @on_sqlite
    def test_a_pass_that_fails_leaves_one_and_the_same_failure_none(self):
        self.apply(config(trigger(7)))
        self.sql("INSERT INTO subscription (id, name, camera_id) VALUES (900, 'no topic', 10)")
        rows = self.rows()
        first = self.run_json("refresh", expected=FAILED)
        entry = self.last()
        self.assertEqual((entry["pass"], entry["success"], entry["errors"]), (2, False, len(first["errors"])))
        self.assertEqual(self.history("2")["errorTexts"], [error["message"] for error in first["errors"]])
        failed = self.rows()
        self.assertNotEqual(failed, rows)
        self.run_json("refresh", expected=FAILED)
        self.assertEqual(self.rows(), failed)
        self.sql("DELETE FROM subscription WHERE id = 900")
        self.run_json("refresh")
        self.assertEqual((self.passes()[0], self.last()["success"], self.last()["errors"]), (3, True, 0))
        self.assertNotIn("errorTexts", self.history("3"))

    def test_one_has_the_texts_of_its_documents(self):
        first = self.write("first.json", '{"triggers": [] }\n')
        self.run_json("apply", first)
        self.apply(config(trigger(7)), mapping(([1], [7])))
        self.assertEqual(self.history("1")["config"], '{"triggers": [] }\n')
        self.assertIsNone(self.history("1")["mapping"])
        with open(self.path("config.json"), encoding="utf-8") as file:
            self.assertEqual(self.history("2")["config"], file.read())
        with open(self.path("mapping.json"), encoding="utf-8") as file:
            self.assertEqual(self.history("2")["mapping"], file.read())
        shown = self.history("2")
        self.assertEqual({key: shown[key] for key in shown if key not in ("config", "mapping")}, self.history()[0])

    def test_each_text_is_kept_once(self):
        for _ in range(3):
            self.apply(config(trigger(7)), mapping(([1], [7])))
            self.apply(config(trigger(8)))
        self.assertEqual(len(self.history()), 6)
        texts = self.sql("SELECT digest FROM history_text")
        with open(self.path("config.json"), "rb") as file:
            self.assertIn((hashlib.sha256(file.read()).hexdigest(),), texts)
        self.assertEqual(len(texts), 3)

    def test_one_that_was_cut_short_says_so(self):
        self.apply(config(trigger(7)))
        self.sql("UPDATE history_entry SET status = 0")
        entry = self.last()
        self.assertEqual((entry["success"], entry["cutShort"]), (False, True))
        self.assertIn(" cut short ", self.run_tool("history").text)
        self.assertTrue(self.run_tool("history", "1").text.endswith(
            "Cut short: its records were stored, its documents were not, and how it would have ended is not known.\n"))

    def test_people_read_a_table(self):
        self.apply(config(trigger(7), trigger(8)))
        self.write("config.json", config({**trigger(8), "name": "other"}, trigger(9)))
        self.run_json("apply", "config.json", "--note", "gate 2")
        text = re.sub(r"\S+ \S+  \S+@\S+ *", "WHEN BY  ", self.run_tool("history").text)
        self.assertEqual(re.sub(r"BEGUN \(UTC\) +BY +", "WHEN BY  ", text), """\
PASS  WHEN BY  COMMAND  RESULT  TRIGGERS  SUBSCRIPTIONS  RECONCILED  NOTE
2     WHEN BY  apply    done    +1 ~1 -1                 2           gate 2
1     WHEN BY  apply    done    +2 ~0 -0  +2 -0          2
""")

    def test_people_read_all_of_one(self):
        self.write("config.json", config(trigger(7), trigger(8, object_source())))
        self.run_json("apply", "config.json", "--note", "gate 2")
        text = re.sub(r"begun .*", "begun WHEN by WHOM", self.run_tool("history", "1").text)
        size = os.path.getsize(self.path("config.json"))
        self.assertEqual(text, f"""\
Pass 1: apply, begun WHEN by WHOM
Note: gate 2
Triggers created: 7, 8
Changed:
  triggers                    2 written        0 deleted
  subscriptions               2 written        0 deleted
  subscription links          2 written        0 deleted
  detection records           2 written        0 deleted
  detection links             2 written        0 deleted
Cameras reconciled: 10, 11
Stored after it: configuration: {size} bytes; mapping: none
Done.
""")

    def test_one_that_never_was_is_wrong_usage(self):
        self.assertIn("The history has no pass 1: it is empty.", self.complaint("history", "1"))
        self.apply(config(trigger(7)))
        for number in ("0", "2", "18446744073709551615"):
            self.assertIn(f"The history has no pass {number}: the last one is 1.", self.complaint("history", number))
        self.assertEqual(self.run_tool("history", "-1").status, WRONG_USAGE)

    def test_the_last_thousand_are_kept(self):
        self.apply(config(trigger(7)))
        columns = ", ".join(name for (name,) in self.sql(
            "SELECT name FROM pragma_table_info('history_entry') WHERE name <> 'pass'" if ENGINE == "sqlite" else
            "SELECT column_name FROM information_schema.columns WHERE table_schema = current_schema() AND "
            "table_name = 'history_entry' AND column_name <> 'pass'"))
        self.sql(f"WITH RECURSIVE n (pass) AS (SELECT 2 UNION ALL SELECT pass + 1 FROM n WHERE pass < 1000) "
                 f"INSERT INTO history_entry (pass, {columns}) SELECT n.pass, {columns} FROM history_entry h, n "
                 "WHERE h.pass = 1")
        self.assertEqual(self.passes(), list(range(1000, 0, -1)))
        self.apply(config(trigger(8)))
        self.assertEqual(self.passes(), list(range(1001, 1, -1)))
        self.assertIn("Pass 1 is not kept any more: the history has the last 1000.", self.complaint("history", "1"))
        self.assertIn("Pass 1 is not kept any more: the history has the last 1000.",
                      self.complaint("rollback", "1", expected=REFUSED))
        self.assertEqual(self.history("2")["config"], self.history("1000")["config"])


class Differences(History):
    FIRST = config({**trigger(7), "tags": {"camera": {"area": ["gate", "dock"]}}}, trigger(8),
                   {**trigger(9), "scheduleIds": [1]}, properties={"notificationDigestCooldownMins": 5})
    SECOND = config({**trigger(7, object_source()), "tags": {"camera": {"area": ["dock", "gate"]}}, "name": "other"},
                    {**trigger(9), "scheduleIds": [1]}, trigger(10))

    def setUp(self):
        super().setUp()
        self.apply(self.FIRST, mapping(([1], [9])))
        self.apply(self.SECOND, mapping(([1], [9]), ([1], [7])))

    def test_of_two_passes(self):
        before = {element["id"]: element for element in self.FIRST["triggers"]}
        after = {element["id"]: element for element in self.SECOND["triggers"]}
        self.assertEqual(self.run_json("diff", "1", "2"), {
            "before": 1, "after": 2,
            "triggers": [
                {"action": "change", "id": 7, "before": before[7], "after": after[7], "fields": [
                    {"field": "name", "before": "trigger 7", "after": "other"},
                    {"field": "sources", "removed": [topic_source()], "added": [object_source()]}]},
                {"action": "delete", "id": 8, "before": before[8], "after": None, "fields": []},
                {"action": "create", "id": 10, "before": None, "after": after[10], "fields": []}],
            "settings": [{"field": "properties", "before": {"notificationDigestCooldownMins": 5}}],
            "associations": {"removed": [], "added": [{"scheduleIds": [1], "triggerIds": [7]}]},
            "mappingSettings": [], "sameTexts": False})

    def test_people_read_lines(self):
        self.assertEqual(self.run_tool("diff", "1", "2").text, f"""\
~ trigger 7 "other"
    ~ name "trigger 7" -> "other"
    - sources {{"onvifTopic":"{MOTION}","type":"onvif-metadata"}}
    + sources {{"searchItem":{{"type":"person"}},"type":"object-detection"}}
- trigger 8 "trigger 8"
+ trigger 10 "trigger 10"
- properties {{"notificationDigestCooldownMins":5}}
+ mapping {{"scheduleIds":[1],"triggerIds":[7]}}
From pass 1 to pass 2: 3 triggers (+1 ~1 -1), 1 mapping entry (+1 -0), 1 other field.
""")

    def test_the_other_way_round(self):
        turned = self.run_json("diff", "2", "1")
        self.assertEqual([(each["action"], each["id"]) for each in turned["triggers"]],
                         [("change", 7), ("create", 8), ("delete", 10)])
        self.assertEqual(turned["associations"], {"removed": [{"scheduleIds": [1], "triggerIds": [7]}], "added": []})
        self.assertEqual(turned["settings"], [{"field": "properties", "after": {"notificationDigestCooldownMins": 5}}])

    def test_of_a_pass_and_what_is_stored(self):
        self.assertEqual({**self.run_json("diff", "1"), "after": 2}, self.run_json("diff", "1", "2"))
        self.assertEqual(self.run_tool("diff", "2").text, "The documents of pass 2 and what is stored are the same.\n")
        self.assertTrue(self.run_json("diff", "2")["sameTexts"])

    def test_the_form_of_documents_is_no_difference(self):
        turned = config(*reversed([dict(reversed(element.items())) for element in self.SECOND["triggers"]]))
        self.apply(turned, mapping(([1], [7]), ([1], [9])))
        self.assertEqual(self.run_tool("diff", "2", "3").text,
                         "The documents of pass 2 and pass 3 say the same in another form.\n")
        self.assertFalse(self.run_json("diff", "2", "3")["sameTexts"])

    def test_nested_fields_have_their_keys(self):
        self.apply(config({**self.SECOND["triggers"][0], "tags": {"camera": {"area": "gate", "a.b": None}}},
                          *self.SECOND["triggers"][1:]))
        self.assertEqual(self.run_json("diff", "2", "3")["triggers"][0]["fields"], [
            {"field": "tags.camera.\"a.b\"", "after": None},
            {"field": "tags.camera.area", "before": ["dock", "gate"], "after": "gate"}])

    def test_the_exit_status_tells_where_that_is_asked_for(self):
        for arguments, status in ((("1", "2"), DONE), (("1", "2", "--exit-code"), TO_CHANGE),
                                  (("2", "--exit-code"), DONE), (("2", "2", "--exit-code"), DONE)):
            self.assertEqual(self.run_tool("diff", *arguments).status, status, arguments)

    def test_of_passes_that_are_not_there_are_wrong_usage(self):
        self.assertIn("The history has no pass 3: the last one is 2.", self.complaint("diff", "3"))
        self.assertIn("The history has no pass 0: the last one is 2.", self.complaint("diff", "1", "0"))
        self.assertEqual(self.run_tool("diff").status, WRONG_USAGE)
        self.sql("DELETE FROM history_text")
        self.assertIn("The configuration of pass 1 is not kept any more.", self.complaint("diff", "1"))
        self.assertIsNone(self.history("1")["config"])
        self.assertIn("configuration: not kept any more; mapping: not kept any more",
                      self.run_tool("history", "1").text)


class Ways_Back(History):
    def records(self):
        return {what: [{key: value for key, value in record.items() if key != "id"} for record in self.show(what)]
                for what in ("triggers", "subscriptions", "detection")}

    def test_a_rollback_restores_records_and_documents(self):
        self.apply(config(trigger(7), trigger(8, object_source())), mapping(([1], [7])))
        before = self.records(), self.run_tool("show", "config").out, self.run_tool("show", "mapping").out
        self.apply(config(trigger(9)), mapping())
        answer = self.run_json("rollback", "1", "--note", "9 was wrong")
        self.assertEqual(sorted(answer), ["changes", "errors", "reconciled", "state", "success", "warnings"])
        self.assertEqual((answer["success"], answer["reconciled"]), (True, [10, 11]))
        self.assertEqual((self.records(), self.run_tool("show", "config").out, self.run_tool("show", "mapping").out),
                         before)
        entry = self.last()
        self.assertEqual((entry["pass"], entry["command"], entry["note"], entry["triggers"]),
                         (3, "rollback 1", "9 was wrong", {"created": [7, 8], "changed": [], "deleted": [9]}))
        self.assertEqual([self.history(number)["config"] for number in "13"], [before[1].decode("utf-8")] * 2)

    def test_documents_that_were_not_there_are_empty(self):
        self.apply(config(trigger(7), {**trigger(8), "scheduleIds": [1]}))
        self.apply(config(trigger(7)), mapping(([2], [8])))
        self.run_json("rollback", "1")
        self.assertEqual(self.run_json("show", "mapping"), {"triggerMapping": []})
        self.assertEqual([record["id"] for record in self.show("triggers")], [7, 8])

    def test_a_rollback_to_where_the_site_is_changes_nothing(self):
        self.apply(config(trigger(7)), mapping())
        rows = self.rows()
        self.assertEqual(self.run_json("rollback", "1")["changes"], NO_COUNTS)
        self.assertEqual(self.rows(), rows)

    def test_the_guard_judges_it(self):
        self.apply(config())
        self.apply(config(*(trigger(number) for number in range(12))))
        rows = self.rows()
        answer = self.run_json("rollback", "1", expected=REFUSED)
        self.assertEqual(answer["errors"][0]["message"], "This pass would delete 12 of 12 triggers.")
        self.assertEqual(self.rows(), rows)
        self.run_json("rollback", "1", "--allow-mass-deletion")
        self.assertEqual(self.show("triggers"), [])

    def test_its_documents_are_warned_of_and_strictly_rejected(self):
        self.apply(config({**trigger(7), "colour": "red"}))
        self.apply(config(trigger(8)))
        rows = self.rows()
        outcome = self.run_tool("rollback", "--strict", "1")
        self.assertEqual(outcome.status, REJECTED, outcome.out)
        self.assertTrue(outcome.text.startswith("pass 1 (configuration):1:"), outcome.text)
        self.assertEqual(self.rows(), rows)
        self.assertEqual([warning["code"] for warning in self.run_json("rollback", "1")["warnings"]], ["unknown-key"])

    def test_what_is_not_kept_is_refused(self):
        self.apply(config(trigger(7)))
        self.apply(config(trigger(8)))
        self.sql("DELETE FROM history_text WHERE digest = (SELECT config FROM history_entry WHERE pass = 1)")
        rows = self.rows()
        self.assertEqual(self.run_tool("rollback", "1").text,
                         "error: The configuration of pass 1 is not kept any more.\nRefused; nothing changed.\n")
        answer = self.run_json("rollback", "1", expected=REFUSED)
        self.assertEqual((answer["success"], answer["errors"], answer["changes"]), (
            False, [{"category": 1, "message": "The configuration of pass 1 is not kept any more."}], NO_COUNTS))
        self.assertEqual(self.rows(), rows)

    def test_a_pass_that_never_was_is_wrong_usage(self):
        self.apply(config(trigger(7)))
        self.assertIn("The history has no pass 2: the last one is 1.", self.complaint("rollback", "2"))
        self.assertEqual(self.run_tool("rollback").status, WRONG_USAGE)

    @on_sqlite
    def test_a_backup_has_its_history(self):
        self.apply(config(trigger(7)))
        self.apply(config(trigger(8)))
        kept = self.history()
        self.assertEqual(self.run_tool("backup", "site.backup").status, DONE)
        self.apply(config(trigger(9)))
        self.assertEqual(self.run_tool("restore", "site.backup").status, DONE)
        self.assertEqual(self.history(), kept)
        self.run_json("rollback", "1")
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])


if __name__ == "__main__":
    unittest.main()
