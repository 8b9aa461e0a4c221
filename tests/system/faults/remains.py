# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What a database holds, whatever its ids that a pass gives out, and whether it fits together."""

import collections
import os
import shutil
import sqlite3

# Every record but for the ids that passes give out: those of subscriptions with a topic and of detection. And
# whether the tables are still those that a migration finds.
RECORDS = """
SELECT 'server', id, name, NULL, NULL, NULL, NULL FROM server
UNION ALL SELECT 'tables of version', schema_version, NULL, NULL, NULL, NULL, NULL FROM site WHERE schema_version = 1
UNION ALL SELECT 'server tag', record_id, name, value, NULL, NULL, NULL FROM server_tag
UNION ALL SELECT 'camera', id, name, object_detection, motion_detection, NULL, NULL FROM camera
UNION ALL SELECT 'camera tag', record_id, name, value, NULL, NULL, NULL FROM camera_tag
UNION ALL SELECT 'capability', camera_id, text, NULL, NULL, NULL, NULL
  FROM camera_capability LEFT JOIN capability_document d ON d.id = document_id
UNION ALL SELECT 'schedule', id, name, usable, NULL, NULL, NULL FROM schedule
UNION ALL SELECT 'category', id, name, NULL, NULL, NULL, NULL FROM event_category
UNION ALL SELECT 'object type', name, type, NULL, NULL, NULL, NULL FROM meta_type
UNION ALL SELECT 'trigger', id, name, NULL, NULL, NULL, NULL FROM trigger_record
UNION ALL SELECT 'trigger schedule', record_id, linked_id, NULL, NULL, NULL, NULL FROM trigger_schedule
UNION ALL SELECT 'source', trigger_id, position, type || ' ' || ifnull(onvif_topic, ''), object_type,
  motion_required || ' ' || ifnull(activity_mode, ''), min_duration_us || ' ' || ifnull(dropout_us, '')
  FROM trigger_source
UNION ALL SELECT 'subscription', CASE WHEN camera_id IS NULL THEN id END, name, category_id, onvif_topic, camera_id,
  NULL FROM subscription
UNION ALL SELECT 'subscription tag', t.name, t.value, s.name, s.onvif_topic, s.camera_id, NULL
  FROM subscription_tag t LEFT JOIN subscription s ON s.id = t.record_id
UNION ALL SELECT 'subscription camera', s.name, linked_id, s.onvif_topic, s.camera_id, NULL, NULL
  FROM subscription_camera LEFT JOIN subscription s ON s.id = record_id
UNION ALL SELECT 'subscription trigger', s.name, s.onvif_topic, s.camera_id, linked_id, NULL, NULL
  FROM subscription_trigger LEFT JOIN subscription s ON s.id = record_id
UNION ALL SELECT 'detection', camera_id, NULL, NULL, NULL, NULL, NULL FROM eta_camera
UNION ALL SELECT 'detection trigger', e.camera_id, linked_id, NULL, NULL, NULL, NULL
  FROM eta_camera_trigger LEFT JOIN eta_camera e ON e.id = record_id
"""

# Rows that lead to nothing.
STRAYS = [
    f"SELECT '{table}.{column}', {column} FROM {table} WHERE {column} NOT IN (SELECT id FROM {record})"
    for table, column, record in [
        ("trigger_source", "trigger_id", "trigger_record"),
        ("trigger_schedule", "record_id", "trigger_record"), ("trigger_schedule", "linked_id", "schedule"),
        ("subscription_trigger", "record_id", "subscription"), ("subscription_trigger", "linked_id", "trigger_record"),
        ("subscription_camera", "record_id", "subscription"), ("subscription_tag", "record_id", "subscription"),
        ("eta_camera_trigger", "record_id", "eta_camera"), ("eta_camera_trigger", "linked_id", "trigger_record"),
        ("camera_capability", "document_id", "capability_document"), ("camera_tag", "record_id", "camera"),
        ("server_tag", "record_id", "server")]]

NUMBERED = {
    "triggers": "SELECT t.id, t.name, "
                "(SELECT group_concat(quote(position) || quote(type) || quote(onvif_topic) || quote(object_type) || "
                " quote(motion_required) || quote(activity_mode) || quote(min_duration_us) || quote(dropout_us)) "
                " FROM trigger_source WHERE trigger_id = t.id), "
                "(SELECT group_concat(linked_id) FROM trigger_schedule WHERE record_id = t.id) FROM trigger_record t",
    "subscriptions": "SELECT id FROM subscription",
    "subscriptionLinks": "SELECT record_id, linked_id FROM subscription_trigger",
    "detection": "SELECT id FROM eta_camera",
    "detectionLinks": "SELECT record_id, linked_id FROM eta_camera_trigger",
}

Remains = collections.namedtuple("Remains", "records documents pending numbered topics faults")
NOTHING = Remains((), {}, frozenset(), {name: frozenset() for name in NUMBERED}, (), ())


def look_at(database):
    """Nothing is there where there is no file, none of ours yet, or no more than the empty tables."""
    if not os.path.exists(database) or os.path.getsize(database) == 0 and not os.path.exists(database + "-wal"):
        return NOTHING
    connection = sqlite3.connect(database)
    try:
        connection.text_factory = lambda text: text.decode("utf-8", "surrogateescape")
        check = connection.execute("PRAGMA integrity_check").fetchall()
        if check != [("ok",)]:
            return NOTHING._replace(faults=(f"integrity check: {check[:3]}",))
        if not connection.execute("SELECT count(*) FROM sqlite_master").fetchone()[0]:
            return NOTHING
        records = tuple(sorted(connection.execute(RECORDS).fetchall(), key=repr))
        documents = dict(connection.execute("SELECT kind, text FROM document").fetchall())
        pending = frozenset(row[0] for row in connection.execute("SELECT camera_id FROM pending_camera"))
        numbered = {name: frozenset(connection.execute(text).fetchall()) for name, text in NUMBERED.items()}
        topics = tuple(sorted(connection.execute(
            "SELECT l.linked_id, s.camera_id, s.onvif_topic, s.id FROM subscription_trigger l "
            "JOIN subscription s ON s.id = l.record_id").fetchall(), key=repr))
        faults = tuple(str(row) for text in STRAYS for row in connection.execute(text).fetchall())
        return Remains(records, documents, pending, numbered, topics, faults)
    finally:
        connection.close()


class Onlooker:
    """Looks at copies, so that nothing of what is left is touched; the same files are looked at once."""

    def __init__(self, folder):
        self.folder = folder
        self.seen = {}

    def look(self, folder):
        files = read_files(folder)
        if files not in self.seen:
            shutil.rmtree(self.folder, ignore_errors=True)
            os.mkdir(self.folder)
            for name, data in files:
                with open(os.path.join(self.folder, name), "wb") as file:
                    file.write(data)
            self.seen[files] = look_at(os.path.join(self.folder, "vemora.db"))
        return self.seen[files]


def read_files(folder):
    """What a database consists of; the index of its log is made anew from the log."""
    files = []
    for name in ("vemora.db", "vemora.db-wal", "vemora.db-journal"):
        path = os.path.join(folder, name)
        if os.path.exists(path):
            with open(path, "rb") as file:
                files.append((name, file.read()))
    return tuple(files)
