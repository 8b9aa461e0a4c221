# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""show: the JSON forms to the letter, and tables for people that no name can spoil."""

import fcntl
import json
import os
import pty
import struct
import tempfile
import termios
import unicodedata
import unittest

from tool_site import (CROSSED, DONE, ENGINE, FAILED, LARGEST_ID, MOTION, NUL, TRIGGER_ERRORS, WRONG_USAGE, Site,
                       camera, config, mapping, object_source, on_postgresql, on_sqlite, small_inventory, topic_source,
                       trigger)

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
7   trigger 7  1 always   onvif-metadata {CROSSED}, object-detection vehicle
""",
            "subscriptions": f"""\
ID  CAMERA        TOPIC (OR NAME)                       TAGS       TRIGGERS
1   10 camera 10  {CROSSED}             7 trigger 7
3   -             (door forced)                         door=main
""",
            "detection": """\
ID  CAMERA        OBJECTS  TRIGGERS
1   10 camera 10  vehicle  7 trigger 7
2   11 camera 11  vehicle  7 trigger 7
""",
            "cameras": """\
ID  NAME       TAGS       DETECTS          TOPICS
10  camera 10  area=gate  objects, motion  2
11  camera 11  area=dock  objects          1
""",
            "schedules": """\
ID  NAME     USABLE
1   always   yes
2   expired  no
""",
            "servers": """\
ID  NAME  TAGS
1   one   site=north
""",
            "object-types": """\
