# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""A site as its documents mean it: what each trigger is told of, why not, and what a refresh would change.

It knows nothing of the programs: the site is an inventory, the documents are the ones that were applied, and the
records are what `show` says of them.
"""

USABLE = {"onvif-metadata", "metadata-event", "object-detection", "motion-detection", "audio-detection"}


def matches(tags, terms):
    """Any one of the terms is enough; without terms everything matches."""
    def satisfied(name, wanted):
        values = wanted if isinstance(wanted, list) else [wanted]
        return name in tags and any(value is None or tags[name] == value for value in values)
    return not terms or any(satisfied(name, wanted) for name, wanted in terms.items())


def leaves(types, name, road=()):
    if name not in types:
        return {name}
    return set().union(*(leaves(types, inner, (*road, name)) for inner in types[name] if inner not in road), set())


class Records:
    """What is stored, by what it is about."""

    def __init__(self, triggers, subscriptions, detection):
        self.triggers = {one["id"]: one for one in triggers}
        self.topics = {(one["cameraId"], one["onvifTopic"]): set(one["triggerIds"])
                       for one in subscriptions if one["cameraId"] is not None}
        self.generic = {one["id"]: set(one["triggerIds"]) for one in subscriptions if one["cameraId"] is None}
        self.detection = {one["cameraId"]: set(one["triggerIds"]) for one in detection}

    def holders(self):
        """(kind, place) to triggers, where there are any."""
        places = {("topic", *place): ids for place, ids in self.topics.items()}
        places.update({("generic", place): ids for place, ids in self.generic.items()})
        places.update({("detection", place): ids for place, ids in self.detection.items()})
        return {place: ids for place, ids in places.items() if ids}


class Trigger:
    """A trigger of the configuration."""

    def __init__(self, element):
        self.element = element
        self.id = element["id"]
        sources = [source for source in element["sources"] if source["type"] in USABLE]
        self.kinds = {source["type"] for source in sources}
        self.topics = {source["onvifTopic"] for source in sources if source["type"] == "onvif-metadata"}
        self.sources = sources
        tags = element["tags"]
        self.server_filter = tags.get("server") or {}
        self.camera_filter = tags.get("camera") or {}
        self.event_filter = tags.get("eventSubscription") or {}

    @property
    def is_dropped(self):
        return not self.kinds


class Model:
    def __init__(self, inventory, config, mapping, records, server_id=1):
        self.inventory = inventory
        self.server = next(one for one in inventory["servers"] if one["id"] == server_id)
        self.cameras = {one["id"]: one for one in inventory["cameras"]}
        self.schedules = {one["id"]: one for one in inventory["schedules"]}
        self.subscriptions = {one["id"]: one for one in inventory["subscriptions"]}
        self.types = inventory.get("objectTypes", {})
        self.triggers = {one["id"]: Trigger(one) for one in config["triggers"]}
        self.mapping = mapping["triggerMapping"]
        self.stored = records
        self.refreshed = self.refresh()

    # The rules.

    def schedule_faults(self, trigger):
        own = trigger.element.get("scheduleIds")
        if own is None:
            return []
        listed = set(own)
        for association in self.mapping:
            if trigger.id in association["triggerIds"]:
                listed |= set(association["scheduleIds"])
        codes = []
        for number in sorted(listed):
            if number not in self.schedules:
                codes.append("schedule-not-found")
            elif not self.schedules[number].get("usable", True):
                codes.append("schedule-not-usable")
        return codes

    def inactivity(self, trigger_id):
        trigger = self.triggers.get(trigger_id)
        if trigger is None:
            return ["not-in-configuration"]
        if trigger.is_dropped:
            return ["no-usable-source"]
        server = [] if matches(self.server.get("tags", {}), trigger.server_filter) else ["server-filter"]
        return server + self.schedule_faults(trigger)

    def is_active(self, trigger_id):
        return not self.inactivity(trigger_id)

    def is_selected(self, trigger, camera_id):
        return camera_id in self.cameras and matches(self.cameras[camera_id].get("tags", {}), trigger.camera_filter)

    def supported(self, camera_id):
        tree = self.cameras[camera_id].get("capabilities", {})
        for key in ("Metadata", "Mode", "capabilities", "On", "TopicFilter", "capabilities"):
            tree = tree.get(key, {})
        return set(tree)

    def is_eligible(self, trigger, camera_id):
        camera = self.cameras[camera_id]
        return ("object-detection" in trigger.kinds and camera.get("objectDetection", False)) or \
               ("motion-detection" in trigger.kinds and camera.get("motionDetection", False))

    def refresh(self):
        """The holders of each place after a pass."""
        active = [trigger for trigger in self.triggers.values() if self.is_active(trigger.id)]
        places = {}
        for trigger in active:
            for topic in trigger.topics:
                for camera_id in self.cameras:
                    exists = (camera_id, topic) in self.stored.topics
                    if self.is_selected(trigger, camera_id) and (exists or topic in self.supported(camera_id)):
                        places.setdefault(("topic", camera_id, topic), set()).add(trigger.id)
                if not trigger.camera_filter:  # such a trigger is on every camera, be it gone
                    for camera_id, stored_topic in self.stored.topics:
                        if camera_id not in self.cameras and stored_topic == topic:
                            places.setdefault(("topic", camera_id, topic), set()).add(trigger.id)
            for camera_id in self.cameras:
                if self.is_selected(trigger, camera_id) and self.is_eligible(trigger, camera_id):
                    places.setdefault(("detection", camera_id), set()).add(trigger.id)
            for number, subscription in self.subscriptions.items():
                if "metadata-event" in trigger.kinds and matches(subscription.get("tags", {}), trigger.event_filter):
                    places.setdefault(("generic", number), set()).add(trigger.id)
        return places

    # What explain must say.

    def is_stored(self, place, trigger_id):
        return trigger_id in self.stored.holders().get(place, ())

    def would_be(self, place, trigger_id):
        return trigger_id in self.refreshed.get(place, ())

    def state(self, trigger_id):
        trigger = self.triggers.get(trigger_id)
        if trigger is None:
            return "not-configured"
        if trigger.is_dropped:
            return "dropped"
        return "active" if trigger_id in self.stored.triggers else "inactive"

    def changed(self, place, trigger_id):
        return ["not-refreshed"] if self.is_stored(place, trigger_id) != self.would_be(place, trigger_id) else []

    def selection(self, trigger_id, camera_id):
        trigger = self.triggers.get(trigger_id)
        if camera_id not in self.cameras:
            return ["camera-not-found"]
        if trigger is None or trigger.is_dropped:
            return self.inactivity(trigger_id)
        return [] if self.is_selected(trigger, camera_id) else ["camera-filter"]

    def topic(self, trigger_id, camera_id, topic):
        trigger = self.triggers.get(trigger_id)
        place = ("topic", camera_id, topic)
        reasons = []
        if not self.is_stored(place, trigger_id) and not self.would_be(place, trigger_id):
            reasons = self.inactivity(trigger_id) or self.selection(trigger_id, camera_id)
            if not reasons and topic in trigger.topics:
                supported = self.supported(camera_id)
                reasons = ["topic-not-supported"] if supported else ["no-metadata-capabilities"]
        return {"topic": topic, "subscribed": self.is_stored(place, trigger_id),
                "reasons": reasons + self.changed(place, trigger_id)}

    def camera(self, trigger_id, camera_id):
        trigger = self.triggers.get(trigger_id)
        place = ("detection", camera_id)
        stored, would_be = self.is_stored(place, trigger_id), self.would_be(place, trigger_id)
        reasons = self.selection(trigger_id, camera_id)
        selected = not reasons
        topics = set(trigger.topics) if selected else set()
        topics |= {topic for (number, topic), ids in self.stored.topics.items()
                   if number == camera_id and trigger_id in ids}
        if selected:  # one source may be served there, and another one not
            camera = self.cameras[camera_id]
            if "object-detection" in trigger.kinds and not camera.get("objectDetection", False):
                reasons = [*reasons, "no-object-detection"]
            if "motion-detection" in trigger.kinds and not camera.get("motionDetection", False):
                reasons = [*reasons, "no-motion-detection"]
        return {"id": camera_id, "selected": selected, "reasons": reasons + self.changed(place, trigger_id),
                "topics": [self.topic(trigger_id, camera_id, topic) for topic in sorted(topics)],
                "detected": stored, "objects": sorted(self.searched(trigger_id)) if stored else []}

    def searched(self, trigger_id):
        """Object types, and whether motion is required of them, as the record says."""
        found = {}
        for source in self.stored.triggers.get(trigger_id, {"sources": []})["sources"]:
            if source["type"] == "object-detection":
                for leaf in leaves(self.types, source["searchItem"]["type"]):
                    found[leaf] = found.get(leaf, True) and source["searchItem"]["motionRequired"]
        return found

    def subscription(self, trigger_id, number):
        place = ("generic", number)
        reasons = []
        if not self.is_stored(place, trigger_id) and not self.would_be(place, trigger_id):
            reasons = self.inactivity(trigger_id) or ["subscription-filter"]
        return {"id": number, "joined": self.is_stored(place, trigger_id),
                "reasons": reasons + self.changed(place, trigger_id)}

    def cameras_of(self, trigger_id):
        named = {place[1] for place, ids in self.stored.holders().items()
                 if place[0] != "generic" and trigger_id in ids}
        return sorted(named | set(self.cameras))

    def subscriptions_of(self, trigger_id):
        trigger = self.triggers.get(trigger_id)
        joined = {number for number, ids in self.stored.generic.items() if trigger_id in ids}
        every = set(self.subscriptions) if trigger and "metadata-event" in trigger.kinds else set()
        return sorted(joined | every)

    def has_other_record(self, trigger_id):
        """Whether the record says something else than the configuration; of a trigger that keeps it."""
        record, element = self.stored.triggers[trigger_id], self.triggers[trigger_id].element
        plain = [(source["type"], source.get("onvifTopic"), source.get("searchItem", {}).get("type"),
                  source.get("searchItem", {}).get("motionRequired", False)) for source in self.triggers[trigger_id].sources]
        stored = [(source["type"], source.get("onvifTopic"), source.get("searchItem", {}).get("type"),
                   source.get("searchItem", {}).get("motionRequired", False)) for source in record["sources"]]
        return record["name"] != element["name"] or sorted(map(repr, plain)) != sorted(map(repr, stored)) or \
            sorted(record["scheduleIds"]) != sorted(set(element.get("scheduleIds") or []))

    def silence(self, trigger_id, cameras, subscriptions):
        trigger = self.triggers[trigger_id]
        codes = set()
        by_cameras = trigger.kinds & {"onvif-metadata", "object-detection", "motion-detection"}
        if by_cameras:
            selected = [camera for camera in cameras if camera["selected"]]
            if not self.cameras:
                codes.add("camera-not-found")
            elif not selected:
                codes.add("camera-filter")
            for camera in selected:
                codes.update(camera["reasons"], *(topic["reasons"] for topic in camera["topics"]))
        if "metadata-event" in trigger.kinds:
            codes.update(*(one["reasons"] for one in subscriptions))
            if not self.subscriptions:
                codes.add("subscription-not-found")
        return codes if by_cameras or "metadata-event" in trigger.kinds else {"no-usable-source"}

    def explanation(self, trigger_id):
        trigger = self.triggers.get(trigger_id)
        cameras = [self.camera(trigger_id, number) for number in self.cameras_of(trigger_id)]
        subscriptions = [self.subscription(trigger_id, number) for number in self.subscriptions_of(trigger_id)]
        stored, active = trigger_id in self.stored.triggers, self.is_active(trigger_id)
        reasons = list(self.inactivity(trigger_id))
        heard = any(camera["detected"] or any(topic["subscribed"] for topic in camera["topics"])
                    for camera in cameras) or any(one["joined"] for one in subscriptions)
        if stored and active and not heard:
            reasons += sorted(self.silence(trigger_id, cameras, subscriptions))
        places = set(self.stored.holders()) | set(self.refreshed)
        if stored != active or (stored and self.has_other_record(trigger_id)) or \
                any(self.changed(place, trigger_id) for place in places):
            reasons.append("not-refreshed")
        name = trigger.element["name"] if trigger else self.stored.triggers.get(trigger_id, {"name": None})["name"]
        return {"id": trigger_id, "name": name, "state": self.state(trigger_id), "reasons": sorted(set(reasons)),
                "cameras": cameras, "subscriptions": subscriptions}

    # What match must say.

    def reached(self, event):
        """The triggers that such an event is told to, as stored."""
        if "subscription" in event:
            return sorted(self.stored.generic.get(event["subscription"], ()))
        if "topic" in event:
            return sorted(self.stored.topics.get((event["camera"], event["topic"]), ()))
        detecting = self.stored.detection.get(event["camera"], ())
        if "object" in event:
            return sorted(number for number in detecting if event["object"] in self.searched(number) and
                          (event.get("inMotion", False) or not self.searched(number)[event["object"]]))
        return sorted(number for number in detecting
                      if any(source["type"] == "motion-detection"
                             for source in self.stored.triggers[number]["sources"]))


    def asked_for(self, trigger_id):
        """Object types, and whether motion is required of them, as the configuration says."""
        found = {}
        for source in self.triggers[trigger_id].sources:
            if source["type"] == "object-detection":
                for leaf in leaves(self.types, source["searchItem"]["type"]):
                    found[leaf] = found.get(leaf, True) and source["searchItem"]["motionRequired"]
        return found

    def reached_after_refresh(self, event):
        if "subscription" in event:
            return self.refreshed.get(("generic", event["subscription"]), set())
        if "topic" in event:
            return self.refreshed.get(("topic", event["camera"], event["topic"]), set())
        detecting = self.refreshed.get(("detection", event["camera"]), set())
        if "object" in event:
            return {number for number in detecting if event["object"] in self.asked_for(number) and
                    (event["inMotion"] or not self.asked_for(number)[event["object"]])}
        return {number for number in detecting if "motion-detection" in self.triggers[number].kinds}

    def why_not(self, number, event):
        """Every code that is true of a trigger that is not told of the event after a refresh."""
        if number in self.reached_after_refresh(event):
            return {"not-refreshed"}
        codes = set(self.inactivity(number))
        trigger = self.triggers.get(number)
        if trigger is None or trigger.is_dropped:
            return codes
        place = event.get("camera")
        if place is not None:
            codes |= set(self.selection(number, place))
        facts = self.cameras.get(place, {})
        if "topic" in event:
            asks = event["topic"] in trigger.topics
            if place in self.cameras and event["topic"] not in self.supported(place):
                codes.add("topic-not-supported" if self.supported(place) else "no-metadata-capabilities")
        elif "object" in event:
            names = {source["searchItem"]["type"] for source in trigger.sources if "searchItem" in source}
            found = self.asked_for(number)
            asks = event["object"] in found or event["object"] in names
            if place in self.cameras and not facts.get("objectDetection", False):
                codes.add("no-object-detection")
            if event["object"] in names and event["object"] in self.types:
                codes.add("general-object-type")
            if found.get(event["object"], False) and not event["inMotion"]:
                codes.add("motion-required")
        elif "motion" in event:
            asks = "motion-detection" in trigger.kinds
            if place in self.cameras and not facts.get("motionDetection", False):
                codes.add("no-motion-detection")
        else:
            asks = "metadata-event" in trigger.kinds
            if asks and not matches(self.subscriptions[event["subscription"]].get("tags", {}), trigger.event_filter):
                codes.add("subscription-filter")
        return codes if asks else codes | {"no-such-source"}


def codes_only(explained):
    """An explanation with the codes of its reasons, each once; texts are for people."""
    if isinstance(explained, dict):
        changed = {key: codes_only(value) for key, value in explained.items()}
        if "reasons" in changed:
            changed["reasons"] = [reason["code"] for reason in explained["reasons"]]
        return changed
    return [codes_only(value) for value in explained] if isinstance(explained, list) else explained
