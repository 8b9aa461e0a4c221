# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The files of a site: the lock, the log, and who may do what with them."""

import fcntl
import os
import shutil
import stat
import subprocess
import threading
import unittest

from other_users import COLLEAGUE, GROUP, OWNER, STRANGER, Users, as_root_on_sqlite
from tool_site import DONE, FAILED, Outcome, Site, config, on_sqlite, topic_source, trigger

LOCK, LOG, INDEX = "vemora.db.lock", "vemora.db-wal", "vemora.db-shm"


def message(text):
    return f"vemora-triggers: database vemora.db: {text}\n"


@on_sqlite
class Lock_Files(Site):
    def setUp(self):
        super().setUp()
        self.init()
        os.remove(self.path(LOCK))
        self.lock = os.path.realpath(self.path(LOCK))

    def mode(self, name):
        return oct(stat.S_IMODE(os.stat(self.path(name)).st_mode))

    def assert_refused(self, text):
        for command in (["init", "inventory.json"], ["refresh"]):
            outcome = self.run_tool(*command)
            self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (FAILED, b"", message(text)))
        self.assertEqual(self.run_tool("show", "cameras").status, DONE)  # who only reads needs none

    def test_have_the_mode_of_the_database(self):
        for mode in (0o600, 0o640, 0o664):
            with self.subTest(oct(mode)):
                os.chmod(self.database, mode)
                self.assertEqual(self.run_tool("refresh").status, DONE)
                self.assertEqual(self.mode(LOCK), oct(mode))

    def test_are_no_links(self):
        os.symlink("elsewhere", self.lock)
        self.assert_refused(f"the lock file {self.lock} is a symbolic link; remove it")
        self.assertFalse(os.path.exists(self.path("elsewhere")))
        self.write("elsewhere", "kept")
        self.assert_refused(f"the lock file {self.lock} is a symbolic link; remove it")

    def test_are_regular_files(self):
        os.mkfifo(self.lock)
        self.assert_refused(f"the lock file {self.lock} is no regular file; remove it")
        os.remove(self.lock)
        os.mkdir(self.lock)
        self.assert_refused(f"cannot open the lock file {self.lock}: Is a directory")

    def test_that_were_deleted_meanwhile_are_no_lock(self):
        self.run_tool("refresh")
        waiting = None
        with open(self.lock, "wb") as first:
            fcntl.flock(first, fcntl.LOCK_EX)
            waiting = subprocess.Popen(self.command("refresh"), cwd=self.folder, stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE)
            self.wait_until_open_in(waiting.pid, self.lock)
            os.remove(self.lock)
            second = open(self.lock, "wb")
            fcntl.flock(second, fcntl.LOCK_EX)
        with self.assertRaises(subprocess.TimeoutExpired):  # it waits for the file that is there now
            waiting.wait(timeout=1)
        second.close()
        waiting.stdout, waiting.stderr = waiting.communicate(timeout=60)
        self.assertEqual(Outcome(waiting).status, DONE)

    def wait_until_open_in(self, process, path):
        while True:
            try:
                if path in [os.readlink(f"/proc/{process}/fd/{number}")
                            for number in os.listdir(f"/proc/{process}/fd")]:
                    return
            except FileNotFoundError:
                pass


