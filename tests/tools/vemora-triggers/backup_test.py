# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""backup and restore: what they copy, what they refuse, and what they leave alone."""

import fcntl
import hashlib
import os
import shutil
import sqlite3
import stat
import subprocess
import threading
import unittest

from other_users import COLLEAGUE, GROUP, OWNER, STRANGER, Users, as_root_on_sqlite
from tool_site import DONE, FAILED, WRONG_USAGE, Site, config, on_postgresql, on_sqlite, topic_source, trigger

LOCK, LOG, INDEX = "vemora.db.lock", "vemora.db-wal", "vemora.db-shm"
JOURNAL_MODE = 18  # where the file says whether it takes a log: 1 or 2


class Copies(Site):
    """A site with a camera at the gate and one at the dock; what they report, two triggers listen to."""

    GATE = {"camera": {"area": "gate"}}
    DOCK = {"camera": {"area": "dock"}}

    def setUp(self):
        super().setUp()
        self.init()
        self.apply(self.one_trigger())

    def one_trigger(self):
        return config(trigger(7, topic_source(), tags=self.GATE))

    def files(self):
        """All but an empty log and its index, which tell nothing when nobody is at work."""
        return {name: hashlib.sha256(content).hexdigest() for name, content in super().files().items()
                if not name.endswith("-shm") and not (name.endswith("-wal") and content == b"")}

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def rows_in(self, name, but=()):
        """Every row of every table of a file that nobody is at work on."""
        connection = sqlite3.connect(f"file:{self.path(name)}?immutable=1", uri=True)
        try:
            tables = [table for (table,) in connection.execute("SELECT name FROM sqlite_master WHERE type = 'table'")]
            return {table: sorted(connection.execute(f"SELECT * FROM {table}"), key=repr)
                    for table in tables if table not in but}
        finally:
            connection.close()

    def assert_done(self, *command):
        outcome = self.run_tool(*command)
        self.assertEqual((outcome.status, outcome.err.decode()), (DONE, ""), outcome.out)
        return outcome

    def backup(self, name="backup.db"):
        self.assert_done("backup", name)
        return name

    def assert_refused(self, message, *command, options=()):
        """For people and for programs, with the same text; and nothing is touched."""
        before = self.files()
        told = self.run_tool(*options, *command)
        self.assertEqual((told.status, told.out, told.err.decode()), (FAILED, b"", f"vemora-triggers: {message}\n"))
        outcome = self.run_tool("--json", *options, *command)
        self.assertEqual((outcome.status, outcome.err), (FAILED, b""))
        self.assertEqual(outcome.json, {"success": False, "errors": [{"category": 1, "message": message}]})
        self.assertEqual(self.files(), before)

    def other_program(self, name="notes.db"):
        connection = sqlite3.connect(self.path(name))
        connection.executescript("CREATE TABLE notes (text); INSERT INTO notes VALUES ('night shift')")
        connection.close()
        return name

    def changed(self, name, *statements):
        """A backup that was tampered with."""
        connection = sqlite3.connect(self.path(name))
        with connection:
            for statement in statements:
                connection.execute(statement)
        connection.close()
        return name

    def kill_a_writer(self, statement):
        """Another program commits to the log and dies."""
        crash = ("import os, sqlite3, sys; c = sqlite3.connect('vemora.db'); "
                 "c.executescript(sys.argv[1]); os._exit(0)")
        subprocess.run(["python3", "-c", crash, statement], cwd=self.folder, check=True)
        self.assertGreater(os.path.getsize(self.path(LOG)), 0)


