# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""plan: what apply would do, record by record; and plans that are kept."""

import json
import os
import stat
import subprocess
import unittest

from tool_site import (CROSSED, DONE, FAILED, MOTION, REJECTED, WRONG_USAGE, Site, camera, config, mapping,
                       object_source, on_sqlite, small_inventory, topic_source, trigger)

REFUSED, TO_CHANGE = 4, 5

GATE = {"camera": {"area": "gate"}}


class Planned(Site):
    def setUp(self):
        super().setUp()
        self.init()

    def plan(self, configuration, associations=None, expected=DONE, options=()):
        """Makes a plan, which must leave everything as it is; answers the JSON outcome."""
        names = [self.write("planned.json", configuration)]
        if associations is not None:
            names.append(self.write("planned_mapping.json", associations))
        rows, files = self.rows(), self.database_files()
        outcome = self.run_tool("--json", "plan", *options, *names)
        self.assertEqual((outcome.status, outcome.err), (expected, b""), outcome.out)
        self.assertEqual((self.rows(), self.database_files()), (rows, files))
        return outcome.json

    def database_files(self):
        return {name: content for name, content in self.files().items() if name in ("vemora.db", "vemora.db-wal")}


class Plans(Planned):
    def test_a_first_plan_creates_everything(self):
        given = config(trigger(7, topic_source(CROSSED), object_source(), tags=GATE, scheduleIds=[1]))
        planned = self.plan(given)
        record = {"id": 7, "name": "trigger 7", "scheduleIds": [1],
                  "sources": [{"type": "onvif-metadata", "onvifTopic": CROSSED},
                              {"type": "object-detection", "searchItem": {"type": "person", "motionRequired": False}}]}
        self.assertEqual(planned["plan"], {
            "triggers": [{"action": "create", "id": 7, "before": None, "after": record}],
            "subscriptions": [{"action": "create", "id": None, "cameraId": 10, "onvifTopic": CROSSED, "before": None,
                               "after": [7]}],
            "detection": [{"action": "create", "id": None, "cameraId": 10, "before": None, "after": [7]}],
            "documents": ["config"]})
        applied = self.apply(given)
        del planned["plan"]
        self.assertEqual(planned, applied)

    def test_changes_and_deletions_are_told_with_what_was_there(self):
        self.apply(config(trigger(7, topic_source(CROSSED)), trigger(8, topic_source(CROSSED)), trigger(9)))
        before = {record["id"]: record for record in self.show("triggers")}
        topics = {(record["cameraId"], record["onvifTopic"]): record["id"] for record in self.show("subscriptions")}
        given = config(trigger(7, topic_source(CROSSED), name="renamed"), trigger(8, object_source()))
        planned = self.plan(given, mapping())["plan"]
        self.apply(given, mapping())
        after = {record["id"]: record for record in self.show("triggers")}
        self.assertEqual(planned["triggers"], [
            {"action": "change", "id": 7, "before": before[7], "after": after[7]},
            {"action": "change", "id": 8, "before": before[8], "after": after[8]},
            {"action": "delete", "id": 9, "before": before[9], "after": None}])
        self.assertEqual(planned["subscriptions"], sorted((
            {"action": "change", "id": topics[10, CROSSED], "cameraId": 10, "onvifTopic": CROSSED,
             "before": [7, 8], "after": [7]},
            {"action": "delete", "id": topics[10, MOTION], "cameraId": 10, "onvifTopic": MOTION,
             "before": [9], "after": None},
            {"action": "delete", "id": topics[11, MOTION], "cameraId": 11, "onvifTopic": MOTION,
             "before": [9], "after": None}), key=lambda record: record["id"]))
        self.assertEqual([(record["action"], record["cameraId"]) for record in planned["detection"]],
                         [("create", 10), ("create", 11)])
        self.assertEqual(planned["documents"], ["config", "mapping"])

    def test_generic_subscriptions_are_told_by_their_id(self):
        planned = self.plan(config(trigger(7, {"type": "metadata-event"})))["plan"]
        self.assertEqual(planned["subscriptions"], [{"action": "change", "id": 3, "cameraId": None, "onvifTopic": None,
                                                     "before": [], "after": [7]}])

    def test_what_is_stored_already_is_no_change(self):
        given = config(trigger(7))
        self.apply(given, mapping())
        planned = self.plan(given, mapping(), options=["--exit-code"])
        self.assertEqual(planned["plan"], {"triggers": [], "subscriptions": [], "detection": [], "documents": []})
        self.assertEqual(self.run_tool("plan", "planned.json").text, "Nothing would change.\n")

    def test_the_exit_status_tells_changes_when_it_is_asked_to(self):
        self.apply(config(trigger(7)))
        self.plan(config(trigger(8)))
        self.plan(config(trigger(8)), expected=TO_CHANGE, options=["--exit-code"])
        # A document that differs is stored, and what is left over is reconciled.
        self.plan(config(trigger(7), properties={}), expected=TO_CHANGE, options=["--exit-code"])
        self.sql("INSERT INTO pending_camera VALUES (11)")
        left_over = self.plan(config(trigger(7)), expected=TO_CHANGE, options=["--exit-code"])
        self.assertEqual(left_over["reconciled"], [11])

    def test_a_rejected_document_is_told_as_apply_tells_it(self):
        for text in (config(trigger(7), trigger(7)), "{", "[]"):
            with self.subTest(text=text):
                planned = self.plan(text, expected=REJECTED, options=["--exit-code"])
                planned.pop("plan", None)
                self.assertEqual(planned, self.apply(text, expected=REJECTED))
        self.assertIn("would be rejected", self.run_tool("plan", self.write("wrong.json", "[]")).text)

    def test_warnings_are_told_and_reject_if_they_are_to(self):
        given = config(trigger(7, camera={}))
        self.assertEqual([warning["code"] for warning in self.plan(given)["warnings"]], ["unknown-key"])
        self.plan(given, expected=REJECTED, options=["--strict"])

    def test_a_refusal_is_foretold(self):
        self.apply(config(*(trigger(number) for number in range(12))))
        planned = self.plan(config())
        self.assertEqual(planned["massDeletions"], [{"what": "triggers", "deleted": 12, "stored": 12}])
        self.assertEqual(planned["remarks"], ["apply would refuse this: it deletes 12 of 12 triggers. "
                                              "--allow-mass-deletion lets it pass."])
        self.assertEqual(len(planned["plan"]["triggers"]), 12)

    def test_a_pass_need_not_end_before_it(self):
        self.apply(config(trigger(7)))
        with self.behind.locked():
            self.plan(config(trigger(8)))

    @on_sqlite
    def test_who_may_only_read_can_plan(self):
        self.apply(config(trigger(7)))
        name = self.write("planned.json", config(trigger(8)))
        os.chmod(self.folder, 0o755)
        for file in self.files():
            os.chmod(self.path(file), 0o444)
        os.chmod(self.folder, 0o555)
        self.addCleanup(os.chmod, self.folder, 0o755)
        unprivileged = {"user": 65534, "group": 65534, "extra_groups": []} if os.geteuid() == 0 else {}
        outcome = self.run_tool("--json", "plan", name, **unprivileged)
        self.assertEqual(outcome.status, DONE, outcome.out + outcome.err)

    def test_without_a_database_it_fails(self):
        outcome = self.run_tool("--json", "--database", self.behind.absent, "plan", self.write("new.json", config()))
        self.assertEqual(outcome.status, FAILED)
        self.assertFalse(os.path.exists(self.path("none.db")))

    @on_sqlite
    def test_killed_at_any_moment_it_leaves_no_trace(self):
        self.apply(config(*(trigger(number) for number in range(50))))
        name = self.write("planned.json", config(*(trigger(number, topic_source(CROSSED)) for number in range(50))))
        rows, files = self.rows(), self.database_files()
        for delay in (0.002 * step for step in range(1, 30)):
            with subprocess.Popen(self.command("plan", name), cwd=self.folder, stdout=subprocess.DEVNULL) as process:
                try:
                    process.wait(delay)
                except subprocess.TimeoutExpired:
                    process.kill()
        self.assertEqual((self.rows(), self.database_files()), (rows, files))