@as_root_on_sqlite
class Lock_Files_Of_Users(Users):
    def test_that_root_makes_belong_to_the_owner_of_the_database(self):
        self.given_a_site(umask=0o027)
        os.remove(self.path(LOCK))
        self.assertEqual(self.run_tool("refresh").status, DONE)
        self.assertEqual(self.traits(LOCK), ("0o640", OWNER, GROUP))
        self.assertEqual(self.run_as(OWNER, "refresh").status, DONE)

    def test_that_a_colleague_makes_are_of_the_group(self):
        self.given_a_site(mode=0o664)
        os.chmod(self.folder, 0o775)
        os.chown(self.database, OWNER, GROUP)
        os.remove(self.path(LOCK))
        self.assertEqual(self.run_as(COLLEAGUE, "refresh", umask=0o077).status, DONE)
        self.assertEqual(self.traits(LOCK), ("0o664", COLLEAGUE, GROUP))
        self.assertEqual(self.run_as(OWNER, "refresh").status, DONE)

    def test_of_another_user_that_may_not_be_opened_are_told(self):
        self.given_a_site()
        os.chown(self.path(LOCK), STRANGER, STRANGER)
        os.chmod(self.path(LOCK), 0o600)
        outcome = self.run_as(OWNER, "refresh")
        self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (FAILED, b"", message(
            f"cannot open the lock file {os.path.realpath(self.path(LOCK))}: Permission denied; it belongs to user "
            f"{STRANGER}: give it the owner and the mode of the database")))


@on_sqlite
class Logs(Site):
    def test_are_kept_and_empty_after_every_command(self):
        self.init()
        self.write("config.json", config(trigger(7, topic_source())))
        for command in (["apply", "config.json"], ["refresh"], ["show", "triggers"], ["check", "config.json"],
                        ["init", "inventory.json"]):
            with self.subTest(command):
                self.assertEqual(self.run_tool(*command).status, DONE)
                self.assertEqual(os.path.getsize(self.path(LOG)), 0)
                self.assertTrue(os.path.exists(self.path(INDEX)))

    def test_are_no_links(self):
        self.init()
        self.write("precious", "kept")
        for suffix in ("-wal", "-shm", "-journal"):
            for target in ("precious", "missing"):
                link = self.path("vemora.db" + suffix)
                if os.path.lexists(link):
                    os.remove(link)
                os.symlink(target, link)
                for command in (["show", "cameras"], ["refresh"]):
                    with self.subTest(suffix, target=target, command=command):
                        outcome = self.run_tool(*command)
                        self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (
                            FAILED, b"", message(f"{os.path.realpath(self.database)}{suffix} is a symbolic link; remove "
                                                 "it")))
                os.remove(link)
        self.assertEqual(self.files()["precious"], b"kept")
        self.assertNotIn("missing", self.files())
        self.assertEqual(self.run_tool("refresh").status, DONE)

    def test_of_a_process_that_was_killed_are_empty_after_the_next_command(self):
        self.init()
        shutil.copy(self.database, self.path("before.db"))
        self.sql("PRAGMA journal_mode = WAL")
        crash = ("import os, sqlite3; c = sqlite3.connect('vemora.db'); "
                 "c.execute(\"INSERT INTO schedule VALUES (77, 'late', 1)\"); c.commit(); os._exit(0)")
        self.run_command(["python3", "-c", crash])
        self.assertGreater(os.path.getsize(self.path(LOG)), 0)
        self.assertEqual(self.run_tool("show", "cameras").status, DONE)
        self.assertEqual(os.path.getsize(self.path(LOG)), 0)
        self.assertEqual(self.sql("SELECT name FROM schedule WHERE id = 77"), [("late",)])

    def test_are_not_replayed_into_a_copy_that_is_put_in_the_place_of_the_database(self):
        self.init()
        shutil.copy(self.database, self.path("empty.db"))
        self.apply(config(*(trigger(number, topic_source()) for number in range(16))))
        shutil.copy(self.path("empty.db"), self.database)
        self.assertEqual(self.show("triggers"), [])


