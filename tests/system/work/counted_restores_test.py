# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""restore: comparing the backup with the site before it takes no more for each link, however many links there are."""

import json
import os
import sqlite3
import unittest

from growth import Growth


def inventory(cameras):
    capabilities = {"Metadata": {"Mode": {"capabilities": {"On": {"TopicFilter": {"capabilities": {"tns1:Crossed": ""}}}}}}}
    return json.dumps({"servers": [{"id": 1, "name": "one"}],
                       "cameras": [{"id": number, "name": f"camera {number}", "capabilities": capabilities}
                                   for number in range(1, cameras + 1)]})


def configuration(triggers):
    return json.dumps({"triggers": [{"id": number, "name": "crossed", "tags": {},
                                     "sources": [{"type": "onvif-metadata", "onvifTopic": "tns1:Crossed"}]}
                                    for number in range(1, triggers + 1)]})


class Counted_Restores(Growth):
    def links(self):
        connection = sqlite3.connect(os.path.join(self.folder, "vemora.db"))
        try:
            return connection.execute("SELECT count(*) FROM subscription_trigger").fetchone()[0]
        finally:
            connection.close()

    def restored(self, cameras, triggers):
        for name in os.listdir(self.folder):
            os.remove(os.path.join(self.folder, name))
        self.run_tool("init", self.write("inventory.json", inventory(cameras)))
        self.run_tool("apply", self.write("before.json", configuration(triggers)))
        self.run_tool("backup", "backup.db")
        self.run_tool("apply", self.write("after.json", configuration(triggers + 1)))
        self.assertEqual(self.links(), cameras * (triggers + 1))
        instructions, process = self.counted("restore", "backup.db")
        self.assertEqual(process.returncode, 0, process.stderr)
        self.assertEqual(self.links(), cameras * triggers)
        return instructions

    def test_work_grows_with_the_cameras(self):
        self.assert_linear(lambda cameras: self.restored(cameras, 2), 250, "camera")

    def test_work_grows_with_the_triggers(self):
        self.assert_linear(lambda triggers: self.restored(2, triggers), 250, "trigger")


if __name__ == "__main__":
    unittest.main()
