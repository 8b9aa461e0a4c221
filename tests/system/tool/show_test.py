"""show: the JSON forms to the letter, and tables for people that no name can spoil."""

import unittest

from tool_site import (CROSSED, DONE, FAILED, MOTION, NUL, TRIGGER_ERRORS, Site, camera, config, mapping,
                       object_source, on_postgresql, on_sqlite, topic_source, trigger)

NO_UTF8 = b'{"triggers": [{"id": 7, "name": "bad \xff\xfe\xc3 name", "tags": {}, "sources": [' \
          b'{"type": "onvif-metadata", "onvifTopic": "\x80\xc0"}]}, ' \
          b'{"id": 8, "name": "good name", "tags": {}, "sources": [{"type": "motion-detection"}]}]}'


def activity(duration, **others):
    return {"activityDuration": {"minDurationMs": duration, **others}}


class Shown_Records(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def test_triggers_have_their_sources_in_the_form_of_the_configuration(self):
        self.apply(config(
            trigger(9, {"type": "metadata-event"}, {"type": "audio-detection"}, {"type": "Motion-Detection"}),
            trigger(7,
                    object_source("person", **activity(2000, mode="object-track")),
                    object_source("car", **activity(1000, dropoutMs=3000)),
                    {"type": "object-detection", "searchItem": {"type": "bus", "motionRequired": True}},
                    {"type": "motion-detection", **activity(5000, mode="object-track", dropoutMs=1000)},
                    topic_source(CROSSED), topic_source(MOTION), {"type": "external"}, scheduleIds=[1])))
        [seven, nine] = self.show("triggers")
        self.assertEqual(nine, {
            "id": 9, "name": "trigger 9", "scheduleIds": [],
            "sources": [{"type": "metadata-event"}, {"type": "motion-detection"}, {"type": "audio-detection"}]})
        self.assertEqual({key: seven[key] for key in seven if key != "sources"},
                         {"id": 7, "name": "trigger 7", "scheduleIds": [1]})
        self.assertCountEqual(seven["sources"], [
            {"type": "onvif-metadata", "onvifTopic": CROSSED},
            {"type": "onvif-metadata", "onvifTopic": MOTION},
            {"type": "object-detection", "searchItem": {"type": "bus", "motionRequired": True}},
            {"type": "object-detection", "searchItem": {"type": "car", "motionRequired": False},
             "activityDuration": {"mode": "object-presence", "minDurationMs": 1000, "dropoutMs": 3000}},
            {"type": "object-detection", "searchItem": {"type": "person", "motionRequired": False},
             "activityDuration": {"mode": "object-track", "minDurationMs": 2000}},
            {"type": "motion-detection",
             "activityDuration": {"mode": "object-presence", "minDurationMs": 5000, "dropoutMs": 1000}},
        ])

    def test_subscriptions_of_both_kinds_have_every_key(self):
        self.apply(config(trigger(9, topic_source(CROSSED), {"type": "metadata-event"}),
                          trigger(7, topic_source(CROSSED), {"type": "metadata-event"})))
        self.assertEqual(self.show("subscriptions"), [
            {"id": 1, "name": CROSSED, "onvifTopic": CROSSED, "cameraId": 10, "triggerIds": [7, 9], "tags": {},
             "categoryId": None, "cameraIds": []},
            {"id": 3, "name": "door forced", "onvifTopic": None, "cameraId": None, "triggerIds": [7, 9],
             "tags": {"door": "main"}, "categoryId": 1, "cameraIds": [10, 11]},
        ])

    def test_detection_records_name_their_camera_and_triggers(self):
        self.apply(config(trigger(9, object_source()), trigger(7, object_source())))
        self.assertEqual(self.show("detection"), [{"id": 1, "cameraId": 10, "triggerIds": [7, 9]},
                                                  {"id": 2, "cameraId": 11, "triggerIds": [7, 9]}])

    def test_cameras_say_what_they_take_part_in_and_report(self):
        self.assertEqual(self.show("cameras"), [
            {"id": 10, "name": "camera 10", "tags": {"area": "gate"}, "objectDetection": True,
             "motionDetection": True, "onvifTopics": [CROSSED, MOTION]},
            {"id": 11, "name": "camera 11", "tags": {"area": "dock"}, "objectDetection": True,
             "motionDetection": False, "onvifTopics": [MOTION]},
        ])

    def test_the_schedules_of_a_trigger_are_in_ascending_order(self):
        self.init({"schedules": [{"id": number} for number in (4, 30, 200)]})
        self.apply(config(trigger(7, scheduleIds=[200, 4, 30])), mapping(([200, 4], [7])))
        self.assertEqual(self.show("triggers")[0]["scheduleIds"], [4, 30, 200])

    def test_nothing_is_an_empty_list(self):
        self.sql("DELETE FROM subscription")
        for what in ("triggers", "subscriptions", "detection"):
            with self.subTest(what):
                self.assertEqual(self.show(what), [])

    def test_no_document_yet_is_said_so(self):
        self.assertEqual(self.run_tool("show", "config").text, "No configuration is stored yet.\n")
        self.assertEqual(self.run_tool("show", "mapping").text, "No mapping is stored yet.\n")
        self.assertEqual((self.show("config"), self.show("mapping")), ({}, {}))

    def test_people_read_tables(self):
        self.apply(config(trigger(7, topic_source(CROSSED), object_source("vehicle"), scheduleIds=[1])))
        tables = {
            "triggers": f"""\
ID  NAME       SCHEDULES  SOURCES
7   trigger 7  1          onvif-metadata {CROSSED}, object-detection vehicle
""",
            "subscriptions": f"""\
ID  CAMERA  TOPIC (OR NAME)                       TAGS       TRIGGERS
1   10      {CROSSED}             7
3   -       (door forced)                         door=main  
""",
            "detection": """\
ID  CAMERA  TRIGGERS
1   10      7
2   11      7
""",
            "cameras": """\
ID  NAME       TAGS       DETECTS          TOPICS
10  camera 10  area=gate  objects  motion  2
11  camera 11  area=dock  objects  -       1
""",
        }
        for what, table in tables.items():
            with self.subTest(what):
                self.assertEqual(self.run_tool("show", what).text, table)


STRANGE_NAMES = {
    "quotes": 'the "main" \'door\' \\ gate',
    "lines": "one\ntwo\r\nthree\tfour",
    "other scripts": "Tür 門 ворота 🚪 e\u0301",
    "a terminal's commands": "\x1b[31mred\x1b]0;title\x07 \x7f \u009b31m",
    "a megabyte": "x" * (1 << 20),
    "nothing": "",
    "SQL": "'; DROP TABLE trigger_record; --",
}


class Strange_Texts(Site):
    @on_sqlite
    def test_names_with_a_nul_come_back_as_they_were_given(self):
        self.assert_to_come_back("before\0after")

    def test_names_come_back_as_they_were_given(self):
        for what, name in STRANGE_NAMES.items():
            with self.subTest(what):
                self.assert_to_come_back(name)

    def assert_to_come_back(self, name):
        self.init({"servers": [{"id": 1, "name": name}], "cameras": [{**camera(10, [MOTION]), "name": name}],
                   "subscriptions": [{"id": 3, "name": name, "tags": {"tag": name}}]})
        answer = self.apply(config({**trigger(7), "name": name}))
        self.assertEqual(answer["errors"], [])
        self.assertEqual(self.show("triggers")[0]["name"], name)
        self.assertEqual(self.show("cameras")[0]["name"], name)
        [generic] = [record for record in self.show("subscriptions") if record["id"] == 3]
        self.assertEqual((generic["name"], generic["tags"]), (name, {"tag": name}))

    def test_topics_are_compared_whole_whatever_they_consist_of(self):
        topics = ["tns1:a.b.c", "tns1:a/b/c", "tns1:RuleEngine//.", "with a space", " ", "Überfahrt/門",
                  "line\nbreak", f"nul{NUL}inside", f"nul{NUL}elsewhere", "\x1b[2J", "quote\"'", "a", "A", "a/",
                  "." * 5000]
        self.init({"servers": [{"id": 1}], "cameras": [camera(10, topics), camera(11, ["tns1:a.b", "b"])]})
        answer = self.apply(config(*[trigger(number, topic_source(topic)) for number, topic in enumerate(topics)]))
        self.assertEqual(answer["errors"], [])
        self.assertEqual(answer["state"]["onvifTopicsByTrigger"],
                         {str(number): {"10": [topic]} for number, topic in enumerate(topics)})
        self.assertCountEqual([record["onvifTopic"] for record in self.show("subscriptions")], topics)
        [first, _] = self.show("cameras")
        self.assertCountEqual(first["onvifTopics"], topics)

    def test_no_control_character_reaches_the_terminal(self):
        hostile = f"\x1b[31mred\x07\r\n{NUL}\x7f\u009b2J"
        self.init({"servers": [{"id": 1}],
                   "cameras": [camera(10, [hostile], {hostile: hostile}, objectDetection=True)],
                   "subscriptions": [{"id": 3, "name": hostile, "tags": {hostile: hostile}}]})
        sources = (topic_source(hostile), object_source(hostile), {"type": "metadata-event"})
        self.apply(config({**trigger(7, *sources), "name": hostile}))
        for what in ("triggers", "subscriptions", "detection", "cameras"):
            with self.subTest(what):
                shown = self.run_tool("show", what).text
                self.assertEqual([character for character in shown
                                  if character != "\n" and (ord(character) < 32 or 127 <= ord(character) < 160)], [])
        escaped = "\\x1b[31mred\\x07\\x0d\\x0a" + ("\\x00" if NUL else "") + "\\x7f"
        self.assertIn(escaped, self.run_tool("show", "triggers").text)

    def test_no_control_character_of_a_faulty_document_reaches_the_terminal(self):
        self.init()
        hostile = {"tags": {"camera": {"\x1b[31m": 1}}}
        name = self.write("config\x1b[1m.json", config(trigger(7, **hostile)))
        outcome = self.run_tool("check", name)
        self.assertNotIn(b"\x1b", outcome.out + outcome.err)
        self.assertIn("\\x1b[31m", outcome.text)
        stray = self.run_tool("check", self.write("stray.json", b'{"triggers": 1, "\x80\x9b31m \xc2\x9b \xff\xc3": 1}'))
        self.assertEqual(stray.text, """\
stray.json:1:14: error: Missing "triggers" array.
    {"triggers": 1, "\\x80\\x9b31m \\u009b \\xff\\xc3": 1}
                 ^
stray.json:1:17: warning: This text has bytes that are no UTF-8, the first one 0x80; save the document as UTF-8.
    {"triggers": 1, "\\x80\\x9b31m \\u009b \\xff\\xc3": 1}
                    ^
stray.json:1:17: warning: Unknown key "\\x80\\x9b31m \\u009b \\xff\\xc3" is ignored; known here: "properties", "triggers".
    {"triggers": 1, "\\x80\\x9b31m \\u009b \\xff\\xc3": 1}
                    ^
""")
        missing = self.run_tool("check", "missing\x1b[1m.json")
        self.assertNotIn(b"\x1b", missing.out + missing.err)
        failed = self.run_tool("--database", f"{self.behind.absent}\x1b[1m", "show", "triggers")
        self.assertEqual(failed.status, FAILED)
        self.assertNotIn(b"\x1b", failed.out + failed.err)

    @on_sqlite
    def test_bytes_that_are_no_utf8_do_not_break_json(self):
        self.init()
        applied = self.run_tool("--json", "apply", self.write("config.json", NO_UTF8))
        self.assertEqual((applied.status, applied.json["errors"]), (DONE, []))
        self.assertTrue(self.show("triggers")[0]["name"].startswith("bad "))
        self.assertEqual(self.run_tool("show", "config").out, NO_UTF8)
        self.assertIn("bad \\xff\\xfe\\xc3 name", self.run_tool("show", "triggers").text)
        self.assertIn("onvif-metadata \\x80\\xc0", self.run_tool("show", "triggers").text)

    @on_postgresql
    def test_bytes_that_are_no_utf8_are_the_error_of_their_trigger(self):
        self.init()
        applied = self.run_tool("--json", "apply", self.write("config.json", NO_UTF8))
        self.assertEqual((applied.status, applied.json["errors"]), (TRIGGER_ERRORS, [
            {"category": 1, "message": "Trigger 7: Failed to process config (Failed to create trigger)."}]))
        self.assertEqual([record["id"] for record in self.show("triggers")], [8])
        self.assertEqual(self.run_tool("show", "config").out, NO_UTF8)
        self.assertEqual(self.run_tool("refresh").status, TRIGGER_ERRORS)


if __name__ == "__main__":
    unittest.main()
