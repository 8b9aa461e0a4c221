# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Kills `vemora-triggers apply` and looks at what is left.

At every call by which it writes or syncs a file, and at random moments of a pass that takes a while:
each time the database is whole and holds the state before the pass or the committed one, repeating the
apply ends in the records of an undisturbed run, a refresh in those of the documents that are stored, no camera
whose subscriptions changed is forgotten, and the history agrees with the documents.

    CRASH_MOMENTS=200   how many random moments (default 12)
    CRASH_SEED=7        another draw of them
"""

import hashlib
import json
import os
import random
import resource
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time
import unittest

TOOL = os.environ["TOOL"]
KILLER = os.environ["KILLER"]
MOMENTS = int(os.environ.get("CRASH_MOMENTS", "12"))
SEED = int(os.environ.get("CRASH_SEED", "1"))

TOPICS = [f"tns1:RuleEngine/LineDetector/Crossed/{n}" for n in range(6)]


# All the records that a pass writes, but for the ids that it gives out.
RECORDS = """
SELECT 'trigger', id, name, NULL, NULL FROM trigger_record
UNION ALL SELECT 'source', trigger_id, onvif_topic, object_type, position FROM trigger_source
UNION ALL SELECT 'subscription', s.camera_id, s.onvif_topic, l.linked_id, NULL
  FROM subscription s LEFT JOIN subscription_trigger l ON l.record_id = s.id
UNION ALL SELECT 'detection', e.camera_id, NULL, l.linked_id, NULL
  FROM eta_camera e LEFT JOIN eta_camera_trigger l ON l.record_id = e.id
