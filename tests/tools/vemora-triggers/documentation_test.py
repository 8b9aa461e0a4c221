# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the documentation shows is what happens: its commands are typed as they stand, in the order of the page."""

import json
import os
import re
import subprocess
import unittest

from tool_site import CROSSED, TOOL, Site, camera, on_sqlite

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..")


def read(name):
    with open(os.path.join(ROOT, name), encoding="utf-8") as file:
        return file.read()


def sessions(page):
    """The commands of the page's console blocks, each with the output that is shown."""
    for block in re.findall("^```console\n(.*?)^```$", read(page), re.MULTILINE | re.DOTALL):
        for session in re.findall(r"^\$ (.*\n(?:> .*\n)*)((?:(?![$]).*\n)*)", block, re.MULTILINE):
            yield re.sub("^> ", "", session[0], flags=re.MULTILINE), session[1]


def as_by_anybody(text):
    """The text as if it were printed at one moment by one user, wherever that makes columns wider."""
    text = re.sub(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "2026-11-22 04:00:00", text)
    text = re.sub(r"^(PASS .* BY ) +", r"\1", text, flags=re.MULTILINE)
    return re.sub(r"(04:00:00(?: UTC by)? +)\S+@\S+ *", r"\1ann@gate1  ", text)


@on_sqlite
class Documentation(Site):
    def test_every_command_of_the_operating_page_prints_what_the_page_shows(self):
        os.symlink(os.path.join(ROOT, "examples"), os.path.join(self.folder, "examples"))
        environment = {**os.environ, "PATH": os.path.dirname(TOOL) + os.pathsep + os.environ["PATH"]}
        commands = list(sessions("docs/operating.md"))
        self.assertGreater(len(commands), 8)
        for command, shown in commands:
            process = subprocess.run(["bash", "-c", command], cwd=self.folder, env=environment, text=True,
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
            self.assertEqual(as_by_anybody(process.stdout), as_by_anybody(shown), command)

    def test_the_trigger_of_the_readme_leads_to_the_records_that_the_readme_names(self):
        config = json.loads(re.search("^```json\n(.*?)^```$", read("README.md"), re.MULTILINE | re.DOTALL).group(1))
        self.init({"servers": [{"id": 1}], "schedules": [{"id": 1}],
                   "cameras": [camera(10, [CROSSED], {"area": "gate"}, objectDetection=True),
                               camera(11, [CROSSED], {"area": "gate"}), camera(12, [CROSSED])]})
        self.assertEqual(self.apply(config)["reconciled"], [10, 11])
        self.assertEqual([(record["id"], record["scheduleIds"]) for record in self.show("triggers")], [(7, [1])])
        self.assertEqual([(record["cameraId"], record["onvifTopic"], record["triggerIds"])
                          for record in self.show("subscriptions")], [(10, CROSSED, [7]), (11, CROSSED, [7])])
        self.assertEqual([(record["cameraId"], record["triggerIds"]) for record in self.show("detection")],
                         [(10, [7])])
        self.apply({"triggers": []})
        self.assertEqual([self.show(what) for what in ("triggers", "subscriptions", "detection")], [[], [], []])


if __name__ == "__main__":
    unittest.main()
