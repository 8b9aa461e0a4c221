# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A pass that would delete most of a site is refused, unless it is told that this is meant."""

import json
import unittest

from tool_site import (CROSSED, DONE, MOTION, REJECTED, Site, camera, config, mapping, on_postgresql, small_inventory,
                       topic_source, trigger)

REFUSED = 4

LETS_IT_PASS = "plan shows what would be deleted; if that is meant, --allow-mass-deletion lets it pass."


def triggers(count, first=1, **others):
    return config(*(trigger(number, topic_source(), **others) for number in range(first, first + count)))


class AGuardedSite(Site):
    def assert_same_database(self, files):
        """Byte for byte, where it is files."""
        after = self.files()
        for name in ("vemora.db", "vemora.db-wal"):
            self.assertEqual(after.get(name), files.get(name), name)


class AnEmptiedSite(AGuardedSite):
    def setUp(self):
        super().setUp()
        self.init()

    def refused(self, *command):
        """Runs a command that must be refused and change nothing; answers its JSON outcome."""
        rows, files = self.rows(), self.files()
        outcome = self.run_tool("--json", *command)
        self.assertEqual((outcome.status, outcome.err), (REFUSED, b""), outcome.out)
        self.assertEqual(self.rows(), rows)
        self.assert_same_database(files)
        told = outcome.json
        self.assertEqual((told["success"], told["remarks"], told["reconciled"], told["state"]),
                         (False, [LETS_IT_PASS], [], None))
        self.assertEqual({kind: counts for kind, counts in told["changes"].items() if any(counts.values())}, {})
        return told

    def refused_for(self, text, *command):
        told = self.refused(*command)
        self.assertEqual(told["errors"], [{"category": 1, "message": f"This pass would delete {text}."}])
        return told

    def test_an_empty_list_is_refused(self):
        self.apply(triggers(12))
        told = self.refused_for("12 of 12 triggers", "apply", self.write("empty.json", config()))
        self.assertEqual(told["massDeletions"], [{"what": "triggers", "deleted": 12, "stored": 12}])

    def test_the_wrong_file_is_refused(self):
        self.apply(triggers(12))
        self.refused_for("12 of 12 triggers", "apply", self.write("other.json", triggers(30, first=100)))

    def test_another_server_s_triggers_are_refused(self):
        self.apply(triggers(12))
        elsewhere = triggers(12)
        for each in elsewhere["triggers"]:
            each["tags"] = {"server": {"site": "south"}}
        self.refused_for("12 of 12 triggers", "apply", self.write("south.json", elsewhere))

    def test_a_mapping_that_makes_all_of_them_inactive_is_refused(self):
        self.apply(triggers(12, scheduleIds=[1]))
        self.refused_for("12 of 12 triggers", "apply", self.write("config.json", triggers(12, scheduleIds=[1])),
                         self.write("mapping.json", mapping(([2], list(range(1, 13))))))

    def test_a_refresh_is_refused_when_all_schedules_are_unusable(self):
        self.apply(triggers(12, scheduleIds=[1]))
        inventory = small_inventory()
        inventory["schedules"][0]["usable"] = False
        self.init(inventory)
        self.refused_for("12 of 12 triggers", "refresh")

    def test_a_refresh_is_refused_when_the_server_lost_its_tags(self):
        self.apply(triggers(12, tags={"server": {"site": "north"}}))
        inventory = small_inventory()
        inventory["servers"][0]["tags"] = {}
        self.init(inventory)
        self.refused_for("12 of 12 triggers", "refresh")

    def test_a_filter_that_selects_no_camera_any_more_is_refused_for_the_subscriptions(self):
        inventory = small_inventory()
        inventory["cameras"] = [camera(number, [MOTION]) for number in range(10, 22)]
        self.init(inventory)
        self.apply(triggers(1))
        self.refused_for("12 of 12 topic subscriptions", "apply",
                         self.write("typo.json", triggers(1, tags={"camera": {"area": "gaet"}})))

    def test_all_kinds_are_named(self):
        inventory = small_inventory()
        inventory["cameras"] = [camera(number, [MOTION]) for number in range(10, 22)]
        self.init(inventory)
        self.apply(triggers(14))
        self.refused_for("14 of 14 triggers and 12 of 12 topic subscriptions", "apply",
                         self.write("empty.json", config()))

    def test_generic_subscriptions_are_not_counted(self):
        inventory = small_inventory()
        inventory["cameras"] = [camera(number, [MOTION]) for number in range(10, 22)]
        inventory["subscriptions"] = [{"id": number, "name": "door"} for number in range(1000, 1100)]
        self.init(inventory)
        self.apply(triggers(1))
        self.refused_for("12 of 12 topic subscriptions", "apply", self.write("empty.json", config()))

    def test_what_is_told_is_told_to_people_too(self):
        self.apply(triggers(12))
        outcome = self.run_tool("apply", self.write("empty.json", config()))
        self.assertEqual((outcome.status, outcome.text),
                         (REFUSED, "error: This pass would delete 12 of 12 triggers.\n"
                                   f"note: {LETS_IT_PASS}\nRefused; nothing changed.\n"))

    def test_the_documents_before_stay_in_force(self):
        self.apply(triggers(12), mapping(([1], [1])))
        self.refused("apply", self.write("empty.json", config()), self.write("other.json", mapping(([1], [2]))))
        self.assertEqual((self.show("config"), self.show("mapping")), (triggers(12), mapping(([1], [1]))))
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual((outcome.status, outcome.json["reconciled"], len(outcome.json["state"]["appliedTriggers"])),
                         (DONE, [], 12))

    def test_cameras_that_are_pending_stay_so(self):
        self.apply(triggers(12))
        self.sql("INSERT INTO pending_camera VALUES (11)")
        self.refused("apply", self.write("empty.json", config()))
        self.assertEqual(self.sql("SELECT camera_id FROM pending_camera"), [(11,)])

    @on_postgresql
    def test_the_errors_of_single_triggers_are_told_too(self):
        self.apply(triggers(12))
        unstorable = triggers(12)
        for each in unstorable["triggers"]:
            each["name"] = "\0"
        told = self.refused("apply", self.write("zeros.json", unstorable))
        self.assertEqual([error["message"] for error in told["errors"][-1:]],
                         ["This pass would delete 12 of 12 triggers."])
        self.assertEqual(len(told["errors"]), 13)


