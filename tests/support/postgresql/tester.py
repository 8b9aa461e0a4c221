# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""How tests reach the PostgreSQL that runs for them: the one that ctest starts (CLUSTER), or another."""

import os


def note(name, notes=None):
    """What the start of a cluster noted down: its "folder" and its "port"."""
    with open(os.path.join(notes or os.environ["CLUSTER"], name), encoding="ascii") as file:
        return file.read().strip()


def url(schema, folder=None, port=None, **parameters):
    more = "".join(f"&{name}={value}" for name, value in parameters.items())
    return (f"postgresql://tester@/postgres?host={folder or note('folder')}&port={port or note('port')}"
            f"&schema={schema}{more}")


def psql_command(*options, folder=None, port=None):
    """A command line that answers rows as CSV and ends at the first fault."""
    return ["psql", "--no-psqlrc", "--quiet", "--csv", "--tuples-only", "--set", "ON_ERROR_STOP=1", "--host",
            folder or note("folder"), "--port", str(port or note("port")), "--username", "tester", "--dbname",
            "postgres", *options]
