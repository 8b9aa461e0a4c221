# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""check: its work grows with the document and no faster, whatever is wrong with it. Instructions are counted, by
valgrind, and not time: those of a document of twice the size, less those of one of the size, are twice as many when the
sizes double.
"""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest

TOOL = os.environ["TOOL"]
REJECTED = 2

# Sorted containers take a step more for twice as many elements; what grows with the square takes twice the steps.
MOST_GROWTH = 1.3


def configuration(*triggers):
    return '{"triggers":[' + ",".join(triggers) + "]}"


def trigger(sources='{"type":"metadata-event"}', tags="", schedules="null"):
    return ('{"id":7,"name":"","tags":{' + tags + '},"sources":[' + sources + '],"scheduleIds":' + schedules + "}")


def repeated(text, size):
    return ",".join([text] * (size // (len(text) + 1)))


def numbered(text, size):
    return ",".join(text % (1000000 + number) for number in range(size // (len(text) + 6)))


# Documents of about that many bytes, each on one line.
SHAPES = {
    "faulty sources": lambda size: configuration(trigger(repeated('{"type":"onvif-metadata"}', size))),
    "the same source": lambda size: configuration(trigger(repeated('{"type":"metadata-event"}', size))),
    "valid sources": lambda size: configuration(trigger(
        numbered('{"type":"onvif-metadata","onvifTopic":"%d"}', size), schedules="3")),
    "a name": lambda size: configuration(trigger(tags='"server":{"' + "x" * size + '":1}')),
    "wrong tags": lambda size: configuration(trigger(tags='"camera":{' + numbered('"%d":1', size) + "}")),
    "wrong values of a tag": lambda size: configuration(trigger(tags='"camera":{"a":[' + repeated("1", size) + "]}")),
    "wrong schedules": lambda size: configuration(trigger(schedules="[" + repeated("-1", size) + "]")),
    "triggers that are none": lambda size: configuration(repeated("7", size)),
    "the same id": lambda size: configuration(repeated(trigger(), size)),
}


class Counted_Checks(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.write("inventory.json", '{"servers": [{"id": 1, "name": "one"}]}')
        subprocess.run([TOOL, "init", "inventory.json"], cwd=self.folder, capture_output=True, check=True)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def instructions(self, document, *flags):
        self.write("config.json", document)
        command = ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
                   TOOL, *flags, "check", "config.json"]
        process = subprocess.run(command, cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual(process.returncode, REJECTED, process.stderr)
        if flags:
            self.assertGreater(len(json.loads(process.stdout)["errors"]), 0)
        return int(re.search(r"I +refs: +([0-9,]+)", process.stderr).group(1).replace(",", ""))

    def assert_linear(self, shape, *flags):
        size = 8192
        once, twice, four_times = (self.instructions(shape(size * times), *flags) for times in (1, 2, 4))
        per_byte = [(twice - once) / size, (four_times - twice) / (2 * size)]
        print(f"{per_byte[0]:.0f} and {per_byte[1]:.0f} instructions a byte ... ", end="", flush=True)
        self.assertLess(per_byte[1] / per_byte[0], MOST_GROWTH)

    def test_work_grows_with_the_document(self):
        for name, shape in SHAPES.items():
            with self.subTest(name):
                print(f"\n  {name}: ", end="")
                self.assert_linear(shape, "--json")

    def test_people_do_not_wait_longer_for_what_they_are_shown(self):
        for name in ("triggers that are none", "a name"):
            with self.subTest(name):
                print(f"\n  {name}: ", end="")
                self.assert_linear(SHAPES[name])


if __name__ == "__main__":
    unittest.main()
