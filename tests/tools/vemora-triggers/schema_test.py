# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The schemas accept what the tool accepts, and refuse what it refuses."""

import json
import os
import unittest

from json_schema import Schema
from tool_site import (DONE, LARGEST_ID, REJECTED, Site, camera, config, mapping, object_source,
                            small_inventory, topic_source, trigger)

REPOSITORY = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..")


def load(*path):
    with open(os.path.join(REPOSITORY, *path), encoding="utf-8") as file:
        return json.load(file)


def schema(name):
    return Schema(load("schemas", f"{name}.schema.json"))


def with_source(source):
    return config(trigger(7, source))


def with_activity(kind, activity):
    source = object_source() if kind == "object-detection" else {"type": kind}
    return with_source({**source, "activityDuration": activity})


def without(key):
    return config({name: value for name, value in trigger(7).items() if name != key})


def changed(**keys):
    return config({**trigger(7), **keys})


VALID_CONFIGURATIONS = {
    "no triggers": config(),
    "the largest id": config(trigger(LARGEST_ID)),
    "an empty name": changed(name=""),
    "null filters": changed(tags={"server": None, "camera": None, "eventSubscription": None}),
    "values of a tag": changed(tags={"camera": {"area": ["gate", None], "indoor": None, "role": "x"}}),
    "null flags": changed(anyTime=None, scheduleIds=None),
    "an unknown key": changed(colour="red"),
    "an unknown source type": with_source({"type": "smell"}),
    "letters in any case": with_source({"type": "ONVIF-Metadata", "onvifTopic": "t"}),
    "a whole number with a point": with_activity("motion-detection", {"minDurationMs": 5000.0, "dropoutMs": 1000}),
    "tracking without a drop-out": with_activity("object-detection", {"mode": "object-track", "minDurationMs": 1000}),
    "presence by default": with_activity("object-detection", {"minDurationMs": 28800000, "dropoutMs": 600000}),
    "no activity": with_activity("object-detection", None),
    "external sources are not looked into": with_source({"type": "external", "onvifTopic": 7}),
    "all properties": config(properties={"notificationMaxLatencySecs": 0, "notificationDigestCooldownMins": 5,
                                         "notificationAckTimeoutSecs": None, "notificationNackDelayMs": 4294967295}),
    "no properties": config(properties=None),
}

INVALID_CONFIGURATIONS = {
    "an array": [],
    "no list of triggers": {},
    "triggers that are no list": {"triggers": {}},
    "a trigger that is no object": config(7),
    "no id": without("id"),
    "no name": without("name"),
    "no tags": without("tags"),
    "no sources": without("sources"),
    "a negative id": changed(id=-1),
    "an id that is too large": changed(id=LARGEST_ID + 1),
    "an id that is a text": changed(id="7"),
    "an empty list of sources": changed(sources=[]),
    "a source that is no object": with_source("onvif-metadata"),
    "a source without a type": with_source({}),
    "no topic": with_source({"type": "onvif-metadata"}),
    "an empty topic": with_source(topic_source("")),
    "an empty topic of a type in capitals": with_source({"type": "ONVIF-METADATA", "onvifTopic": ""}),
    "no search item": with_source({"type": "object-detection"}),
    "an empty object type": with_source(object_source("")),
    "motionRequired as a text": with_source({"type": "object-detection",
                                             "searchItem": {"type": "car", "motionRequired": "no"}}),
    "motionRequired null": with_source({"type": "object-detection",
                                        "searchItem": {"type": "car", "motionRequired": None}}),
    "an activity without a duration": with_activity("object-detection", {"mode": "object-track"}),
    "a duration too short": with_activity("object-detection", {"minDurationMs": 999, "dropoutMs": 1000}),
    "a duration too long": with_activity("motion-detection", {"minDurationMs": 28800001, "dropoutMs": 1000}),
    "presence without a drop-out": with_activity("object-detection", {"minDurationMs": 1000}),
    "motion without a drop-out": with_activity("motion-detection", {"mode": "object-track", "minDurationMs": 1000}),
    "a drop-out that is null": with_activity("object-detection", {"minDurationMs": 1000, "dropoutMs": None}),
    "a drop-out too long": with_activity("object-detection", {"minDurationMs": 1000, "dropoutMs": 600001}),
    "an unknown mode": with_activity("object-detection", {"mode": "Object-Track", "minDurationMs": 1000}),
    "a tag that is a number": changed(tags={"camera": {"area": 1}}),
    "a tag without values": changed(tags={"server": {"site": []}}),
    "a filter that is a list": changed(tags={"camera": []}),
    "anyTime as a text": changed(anyTime="yes"),
    "a schedule that is no number": changed(scheduleIds=["1"]),
    "a negative latency": config(properties={"notificationMaxLatencySecs": -1}),
    "a latency of 33 bits": config(properties={"notificationMaxLatencySecs": 4294967296}),
    "properties that are a list": config(properties=[]),
}