ORDER BY 1, 2, 3, 4, 5"""


def processor_time_of_children():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def kill_after(run, seconds):
    """Kills a process once it has used that much of a processor: how far it is then does not depend on what else the
    machine does."""
    clock = ~run.pid << 3 | 2  # as clock_getcpuclockid(3) numbers them
    while run.poll() is None and time.clock_gettime(clock) < seconds:
        time.sleep(0.0005)
    run.kill()
    run.wait()


def inventory(cameras):
    topic_filter = {"TopicFilter": {"capabilities": {topic: "" for topic in TOPICS}}}
    capabilities = {"Metadata": {"Mode": {"capabilities": {"On": topic_filter}}}}
    return {
        "servers": [{"id": 1, "name": "one"}],
        "cameras": [
            {"id": n, "name": f"camera {n}", "tags": {"half": "even" if n % 2 == 0 else "odd"},
             "objectDetection": n % 3 == 0, "capabilities": capabilities}
            for n in range(1, cameras + 1)
        ],
        "subscriptions": [{"id": 900001, "name": "door", "tags": {"door": "main"}}],
    }


def trigger(number, half, topics, detects=False):
    sources = [{"type": "onvif-metadata", "onvifTopic": topic} for topic in topics]
    if detects:
        sources.append({"type": "object-detection", "searchItem": {"type": "person"}})
    return {"id": number, "name": f"trigger {number}", "tags": {"camera": {"half": half}}, "sources": sources}


def config_before():
    return {"triggers": [trigger(1, "even", TOPICS[:2], True), trigger(2, "odd", TOPICS[1:3])]}


def config_after():
    door = {"id": 3, "name": "door", "tags": {"eventSubscription": {"door": "main"}},
            "sources": [{"type": "metadata-event"}]}
    return {"triggers": [trigger(1, "odd", TOPICS[2:5], True), door, trigger(4, "even", TOPICS[:4])]}


def config_that_leaves_cameras_alone():
    """Trigger 2 leaves all its subscriptions to trigger 3; only the cameras of trigger 1 have another one."""
    return {"triggers": [trigger(1, "even", TOPICS[:3], True), trigger(3, "odd", TOPICS[1:3])]}


# How an entry of the history ended.
CUT_SHORT, DONE = 0, 1


class Site:
    """A database in a folder of its own, and the tool on it."""

    def __init__(self, folder):
        self.folder = folder
        self.database = os.path.join(folder, "site.db")

    def write(self, name, document):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            json.dump(document, file)
        return path

    def command(self, *arguments):
        return [TOOL, "--database", self.database, "--json", *arguments]

    def run(self, *arguments):
        done = subprocess.run(self.command(*arguments), capture_output=True, text=True, check=False)
        if done.returncode != 0:
            raise AssertionError(f"{arguments}: exit {done.returncode}\n{done.stdout}\n{done.stderr}")
        return json.loads(done.stdout)

    def start(self, *arguments, **environment):
        return subprocess.Popen(self.command(*arguments), stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL, env={**os.environ, **environment})

    def copy_to(self, folder):
        shutil.copytree(self.folder, folder)
        return Site(folder)

    def killed_at_every_call(self, copies, command, least):
        """Yields copies of this site, each with the command killed there at another call by which it writes or syncs a
        file. `command` answers the words of the command for a copy, and `least` is how many calls there must be."""
        counted = self.copy_to(next(copies))
        count_file = os.path.join(counted.folder, "count")
        status = counted.start(*command(counted), LD_PRELOAD=KILLER, COUNT_CALLS_IN=count_file).wait()
        with open(count_file, encoding="ascii") as file:
            calls = int(file.read())
        if status != 0 or calls < least:
            raise AssertionError(f"exit {status} after {calls} calls, of at least {least}")
        for number in range(1, calls + 1):
            site = self.copy_to(next(copies))
            status = site.start(*command(site), LD_PRELOAD=KILLER, KILL_AT_CALL=str(number)).wait()
            if status != -signal.SIGKILL:
                raise AssertionError(f"call {number} of {calls}: exit {status}")
            yield f"call {number} of {calls}", site

    def remains(self):
        """What the database holds: records, documents, cameras still to be reconciled."""
        connection = sqlite3.connect(self.database)
        try:
            check = connection.execute("PRAGMA integrity_check").fetchall()
            if check != [("ok",)]:
                raise AssertionError(f"integrity check: {check[:5]}")
            names = [row[0] for row in connection.execute(
                "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")]
            tables = {name: sorted(connection.execute(f'SELECT * FROM "{name}"').fetchall(), key=repr)
                      for name in names}
        finally:
            connection.close()
        documents = tables.pop("document")
        pending = tables.pop("pending_camera")
        for name in ("site", "history_entry", "history_text"):
            tables.pop(name)
        return tables, documents, {row[0] for row in pending}

    def history(self):
        """Each pass with its status and the digests of its documents, and the digests of the texts that are kept."""
        connection = sqlite3.connect(self.database)
        try:
            entries = connection.execute("SELECT pass, status, config, mapping FROM history_entry "
                                         "ORDER BY pass").fetchall()
            texts = dict(connection.execute("SELECT digest, text FROM history_text").fetchall())
        finally:
            connection.close()
        return entries, texts

    def records(self):
        """The records whatever their ids, which a pass that was cut short may have used up."""
        connection = sqlite3.connect(self.database)
        try:
            return connection.execute(RECORDS).fetchall()
        finally:
            connection.close()


class Crash_Test(unittest.TestCase):
    def prepare(self, cameras, before=None, after=None, changed=None):
        """A site before a pass and after it; `changed`: the cameras that the pass changes, all unless told."""
        top = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, top)
        self.copies = iter(os.path.join(top, f"copy{n}") for n in range(1000000))
        os.mkdir(os.path.join(top, "template"))
        self.template = Site(os.path.join(top, "template"))
        self.template.run("init", self.template.write("inventory.json", inventory(cameras)))
        self.template.run("apply", self.template.write("before.json", before or config_before()))
        self.template.write("after.json", after or config_after())
        self.before = self.template.remains()
        self.records_before = self.template.records()
        undisturbed = self.fresh_copy()
        answer = undisturbed.run("apply", os.path.join(undisturbed.folder, "after.json"))
        self.after = undisturbed.remains()
        self.records_after = undisturbed.records()
        self.changed_cameras = set(answer["reconciled"])
        self.assertEqual(self.changed_cameras, set(changed or range(1, cameras + 1)))
        self.assertNotEqual(self.before[0], self.after[0])

    def fresh_copy(self):
        return self.template.copy_to(next(self.copies))

    def check_history(self, site, *statuses):
        """One entry a pass, the last one with the documents that are stored, and a text for each digest."""
        entries, texts = site.history()
        self.assertEqual([entry[:2] for entry in entries], list(enumerate(statuses, 1)))
        self.assertEqual({hashlib.sha256(text).hexdigest(): text for text in texts.values()}, texts)
        self.assertEqual({digest for entry in entries for digest in entry[2:] if digest}, set(texts))
        _, documents, _ = site.remains()
        stored = {kind: hashlib.sha256(text).hexdigest() for kind, text in documents}
        self.assertEqual(entries[-1][2:], (stored.get("config"), stored.get("mapping")))

    def phase_of(self, site):
        """Where the killed run was: before the commit, between it and the storing, or after."""
        phase = self.phase_of_records(site)
        self.check_history(site, DONE, *{"before the commit": (), "before the storing": (CUT_SHORT,),
                                         "stored": (DONE,)}[phase])
        return phase

    def phase_of_records(self, site):
        records, documents, pending = site.remains()
        if records == self.before[0]:
            self.assertEqual(documents, self.before[1])
            self.assertEqual(pending, set())
            return "before the commit"
        self.assertEqual(records, self.after[0], "neither the state before the pass nor the committed one")
        if documents == self.before[1]:
            self.assertEqual(pending, self.changed_cameras)
            return "before the storing"
        self.assertEqual(documents, self.after[1])
        self.assertEqual(pending, set())
        return "stored"

    def check_remains_and_repeat(self, site):
        phase = self.phase_of(site)
        answer = site.run("apply", os.path.join(site.folder, "after.json"))
        self.assertEqual(site.remains(), self.after)
        self.check_history(site, DONE, *([CUT_SHORT] if phase == "before the storing" else []), DONE)
        if phase != "stored":
            self.assertEqual(set(answer["reconciled"]), self.changed_cameras)
        shutil.rmtree(site.folder)
        return phase

    def check_remains_and_refresh(self, site):
        phase = self.phase_of(site)
        # Between the commit and the storing, the old documents take back most of what was committed.
        answer = site.run("refresh", "--allow-mass-deletion")
        tables, documents, pending = site.remains()
        self.check_history(site, DONE, *{"before the commit": (), "before the storing": (CUT_SHORT, DONE),
                                         "stored": (DONE,)}[phase])
        stored = phase == "stored"
        self.assertEqual(site.records(), self.records_after if stored else self.records_before)
        self.assertEqual((documents, pending), ((self.after if stored else self.before)[1], set()))
        self.assertEqual(set(answer["reconciled"]),
                         self.changed_cameras if phase == "before the storing" else set())
        if phase == "before the commit":
            self.assertEqual(tables, self.before[0])
        shutil.rmtree(site.folder)
        return phase

    def kill_at_every_call(self, check, **documents):
        """Applies the new configuration on fresh copies, killed at one call after the other, and checks each."""
        self.prepare(cameras=40, **documents)
        phases = {}
        for _call, site in self.template.killed_at_every_call(
                self.copies, lambda site: ("apply", os.path.join(site.folder, "after.json")), least=11):
            phase = check(site)
            phases[phase] = phases.get(phase, 0) + 1
        print(f"{sum(phases.values())} calls: {phases}")
        self.assertGreater(phases.get("before the commit", 0), 0)
        self.assertGreater(phases.get("before the storing", 0), 0)

    def test_killed_at_every_call_that_writes_or_syncs(self):
        self.kill_at_every_call(self.check_remains_and_repeat)

    def test_refreshed_after_being_killed_at_every_call_that_writes_or_syncs(self):
        self.kill_at_every_call(self.check_remains_and_refresh)

    def test_killed_at_every_call_of_a_pass_that_leaves_cameras_alone(self):
        before = config_before()
        before["triggers"].append(trigger(3, "odd", TOPICS[1:3]))
        self.kill_at_every_call(self.check_remains_and_repeat, before=before,
                                after=config_that_leaves_cameras_alone(), changed=range(2, 41, 2))

    def test_killed_at_random_moments(self):
        self.prepare(cameras=25000)
        site = self.fresh_copy()
        before = processor_time_of_children()
        site.run("apply", os.path.join(site.folder, "after.json"))
        duration = processor_time_of_children() - before
        shutil.rmtree(site.folder)

        draw = random.Random(SEED)
        phases = {"before the commit": 0, "before the storing": 0, "stored": 0}
        wanted = MOMENTS // 4
        while sum(phases.values()) < MOMENTS or min(
                phases["before the commit"], phases["before the storing"]) < wanted:
            self.assertLess(sum(phases.values()), 5 * MOMENTS, f"some phase is never met: {phases}")
            site = self.fresh_copy()
            run = site.start("apply", os.path.join(site.folder, "after.json"))
            kill_after(run, draw.uniform(0, 1.1 * duration))
            phases[self.check_remains_and_repeat(site)] += 1
        print(f"a pass of {duration:.2f} s of processor time killed at {sum(phases.values())} random moments: {phases}")


if __name__ == "__main__":
    unittest.main()
