# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""check: its work grows with the document and no faster, whatever is wrong with it."""

import json
import unittest

from growth import Growth

REJECTED = 2


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


class Counted_Checks(Growth):
    def setUp(self):
        super().setUp()
        self.run_tool("init", self.write("inventory.json", '{"servers": [{"id": 1, "name": "one"}]}'))

    def checked(self, document, *flags):
        instructions, process = self.counted(*flags, "check", self.write("config.json", document))
        self.assertEqual(process.returncode, REJECTED, process.stderr)
        if flags:
            self.assertGreater(len(json.loads(process.stdout)["errors"]), 0)
        return instructions

    def assert_grows_with_the_document(self, shape, *flags):
        self.assert_linear(lambda size: self.checked(shape(size), *flags), 8192, "byte")

    def test_work_grows_with_the_document(self):
        for name, shape in SHAPES.items():
            with self.subTest(name):
                print(f"\n  {name}: ", end="")
                self.assert_grows_with_the_document(shape, "--json")

    def test_people_do_not_wait_longer_for_what_they_are_shown(self):
        for name in ("triggers that are none", "a name"):
            with self.subTest(name):
                print(f"\n  {name}: ", end="")
                self.assert_grows_with_the_document(SHAPES[name])


if __name__ == "__main__":
    unittest.main()
