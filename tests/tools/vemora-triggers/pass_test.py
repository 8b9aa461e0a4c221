# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""apply and refresh: what they answer, write, store and leave alone."""

import json
import unittest

from tool_site import (CROSSED, DONE, FAILED, LARGEST_ID, MOTION, NO_OBJECT, REJECTED, TRIGGER_ERRORS, Site, camera,
                       config, mapping, object_source, on_postgresql, on_sqlite, small_inventory, topic_source,
                       trigger)

NO_PROPERTIES = {"maxLatencyMs": None, "digestCooldownMs": None, "ackTimeoutMs": None, "nackDelayMs": None}
NO_CHANGES = {kind: {"written": 0, "deleted": 0}
              for kind in ("triggers", "subscriptions", "subscriptionLinks", "detection", "detectionLinks")}


def everything():
    """One trigger that listens in every way."""
    return trigger(7, topic_source(), {"type": "metadata-event"}, object_source("vehicle"),
                   tags={"camera": {"area": None}, "eventSubscription": {"door": None}},
                   scheduleIds=[1], anyTime=True)


def changes(**kinds):
    return {**NO_CHANGES, **{kind: {"written": written, "deleted": deleted}
                             for kind, (written, deleted) in kinds.items()}}


class Applied_Documents(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def test_the_outcome_is_told_to_the_letter(self):
        answer = self.apply(config(everything(), properties={"notificationDigestCooldownMins": 5}))
        searched = [{"type": "car", "motionRequired": False}, {"type": "truck", "motionRequired": False}]
        self.assertEqual(answer, {
            "success": True,
            "errors": [],
            "warnings": [],
            "reconciled": [10, 11],
            "state": {
                "appliedTriggers": {"7": {"anyTime": True}},
                "onvifTopicsByTrigger": {"7": {"10": [MOTION], "11": [MOTION]}},
                "subscriptionsByTrigger": {"7": [3]},
                "searchItemsByTrigger": {"7": {"10": searched, "11": searched}},
                "properties": {**NO_PROPERTIES, "digestCooldownMs": 300000},
            },
            "changes": changes(triggers=(1, 0), subscriptions=(2, 0), subscriptionLinks=(3, 0), detection=(2, 0),
                               detectionLinks=(2, 0)),
        })

    def test_an_empty_configuration_has_an_empty_state(self):
        answer = self.apply(config())
        self.assertEqual(answer, {
            "success": True, "errors": [], "warnings": [], "reconciled": [], "changes": NO_CHANGES,
            "state": {"appliedTriggers": {}, "onvifTopicsByTrigger": {}, "subscriptionsByTrigger": {},
                      "searchItemsByTrigger": {}, "properties": NO_PROPERTIES}})

    def test_applying_twice_changes_no_row(self):
        documents = (config(everything(), trigger(8, topic_source(CROSSED))), mapping(([1], [7])))
        self.apply(*documents)
        before = self.rows()
        answer = self.apply(*documents)
        self.assertEqual(answer["changes"], NO_CHANGES)
        self.assertEqual(answer["reconciled"], [])
        self.assertEqual(self.rows(), before)

    def test_a_refresh_of_an_unchanged_site_changes_no_row(self):
        self.apply(config(everything()))
        before = self.rows()
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual((outcome.status, outcome.json["changes"]), (DONE, NO_CHANGES))
        self.assertEqual(self.rows(), before)
        self.assertEqual(outcome.json["state"]["appliedTriggers"], {"7": {"anyTime": True}})

    def test_a_refresh_follows_the_site(self):
        self.apply(config(everything()))
        self.init({"cameras": [camera(12, [MOTION], {"area": "roof"})]})
        answer = self.run_tool("--json", "refresh").json
        self.assertEqual(answer["reconciled"], [12])
        self.assertEqual(answer["changes"], changes(subscriptions=(1, 0), subscriptionLinks=(1, 0)))

    def test_a_refresh_before_any_document_works_on_empty_ones(self):
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual((outcome.status, outcome.json["errors"]), (DONE, []))
        self.assertEqual(outcome.json["state"]["appliedTriggers"], {})

    def test_a_configuration_without_triggers_clears_the_site(self):
        self.apply(config(everything()))
        answer = self.apply(config())
        self.assertEqual(answer["reconciled"], [10, 11])
        self.assertEqual(answer["changes"], changes(triggers=(0, 1), subscriptions=(0, 2), subscriptionLinks=(0, 3),
                                                    detection=(0, 2), detectionLinks=(0, 2)))
        self.assertEqual(self.show("triggers"), [])
        self.assertEqual(self.show("detection"), [])
        self.assertEqual([record["id"] for record in self.show("subscriptions")], [3])

    def test_a_trigger_that_leaves_subscriptions_to_others_has_no_stream_reconciled(self):
        self.apply(config(everything(), trigger(8), trigger(9, topic_source(CROSSED))))
        answer = self.apply(config(everything(), trigger(9, topic_source(CROSSED))))
        self.assertEqual(answer["changes"], changes(triggers=(0, 1), subscriptionLinks=(0, 2)))
        self.assertEqual(answer["reconciled"], [])
        answer = self.apply(config(everything()))
        self.assertEqual(answer["changes"], changes(triggers=(0, 1), subscriptions=(0, 1), subscriptionLinks=(0, 1)))
        self.assertEqual(answer["reconciled"], [10])

    def test_a_document_without_the_list_of_triggers_is_rejected_and_clears_nothing(self):
        self.apply(config(everything()))
        before = self.rows()
        answer = self.apply({}, expected=REJECTED)
        self.assertEqual(answer["errors"], [{
            "category": 0, "message": "Failed to parse trigger config: Missing \"triggers\" array.",
            "document": "config", "line": 1, "column": 1}])
        self.assertIsNone(answer["state"])
        self.assertEqual(self.rows(), before)

    def test_a_new_mapping_and_a_new_configuration_are_one_pass(self):
        self.apply(config(trigger(7, scheduleIds=[1])), mapping(([2], [7])))
        self.assertEqual(self.show("triggers"), [])
        answer = self.apply(config(trigger(7, scheduleIds=[1]), trigger(8, scheduleIds=[1])), mapping(([2], [8])))
        self.assertEqual(answer["state"]["appliedTriggers"], {"7": {"anyTime": False}})
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])

    def test_without_a_mapping_the_stored_one_is_used(self):
        self.apply(config(trigger(7, scheduleIds=[1])), mapping(([2], [8])))
        answer = self.apply(config(trigger(7, scheduleIds=[1]), trigger(8, scheduleIds=[1])))
        self.assertEqual(answer["state"]["appliedTriggers"], {"7": {"anyTime": False}})

    def test_a_rejected_mapping_changes_nothing(self):
        self.apply(config(everything()), mapping(([1], [7])))
        before = self.rows()
        answer = self.apply(config(), {"triggerMapping": [{}]}, expected=REJECTED)
        self.assertEqual(answer["errors"], [{
            "category": 0,
            "message": "Failed to parse trigger config: \"scheduleIds\" array is missing or invalid.",
            "document": "mapping", "index": 0, "line": 1, "column": 21}])
        self.assertEqual(self.rows(), before)

    def test_a_mapping_without_its_list_is_rejected_and_the_stored_one_stays(self):
        stored = mapping(([2], [7]))
        self.apply(config(trigger(7, scheduleIds=[1])), stored)
        before = self.rows()
        for associations in ({}, {"triggerMapping": None}, {"triggermapping": []}):
            with self.subTest(associations):
                [error] = self.apply(config(trigger(7, scheduleIds=[1])), associations, expected=REJECTED)["errors"]
                self.assertEqual(error["message"], "Failed to parse trigger config: "
                                                   "\"triggerMapping\" array is missing or invalid.")
                self.assertEqual(error["document"], "mapping")
                self.assertEqual(self.rows(), before)
        self.assertEqual(json.loads(self.run_tool("show", "mapping").out), stored)

    def test_documents_that_are_no_objects_are_rejected(self):
        before = self.rows()
        prefix = "Failed to parse trigger config: "
        for document, documents, message in (
                ("config", ([],), NO_OBJECT),
                ("mapping", (config(), []), "Trigger mapping must be a JSON object."),
                ("config", ([], []), NO_OBJECT)):
            with self.subTest(documents):
                answer = self.apply(*documents, expected=REJECTED)
                self.assertEqual(answer["errors"], [{"category": 0, "message": prefix + message,
                                                     "document": document, "line": 1, "column": 1}])
                self.assertEqual(answer["changes"], NO_CHANGES)
                self.assertFalse(answer["success"])
        self.assertEqual(self.rows(), before)

    def test_a_missing_server_record_rejects_the_document(self):
        self.sql("DELETE FROM server")
        answer = self.apply(config(), expected=REJECTED)
        message = "Failed to retrieve server tags due to invalid server ID"
        self.assertEqual(answer["errors"],
                         [{"category": 0, "message": f"Failed to parse trigger config: {message}",
                           "document": "config"}])
        self.assertEqual([error["message"] for error in self.check(config())["errors"]], [message])

    def test_a_refresh_of_a_site_that_lost_its_server_record_fails(self):
        self.apply(config(everything()))
        self.sql("DELETE FROM server")
        before = self.rows_but_history()
        outcome = self.run_tool("--json", "refresh")
        self.assertEqual(outcome.status, FAILED)
        self.assertEqual(outcome.json["errors"], [{
            "category": 1,
            "message": "Encountered error refreshing the trigger config: "
                       "Failed to retrieve server tags due to invalid server ID"}])
        self.assertEqual(self.rows_but_history(), before)

    def test_stored_documents_come_back_byte_for_byte(self):
        configuration = b'\n{ "triggers" : [ ] ,\r\n\t"comment": "\\u00e9\xc3\xa9 1.50e+3", "n": 1.50e+3 }\n\n'
        associations = b' {"triggerMapping":[]}'
        self.apply(configuration, associations)
        for what, text in (("config", configuration), ("mapping", associations)):
            for flags in ([], ["--json"]):
                with self.subTest(what, flags=flags):
                    self.assertEqual(self.run_tool(*flags, "show", what).out, text)

    def test_a_mapping_stays_stored_when_a_configuration_comes_alone(self):
        self.apply(config(), b'{"triggerMapping": [] }')
        self.apply(b'{"triggers": [] }')
        self.assertEqual(self.run_tool("show", "mapping").out, b'{"triggerMapping": [] }')
        self.assertEqual(self.run_tool("show", "config").out, b'{"triggers": [] }')

    def test_documents_can_come_from_standard_input(self):
        document = b'{"triggers": []}'
        outcome = self.run_tool("apply", "-", given=document)
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual(self.run_tool("show", "config").out, document)
        self.assertEqual(self.run_tool("check", "-", given=b"{}").status, REJECTED)

    def test_people_read_what_changed_and_what_did_not(self):
        self.write("config.json", config(everything()))
        self.assertEqual(self.run_tool("apply", "config.json").text, """\
Changed:
  triggers                    1 written        0 deleted
  subscriptions               2 written        0 deleted
  subscription links          3 written        0 deleted
  detection records           2 written        0 deleted
  detection links             2 written        0 deleted
Cameras reconciled: 2
Active triggers: 1
Done.
""")
        self.assertEqual(self.run_tool("refresh").text, """\
Nothing changed.
Cameras reconciled: 0
Active triggers: 1
Done.
""")

    def test_people_read_why_a_document_is_rejected(self):
        self.write("config.json", '{"triggers": [\n  {"id": "x"}\n]}')
        outcome = self.run_tool("apply", "config.json")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (REJECTED, b"", """\
config.json:2:10: error: Failed to parse trigger config: "id" field is missing or invalid. (element 0)
      {"id": "x"}
             ^
Rejected; nothing changed.
"""))

    def test_people_read_where_a_mapping_is_rejected(self):
        self.write("config.json", config())
        self.write("mapping.json", '{"triggerMapping": [\n  {"scheduleIds": [], "triggerIds": []}\n]}')
        outcome = self.run_tool("apply", "config.json", "mapping.json")
        self.assertEqual((outcome.status, outcome.text), (REJECTED, """\
mapping.json:2:37: error: Failed to parse trigger config: "triggerIds" array is empty. (element 0)
      {"scheduleIds": [], "triggerIds": []}
                                        ^
Rejected; nothing changed.
"""))
        self.write("mapping.json", "\n []")
        outcome = self.run_tool("apply", "config.json", "mapping.json")
        self.assertEqual((outcome.status, outcome.text), (REJECTED, """\
mapping.json:2:2: error: Failed to parse trigger config: Trigger mapping must be a JSON object.
     []
     ^
Rejected; nothing changed.
"""))

    def test_people_read_where_a_document_cannot_be_read(self):
        self.write("config.json", '{"triggers": [1.]}')
        outcome = self.run_tool("apply", "config.json")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (REJECTED, b"", """\
config.json:1:17: error: Expected a digit.
    {"triggers": [1.]}
                    ^
Rejected; nothing changed.
"""))

    def test_whatever_becomes_of_a_pass_its_outcome_has_the_same_members(self):
        members = {"success", "errors", "warnings", "reconciled", "state", "changes"}
        good = self.write("good.json", config())
        unreadable = self.write("unreadable.json", "{")
        self.assertEqual(set(self.run_tool("--json", "apply", good).json), members)
        rejected = self.run_tool("--json", "apply", unreadable)
        self.assertEqual((rejected.status, rejected.err), (REJECTED, b""))
        self.assertEqual(rejected.json, {
            "success": False, "reconciled": [], "state": None, "changes": NO_CHANGES, "warnings": [],
            "errors": [{"category": 0, "message": "The document ends too early.", "document": "config",
                        "line": 1, "column": 2}]})
        with_mapping = self.run_tool("--json", "apply", good, unreadable).json
        self.assertEqual((set(with_mapping), with_mapping["errors"][0]["document"]), (members, "mapping"))
        for command in (["apply", good], ["refresh"]):
            failed = self.run_tool("--json", "--database", self.behind.absent, *command)
            self.assertEqual((failed.status, failed.err), (FAILED, b""))
            self.assertEqual(failed.json, {
                "success": False, "reconciled": [], "state": None, "changes": NO_CHANGES, "warnings": [],
                "errors": [{"category": 1, "message": self.behind.absence}]})


