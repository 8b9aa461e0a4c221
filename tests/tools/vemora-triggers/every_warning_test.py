# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Each warning, where it is due: code, place of the very value, text; and where none is due."""

import unittest

from tool_site import DONE, FAILED, REJECTED, Site, small_inventory

LARGEST = 18446744073709551615

# Each case: code, what the message must say, and a configuration and a mapping, in which @ is before the value.
SOURCE = '{"type": "metadata-event"}'
PLAIN = '{"triggers": []}'


def triggers(*texts):
    return '{"triggers": [\n' + ',\n'.join(texts) + ']}'


def trigger(sources=SOURCE, number=7, tags="{}", others=""):
    return f'{{"id": {number}, "name": "T", "tags": {tags}, "sources": [{sources}]{others}}}'


MOTION = '{"type": "onvif-metadata", "onvifTopic": "tns1:VideoSource/MotionAlarm"}'
PERSON = '{"type": "object-detection", "searchItem": {"type": "car"}}'

CASES = [
    ("unknown-key", 'Unknown key "cameras" is ignored; did you mean "camera"?',
     triggers(trigger(tags='{@"cameras": {"area": "gate"}}'))),
    ("unknown-key", 'Unknown key "schedules" is ignored; did you mean "scheduleIds"?',
     triggers(trigger(others=', @"schedules": [1]'))),
    ("unknown-key", 'Unknown key "motionrequired" is ignored; did you mean "motionRequired"?',
     triggers(trigger('{"type": "object-detection", "searchItem": {"type": "car", @"motionrequired": true}}'))),
    ("unknown-key", 'Unknown key "dropoutSecs" is ignored; known here: "dropoutMs", "minDurationMs", "mode".',
     triggers(trigger('{"type": "motion-detection", "activityDuration": {"minDurationMs": 1000, "dropoutMs": 1000, '
                      '@"dropoutSecs": 1}}'))),
    ("unknown-key", 'Unknown key "notificationMaxLatencySec" is ignored; did you mean "notificationMaxLatencySecs"?',
     '{"triggers": [], "properties": {@"notificationMaxLatencySec": 1}}'),
    ("unknown-key", 'Unknown key "triggerMappings" is ignored; known here: "triggerMapping".',
     PLAIN, '{"triggerMapping": [],\n @"triggerMappings": []}'),
    ("unknown-source-type", 'Source type "onvif-metdata" is not known, so the source is left out; '
                            'did you mean "onvif-metadata"?',
     triggers(trigger(SOURCE + ',\n {"type": @"onvif-metdata", "onvifTopic": "x"}'))),
    ("no-usable-source", "The trigger is left out: it has no source that can be subscribed to; give it one, or take it "
                         "out.",
     triggers(f'{{"id": 8, "name": "T", "tags": {{}}, "sources": [{SOURCE}]}}',
              '{"id": 7, "name": "T", "tags": {}, "sources": @[{"type": "external"}]}')),
    ("schedule-not-found", "Schedule 9 does not exist, so the trigger is inactive; correct the id, or add the schedule to "
                           "the inventory.",
     triggers(trigger(others=', "scheduleIds": [1, @9]'))),
    ("schedule-not-usable", 'Schedule 2 ("expired") is not usable, so the trigger is inactive; take it out of the list, or '
                            'make it usable.',
     triggers(trigger(others=', "scheduleIds": [@2]'))),
    ("schedule-not-found", f"Schedule {LARGEST} does not exist, so trigger 7 is inactive; correct the id, or add the "
                           "schedule to the inventory.",
     triggers(trigger(others=', "scheduleIds": [1]')),
     f'{{"triggerMapping": [\n{{"scheduleIds": [1, @{LARGEST}], "triggerIds": [7]}}]}}'),
    ("schedule-not-usable", 'Schedule 2 ("expired") is not usable, so trigger 7 is inactive; take it out of the list, or '
                            'make it usable.',
     triggers(trigger(others=', "scheduleIds": [1]')),
     '{"triggerMapping": [\n{"scheduleIds": [@2], "triggerIds": [7]}]}'),
    ("mapping-of-unknown-trigger", "The configuration has no trigger 7; take it out of the list.",
     triggers(trigger(number=8, others=', "scheduleIds": [1]')),
     '{"triggerMapping": [{"scheduleIds": [1], "triggerIds": [8, @7]}]}'),
    ("mapping-without-effect", 'A mapping adds no schedule, and trigger 7 has no "scheduleIds" of its own; list its '
                               'schedules there.',
     triggers(trigger()), '{"triggerMapping": [{"scheduleIds": [1], "triggerIds": [@7]}]}'),
    ("mapping-without-effect", 'A mapping adds no schedule, and the "scheduleIds" of trigger 7 lack 3 and 4; list it there '
                               'if it is meant.',
     triggers(trigger(others=', "scheduleIds": [1]')),
     '{"triggerMapping": [{"scheduleIds": [1, 3, 4], "triggerIds": [@7]}]}'),
    ("filter-matches-no-camera", "No camera has any of these tags; correct the filter, or tag the cameras that are meant.",
     triggers(trigger(tags='{"camera": @{"area": ["roof", null], "arae": "gate"}}').replace("null", '"cellar"'))),
    ("topic-not-supported", 'No camera with these tags supports topic "tns1:VideoSource/MotionAlarm "; did you mean '
                            '"tns1:VideoSource/MotionAlarm"?',
     triggers(trigger('{"type": "onvif-metadata", "onvifTopic": @"tns1:VideoSource/MotionAlarm "}',
                      tags='{"camera": {"area": "gate"}}'))),
    ("topic-not-supported", 'No camera of this site supports topic "tns1:Unheard/Of".',
     triggers(trigger('{"type": "onvif-metadata", "onvifTopic": @"tns1:Unheard/Of"}'))),
    ("topic-not-supported", 'No camera with these tags supports topic "tns1:RuleEngine/LineDetector/Crossed".',
     triggers(trigger('{"type": "onvif-metadata", "onvifTopic": @"tns1:RuleEngine/LineDetector/Crossed"}',
                      tags='{"camera": {"area": "dock"}}'))),
    ("unknown-object-type", 'The site\'s inventory knows no object type "trucks"; did you mean "truck"?',
     triggers(trigger('{"type": "Object-Detection", "searchItem": {"type": @"trucks"}}'))),
    ("no-detecting-camera", 'No camera with these tags takes part in motion detection ("motionDetection" in the '
                            'inventory).',
     triggers(trigger('{"type": @"motion-detection"}', tags='{"camera": {"area": "dock"}}'))),
    ("no-detecting-camera", 'No camera with these tags takes part in object detection ("objectDetection" in the '
                            'inventory).',
     triggers(trigger('{"type": @"object-detection", "searchItem": {"type": "car"}},' + PERSON.replace("car", "truck"),
                      tags='{"camera": {"area": "hall"}}'))),
    ("filter-matches-no-subscription", "No generic subscription has any of these tags; correct the filter, or tag the "
                                       "subscriptions that are meant.",
     triggers(trigger(tags='{"eventSubscription": @{"door": "side"}}'))),
    ("duration-wraps", "4294968 is too long for this setting and becomes 704 ms; the longest is 4294967.",
     '{"triggers": [], "properties": {"notificationAckTimeoutSecs": @4294968}}'),
    ("duration-wraps", "71583 is too long for this setting and becomes 12704 ms; the longest is 71582.",
     '{"triggers": [], "properties": {"notificationDigestCooldownMins": @71583}}'),
]


