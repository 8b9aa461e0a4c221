# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the command line understands, and how it answers what it does not."""

import os
import unittest

from tool_site import (CROSSED, DONE, FAILED, LARGEST_ID, TOOL, WRONG_USAGE, Site, config, mapping, on_sqlite,
                       topic_source, trigger)

WRONG = {
    "no command": ([], "A command is required"),
    "an unknown command": (["chek", "config.json"], "Unknown command or option: chek; did you mean check?"),
    "an unknown option": (["refresh", "--force"], "The following argument was not expected: --force"),
    "an unknown option before the command": (["--force", "refresh"],
                                             "The following argument was not expected: --force"),
    "a misspelt option": (["--databse", "x", "refresh"],
                          "The following arguments were not expected: x --databse; did you mean --database?"),
    "a misspelt option behind the command": (["refresh", "--server-di=2"], "The following argument was not expected: "
                                             "--server-di=2; did you mean --server-id?"),
    "a misspelt option with a value behind the command": (["refresh", "--databse", "x"], "The following arguments were "
                                                          "not expected: x --databse; did you mean --database?"),
    "a misspelt option of a command": (["check", "--strikt", "a"], "The following argument was not expected: --strikt; "
                                       "did you mean --strict?"),
    "a misspelt command": (["refesh"], "Unknown command or option: refesh; did you mean refresh?"),
    "two commands": (["refresh", "show"], "The following argument was not expected: show"),
    "no document": (["check"], "CONFIG is required"),
    "no document to apply": (["apply"], "CONFIG is required"),
    "a plan and a document": (["apply", "--plan", "kept.plan", "config.json"],
                              "--plan: the plan has its documents; CONFIG cannot be given too"),
    "an empty path of a plan": (["apply", "--plan", ""], "--plan: a path must not be empty"),
    "an empty path to keep a plan in": (["plan", "config.json", "--out", ""], "--out: a path must not be empty"),
    "no inventory": (["init"], "INVENTORY is required"),
    "a document too many": (["apply", "a", "b", "c"], "The following argument was not expected: c"),
    "nothing to show": (["show"], "WHAT is required"),
    "an unknown thing to show": (["show", "doors"], "WHAT: doors is not one of triggers, subscriptions, detection, "
                                                    "cameras, schedules, servers, object-types, "
                                                    "inventory, config, mapping"),
    "an unknown log level": (["--log-level", "loud", "refresh"], "--log-level: loud is not one of off, trace, debug, "
                                                                 "detail, info, warning, error, fatal"),
    "an option without its value": (["refresh", "--database"], "--database: 1 required FILE missing"),
    "an empty database": (["--database", "", "refresh"], "--database: a path must not be empty"),
    "no pass to go back to": (["rollback"], "PASS is required"),
    "a pass that is no number": (["history", "last"], "PASS: last is not an unsigned 64-bit number"),
    "no pass to compare": (["diff"], "A is required"),
    "a pass too many": (["diff", "1", "2", "3"], "The following argument was not expected: 3"),
    "no file to back up to": (["backup"], "FILE is required"),
    "no backup to restore": (["restore"], "FILE is required"),
    "an empty path of a backup": (["restore", ""], "FILE: a path must not be empty"),
    "an empty path": (["check", ""], "CONFIG: a path must not be empty"),
    "an empty path of a mapping": (["apply", "config.json", ""], "MAPPING: a path must not be empty"),
    "standard input twice": (["apply", "-", "-"], "MAPPING: CONFIG and MAPPING cannot both be standard input"),
    "standard input twice to check": (["check", "-", "-"], "MAPPING: CONFIG and MAPPING cannot both be standard input"),
    **{f"the server id {text}": (["--server-id", text, "refresh"], f"--server-id: {text} is not an unsigned 64-bit number")
       for text in ("x", "-1", "+1", "01", "0x1", "1.0", "1 ", str(LARGEST_ID + 1))},
    "no number of values": (["--max-values", "many", "refresh"], "--max-values: many is not an unsigned 64-bit number"),
}


