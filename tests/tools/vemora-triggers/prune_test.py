# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""init --prune: the inventory is the whole site, and what it does not name is removed."""

import copy
import json
import os
import random
import unittest

from tool_site import (CROSSED, DONE, LARGEST_ID, MOTION, REJECTED, WRONG_USAGE, Site, camera, config, mapping,
                       object_source, small_inventory, topic_source, trigger)


def without(inventory, **ids):
    """The inventory without these records; object types are named."""
    rest = copy.deepcopy(inventory)
    for key, gone in ids.items():
        if key == "objectTypes":
            rest[key] = {name: types for name, types in rest[key].items() if name not in gone}
        else:
            rest[key] = [record for record in rest[key] if record["id"] not in gone]
    for record in rest.get("subscriptions", []):
        record["cameraIds"] = [number for number in record.get("cameraIds", []) if number not in ids.get("cameras", [])]
    return rest


def no_records():
    return {"servers": [], "cameras": [], "schedules": [], "eventCategories": [], "subscriptions": [],
            "objectTypes": []}


class Pruning_Site(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def prune(self, inventory, *options, expected=DONE):
        name = self.write("inventory.json", inventory)
        outcome = self.run_tool("--json", "init", "--prune", *options, name)
        self.assertEqual((outcome.status, outcome.err), (expected, b""), outcome.out)
        return outcome.json

    def assert_removed(self, answer, **records):
        """These records by name and nothing else; the counts fit."""
        self.assertEqual(answer["removedRecords"], {**no_records(), **records})
        self.assertEqual({kind: count for kind, count in answer["removed"].items()
                          if kind not in ("topicSubscriptions", "detection")},
                         {kind: len(named) for kind, named in {**no_records(), **records}.items()})

    def ids(self, what):
        return [record["id"] for record in self.show(what)]


class Pruned_Sites(Pruning_Site):
    def test_people_read_what_was_removed(self):
        self.apply(config(trigger(7, topic_source(), object_source())))
        self.write("smaller.json", without(small_inventory(), cameras=[11], schedules=[2], objectTypes=["vehicle"]))
        outcome = self.run_tool("init", "--prune", "smaller.json")
        self.assertEqual((outcome.status, outcome.text), (DONE, """\
Stored: 1 server, 1 camera, 1 schedule, 1 event category, 1 generic subscription, 0 general object types.
Removed: 0 servers, 1 camera, 1 schedule, 0 event categories, 0 generic subscriptions, 1 general object type, \
1 topic subscription, 1 detection record.
- camera 11 "camera 11", with 1 topic subscription and its detection record
- schedule 2 "expired"
- general object type "vehicle"
The site has: 1 server, 1 camera, 1 schedule, 1 event category, 1 generic subscription, 0 general object types.
"""))

    def test_programs_read_what_was_removed(self):
        self.apply(config(trigger(7, topic_source(), object_source())))
        answer = self.prune(without(small_inventory(), cameras=[11], schedules=[2]))
        self.assert_removed(answer, cameras=[{"id": 11, "name": "camera 11", "topicSubscriptions": 1,
                                              "detection": True}],
                            schedules=[{"id": 2, "name": "expired"}])
        self.assertEqual((answer["success"], answer["removed"]["topicSubscriptions"], answer["removed"]["detection"],
                          answer["site"]["cameras"], answer["records"]["cameras"]), (True, 1, 1, 1, 1))
        self.assertNotIn("remarks", answer)

    def test_a_site_that_is_the_inventory_already_stays_as_it_is(self):
        self.apply(config(trigger(7, topic_source(), object_source(), {"type": "metadata-event"}, scheduleIds=[1])))
        before = self.rows()
        self.assert_removed(self.prune(small_inventory()))
        self.assertEqual(self.rows(), before)

    def test_a_new_site_has_nothing_to_remove(self):
        place = self.path("new.db") if not self.behind.arguments else self.behind.location + "_new"
        name = self.write("inventory.json", small_inventory())
        outcome = self.run_tool("--database", place, "--json", "init", "--prune", name)
        self.addCleanup(self.drop_new)
        self.assertEqual(outcome.status, DONE, outcome.out + outcome.err)
        self.assert_removed(outcome.json)

    def drop_new(self):
        if self.behind.arguments:
            self.sql(f"DROP SCHEMA IF EXISTS {self.behind.schema}_new CASCADE")

    def test_without_the_option_nothing_is_removed(self):
        self.init(without(small_inventory(), cameras=[11]))
        self.assertEqual(self.ids("cameras"), [10, 11])

    def test_of_a_camera_no_row_is_left(self):
        self.apply(config(trigger(7, topic_source(), object_source("car"), {"type": "metadata-event"})))
        self.sql("INSERT INTO pending_camera VALUES (11)")
        self.prune(without(small_inventory(), cameras=[11]))
        for table, column in (("camera", "id"), ("camera_tag", "record_id"), ("camera_capability", "camera_id"),
                              ("subscription", "camera_id"), ("subscription_camera", "linked_id"),
                              ("eta_camera", "camera_id"), ("pending_camera", "camera_id")):
            self.assertEqual(self.sql(f"SELECT * FROM {table} WHERE {column} = 11"), [], table)
        for table, owner in (("subscription_trigger", "subscription"), ("eta_camera_trigger", "eta_camera")):
            self.assertEqual(self.sql(f"SELECT * FROM {table} WHERE record_id NOT IN (SELECT id FROM {owner})"), [])
        self.assertEqual(self.sql("SELECT count(*) FROM capability_document"), [(1,)])

    def test_the_cameras_that_stay_keep_what_they_have(self):
        self.apply(config(trigger(7, topic_source(), object_source())))
        kept = [record for record in self.show("subscriptions") if record["cameraId"] == 10]
        detection = [record for record in self.show("detection") if record["cameraId"] == 10]
        self.assertEqual((len(kept), len(detection)), (1, 1))
        self.prune(without(small_inventory(), cameras=[11]))
        self.assertEqual([record for record in self.show("subscriptions") if record["cameraId"] == 10], kept)
        self.assertEqual(self.show("detection"), detection)

    def test_cameras_that_are_gone_are_not_reconciled_and_others_that_are_pending_still_are(self):
        self.apply(config(trigger(7, topic_source())))
        self.sql("INSERT INTO pending_camera VALUES (10)")
        self.sql("INSERT INTO pending_camera VALUES (11)")
        self.prune(without(small_inventory(), cameras=[11]))
        self.assertEqual(self.sql("SELECT camera_id FROM pending_camera"), [(10,)])
        refreshed = self.run_tool("--json", "refresh")
        self.assertEqual((refreshed.status, refreshed.json["reconciled"]), (DONE, [10]))
        self.assertEqual(self.run_tool("--json", "refresh").json["reconciled"], [])

    def test_a_refresh_finds_nothing_to_do_when_a_camera_is_gone(self):
        self.apply(config(trigger(7, topic_source(), object_source("car"))))
        self.prune(without(small_inventory(), cameras=[11]))
        outcome = self.run_tool("refresh")
        self.assertEqual((outcome.status, outcome.text), (
            DONE, "Nothing changed.\nCameras reconciled: 0\nActive triggers: 1\nDone.\n"))

    def test_a_refresh_deletes_the_triggers_of_a_schedule_that_is_gone(self):
        self.apply(config(trigger(7, topic_source(), scheduleIds=[1]), trigger(8, topic_source())))
        self.prune(without(small_inventory(), schedules=[1]))
        self.assertEqual(self.sql("SELECT * FROM trigger_schedule"), [])
        self.assertEqual(self.ids("triggers"), [7, 8])
        explained = self.run_tool("--json", "explain", "7").json
        self.assertEqual((explained["state"], [reason["code"] for reason in explained["reasons"]]),
                         ("active", ["schedule-not-found", "not-refreshed"]))
        refreshed = self.run_tool("--json", "refresh")
        self.assertEqual((refreshed.status, refreshed.json["changes"]["triggers"]["deleted"],
                          [warning["code"] for warning in refreshed.json["warnings"]]),
                         (DONE, 1, ["schedule-not-found"]))
        explained = self.run_tool("--json", "explain", "7").json
        self.assertEqual((explained["state"], [reason["code"] for reason in explained["reasons"]]),
                         ("inactive", ["schedule-not-found"]))

    def test_explain_does_not_know_a_camera_that_is_gone(self):
        self.apply(config(trigger(7, topic_source(), object_source())))
        self.prune(without(small_inventory(), cameras=[11]))
        explained = self.run_tool("--json", "explain", "7").json
        self.assertEqual([listed["id"] for listed in explained["cameras"]], [10])
        self.assertEqual(self.run_tool("explain", "7", "--camera", "11").status, WRONG_USAGE)

    def test_a_generic_subscription_goes_with_its_category_and_leaves_its_triggers(self):
        self.apply(config(trigger(7, {"type": "metadata-event"})))
        answer = self.prune(without(small_inventory(), subscriptions=[3], eventCategories=[1]))
        self.assert_removed(answer, subscriptions=[{"id": 3, "name": "door forced"}],
                            eventCategories=[{"id": 1, "name": "access"}])
        for table in ("subscription", "subscription_tag", "subscription_camera", "subscription_trigger"):
            self.assertEqual(self.sql(f"SELECT * FROM {table}"), [], table)
        refreshed = self.run_tool("--json", "refresh").json
        self.assertEqual((refreshed["reconciled"], refreshed["state"]["subscriptionsByTrigger"],
                          list(refreshed["state"]["appliedTriggers"])), ([], {}, ["7"]))

    def test_a_name_that_is_general_no_longer_stands_for_itself(self):
        self.apply(config(trigger(7, object_source("vehicle"))))
        self.prune(without(small_inventory(), objectTypes=["vehicle"]))
        items = self.run_tool("--json", "refresh").json["state"]["searchItemsByTrigger"]["7"]["10"]
        self.assertEqual([item["type"] for item in items], ["vehicle"])

    def test_a_list_that_is_missing_names_nothing(self):
        self.prune({"cameras": small_inventory()["cameras"]})
        self.assertEqual(self.show("inventory"), {
            **no_records(), "objectTypes": {}, "servers": small_inventory()["servers"],
            "cameras": [{"motionDetection": False, **each} for each in small_inventory()["cameras"]]})

    def test_the_largest_id_is_one_like_any_other(self):
        site = small_inventory()
        site["cameras"].append(camera(LARGEST_ID, [MOTION], objectDetection=True))
        self.prune(site)
        self.apply(config(trigger(7, topic_source(), object_source())))
        answer = self.prune(without(site, cameras=[10]))
        self.assertEqual([record["id"] for record in answer["removedRecords"]["cameras"]], [10])
        self.assertEqual(self.ids("cameras"), [11, LARGEST_ID])
        answer = self.prune(without(site, cameras=[10, LARGEST_ID]))
        self.assertEqual([(record["id"], record["topicSubscriptions"]) for record in answer["removedRecords"]["cameras"]],
                         [(LARGEST_ID, 1)])

    def test_of_very_many_people_read_the_first_hundred_and_programs_all(self):
        site = small_inventory()
        site["cameras"] += [camera(number) for number in range(1000, 1250)]
        self.init(site)
        self.write("smaller.json", small_inventory())
        lines = self.run_tool("init", "--prune", "--allow-mass-deletion", "smaller.json").text.splitlines()
        self.assertEqual((len(lines), lines[2], lines[101:103]), (
            104, '- camera 1000 "camera 1000"',
            ['- camera 1099 "camera 1099"', "- 150 more cameras; use --json to see all."]))
        self.init(site)
        self.assertEqual(len(self.prune(small_inventory(), "--allow-mass-deletion")["removedRecords"]["cameras"]), 250)

    def test_names_are_printed_as_they_may_be_seen(self):
        self.init({"schedules": [{"id": 9, "name": "a\u202eb"}]})
        self.write("smaller.json", small_inventory())
        self.assertIn('- schedule 9 "a\\u202eb"\n', self.run_tool("init", "--prune", "smaller.json").text)


class The_Own_Server(Pruning_Site):
    STAYS = 'Server 1 "one" is not in the inventory, and stays: passes run for it.'

    def test_the_server_that_the_database_belongs_to_stays(self):
        self.apply(config(trigger(7)))
        answer = self.prune({**without(small_inventory(), servers=[1]), "servers": [{"id": 2, "name": "two"}]})
        self.assert_removed(answer)
        self.assertEqual((answer["remarks"], self.show("servers")), ([self.STAYS], [
            {"id": 1, "name": "one", "tags": {"site": "north"}}, {"id": 2, "name": "two", "tags": {}}]))
        self.assertEqual(self.run_tool("refresh").status, DONE)

    def test_it_stays_before_the_first_pass_too(self):
        self.assertEqual(self.prune(without(small_inventory(), servers=[1]))["remarks"], [self.STAYS])
        self.assertEqual(self.ids("servers"), [1])

    def test_people_read_that_it_stays(self):
        self.write("smaller.json", without(small_inventory(), servers=[1]))
        self.assertIn(f"note: {self.STAYS}\n", self.run_tool("init", "--prune", "smaller.json").text)

    def test_other_servers_are_removed(self):
        self.init({"servers": [{"id": 2, "name": "two", "tags": {"site": "south"}}]})
        self.apply(config(trigger(7)))
        answer = self.prune(small_inventory())
        self.assert_removed(answer, servers=[{"id": 2, "name": "two"}])
        self.assertEqual((self.ids("servers"), self.sql("SELECT record_id FROM server_tag")), ([1], [(1,)]))

    def test_another_server_may_not_prune(self):
        self.apply(config(trigger(7)))
        rows = self.rows()
        outcome = self.run_tool("--server-id", "2", "init", "--prune", self.write("inventory.json", small_inventory()))
        self.assertEqual((outcome.status, b"belongs to server 1" in outcome.err), (3, True), outcome.err)
        self.assertEqual(self.rows(), rows)


class Faulty_Inventories(Pruning_Site):
    def setUp(self):
        super().setUp()
        self.apply(config(trigger(7, topic_source(), object_source(), scheduleIds=[1])), mapping(([1], [7])))

    def assert_rejected(self, inventory):
        rows = self.rows()
        errors = self.prune(inventory, "--allow-mass-deletion", expected=REJECTED)["errors"]
        self.assertEqual(self.rows(), rows)
        return errors

    def test_an_inventory_that_is_the_whole_site_refers_to_nothing_else(self):
        site = small_inventory()
        del site["eventCategories"]
        del site["cameras"][1]
        site["objectTypes"] = {"anything": ["vehicle"]}
        self.assertEqual([error["message"] for error in self.assert_rejected(site)],
                         ["There is no event category 1.", "There is no camera 11."])

    def test_a_general_object_type_that_is_gone_is_in_no_circle(self):
        self.prune({**small_inventory(), "objectTypes": {"car": ["vehicle"]}})
        self.assertEqual(self.show("object-types"), [{"name": "car", "standsFor": ["vehicle"]}])

    def test_an_inventory_without_any_list_is_rejected(self):
        self.assertEqual(self.assert_rejected(" {}"), [{
            "document": "inventory", "line": 1, "column": 2,
            "message": "With --prune, the inventory is the whole site; this one has no list."}])

    def test_a_file_that_is_missing_or_empty_is_no_empty_list(self):
        for text in ("", " \n", "\ufeff", "[]", "null"):
            with self.subTest(text=text):
                self.assertEqual(self.assert_rejected(text)[0]["document"], "inventory")
        rows = self.rows()
        outcome = self.run_tool("--json", "init", "--prune", "--allow-mass-deletion", "none.json")
        self.assertEqual((outcome.status, outcome.json["success"], self.rows()), (REJECTED, False, rows))
        outcome = self.run_tool("--json", "init", "--prune", "--allow-mass-deletion", "-")
        self.assertEqual((outcome.status, outcome.json["success"], self.rows()), (REJECTED, False, rows))

    def test_every_fault_is_told_and_nothing_removed(self):
        self.assertEqual(len(self.assert_rejected({"cameras": [{"id": "x"}], "doors": []})), 2)

    def test_the_id_of_a_topic_subscription_is_taken_still(self):
        [taken] = [record["id"] for record in self.show("subscriptions") if record["cameraId"] == 11]
        site = without(small_inventory(), cameras=[11])
        site["subscriptions"].append({"id": taken})
        self.assertEqual([error["message"] for error in self.assert_rejected(site)],
                         [f"The id {taken} is that of a topic subscription."])

    def test_mass_deletion_is_a_matter_of_pruning(self):
        outcome = self.run_tool("init", "--allow-mass-deletion", self.write("inventory.json", small_inventory()))
        self.assertEqual((outcome.status, outcome.err), (
            WRONG_USAGE, b"vemora-triggers: --allow-mass-deletion: it needs --prune\nRun with --help for more "
                         b"information.\n"))


class Random_Prunes(Site):
    """After a prune and a refresh, the site is that of its inventory alone."""

    DOCUMENT = config(
        trigger(1, topic_source()), trigger(2, topic_source(CROSSED), tags={"camera": {"area": "gate"}}),
        trigger(3, object_source("vehicle"), scheduleIds=[1]), trigger(4, {"type": "metadata-event"}, scheduleIds=[2]),
        trigger(5, object_source(), topic_source(), tags={"camera": {"area": ["dock", "yard"]}}),
        trigger(6, {"type": "motion-detection"}, tags={"server": {"site": "north"}}))

    @staticmethod
    def random_site(draw):
        def some(first, count):
            return sorted(draw.sample(range(first, first + count), draw.randint(0, count)))

        # Whatever a camera has besides, it keeps its topics: a subscription stays where a topic is lost.
        cameras = [camera(number, [MOTION, CROSSED] if number % 2 else [MOTION],
                          {"area": draw.choice(["gate", "dock", "yard"])},
                          objectDetection=draw.random() < 0.5, motionDetection=draw.random() < 0.5)
                   for number in some(10, 8)]
        categories = some(1, 3)
        return {
            "servers": [{"id": 1, "name": "one", "tags": {"site": "north"}},
                        *({"id": number, "name": "another", "tags": {"role": None}} for number in some(2, 3))],
            "cameras": cameras,
            "schedules": [{"id": number, "name": "s", "usable": draw.random() < 0.7} for number in some(1, 3)],
            "eventCategories": [{"id": number, "name": "c"} for number in categories],
            "subscriptions": [{"id": LARGEST_ID - number, "name": "g", "tags": {"door": "main"},
                               "cameraIds": draw.sample([each["id"] for each in cameras], min(len(cameras), 2)),
                               **({"categoryId": draw.choice(categories)} if categories else {})}
                              for number in some(1, 3)],
            "objectTypes": {name: ["car", "truck"] for name in draw.sample(["vehicle", "heavy", "thing"],
                                                                           draw.randint(0, 3))},
        }

    def picture(self):
        """The site but for the ids that passes give out."""
        subscriptions = [{**record, "id": record["id"] if record["cameraId"] is None else None}
                         for record in self.show("subscriptions")]
        detection = [{**record, "id": None} for record in self.show("detection")]
        return {"inventory": self.show("inventory"), "triggers": self.show("triggers"),
                "subscriptions": sorted(subscriptions, key=json.dumps), "detection": sorted(detection, key=json.dumps)}

    def test_leave_what_a_fresh_site_has(self):
        for seed in range(12):
            with self.subTest(seed=seed):
                draw = random.Random(seed)
                before, after = self.random_site(draw), self.random_site(draw)
                self.start_again()
                self.init(after)
                self.apply(self.DOCUMENT)
                fresh = self.picture()
                self.start_again()
                self.init(before)
                self.apply(self.DOCUMENT)
                name = self.write("after.json", after)
                pruned = self.run_tool("--json", "init", "--prune", name)
                self.assertEqual(pruned.status, DONE, pruned.out)
                kept = {each["id"] for each in after["cameras"]}
                self.assertEqual([each["id"] for each in pruned.json["removedRecords"]["cameras"]],
                                 [each["id"] for each in before["cameras"] if each["id"] not in kept])
                refreshed = self.run_tool("--json", "refresh")
                self.assertEqual(refreshed.status, DONE, refreshed.out)
                self.assertEqual(set(refreshed.json["reconciled"]) - kept, set())
                self.assertEqual(self.picture(), fresh)
                self.assertEqual(self.run_tool("refresh").text.splitlines()[-4], "Nothing changed.")

    def start_again(self):
        self.behind.drop()
        for name in self.files():
            if name.startswith("vemora.db"):
                os.remove(self.path(name))


if __name__ == "__main__":
    unittest.main()
