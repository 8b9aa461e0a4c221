#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""How long `check` and `refresh` take for a document of many triggers, beside the JSON library reading it, and beside
programs of others with a like task: whole processes, in turns.

    whole_documents.py [--json] [--promtool PROGRAM] BUILD_FOLDER [TRIGGERS [REPETITIONS]]

Build with `cmake --preset bench && cmake --build --preset bench`; 100,000 triggers and 5 repetitions unless said
otherwise. No camera is on the site: the pass over its links is what scripts/bench measures. --json prints the figures for
report.py. Of the programs of others, those that are not installed are left out: Ajv (Debian's node-ajv) validates the
same document by the JSON Schema that we publish; `promtool check rules` (Debian's prometheus) reads as many rules of its
own kind.
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import tempfile

import processes

HERE = os.path.dirname(os.path.abspath(__file__))
SCHEMA = os.path.join(HERE, "..", "schemas", "trigger_configuration.schema.json")
READING = "the JSON library reading it"
NAMES = {"check": "check", "refresh": "refresh", "reading": READING,
         "schema": "Ajv validating it by the JSON Schema", "rules": "promtool check rules, as many rules"}


def trigger(number):
    topics = [{"type": "onvif-metadata", "onvifTopic": f"tns1:RuleEngine/LineDetector/Crossed/Rule_{(number + place) % 30}"}
              for place in range(2)]
    person = {"type": "object-detection", "searchItem": {"type": "person", "motionRequired": True},
              "activityDuration": {"mode": "object-track", "minDurationMs": 1500}}
    return {"id": number + 1, "name": f"Somebody crosses the line at gate {number}", "anyTime": True,
            "tags": {"camera": {"area": [f"gate {number % 50}", f"dock {number % 70}"]}, "server": {"site": None}},
            "sources": [*topics, person]}


RULE = """  - alert: Somebody_crosses_the_line_at_gate_{number}
    expr: rate(line_crossings_total{{area=~"gate {gate}|dock {dock}", rule="Rule_{rule}"}}[5m]) > 1
    for: 90s
    labels:
      severity: page
    annotations:
      summary: Somebody crosses the line at gate {number}
"""


def write_rules(path, count):
    with open(path, "w", encoding="ascii") as file:
        file.write("groups:\n- name: gates\n  rules:\n")
        for number in range(count):
            file.write(RULE.format(number=number, gate=number % 50, dock=number % 70, rule=number % 30))


def write_documents(folder, count):
    with open(os.path.join(folder, "config"), "w", encoding="ascii") as file:
        json.dump({"triggers": [trigger(number) for number in range(count)]}, file, indent=2)
    with open(os.path.join(folder, "inventory"), "w", encoding="ascii") as file:
        json.dump({"servers": [{"id": 1, "name": "one"}], "cameras": []}, file)
    write_rules(os.path.join(folder, "rules"), count)


# Where Debian installs it, for another Node too.
WITH_AJV = ["env", "NODE_PATH=/usr/share/nodejs", "node"]


def has_ajv():
    return subprocess.run([*WITH_AJV, "-e", "require('ajv')"], stderr=subprocess.DEVNULL).returncode == 0


def commands(build, promtool):
    tool = os.path.join(build, "bin", "vemora-triggers")
    found = {"check": [tool, "check", "config"], "refresh": [tool, "refresh"],
             "reading": [os.path.join(build, "benchmarks", "read_json_document"), "config"]}
    if has_ajv():
        found["schema"] = [*WITH_AJV, os.path.join(HERE, "peers", "validate_by_schema.js"), SCHEMA, "config"]
    if promtool:
        found["rules"] = [promtool, "check", "rules", "rules"]
    return found


def measure(build, promtool, count, repetitions):
    build = os.path.abspath(build)
    tool = os.path.join(build, "bin", "vemora-triggers")
    before = os.getcwd()
    with tempfile.TemporaryDirectory() as folder:
        write_documents(folder, count)
        os.chdir(folder)
        for command in (("init", "inventory"), ("apply", "config")):
            subprocess.run([tool, *command], check=True, stdout=subprocess.DEVNULL)
        figures = processes.measured_in_turns(commands(build, promtool), repetitions)
        size = os.path.getsize("config")
        os.chdir(before)
    return {"triggers": count, "bytes": size, **figures}


def times_as_long(figures, name, other):
    """The median of the ratios of each run to the run of the other that followed in the same turn."""
    if name not in figures or other not in figures:
        return None
    return statistics.median(own / its for own, its in zip(figures[name]["seconds"], figures[other]["seconds"]))


def print_table(figures):
    print(f"{figures['triggers']:,} triggers, {figures['bytes'] / 1e6:.0f} MB")
    print(f"{'':37}  seconds  times reading  peak MiB")
    for name, title in NAMES.items():
        if name in figures:
            print(f"{title:37} {statistics.median(figures[name]['seconds']):8.2f} "
                  f"{times_as_long(figures, name, 'reading'):14.2f} {figures[name]['memory'] / 2 ** 20:9.0f}")
        else:
            print(f"{title:37} not installed")


def main():
    words = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    words.add_argument("--json", action="store_true")
    words.add_argument("--promtool", default=shutil.which("promtool"))
    words.add_argument("build")
    words.add_argument("triggers", type=int, nargs="?", default=100000)
    words.add_argument("repetitions", type=int, nargs="?", default=5)
    asked = words.parse_args()
    promtool = asked.promtool and os.path.abspath(asked.promtool)
    figures = measure(asked.build, promtool, asked.triggers, asked.repetitions)
    if asked.json:
        print(json.dumps(figures))
    else:
        print_table(figures)


if __name__ == "__main__":
    main()