@as_root_on_sqlite
class Logs_Of_Users(Users):
    def assert_done(self, user, *arguments, **options):
        outcome = self.run_as(user, *arguments, **options)
        self.assertEqual((outcome.status, outcome.err.decode()), (DONE, ""))
        return outcome

    def assert_failed(self, user, text, *arguments, **options):
        outcome = self.run_as(user, *arguments, **options)
        self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (FAILED, b"", message(text)))

    def test_have_the_owner_and_the_mode_of_the_database(self):
        self.given_a_site(umask=0o027)
        self.assertEqual(self.traits(LOG), ("0o640", OWNER, GROUP))
        self.assertEqual(self.traits(INDEX), ("0o640", OWNER, GROUP))

    def test_are_the_owners_when_root_makes_them(self):
        self.given_a_site(umask=0o027)
        self.forget_logs()
        self.assertEqual(self.run_tool("show", "cameras").status, DONE)
        self.assertEqual(self.traits(LOG), ("0o640", OWNER, GROUP))
        self.assertEqual(self.traits(INDEX), ("0o640", OWNER, GROUP))

    def test_are_of_the_group_when_a_colleague_makes_them(self):
        self.given_a_site(mode=0o664)
        os.chmod(self.folder, 0o775)
        self.forget_logs()
        self.assert_done(COLLEAGUE, "show", "cameras", umask=0o077)
        self.assertEqual(self.traits(LOG), ("0o664", COLLEAGUE, GROUP))
        self.assertEqual(self.traits(INDEX), ("0o664", COLLEAGUE, GROUP))
        self.assert_done(OWNER, "refresh")

    def test_that_a_colleague_reads_with_do_not_keep_the_owner_from_writing(self):
        self.given_a_site()
        self.assert_done(COLLEAGUE, "show", "cameras")
        self.assert_done(OWNER, "init", "inventory.json")
        self.assert_done(OWNER, "refresh")
        self.assertEqual(self.traits(INDEX), ("0o644", OWNER, GROUP))

    def test_are_not_made_by_who_may_only_read(self):
        self.given_a_site()
        self.forget_logs()
        for command in (["show", "cameras"], ["refresh"]):
            self.assert_failed(COLLEAGUE, f"this user may only read it, and {os.path.realpath(self.path(LOG))} is not "
                               "there, which that takes; any command of a user who may write it makes that file",
                               *command)
        self.assertFalse(os.path.exists(self.path(LOG)) or os.path.exists(self.path(INDEX)))
        self.assert_done(OWNER, "show", "cameras")
        self.assert_done(COLLEAGUE, "show", "cameras")

    def test_let_who_may_only_read_see_the_site(self):
        self.given_a_site()
        os.chmod(self.folder, 0o755)
        self.write("config.json", config(trigger(7, topic_source())))
        self.assert_done(OWNER, "apply", "config.json")
        before = self.files()
        shown = self.assert_done(STRANGER, "show", "triggers").text
        self.assertIn("trigger 7", shown)
        self.assert_done(STRANGER, "check", "config.json")
        self.assertEqual(self.files(), before)

    def test_let_who_may_only_read_see_what_a_killed_process_left_in_them(self):
        self.given_a_site()
        os.chmod(self.folder, 0o755)
        crash = ("import os, sqlite3; c = sqlite3.connect('vemora.db'); "
                 "c.execute(\"UPDATE camera SET name = 'renamed'\"); c.commit(); os._exit(0)")
        self.run_command(["python3", "-c", crash])
        self.assertGreater(os.path.getsize(self.path(LOG)), 0)
        self.assertIn("renamed", self.assert_done(STRANGER, "show", "cameras").text)
        self.assertIn("renamed", self.assert_done(OWNER, "show", "cameras").text)

    def test_let_who_may_only_read_look_on_while_passes_run(self):
        self.given_a_site()
        os.chmod(self.folder, 0o755)
        for number in range(1, 9):
            self.write(f"{number}.json", config(*(trigger(id, topic_source()) for id in range(number))))
        seen, stop = [], threading.Event()

        def look():
            while not stop.is_set():
                outcome = self.run_as(STRANGER, "--json", "show", "triggers")
                seen.append((outcome.status, outcome.err.decode(),
                             {record["id"] for record in outcome.json} if outcome.status == DONE else None))
        threads = [threading.Thread(target=look) for _ in range(2)]
        for thread in threads:
            thread.start()
        for number in range(1, 9):
            self.assert_done(OWNER, "apply", f"{number}.json")
        stop.set()
        for thread in threads:
            thread.join()
        self.assertGreater(len(seen), 4)
        for status, complaint, triggers in seen:
            self.assertEqual((status, complaint), (DONE, ""))
            self.assertEqual(triggers, set(range(len(triggers))))

    def test_that_were_just_made_are_read_by_who_may_only_read(self):
        self.given_a_site()
        os.chmod(self.folder, 0o755)
        for name in (LOG, INDEX):
            os.truncate(self.path(name), 0)
        self.assertIn("gate", self.assert_done(STRANGER, "show", "cameras").text)

    def test_leave_passes_to_who_may_write(self):
        self.given_a_site()
        for command in (["refresh"], ["init", "inventory.json"]):
            self.assert_failed(COLLEAGUE, "this user may only read it", *command)

    def test_of_another_user_are_told_to_who_cannot_write_for_them(self):
        self.given_a_site()
        os.chown(self.path(INDEX), COLLEAGUE, GROUP)
        self.assert_failed(OWNER, f"this user may not write {os.path.realpath(self.path(INDEX))}, which belongs to "
                           f"user {COLLEAGUE}: give it the owner and the mode of the database", "refresh")
        self.assert_done(OWNER, "show", "cameras")

    def test_that_cannot_be_made_are_told(self):
        self.given_a_site(mode=0o666)
        self.forget_logs()
        os.chmod(self.folder, 0o755)
        self.assert_failed(STRANGER, f"cannot make {os.path.realpath(self.path(LOG))}: Permission denied",
                           "show", "cameras")