def placed(marked):
    """The text without its mark, and the line and column of that; none without a mark."""
    before, mark, after = marked.partition("@")
    return before + after, (before.count("\n") + 1, len(before) - before.rfind("\n")) if mark else None


class Every_Warning(Site):
    def setUp(self):
        super().setUp()
        inventory = small_inventory()
        inventory["cameras"].append({"id": 12, "name": "hall", "tags": {"area": "hall"}})
        inventory["schedules"] += [{"id": 3, "name": "days"}, {"id": 4, "name": "nights"}]
        self.init(inventory)

    def documents(self, texts):
        """Writes a configuration and perhaps a mapping; answers their names and the marked place of one of them."""
        names, place = [], None
        for name, text in zip(("config", "mapping"), texts):
            plain, found = placed(text)
            names.append(self.write(name + ".json", plain))
            if found:
                place = (name, *found)
        return names, place

    def test_has_its_code_its_place_and_its_text_whatever_the_command(self):
        for code, message, *texts in CASES:
            names, place = self.documents(texts)
            for command in (["check", *names], ["apply", *names], ["refresh"]):
                with self.subTest(code, message=message, command=command[0]):
                    outcome = self.run_tool("--json", *command)
                    self.assertEqual((outcome.status, outcome.json["success"], outcome.json["errors"]), (DONE, True, []))
                    [warning] = outcome.json["warnings"]
                    self.assertEqual((warning["code"], warning["message"]), (code, message))
                    self.assertEqual((warning["document"], warning["line"], warning["column"]), place)
                    about_trigger = '"properties"' not in texts[0] and "triggerMappings" not in texts[-1]
                    self.assertEqual((warning.get("id"), "index" in warning), (7 if about_trigger else None, about_trigger))
            self.run_tool("apply", self.write("none.json", PLAIN), self.write("nothing.json", '{"triggerMapping": []}'))

    def test_is_quoted_for_people_with_a_mark_under_the_value(self):
        for code, message, *texts in CASES:
            names, (document, line, column) = self.documents(texts)
            for command in (["check", *names], ["apply", *names]):
                with self.subTest(code, message=message, command=command[0]):
                    lines = self.run_tool(*command).text.splitlines()
                    [place] = [number for number, text in enumerate(lines) if
                               text.startswith(f"{document}.json:{line}:{column}: warning: {message}")]
                    mark = lines[place + 2].index("^")
                    quoted = placed(texts[document == "mapping"])[0].splitlines()[line - 1]
                    self.assertTrue(lines[place + 1][mark:].removesuffix("...") and
                                    quoted[column - 1:].startswith(lines[place + 1][mark:].removesuffix("...")))
            self.run_tool("apply", self.write("none.json", PLAIN), self.write("nothing.json", '{"triggerMapping": []}'))

    def test_rejects_where_it_shall_and_nothing_changes(self):
        self.run_tool("apply", self.write("none.json", PLAIN))
        before = self.rows()
        for code, message, *texts in CASES:
            names, _place = self.documents(texts)
            for command in ("check", "apply"):
                with self.subTest(code, message=message, command=command):
                    outcome = self.run_tool("--json", command, "--strict", *names)
                    self.assertEqual((outcome.status, outcome.json["success"], outcome.json["errors"],
                                      [warning["code"] for warning in outcome.json["warnings"]]),
                                     (REJECTED, False, [], [code]))
        self.assertEqual(self.rows(), before)

    def test_is_not_given_where_none_is_due(self):
        elsewhere = trigger('{"type": "radar"}', 7, '{"server": {"site": "south"}, "camera": {"area": "roof"}}',
                            ', "scheduleIds": [9], "prio": 1')
        for why, *texts in [
                ("another server's trigger", triggers(elsewhere)),
                ("another server's trigger, mapped", triggers(elsewhere, trigger(number=8)),
                 '{"triggerMapping": [{"scheduleIds": [9], "triggerIds": [7]}]}'),
                ("a general type and a leaf", triggers(trigger(PERSON + "," + PERSON.replace("car", "vehicle")))),
                ("a topic that one of the cameras supports",
                 triggers(trigger('{"type": "onvif-metadata", "onvifTopic": "tns1:RuleEngine/LineDetector/Crossed"}'))),
                ("a type in other letters", triggers(trigger('{"type": "ONVIF-Metadata", "onvifTopic": '
                                                             '"tns1:VideoSource/MotionAlarm"}'))),
                ("detection on one of the cameras", triggers(trigger(PERSON + ', {"type": "motion-detection"}'))),
                ("one term of a filter that matches", triggers(trigger(tags='{"camera": {"area": ["roof", "gate"]}}'))),
                ("empty filters", triggers(trigger(tags='{"camera": {}, "server": null, "eventSubscription": {}}'))),
                ("an external source among others", triggers(trigger(SOURCE + ', {"type": "external"}'))),
                ("a mapping of own schedules", triggers(trigger(others=', "scheduleIds": [1, 3]')),
                 '{"triggerMapping": [{"scheduleIds": [3, 1], "triggerIds": [7]}]}'),
                ("an association of no schedules", triggers(trigger()),
                 '{"triggerMapping": [{"scheduleIds": [], "triggerIds": [7]}]}'),
                ("no list and no mapping", triggers(trigger(others=', "scheduleIds": null'))),
                ("durations that just fit", '{"triggers": [], "properties": {"notificationMaxLatencySecs": 4294967, '
                                            '"notificationDigestCooldownMins": 71582, '
                                            '"notificationNackDelayMs": 4294967295}}'),
                ("UTF-8", triggers(trigger(others=', "anyTime": true').replace('"T"', '"Tür \U0001f6aa"'))),
        ]:
            names, _place = self.documents(texts)
            for command in (["check", "--strict", *names], ["apply", "--strict", *names], ["refresh", "--strict"]):
                with self.subTest(why, command=command[0]):
                    outcome = self.run_tool("--json", *command)
                    self.assertEqual((outcome.status, outcome.json["errors"], outcome.json["warnings"]), (DONE, [], []))
            self.run_tool("apply", self.write("none.json", PLAIN), self.write("nothing.json", '{"triggerMapping": []}'))

    def test_is_about_no_object_type_where_the_inventory_names_none(self):
        self.sql("DELETE FROM meta_type")
        names, _place = self.documents([triggers(trigger(PERSON.replace("car", "unicorn")))])
        self.assertEqual(self.run_tool("--json", "check", *names).json["warnings"], [])

    def test_is_about_no_topic_that_is_subscribed_to_already(self):
        names, _place = self.documents([triggers(trigger(MOTION))])
        self.run_tool("apply", *names)
        inventory = small_inventory()
        for camera in inventory["cameras"]:
            camera["capabilities"] = {}
        self.init(inventory)
        for command in (["check", *names], ["apply", *names], ["refresh"]):
            self.assertEqual(self.run_tool("--json", *command).json["warnings"], [])
        self.assertEqual([record["triggerIds"] for record in self.show("subscriptions") if record["cameraId"]], [[7], [7]])

    def test_is_not_looked_for_in_what_the_pass_does_not_read(self):
        self.sql("UPDATE capability_document SET text = ?", "damaged")
        names, _place = self.documents([triggers(trigger(MOTION, others=', "scheduleIds": [2]'))])
        for command in (["check", *names], ["apply", *names], ["refresh"]):
            with self.subTest(command[0]):
                outcome = self.run_tool("--json", *command)
                self.assertEqual((outcome.status, [warning["code"] for warning in outcome.json["warnings"]]),
                                 (DONE, ["schedule-not-usable"]))

    def test_leaves_a_fault_of_the_database_to_the_pass(self):
        self.sql("UPDATE capability_document SET text = ?", "damaged")
        names, _place = self.documents([triggers(trigger(MOTION))])
        for strictness in ([], ["--strict"]):
            outcome = self.run_tool("--json", "apply", *strictness, *names)
            self.assertEqual((outcome.status, outcome.json["warnings"]), (FAILED, []))
            [error] = outcome.json["errors"]
            self.assertRegex(error["message"], "^Failed to update trigger config: .* capability document of camera 10 is corrupt")


if __name__ == "__main__":
    unittest.main()
