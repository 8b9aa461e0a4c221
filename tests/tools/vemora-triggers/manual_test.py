# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The manual page and the completion of bash say what --help says."""

import os
import re
import shutil
import subprocess
import unittest

from tool_site import TOOL, Site

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../..")
MAN_PAGE = os.path.join(ROOT, "scripts/man-page")
COMPLETION = os.path.join(ROOT, "tools/vemora-triggers/completion/vemora-triggers")

# Prints what bash would offer when the last of the words is completed.
OFFERED = """
source "$1"; shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_vemora_triggers
printf '%s\\n' "${COMPREPLY[@]}"
"""


def help_of(*command):
    environment = {name: text for name, text in os.environ.items() if name != "VEMORA_DATABASE"}
    return subprocess.run([TOOL, *command, "--help"], check=True, capture_output=True, text=True, env=environment).stdout


def listed(text, title):
    """The names in a list of a help text."""
    lines = re.search(rf"^{title}:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  (?:-h,)?([a-z-]+)", lines.group(1), re.MULTILINE) if lines else []


def commands():
    return listed(help_of(), "Commands")


def words_behind(text, name):
    """The words that the help text lists for an argument or an option."""
    meaning = re.search(rf"^  {name}\b.*(?:\n   .*)?", text, re.MULTILINE).group()
    return re.search(r"(?:[a-z-]+, )+[a-z-]+", meaning).group().split(", ")


class Manual_Page(Site):
    def check(self, *arguments):
        return subprocess.run([MAN_PAGE, "--check", *arguments], capture_output=True, text=True)

    def test_is_what_help_says(self):
        outcome = self.check(TOOL)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, ""))

    def test_is_noticed_to_be_older_than_what_help_says(self):
        newer = self.path("newer")
        with open(newer, "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\n'{TOOL}' \"$@\" | sed 's/^  --json .*/&, in ASCII/'\n")
        os.chmod(newer, 0o755)
        outcome = self.check(newer)
        self.assertEqual(outcome.returncode, 1)
        self.assertIn("the manual page is not what --help says", outcome.stderr)

    @unittest.skipUnless(shutil.which("man"), "needs man")
    def test_is_formatted_without_a_warning(self):
        page = os.path.join(ROOT, "tools/vemora-triggers/man/vemora-triggers.1")
        outcome = subprocess.run(["man", "--warnings", "-l", page], capture_output=True, text=True,
                                 env=os.environ | {"LC_ALL": "C.UTF-8", "MANROFFSEQ": "", "MANWIDTH": "80"})
        self.assertEqual((outcome.returncode, outcome.stderr), (0, ""))
        self.assertIn("EXIT STATUS", outcome.stdout)


class Completion(Site):
    def offered(self, *words):
        run = subprocess.run(["bash", "--norc", "-c", OFFERED, "bash", COMPLETION, "vemora-triggers", *words],
                             check=True, capture_output=True, text=True, cwd=self.folder)
        self.assertEqual(run.stderr, "")
        return [line for line in run.stdout.splitlines() if line]

    def test_offers_the_commands(self):
        self.assertCountEqual(self.offered(""), commands())
        self.assertEqual(self.offered("re"), [name for name in commands() if name.startswith("re")])
        self.assertCountEqual(self.offered("--database", "init", "--json", ""), commands())

    def test_offers_the_options_of_each_command_and_of_the_program(self):
        own = listed(help_of(), "Options")
        self.assertCountEqual(self.offered("--"), own)
        for command in commands():
            with self.subTest(command):
                options = {*own, *listed(help_of(command), "Options")}
                self.assertCountEqual(self.offered(command, "--"), options)

    def test_offers_the_words_that_an_argument_can_have(self):
        self.assertCountEqual(self.offered("show", ""), words_behind(help_of("show"), "WHAT"))
        self.assertCountEqual(self.offered("--log-level", ""),
                              [*words_behind(help_of(), "--log-level"), "off"])

    def test_offers_files_where_a_document_is_read(self):
        for name in ("one config.json", "other.json"):
            open(self.path(name), "w", encoding="utf-8").close()
        for words in (["init"], ["check"], ["apply", "other.json"], ["backup"], ["plan", "--out"], ["--database"],
                      ["match", "--events"]):
            with self.subTest(words):
                self.assertEqual(self.offered(*words, "oth"), ["other.json"])
        self.assertEqual(self.offered("check", "one"), ["one config.json"])

    def test_offers_nothing_where_only_the_user_knows(self):
        for words in (["--server-id"], ["explain"], ["history"], ["apply", "--note"]):
            with self.subTest(words):
                self.assertEqual(self.offered(*words, ""), [])


if __name__ == "__main__":
    unittest.main()
