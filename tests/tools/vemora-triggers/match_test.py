# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""match: which triggers an event is told to, and many. What it says of random sites, damaged ones among them, is judged
by a plain model (site_model.py).

    SITES=300   how many random sites
"""

import collections
import copy
import json
import os
import unittest

from random_site import CAMERAS, SUBSCRIPTIONS, TOPICS, TYPES, Random_Site
from site_model import Model, Records, leaves, matches
from tool_site import (CROSSED, DONE, ENGINE, LARGEST_ID, MOTION, REJECTED, WRONG_USAGE, Site, camera, config,
                       mapping, object_source, topic_source, trigger)

SITES = int(os.environ.get("SITES", "20" if ENGINE == "sqlite" else "4"))


def lines(events):
    return "".join(json.dumps(event) + "\n" for event in events)


class Matched(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def match(self, *arguments):
        outcome = self.run_tool("--json", "match", *map(str, arguments))
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
        return outcome.json

    def count(self, events):
        self.write("events", lines(events))
        return self.match("--events", "events")


class One_Event(Matched):
    def test_the_form_is_the_documented_one(self):
        self.apply(config(trigger(7), trigger(8, tags={"camera": {"area": "dock"}})))
        self.assertEqual(self.match("--camera", 10, "--topic", MOTION), {
            "triggers": [7],
            "nearMisses": [{"id": 8, "reasons": [
                {"code": "camera-filter",
                 "text": "The camera filter asks for area=dock; camera 10 has area=gate."}]}]})

    def test_a_trigger_for_other_events_is_no_near_miss(self):
        self.apply(config(trigger(7, topic_source(CROSSED)), trigger(8, {"type": "motion-detection"})))
        self.assertEqual(self.match("--camera", 10, "--topic", MOTION), {"triggers": [], "nearMisses": []})

    def test_an_object_reaches_those_who_search_for_what_it_is(self):
        self.apply(config(trigger(7, object_source("vehicle")), trigger(8, object_source("car")),
                          trigger(9, object_source("truck"))))
        self.assertEqual(self.match("--camera", 10, "--object", "car"), {"triggers": [7, 8], "nearMisses": []})
        self.assertEqual(self.match("--camera", 10, "--object", "vehicle"), {
            "triggers": [],
            "nearMisses": [{"id": 7, "reasons": [
                {"code": "general-object-type",
                 "text": 'Object type "vehicle" stands for car, truck; what is detected has one of those.'}]}]})

    def test_one_that_stands_still_does_not_reach_those_who_want_motion(self):
        moving = {"type": "object-detection", "searchItem": {"type": "car", "motionRequired": True}}
        self.apply(config(trigger(7, moving), trigger(8, moving, object_source("vehicle"))))
        self.assertEqual(self.match("--camera", 10, "--object", "car", "--in-motion")["triggers"], [7, 8])
        still = self.match("--camera", 10, "--object", "car")
        self.assertEqual(still["triggers"], [8])
        self.assertEqual([(one["id"], [reason["code"] for reason in one["reasons"]]) for one in still["nearMisses"]],
                         [(7, ["motion-required"])])

    def test_motion_and_generic_events_reach_their_triggers(self):
        self.apply(config(trigger(7, {"type": "motion-detection"}), trigger(8, {"type": "metadata-event"}),
                          trigger(9, {"type": "metadata-event"}, tags={"eventSubscription": {"door": "back"}})))
        self.assertEqual(self.match("--camera", 10, "--motion"), {"triggers": [7], "nearMisses": []})
        self.assertEqual([reason["code"] for reason in self.match("--camera", 11, "--motion")["nearMisses"][0]["reasons"]],
                         ["no-motion-detection"])
        heard = self.match("--subscription", 3)
        self.assertEqual((heard["triggers"], [one["id"] for one in heard["nearMisses"]]), ([8], [9]))

    def test_an_event_that_the_camera_does_not_report_is_told_as_the_records_say(self):
        self.init({"cameras": [camera(12, motionDetection=True)]})
        state = self.apply(config(trigger(7, object_source("person"), {"type": "motion-detection"}),
                                  trigger(8, object_source("person"))))["state"]
        self.assertEqual([list(state["searchItemsByTrigger"][number]) for number in ("7", "8")],
                         [["10", "11", "12"], ["10", "11"]])
        matched = self.match("--camera", 12, "--object", "person")
        self.assertEqual((matched["triggers"], [one["id"] for one in matched["nearMisses"]]), ([7], [8]))
        self.assertEqual(matched["nearMisses"][0]["reasons"],
                         [{"code": "no-object-detection", "text": "Camera 12 takes no part in object detection."}])
        self.assertIn("\nThey would be, but: Camera 12 takes no part in object detection.\n",
                      self.run_tool("match", "--camera", "12", "--object", "person").text)
        self.assertIn("\nThey would be, but: Camera 11 takes no part in motion detection.\n",
                      self.run_tool("match", "--camera", "11", "--motion").text)
        self.assertNotIn("They would be", self.run_tool("match", "--camera", "10", "--object", "person").text)

    def test_an_inactive_trigger_is_a_near_miss(self):
        self.apply(config(trigger(7, scheduleIds=[2])))
        self.assertEqual([reason["code"] for reason in
                          self.match("--camera", 10, "--topic", MOTION)["nearMisses"][0]["reasons"]],
                         ["schedule-not-usable"])

    def test_what_the_site_does_not_have_is_wrong_usage(self):
        self.apply(config(trigger(7)))
        for arguments, complaint in (
                (("--camera", "12", "--motion"), "The site has no camera 12."),
                (("--subscription", "1"), "The site has no generic subscription 1."),
                (("--camera", "10"), "--camera needs one of --topic, --object and --motion"),
                (("--camera", "10", "--topic", "a", "--motion"), "--camera needs one of"),
                (("--subscription", "3", "--topic", "a"), "--topic, --object and --motion need --camera"),
                (("--camera", "10", "--motion", "--in-motion"), "--in-motion needs --object"),
                (("--camera", "10", "--motion", "--against", "x"), "--against needs --events"),
                (("--events", "-", "--against", "-"), "only one input can be -"),
                ((), "one of --camera, --subscription and --events is required"),
                (("--topic", MOTION), "one of --camera, --subscription and --events is required"),
                (("--subscription", "3", "--camera", "10", "--motion"), "one of --camera"),
                (("--subscription", "3", "--events", "x"), "one of --camera")):
            with self.subTest(arguments):
                outcome = self.run_tool("match", *arguments)
                self.assertEqual((outcome.status, outcome.out), (WRONG_USAGE, b""))
                self.assertIn(complaint, outcome.err.decode())

    def test_it_writes_nothing_and_waits_for_nobody(self):
        self.apply(config(trigger(7)))
        before = self.rows()
        with self.behind.locked():
            self.match("--camera", 10, "--topic", MOTION)
            self.count([{"camera": 10, "motion": True}])
        self.assertEqual(self.rows(), before)

    def test_people_read_tables(self):
        self.apply(config(trigger(7), trigger(8, tags={"camera": {"area": "dock"}})))
        self.assertEqual(self.run_tool("match", "--camera", "10", "--topic", MOTION).text, """\
