# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Tables of an older version: whoever writes something brings them up to date with it, and nobody else."""

import json
import os
import re
import shutil
import subprocess
import unittest

from older_site import Older_Site
from tool_site import CROSSED, DONE, ENGINE, FAILED, REJECTED, config, on_postgresql, on_sqlite, topic_source, trigger

REFUSED, WOULD_CHANGE = 4, 5

NOTHING = {"cameras": []}

# Everything that a schema is made of, as the engine describes it.
POSTGRESQL_SCHEMA = (
    "SELECT table_name, column_name, ordinal_position, data_type, is_nullable, column_default, collation_name "
    "FROM information_schema.columns WHERE table_schema = current_schema()",
    "SELECT conrelid::regclass::text, conname, contype, convalidated, pg_get_constraintdef(oid) FROM pg_constraint "
    "WHERE connamespace = current_schema()::regnamespace",
    "SELECT tablename, indexname, indexdef FROM pg_indexes WHERE schemaname = current_schema()",
    "SELECT relname, relkind FROM pg_class WHERE relnamespace = current_schema()::regnamespace AND relkind <> 't'",
)


class Migration(Older_Site):
    def setUp(self):
        super().setUp()
        self.lay_out("1.0.0")
        self.write("nothing.json", NOTHING)
        for name in ("config.json", "mapping.json"):
            shutil.copy(os.path.join(self.kept, name), self.path(name))

    def with_another_trigger(self):
        """The configuration that is stored, and a trigger more."""
        document = json.loads(self.content("config.json"))
        document["triggers"].append(trigger(4711, topic_source(CROSSED)))
        return self.write("more.json", document)

    def sqlite_schema(self):
        found = {(kind, name, table, re.sub(r"\s+", " ", text or "")) for kind, name, table, text in
                 self.sql("SELECT type, name, tbl_name, sql FROM sqlite_master")}
        for (table,) in self.sql("SELECT name FROM sqlite_master WHERE type = 'table'"):
            for pragma in ("table_xinfo", "foreign_key_list"):
                found.update((table, pragma, *row) for row in self.sql(f"SELECT * FROM pragma_{pragma}(?)", table))
            for row in self.sql("SELECT * FROM pragma_index_list(?)", table):
                found.add((table, "index_list", *row[1:]))
                found.update((table, row[1], *column) for column in
                             self.sql("SELECT * FROM pragma_index_xinfo(?)", row[1]))
        return found

    def schema(self):
        """Every table, column, rule and index."""
        if ENGINE == "sqlite":
            return self.sqlite_schema()
        return {tuple(str(value).replace(self.behind.schema + ".", "") for value in row)
                for query in POSTGRESQL_SCHEMA for row in self.sql(query)}

    def schema_of_a_new_site(self):
        old = self.behind
        self.behind = type(old)(os.path.join(self.folder, "new"))
        self.addCleanup(self.behind.drop)
        os.makedirs(self.path("new"))
        outcome = self.run_tool("--database", self.behind.location, "init", "nothing.json")
        self.assertEqual(outcome.status, DONE, outcome.err)
        found = self.schema()
        self.behind = old
        return found

    def records(self):
        """Every row of every table that version 1 had, but the one that names the version."""
        tables = self.sql("SELECT name FROM sqlite_master WHERE type = 'table'" if ENGINE == "sqlite" else
                          "SELECT tablename FROM pg_tables WHERE schemaname = current_schema()")
        return {table: sorted(self.sql(f"SELECT * FROM {table}"), key=repr) for (table,) in tables
                if table not in ("site", "history_entry", "history_text")}

    def run_and_expect(self, *command):
        outcome = self.run_tool("--json", *command)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)


class Readers(Migration):
    def test_leave_the_tables_as_they_are(self):
        before = self.schema(), self.rows(), self.version()
        self.assertEqual(self.show_everything(), self.kept_records())
        self.assert_documents_are_kept()
        for command in (("check", "config.json"), ("show", "inventory"), ("show", "config")):
            self.run_tool(*command)
        self.assertEqual((self.schema(), self.rows(), self.version()), before)
        self.assertEqual(self.version(), 1)

    @on_sqlite
    def test_write_nothing_at_all(self):
        with open(self.database, "rb") as file:
            before = file.read()
        self.assertEqual(self.show_everything(), self.kept_records())
        with open(self.database, "rb") as file:
            self.assertEqual(file.read(), before)

    @on_sqlite
    def test_make_a_backup_of_the_tables_as_they_are(self):
        schema, records = self.schema(), self.records()
        self.run_and_expect("backup", "site.backup")
        self.assertEqual(self.version(), 1)
        shutil.copy(self.path("site.backup"), self.database)
        self.assertEqual((self.version(), self.schema(), self.records()), (1, schema, records))