class Wrong_Usage(Site):
    def test_people_are_told_on_standard_error_what_is_wrong(self):
        for what, (arguments, message) in WRONG.items():
            with self.subTest(what):
                outcome = self.run_tool(*arguments)
                self.assertEqual((outcome.status, outcome.out, outcome.err.decode()), (
                    WRONG_USAGE, b"", f"vemora-triggers: {message}\nRun with --help for more information.\n"))
        self.assertEqual(self.files(), {})

    def test_programs_get_a_json_object(self):
        for what, (arguments, message) in WRONG.items():
            for line in (["--json", *arguments], [*arguments, "--json"]):
                if line[-2:] == ["--database", "--json"]:
                    continue  # that is a database of this name
                with self.subTest(what, line=line):
                    outcome = self.run_tool(*line)
                    self.assertEqual((outcome.status, outcome.err), (WRONG_USAGE, b""))
                    self.assertEqual(outcome.json, {"success": False, "errors": [{"message": message}]})

    def test_no_control_character_of_the_command_line_reaches_the_terminal(self):
        outcome = self.run_tool("show", "\x1b[31m\u202e")
        self.assertEqual(outcome.status, WRONG_USAGE)
        self.assertEqual(outcome.err, (
            b"vemora-triggers: WHAT: \\x1b[31m\\u202e is not one of triggers, subscriptions, detection, cameras, "
            b"schedules, servers, object-types, inventory, config, mapping\nRun with --help for more information.\n"))


HELP = """\
Runs the triggers of a video-management server on a database of its own.
Usage: vemora-triggers [OPTIONS] COMMAND

Options:
  -h,--help                   Print this help message and exit
  --version                   Display program version information and exit
  --database FILE=vemora.db (Env:VEMORA_DATABASE)
                              The database: an SQLite file, or postgresql://USER@HOST/NAME?schema=SCHEMA
  --server-id ID=1            The id of the server that the database belongs to
  --json                      Print the outcome as one JSON document
  --max-values N=20000000     The maximum number of values in a document; each takes about 100 bytes of memory
  --log-level LEVEL=off       The lowest level that is logged to standard error: trace, debug, detail, info, \
warning, error, fatal; off logs nothing

Commands:
  init                        Create or update the site: servers, cameras, schedules, subscriptions
  check                       Validate a configuration and a mapping; writes nothing
  plan                        Show what apply would change, record by record; writes nothing
  apply                       Run a pass on a configuration and a mapping, and store them
  refresh                     Run a pass on the stored documents
  show                        Show what is stored
  explain                     Explain why a trigger is or is not active, and where it listens; writes nothing
  match                       Find the triggers that are told of an event, or of many; writes nothing
  history                     List the passes that changed something, the newest first, or show one of them
  diff                        Compare the documents of two passes, or of a pass and what is stored
  rollback                    Apply the documents that were stored when an earlier pass was over
  backup                      Copy the site into one file
  restore                     Replace the site with that of a backup
"""

DOCUMENTS = """
Positionals:
  CONFIG   REQUIRED           The trigger configuration; - reads standard input
  MAPPING                     The trigger mapping; - reads standard input; default: the stored mapping
"""

HELP_OF_COMMANDS = {
    "init": """\
Create or update the site: servers, cameras, schedules, subscriptions
Usage: vemora-triggers init [OPTIONS] INVENTORY

Positionals:
  INVENTORY   REQUIRED        The inventory; - reads standard input
""",
    "check": f"""\
Validate a configuration and a mapping; writes nothing
Usage: vemora-triggers check [OPTIONS] CONFIG [MAPPING]
{DOCUMENTS}""",
    "plan": f"""\
Show what apply would change, record by record; writes nothing
Usage: vemora-triggers plan [OPTIONS] CONFIG [MAPPING]
{DOCUMENTS}""",
    "apply": f"""\
Run a pass on a configuration and a mapping, and store them
Usage: vemora-triggers apply [OPTIONS] [CONFIG] [MAPPING]
{DOCUMENTS}""".replace("CONFIG   REQUIRED ", "CONFIG            "),
    "refresh": """\
Run a pass on the stored documents
Usage: vemora-triggers refresh [OPTIONS]
""",
    "show": """\
Show what is stored
Usage: vemora-triggers show [OPTIONS] WHAT

Positionals:
  WHAT   REQUIRED             triggers, subscriptions, detection, cameras, schedules, servers, object-types, \
inventory, config, mapping
""",
}