class Texts_To_Hold(Site):
    TRIGGERS = ({**trigger(1), "name": "before\0after"}, trigger(2, topic_source("before\0after")),
                trigger(3, object_source("before\0after")), trigger(4))

    def setUp(self):
        super().setUp()
        self.init()

    @on_sqlite
    def test_a_trigger_may_have_any_text(self):
        self.assertEqual(self.apply(config(*self.TRIGGERS))["errors"], [])
        self.assertEqual([record["id"] for record in self.show("triggers")], [1, 2, 3, 4])

    @on_postgresql
    def test_a_trigger_with_a_text_that_the_database_cannot_hold_fails_alone(self):
        answer = self.apply(config(*self.TRIGGERS), expected=TRIGGER_ERRORS)
        self.assertEqual(answer["errors"], [
            {"category": 1, "message": f"Trigger {number}: Failed to process config (Failed to create trigger)."}
            for number in (1, 2, 3)])
        self.assertEqual(answer["state"]["appliedTriggers"], {"4": {"anyTime": False}})
        self.assertEqual([record["id"] for record in self.show("triggers")], [4])
        self.assertEqual(self.show("config"), config(*self.TRIGGERS))
        refreshed = self.run_tool("--json", "refresh")
        self.assertEqual((refreshed.status, refreshed.json["errors"], refreshed.json["changes"]),
                         (TRIGGER_ERRORS, answer["errors"], NO_CHANGES))
        told = self.run_tool("refresh").text.splitlines(keepends=True)
        warnings = [line for line in told if line.startswith("stored config:1:")]
        self.assertEqual(len([line for line in warnings if "cannot be stored" in line]), 3)
        quoted = [line for line in told if line.startswith("    ")]
        self.assertEqual(len(quoted), 2 * len(warnings))  # a line of the document, and the mark under it
        self.assertEqual("".join(line for line in told if line not in warnings + quoted), """\
error: Trigger 1: Failed to process config (Failed to create trigger).
error: Trigger 2: Failed to process config (Failed to create trigger).
error: Trigger 3: Failed to process config (Failed to create trigger).
Nothing changed.
Cameras reconciled: 0
Active triggers: 1
Done, with errors.
""")


