# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Runs commands of the tool with a fault at one point after the other, and has each judged."""

import collections
import json
import os
import shutil
import sqlite3
import tempfile
import unittest

import judge
import small_site
from fault_server import Fault_Server
from remains import Onlooker, read_files

TOOL = os.environ["TOOL"]
LIBRARY = os.environ["FAULT_SERVER_LIBRARY"]
FIRST_TABLES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "vemora", "embedded_server",
                            "persistent", "schema", "sqlite", "001_site.sql")


def remove_database(path):
    for suffix in ("", "-wal", "-shm"):
        if os.path.exists(path + suffix):
            os.remove(path + suffix)


class Campaign:
    def __init__(self):
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.top = tempfile.mkdtemp(dir=memory)
        self.work = os.path.join(self.top, "work")
        self.onlooker = Onlooker(os.path.join(self.top, "look"))
        self.server = Fault_Server(TOOL, LIBRARY, trace="FAULT_TRACE" in os.environ)
        self.repeated = {}
        self.write_templates()

    def close(self):
        self.server.close()
        shutil.rmtree(self.top)

    # Templates are folders to begin with.

    def template(self, name):
        return os.path.join(self.top, name)

    def write_templates(self):
        os.mkdir(self.template("empty"))
        documents = {"inventory.json": small_site.inventory(), "changed.json": small_site.changed_inventory(),
                     "before.json": small_site.config_before(), "before_mapping.json": small_site.mapping_before(),
                     "after.json": small_site.config_after(), "after_mapping.json": small_site.mapping_after(),
                     "pruned.json": small_site.pruned_inventory(), "wide.json": small_site.wide_inventory(),
                     "faulty.json": small_site.faulty_config(), "faulty_site.json": small_site.faulty_inventory()}
        for name, document in documents.items():
            with open(os.path.join(self.template("empty"), name), "w", encoding="utf-8") as file:
                json.dump(document, file, indent=1)
        self.derive("empty", "new", ["init", "inventory.json"])
        self.derive("new", "site", ["apply", "before.json", "before_mapping.json"])
        self.derive("site", "moved", ["init", "changed.json"])
        self.derive("site", "pruned", ["init", "--prune", "pruned.json"])
        self.derive("new", "wide", ["init", "wide.json"])
        self.derive("site", "backed_up", ["backup", "backup.db"])
        self.derive("backed_up", "moved_on", ["init", "changed.json"])
        self.derive("site", "changed", ["apply", "after.json", "after_mapping.json"])
        self.make_older("site", "older")
        self.make_older("changed", "older_changed")

    def derive(self, origin, name, arguments):
        shutil.copytree(self.template(origin), self.template(name))
        run = self.server.run(arguments, self.template(name))
        if run.status != judge.DONE:
            raise AssertionError(f"{arguments}: {run}")

    def make_older(self, origin, name):
        """The same site in the tables of the first version."""
        shutil.copytree(self.template(origin), self.template(name))
        database = os.path.join(self.template(name), "vemora.db")
        remove_database(database)
        connection = sqlite3.connect(database)
        with open(FIRST_TABLES, encoding="utf-8") as file:
            connection.executescript(file.read())
        connection.execute("ATTACH ? AS today", (os.path.join(self.template(origin), "vemora.db"),))
        for table, columns in connection.execute(
                "SELECT m.name, group_concat(c.name) FROM main.sqlite_master m, pragma_table_info(m.name) c "
                "WHERE m.type = 'table' GROUP BY m.name").fetchall():
            connection.execute(f"INSERT INTO main.{table} ({columns}) SELECT {columns} FROM today.{table}")
        connection.execute("UPDATE main.site SET schema_version = 1")
        for pragma in ("application_id", "user_version"):
            [(number,)] = connection.execute(f"PRAGMA today.{pragma}")
            connection.execute(f"PRAGMA main.{pragma} = {number}")
        connection.commit()
        connection.execute("DETACH today")
        connection.execute("PRAGMA main.journal_mode = WAL")
        connection.close()

    def cases(self):
        yield judge.Case("init, a new site", "empty", ["init", "inventory.json"])
        yield judge.Case("init, a new site, JSON", "empty", ["--json", "init", "inventory.json"])
        yield judge.Case("init, a changed site", "site", ["init", "changed.json"])
        yield judge.Case("init --prune", "site", ["init", "--prune", "pruned.json"])
        yield judge.Case("init --prune, JSON", "site", ["--json", "init", "--prune", "pruned.json"])
        yield judge.Case("init --prune, refused", "wide", ["--json", "init", "--prune", "inventory.json"])
        yield judge.Case("init, a faulty document", "site", ["--json", "init", "faulty_site.json"])
        yield judge.Case("apply, the first one", "new", ["--json", "apply", "before.json", "before_mapping.json"])
        yield judge.Case("apply", "site", ["apply", "after.json", "after_mapping.json"])
        yield judge.Case("apply, JSON", "site", ["--json", "apply", "after.json", "after_mapping.json"])
        yield judge.Case("apply, with a log", "site",
                         ["--log-level=trace", "--json", "apply", "after.json", "after_mapping.json"])
        yield judge.Case("apply, a faulty document", "site", ["--json", "apply", "faulty.json"])
        yield judge.Case("refresh, a changed site", "moved", ["--json", "refresh"])
        yield judge.Case("refresh, text", "moved", ["refresh"])
        yield judge.Case("refresh, a pruned site", "pruned", ["--json", "refresh"])
        yield judge.Case("refresh, nothing to do", "changed", ["--json", "refresh"])
        yield judge.Case("init, older tables", "older", ["init", "changed.json"])
        yield judge.Case("apply, older tables", "older", ["--json", "apply", "after.json", "after_mapping.json"])
        yield judge.Case("apply, older tables, a faulty document", "older", ["--json", "apply", "faulty.json"])
        yield judge.Case("refresh, older tables, nothing to do", "older_changed", ["--json", "refresh"])
        yield judge.Case("backup", "site", ["backup", "backup.db"])
        yield judge.Case("backup, JSON, over an older one", "moved_on", ["--json", "backup", "backup.db"])
        yield judge.Case("restore", "moved_on", ["restore", "backup.db"])
        yield judge.Case("restore, JSON", "moved_on", ["--json", "restore", "backup.db"])
        yield judge.Case("check", "site", ["--json", "check", "after.json", "after_mapping.json"])
        yield judge.Case("check, text", "site", ["check", "after.json"])
        yield judge.Case("check, a faulty document", "site", ["--json", "check", "faulty.json"])
        yield judge.Case("check, a faulty document, text", "site", ["check", "faulty.json"])
        for what in ("triggers", "subscriptions", "detection", "cameras", "config", "mapping"):
            yield judge.Case(f"show {what}", "changed", ["show", what])
            yield judge.Case(f"show {what}, JSON", "changed", ["--json", "show", what])

    def refill(self, template):
        shutil.rmtree(self.work, ignore_errors=True)
        os.mkdir(self.work)
        origin = self.template(template)
        for name in os.listdir(origin):
            shutil.copyfile(os.path.join(origin, name), os.path.join(self.work, name))

    def prepare(self, case):
        """Runs it undisturbed."""
        self.refill(case.template)
        case.before = self.onlooker.look(self.work)
        case.undisturbed = self.server.run(case.arguments, self.work)
        case.after = self.onlooker.look(self.work)
        if case.undisturbed.signal or case.after.faults or case.after.pending:
            raise AssertionError(f"{case.name}: {case.undisturbed}, {case.after.faults}")
        case.reconciled = set()
        if case.is_pass and case.undisturbed.status == judge.DONE:
            self.refill(case.template)
            arguments = case.arguments if case.json else ["--json", *case.arguments]
            case.reconciled = set(json.loads(self.server.run(arguments, self.work).out)["reconciled"])

    def attempt(self, case, fault, out=None):
        """What is wrong about a run with a fault, and the run."""
        self.refill(case.template)
        run = self.server.run(case.arguments, self.work, fault, out)
        left = self.onlooker.look(self.work)
        found = judge.complaints(case, run, left, out_was_lost=out is not None)
        if not found:
            found = self.repeat(case)
        return found, run

    def repeat(self, case):
        """Without a fault, the same command comes to what an undisturbed run does."""
        files = (case.name, read_files(self.work), tuple(sorted(os.listdir(self.work))))
        if files in self.repeated:
            return self.repeated[files]
        run = self.server.run(case.arguments, self.work)
        left = self.onlooker.look(self.work)
        found = [f"repeated: damaged: {fault}" for fault in left.faults]
        if (run.status, run.signal) != (case.undisturbed.status, 0):
            found.append(f"repeated: exit status {run.status}, {judge.text_of(run)[:200]}")
        elif not judge.same_but_for_their_tables(left, case.after):
            found.append("repeated: ends in other records")
        self.repeated[files] = found
        return found

    def run(self, case, faults_at, report):
        """Tries `faults_at(n)` for each number that it is given."""
        tally = collections.Counter()
        for number, fault in faults_at:
            found, run = self.attempt(case, fault)
            tally[f"exit {run.status}" if not run.signal else f"signal {run.signal}"] += 1
            if not run.failed:
                tally["beyond the end"] += 1
            for complaint in found:
                report(case, number, fault, complaint, run)
        return tally


