# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Databases that earlier versions made, with all that a site can hold.

`older_sites/VERSION` holds the database of each engine as that version left it (one camera's stream was yet to
be reconciled), the documents that it had applied, and what its `show` printed.
"""

import json
import os
import shutil
import subprocess

from tester import psql_command
from tool_site import ENGINE, Site

OLDER_SITES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support", "older_sites")


class Older_Site(Site):
    def content(self, name):
        with open(os.path.join(self.kept, name), "rb") as file:
            return file.read()

    def lay_out(self, version):
        """Puts the database of a version where the tool looks for it."""
        self.kept = os.path.join(OLDER_SITES, version)
        self.behind.drop()
        if ENGINE == "sqlite":
            for suffix in ("-wal", "-shm"):
                if os.path.exists(self.database + suffix):
                    os.remove(self.database + suffix)
            shutil.copy(os.path.join(self.kept, "site.sqlite"), self.database)
            return
        made = self.content("site.postgresql.sql").decode("utf-8").replace("kept_site", self.behind.schema)
        subprocess.run(psql_command(), input=made, text=True, check=True, stdout=subprocess.DEVNULL)

    def show_everything(self):
        return {what: self.show(what) for what in ("triggers", "subscriptions", "detection", "cameras")}

    def kept_records(self):
        return {what: json.loads(self.content(what + ".json"))
                for what in ("triggers", "subscriptions", "detection", "cameras")}

    def assert_documents_are_kept(self):
        for what in ("config", "mapping"):
            self.assertEqual(self.run_tool("show", what).out.rstrip(b"\n"),
                             self.content(what + ".json").rstrip(b"\n"))

    def version(self):
        """That of the tables."""
        [(version,)] = self.sql("SELECT schema_version FROM site")
        return version
