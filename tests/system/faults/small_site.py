# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The documents of the site that faults are tried on: small, with something of every kind."""

MOTION = "tns1:VideoSource/MotionAlarm"
CROSSED = "tns1:RuleEngine/LineDetector/Crossed"
LOITERING = "tns1:RuleEngine/LoiteringDetector/ObjectIsLoitering/a_rule_with_a_long_name_of_its_own"


def camera(number, topics, tags, **others):
    topic_filter = {"TopicFilter": {"capabilities": {topic: "" for topic in topics}}}
    return {"id": number, "name": f"the camera with the number {number}", "tags": tags,
            "capabilities": {"Metadata": {"Mode": {"capabilities": {"On": topic_filter}}}}, **others}


def inventory():
    return {
        "servers": [{"id": 1, "name": "one", "tags": {"site": "north"}}, {"id": 2, "name": "two"}],
        "cameras": [
            camera(10, [MOTION, CROSSED, LOITERING], {"area": "gate", "indoor": None},
                   objectDetection=True, motionDetection=True),
            camera(11, [MOTION, CROSSED], {"area": "dock"}, objectDetection=True),
            camera(12, [MOTION, CROSSED], {"area": "gate"}),
            camera(14, [MOTION], {"area": "yard"})],
        "schedules": [{"id": 1, "name": "always"}, {"id": 2, "name": "expired", "usable": False}],
        "eventCategories": [{"id": 1, "name": "access control and what belongs to it"}],
        "subscriptions": [{"id": 3, "name": "door forced", "categoryId": 1,
                           "tags": {"door": "main", "floor": None}, "cameraIds": [11, 10]},
                          {"id": 4, "name": "fire alarm of the second floor", "tags": {"alarm": "fire"}}],
        "objectTypes": {"vehicle": ["car", "heavy"], "heavy": ["truck", "bus"]},
    }


def changed_inventory():
    """The same site later: every kind of record comes, changes or loses something. No camera loses a topic that
    triggers listen to: a subscription that is there stays, and would not be made again."""
    site = inventory()
    site["servers"][0]["tags"] = {"site": "north", "country": "far away, and further than that"}
    site["cameras"][0]["tags"] = {"area": "yard"}
    site["cameras"][1] = camera(11, [MOTION, CROSSED, LOITERING], {"area": "gate"}, objectDetection=True)
    del site["cameras"][3]["capabilities"]
    site["cameras"].append(camera(13, [MOTION, CROSSED], {"area": "gate"}, objectDetection=True))
    site["schedules"][1]["usable"] = True
    site["subscriptions"][0]["tags"] = {"door": "back"}
    site["subscriptions"][0]["cameraIds"] = [12]
    site["objectTypes"]["heavy"] = ["truck", "a lorry with a trailer"]
    return site


def pruned_inventory():
    """The same site, the whole of it: a record of every kind is gone, and one of every kind came or changed."""
    site = changed_inventory()
    for gone in ("servers", "cameras", "schedules", "subscriptions"):
        del site[gone][1]
    site["eventCategories"] = [{"id": 2, "name": "another category"}]
    site["subscriptions"][0]["categoryId"] = 2
    site["subscriptions"].append({"id": 5000, "name": "a third door", "tags": {"door": "back"}})
    site["objectTypes"] = {"vehicle": ["car"]}
    return site


def wide_inventory():
    """As many cameras as make the guard look."""
    site = inventory()
    site["cameras"] += [camera(number, [MOTION], {"area": "gate"}) for number in range(100, 111)]
    return site


def onvif(topic):
    return {"type": "onvif-metadata", "onvifTopic": topic}


def detection(object_type, **others):
    return {"type": "object-detection", "searchItem": {"type": object_type, **others}}


def trigger(number, name, tags, *sources, **others):
    return {"id": number, "name": name, "tags": tags, "sources": list(sources), **others}


def config_before():
    return {"triggers": [
        trigger(1, "motion at the gate, whoever it may be", {"camera": {"area": "gate"}}, onvif(MOTION)),
        trigger(2, "crossed", {}, onvif(CROSSED), detection("person")),
        trigger(3, "main door", {"eventSubscription": {"door": "main"}}, {"type": "metadata-event"}),
        trigger(4, "fire", {"eventSubscription": {"alarm": "fire"}}, {"type": "metadata-event"}, scheduleIds=[1]),
        trigger(5, "at the dock", {"camera": {"area": "dock"}}, detection("vehicle"))]}


def mapping_before():
    return {"triggerMapping": [{"scheduleIds": [1], "triggerIds": [1, 4]}]}


def config_after():
    stands = {"activityDuration": {"mode": "object-track", "minDurationMs": 60000}}
    moves = {"type": "motion-detection", "activityDuration": {"minDurationMs": 2000, "dropoutMs": 5000}}
    return {
        "triggers": [
            trigger(1, "motion at the dock, whoever it may be", {"camera": {"area": "dock"}},
                    onvif(MOTION), onvif(CROSSED)),
            trigger(2, "crossed and loitered", {"server": {"site": "north"}, "camera": {"area": ["gate", "dock"]}},
                    onvif(CROSSED), onvif(LOITERING), detection("person", motionRequired=True)),
            trigger(3, "any door", {"eventSubscription": {"floor": None}}, {"type": "metadata-event"},
                    {"type": "external"}, anyTime=True),
            trigger(4, "fire", {}, {"type": "metadata-event"}, scheduleIds=[2]),
            trigger(6, "vehicle stands at the gate", {"camera": {"area": "gate"}},
                    {**detection("vehicle"), **stands}, moves, {"type": "audio-detection"}, scheduleIds=[1]),
            trigger(7, "of another server", {"server": {"site": "south"}}, onvif(MOTION))],
        "properties": {"notificationMaxLatencySecs": 2, "notificationDigestCooldownMins": 5}}


def mapping_after():
    return {"triggerMapping": [{"scheduleIds": [1], "triggerIds": [1, 6]}, {"scheduleIds": [], "triggerIds": [3]},
                               {"scheduleIds": [1, 2], "triggerIds": [4]}]}


def faulty_config():
    """Rejected, for several reasons."""
    return {"triggers": [
        trigger(1, "no topic", {}, {"type": "onvif-metadata"}),
        trigger(2, "a filter that is none", {"camera": {"area": ["gate", 3]}}, onvif(MOTION)),
        trigger(3, "a duration that is too short for anything", {},
                {**detection("person"), "activityDuration": {"mode": "object-track", "minDurationMs": 1}})]}


def faulty_inventory():
    return {"cameras": [{"id": 20, "name": "x", "tags": {"a": 3}, "unheard of": 1}, {"name": "no id"}],
            "subscriptions": [{"id": 21, "cameraIds": [99], "categoryId": 98}]}