HELP_OF_COMMANDS["explain"] = """\
Explain why a trigger is or is not active, and where it listens; writes nothing
Usage: vemora-triggers explain [OPTIONS] TRIGGER_ID

Positionals:
  TRIGGER_ID   REQUIRED       The trigger
"""
HELP_OF_COMMANDS["match"] = """\
Find the triggers that are told of an event, or of many; writes nothing
Usage: vemora-triggers match [OPTIONS]
"""
HELP_OF_COMMANDS["history"] = """\
List the passes that changed something, the newest first, or show one of them
Usage: vemora-triggers history [OPTIONS] [PASS]

Positionals:
  PASS                        The number of one pass; default: list all
"""
HELP_OF_COMMANDS["diff"] = """\
Compare the documents of two passes, or of a pass and what is stored
Usage: vemora-triggers diff [OPTIONS] A [B]

Positionals:
  A   REQUIRED                The number of a pass, see history
  B                           The number of another pass; default: the stored documents
"""
HELP_OF_COMMANDS["rollback"] = """\
Apply the documents that were stored when an earlier pass was over
Usage: vemora-triggers rollback [OPTIONS] PASS

Positionals:
  PASS   REQUIRED             The number of the pass, see history
"""
HELP_OF_COMMANDS["backup"] = """\
Copy the site into one file
Usage: vemora-triggers backup [OPTIONS] FILE

Positionals:
  FILE   REQUIRED             The backup; an existing one is replaced
"""
HELP_OF_COMMANDS["restore"] = """\
Replace the site with that of a backup
Usage: vemora-triggers restore [OPTIONS] FILE

Positionals:
  FILE   REQUIRED             The backup
"""

OPTIONS_OF_COMMANDS = """
Options:
  -h,--help                   Print this help message and exit
"""

STRICTNESS = """\
  --strict                    Reject documents that have warnings
"""

GUARD = """\
  --allow-mass-deletion       Let the pass delete ten or more triggers or topic subscriptions even if they are more \
than half of those stored
"""

NOTE = """\
  --note TEXT                 What the history says about the pass
"""

OWN_OPTIONS = {
    "init": """\
  --prune                     Remove what the inventory does not name, because it is the whole site
  --allow-mass-deletion       Let --prune remove ten or more records of a kind even if they are more than half of \
those stored
""",
    "check": STRICTNESS,
    "plan": STRICTNESS + """\
  --out PLAN                  Keep the plan in this file, for apply --plan; only its owner can read it
  --exit-code                 Exit with 5 if there is something to change
""",
    "apply": STRICTNESS + GUARD + NOTE + """\
  --plan PLAN                 Apply the documents of a plan, instead of CONFIG and MAPPING; refused if the site has \
changed since
""",
    "refresh": STRICTNESS + GUARD + NOTE,
    "rollback": STRICTNESS + GUARD + NOTE,
    "diff": "  --exit-code                 Exit with 5 if the documents differ in what they say\n",
    "show": """\
  --camera ID                 Only what belongs to this camera
  --trigger ID                Only what belongs to this trigger
  --topic TOPIC               Only what has this ONVIF topic
  --sort COLUMN               Sort by this column (default: by id)
""",
    "explain": "  --camera ID                 Only at this camera\n",
    "match": """\
  --camera ID                 An event of this camera: a topic, object or motion
  --topic TOPIC               The ONVIF topic
  --object TYPE               The type of the object
  --in-motion                 The object is in motion
  --motion                    Motion, of whatever
  --subscription ID           An event of this generic subscription
  --events FILE               Count the events of a file, one JSON object a line; - reads standard input
  --against FILES             Compare with other documents: CONFIG [MAPPING], read as by apply
""",
}

STATUSES = """
Exit status: 0 done; 1 done, but single triggers had errors; 2 a document was rejected and
nothing changed; 3 the pass or the database failed, or the output could not be written;
4 refused, because most of what is stored would be deleted or the site is not that of the
plan, and nothing changed; 5 only with --exit-code of plan and diff: there is something to
change, or a difference; 64 wrong usage.
"""