@on_sqlite
class Moved_Databases(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.write("config.json", config(trigger(7, topic_source())))
        self.gone = message("the file that was opened is not there any more: it was deleted, moved or replaced")

    def run_while(self, action, *command):
        """Runs a command that opens the database before that happens, and begins its work after it."""
        with self.behind.locked():
            process = subprocess.Popen(self.command(*command), cwd=self.folder, stdin=subprocess.DEVNULL,
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            lock = os.path.realpath(self.path(LOCK))
            while lock not in self.files_open_in(process.pid):
                pass
            action()
        process.stdout, process.stderr = process.communicate(timeout=60)
        return Outcome(process)

    @staticmethod
    def files_open_in(process):
        try:
            return [os.readlink(f"/proc/{process}/fd/{number}") for number in os.listdir(f"/proc/{process}/fd")]
        except FileNotFoundError:
            return []

    def assert_noticed(self, action):
        for command in (["apply", "config.json"], ["refresh"], ["init", "inventory.json"]):
            self.init()
            with self.subTest(command):
                outcome = self.run_while(action, *command)
                self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (FAILED, b"", self.gone))

    def move(self):
        for name in ("vemora.db", LOG, INDEX):
            if os.path.exists(self.path(name)):
                os.rename(self.path(name), self.path("moved-" + name))

    def test_are_noticed_when_they_are_deleted(self):
        self.assert_noticed(lambda: os.remove(self.database))

    def test_are_noticed_when_they_are_moved(self):
        self.assert_noticed(self.move)

    def test_are_noticed_when_they_are_replaced(self):
        def replace():
            shutil.copy(self.database, self.path("other.db"))
            os.rename(self.path("other.db"), self.database)
        self.assert_noticed(replace)

    def test_are_noticed_when_a_link_to_them_leads_elsewhere(self):
        self.init()
        shutil.copy(self.database, self.path("other.db"))
        os.symlink("vemora.db", self.path("link.db"))

        def turn():
            os.remove(self.path("link.db"))
            os.symlink("other.db", self.path("link.db"))
        outcome = self.run_while(turn, "--database", "link.db", "refresh")
        self.assertEqual((outcome.status, outcome.out), (FAILED, b""))
        self.assertIn("the file that was opened is not there any more", outcome.err.decode())


if __name__ == "__main__":
    unittest.main()