TOLD  NAME
7     trigger 7

NOT TOLD  NAME       WHY
8         trigger 8  The camera filter asks for area=dock; camera 10 has area=gate.
""")
        self.assertEqual(self.run_tool("match", "--camera", "10", "--motion").text, "No trigger is told of it.\n")
        self.write("events", lines([{"camera": 10, "topic": MOTION}] * 2 + [{"subscription": 3}]))
        self.assertEqual(self.run_tool("match", "--events", "events").text, """\
TRIGGER  EVENTS
7        2
3 events, 1 that no trigger is told of.
""")


class Many_Events(Matched):
    def setUp(self):
        super().setUp()
        self.apply(config(trigger(7), trigger(8, object_source("vehicle"))))

    def test_each_is_counted_for_each_trigger_that_is_told(self):
        self.assertEqual(self.count([
            {"camera": 10, "topic": MOTION}, {"camera": 11, "topic": MOTION}, {"camera": 10, "topic": CROSSED},
            {"camera": 10, "object": "car"}, {"camera": 10, "object": "car", "inMotion": True},
            {"camera": 10, "object": "cat"}, {"camera": 99, "motion": True}, {"camera": 10, "motion": True},
            {"subscription": 3}, {"subscription": LARGEST_ID}]),
            {"events": 10, "unheard": 6, "triggers": {"7": 2, "8": 2}})

    def test_they_may_come_from_standard_input_and_in_any_layout(self):
        outcome = self.run_tool("--json", "match", "--events", "-",
                                given=b'\n{"topic": "%s", "camera": 10}\r\n \t\r\n {"camera":1e1,"motion":true}'
                                      % MOTION.encode())
        self.assertEqual((outcome.status, outcome.json), (DONE, {"events": 2, "unheard": 1, "triggers": {"7": 1}}))

    def test_no_events_are_none(self):
        self.assertEqual(self.count([]), {"events": 0, "unheard": 0, "triggers": {}})

    def test_a_damaged_line_is_told_with_its_number(self):
        good = json.dumps({"camera": 10, "motion": True})
        for line, column, message in (
                ("{", 2, None), ('{"camera": 10,}', 15, None), ("[]", 1, "An event must be a JSON object."),
                ("7", 1, None), ('{"camera": 10, "camera": 10, "motion": true}', None, None),
                ('{"topic": "a"}', 1, 'The event has no "camera".'),
                ('{"camera": 10}', 1, 'The event has none of "topic", "object" and "motion".'),
                ('{"camera": "10", "motion": true}', 12, '"camera" must be an unsigned 64-bit integer.'),
                ('{"camera": -1, "motion": true}', 12, '"camera" must be an unsigned 64-bit integer.'),
                ('{"camera": 10, "topic": ""}', 25, '"topic" must be a string that is not empty.'),
                ('{"camera": 10, "object": 3}', 26, '"object" must be a string that is not empty.'),
                ('{"camera": 10, "object": "ä", "inMotion": 1}', 43, '"inMotion" must be true or false.'),
                ('{"camera": 10, "object": "a", "inMotoin": true}', 43, 'An event of this kind has no key "inMotoin".'),
                ('{"camera": 10, "motion": false}', 26,
                 '"motion" must be true: what does not happen is no event.'),
                ('{"subscription": 3, "camera": 10}', 31, 'An event of this kind has no key "camera".'),
                ('{"camera": 10, "motion": true} {}', 32, None)):
            with self.subTest(line):
                self.write("events", f"{good}\n\n{line}\n{good}\n")
                outcome = self.run_tool("--json", "match", "--events", "events")
                self.assertEqual(outcome.status, REJECTED)
                [fault] = outcome.json["errors"]
                self.assertEqual((fault["document"], fault["line"]), ("events", 3))
                if column is not None:
                    self.assertEqual(fault["column"], column)
                if message is not None:
                    self.assertEqual(fault["message"], message)
                self.assertIn("events:3:", self.run_tool("match", "--events", "events").text)

    def test_a_line_without_an_end_is_given_up(self):
        self.write("events", b"\n" + b" " * (2 << 20))
        outcome = self.run_tool("--json", "match", "--events", "events")
        self.assertEqual((outcome.status, outcome.json["errors"][0]["line"]), (REJECTED, 2))

    def test_a_file_that_cannot_be_read_is_told(self):
        for name in ("none", "."):
            outcome = self.run_tool("match", "--events", name)
            self.assertEqual(outcome.status, REJECTED)
            self.assertRegex(outcome.text, "cannot (open|read)")


class Other_Documents(Matched):
    def against(self, events, *documents, expected=DONE):
        self.write("events", lines(events))
        names = [self.write(f"other{number}.json", document) for number, document in enumerate(documents)]
        outcome = self.run_tool("--json", "match", "--events", "events", "--against", *names)
        self.assertEqual((outcome.status, outcome.err), (expected, b""), outcome.out)
        return outcome.json

    def test_who_gains_and_who_loses_which_events_where_and_why(self):
        self.apply(config(trigger(7), trigger(8, {"type": "metadata-event"})))
        before = self.rows()
        events = [{"camera": 10, "topic": MOTION}] * 3 + [{"camera": 11, "topic": MOTION}, {"subscription": 3}]
        self.assertEqual(
            self.against(events, config(trigger(7, tags={"camera": {"area": "gate"}}), trigger(9))),
            {"events": 5, "unheard": 0, "triggers": {"7": 4, "8": 1},
             "gained": [{"trigger": 9, "camera": number, "events": count, "reasons": [
                 {"code": "not-in-configuration", "text": "The configuration has no such trigger."}]}
                        for number, count in ((10, 3), (11, 1))],
             "lost": [{"trigger": 7, "camera": 11, "events": 1, "reasons": [
                 {"code": "camera-filter",
                  "text": "The camera filter asks for area=gate; camera 11 has area=dock."}]},
                      {"trigger": 8, "subscription": 3, "events": 1, "reasons": [
                          {"code": "not-in-configuration", "text": "The configuration has no such trigger."}]}]})
        self.assertEqual(self.rows(), before)

    def test_a_source_that_is_taken_out_is_the_reason(self):
        self.apply(config(trigger(7, topic_source(MOTION), topic_source(CROSSED))))
        [lost] = self.against([{"camera": 10, "topic": CROSSED}], config(trigger(7)))["lost"]
        self.assertEqual([reason["code"] for reason in lost["reasons"]], ["no-such-source"])

    def test_a_mapping_may_be_given_too(self):
        documents = config(trigger(7, scheduleIds=[1]))
        self.apply(documents)
        events = [{"camera": 10, "topic": MOTION}]
        self.assertEqual(self.against(events, documents)["lost"], [])
        [lost] = self.against(events, documents, mapping(([2], [7])))["lost"]
        self.assertEqual([reason["code"] for reason in lost["reasons"]], ["schedule-not-usable"])

    def test_documents_with_faults_are_rejected(self):
        self.apply(config(trigger(7)))
        [fault] = self.against([], config({**trigger(7), "name": 1}), expected=REJECTED)["errors"]
        self.assertEqual((fault["document"], fault["message"]), ("config", '"name" field is missing or invalid.'))

    def test_people_read_tables(self):
        self.apply(config(trigger(7)))
        self.write("events", lines([{"camera": 10, "topic": MOTION}]))
        self.write("none.json", config())
        self.assertEqual(self.run_tool("match", "--events", "events", "--against", "none.json").text, """\