class PlansForPeople(Planned):
    def text_of(self, configuration):
        outcome = self.run_tool("plan", self.write("planned.json", configuration))
        self.assertEqual((outcome.status, outcome.err), (DONE, b""), outcome.out)
        return outcome.text

    def test_changes_are_grouped_by_trigger(self):
        self.apply(config(trigger(7), trigger(8, topic_source(CROSSED), object_source()), trigger(9, scheduleIds=[1])))
        self.assertEqual(self.text_of(config(
            trigger(7, name="seven"), trigger(9, object_source("car", activityDuration={"minDurationMs": 2000, "dropoutMs": 1500}),
                                              scheduleIds=None),
            trigger(10, topic_source(CROSSED), {"type": "metadata-event"}, scheduleIds=[1]))), """\
~ trigger 7 "seven"
    ~ name "trigger 7" -> "seven"
- trigger 8 "trigger 8"
    - tns1:RuleEngine/LineDetector/Crossed on 1 camera: 10 "camera 10"
    - detection on 2 cameras: 10 "camera 10", 11 "camera 11"
~ trigger 9 "trigger 9"
    ~ schedules 1 "always" -> none
    + source object-detection car for 2 s (object-presence, dropout 1.5 s)
    - source onvif-metadata tns1:VideoSource/MotionAlarm
    + detection on 2 cameras: 10 "camera 10", 11 "camera 11"
    - tns1:VideoSource/MotionAlarm on 2 cameras: 10 "camera 10", 11 "camera 11"
+ trigger 10 "trigger 10"
    + schedules 1 "always"
    + source onvif-metadata tns1:RuleEngine/LineDetector/Crossed
    + source metadata-event
    + tns1:RuleEngine/LineDetector/Crossed on 1 camera: 10 "camera 10"
    + subscription 3 "door forced"
~ the stored configuration
reconcile 2 cameras: 10 "camera 10", 11 "camera 11"
Would change: 4 triggers (+1 ~2 -1), 4 subscriptions (+0 ~4 -0), 2 detection records (+0 ~2 -0); 2 cameras to \
reconcile. Nothing is written yet.
""")

    def test_what_changes_without_its_document_is_told_too(self):
        given = config(trigger(7, tags=GATE))
        self.apply(given)
        inventory = small_inventory()
        inventory["cameras"][1]["tags"] = {"area": "gate"}
        self.init(inventory)
        self.assertEqual(self.text_of(given), """\
~ trigger 7 "trigger 7", defined as before
    + tns1:VideoSource/MotionAlarm on 1 camera: 11 "camera 11"
reconcile 1 camera: 11 "camera 11"
Would change: 0 triggers (+0 ~0 -0), 1 subscription (+1 ~0 -0), 0 detection records (+0 ~0 -0); 1 camera to \
reconcile. Nothing is written yet.
""")

    def given_many_cameras(self):
        """101 at gates, 51 at docks of which 10 are also yards, and one in a lobby."""
        inventory = small_inventory()
        inventory["cameras"] = (
            [camera(number, [MOTION], {"area": "gate"}) for number in range(100, 200)] +
            [camera(number, [MOTION], {"area": "dock", **({"yard": None} if number < 210 else {})})
             for number in range(200, 250)] +
            [camera(300, [MOTION], {"area": "lobby"}), camera(400, [MOTION], {"area": "roof"})])
        self.init(inventory)

    def test_many_cameras_are_told_by_their_tags(self):
        self.given_many_cameras()
        self.assertIn("    + tns1:VideoSource/MotionAlarm on 102 cameras: all 101 with area=gate, 300 \"camera 300\"\n",
                      self.text_of(config(trigger(7, tags={"camera": {"area": ["gate", "lobby"]}}))))
        self.assertIn("    + tns1:VideoSource/MotionAlarm on 10 cameras: all 10 with yard\n",
                      self.text_of(config(trigger(7, tags={"camera": {"yard": None}}))))

    def test_cameras_without_tags_are_named_as_far_as_anybody_reads(self):
        inventory = small_inventory()
        inventory["cameras"] = [camera(number, [MOTION]) for number in range(10, 30)]
        self.init(inventory)
        self.assertIn("    + tns1:VideoSource/MotionAlarm on 20 cameras: 10 \"camera 10\", 11 ",
                      self.text_of(config(trigger(7))))
        self.assertIn(", 17 \"camera 17\", and 12 more\n", self.text_of(config(trigger(7))))

    def test_of_a_tag_that_others_have_too_the_part_is_told(self):
        self.given_many_cameras()
        self.apply(config(trigger(7, tags={"camera": {"yard": None}})))
        text = self.text_of(config(trigger(7, tags={"camera": {"area": "dock"}})))
        self.assertIn("    + tns1:VideoSource/MotionAlarm on 41 cameras: 41 of 51 with area=dock\n", text)

    def test_each_deletion_is_named(self):
        self.given_many_cameras()
        self.apply(config(trigger(7)))
        text = self.text_of(config())
        self.assertEqual([line for line in text.splitlines() if line.startswith("- subscription")],
                         [f'- subscription {record["id"]}: {MOTION} on camera {record["cameraId"]} '
                          f'"camera {record["cameraId"]}"' for record in self.show("subscriptions")
                          if record["cameraId"]])
        self.assertEqual(text.count("- subscription"), 154)
        self.assertIn("note: apply would refuse this: it deletes 154 of 154 topic subscriptions. "
                      "--allow-mass-deletion lets it pass.\n", text)

    def test_names_cannot_command_a_terminal(self):
        self.assertIn('+ trigger 7 "\\x1b[31m"', self.text_of(config(trigger(7, name="\x1b[31m"))))