class Help(Site):
    def assert_text(self, text, *arguments):
        outcome = self.run_tool(*arguments)
        self.assertEqual((outcome.status, outcome.err, outcome.text), (DONE, b"", text))

    def test_it_names_every_option_every_command_and_the_exit_statuses(self):
        self.assert_text(HELP + STATUSES, "--help")

    def test_each_command_names_its_documents(self):
        for command, text in HELP_OF_COMMANDS.items():
            with self.subTest(command):
                own = OWN_OPTIONS.get(command, "")
                self.assert_text(text + OPTIONS_OF_COMMANDS + own + STATUSES, command, "--help")

    def test_the_version_is_told(self):
        outcome = self.run_tool("--version")
        self.assertEqual(outcome.status, DONE)
        self.assertRegex(outcome.text, r"\Avemora-triggers \d+\.\d+\.\d+\n\Z")


class Options(Site):
    def run_with_variable(self, location, *arguments):
        return self.run_command([TOOL, *arguments], env={**os.environ, "VEMORA_DATABASE": location})

    def test_the_environment_names_the_database_unless_the_option_does(self):
        self.init()
        cameras = self.run_tool("show", "cameras").text
        named = self.run_with_variable(self.database, "show", "cameras")
        self.assertEqual((named.status, named.err, named.text), (DONE, b"", cameras))
        absent = self.run_with_variable(self.behind.absent, "show", "cameras")
        self.assertEqual((absent.status, absent.err.decode()), (FAILED, f"vemora-triggers: {self.behind.absence}\n"))
        for arguments in (["--database", self.database, "show", "cameras"],
                          ["show", "cameras", "--database", self.database]):
            self.assertEqual(self.run_with_variable(self.behind.absent, *arguments).text, cameras)

    @on_sqlite
    def test_an_empty_variable_names_no_database(self):
        self.init()
        self.assertEqual(self.run_with_variable("", "show", "cameras").status, DONE)

    def test_options_stand_before_or_behind_the_command(self):
        self.init()
        name = self.write("config.json", config())
        for arguments in (["--json", "--database", self.database, "check", name],
                          ["check", "--json", name, "--database", self.database],
                          ["check", name, f"--database={self.database}", "--json"]):
            with self.subTest(arguments):
                outcome = self.run_tool(*arguments)
                self.assertEqual((outcome.status, outcome.json["success"]), (DONE, True))

    def test_a_mapping_comes_from_standard_input_when_it_is_asked_to(self):
        self.init()
        name = self.write("config.json", config())
        outcome = self.run_tool("apply", name, "-", given=b'{"triggerMapping": []}')
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        self.assertEqual(self.run_tool("show", "mapping").out, b'{"triggerMapping": []}')

    def test_documents_whose_names_begin_with_a_dash_come_behind_two_of_them(self):
        self.init()
        self.write("-c.json", config())
        self.write("-m.json", mapping())
        self.assertEqual(self.run_tool("check", "--", "-c.json", "-m.json").status, DONE)

    def test_the_log_goes_to_standard_error(self):
        self.init()
        outcome = self.run_tool("--json", "--log-level", "info", "refresh")
        self.assertEqual((outcome.status, outcome.json["success"]), (DONE, True))
        self.assertRegex(outcome.err, rb"\A[0-9T:.-]+ \[info\] Trigger_Manager: Refreshing the trigger config\.\n\Z")
        self.assertEqual(self.run_tool("--database", self.behind.absent, "--log-level", "info", "refresh").status,
                         FAILED)

    def test_the_log_of_a_pass_that_is_only_tried_says_that_nothing_is_stored(self):
        self.init()
        self.apply(config(trigger(7), trigger(8, scheduleIds=[2])))
        self.write("other.json", config(trigger(7, topic_source(CROSSED))))
        self.write("events", '{"camera": 10, "motion": true}')
        for command in (["plan", "other.json"], ["explain", "7"], ["match", "--camera", "10", "--motion"],
                        ["match", "--events", "events", "--against", "other.json"], ["show", "triggers"]):
            with self.subTest(command):
                outcome = self.run_tool("--log-level", "info", *command)
                self.assertEqual(outcome.status, DONE)
                lines = outcome.err.decode().splitlines()
                self.assertTrue(lines)
                for line in lines:
                    self.assertRegex(line, r"\A[0-9T:.-]+ \[info\] Trigger_Manager \(nothing is stored\): ")


if __name__ == "__main__":
    unittest.main()
