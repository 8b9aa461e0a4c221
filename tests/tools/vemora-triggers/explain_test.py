# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""explain: why a trigger is or is not active, and where it listens. What it says of random sites, damaged ones among
them, is judged by a plain model (site_model.py).

    SITES=300   how many random sites
"""

import copy
import os
import unittest

from random_site import TRIGGERS, Random_Site
from site_model import Model, Records, codes_only
from tool_site import (CROSSED, DONE, ENGINE, FAILED, MOTION, TRIGGER_ERRORS, WRONG_USAGE, Site, camera, config,
                       mapping, object_source, on_postgresql, topic_source, trigger)

SITES = int(os.environ.get("SITES", "20" if ENGINE == "sqlite" else "6"))


class Explained(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def explain(self, *arguments):
        outcome = self.run_tool("--json", "explain", *map(str, arguments))
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
        return outcome.json

    def refreshed(self):
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual(outcome.status, DONE, outcome.out)
        return outcome.json


class One_Trigger(Explained):
    def test_the_form_is_the_documented_one(self):
        self.apply(config(trigger(7, topic_source(CROSSED), object_source("vehicle"), {"type": "metadata-event"},
                                  tags={"camera": {"area": "gate"}, "eventSubscription": {"door": "back"}})))
        self.assertEqual(self.explain(7), {
            "id": 7, "name": "trigger 7", "state": "active", "reasons": [],
            "cameras": [
                {"id": 10, "selected": True, "reasons": [],
                 "topics": [{"topic": CROSSED, "subscribed": True, "reasons": []}],
                 "detected": True, "objects": ["car", "truck"]},
                {"id": 11, "selected": False,
                 "reasons": [{"code": "camera-filter",
                              "text": "The camera filter asks for area=gate; camera 11 has area=dock."}],
                 "topics": [], "detected": False, "objects": []}],
            "subscriptions": [
                {"id": 3, "joined": False,
                 "reasons": [{"code": "subscription-filter",
                              "text": "The filter for subscriptions asks for door=back; subscription 3 has "
                                      "door=main."}]}]})

    def test_a_camera_alone_is_explained_on_demand(self):
        self.apply(config(trigger(7)))
        self.assertEqual([camera["id"] for camera in self.explain(7, "--camera", 11)["cameras"]], [11])

    def test_a_camera_that_is_not_there_is_wrong_usage(self):
        outcome = self.run_tool("explain", "7", "--camera", "12")
        self.assertEqual((outcome.status, outcome.out), (WRONG_USAGE, b""))
        self.assertIn(b"The site has no camera 12.", outcome.err)

    def test_no_id_is_wrong_usage(self):
        for word in ("x", "-1", "18446744073709551616"):
            self.assertEqual(self.run_tool("explain", word).status, WRONG_USAGE, word)

    def test_a_trigger_that_is_nowhere_is_not_configured(self):
        self.assertEqual([self.explain(7)[key] for key in ("name", "state", "reasons")],
                         [None, "not-configured",
                          [{"code": "not-in-configuration", "text": "No configuration is stored yet."}]])
        self.apply(config(trigger(8)))
        self.assertEqual(self.explain(7)["reasons"], [{"code": "not-in-configuration",
                                                       "text": "The configuration has no such trigger."}])

    def test_each_schedule_in_the_way_is_named_with_where_it_stands(self):
        self.apply(config(trigger(7, scheduleIds=[2, 9, 1])), mapping(([9, 4], [7]), ([5], [8])))
        explained = self.explain(7)
        self.assertEqual(explained["state"], "inactive")
        self.assertEqual(explained["reasons"], [
            {"code": "schedule-not-usable",
             "text": 'Schedule 2 ("expired") is not usable; the trigger\'s own list names it.'},
            {"code": "schedule-not-found",
             "text": "Schedule 4 does not exist; an association of the mapping with the trigger names it."},
            {"code": "schedule-not-found",
             "text": "Schedule 9 does not exist; the trigger's own list and an association of the mapping name it."}])

    def test_another_server_is_told_by_its_tags(self):
        self.apply(config(trigger(7, tags={"server": {"site": ["south", "west"]}})))
        self.assertEqual(self.explain(7)["reasons"], [
            {"code": "server-filter",
             "text": 'The server filter asks for site=south or site=west; server 1 ("one") has site=north.'}])

    def test_of_twins_the_one_that_is_kept_is_explained(self):
        dropped = {**trigger(7, {"type": "external"}), "name": "dropped"}
        self.apply({"triggers": [dropped, trigger(7), dropped]})
        self.assertEqual([self.explain(7)[key] for key in ("name", "state")], ["trigger 7", "active"])

    def test_a_schedule_made_unusable_since_shows_before_the_refresh_and_after_it(self):
        self.apply(config(trigger(7, scheduleIds=[1])))
        self.init({"schedules": [{"id": 1, "name": "always", "usable": False}]})
        before = codes_only(self.explain(7))
        self.assertEqual((before["state"], before["reasons"]), ("active", ["schedule-not-usable", "not-refreshed"]))
        self.assertEqual(before["cameras"][0]["topics"],
                         [{"topic": MOTION, "subscribed": True, "reasons": ["not-refreshed"]}])
        self.refreshed()
        after = codes_only(self.explain(7))
        self.assertEqual((after["state"], after["reasons"]), ("inactive", ["schedule-not-usable"]))
        self.assertEqual(after["cameras"][0]["topics"],
                         [{"topic": MOTION, "subscribed": False, "reasons": ["schedule-not-usable"]}])

    def test_a_trigger_that_nothing_is_told_to_says_why(self):
        self.apply(config(trigger(7, tags={"camera": {"area": "roof"}}), trigger(8, {"type": "audio-detection"}),
                          trigger(9, topic_source("no such topic"), {"type": "motion-detection"},
                                  tags={"camera": {"area": "dock"}})))
        self.assertEqual([codes_only(self.explain(number))["reasons"] for number in (7, 8, 9)],
                         [["camera-filter"], ["no-usable-source"], ["no-motion-detection", "topic-not-supported"]])

    def test_each_source_that_a_detecting_camera_does_not_serve_has_its_reason(self):
        self.init({"cameras": [camera(12, motionDetection=True)]})
        self.apply(config(trigger(7, object_source("person"), {"type": "motion-detection"})))
        self.assertEqual([(one["id"], one["detected"], one["objects"], one["reasons"])
                          for one in self.explain(7)["cameras"]], [
            (10, True, ["person"], []),
            (11, True, ["person"], [{"code": "no-motion-detection",
                                     "text": "Camera 11 takes no part in motion detection."}]),
            (12, True, ["person"], [{"code": "no-object-detection",
                                     "text": "Camera 12 takes no part in object detection."}])])
        self.assertEqual(self.explain(7)["reasons"], [])
        self.assertEqual(self.run_tool("explain", "7", "--camera", "12").text, """\
