# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Databases that are damaged, busy, corrupt or not there."""

import os
import pty
import subprocess
import time
import unittest

from tool_site import (DONE, FAILED, Outcome, Site, config, mapping, on_postgresql, on_sqlite, topic_source,
                       trigger)

WAITING = "Another process is at work on the database; waiting for it.\n"

COMMANDS = (["check", "config.json"], ["apply", "config.json"], ["apply", "config.json", "mapping.json"], ["refresh"],
            ["show", "triggers"], ["show", "subscriptions"], ["show", "config"], ["init", "inventory.json"])


class Database_Site(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.apply(config(trigger(7, topic_source())), mapping(([1], [7])))

    def assert_failure(self, *arguments):
        """The command fails, for people and for programs with the same message, which it answers."""
        told = self.run_tool(*arguments)
        self.assertEqual((told.status, told.out), (FAILED, b""), arguments)
        outcome = self.run_tool("--json", *arguments)
        self.assertEqual((outcome.status, outcome.err), (FAILED, b""))
        self.assertIs(outcome.json["success"], False)
        [error] = outcome.json["errors"]
        self.assertEqual(error["category"], 1)
        self.assertEqual(told.err.decode(), f"vemora-triggers: {error['message']}\n")
        return error["message"]


@on_sqlite
class Damaged_Files(Database_Site):
    def damaged(self, content):
        self.write("damaged.db", content)
        messages = set()
        for command in COMMANDS:
            with self.subTest(command):
                messages.add(self.assert_failure("--database", "damaged.db", *command))
        with open(self.path("damaged.db"), "rb") as file:
            self.assertTrue(file.read() == content, "the damaged file was changed")
        return messages

    def content(self):
        with open(self.database, "rb") as file:
            return file.read()

    def test_a_file_of_garbage_is_no_database(self):
        self.assertEqual(self.damaged(bytes(range(256)) * 64), {"database damaged.db: file is not a database"})

    def test_a_document_is_no_database(self):
        self.assertEqual(self.damaged(b'{"triggers": []}' * 100), {"database damaged.db: file is not a database"})

    def test_a_database_that_was_cut_off_is_malformed(self):
        content = self.content()
        self.assertEqual(self.damaged(content[:len(content) // 3]),
                         {"database damaged.db: database disk image is malformed"})

    def test_a_database_that_was_overwritten_is_malformed(self):
        content = self.content()
        self.assertEqual(self.damaged(content[:100] + b"\xff" * (len(content) - 100)),
                         {"database damaged.db: database disk image is malformed"})


class Unusable_Databases(Database_Site):
    NO_TABLE = "no such table: eta_camera|relation \"eta_camera\" does not exist"

    def setUp(self):
        super().setUp()
        self.other = self.write("other.json", config(trigger(8, tags={"camera": {"area": "gate"}})))

    def test_a_database_of_a_newer_version_is_left_alone(self):
        [(version,)] = self.sql("SELECT schema_version FROM site")
        self.sql("UPDATE site SET schema_version = 99")
        before = self.rows()
        for command in COMMANDS:
            self.assertEqual(self.assert_failure(*command),
                             f"database {self.behind.shown}: it was made by a newer version of this program "
                             f"(schema 99, known up to {version})")
        self.assertEqual(self.rows(), before)

    def test_a_database_that_does_not_say_its_version_is_left_alone(self):
        self.sql("DELETE FROM site")
        before = self.rows()
        for command in COMMANDS:
            self.assertEqual(self.assert_failure(*command),
                             f"database {self.behind.shown}: its table site does not say which version of this program "
                             "made it; move the database away and restore a backup")
        self.assertEqual(self.rows(), before)

    def test_a_database_that_is_not_there_is_not_made_by_the_way(self):
        before = self.behind.all()
        for command in COMMANDS[:-1]:
            with self.subTest(command):
                self.assertEqual(self.assert_failure("--database", self.behind.absent, *command), self.behind.absence)
        self.assertEqual(self.behind.all(), before)

    def fault_amid_a_pass(self):
        """Runs a pass that writes a trigger and fails on a table then; answers what it said."""
        self.sql("ALTER TABLE eta_camera RENAME TO elsewhere")
        outcome = self.run_tool("--json", "apply", self.other)
        self.sql("ALTER TABLE elsewhere RENAME TO eta_camera")
        self.assertEqual((outcome.status, outcome.err), (FAILED, b""))
        self.assertIsNone(outcome.json["state"])
        [error] = outcome.json["errors"]
        self.assertEqual(error["category"], 1)
        self.assertRegex(error["message"], self.NO_TABLE)
        return outcome.json

    def assert_documents_kept(self):
        self.assertEqual(self.show("config"), config(trigger(7, topic_source())))
        self.assertEqual(self.run_tool("apply", self.other).status, DONE)
        self.assertEqual([record["id"] for record in self.show("triggers")], [8])

    @on_sqlite
    def test_a_fault_amid_a_pass_keeps_the_documents_and_what_was_written_until_then(self):
        self.assertEqual(self.fault_amid_a_pass()["remarks"],
                         ["What the pass wrote before the failure is committed."])
        self.assertEqual([record["id"] for record in self.show("triggers")], [7, 8])
        self.assert_documents_kept()

    @on_postgresql
    def test_a_fault_amid_a_pass_takes_back_all_of_it(self):
        before = self.rows()
        [remark] = self.fault_amid_a_pass()["remarks"]
        self.assertRegex(remark, "; nothing that the pass wrote was kept$")
        self.assertEqual(self.rows(), before)
        self.assert_documents_kept()

    def test_a_fault_while_triggers_are_deleted_deletes_nothing(self):
        before = self.rows()
        self.sql("ALTER TABLE eta_camera RENAME TO elsewhere")
        outcome = self.run_tool("--json", "apply", self.write("none.json", config()))
        self.sql("ALTER TABLE elsewhere RENAME TO eta_camera")
        self.assertEqual(outcome.status, FAILED)
        self.assertRegex(outcome.json["errors"][0]["message"], self.NO_TABLE)
        self.assertEqual(self.rows(), before)


@on_sqlite
class Full_Disks(Database_Site):
    def test_a_pass_that_finds_no_room_leaves_everything_as_it_was(self):
        name = self.write("large.json", config(*(trigger(number, topic_source("x" * 100)) for number in range(5000))))
        before = self.rows()
        # A limit on the size of files stands for the disk.
        outcome = self.run_command(["sh", "-c", 'ulimit -f 400; exec "$@"', "sh",
                                    *self.command("--json", "apply", name)])
        self.assertEqual((outcome.status, outcome.err), (FAILED, b""))
        self.assertRegex(outcome.json["remarks"][0], "; nothing that the pass wrote was kept$")
        self.assertEqual((outcome.json["state"], outcome.json["reconciled"]), (None, []))
        self.assertEqual(self.rows(), before)
        self.assertEqual(self.run_tool("apply", name).status, DONE)


class Corrupt_Records(Database_Site):
    CORRUPT = "Corrupt record: subscription 99 has a camera (10) and no ONVIF topic."

    def setUp(self):
        super().setUp()
        self.sql("INSERT INTO subscription (id, name, camera_id) VALUES (99, 'corrupt', 10)")

    def test_a_refresh_fails_and_names_the_record(self):
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual((outcome.status, outcome.err), (FAILED, b""))
        self.assertEqual(outcome.json["errors"], [
            {"category": 1, "message": "Encountered error refreshing the trigger config: bad optional access"}])
        self.assertIsNone(outcome.json["state"])
        self.assertIn(self.CORRUPT, outcome.json["remarks"])

    def test_an_apply_fails_after_its_commit_and_names_the_record(self):
        before = self.run_tool("show", "config").out
        self.write("new.json", config(trigger(8, topic_source())))
        outcome = self.run_tool("apply", "new.json")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (FAILED, b"", f"""\
error: Failed to update trigger config: bad optional access
stored mapping:1:57: warning: The configuration has no trigger 7; take it out of the list. (trigger 7)
    {{"triggerMapping": [{{"scheduleIds": [1], "triggerIds": [7]}}]}}
                                                            ^
note: What the pass wrote is committed; the stored documents are still the old ones.
note: {self.CORRUPT}
Changed:
  triggers                    1 written        1 deleted
  subscription links          2 written        2 deleted
Cameras reconciled: 2
Failed.
"""))
        self.assertEqual([record["id"] for record in self.show("triggers")], [8])
        self.assertEqual(self.run_tool("show", "config").out, before)

    def test_repeating_the_apply_after_mending_ends_as_if_nothing_had_been(self):
        name = self.write("new.json", config(trigger(8, topic_source())))
        self.assertEqual(self.run_tool("apply", name).status, FAILED)
        self.sql("DELETE FROM subscription WHERE id = 99")
        outcome = self.run_tool("--json", "apply", name)
        self.assertEqual((outcome.status, outcome.json["errors"]), (DONE, []))
        self.assertEqual(outcome.json["state"]["appliedTriggers"], {"8": {"anyTime": False}})
        self.assertEqual(self.show("config"), config(trigger(8, topic_source())))

    def test_the_record_is_shown_like_any_other(self):
        self.assertEqual(self.show("subscriptions")[-1], {
            "id": 99, "name": "corrupt", "onvifTopic": None, "cameraId": 10, "triggerIds": [], "tags": {},
            "categoryId": None, "cameraIds": []})
        self.assertIn("99  10 camera 10  (corrupt)", self.run_tool("show", "subscriptions").text)


class Damaged_Documents(Database_Site):
    CONFIG = "the stored configuration is damaged: it is not a JSON object; apply it again"
    MAPPING = "the stored mapping is damaged: it is not a JSON object; apply it again"

    def given_stored(self, kind, text):
        self.sql("UPDATE document SET text = ? WHERE kind = ?", text, kind)

    def test_a_stored_mapping_that_is_no_object_fails_whoever_needs_it(self):
        for text in ("[]", "", "{", "7"):
            self.given_stored("mapping", text)
            before = self.rows()
            for command in (["check", "config.json"], ["apply", "config.json"], ["refresh"]):
                with self.subTest(text, command=command):
                    self.assertEqual(self.assert_failure(*command), self.MAPPING)
            self.assertEqual(self.rows(), before)

    def test_a_stored_configuration_that_is_no_object_fails_a_refresh_alone(self):
        for text in ("[]", "", "{", "7"):
            self.given_stored("config", text)
            with self.subTest(text):
                self.assertEqual(self.assert_failure("refresh"), self.CONFIG)
                self.assertEqual(self.run_tool("check", "config.json").status, DONE)

    def test_new_documents_take_the_place_of_damaged_ones(self):
        self.given_stored("config", "[")
        self.given_stored("mapping", "[]")
        outcome = self.run_tool("apply", "config.json", "mapping.json")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual(self.run_tool("refresh").status, DONE)

    def test_a_stored_mapping_with_a_fault_rejects_the_configuration_that_comes_without_one(self):
        self.given_stored("mapping", '{"triggerMapping": 7}')
        outcome = self.run_tool("check", "config.json")
        self.assertEqual(outcome.text, "stored mapping: error: \"triggerMapping\" array is missing or invalid.\n")


class Busy_Databases(Database_Site):
    def run_all(self, *commands):
        """Runs commands at the same time."""
        processes = [subprocess.Popen(self.command(*command), cwd=self.folder, stdin=subprocess.DEVNULL,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE) for command in commands]
        outcomes = []
        for process in processes:
            process.stdout, process.stderr = process.communicate(timeout=300)
            outcomes.append(Outcome(process))
        return outcomes

    def test_while_another_process_runs_a_pass_writers_give_up_and_readers_do_not_wait(self):
        before = self.rows()
        with self.behind.locked():
            for command in (["check", "config.json"], ["show", "triggers"], ["show", "config"]):
                self.assertEqual(self.run_tool(*command).status, DONE, command)
            for outcome in self.run_all(["apply", "config.json"], ["refresh"], ["init", "inventory.json"]):
                self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (
                    FAILED, b"", f"vemora-triggers: database {self.behind.shown}: another process is at work on it; "
                                 "gave up after 30000 ms\n"))
        self.assertEqual(self.rows(), before)
        self.assertEqual(self.run_tool("apply", "config.json").status, DONE)

    def test_a_person_is_told_once_that_a_command_waits(self):
        for command in (["refresh"], ["init", "inventory.json"]):
            with self.subTest(command):
                watching, terminal = pty.openpty()
                with self.behind.locked():
                    waiting = subprocess.Popen(self.command(*command), cwd=self.folder, stdin=subprocess.DEVNULL,
                                               stdout=subprocess.PIPE, stderr=terminal)
                    time.sleep(2.5)
                out, _ = waiting.communicate(timeout=300)
                os.close(terminal)
                said = os.read(watching, 1 << 16).decode().replace("\r\n", "\n")
                os.close(watching)
                self.assertEqual((waiting.returncode, said.count(WAITING)), (DONE, 1), said)
                self.assertNotIn(WAITING.encode(), out)

    def test_passes_at_the_same_time_queue_up(self):
        names = [self.write(f"{number}.json", config(trigger(number, topic_source()))) for number in range(8)]
        for outcome in self.run_all(*[["apply", name] for name in names]):
            self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        [last] = self.show("triggers")
        self.assertEqual(self.show("config")["triggers"][0]["id"], last["id"])
        self.assertEqual({tuple(record["triggerIds"]) for record in self.show("subscriptions")
                          if record["cameraId"] is not None}, {(last["id"],)})

    @on_sqlite
    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_a_database_that_may_not_be_written_is_told(self):
        os.chmod(self.folder, 0o555)
        self.addCleanup(os.chmod, self.folder, 0o755)
        os.chmod(self.database, 0o444)
        self.assertEqual(self.run_tool("refresh").status, FAILED)


if __name__ == "__main__":
    unittest.main()