NAME     STANDS FOR
vehicle  car, truck
""",
        }
        for what, table in tables.items():
            with self.subTest(what):
                self.assertEqual(self.run_tool("show", what).text, table)


    def test_servers_schedules_and_object_types_are_lists_for_programs(self):
        self.assertEqual(self.show("servers"), [{"id": 1, "name": "one", "tags": {"site": "north"}}])
        self.assertEqual(self.show("schedules"), [{"id": 1, "name": "always", "usable": True},
                                                  {"id": 2, "name": "expired", "usable": False}])
        self.assertEqual(self.show("object-types"), [{"name": "vehicle", "standsFor": ["car", "truck"]}])

    def test_ids_ascend_as_unsigned_numbers(self):
        ids = [0, 7, 1 << 63, LARGEST_ID]
        self.init({"schedules": [{"id": number} for number in ids], "servers": [{"id": number} for number in ids]})
        for what in ("schedules", "servers"):
            shown = [record["id"] for record in self.show(what)]
            self.assertEqual(shown, sorted({*shown, *ids}))


class Selected_Records(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.apply(config(
            trigger(7, topic_source(CROSSED), object_source("vehicle"), scheduleIds=[1]),
            trigger(8, topic_source(MOTION), tags={"camera": {"area": "dock"}}),
            trigger(9, {"type": "metadata-event"}),
            trigger(17, scheduleIds=[2]), trigger(18, tags={"server": {"site": "south"}})))

    def ids(self, what, *filters):
        outcome = self.run_tool("--json", "show", what, *filters)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        people = self.run_tool("show", what, *filters)
        self.assertEqual(people.status, DONE)
        rows = people.text.split("\n\n")[0].splitlines()[1:]
        ids = [record["id"] for record in outcome.json]
        self.assertEqual([int(row.split()[0]) for row in rows], ids)
        return ids

    def test_of_one_camera(self):
        topics = {record["onvifTopic"]: record["id"] for record in self.show("subscriptions")}
        self.assertEqual(self.ids("triggers", "--camera", "10"), [7, 9])
        self.assertEqual(self.ids("triggers", "--camera", "11"), [7, 8, 9])
        self.assertEqual(self.ids("subscriptions", "--camera", "11"), sorted([topics[MOTION], 3]))
        self.assertEqual(self.ids("detection", "--camera", "11"), [2])
        self.assertEqual(self.ids("cameras", "--camera", "11"), [11])

    def test_of_one_trigger(self):
        topics = {record["onvifTopic"]: record["id"] for record in self.show("subscriptions")}
        self.assertEqual(self.ids("triggers", "--trigger", "8"), [8])
        self.assertEqual(self.ids("subscriptions", "--trigger", "7"), [topics[CROSSED]])
        self.assertEqual(self.ids("subscriptions", "--trigger", "9"), [3])
        self.assertEqual(self.ids("detection", "--trigger", "7"), [1, 2])
        self.assertEqual(self.ids("detection", "--trigger", "8"), [])
        self.assertEqual(self.ids("cameras", "--trigger", "8"), [11])
        self.assertEqual(self.ids("schedules", "--trigger", "7"), [1])

    def test_of_one_topic(self):
        topics = {record["onvifTopic"]: record["id"] for record in self.show("subscriptions")}
        self.assertEqual(self.ids("triggers", "--topic", MOTION), [8])
        self.assertEqual(self.ids("subscriptions", "--topic", CROSSED), [topics[CROSSED]])
        self.assertEqual(self.ids("cameras", "--topic", CROSSED), [10])
        self.assertEqual(self.ids("cameras", "--topic", "none"), [])

    def test_filters_together_select_what_each_of_them_does(self):
        self.assertEqual(self.ids("subscriptions", "--camera", "10", "--topic", MOTION), [])
        self.assertEqual(self.ids("triggers", "--camera", "11", "--topic", MOTION), [8])

    def test_in_the_order_of_a_column_with_numbers_by_their_value(self):
        self.init({"cameras": [{"id": number, "name": name} for number, name in
                               ((1, "gate 10"), (2, "gate 9"), (3, "attic"), (4, "gate 9"))]})
        self.assertEqual(self.ids("cameras", "--sort", "name"), [3, 10, 11, 2, 4, 1])
        self.assertEqual(self.ids("cameras", "--sort", "id"), [1, 2, 3, 4, 10, 11])
        self.assertEqual(self.ids("triggers", "--sort", "sources"), [9, 7, 8])

    def test_what_makes_no_sense_is_wrong_usage(self):
        for arguments, message in {
                ("servers", "--camera", "10"): "--camera does not select servers; it selects triggers, subscriptions, "
                                               "detection, cameras",
                ("inventory", "--trigger", "7"): "--trigger does not select inventory; it selects triggers, "
                                                 "subscriptions, detection, cameras, schedules",
                ("detection", "--topic", MOTION): "--topic does not select detection; it selects triggers, "
                                                  "subscriptions, cameras",
                ("cameras", "--sort", "nam"): "--sort: nam is no column of cameras; these are id, name, tags, detects, "
                                              "topics",
                ("config", "--sort", "id"): "--sort: config is a document and has no columns",
                ("cameras", "--camera", "99"): "The site has no camera 99.",
                ("triggers", "--camera", "99"): "The site has no camera 99.",
                ("triggers", "--trigger", "99"): "Trigger 99 is neither stored nor configured.",
                ("subscriptions", "--trigger", "17"): "No trigger 17 is stored; \"explain 17\" says why.",
                ("cameras", "--camera", "x"): "--camera: x is not an unsigned 64-bit number"}.items():
            with self.subTest(arguments):
                outcome = self.run_tool("show", *arguments)
                self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (
                    WRONG_USAGE, b"", f"vemora-triggers: {message}\nRun with --help for more information.\n"))
        self.assertEqual(self.run_tool("--json", "show", "triggers", "--trigger", "99").status, WRONG_USAGE)

    def test_triggers_that_are_not_stored_are_listed_with_the_reason(self):
        not_stored = """\
