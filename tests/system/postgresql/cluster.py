# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The PostgreSQL that ctest starts for the tests, and sites of many sizes in it."""

import itertools
import json
import os
import shutil
import subprocess
import tempfile
import unittest

from tester import psql_command, url

TOOL = os.environ["TOOL"]
CLUSTER_SCRIPT = os.environ["CLUSTER_SCRIPT"]

DONE, FAILED = 0, 3

numbers = itertools.count(1)


def cluster(action, notes):
    subprocess.run([CLUSTER_SCRIPT, action, notes], check=True)


def psql(statements, folder=None, port=None):
    done = subprocess.run(psql_command("--command", statements, folder=folder, port=port), capture_output=True,
                          text=True, check=True)
    return done.stdout


# All the records that a pass writes, but for the ids that it gives out, as one text.
RECORDS = """
SELECT 'trigger', id, name, '', '' FROM trigger_record
UNION ALL SELECT 'source', trigger_id, onvif_topic, object_type, position::text FROM trigger_source
UNION ALL SELECT 'subscription', s.camera_id, s.onvif_topic, l.linked_id::text, ''
  FROM subscription s LEFT JOIN subscription_trigger l ON l.record_id = s.id
UNION ALL SELECT 'detection', e.camera_id, '', l.linked_id::text, ''
  FROM eta_camera e LEFT JOIN eta_camera_trigger l ON l.record_id = e.id
ORDER BY 1, 2, 3, 4, 5"""

# What the tool may say of a server that goes away.
COMPLAINTS = ("connection to the server was lost", "server closed the connection", "terminating connection",
              "the database system is", "could not connect", "connection to server", "no connection to the server")

TOPICS = [f"tns1:RuleEngine/LineDetector/Crossed/{number}" for number in range(6)]


def inventory(cameras, groups=10):
    """Cameras in groups, told apart by a tag."""
    topic_filter = {"TopicFilter": {"capabilities": {topic: "" for topic in TOPICS}}}
    capabilities = {"Metadata": {"Mode": {"capabilities": {"On": topic_filter}}}}
    return {
        "servers": [{"id": 1, "name": "one"}],
        "cameras": [{"id": number, "name": f"camera {number}", "tags": {"group": str(number % groups)},
                     "objectDetection": number % 3 == 0, "capabilities": capabilities}
                    for number in range(1, cameras + 1)],
        "subscriptions": [{"id": 900001, "name": "door", "tags": {"door": "main"}}],
    }


def trigger(number, group, topics, detects=False):
    sources = [{"type": "onvif-metadata", "onvifTopic": topic} for topic in topics]
    if detects:
        sources.append({"type": "object-detection", "searchItem": {"type": "person"}})
    return {"id": number, "name": f"trigger {number}", "tags": {"camera": {"group": str(group)}}, "sources": sources}


class Site(unittest.TestCase):
    """Each test has a folder and a schema of its own."""

    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.schema = f"tool_{os.getpid()}_{next(numbers)}"
        self.database = url(self.schema)
        self.addCleanup(self.drop, self.schema)

    def drop(self, schema):
        psql(f"SET client_min_messages = error; DROP SCHEMA IF EXISTS {schema} CASCADE")

    def write(self, name, document):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            json.dump(document, file)
        return path

    def command(self, *arguments, database=None):
        return [TOOL, "--database", database or self.database, "--json", *arguments]

    def run_tool(self, *arguments, database=None, expected=DONE):
        done = subprocess.run(self.command(*arguments, database=database), capture_output=True, text=True,
                              check=False, timeout=600)
        self.assertEqual(done.returncode, expected, f"{arguments}\n{done.stdout[:2000]}\n{done.stderr[:2000]}")
        return json.loads(done.stdout)

    def records(self, database=None):
        """What operators see of it all, without the ids that the databases gave out."""
        shown = {what: self.run_tool("show", what, database=database)
                 for what in ("triggers", "subscriptions", "detection")}
        for record in shown["subscriptions"]:
            if record["cameraId"] is not None:
                del record["id"]
        for record in shown["detection"]:
            del record["id"]
        shown["subscriptions"].sort(key=lambda record: (record["cameraId"] or 0, record["name"]))
        shown["detection"].sort(key=lambda record: record["cameraId"])
        return shown

    def assert_clear(self, outcome, log):
        """The tool says that the server went away."""
        said = " ".join(error["message"] for error in outcome["errors"]) + str(outcome.get("remarks", "")) + log
        self.assertTrue(any(complaint in said for complaint in COMPLAINTS), said[:1000])