class Campaign_Test(unittest.TestCase):
    """Counts what is wrong by command and complaint, with the first example of each."""

    def setUp(self):
        self.campaign = Campaign()
        self.addCleanup(self.campaign.close)
        self.complaints = collections.Counter()
        self.examples = {}
        self.total = collections.Counter()

    def where(self, number, fault):
        """Names a point in a complaint."""
        raise NotImplementedError

    def report(self, case, number, fault, complaint, run):
        key = (case.name, complaint)
        self.complaints[key] += 1
        if key not in self.examples:
            said = (run.out + run.err).decode("utf-8", "replace")[:300]
            self.examples[key] = f"first at {self.where(number, fault)}, exit {run.status}: {said!r}"

    def try_points(self, case, numbers, fault_at):
        """The last number lies behind the last point: that nothing fails there shows that the end was reached."""
        tally = self.campaign.run(case, ((number, fault_at(number)) for number in numbers), self.report)
        self.assertGreater(tally["beyond the end"], 0)
        self.total += tally
        return dict(tally)

    def assert_no_complaints(self):
        print(f"{sum(self.total.values()) - self.total['beyond the end']} points: {dict(self.total)}")
        self.assertFalse(self.complaints, "\n".join(
            f"{name}: {complaint}: {count} times, {self.examples[name, complaint]}"
            for (name, complaint), count in sorted(self.complaints.items())))