class KeptPlans(Planned):
    def keep(self, configuration, associations=None):
        return self.plan(configuration, associations, options=["--out", "kept.plan"])

    def carry_out(self, *options, expected=DONE):
        outcome = self.run_tool("--json", "apply", *options, "--plan", "kept.plan")
        self.assertEqual((outcome.status, outcome.err), (expected, b""), outcome.out)
        return outcome.json

    def refused(self, message):
        rows = self.rows()
        told = self.carry_out(expected=REFUSED)
        self.assertEqual((told["success"], told["errors"]), (False, [{"category": 1, "message": message}]))
        self.assertEqual(self.rows(), rows)

    def test_what_was_planned_is_done(self):
        self.apply(config(trigger(6)), mapping(([1], [6])))
        planned = self.keep(config(trigger(7), trigger(8)), mapping(([1], [7])))
        os.remove(self.path("planned.json"))
        os.remove(self.path("planned_mapping.json"))
        del planned["plan"]
        self.assertEqual(self.carry_out(), planned)
        self.assertEqual((self.show("config"), self.show("mapping")),
                         (config(trigger(7), trigger(8)), mapping(([1], [7]))))

    def test_without_a_mapping_the_stored_one_stays(self):
        self.apply(config(trigger(6)), mapping(([1], [6])))
        self.keep(config(trigger(7)))
        self.carry_out()
        self.assertEqual(self.show("mapping"), mapping(([1], [6])))

    def test_documents_are_stored_to_the_byte(self):
        text = b'{"triggers" :\t[{"id":7,"name":"T\xc3\xbcr\\u0009","tags":{},"sources":[{"type":"motion-detection"}]}]}\r\n'
        self.keep(text)
        self.carry_out()
        self.assertEqual(self.run_tool("show", "config").out, text)

    def test_its_owner_alone_can_read_it(self):
        self.keep(config(trigger(7)))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("kept.plan")).st_mode), 0o600)
        self.assertNotIn("kept.plan.part", self.files())

    def test_it_tells_where_it_is_kept(self):
        outcome = self.run_tool("plan", "--out", "kept.plan", self.write("planned.json", config(trigger(7))))
        self.assertTrue(outcome.text.endswith("Kept in kept.plan: apply --plan kept.plan does exactly this.\n"),
                        outcome.text)

    CHANGED = "The site has changed since the plan was made. Make the plan again."

    def test_a_site_that_changed_is_refused(self):
        changes = {
            "another pass": lambda: self.apply(config(trigger(9))),
            "a camera": lambda: self.init({"cameras": [camera(12, [MOTION])]}),
            "a tag": lambda: self.init({"servers": [{"id": 1, "name": "one", "tags": {"site": "south"}}]}),
            "a capability": lambda: self.init({"cameras": [camera(11, [MOTION, CROSSED])]}),
            "a schedule": lambda: self.init({"schedules": [{"id": 1, "name": "always", "usable": False}]}),
            "an object type": lambda: self.init({"objectTypes": {"vehicle": ["car"]}}),
            "the mapping": lambda: self.apply(config(trigger(9)), mapping(([1], [9]))),
        }
        for what, change in changes.items():
            with self.subTest(what=what):
                self.keep(config(trigger(7)))
                change()
                self.refused(self.CHANGED)

    def test_a_plan_is_carried_out_once(self):
        self.keep(config(trigger(7)))
        self.carry_out()
        self.refused(self.CHANGED)

    def test_a_pass_that_changed_nothing_is_no_change(self):
        self.apply(config(trigger(6)))
        self.keep(config(trigger(7)))
        self.assertEqual(self.run_tool("refresh").status, DONE)
        self.carry_out()

    def test_a_pass_that_was_taken_back_since_is_a_change(self):
        self.apply(config(trigger(6)))
        self.keep(config(trigger(7)))
        self.apply(config(trigger(6), {**trigger(8), "sources": [object_source()]}))
        self.apply(config(trigger(6)))
        self.refused(self.CHANGED)

    def test_another_server_s_plan_is_refused(self):
        self.init({"servers": [{"id": 2, "name": "two"}]})
        outcome = self.run_tool("--server-id", "2", "plan", "--out", "kept.plan",
                                self.write("planned.json", config(trigger(7))))
        self.assertEqual(outcome.status, DONE, outcome.out)
        self.refused("The plan is for server 2, not for server 1.")

    def test_the_guard_judges_it(self):
        self.apply(config(*(trigger(number) for number in range(12))))
        self.keep(config())
        self.assertEqual(self.carry_out(expected=REFUSED)["errors"][0]["message"],
                         "This pass would delete 12 of 12 triggers.")
        self.carry_out("--allow-mass-deletion")
        self.assertEqual(self.show("triggers"), [])

    def test_nothing_is_kept_of_a_rejected_document(self):
        self.plan("[]", expected=REJECTED, options=["--out", "kept.plan"])
        self.assertNotIn("kept.plan", self.files())

    def test_a_file_that_is_no_plan_is_not_replaced(self):
        name = self.write("precious.json", config())
        outcome = self.run_tool("--json", "plan", "--out", name, name)
        self.assertEqual((outcome.status, outcome.json["errors"][0]["message"]),
                         (FAILED, "precious.json exists and is not a plan, so it is not replaced"))
        with open(self.path(name), encoding="ascii") as file:
            self.assertEqual(json.load(file), config())

    def test_what_is_no_plan_is_rejected(self):
        self.keep(config(trigger(7)))
        with open(self.path("kept.plan"), "rb") as file:
            whole = file.read()
        for content, message in ((json.dumps(config()), "this is not a plan; plan --out writes one"),
                                 (whole.replace(b'trigger 7', b'trigger 8'), "the plan is damaged; make it again"),
                                 (whole.replace(b'Plan":2', b'Plan":1'),
                                  "this version cannot read the plan; make it again with this version")):
            self.write("kept.plan", content)
            rows = self.rows()
            told = self.carry_out(expected=REJECTED)["errors"][0]
            self.assertEqual((told["document"], told["message"]), ("plan", message))
            self.assertEqual(self.rows(), rows)
        os.remove(self.path("kept.plan"))
        self.assertEqual(self.carry_out(expected=REJECTED)["errors"][0]["document"], "plan")

    def test_a_plan_has_its_documents(self):
        self.keep(config(trigger(7)))
        for arguments in (["apply", "--plan", "kept.plan", "planned.json"], ["apply"], ["plan"],
                          ["plan", "--plan", "kept.plan"], ["plan", "-", "-"], ["refresh", "--plan", "kept.plan"]):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.run_tool(*arguments).status, WRONG_USAGE)


if __name__ == "__main__":
    unittest.main()
