#!/usr/bin/env python3
"""How long `match --events` takes for a million events, with and without `--against`, beside reading the same file line
by line with the JSON library.

    match_events.py BUILD_FOLDER [EVENTS]     build with: cmake --preset bench && cmake --build --preset bench

5,000 cameras and 1,000 triggers: each trigger is for an area of fifty cameras, one in ten for all of them. Fails if
either takes over ten times as long as reading alone, or if the events take over 200 MiB more than one event.
"""

import json
import os
import random
import subprocess
import sys
import tempfile
import time

CAMERAS, TRIGGERS, AREAS = 5000, 1000, 100
TOPICS = [f"tns1:RuleEngine/Rule{number}/Motion" for number in range(10)]
TYPES = ["person", "car", "truck", "bus", "dog"]
REPETITIONS = 3


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
    """Standard output, the best of some times in seconds, and the most memory in MiB."""
    best, memory, out = None, 0, ""
    for _ in range(REPETITIONS):
        start = time.monotonic()
        with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
            out = process.stdout.read()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"{command} answers {process.returncode}")
        seconds = time.monotonic() - start
        best = seconds if best is None else min(best, seconds)
        memory = max(memory, usage.ru_maxrss / 1024)
    return out, best, memory


def main():
    build, count = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 1000000
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
        _, reading, _ = measured(reader, "events")
        out, matching, memory = measured(tool, "--json", "match", "--events", "events")
        _, comparing, most = measured(tool, "--json", "match", "--events", "events", "--against", "other")
        _, passing, with_pass = measured(tool, "--json", "match", "--events", "one", "--against", "other")
        _, loading, site = measured(tool, "--json", "match", "--events", "one")
    counts = json.loads(out)
    told = sum(counts["triggers"].values())
    print(f"{counts['events']} events, {counts['unheard']} unheard, {told} times told to {len(counts['triggers'])} triggers")
    print(f"reading with the JSON library   {reading:8.2f} s")
    print(f"match --events                  {matching:8.2f} s   {matching / reading:.2f} times as long "
          f"({loading:.2f} s of it for the site)")
    print(f"match --events --against        {comparing:8.2f} s   {comparing / reading:.2f} times as long "
          f"({passing:.2f} s of it for the site and two passes)")
    print(f"memory                          {memory:8.0f} MiB   {memory - site:.0f} MiB more than with one event")
    print(f"memory with --against           {most:8.0f} MiB   {most - with_pass:.0f} MiB more than with one event")
    if counts["events"] != count or max(matching, comparing) > 10 * reading or max(memory - site, most - with_pass) > 200:
        sys.exit("more than it may take")


if __name__ == "__main__":
    main()
