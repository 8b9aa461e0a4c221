# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""`vemora-triggers` run by other users of the machine, which takes root to start them."""

import os
import re
import shutil
import stat
import subprocess
import tempfile
import unittest

from tool_site import ENGINE, TOOL, Site

OWNER, COLLEAGUE, STRANGER = 64001, 64002, 64003
GROUP = 64100  # of the owner and the colleague

as_root = unittest.skipIf(os.geteuid() != 0, "only root can run the tool as another user")
as_root_on_sqlite = unittest.skipIf(ENGINE != "sqlite" or os.geteuid() != 0,
                                    "about the files of SQLite, and only root can run the tool as another user")


def copy_tool(folder):
    """The tool and its own libraries where every user reaches them, wherever it was built."""
    needed = subprocess.run(["ldd", TOOL], capture_output=True, text=True, check=True).stdout
    for name, path in re.findall(r"(\S+) => (/\S+)", needed):
        if not path.startswith(("/lib", "/usr/lib")):
            shutil.copy(path, os.path.join(folder, name))
    return shutil.copy(TOOL, folder)


class Users(Site):
    """A site in a folder that belongs to the owner and the group."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        programs = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, programs)
        os.chmod(programs, 0o755)
        cls.tool = copy_tool(programs)
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": programs}

    def setUp(self):
        super().setUp()
        os.chown(self.folder, OWNER, GROUP)
        os.chmod(self.folder, 0o2775)

    def run_as(self, user, *arguments, umask=0o022):
        """Runs the tool as that user; the stranger alone is not in the group."""
        group = user if user == STRANGER else GROUP
        command = [self.tool, *self.command(*arguments)[1:]]
        return self.run_command(command, env=self.environment, input=b"", user=user, group=group,
                                extra_groups=[group], umask=umask)

    def given_a_site(self, umask=0o022, mode=None):
        """That the owner made, and gave that mode."""
        self.write("inventory.json", self.inventory())
        outcome = self.run_as(OWNER, "init", "inventory.json", umask=umask)
        self.assertEqual((outcome.status, outcome.err), (0, b""), outcome.out)
        for name in os.listdir(self.folder) if mode is not None else ():
            os.chmod(self.path(name), mode)

    @staticmethod
    def inventory():
        return {"servers": [{"id": 1}], "cameras": [{"id": 10, "name": "gate"}]}

    def forget_logs(self):
        """As versions before left a database."""
        for name in ("vemora.db-wal", "vemora.db-shm"):
            os.remove(self.path(name))

    def traits(self, name):
        """Mode, owner and group of a file."""
        status = os.stat(self.path(name))
        return oct(stat.S_IMODE(status.st_mode)), status.st_uid, status.st_gid
