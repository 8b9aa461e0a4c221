# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the report of the benchmarks writes, and that the pages in docs/ quote the figures of one run."""

import json
import os
import re
import shutil
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
sys.path.insert(0, os.path.join(ROOT, "benchmarks"))

import report  # noqa: E402


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def figures(site, links, first_apply):
    """What whole_passes prints of a site whose later passes take a tenth of the first apply."""
    return [{"site": site, "scenario": scenario, "links": links, "seconds": [seconds], "floor": [seconds / 2],
             "floorWithSameAllocator": [seconds / 4],
             "peakHeap": 3 << 20, "snapshotHeap": 2 << 20, "linksWritten": 0, "linksDeleted": 0, "errors": 0,
             "roundTrips": 75}
            for scenario, seconds in zip(report.GROWING, (first_apply, first_apply / 10, first_apply / 10))]


LIBRARY = {"benchmarks": [{"name": "parse_trigger_configs_median", "real_time": 1},
                          {"name": "json_library_reads_the_text_median", "real_time": 4}]}
MATCH = {"events": 1000000, "reading": {"seconds": [2, 1], "memory": 5 << 20},
         "match": {"seconds": [4.5, 5], "memory": 150 << 20}, "against": {"seconds": [7, 7.25], "memory": 250 << 20},
         "match of one": {"seconds": [1], "memory": 140 << 20}}
DOCUMENTS = {"triggers": 100000, "bytes": 86000000, "check": {"seconds": [2, 3, 4], "memory": 900 << 20},
             "refresh": {"seconds": [8, 8, 8], "memory": 1300 << 20}, "reading": {"seconds": [4, 4, 4], "memory": 490 << 20},
             "rules": {"seconds": [32, 32, 32], "memory": 1000 << 20}}
MARKERS = "<!-- (?:figures|peers) (?:begin|end) -->"
CALLS = {"unchanged trigger": 12000, "log call, logging off": 15, "log call, below the level": 2400}


def rows_of(text):
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines() if line.startswith("|")]


class Written_Pages(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        sqlite = figures("site S", 10015, 0.3) + figures("1000000 links", 1000000, 3.44)
        run = {"sqlite": sqlite, "postgresql": figures("site S", 10015, 0.75), "library": LIBRARY, "calls": CALLS, "passes": {},
               "match": MATCH, "documents": DOCUMENTS}
        for name, content in run.items():
            with open(os.path.join(self.folder, f"{name}.json"), "w", encoding="utf-8") as file:
                json.dump(content, file)
        shutil.copy(os.path.join(ROOT, "docs", "performance.md"), self.folder)
        report.write_pages(self.folder, self.folder)

    def test_the_readable_page_quotes_the_run_between_its_markers_and_keeps_the_rest(self):
        before, quoted, between, peers, after = re.split(MARKERS, read(self.folder, "performance.md"))
        self.assertEqual(rows_of(quoted)[2:], [
            ["S", "100", "100", "10,015", "SQLite", "0.30 s", "0.030 s", "0.030 s", "3 MiB"],
            ["S", "100", "100", "10,015", "PostgreSQL", "0.75 s", "0.075 s", "0.075 s", "3 MiB"],
            ["dense", "1,000", "1,000", "1,000,000", "SQLite", "3.4 s", "0.34 s", "0.34 s", "3 MiB"]])
        self.assertEqual(rows_of(peers), [
            ["100,000 triggers, 86 MB", "times the JSON library", "seconds", "peak memory"], ["---"] * 4,
            ["check", "0.75", "3.0", "900 MiB"], ["refresh", "2.00", "8.0", "1300 MiB"],
            ["the JSON library reading it", "1.00", "4.0", "490 MiB"],
            ["promtool check rules, as many rules", "8.00", "32.0", "1000 MiB"]])
        original = re.split(MARKERS, read(ROOT, "docs", "performance.md"))
        self.assertEqual([before, between, after], original[::2])

    def test_the_figures_have_a_page_of_their_own(self):
        page = read(self.folder, "performance-figures.md")
        self.assertIn(["parsing 100,000 triggers : the JSON library reading the text", "0.28", "0.2", "0.25"],
                      rows_of(page))
        self.assertIn(["match --events --against, 1,000,000 events : the JSON library reading their lines", "10", "",
                       "7.00"], rows_of(page))
        self.assertIn(["memory of match --events beyond the site", "200 MiB", "", "10 MiB"], rows_of(page))
        self.assertIn(["memory of match --events --against beyond the site", "200 MiB", "", "110 MiB"], rows_of(page))
        self.assertIn(["site S", "first apply", "0.300", "0.150", "2.00", "4.00", "29.96", "3", "0", "0", "0"], rows_of(page))
        self.assertIn(["site S", "first apply", "0.750", "0.375", "2.00", "4.00", "74.89", "3", "0", "0", "0", "75"],
                      rows_of(page))
        for name in ("first apply", "unchanged refresh"):
            [[_, _, _, measured]] = [row for row in rows_of(page) if row[0] == f"{name} : floor"]
            [[_, _, _, same]] = [row for row in rows_of(page) if row[0] == f"{name} : floor with the same allocator"]
            self.assertEqual((measured, same), ("2.00", "4.00"))

    def test_the_picture_shows_each_pass_and_its_floor_and_names_its_axes(self):
        picture = xml.etree.ElementTree.fromstring(read(self.folder, "performance.svg"))
        texts = {"".join(text.itertext()).strip() for text in picture.iter("{http://www.w3.org/2000/svg}text")}
        self.assertLessEqual({"links (a trigger and a record that it uses)", "seconds"}, texts)
        self.assertEqual({text for text in texts if "site" in text}, {
            f"{what}, {place}" for what in ("first apply", "unchanged refresh", "its floor")
            for place in ("dense sites", "sites S, M and L")})


class Committed_Pages(unittest.TestCase):
    """Nobody edits a figure by hand, and all pages are of one run."""

    def test_the_figures_that_are_quoted_are_those_of_the_figures_page(self):
        page, all_figures = read(ROOT, "docs", "performance.md"), read(ROOT, "docs", "performance-figures.md")
        note = re.search("^Measured .*$", all_figures, re.MULTILINE).group()
        self.assertIn(note, page)
        sqlite, postgresql = re.split("^## PostgreSQL.*$", all_figures, flags=re.MULTILINE)
        measured = {}
        for engine, text in (("SQLite", sqlite), ("PostgreSQL", postgresql)):
            for row in rows_of(text):
                if row[1] in report.GROWING:
                    measured[engine, row[0], row[1]] = float(row[2])
        names = {name: site for site, (name, _, _) in report.SITES.items()}
        quoted = [row for row in rows_of(page) if row[0] in names]
        self.assertGreaterEqual(len(quoted), 4)
        for name, _, _, _, engine, *times, _ in quoted:
            for scenario, time in zip(report.GROWING, times):
                figure = measured[engine, names[name], scenario]
                digits = len(time.removesuffix(" s").partition(".")[2])
                # The figure was rounded to a millisecond.
                self.assertAlmostEqual(float(time.removesuffix(" s")), figure, msg=(name, engine, scenario),
                                       delta=0.5 * 10 ** -digits + 0.0005)


if __name__ == "__main__":
    unittest.main()