NOT STORED  NAME        WHY
17          trigger 17  Schedule 2 ("expired") is not usable; the trigger's own list names it.
18          trigger 18  The server filter asks for site=south; server 1 ("one") has site=north.
"""
        self.assertEqual(self.run_tool("show", "triggers").text.split("\n\n")[1], not_stored)
        self.assertEqual(self.run_tool("show", "triggers", "--trigger", "17").text, "".join(
            not_stored.splitlines(keepends=True)[:2]))
        self.assertNotIn("NOT STORED", self.run_tool("show", "triggers", "--camera", "10").text)
        self.init({"schedules": [{"id": 2, "usable": True}], "servers": [{"id": 1, "tags": {"site": "south"}}]})
        self.run_tool("refresh")
        self.assertNotIn("NOT STORED", self.run_tool("show", "triggers").text)

    def test_a_damaged_configuration_hides_no_stored_trigger(self):
        self.sql("DELETE FROM document WHERE kind = 'mapping'")
        self.sql("UPDATE document SET text = ? WHERE kind = 'config'", "{")
        shown = self.run_tool("show", "triggers")
        self.assertEqual(shown.status, DONE)
        table, note = shown.text.rsplit("\n", 2)[:2]
        self.assertIn("8   trigger 8", table)
        self.assertTrue(note.startswith("Which triggers are configured and not stored is not known: "), note)
        self.assertIn("the stored configuration is damaged", note)

    def test_the_topics_of_a_camera_are_listed_with_their_triggers(self):
        self.init({"cameras": [camera(10, [MOTION], {"area": "gate"})]})
        self.assertEqual(self.run_tool("show", "cameras", "--camera", "10").text, f"""\
ID  NAME       TAGS       DETECTS  TOPICS
10  camera 10  area=gate  -        1

TOPIC                                 SUPPORTED  TRIGGERS
{CROSSED}  no         7 trigger 7
{MOTION}          yes
""")

    def test_the_objects_of_a_detection_record_are_those_of_its_triggers(self):
        motion = {"type": "object-detection", "searchItem": {"type": "bus", "motionRequired": True}}
        self.apply(config(trigger(7, motion, object_source("person")), trigger(8, object_source("car"))))
        self.assertEqual(self.run_tool("show", "detection", "--camera", "10").text, """\
ID  CAMERA        OBJECTS                     TRIGGERS
1   10 camera 10  bus in motion, car, person  7 trigger 7; 8 trigger 8
""")


class Shown_Inventories(Site):
    def round_trip(self, *flags):
        """Makes a second site of the inventory that is shown."""
        shown = self.run_tool(*flags, "show", "inventory")
        self.assertEqual((shown.status, shown.err), (DONE, b""))
        first = {what: self.show(what) for what in self.KINDS}
        again = type(self.behind)(self.path("") if ENGINE == "postgresql" else tempfile.mkdtemp(dir=self.folder))
        self.addCleanup(again.drop)
        made = self.run_tool("--database", again.location, "init", "-", given=shown.out)
        self.assertEqual((made.status, made.err), (DONE, b""), made.out)
        self.assertEqual(self.run_tool("--database", again.location, *flags, "show", "inventory").out, shown.out)
        for what, records in first.items():
            self.assertEqual(self.run_tool("--database", again.location, "--json", "show", what).json, records)
        return shown.out

    KINDS = ("servers", "cameras", "schedules", "subscriptions", "object-types")

    def test_an_inventory_makes_the_same_site_again(self):
        self.init()
        for flags in ([], ["--json"]):
            with self.subTest(flags):
                self.round_trip(*flags)
        self.assertEqual(json.loads(self.run_tool("show", "inventory").out), {
            **small_inventory(),
            "cameras": [{"motionDetection": False, **record} for record in small_inventory()["cameras"]],
            "schedules": [{"usable": True, **record} for record in small_inventory()["schedules"]],
            "subscriptions": [{**small_inventory()["subscriptions"][0], "cameraIds": [10, 11]}]})

    def test_of_names_of_every_kind(self):
        for what, name in STRANGE_NAMES.items():
            with self.subTest(what):
                self.init({"servers": [{"id": LARGEST_ID, "name": name, "tags": {name: name, "t": None}}],
                           "cameras": [{**camera(10, [MOTION, name]), "name": name}],
                           "eventCategories": [{"id": 1, "name": name}], "objectTypes": {name: [name + "x"]},
                           "subscriptions": [{"id": 3, "name": name, "categoryId": 1, "tags": {name: name}}]})
                self.round_trip()

    @on_sqlite
    def test_of_names_that_are_no_utf8(self):
        self.write("inventory.json", b'{"cameras": [{"id": 7, "name": "T\xfcr", "tags": {"\xff": "\x80"}}]}')
        self.assertEqual(self.run_tool("init", "inventory.json").status, DONE)
        self.assertIn(b"T\xfcr", self.round_trip())

    def test_without_the_subscriptions_and_triggers_of_passes(self):
        self.init()
        before = self.run_tool("show", "inventory").out
        self.apply(config(trigger(7, topic_source(CROSSED), {"type": "metadata-event"})))
        self.assertEqual(self.run_tool("show", "inventory").out, before)


class Tables_On_Terminals(Site):
    LONG = "tns1:RuleEngine/CellMotionDetector/Motion"

    def shown(self, columns, *arguments):
        outcome = self.run_command(self.command("show", *arguments), env={**os.environ, "COLUMNS": str(columns)})
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        return outcome.text

    def setUp(self):
        super().setUp()
        self.init({"servers": [{"id": 1}], "schedules": [{"id": 1, "name": "nights and weekends"}], "cameras": [
            {**camera(10, [self.LONG], {"area": "gate"}), "name": "\u6b63\u9580 1"},
            {**camera(11, [self.LONG], {"area": "dock", "outdoor": None}), "name": "Du\u0308sseldorf"},
            {**camera(12, [self.LONG]), "name": "plain"}]})
        self.apply(config(trigger(7, topic_source(self.LONG), scheduleIds=[1]),
                          {**trigger(8, topic_source(self.LONG)), "name": "a very long name of a trigger"}))

    def test_wide_and_combining_characters_take_their_columns(self):
        self.assertEqual(self.shown(200, "cameras"), """\