class Commands_That_Write_Nothing(Migration):
    def setUp(self):
        super().setUp()
        self.sql("DELETE FROM pending_camera")  # which a pass would reconcile and strike out

    def assert_left_alone(self, status, *command):
        with self.subTest(command):
            schema, rows, files = self.schema(), self.rows(), self.database_files()
            outcome = self.run_tool("--json", *command)
            same_files = self.database_files() == files
            self.assertEqual(outcome.status, status, outcome.out + outcome.err)
            self.assertEqual(self.version(), 1)
            self.assertTrue(same_files, "the file was changed")
            self.assertEqual((self.schema(), self.rows()), (schema, rows))

    def database_files(self):
        """Byte for byte, where the database is files. A log that is empty is none."""
        names = (self.database, self.database + "-wal") if ENGINE == "sqlite" else ()
        found = []
        for name in filter(os.path.exists, names):
            with open(name, "rb") as file:
                found.append(file.read())
        return [content for content in found if content]

    def test_are_passes_that_change_nothing(self):
        self.assert_left_alone(DONE, "refresh")
        self.assert_left_alone(DONE, "apply", "config.json")
        self.assert_left_alone(DONE, "apply", "config.json", "mapping.json")

    def test_are_those_whose_document_is_rejected(self):
        document = self.write("bad.json", {"triggers": [{"id": 1}]})
        self.assert_left_alone(REJECTED, "apply", document)
        self.assert_left_alone(REJECTED, "apply", "config.json", self.write("bad_mapping.json", {"triggerMapping": 1}))
        self.assert_left_alone(REJECTED, "init", self.write("bad_inventory.json", {"camera": []}))
        misspelt = self.write("misspelt.json", dict(json.loads(self.content("config.json")), propertys={}))
        self.assert_left_alone(REJECTED, "apply", "--strict", misspelt)

    def test_are_those_that_a_guard_refuses(self):
        self.assert_left_alone(REFUSED, "apply", self.write("empty.json", config()))
        self.assert_left_alone(REFUSED, "init", "--prune", "nothing.json")
        self.sql("UPDATE document SET text = ? WHERE kind = ?", json.dumps(config()), "config")
        self.assert_left_alone(REFUSED, "refresh")

    def test_are_those_that_only_plan(self):
        self.assert_left_alone(WOULD_CHANGE, "plan", "--exit-code", "--out", "kept.plan", self.with_another_trigger())
        self.sql("UPDATE camera SET name = ? WHERE id = 10", "renamed")
        self.assert_left_alone(REFUSED, "apply", "--plan", "kept.plan")

    def test_are_those_of_another_server(self):
        self.assert_left_alone(FAILED, "--server-id", "2", "apply", self.with_another_trigger())
        self.assert_left_alone(FAILED, "--server-id", "2", "init", "nothing.json")


class Commands_Whose_Writing_Fails(Migration):
    def given_that_no_row_is_added_to(self, table):
        if ENGINE == "sqlite":
            self.sql(f"CREATE TRIGGER trouble BEFORE INSERT ON {table} BEGIN SELECT RAISE(ABORT, 'no more rows'); END")
            return
        self.sql("CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS "
                 "$$BEGIN RAISE EXCEPTION 'no more rows'; END$$; CREATE TRIGGER trouble BEFORE INSERT ON "
                 f"{table} FOR EACH ROW EXECUTE FUNCTION refuse()")

    def assert_taken_back(self, *command):
        before = self.schema(), self.rows()
        outcome = self.run_tool(*command)
        self.assertEqual(outcome.status, FAILED, outcome.out)
        self.assertEqual(self.version(), 1)
        self.assertEqual((self.schema(), self.rows()), before)

    def test_leave_the_tables_as_they_are(self):
        self.given_that_no_row_is_added_to("trigger_record")
        self.assert_taken_back("apply", self.with_another_trigger())

    def test_leave_them_when_an_inventory_is_not_stored(self):
        self.given_that_no_row_is_added_to("schedule")
        self.assert_taken_back("init", self.write("late.json", {"schedules": [{"id": 77, "name": "late"}]}))


