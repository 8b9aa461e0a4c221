# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A site in a temporary folder, and `vemora-triggers` as a process on it.

    ENGINE=postgresql   the same tests over PostgreSQL: a schema each in the cluster that ctest starts
"""

import contextlib
import csv
import fcntl
import glob
import io
import itertools
import json
import os
import re
import shutil
import sqlite3
import subprocess
import tempfile
import unittest

from tester import psql_command, url

TOOL = os.environ["TOOL"]
ENGINE = os.environ.get("ENGINE", "sqlite")
LARGEST_ID = 18446744073709551615

DONE, TRIGGER_ERRORS, REJECTED, FAILED, WRONG_USAGE = 0, 1, 2, 3, 64

# What the parser says of a configuration that is a list.
NO_OBJECT = "Trigger configuration must be a JSON object."

MOTION = "tns1:VideoSource/MotionAlarm"
CROSSED = "tns1:RuleEngine/LineDetector/Crossed"


def camera(number, topics=(), tags=None, **others):
    """A camera of an inventory that can report these topics."""
    topic_filter = {"TopicFilter": {"capabilities": {topic: "" for topic in topics}}}
    return {"id": number, "name": f"camera {number}", "tags": tags or {},
            "capabilities": {"Metadata": {"Mode": {"capabilities": {"On": topic_filter}}}}, **others}


def small_inventory():
    return {
        "servers": [{"id": 1, "name": "one", "tags": {"site": "north"}}],
        "cameras": [camera(10, [MOTION, CROSSED], {"area": "gate"}, objectDetection=True, motionDetection=True),
                    camera(11, [MOTION], {"area": "dock"}, objectDetection=True)],
        "schedules": [{"id": 1, "name": "always"}, {"id": 2, "name": "expired", "usable": False}],
        "eventCategories": [{"id": 1, "name": "access"}],
        "subscriptions": [{"id": 3, "name": "door forced", "categoryId": 1, "tags": {"door": "main"},
                           "cameraIds": [11, 10]}],
        "objectTypes": {"vehicle": ["car", "truck"]},
    }


def topic_source(topic=MOTION):
    return {"type": "onvif-metadata", "onvifTopic": topic}


def object_source(object_type="person", **others):
    return {"type": "object-detection", "searchItem": {"type": object_type}, **others}


def trigger(number, *sources, **others):
    return {"id": number, "name": f"trigger {number}", "tags": {}, "sources": list(sources) or [topic_source()],
            **others}


def config(*triggers, **others):
    return {"triggers": list(triggers), **others}


def mapping(*associations):
    return {"triggerMapping": [{"scheduleIds": schedules, "triggerIds": triggers}
                               for schedules, triggers in associations]}


class Outcome:
    """What a process answered."""

    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout
        self.err = process.stderr

    @property
    def text(self):
        return self.out.decode("utf-8")

    @property
    def json(self):
        """Standard output, which must be exactly one JSON object or array."""
        value = json.loads(self.out.decode("ascii"))
        assert isinstance(value, (dict, list)), value
        return value


on_sqlite = unittest.skipIf(ENGINE != "sqlite", "about the files of SQLite, or texts that it alone can hold")
on_postgresql = unittest.skipIf(ENGINE != "postgresql", "about texts that PostgreSQL cannot hold")

# A character that a name may have and that most programs stumble over, where the database can hold it.
NUL = "\0" if ENGINE == "sqlite" else ""


class SQLite:
    """The database behind the tool's back: the file that the tool makes when it is given no other."""

    def __init__(self, folder):
        self.location = os.path.join(folder, "vemora.db")
        self.shown = "vemora.db"
        self.arguments = []
        self.absent = "none.db"
        self.absence = 'there is no database none.db; "init" makes one'

    def sql(self, statement, *values):
        connection = sqlite3.connect(self.location)
        try:
            with connection:
                return connection.execute(statement, values).fetchall()
        finally:
            connection.close()

    def rows(self):
        """Every row of every table."""
        tables = self.sql("SELECT name FROM sqlite_master WHERE type = 'table'")
        return {table: sorted(self.sql(f"SELECT * FROM {table}"), key=repr) for (table,) in tables}

    @contextlib.contextmanager
    def locked(self):
        """Holds what a pass holds."""
        with open(self.location + ".lock", "wb") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            yield

    def all(self):
        """What databases there are."""
        return glob.glob(os.path.join(os.path.dirname(self.location), "*.db*"))

    def drop(self):
        pass  # it goes with its folder