VALID_MAPPINGS = {
    "no associations": mapping(),
    "no schedules": mapping(([], [5])),
    "the largest ids": mapping(([LARGEST_ID], [LARGEST_ID])),
}

INVALID_MAPPINGS = {
    "an array": [],
    "associations that are no list": {"triggerMapping": {}},
    "an association that is no object": {"triggerMapping": [1]},
    "no schedules": {"triggerMapping": [{"triggerIds": [1]}]},
    "no triggers": {"triggerMapping": [{"scheduleIds": []}]},
    "an empty list of triggers": mapping(([1], [])),
    "a negative schedule": mapping(([-1], [1])),
    "a trigger that is null": mapping(([1], [None])),
}

VALID_INVENTORIES = {
    "nothing": {},
    "ids alone": {kind: [{"id": 0}] for kind in ("servers", "cameras", "schedules", "eventCategories",
                                                 "subscriptions")},
    "the largest id": {"cameras": [camera(LARGEST_ID)]},
    "a small site": small_inventory(),
    "no category": {"subscriptions": [{"id": 1, "categoryId": None}]},
}

INVALID_INVENTORIES = {
    "an array": [],
    "an unknown kind": {"doors": []},
    "an unknown key": {"servers": [{"id": 1, "colour": "red"}]},
    "cameras that are no list": {"cameras": {}},
    "a camera that is no object": {"cameras": [10]},
    "no id": {"schedules": [{"name": "always"}]},
    "an id that is too large": {"cameras": [{"id": LARGEST_ID + 1}]},
    "a name that is null": {"cameras": [{"id": 1, "name": None}]},
    "a flag that is a number": {"cameras": [{"id": 1, "objectDetection": 1}]},
    "a tag with several values": {"servers": [{"id": 1, "tags": {"site": ["north"]}}]},
    "capabilities that are a text": {"cameras": [{"id": 1, "capabilities": "{}"}]},
    "an object type for nothing": {"objectTypes": {"vehicle": []}},
    "an object type for an empty name": {"objectTypes": {"vehicle": [""]}},
    "camera ids that are no list": {"subscriptions": [{"id": 1, "cameraIds": 10}]},
}


class Schemas(Site):
    def assert_agreement(self, name, documents, valid, run):
        """The schema and the tool are of one opinion about each document."""
        for what, document in documents.items():
            with self.subTest(what):
                faults = schema(name).faults(document)
                self.assertEqual(faults == [], valid, faults)
                self.assertEqual(run(document).status, DONE if valid else REJECTED)

    def check_configuration(self, document):
        return self.run_tool("check", self.write("config.json", document))

    def check_mapping(self, document):
        return self.run_tool("check", self.write("config.json", config()), self.write("mapping.json", document))

    def init_with(self, document):
        return self.run_tool("init", self.write("inventory.json", document))

    def test_the_sample_site_satisfies_the_schemas(self):
        for name, file in (("inventory", "inventory"), ("trigger_configuration", "triggers"),
                           ("trigger_mapping", "mapping")):
            with self.subTest(file):
                self.assertEqual(schema(name).faults(load("examples", "warehouse", f"{file}.json")), [])

    def test_valid_configurations_satisfy_the_schema_and_the_tool(self):
        self.init()
        self.assert_agreement("trigger_configuration", VALID_CONFIGURATIONS, True, self.check_configuration)

    def test_broken_configurations_satisfy_neither_the_schema_nor_the_tool(self):
        self.init()
        self.assert_agreement("trigger_configuration", INVALID_CONFIGURATIONS, False, self.check_configuration)

    def test_valid_mappings_satisfy_the_schema_and_the_tool(self):
        self.init()
        self.assert_agreement("trigger_mapping", VALID_MAPPINGS, True, self.check_mapping)

    def test_broken_mappings_satisfy_neither_the_schema_nor_the_tool(self):
        self.init()
        self.assert_agreement("trigger_mapping", INVALID_MAPPINGS, False, self.check_mapping)

    def test_valid_inventories_satisfy_the_schema_and_the_tool(self):
        self.assert_agreement("inventory", VALID_INVENTORIES, True, self.init_with)

    def test_broken_inventories_satisfy_neither_the_schema_nor_the_tool(self):
        self.assert_agreement("inventory", INVALID_INVENTORIES, False, self.init_with)


if __name__ == "__main__":
    unittest.main()
