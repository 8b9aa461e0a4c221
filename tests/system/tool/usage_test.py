"""What the command line understands, and how it answers what it does not."""

import unittest

from tool_site import DONE, FAILED, LARGEST_ID, WRONG_USAGE, Site, config, mapping

WRONG = {
    "no command": ([], "A subcommand is required"),
    "an unknown command": (["chek", "config.json"], "There is no command or option chek."),
    "an unknown option": (["refresh", "--force"], "The following argument was not expected: --force"),
    "an unknown option before the command": (["--force", "refresh"],
                                             "The following argument was not expected: --force"),
    "two commands": (["refresh", "show"], "The following argument was not expected: show"),
    "no document": (["check"], "CONFIG is required"),
    "no inventory": (["init"], "INVENTORY is required"),
    "a document too many": (["apply", "a", "b", "c"], "The following argument was not expected: c"),
    "nothing to show": (["show"], "WHAT is required"),
    "an unknown thing to show": (["show", "doors"], "WHAT: doors is none of triggers, subscriptions, detection, "
                                                    "cameras, config, mapping"),
    "an unknown log level": (["--log-level", "loud", "refresh"], "--log-level: loud is none of off, trace, debug, "
                                                                 "detail, info, warning, error, fatal"),
    "an option without its value": (["refresh", "--database"], "--database: 1 required FILE missing"),
    "an empty database": (["--database", "", "refresh"], "--database: a path must not be empty"),
    "an empty path": (["check", ""], "CONFIG: a path must not be empty"),
    "an empty path of a mapping": (["apply", "config.json", ""], "MAPPING: a path must not be empty"),
    "standard input twice": (["apply", "-", "-"], "MAPPING: CONFIG is read from standard input already"),
    "standard input twice to check": (["check", "-", "-"], "MAPPING: CONFIG is read from standard input already"),
    **{f"the server id {text}": (["--server-id", text, "refresh"], f"--server-id: {text} is no unsigned 64-bit number")
       for text in ("x", "-1", "+1", "01", "0x1", "1.0", "1 ", str(LARGEST_ID + 1))},
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
        self.assertIn(rb"WHAT: \x1b[31m\u202e is none of", outcome.err)


class Help(Site):
    def test_it_names_every_command_and_the_exit_statuses(self):
        outcome = self.run_tool("--help")
        self.assertEqual((outcome.status, outcome.err), (DONE, b""))
        for command in ("init", "check", "apply", "refresh", "show"):
            self.assertRegex(outcome.text, rf"\n  {command} +[A-Z]")
            self.assertEqual(self.run_tool(command, "--help").status, DONE)
        self.assertTrue(outcome.text.endswith("64 wrong usage.\n"))

    def test_the_version_is_told(self):
        outcome = self.run_tool("--version")
        self.assertEqual(outcome.status, DONE)
        self.assertRegex(outcome.text, r"\Avemora-triggers \d+\.\d+\.\d+\n\Z")


class Options(Site):
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
        self.assertIn(b"Refreshing the trigger config.", outcome.err)
        self.assertEqual(self.run_tool("--database", self.behind.absent, "--log-level", "info", "refresh").status,
                         FAILED)


if __name__ == "__main__":
    unittest.main()