class APrunedSite(AGuardedSite):
    """init --prune is guarded as passes are."""

    MEANT = "If that is meant, --allow-mass-deletion lets it pass."

    def setUp(self):
        super().setUp()
        self.whole = small_inventory()
        self.whole["cameras"] = [camera(number, [MOTION]) for number in range(10, 22)]
        self.init(self.whole)
        self.apply(triggers(12, scheduleIds=[1]))

    def refused_for(self, text, **lists):
        """An inventory with these lists in place of those of the site is refused; nothing changes."""
        name = self.write("pruned.json", {**self.whole, "subscriptions": [], **lists})
        rows, files = self.rows(), self.files()
        outcome = self.run_tool("--json", "init", "--prune", name)
        self.assertEqual((outcome.status, outcome.err), (REFUSED, b""), outcome.out)
        self.assertEqual(self.rows(), rows)
        self.assert_same_database(files)
        told = outcome.json
        self.assertEqual((told["success"], told["errors"], told["remarks"]), (
            False, [{"message": f"With --prune, this inventory would delete {text}."}], [self.MEANT]))
        return told["massDeletions"]

    def test_an_empty_list_of_cameras_is_refused(self):
        self.assertEqual(self.refused_for("12 of 12 cameras and 12 of 12 topic subscriptions", cameras=[]), [
            {"what": "cameras", "deleted": 12, "stored": 12},
            {"what": "topic subscriptions", "deleted": 12, "stored": 12}])

    def test_the_wrong_inventory_is_refused(self):
        self.refused_for("12 of 12 cameras and 12 of 12 topic subscriptions",
                         cameras=[camera(number, [MOTION]) for number in range(100, 130)])

    def test_the_file_of_another_part_of_the_site_is_refused(self):
        self.refused_for("10 of 12 cameras and 10 of 12 topic subscriptions", cameras=self.whole["cameras"][:2])

    def test_few_cameras_with_many_subscriptions_are_refused(self):
        topics = [f"tns1:Rule/{number}" for number in range(5)]
        self.run_tool("init", "--prune", "--allow-mass-deletion", self.write("small.json", {
            **self.whole, "subscriptions": [], "cameras": [camera(number, topics) for number in range(10, 14)]}))
        self.apply(config(*(trigger(number, *(topic_source(topic) for topic in topics)) for number in range(1, 11))))
        self.refused_for("15 of 20 topic subscriptions",
                         cameras=[camera(10, topics)])

    def test_every_kind_is_guarded(self):
        self.whole["schedules"] += [{"id": number} for number in range(100, 110)]
        self.whole["subscriptions"] = [{"id": number} for number in range(1000, 1010)]
        self.whole["eventCategories"] = [{"id": number} for number in range(10)]
        self.whole["servers"] += [{"id": number} for number in range(50, 61)]
        self.whole["objectTypes"] = {f"type {number}": ["car"] for number in range(10)}
        self.init(self.whole)
        self.refused_for("11 of 12 servers and 11 of 12 schedules and 10 of 10 event categories and "
                         "11 of 11 generic subscriptions and 11 of 11 general object types",
                         servers=[], schedules=[{"id": 1}], eventCategories=[], objectTypes={})

    def test_people_read_it_too(self):
        name = self.write("pruned.json", {**self.whole, "cameras": [], "subscriptions": []})
        outcome = self.run_tool("init", "--prune", name)
        self.assertEqual((outcome.status, outcome.text), (REFUSED, (
            "error: With --prune, this inventory would delete 12 of 12 cameras and 12 of 12 topic subscriptions.\n"
            f"note: {self.MEANT}\nRefused; nothing changed.\n")))

    def test_it_passes_when_it_is_meant(self):
        name = self.write("pruned.json", {**self.whole, "cameras": [], "subscriptions": []})
        outcome = self.run_tool("--json", "init", "--prune", "--allow-mass-deletion", name)
        self.assertEqual((outcome.status, outcome.json["removed"]["cameras"], self.show("cameras")), (DONE, 12, []))
        self.assertNotIn("massDeletions", outcome.json)

    def test_exactly_half_is_no_more_than_half(self):
        site = {**self.whole, "subscriptions": [], "cameras": [camera(number) for number in range(100, 120)]}
        whole = self.write("whole.json", site)
        self.assertEqual(self.run_tool("init", "--prune", "--allow-mass-deletion", whole).status, DONE)
        refused = self.run_tool("init", "--prune", self.write("nine.json", {**site, "cameras": site["cameras"][:9]}))
        self.assertEqual((refused.status, "delete 11 of 20 cameras." in refused.text), (REFUSED, True), refused.text)
        half = self.write("half.json", {**site, "cameras": site["cameras"][:10]})
        self.assertEqual((self.run_tool("init", "--prune", half).status, len(self.show("cameras"))), (DONE, 10))

    def test_all_of_nine_are_few(self):
        self.run_tool("init", "--prune", self.write("nine.json", {
            **self.whole, "subscriptions": [], "cameras": self.whole["cameras"][:9]}))
        self.assertEqual(len(self.show("cameras")), 9)
        name = self.write("none.json", {**self.whole, "subscriptions": [], "cameras": []})
        self.assertEqual((self.run_tool("init", "--prune", name).status, self.show("cameras")), (DONE, []))

    def test_the_refresh_after_a_prune_is_guarded_too(self):
        self.assertEqual(self.run_tool("init", "--prune", self.write("pruned.json", {
            **self.whole, "subscriptions": [], "cameras": self.whole["cameras"], "schedules": []})).status, DONE)
        outcome = self.run_tool("refresh")
        self.assertEqual((outcome.status, "would delete 12 of 12 triggers" in outcome.text), (REFUSED, True))