@on_sqlite
class Backups(Copies):
    def test_people_read_what_was_copied(self):
        self.assertEqual(self.assert_done("backup", "backup.db").text,
                         "Backed up to backup.db: 1 trigger, 2 subscriptions, 2 cameras.\n")

    def test_programs_read_what_was_copied(self):
        self.assertEqual(self.assert_done("--json", "backup", "backup.db").json, {
            "success": True, "records": {"triggers": 1, "subscriptions": 2, "cameras": 2}})

    def test_hold_every_row_in_one_file_that_takes_no_log(self):
        before = set(os.listdir(self.folder))
        self.backup()
        self.assertEqual(set(os.listdir(self.folder)), before | {"backup.db"})
        self.assertEqual(self.rows_in("backup.db"), self.rows())
        self.assertEqual(self.content("backup.db")[JOURNAL_MODE], 1)

    def test_hold_what_is_in_the_log(self):
        self.kill_a_writer("INSERT INTO schedule VALUES (77, 'late', 1)")
        self.backup()
        self.assertIn((77, "late", 1), self.rows_in("backup.db")["schedule"])

    def test_are_shown_without_a_file_beside_them(self):
        self.backup()
        before = self.files()
        outcome = self.run_tool("--database", "backup.db", "--json", "show", "triggers")
        self.assertEqual((outcome.status, outcome.err, [record["id"] for record in outcome.json]), (DONE, b"", [7]))
        self.assertEqual(self.files(), before)

    def test_have_the_mode_of_the_database(self):
        for mode in (0o600, 0o640):
            os.chmod(self.database, mode)
            self.backup()
            self.assertEqual(oct(stat.S_IMODE(os.stat(self.path("backup.db")).st_mode)), oct(mode))

    def test_take_the_place_of_older_ones_and_of_empty_files(self):
        self.write("backup.db", b"")
        self.backup()
        self.apply(config(trigger(8)))
        self.backup()
        self.assertEqual(self.rows_in("backup.db"), self.rows())

    def test_go_where_a_link_leads(self):
        os.mkdir(self.path("elsewhere"))
        os.symlink("elsewhere/backup.db", self.path("backup.db"))
        self.backup()
        self.assertTrue(os.path.islink(self.path("backup.db")))
        self.assertEqual(os.listdir(self.path("elsewhere")), ["backup.db"])

    def test_that_cannot_be_completed_leave_the_older_one(self):
        self.backup()
        self.apply(config(*(trigger(number, topic_source("x" * 100)) for number in range(3000))))
        before = self.files()
        # A limit on the size of files stands for the disk.
        limited = self.run_command(["sh", "-c", 'ulimit -f 100; exec "$@"', "sh", *self.command("backup", "backup.db")])
        self.assertEqual((limited.status, limited.out), (FAILED, b""))
        self.assertRegex(limited.err.decode(), r"\Avemora-triggers: backup backup.db: (database or disk is full|disk I/O"
                                               r" error)\n\Z")
        self.assertEqual(self.files(), before)

    def test_use_what_one_left_that_was_cut_short(self):
        self.write("backup.db.part", b"half of something")
        self.backup()
        self.assertFalse(os.path.exists(self.path("backup.db.part")))
        self.assertEqual(self.rows_in("backup.db"), self.rows())

    def test_follow_no_link_to_what_is_not_complete(self):
        self.write("precious", "kept")
        os.symlink("precious", self.path("backup.db.part"))
        self.assert_refused(f"backup backup.db: cannot make {self.real('backup.db.part')}: Too many levels of symbolic "
                            "links", "backup", "backup.db")
        os.remove(self.path("backup.db.part"))
        os.link(self.path("precious"), self.path("backup.db.part"))
        self.assert_refused(f"backup backup.db: {self.real('backup.db.part')} is no file of its own; remove it",
                            "backup", "backup.db")

    def test_to_one_file_do_not_mix(self):
        with open(self.path("backup.db.part"), "wb") as other:
            fcntl.flock(other, fcntl.LOCK_EX)
            self.assert_refused("backup backup.db: another backup is being written to it", "backup", "backup.db")

    def real(self, name):
        return os.path.join(os.path.realpath(self.folder), name)

    def test_take_the_place_of_nothing_else(self):
        occupied = "it is there already, and no backup of a site"
        part = self.real("missing/backup.db.part")
        for name, complaint in ((self.other_program(), occupied),
                                (self.write("small.txt", "night shift"), occupied),
                                (self.write("notes.txt", "night shift " * 100), occupied),
                                ("/dev/null", "it is no regular file"),
                                ("..", "it is a directory"),
                                ("missing/backup.db", f"cannot make {part}: No such file or directory")):
            with self.subTest(name):
                self.assert_refused(f"backup {name}: {complaint}", "backup", name)

    def test_are_never_written_over_a_site(self):
        os.link(self.database, self.path("second-name.db"))
        os.symlink("vemora.db", self.path("link.db"))
        for name in ("vemora.db", "second-name.db", "link.db"):
            with self.subTest(name):
                self.assert_refused(f"backup {name}: it is the database itself", "backup", name)
        self.assertEqual(self.run_tool("--database", "other.db", "init", "inventory.json").status, DONE)
        self.assert_refused(f"backup other.db: {self.real('other.db-wal')} lies there: it is a database at work, or was "
                            "one", "backup", "other.db")

    def test_get_no_log_that_lies_there(self):
        for suffix in ("-wal", "-journal"):
            self.write("backup.db" + suffix, b"of another file")
            self.assert_refused(f"backup backup.db: {self.real('backup.db' + suffix)} lies there: it is a database at "
                                "work, or was one", "backup", "backup.db")
            os.remove(self.path("backup.db" + suffix))

    def test_are_not_made_of_what_is_no_site_of_this_server(self):
        self.assert_refused("database vemora.db: it belongs to server 1, not to server 2", "backup", "backup.db",
                            options=("--server-id", "2"))
        self.assert_refused('there is no database none.db; "init" makes one', "backup", "backup.db",
                            options=("--database", "none.db"))
        self.other_program()
        self.assert_refused("database notes.db: it is a database of another program", "backup", "backup.db",
                            options=("--database", "notes.db"))

    def test_are_not_made_of_what_cannot_be_read(self):
        self.apply(config(*(trigger(number, topic_source("x" * 100)) for number in range(300))))
        content = bytearray(self.content("vemora.db"))
        content[8192:] = b"\xff" * (len(content) - 8192)
        self.write("damaged.db", bytes(content))
        outcome = self.run_tool("--database", "damaged.db", "backup", "backup.db")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        self.assertRegex(outcome.err.decode(), "database disk image is malformed\n")
        self.assertFalse(os.path.exists(self.path("backup.db")))

    def test_and_restores_wait_for_passes(self):
        self.backup()
        before = self.rows()
        with self.behind.locked():
            processes = [subprocess.Popen(self.command(command, "backup.db"), cwd=self.folder,
                                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                         for command in ("backup", "restore")]
            for process in processes:
                process.stdout, process.stderr = process.communicate(timeout=300)
                self.assertEqual((process.returncode, process.stdout, process.stderr.decode()), (
                    FAILED, b"", "vemora-triggers: database vemora.db: another process is at work on it; gave up after "
                                 "30000 ms\n"))
        self.assertEqual(self.rows(), before)


@on_sqlite
class Restores(Copies):
    def setUp(self):
        super().setUp()
        self.backup()
        self.before = self.rows()

    def assert_restored(self, but=("pending_camera",)):
        self.assertEqual({table: rows for table, rows in self.rows().items() if table not in but},
                         {table: rows for table, rows in self.before.items() if table not in but})

    def test_people_read_what_was_restored(self):
        self.apply(config())
        self.assertEqual(self.assert_done("restore", "backup.db").text,
                         "Restored: 1 trigger, 2 subscriptions, 2 cameras.\nCameras that the next pass reconciles: 1\n")
        self.assertEqual(self.assert_done("restore", "backup.db").text,
                         "Restored: 1 trigger, 2 subscriptions, 2 cameras.\nCameras that the next pass reconciles: 1\n")
        self.run_tool("refresh")
        self.assertEqual(self.assert_done("restore", "backup.db").text,
                         "Restored: 1 trigger, 2 subscriptions, 2 cameras.\n")

    def test_programs_read_what_was_restored(self):
        self.apply(config())
        self.assertEqual(self.assert_done("--json", "restore", "backup.db").json, {
            "success": True, "records": {"triggers": 1, "subscriptions": 2, "cameras": 2}, "pending": [10]})

    def test_bring_back_every_row_and_the_documents(self):
        self.init({"cameras": [{"id": 12, "name": "late"}], "schedules": [{"id": 3, "name": "late"}]})
        self.apply(config(*(trigger(number, topic_source()) for number in range(16))))
        self.assert_done("restore", "backup.db")
        self.assert_restored()
        self.assertEqual(self.show("config"), self.one_trigger())
        self.assertEqual(os.path.getsize(self.path(LOG)), 0)

    def test_get_no_log_replayed_into_them(self):
        self.apply(config(*(trigger(number, topic_source()) for number in range(16))))
        self.kill_a_writer("INSERT INTO schedule VALUES (77, 'late', 1)")
        self.assert_done("restore", "backup.db")
        self.assert_restored()

    def test_mend_a_database_that_a_backup_was_copied_over(self):
        shutil.copy(self.database, self.path("copy.db"))
        self.kill_a_writer("BEGIN;" + "".join(f"INSERT INTO trigger_record VALUES ({number}, 'of the log');"
                                              for number in range(100, 115)) + "COMMIT;")
        shutil.copy(self.path("copy.db"), self.database)
        self.assertEqual(len(self.show("triggers")), 16)  # the log that lay beside was replayed into the copy
        self.assert_done("restore", "copy.db")
        self.assert_restored()
        self.assertEqual(self.sql("PRAGMA integrity_check"), [("ok",)])

    def test_have_the_cameras_reconciled_whose_subscriptions_differ(self):
        for name, configuration, pending in (
                ("another topic", config(trigger(7, topic_source("tns1:RuleEngine/LineDetector/Crossed"),
                                                 tags=self.GATE)), [10]),
                ("another camera", config(trigger(7, tags=self.DOCK)), [10, 11]),
                ("one more camera", config(trigger(7)), [11]),
                ("another trigger", config(trigger(8, tags=self.GATE)), [10]),
                ("another name", config({**trigger(7, tags=self.GATE), "name": "renamed"}), []),
                ("no difference", self.one_trigger(), [])):
            with self.subTest(name):
                self.apply(configuration)
                self.assertEqual(self.assert_done("--json", "restore", "backup.db").json["pending"], pending)
                self.assertEqual(self.assert_done("--json", "refresh").json["reconciled"], pending)
                self.assertEqual(self.sql("SELECT camera_id FROM pending_camera"), [])

    def test_forget_no_camera_that_was_to_be_reconciled(self):
        self.sql("INSERT INTO pending_camera VALUES (11)")
        self.assertEqual(self.assert_done("--json", "restore", "backup.db").json["pending"], [11])

    def test_make_a_database_where_there_is_none(self):
        os.chmod(self.path("backup.db"), 0o640)
        outcome = self.run_tool("--database", "new.db", "--json", "restore", "backup.db")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        # What the cameras were asked for last, nobody knows.
        self.assertEqual(outcome.json["pending"], [10, 11])
        self.assertEqual(self.rows_in("new.db", but=["pending_camera"]),
                         self.rows_in("backup.db", but=["pending_camera"]))
        self.assertEqual(oct(stat.S_IMODE(os.stat(self.path("new.db")).st_mode)), oct(0o640))
        self.assertEqual(self.run_tool("--database", "new.db", "refresh").status, DONE)

    def test_take_an_empty_file_and_an_init_that_was_cut_short_for_no_database(self):
        self.write("empty.db", b"")
        connection = sqlite3.connect(self.path("cut.db"))
        connection.execute("PRAGMA journal_mode = WAL")
        connection.close()
        for name in ("empty.db", "cut.db"):
            with self.subTest(name):
                self.assertEqual(self.run_tool("--database", name, "restore", "backup.db").status, DONE)
                self.assertEqual(self.rows_in(name, but=["pending_camera"]),
                                 self.rows_in("backup.db", but=["pending_camera"]))

    def test_get_no_log_of_a_database_that_is_gone(self):
        self.kill_a_writer("UPDATE trigger_record SET name = 'of the log'")
        os.remove(self.database)
        self.assert_done("restore", "backup.db")
        self.assert_restored()

    def test_replace_what_is_damaged(self):
        self.apply(config(*(trigger(number, topic_source("x" * 100)) for number in range(300))))
        whole = self.content("vemora.db")
        for name, content in (("cut off", whole[:len(whole) // 3]),
                              ("cut within a page", whole[:5000]),
                              ("overwritten", whole[:100] + b"\xff" * (len(whole) - 100)),
                              ("overwritten behind the first page", whole[:4096] + b"\xff" * (len(whole) - 4096))):
            with self.subTest(name):
                self.write("damaged.db", content)
                outcome = self.run_tool("--database", "damaged.db", "--json", "restore", "backup.db")
                self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
                self.assertEqual(outcome.json["pending"], [10, 11])
                self.assertEqual(self.rows_in("damaged.db", but=["pending_camera"]),
                                 self.rows_in("backup.db", but=["pending_camera"]))
                self.assertEqual(self.content("damaged.db")[JOURNAL_MODE], 2)
                self.assertEqual(self.run_tool("--database", "damaged.db", "refresh").status, DONE)

    def test_take_copies_that_other_programs_made(self):
        self.apply(config())
        connection = sqlite3.connect(self.database)
        copied = sqlite3.connect(self.path("copy.db"))
        connection.backup(copied)
        copied.close()
        connection.close()
        self.assertEqual(self.content("copy.db")[JOURNAL_MODE], 2)
        self.assert_done("restore", "copy.db")
        self.assertEqual(self.show("triggers"), [])
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("copy.db")], ["copy.db"])

    def test_need_pages_as_large_as_those_of_the_database(self):
        connection = sqlite3.connect(self.path("backup.db"))
        connection.execute("PRAGMA page_size = 8192")
        connection.execute("VACUUM")
        connection.close()
        refusal = ("its pages have another size than those of the backup; move it away with the files beside it, then a "
                   "new one is made")
        self.assert_refused(f"database vemora.db: {refusal}", "restore", "backup.db")
        self.assertEqual(self.run_tool("--database", "new.db", "restore", "backup.db").status, DONE)
        self.assertEqual(self.rows_in("new.db", but=["pending_camera"]),
                         self.rows_in("backup.db", but=["pending_camera"]))
        self.write("damaged.db", self.content("vemora.db")[:5000])
        self.write("damaged.db.lock", b"")
        self.assert_refused(f"database damaged.db: {refusal}", "restore", "backup.db",
                            options=("--database", "damaged.db"))

    def test_by_hand_take_no_tool(self):
        self.kill_a_writer("INSERT INTO trigger_record VALUES (77, 'of the log')")
        for suffix in ("-wal", "-shm", "-journal"):
            if os.path.exists(self.database + suffix):
                os.remove(self.database + suffix)
        shutil.copy(self.path("backup.db"), self.path("new.db"))
        os.rename(self.path("new.db"), self.database)
        self.sql("INSERT OR IGNORE INTO pending_camera SELECT id FROM camera")
        self.assert_restored()
        self.assertEqual(self.assert_done("--json", "refresh").json["reconciled"], [10, 11])
        self.assertEqual(self.content("vemora.db")[JOURNAL_MODE], 2)

    def test_leave_who_reads_what_they_began_to_read(self):
        self.apply(config())
        reader = sqlite3.connect(self.database, isolation_level=None)
        self.addCleanup(reader.close)
        reader.execute("BEGIN")
        self.assertEqual(reader.execute("SELECT count(*) FROM trigger_record").fetchall(), [(0,)])
        self.assert_done("restore", "backup.db")
        self.assertEqual(reader.execute("SELECT count(*) FROM trigger_record").fetchall(), [(0,)])
        reader.execute("COMMIT")
        self.assertEqual(reader.execute("SELECT count(*) FROM trigger_record").fetchall(), [(1,)])
        self.assertEqual(reader.execute("PRAGMA integrity_check").fetchall(), [("ok",)])

    def test_are_seen_whole_or_not_at_all_by_who_reads_meanwhile(self):
        self.apply(config(*(trigger(number, topic_source()) for number in range(16))))
        self.backup("sixteen.db")
        seen, stop = [], threading.Event()

        def look():
            while not stop.is_set():
                outcome = self.run_tool("--json", "show", "triggers")
                seen.append((outcome.status, outcome.err, len(outcome.json)) if outcome.status == DONE
                            else (outcome.status, outcome.err, None))
        threads = [threading.Thread(target=look) for _ in range(2)]
        for thread in threads:
            thread.start()
        for _ in range(10):
            self.assert_done("restore", "backup.db")
            self.assert_done("restore", "sixteen.db")
        stop.set()
        for thread in threads:
            thread.join()
        self.assertLessEqual(set(seen), {(DONE, b"", 1), (DONE, b"", 16)})

    def test_that_find_no_room_leave_everything_as_it_was(self):
        self.apply(config(*(trigger(number, topic_source("x" * 100)) for number in range(3000))))
        self.backup("large.db")
        self.assert_done("restore", "backup.db")
        before = self.rows()
        limited = self.run_command(["sh", "-c", 'ulimit -f 200; exec "$@"', "sh", *self.command("restore", "large.db")])
        self.assertEqual((limited.status, limited.out), (FAILED, b""))
        self.assertEqual(self.rows(), before)
        self.assert_done("restore", "large.db")
        self.assertEqual(len(self.show("triggers")), 3000)


@on_sqlite
class Refused_Restores(Copies):
    def setUp(self):
        super().setUp()
        self.backup()

    def assert_no_backup(self, complaint, name, **options):
        self.assert_refused(f"backup {name}: {complaint}", "restore", name, **options)

    def test_what_is_no_database(self):
        self.assert_no_backup("No such file or directory", "missing.db")
        self.assert_no_backup("it is no regular file", "/dev/null")
        self.assert_no_backup("it is a directory", "..")
        self.assert_no_backup("it holds no site", self.write("empty.db", b""))
        self.assert_no_backup("file is not a database", self.write("notes.txt", "night shift " * 1000))
        self.assert_no_backup("file is not a database", self.write("small.txt", "night shift"))

    def test_what_is_another_programs(self):
        self.assert_no_backup("it is a database of another program", self.other_program())

    def test_what_is_newer(self):
        self.changed("backup.db", "UPDATE site SET schema_version = 99")
        self.assert_no_backup("it was made by a newer version of this program (schema 99, known up to 4)", "backup.db")

    def test_what_is_another_servers(self):
        self.changed("backup.db", "UPDATE site SET server_id = 42")
        self.assert_no_backup("it belongs to server 42, not to server 1", "backup.db")
        self.changed("backup.db", "UPDATE site SET server_id = -1")
        self.assert_no_backup("it belongs to server 18446744073709551615, not to server 1", "backup.db")

    def test_what_is_damaged(self):
        self.apply(config(*(trigger(number, topic_source("x" * 100)) for number in range(300))))
        whole = self.content(self.backup())
        self.write("cut.db", whole[:len(whole) // 2])
        self.assert_no_backup("database disk image is malformed", "cut.db")
        self.write("pages.db", whole[:-8192] + b"\xff" * 8192)
        outcome = self.run_tool("restore", "pages.db")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        self.assertRegex(outcome.err.decode(), r"\Avemora-triggers: backup pages.db: it is damaged: ")

    def test_what_lacks_a_table_or_a_column(self):
        self.changed("backup.db", "ALTER TABLE schedule RENAME COLUMN usable TO other")
        self.assert_no_backup("it is damaged: schedule.usable is missing", "backup.db")
        self.changed("backup.db", "DROP TABLE schedule")
        self.assert_no_backup("it is damaged: schedule.id is missing", "backup.db")
        self.changed("backup.db", "DROP TABLE site")
        self.assert_no_backup("no such table: site", "backup.db")

    def test_what_has_a_log(self):
        for suffix in ("-wal", "-journal"):
            self.write("backup.db" + suffix, b"something")
            real = os.path.join(os.path.realpath(self.folder), "backup.db" + suffix)
            self.assert_no_backup(f"{real} lies there with what was written last: it is a database at work, no backup; "
                                  "let \"backup\" make one of it", "backup.db")
            os.remove(self.path("backup.db" + suffix))

    def test_the_database_itself(self):
        os.symlink("vemora.db", self.path("link.db"))
        os.link(self.database, self.path("second-name.db"))
        for name in ("vemora.db", "link.db", "second-name.db"):
            self.assert_no_backup("it is the database itself", name)

    def test_into_what_is_not_ours(self):
        self.other_program()
        self.assert_refused("database notes.db: it is a database of another program", "restore", "backup.db",
                            options=("--database", "notes.db"))
        self.write("notes.txt", "night shift " * 1000)
        self.assert_refused("database notes.txt: file is not a database", "restore", "backup.db",
                            options=("--database", "notes.txt"))
        self.sql("UPDATE site SET schema_version = 99")
        self.assert_refused("database vemora.db: it was made by a newer version of this program (schema 99, known up to "
                            "4)", "restore", "backup.db")
        self.sql("UPDATE site SET schema_version = 4, server_id = 2")
        self.assert_refused("database vemora.db: it belongs to server 2, not to server 1", "restore", "backup.db")

    def test_into_a_folder_that_is_missing(self):
        self.assert_refused("database none/vemora.db: cannot make it: No such file or directory", "restore",
                            "backup.db", options=("--database", "none/vemora.db"))


@as_root_on_sqlite
class Copies_Of_Users(Users):
    def test_belong_to_the_owner_of_the_database(self):
        self.given_a_site(umask=0o027)
        self.assertEqual(self.run_tool("backup", "backup.db").status, DONE)
        self.assertEqual(self.traits("backup.db"), ("0o640", OWNER, GROUP))
        for name in ("vemora.db", LOG, INDEX, LOCK):
            os.remove(self.path(name))
        self.assertEqual(self.run_tool("restore", "backup.db").status, DONE)
        for name in ("vemora.db", LOG, INDEX, LOCK):
            self.assertEqual(self.traits(name), ("0o640", OWNER, GROUP), name)
        self.assertEqual(self.run_as(OWNER, "refresh").status, DONE)

    def test_are_not_for_who_may_only_read(self):
        self.given_a_site()
        self.assertEqual(self.run_as(OWNER, "backup", "backup.db").status, DONE)
        for command in ("backup", "restore"):
            outcome = self.run_as(COLLEAGUE, command, "backup.db")
            self.assertEqual((outcome.status, outcome.out, outcome.err), (
                FAILED, b"", b"vemora-triggers: database vemora.db: this user may only read it\n"))

    def test_are_shown_to_who_may_only_read_them(self):
        self.given_a_site()
        self.assertEqual(self.run_as(OWNER, "backup", "backup.db").status, DONE)
        os.chmod(self.folder, 0o755)
        before = self.files()
        outcome = self.run_as(STRANGER, "--database", "backup.db", "show", "cameras")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual(self.files(), before)

    def test_that_may_not_be_read_are_told(self):
        self.given_a_site()
        self.assertEqual(self.run_as(OWNER, "backup", "backup.db").status, DONE)
        os.chmod(self.path("backup.db"), 0)
        outcome = self.run_as(OWNER, "restore", "backup.db")
        self.assertEqual((outcome.status, outcome.out, outcome.err), (
            FAILED, b"", b"vemora-triggers: backup backup.db: unable to open database file\n"))


@on_postgresql
class Servers(Site):
    MESSAGES = {
        "backup": "backup copies SQLite databases; back up a PostgreSQL database with pg_dump",
        "restore": "restore replaces SQLite databases; restore a PostgreSQL database from what pg_dump wrote, with "
                   "pg_restore or psql"}

    def test_have_tools_of_their_own(self):
        for command, message in self.MESSAGES.items():
            told = self.run_tool(command, "backup.db")
            self.assertEqual((told.status, told.out, told.err.decode()), (
                WRONG_USAGE, b"", f"vemora-triggers: {message}\nRun with --help for more information.\n"))
            outcome = self.run_tool("--json", command, "backup.db")
            self.assertEqual((outcome.status, outcome.err, outcome.json), (
                WRONG_USAGE, b"", {"success": False, "errors": [{"message": message}]}))
        self.assertEqual(self.files(), {})


if __name__ == "__main__":
    unittest.main()