class Identifiers(Site):
    def test_the_smallest_and_the_largest_id_are_ids_like_any_other(self):
        ids = (0, LARGEST_ID)
        self.init({"servers": [{"id": 1}], "schedules": [{"id": number} for number in ids],
                   "cameras": [camera(number, [MOTION], objectDetection=True) for number in ids],
                   "eventCategories": [{"id": number} for number in ids],
                   "subscriptions": [{"id": number, "categoryId": number, "cameraIds": list(ids)} for number in ids]})
        triggers = [trigger(number, topic_source(), {"type": "metadata-event"}, object_source(), scheduleIds=[number])
                    for number in reversed(ids)]
        answer = self.apply(config(*triggers), mapping(([LARGEST_ID], [LARGEST_ID])))
        self.assertEqual(answer["reconciled"], [0, LARGEST_ID])
        self.assertEqual(answer["state"]["subscriptionsByTrigger"], {"0": list(ids), str(LARGEST_ID): list(ids)})
        self.assertEqual([(record["id"], record["scheduleIds"]) for record in self.show("triggers")],
                         [(0, [0]), (LARGEST_ID, [LARGEST_ID])])
        shown = self.show("subscriptions")
        self.assertEqual([record["id"] for record in shown], [0, 1, 2, LARGEST_ID])
        self.assertEqual([record["cameraId"] for record in shown], [None, 0, LARGEST_ID, None])
        self.assertEqual([record["categoryId"] for record in shown], [0, None, None, LARGEST_ID])
        self.assertEqual([record["triggerIds"] for record in shown], [[0, LARGEST_ID]] * 4)
        self.assertEqual([record["cameraId"] for record in self.show("detection")], [0, LARGEST_ID])

    def test_the_largest_server_id_works(self):
        self.write("site.json", {"servers": [{"id": LARGEST_ID}]})
        self.write("config.json", config(trigger(1)))
        flags = ("--server-id", str(LARGEST_ID))
        self.assertEqual(self.run_tool(*flags, "init", "site.json").status, DONE)
        self.assertEqual(self.run_tool(*flags, "apply", "config.json").status, DONE)

    def test_a_database_belongs_to_the_first_server_that_used_it(self):
        inventory = small_inventory()
        inventory["servers"].append({"id": 2})
        self.init(inventory)
        self.apply(config())
        before = self.rows()
        self.write("config.json", config(trigger(7)))
        self.write("inventory.json", {})
        for command in (["check", "config.json"], ["apply", "config.json"], ["refresh"], ["show", "triggers"],
                        ["init", "inventory.json"]):
            with self.subTest(command[0]):
                outcome = self.run_tool("--server-id", "2", "--json", *command)
                self.assertEqual(outcome.status, FAILED)
                [error] = outcome.json["errors"]
                self.assertEqual(error["category"], 1)
                self.assertEqual(error["message"],
                                 f"database {self.behind.shown}: it belongs to server 1, not to server 2")
        self.assertEqual(self.rows(), before)