TRIGGER  EVENTS
7        1
1 event, 0 that no trigger is told of.

LOST BY  FROM       EVENTS  WHY
7        camera 10  1       The configuration has no such trigger.
""")
        self.assertIn("With the other documents the same triggers are told.",
                      self.run_tool("match", "--events", "events", "--against", "config.json").text)


class Random_Sites(Matched):
    def setUp(self):
        Site.setUp(self)

    def test_match_agrees_with_the_model_for_every_event_of_the_site(self):
        for seed in range(1, SITES + 1):
            with self.subTest(seed=seed):
                self.live(Random_Site(1000 + seed), seed)
            self.behind.drop()
            for name in os.listdir(self.folder):
                os.remove(self.path(name))

    def live(self, site, seed):
        self.init(site.inventory)
        self.apply(site.config, site.mapping)
        if seed % 2 == 0:
            self.init(site.change())
        if seed % 3 != 0:
            site.damage(self.sql)
        records = Records(*(self.show(what) for what in ("triggers", "subscriptions", "detection")))
        model = Model(copy.deepcopy(site.inventory), site.config, site.mapping, records)
        types = {*TYPES, "truck", "unheard of"}
        events = [{"camera": number, "topic": topic} for number in CAMERAS for topic in [*TOPICS, "b"]]
        events += [{"camera": number, "object": name, "inMotion": moving}
                   for number in CAMERAS for name in sorted(types) for moving in (False, True)]
        events += [{"camera": number, "motion": True} for number in CAMERAS]
        events += [{"subscription": number} for number in SUBSCRIPTIONS]
        self.judge_all(model, events)
        self.judge_other_documents(model, Random_Site(site.random.randrange(1000)), events)
        known = set(model.cameras) | {place[1] for place in records.holders() if place[0] != "generic"}
        for event in site.random.sample(events, 10):
            if event.get("camera") in known or event.get("subscription") in records.generic:
                self.judge_one(model, event)

    def judge_all(self, model, events):
        """A file for each camera and subscription, in which each event stands another number of times."""
        by_place = collections.defaultdict(list)
        for event in events:
            by_place[(event.get("camera"), event.get("subscription"))].append(event)
        for some in by_place.values():
            repeated = [event for times, event in enumerate(some, 1) for _ in range(times)]
            told = [model.reached(event) for event in repeated]
            counts = collections.Counter(str(number) for one in told for number in one)
            self.assertEqual(self.count(repeated), {"events": len(repeated), "triggers": dict(counts),
                                                    "unheard": sum(not one for one in told)})

    def judge_other_documents(self, model, other, events):
        """A file of all events: each trigger's and place's gain and loss, by the model of either documents."""
        after = Model({**other.inventory, **model.inventory}, other.config, other.mapping, model.stored)
        self.write("events", lines(events))
        names = [self.write("other.json", other.config), self.write("others.json", other.mapping)]
        told = self.match("--events", "events", "--against", *names)
        expected = {"gained": collections.Counter(), "lost": collections.Counter()}
        codes = collections.defaultdict(set)
        for event in events:
            now, then = set(model.reached(event)), after.reached_after_refresh(event)
            place = ("subscription", event["subscription"]) if "subscription" in event else ("camera", event["camera"])
            for kind, numbers, why in (("gained", then - now, model), ("lost", now - then, after)):
                for number in numbers:
                    expected[kind][number, *place] += 1
                    codes[kind, number, *place].update(why.why_not(number, event))
        for kind, counts in expected.items():
            rows = {(row["trigger"], place, row[place]): row for row in told[kind]
                    for place in ("camera", "subscription") if place in row}
            self.assertEqual({key: row["events"] for key, row in rows.items()}, dict(counts))
            self.assertEqual(len(rows), len(told[kind]))
            for key, row in rows.items():
                self.assertTrue(row["reasons"], (kind, row))
                self.assertLessEqual({reason["code"] for reason in row["reasons"]}, codes[kind, *key], (kind, row))

    def judge_one(self, model, event):
        arguments = {"topic": ["--topic", event.get("topic")], "object": ["--object", event.get("object")],
                     "motion": ["--motion"], "subscription": []}
        kind = next(kind for kind in arguments if kind in event)
        place = ["--subscription", event["subscription"]] if kind == "subscription" else ["--camera", event["camera"]]
        moving = ["--in-motion"] if event.get("inMotion") else []
        matched = self.match(*place, *arguments[kind], *moving)
        self.assertEqual(matched["triggers"], model.reached(event))
        self.assertEqual([one["id"] for one in matched["nearMisses"]],
                         [number for number in sorted(model.triggers)
                          if number not in matched["triggers"] and self.is_meant(model, number, event)])
        for near_miss in matched["nearMisses"]:
            self.assert_true(model, near_miss, event, kind)

    @staticmethod
    def searched(model, number):
        """What the configuration asks for: general names, and leaves with whether motion is required."""
        names, found = set(), {}
        for source in model.triggers[number].sources:
            if source["type"] == "object-detection":
                names.add(source["searchItem"]["type"])
                for leaf in leaves(model.types, source["searchItem"]["type"]):
                    found[leaf] = found.get(leaf, True) and source["searchItem"]["motionRequired"]
        return names, found

    def is_meant(self, model, number, event):
        asked = model.triggers[number]
        if "topic" in event:
            return event["topic"] in asked.topics
        if "object" in event:
            names, found = self.searched(model, number)
            return event["object"] in names or event["object"] in found
        return ("motion-detection" if "motion" in event else "metadata-event") in asked.kinds

    def assert_true(self, model, near_miss, event, kind):
        """There is a reason, and each one is true by the model."""
        number, codes = near_miss["id"], [reason["code"] for reason in near_miss["reasons"]]
        self.assertTrue(codes)
        asked, place = model.triggers[number], event.get("camera", event.get("subscription"))
        facts = model.cameras.get(place, {})
        if kind == "topic":
            self.assertEqual(codes, model.topic(number, place, event["topic"])["reasons"])
            return
        if kind == "subscription":
            self.assertEqual(codes, model.subscription(number, place)["reasons"])
            return
        _, found = self.searched(model, number)
        detects = "objectDetection" if kind == "object" else "motionDetection"
        would = model.would_be(("detection", place), number)
        truths = {
            "camera-filter": not matches(facts.get("tags", {}), asked.camera_filter),
            "camera-not-found": place not in model.cameras,
            "no-object-detection": kind == "object" and not facts.get(detects, False),
            "no-motion-detection": kind == "motion" and not facts.get(detects, False),
            "general-object-type": kind == "object" and event["object"] in model.types,
            "motion-required": kind == "object" and found.get(event["object"], False) and not event["inMotion"],
            "not-refreshed": would and (kind == "motion" or (
                event["object"] in found and (event["inMotion"] or not found[event["object"]]))),
        }
        for code in codes:
            self.assertTrue(truths[code] if code in truths else code in model.inactivity(number), (code, near_miss))


if __name__ == "__main__":
    unittest.main()