class Writers(Migration):
    def test_bring_the_tables_up_to_date_and_leave_every_record_as_it_was(self):
        before = self.records()
        owner = self.sql("SELECT id, server_id FROM site")
        self.run_and_expect("init", "nothing.json")
        self.assertEqual(self.version(), 4)
        self.assertEqual(self.records(), before)
        self.assertEqual(self.sql("SELECT id, server_id FROM site"), owner)
        self.assertEqual(self.show_everything(), self.kept_records())
        self.assert_documents_are_kept()

    def test_leave_the_tables_that_a_new_site_has(self):
        new = self.schema_of_a_new_site()
        self.assertGreater(len(self.schema() ^ new), 10)
        self.run_and_expect("refresh")
        self.assertEqual(self.schema() ^ new, set())

    def test_are_all_who_run_a_pass(self):
        for command in (("refresh",), ("apply", "config.json")):
            with self.subTest(command):
                if ENGINE == "postgresql":
                    self.behind.drop()
                self.lay_out("1.0.0")
                self.run_and_expect(*command)
                self.assertEqual(self.version(), 4)
                self.assertEqual(self.show_everything(), self.kept_records())

    def test_are_passes_that_store_a_document_and_nothing_else(self):
        self.sql("DELETE FROM pending_camera")
        document = json.loads(self.content("config.json"))
        self.run_and_expect("apply", self.write("same.json", json.dumps(document, indent=7)))
        self.assertEqual(self.version(), 4)
        self.assertEqual(self.show_everything(), self.kept_records())

    def test_are_passes_that_change_a_record(self):
        self.run_and_expect("apply", self.with_another_trigger())
        self.assertEqual(self.version(), 4)
        self.assertEqual([record for record in self.show("triggers") if record["id"] != 4711],
                         self.kept_records()["triggers"])

    def test_work_side_by_side(self):
        commands = [("show", "triggers"), ("refresh",), ("init", "nothing.json"), ("check", "config.json"),
                    ("apply", "config.json"), ("show", "subscriptions"), ("refresh",), ("show", "config")]
        for _ in range(int(os.environ.get("MIGRATION_ROUNDS", "5"))):
            running = [(command, subprocess.Popen(self.command("--json", *command), cwd=self.folder,
                                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE))
                       for command in commands]
            for command, process in running:
                out, err = process.communicate(timeout=120)
                self.assertEqual((process.returncode, err), (DONE, b""), (command, out))
            self.assertEqual(self.version(), 4)
            self.assertEqual(self.show_everything(), self.kept_records())
            if ENGINE == "postgresql":
                self.behind.drop()
            self.lay_out_again()

    def lay_out_again(self):
        for suffix in ("-wal", "-shm"):
            if ENGINE == "sqlite" and os.path.exists(self.database + suffix):
                os.remove(self.database + suffix)
        self.lay_out("1.0.0")

    @on_sqlite
    def test_leave_what_other_programs_hung_on_the_tables(self):
        others = ("CREATE TABLE audit (id INTEGER)",
                  "CREATE INDEX camera_by_name ON camera (name)",
                  "CREATE TRIGGER audited AFTER INSERT ON schedule BEGIN INSERT INTO audit VALUES (NEW.id); END",
                  "CREATE VIEW usable_schedule AS SELECT id FROM schedule WHERE usable = 1")
        for statement in others:
            self.sql(statement)
        self.run_and_expect("init", self.write("one.json", {"schedules": [{"id": 77, "name": "late"}]}))
        self.assertEqual(self.version(), 4)
        kept = {text for (text,) in self.sql("SELECT sql FROM sqlite_master")}
        self.assertLessEqual(set(others), kept)
        self.assertEqual(self.sql("SELECT id FROM audit"), [(77,)])
        self.assertIn((77,), self.sql("SELECT id FROM usable_schedule"))


class Columns_That_Another_Program_Added(Migration):
    def setUp(self):
        super().setUp()
        self.sql("ALTER TABLE schedule ADD COLUMN note TEXT")
        self.sql("UPDATE schedule SET note = ?", "ask Ann")

    def notes(self):
        return {note for (note,) in self.sql("SELECT note FROM schedule")}

    @on_sqlite
    def test_stop_the_migration_where_it_would_delete_them(self):
        self.sql("ALTER TABLE camera ADD COLUMN site_plan BLOB")
        self.sql("ALTER TABLE camera ADD COLUMN label TEXT AS (name || '!')")
        self.sql("ALTER TABLE subscription ADD COLUMN \"seen at\" INTEGER DEFAULT 5")  # which stays as it is
        before = self.schema(), self.rows()
        for command in (("refresh",), ("init", "nothing.json"), ("apply", self.with_another_trigger())):
            outcome = self.run_tool(*command)
            self.assertEqual(outcome.status, FAILED, outcome.out)
            self.assertIn(
                "its tables cannot be brought up to date, and nothing was changed: another program added columns to "
                "tables that have to be made anew, and what is in these columns would be lost: camera.label, "
                "camera.site_plan, schedule.note; copy it to a table of its own, drop the columns, and try again; "
                "the commands that only read go on working", (outcome.out + outcome.err).decode())
            self.assertEqual((self.schema(), self.rows()), before)
        self.assertEqual(self.show_everything(), self.kept_records())
        for column in ("camera DROP COLUMN label", "camera DROP COLUMN site_plan", "schedule DROP COLUMN note"):
            self.sql(f"ALTER TABLE {column}")
        self.run_and_expect("refresh")
        self.assertEqual(self.version(), 4)
        self.assertEqual(set(self.sql("SELECT \"seen at\" FROM subscription")), {(5,)})

    @on_sqlite
    def test_stop_the_restoring_of_a_backup(self):
        shutil.move(self.database, self.path("old.backup"))
        self.lay_out("1.0.0")
        before = self.schema(), self.rows()
        outcome = self.run_tool("restore", "old.backup")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        self.assertIn("backup old.backup: another program added columns to tables that have to be made anew, and what "
                      "is in these columns would be lost: schedule.note; ", outcome.err.decode())
        self.assertEqual((self.schema(), self.rows()), before)

    @on_postgresql
    def test_stay_where_tables_are_only_altered(self):
        self.run_and_expect("refresh")
        self.assertEqual((self.version(), self.notes()), (4, {"ask Ann"}))