class Site_Conditions(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def test_a_trigger_whose_schedule_cannot_be_used_is_inactive(self):
        for schedules in ([2], [1, 2], [99]):
            with self.subTest(schedules):
                answer = self.apply(config(trigger(7, scheduleIds=schedules)))
                self.assertEqual(answer["state"]["appliedTriggers"], {})
        self.assertEqual(self.show("triggers"), [])

    def test_a_trigger_for_another_server_is_inactive(self):
        answer = self.apply(config(trigger(7, tags={"server": {"site": "south"}}),
                                   trigger(8, tags={"server": {"site": "north"}})))
        self.assertEqual(answer["state"]["appliedTriggers"], {"8": {"anyTime": False}})

    def test_a_trigger_whose_cameras_are_not_there_is_active_and_listens_nowhere(self):
        answer = self.apply(config(trigger(7, topic_source(), object_source(), tags={"camera": {"area": "roof"}})))
        self.assertEqual(answer["state"]["appliedTriggers"], {"7": {"anyTime": False}})
        self.assertEqual(answer["state"]["onvifTopicsByTrigger"], {})
        self.assertEqual(answer["reconciled"], [])

    def test_a_camera_without_the_capability_gets_no_subscription(self):
        answer = self.apply(config(trigger(7, topic_source(CROSSED))))
        self.assertEqual(answer["state"]["onvifTopicsByTrigger"], {"7": {"10": [CROSSED]}})

    def test_a_trigger_of_external_sources_alone_is_dropped_in_silence(self):
        answer = self.apply(config(trigger(7, {"type": "external"}), trigger(8)))
        self.assertEqual((answer["errors"], answer["state"]["appliedTriggers"]), ([], {"8": {"anyTime": False}}))


if __name__ == "__main__":
    unittest.main()
