# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Standard streams that are closed, full or endless."""

import os
import unittest

from tool_site import DONE, ENGINE, FAILED, REJECTED, Site, camera, config, topic_source, trigger

def unwritten(reason):
    return b"vemora-triggers: cannot write the outcome to standard output: " + reason + b"\n"


FULL = unwritten(b"No space left on device")
CLOSED = unwritten(b"Bad file descriptor")

# What is said with it, of what is stored all the same.
STORED = {"apply": b"note: The pass is done, and all of its changes are stored.\n",
          "refresh": b"note: The pass is done, and all of its changes are stored.\n",
          "init": b"note: The inventory is stored.\n"}


class Streams(Site):
    def setUp(self):
        super().setUp()
        self.init()
        self.write("config.json", config(trigger(7)))

    def run_without(self, streams, *arguments):
        """Runs the tool with these streams closed, which Python cannot do by itself."""
        closed = " ".join({0: "<&-", 1: ">&-", 2: "2>&-"}[stream] for stream in streams)
        return self.run_command(["sh", "-c", f'exec "$@" {closed}', "sh", *self.command(*arguments)],
                                input=b"" if 0 not in streams else None)

    def assert_sound(self):
        """No stream was written into the database."""
        if ENGINE == "sqlite":
            self.assertEqual(self.sql("PRAGMA integrity_check"), [("ok",)])
            with open(self.database, "rb") as file:
                self.assertEqual(file.read(16), b"SQLite format 3\0")
        self.assertEqual(len(self.show("cameras")), 2)


class Closed_Streams(Streams):
    def test_standard_output_that_is_closed_is_told_and_what_was_done_is_kept(self):
        outcome = self.run_without([1], "apply", "config.json")
        self.assertEqual((outcome.status, outcome.err), (FAILED, CLOSED + STORED["apply"]))
        self.assert_sound()
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])

    def test_standard_input_that_is_closed_cannot_be_read(self):
        outcome = self.run_without([0], "check", "-")
        self.assertEqual((outcome.status, outcome.err, outcome.text),
                         (REJECTED, b"", "-: error: cannot read standard input: Bad file descriptor\n"))

    def test_a_closed_stream_that_is_not_needed_does_not_matter(self):
        outcome = self.run_without([0, 2], "apply", "config.json")
        self.assertEqual((outcome.status, outcome.text.splitlines()[-1]), (DONE, "Done."))
        self.assert_sound()

    def test_no_file_of_the_database_takes_the_place_of_a_closed_stream(self):
        for streams in ([0], [1], [2], [0, 1], [1, 2], [0, 2], [0, 1, 2]):
            for command in (["--log-level", "trace", "apply", "config.json"], ["refresh"], ["show", "triggers"],
                            ["init", "inventory.json"], ["chek"]):
                with self.subTest(streams=streams, command=command):
                    self.run_without(streams, *command)
                    self.assert_sound()
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])


class Full_Streams(Streams):
    def test_an_outcome_that_could_not_be_written_is_a_failure_though_the_pass_is_done(self):
        for flags in ([], ["--json"]):
            for command in (["apply", "config.json"], ["check", "config.json"], ["refresh"], ["show", "cameras"],
                            ["show", "config"], ["init", "inventory.json"]):
                with self.subTest(command=command, flags=flags), open("/dev/full", "wb") as full:
                    outcome = self.run_tool(*flags, *command, stdout=full)
                    said = FULL + STORED.get(command[0], b"")
                    self.assertEqual((outcome.status, outcome.err), (FAILED, said))
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])

    def test_help_that_could_not_be_written_is_a_failure(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(self.run_tool("--help", stdout=full).status, FAILED)

    def run_with_a_reader_that_left(self, *arguments):
        reader, writer = os.pipe()
        os.close(reader)
        with open(writer, "wb") as left:
            outcome = self.run_tool(*arguments, stdout=left)
        return outcome.status, outcome.err

    def test_a_reader_that_left_does_not_kill_the_pass_and_is_no_failure(self):
        self.assertEqual(self.run_with_a_reader_that_left("apply", "config.json"), (DONE, b""))
        self.assertEqual([record["id"] for record in self.show("triggers")], [7])

    def test_a_reader_that_left_changes_no_exit_status(self):
        for flags in ([], ["--json"]):
            self.assertEqual(self.run_with_a_reader_that_left(*flags, "show", "cameras"), (DONE, b""))
            self.assertEqual(self.run_with_a_reader_that_left(*flags, "check", "missing.json"), (REJECTED, b""))
        self.assertEqual(self.run_with_a_reader_that_left("--help"), (DONE, b""))

    def test_the_head_of_a_long_list_is_no_failure(self):
        self.init({"cameras": [camera(number) for number in range(1000, 5000)]})
        shown = self.run_command(["bash", "-c", 'set -o pipefail; "$@" | head -1', "bash",
                                  *self.command("show", "cameras")])
        self.assertEqual((shown.status, shown.err), (DONE, b""))
        self.assertTrue(shown.text.startswith("ID"))


class Endless_Input(Streams):
    def test_a_file_without_an_end_is_refused(self):
        outcome = self.run_tool("check", "/dev/zero")
        self.assertEqual((outcome.status, outcome.err, outcome.text), (
            REJECTED, b"", "/dev/zero: error: /dev/zero is larger than the maximum size of a document (536870912 bytes)\n"))

    def test_standard_input_without_an_end_is_refused(self):
        with open("/dev/zero", "rb") as zeros:
            outcome = self.run_command(self.command("--json", "apply", "-"), stdin=zeros)
        self.assertEqual((outcome.status, outcome.err), (REJECTED, b""))
        [error] = outcome.json["errors"]
        self.assertEqual(error["message"], "standard input is larger than the maximum size of a document (536870912 bytes)")

    def test_a_document_of_many_megabytes_is_read(self):
        name = self.write("large.json", config(trigger(8, topic_source("x" * (50 << 20)))))
        self.assertEqual(self.run_tool("check", name).status, DONE)


if __name__ == "__main__":
    unittest.main()