class PostgreSQL:
    """The same in a schema of its own."""

    numbers = itertools.count(1)

    def __init__(self, _folder):
        self.schema = f"tool_{os.getpid()}_{next(self.numbers)}"
        self.location = url(self.schema)
        self.shown = self.location
        self.arguments = ["--database", self.location]
        self.absent = f"{self.location}_absent"
        self.absence = f'database {self.absent}: it holds no site; "init" makes one'

    def sql(self, statement, *values):
        texts = [str(value) if isinstance(value, int) else "'" + value.replace("'", "''") + "'" for value in values]
        parts = statement.split("?")
        whole = parts[0] + "".join(text + part for text, part in zip(texts, parts[1:], strict=True))
        done = subprocess.run(
            psql_command("--pset", "null=NULL"), capture_output=True, text=True, check=True,
            input=f"SET client_min_messages = error; SET search_path = {self.schema};\n{whole};\n")
        return [tuple(self.value_of(text) for text in row) for row in csv.reader(io.StringIO(done.stdout))]

    @staticmethod
    def value_of(text):
        """As SQLite would answer it."""
        if re.fullmatch(r"-?[0-9]+", text):
            return int(text)
        return {"NULL": None, "t": 1, "f": 0}.get(text, text)

    def rows(self):
        tables = self.sql("SELECT tablename FROM pg_tables WHERE schemaname = current_schema()")
        return sorted(self.sql(" UNION ALL ".join(f"SELECT '{table}', row::text FROM {table} row"
                                                  for (table,) in tables)))

    @contextlib.contextmanager
    def locked(self):
        with subprocess.Popen(psql_command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as holder:
            holder.stdin.write("SELECT pg_try_advisory_lock(hashtextextended('vemora ' || "
                               f"'{self.schema}', 0));\n")
            holder.stdin.flush()
            assert holder.stdout.readline() == "t\n"
            yield

    def all(self):
        return self.sql("SELECT nspname FROM pg_namespace WHERE nspname LIKE ?", f"{self.schema}%")

    def drop(self):
        self.sql(f"DROP SCHEMA IF EXISTS {self.schema} CASCADE")


class Site(unittest.TestCase):
    """Each test has a folder of its own, and a fresh database."""

    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.behind = (PostgreSQL if ENGINE == "postgresql" else SQLite)(self.folder)
        self.database = self.behind.location
        self.addCleanup(self.behind.drop)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, document):
        """Writes a document, given as a value, a text or bytes; answers its name."""
        if not isinstance(document, (str, bytes)):
            document = json.dumps(document)
        if isinstance(document, str):
            document = document.encode("utf-8")
        with open(self.path(name), "wb") as file:
            file.write(document)
        return name

    def command(self, *arguments):
        """The command line of the tool, on the database of this test unless it names another."""
        elsewhere = any(str(argument).startswith("--database") for argument in arguments)
        return [TOOL, *([] if elsewhere else self.behind.arguments), *arguments]

    def run_tool(self, *arguments, given=None, **options):
        return self.run_command(self.command(*arguments), input=given or b"", **options)

    def run_command(self, command, **options):
        process = subprocess.run(command, cwd=self.folder, stdout=options.pop("stdout", subprocess.PIPE),
                                 stderr=subprocess.PIPE, timeout=300, check=False, **options)
        return Outcome(process)

    def init(self, inventory=None):
        """Makes the site, which must succeed."""
        name = self.write("inventory.json", small_inventory() if inventory is None else inventory)
        outcome = self.run_tool("init", name)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)

    def apply(self, configuration, associations=None, expected=DONE):
        """Applies documents and answers the JSON outcome."""
        names = [self.write("config.json", configuration)]
        if associations is not None:
            names.append(self.write("mapping.json", associations))
        outcome = self.run_tool("--json", "apply", *names)
        self.assertEqual(outcome.status, expected, outcome.out)
        return outcome.json

    def check(self, configuration, associations=None, expected=REJECTED):
        names = [self.write("config.json", configuration)]
        if associations is not None:
            names.append(self.write("mapping.json", associations))
        outcome = self.run_tool("--json", "check", *names)
        self.assertEqual(outcome.status, expected, outcome.out)
        return outcome.json

    def show(self, what):
        outcome = self.run_tool("--json", "show", what)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        return outcome.json

    def sql(self, statement, *values):
        """Reads or writes the database behind the tool's back."""
        return self.behind.sql(statement, *values)

    def rows(self):
        """Every row of every table."""
        return self.behind.rows()

    def rows_but_history(self):
        rows = self.rows()
        if ENGINE == "sqlite":
            return {table: rows[table] for table in rows if not table.startswith("history_")}
        return [row for row in rows if not row[0].startswith("history_")]

    def files(self):
        """Every file of the folder with its bytes."""
        found = {}
        for name in sorted(os.listdir(self.folder)):
            with open(self.path(name), "rb") as file:
                found[name] = file.read()
        return found
