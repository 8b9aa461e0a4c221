# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Sites, documents and damage at random, the same for the same seed."""

import copy
import random

from tool_site import LARGEST_ID, camera

TOPICS = ["a", "a.b", "tns1:Device/Trigger/DigitalInput"]
TYPES = ["car", "person", "vehicle", "anything", "cat"]
CAMERAS = [0, 10, 11, 12, LARGEST_ID]
SCHEDULES = [1, 2, 3, 4]
SUBSCRIPTIONS = [100, 101, LARGEST_ID]
TRIGGERS = [0, 3, 7, 8, 9, LARGEST_ID]


class Random_Site:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.inventory = {
            "servers": [{"id": 1, "name": "one", "tags": self.tags()}],
            "cameras": [self.camera(number) for number in self.some(CAMERAS, 0.8)],
            "schedules": [self.schedule(number) for number in SCHEDULES],
            "subscriptions": [{"id": number, "name": f"generic {number}", "tags": self.tags()}
                              for number in self.some(SUBSCRIPTIONS, 0.8)],
            "objectTypes": {"vehicle": ["car", "truck"], "anything": ["vehicle", "person"]},
        }
        self.config = {"triggers": [self.trigger(number) for number in self.some(TRIGGERS, 0.8)]}
        self.mapping = {"triggerMapping": [
            {"scheduleIds": self.schedules(), "triggerIds": self.some(TRIGGERS, 0.4) or [7]}
            for _ in range(self.random.randrange(3))]}

    def some(self, values, chance):
        return [value for value in values if self.random.random() < chance]

    def one_in(self, count):
        return self.random.randrange(count) == 0

    def tags(self):
        return {name: self.random.choice(["north", "south", None]) for name in self.some(["site", "door"], 0.5)}

    def tag_filter(self):
        return {name: self.random.choice(["north", "south", None, ["north", None]])
                for name in self.some(["site", "door"], 0.4)}

    def camera(self, number):
        return camera(number, self.some(TOPICS, 0.5) if not self.one_in(4) else (), self.tags(),
                      objectDetection=self.one_in(2), motionDetection=self.one_in(2))

    def schedule(self, number):
        return {"id": number, "name": f"schedule {number}", "usable": not self.one_in(6)}

    def schedules(self):
        return self.some(SCHEDULES, 0.3) + ([4711] if self.one_in(15) else [])

    def sources(self):
        sources = [{"type": "onvif-metadata", "onvifTopic": topic} for topic in self.some(TOPICS, 0.5)]
        sources += [{"type": "object-detection", "searchItem": {"type": name, "motionRequired": self.one_in(2)}}
                    for name in self.some(TYPES, 0.3)]
        sources += [{"type": kind} for kind in self.some(
            ["metadata-event", "motion-detection", "audio-detection", "external", "of-a-newer-server"], 0.25)]
        return sources or [{"type": self.random.choice(["external", "audio-detection"])}]

    def trigger(self, number):
        tags = {"camera": self.tag_filter(), "eventSubscription": self.tag_filter()}
        if self.one_in(3):
            tags["server"] = self.tag_filter()
        schedules = {"scheduleIds": self.schedules()} if self.one_in(2) else {}
        return {"id": number, "name": f"trigger {number}", "tags": tags, "sources": self.sources(), **schedules}

    def change(self):
        """Changes some of the inventory; answers what `init` is to be given."""
        changed = {"cameras": [self.camera(one["id"]) for one in self.some(self.inventory["cameras"], 0.4)],
                   "schedules": [self.schedule(one) for one in self.some(SCHEDULES, 0.3)],
                   "subscriptions": [{**one, "tags": self.tags()}
                                     for one in self.some(self.inventory["subscriptions"], 0.3)]}
        if self.one_in(3):
            changed["servers"] = [{"id": 1, "name": "one", "tags": self.tags()}]
        for kind, records in changed.items():
            by_id = {one["id"]: one for one in self.inventory[kind]}
            by_id.update({one["id"]: one for one in records})
            self.inventory[kind] = sorted(by_id.values(), key=lambda one: one["id"])
        return copy.deepcopy(changed)

    def damage(self, sql):
        """What other programs do to a database; `sql` executes a statement."""
        cameras = self.inventory["cameras"]
        if cameras and self.one_in(2):
            gone = self.random.choice(cameras)
            cameras.remove(gone)
            sql("DELETE FROM camera WHERE id = ?", stored_id(gone["id"]))
            sql("DELETE FROM camera_tag WHERE record_id = ?", stored_id(gone["id"]))
        for table in ("subscription_trigger", "eta_camera_trigger"):
            links = sorted(sql(f"SELECT record_id, linked_id FROM {table}"))
            if links and self.one_in(2):
                record, linked = self.random.choice(links)
                sql(f"DELETE FROM {table} WHERE record_id = ? AND linked_id = ?", record, linked)
        stored = sorted(number for (number,) in sql("SELECT id FROM trigger_record"))
        if stored and self.one_in(2):
            self.add_links(sql, self.random.choice(stored))
        if stored and self.one_in(3):
            sql("UPDATE trigger_record SET name = 'by hand' WHERE id = ?", self.random.choice(stored))
        if stored and self.one_in(3):
            self.delete_trigger(sql, self.random.choice(stored))
        if self.one_in(4):
            sql("INSERT INTO trigger_record (id, name) VALUES (?, ?)", 4000, "of nobody")

    def add_links(self, sql, trigger):
        for table, records in (("subscription_trigger", "subscription"), ("eta_camera_trigger", "eta_camera")):
            ids = sorted(number for (number,) in sql(f"SELECT id FROM {records}"))
            if ids:
                record = self.random.choice(ids)
                sql(f"DELETE FROM {table} WHERE record_id = ? AND linked_id = ?", record, trigger)
                sql(f"INSERT INTO {table} (record_id, linked_id) VALUES (?, ?)", record, trigger)

    @staticmethod
    def delete_trigger(sql, trigger):
        sql("DELETE FROM trigger_record WHERE id = ?", trigger)
        sql("DELETE FROM trigger_schedule WHERE record_id = ?", trigger)
        sql("DELETE FROM trigger_source WHERE trigger_id = ?", trigger)
        for table in ("subscription_trigger", "eta_camera_trigger"):
            sql(f"DELETE FROM {table} WHERE linked_id = ?", trigger)


def stored_id(number):
    """The same 64 bits in a signed column."""
    return number - (1 << 64) if number >= 1 << 63 else number