ID  NAME        TAGS               DETECTS  TOPICS
10  \u6b63\u9580 1      area=gate          -        1
11  Du\u0308sseldorf  area=dock outdoor  -        1
12  plain                          -        1
""")

    def test_a_table_fits_the_width_and_a_column_without_text_is_left_out(self):
        self.assertEqual(self.shown(80, "subscriptions", "--camera", "12"), """\
ID  CAMERA    TOPIC (OR NAME)                   TRIGGERS
3   12 plain  tns1:RuleEngine/                  7 trigger 7; 8 a very long name
              CellMotionDetector/Motion         of a trigger
""")

    def test_a_cell_takes_twenty_lines_at_most_and_says_that_it_is_cut(self):
        self.init({"schedules": [{"id": 1, "name": "word " * 500}]})
        lines = self.shown(80, "schedules").splitlines()
        self.assertEqual(len(lines), 1 + 20)
        self.assertTrue(lines[-1].endswith(" word ..."), lines[-1])
        self.init({"schedules": [{"id": 1, "name": ("x" * 40 + " ") * 21}]})
        self.assertTrue(self.shown(60, "schedules").splitlines()[20].endswith("x ..."))

    def test_no_line_is_wider_than_the_terminal(self):
        for columns in (60, 80, 120, 200):
            for what in ("triggers", "subscriptions", "detection", "cameras", "schedules", "servers"):
                for line in self.shown(columns, what).splitlines():
                    self.assertLessEqual(width(line), columns, line)

    def test_without_a_terminal_a_row_is_a_line(self):
        environment = {name: value for name, value in os.environ.items() if name != "COLUMNS"}
        for columns in ({}, {"COLUMNS": ""}, {"COLUMNS": "0"}, {"COLUMNS": "wide"}):
            outcome = self.run_command(self.command("show", "subscriptions"), env={**environment, **columns})
            self.assertEqual(len(outcome.text.splitlines()), 4, outcome.text)

    def test_the_terminal_itself_says_how_wide_it_is(self):
        reading, writing = pty.openpty()
        fcntl.ioctl(writing, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 60, 0, 0))
        environment = {name: value for name, value in os.environ.items() if name != "COLUMNS"}
        self.run_command(self.command("show", "subscriptions"), env=environment, stdout=writing)
        os.close(writing)
        text = os.read(reading, 1 << 16).decode().replace("\r\n", "\n")
        os.close(reading)
        self.assertEqual(text, self.shown(60, "subscriptions"))
        self.assertGreater(len(text.splitlines()), 4)


def width(text):
    """The columns that a text takes."""
    return sum(0 if unicodedata.combining(letter) else 2 if unicodedata.east_asian_width(letter) in "WF" else 1
               for letter in text)


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
