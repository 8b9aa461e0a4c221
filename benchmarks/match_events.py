#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""How long `match --events` takes for many events, with and without `--against`, beside reading the same file line by
line with the JSON library, and how much memory.

    match_events.py BUILD_FOLDER [EVENTS]           prints a table; fails if it takes more than it may
    match_events.py --json BUILD_FOLDER [EVENTS]    prints what was measured, for report.py

Build with `cmake --preset bench && cmake --build --preset bench`; a million events unless EVENTS says otherwise.
5,000 cameras and 1,000 triggers: each trigger is for an area of fifty cameras, one in ten for all of them; in the other
documents every tenth trigger is for another area. It may take ten times as long as reading alone, and 200 MiB more
than the site: more than `match --events` takes for a single event, which reads the site's records and nothing else.
"""

import json
import os
import random
import subprocess
import sys
import tempfile

import processes

CAMERAS, TRIGGERS, AREAS = 5000, 1000, 100
TOPICS = [f"tns1:RuleEngine/Rule{number}/Motion" for number in range(10)]
TYPES = ["person", "car", "truck", "bus", "dog"]
REPETITIONS = 3
MOST_TIMES, MOST_MEMORY = 10, 200 << 20


def inventory():
    topics = {"TopicFilter": {"capabilities": {topic: "" for topic in TOPICS}}}
    capabilities = {"Metadata": {"Mode": {"capabilities": {"On": topics}}}}
    return {"servers": [{"id": 1, "name": "one"}], "objectTypes": {"vehicle": ["car", "truck", "bus"]},
            "cameras": [{"id": number, "name": f"camera {number}", "tags": {"area": str(number % AREAS)},
                         "objectDetection": True, "motionDetection": number % 2 == 0, "capabilities": capabilities}
                        for number in range(1, CAMERAS + 1)]}


def configuration(shift=0):
    """With a shift, every tenth trigger is for another area."""
    triggers = []
    for number in range(1, TRIGGERS + 1):
        source = [{"type": "onvif-metadata", "onvifTopic": TOPICS[number % len(TOPICS)]},
                  {"type": "object-detection", "searchItem": {"type": ["person", "vehicle"][number % 2]}}]
        area = (number + shift * (number % 10 == 1)) % AREAS
        tags = {} if number % 10 == 0 else {"camera": {"area": str(area)}}
        triggers.append({"id": number, "name": f"trigger {number}", "tags": tags, "sources": [source[number // 2 % 2]]})
    return {"triggers": triggers}


def write_events(path, count):
    draw = random.Random(1)
    with open(path, "w", encoding="ascii") as file:
        for _ in range(count):
            event = {"camera": draw.randrange(1, CAMERAS + 1)}
            kind = draw.randrange(3)
            if kind == 0:
                event["topic"] = draw.choice(TOPICS)
            elif kind == 1:
                event.update(object=draw.choice(TYPES), inMotion=draw.randrange(2) == 0)
            else:
                event["motion"] = True
            file.write(json.dumps(event) + "\n")


def measured(*command):
    """The times in seconds, the most memory in bytes, and standard output."""
    runs = [processes.measured(command) for _ in range(REPETITIONS)]
    return {"seconds": [seconds for seconds, _, _ in runs], "memory": max(memory for _, memory, _ in runs)}, runs[-1][2]


def measure(build, count):
    """What each command took; match is told of `count` events, or of one."""
    tool = os.path.abspath(os.path.join(build, "bin", "vemora-triggers"))
    reader = os.path.abspath(os.path.join(build, "benchmarks", "read_json_lines"))
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for name, document in (("inventory", inventory()), ("config", configuration()), ("other", configuration(1))):
            with open(name, "w", encoding="ascii") as file:
                json.dump(document, file)
        for command in (("init", "inventory"), ("apply", "config")):
            subprocess.run([tool, *command], check=True, stdout=subprocess.DEVNULL)
        write_events("events", count)
        write_events("one", 1)
        match = [tool, "--json", "match"]
        figures = {"events": count, "cameras": CAMERAS, "triggers": TRIGGERS}
        figures["reading"], _ = measured(reader, "events")
        figures["match"], out = measured(*match, "--events", "events")
        figures["against"], _ = measured(*match, "--events", "events", "--against", "other")
        figures["one event"], _ = measured(*match, "--camera", "1", "--topic", TOPICS[0])
        figures["match of one"], _ = measured(*match, "--events", "one")
        figures["against of one"], _ = measured(*match, "--events", "one", "--against", "other")
        os.chdir("/")
    counts = json.loads(out)
    if counts["events"] != count:
        sys.exit(f"{counts['events']} of {count} events were counted")
    figures.update(unheard=counts["unheard"], told=sum(counts["triggers"].values()), told_triggers=len(counts["triggers"]))
    return figures


def times_as_long(figures, name):
    """The best against the best: whatever else ran only made them slower."""
    return min(figures[name]["seconds"]) / min(figures["reading"]["seconds"])


def beyond_the_site(figures, name):
    return figures[name]["memory"] - figures["match of one"]["memory"]


NAMES = (("reading", "reading with the JSON library"), ("match", "match --events"),
         ("against", "match --events --against"), ("one event", "match --camera --topic"),
         ("match of one", "match --events, one event"), ("against of one", "match --events --against, one event"))


def print_table(figures):
    print(f"{figures['events']} events, {figures['unheard']} unheard, {figures['told']} times told to "
          f"{figures['told_triggers']} triggers")
    print(f"{'':35}  seconds  times reading  peak MiB  MiB beyond the site")
    for name, title in NAMES:
        print(f"{title:35} {min(figures[name]['seconds']):8.2f} {times_as_long(figures, name):14.2f} "
              f"{figures[name]['memory'] / 2 ** 20:9.0f}" +
              (f" {beyond_the_site(figures, name) / 2 ** 20:20.0f}" if name != "reading" else ""))


def main():
    arguments = sys.argv[1:]
    as_json = arguments[0] == "--json"
    build, *rest = arguments[1:] if as_json else arguments
    figures = measure(build, int(rest[0]) if rest else 1000000)
    if as_json:
        print(json.dumps(figures))
        return
    print_table(figures)
    names = ("match", "against")
    if max(times_as_long(figures, name) for name in names) > MOST_TIMES or \
            max(beyond_the_site(figures, name) for name in names) > MOST_MEMORY:
        sys.exit("more than it may take")


if __name__ == "__main__":
    main()