Trigger 7 "trigger 7" is active.

CAMERA  NAME       LISTENS TO  ANSWER
12      camera 12  person      detected, but: Camera 12 takes no part in object detection.
""")

    def test_no_subscription_fits_only_where_none_does(self):
        door = {"name": "door", "categoryId": 1}
        self.init({"subscriptions": [{"id": 3, **door, "tags": {}}, {"id": 4, **door, "tags": {"door": "back"}}]})
        self.apply(config(trigger(7, {"type": "metadata-event"}, tags={"eventSubscription": {"door": "main"}})))
        self.assertEqual(self.explain(7)["reasons"], [
            {"code": "subscription-filter",
             "text": "No generic subscription has what the filter for subscriptions asks for: door=main."}])
        self.init({"subscriptions": [{"id": 5, **door, "tags": {"door": "main"}}]})
        explained = self.explain(7)
        self.assertEqual(codes_only(explained)["subscriptions"][2]["reasons"], ["not-refreshed"])
        self.assertEqual(explained["reasons"], [
            {"code": "subscription-filter",
             "text": "The filter for subscriptions asks for door=main; subscription 3 has no tags. (2 like this.)"},
            {"code": "not-refreshed", "text": "A refresh would change where it listens, in 1 place."}])

    def test_it_writes_nothing_and_waits_for_nobody(self):
        self.apply(config(trigger(7, scheduleIds=[1])))
        self.init({"cameras": [camera(12, [MOTION])], "schedules": [{"id": 1, "usable": False}]})
        before = self.rows()
        with self.behind.locked():
            self.assertIn("not-refreshed", codes_only(self.explain(7))["reasons"])
        self.assertEqual(self.rows(), before)

    def test_people_read_a_page(self):
        self.apply(config(trigger(7, topic_source(CROSSED), tags={"camera": {"area": ["dock", "gate"]}}),
                          trigger(8, scheduleIds=[2], tags={"camera": {"area": "gate"}})))
        self.assertEqual(self.run_tool("explain", "7").text, f"""\
Trigger 7 "trigger 7" is active.

CAMERA  NAME       LISTENS TO                            ANSWER
10      camera 10  {CROSSED}  subscribed
11      camera 11  {CROSSED}  not subscribed: Camera 11 does not support "{CROSSED}".
""")
        self.assertEqual(self.run_tool("explain", "8").text, f"""\