class AllowedDeletions(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def assert_deletes(self, count, *command):
        outcome = self.run_tool("--json", *command)
        self.assertEqual(outcome.status, DONE, outcome.out)
        self.assertNotIn("massDeletions", outcome.json)
        self.assertEqual(outcome.json["changes"]["triggers"]["deleted"], count)

    def test_an_empty_list_passes_when_it_is_meant(self):
        self.apply(triggers(12))
        self.assert_deletes(12, "apply", "--allow-mass-deletion", self.write("empty.json", config()))
        self.assertEqual((self.show("triggers"), self.show("config")), ([], config()))

    def test_a_refresh_passes_when_it_is_meant(self):
        self.apply(triggers(12, scheduleIds=[1]))
        inventory = small_inventory()
        inventory["schedules"][0]["usable"] = False
        self.init(inventory)
        self.assert_deletes(12, "refresh", "--allow-mass-deletion")

    def test_nine_are_few(self):
        self.apply(triggers(10))
        self.assert_deletes(9, "apply", self.write("one.json", triggers(1)))

    def test_all_of_nine_are_few(self):
        self.apply(triggers(9))
        self.assert_deletes(9, "apply", self.write("empty.json", config()))

    def test_exactly_half_is_no_more_than_half(self):
        self.apply(triggers(20))
        self.assert_deletes(10, "apply", self.write("half.json", triggers(10)))

    def test_one_more_than_half_is(self):
        self.apply(triggers(19))
        outcome = self.run_tool("apply", self.write("most.json", triggers(9)))
        self.assertEqual((outcome.status, "delete 10 of 19 triggers." in outcome.text), (REFUSED, True), outcome.text)

    def test_triggers_that_come_with_it_are_not_counted_as_stored(self):
        self.apply(triggers(19))
        most = triggers(9)
        most["triggers"] += triggers(100, first=100)["triggers"]
        outcome = self.run_tool("apply", self.write("most.json", most))
        self.assertEqual((outcome.status, "delete 10 of 19 triggers." in outcome.text), (REFUSED, True), outcome.text)

    def test_triggers_that_change_are_not_deleted(self):
        self.apply(triggers(12))
        self.assert_deletes(0, "apply", self.write("other.json", config(
            *(trigger(number, topic_source(CROSSED)) for number in range(1, 13)))))


class FilesWithoutContent(Site):
    """They are no empty lists: a document is rejected, even where everything may be deleted."""

    def setUp(self):
        super().setUp()
        self.init()
        self.apply(triggers(3), mapping(([1], [1])))

    def assert_rejected(self, *names):
        rows = self.rows()
        outcome = self.run_tool("--json", "apply", "--allow-mass-deletion", *names)
        self.assertEqual((outcome.status, outcome.json["success"]), (REJECTED, False), outcome.out)
        self.assertEqual(self.rows(), rows)
        return outcome.json["errors"][0]

    def test_a_missing_file_is_rejected(self):
        self.assertEqual(self.assert_rejected("none.json")["document"], "config")
        good = self.write("good.json", triggers(3))
        self.assertEqual(self.assert_rejected(good, "none.json")["document"], "mapping")

    def test_an_empty_file_is_rejected(self):
        good = self.write("good.json", triggers(3))
        for number, text in enumerate(("", " \n", "\ufeff", "{}", "[]", "null")):
            with self.subTest(text=text):
                name = self.write(f"empty{number}.json", text)
                self.assertEqual(self.assert_rejected(name)["document"], "config")
                self.assertEqual(self.assert_rejected(good, name)["document"], "mapping")

    def test_empty_standard_input_is_rejected(self):
        self.assertEqual(self.assert_rejected("-")["document"], "config")

    def test_a_list_without_its_key_is_rejected(self):
        self.assertEqual(self.assert_rejected(self.write("list.json", json.dumps({"trigger": []})))["document"],
                         "config")


if __name__ == "__main__":
    unittest.main()