class Rows_That_Break_A_Rule(Migration):
    def assert_left_alone(self, table, rule):
        before = self.schema(), self.rows()
        for command in (("refresh",), ("init", "nothing.json"), ("apply", "config.json")):
            outcome = self.run_tool(*command)
            self.assertEqual(outcome.status, FAILED, outcome.out)
            text = (outcome.out + outcome.err).decode("utf-8")
            self.assertIn("its tables cannot be brought up to date, and nothing was changed: in table "
                          f"{table}, a row breaks the rule {rule}; find it with ", text)
            query = re.search(r'"(SELECT .*)", correct or delete it, and try again', text).group(1)
            self.assertEqual((self.schema(), self.rows()), before)
        return query

    def test_stop_the_migration_and_are_named(self):
        self.sql("UPDATE trigger_source SET onvif_topic = '' WHERE trigger_id = 2")
        query = self.assert_left_alone("trigger_source", "trigger_source_onvif_topic")
        self.assertEqual([row[0] for row in self.sql(query)], [2])
        self.show("triggers")  # readers go on
        self.sql("UPDATE trigger_source SET onvif_topic = ? WHERE trigger_id = 2", CROSSED)
        self.run_and_expect("refresh")
        self.assertEqual(self.version(), 4)
        self.assertEqual(self.show_everything(), self.kept_records())

    def test_of_other_tables_are_named_too(self):
        self.sql("UPDATE meta_type SET type = '' WHERE type = 'bus'")
        self.assertEqual(self.sql(self.assert_left_alone("meta_type", "meta_type_type")), [("heavy-vehicle", "")])
        self.sql("DELETE FROM meta_type WHERE type = ''")
        self.sql("UPDATE document SET kind = ? WHERE kind = ?", "notes", "mapping")
        self.assertEqual(self.sql(self.assert_left_alone("document", "document_kind"))[0][0], "notes")


@on_sqlite
class Restores(Migration):
    def restore_kept_backup(self):
        shutil.copy(os.path.join(self.kept, "site.sqlite"), self.path("old.backup"))
        self.run_and_expect("restore", "old.backup")
        self.assertEqual(self.version(), 4)
        self.assertEqual(self.show_everything(), self.kept_records())
        self.assert_documents_are_kept()

    def test_of_an_older_backup_make_the_tables_of_today(self):
        new = self.schema_of_a_new_site()
        os.remove(self.database)
        self.restore_kept_backup()
        self.assertEqual(self.schema() ^ new, set())

    def test_of_an_older_backup_into_older_and_newer_tables(self):
        self.restore_kept_backup()
        emptied = self.run_tool("apply", "--allow-mass-deletion", self.write("config.json", config()))
        self.assertEqual(emptied.status, DONE, emptied.out)
        self.assertEqual(self.show("triggers"), [])
        self.restore_kept_backup()

    def test_of_a_backup_with_a_row_that_breaks_a_rule_are_refused(self):
        self.sql("UPDATE schedule SET usable = 2 WHERE id = 1")
        shutil.move(self.database, self.path("old.backup"))
        self.lay_out("1.0.0")
        before = self.schema(), self.rows()
        outcome = self.run_tool("restore", "old.backup")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        self.assertEqual(
            outcome.err.decode("utf-8"),
            "vemora-triggers: backup old.backup: in table schedule, a row breaks the rule schedule_usable; find it "
            "with \"SELECT * FROM schedule WHERE NOT (usable IN (0, 1))\", correct or delete it, and try again\n")
        self.assertEqual((self.schema(), self.rows()), before)

    def test_of_what_an_older_program_copied_keep_what_is_pending(self):
        self.restore_kept_backup()
        self.assertIn((4,), self.sql("SELECT camera_id FROM pending_camera"))


if __name__ == "__main__":
    unittest.main()