Trigger 8 "trigger 8" is inactive:
  Schedule 2 ("expired") is not usable; the trigger's own list names it.

CAMERA  NAME       LISTENS TO                    ANSWER
10      camera 10  {MOTION}  not subscribed

NOT SELECTED  NAME       WHY
11            camera 11  The camera filter asks for area=gate; camera 11 has area=dock.
""")

    @on_postgresql
    def test_a_trigger_that_a_pass_fails_to_store_has_failed(self):
        self.apply(config({**trigger(7), "name": "\0"}, trigger(8)), expected=TRIGGER_ERRORS)
        explained = self.explain(7)
        self.assertEqual(explained["state"], "failed")
        self.assertEqual(explained["reasons"], [
            {"code": "failed", "text": "A pass fails here: Trigger 7: Failed to process config "
                                       "(Failed to create trigger)."}])
        self.assertEqual(codes_only(explained)["cameras"][0]["topics"],
                         [{"topic": MOTION, "subscribed": False, "reasons": ["failed"]}])
        self.assertEqual(self.explain(8)["state"], "active")

    def test_a_damaged_document_is_told(self):
        self.apply(config(trigger(7)))
        self.sql("UPDATE document SET text = 'x' WHERE kind = 'config'")
        outcome = self.run_tool("explain", "7")
        self.assertEqual(outcome.status, FAILED)
        self.assertIn(b"the stored configuration is damaged", outcome.err)

    def test_a_damaged_record_keeps_nobody_from_explaining(self):
        self.apply(config(trigger(7)))
        self.sql("INSERT INTO subscription (id, name, camera_id) VALUES (99, '', 10)")
        self.assertEqual(self.run_tool("refresh").status, FAILED)
        self.assertEqual(codes_only(self.explain(7))["state"], "active")


class Random_Sites(Explained):
    def setUp(self):
        Site.setUp(self)  # each site below makes its own

    def records(self):
        return Records(*(self.show(what) for what in ("triggers", "subscriptions", "detection")))

    def model(self, site):
        return Model(copy.deepcopy(site.inventory), site.config, site.mapping, self.records())

    def judge(self, model, trigger_id):
        explained = codes_only(self.explain(trigger_id))
        expected = model.explanation(trigger_id)
        if set(explained["reasons"]).isdisjoint({"schedule-not-found", "schedule-not-usable"}):
            self.assertEqual(len(explained["reasons"]), len(set(explained["reasons"])), "a code twice")
        explained["reasons"] = sorted(set(explained["reasons"]))
        self.assertEqual(explained, expected)

    def assert_snapshot_agrees(self, state, trigger_ids):
        """Right after a pass: what the pusher was told is what explain says."""
        for number in trigger_ids:
            explained, key = self.explain(number), str(number)
            topics = {str(one["id"]): sorted(topic["topic"] for topic in one["topics"] if topic["subscribed"])
                      for one in explained["cameras"]}
            self.assertEqual({place: names for place, names in topics.items() if names},
                             {place: sorted(names) for place, names
                              in state["onvifTopicsByTrigger"].get(key, {}).items()})
            self.assertEqual([one["id"] for one in explained["subscriptions"] if one["joined"]],
                             state["subscriptionsByTrigger"].get(key, []))
            self.assertEqual({str(one["id"]): one["objects"] for one in explained["cameras"] if one["detected"]},
                             {place: [item["type"] for item in items] for place, items
                              in state["searchItemsByTrigger"].get(key, {}).items()})
            self.assertEqual(explained["state"] == "active", key in state["appliedTriggers"])

    def test_explain_agrees_with_the_model_the_records_and_the_snapshot(self):
        for seed in range(1, SITES + 1):
            with self.subTest(seed=seed):
                self.live(Random_Site(seed), seed)
            self.behind.drop()
            for name in os.listdir(self.folder):
                os.remove(self.path(name))

    def live(self, site, seed):
        self.init(site.inventory)
        applied = self.apply(site.config, site.mapping)
        self.assert_snapshot_agrees(applied["state"], TRIGGERS)
        model = self.model(site)
        self.assertEqual(model.stored.holders(), model.refreshed)
        if seed % 2 == 0:
            self.init(site.change())
        if seed % 3 != 0:
            site.damage(self.sql)
        model = self.model(site)
        before = self.rows()
        for number in [*TRIGGERS, 4000]:
            self.judge(model, number)
        self.assertEqual(self.rows(), before)
        refreshed = self.refreshed()  # the model foretold it
        self.assertEqual(self.records().holders(), model.refreshed)
        self.assert_snapshot_agrees(refreshed["state"], TRIGGERS[:2])


if __name__ == "__main__":
    unittest.main()
