# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Writes what the benchmarks measured into the documentation, or prints the tables.

    report.py pages SQLITE.json POSTGRESQL.json LIBRARY.json CALLS.json PASSES.json MATCH.json FOLDER
        writes FOLDER/performance-figures.md and FOLDER/performance.svg, and the figures that FOLDER/performance.md
        quotes, between its two markers
    report.py tables SQLITE.json POSTGRESQL.json PASSES.json
        prints the tables of growth and of both engines
"""

import datetime
import json
import math
import os
import platform
import statistics
import sys

import match_events
import plot as plots

BEGIN, END = "<!-- figures begin -->", "<!-- figures end -->"
MILLION = "1000000 links"
SAME = "floorWithSameAllocator"  # a floor with the allocator of the passes; the other one has the C library's


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def median(figure, key="seconds"):
    return statistics.median(figure[key]) if figure.get(key) else None


def ratio(number, floor):
    return f"{number / floor:.2f}" if number is not None and floor else ""


def paired_ratio(figure, floor="floor"):
    """The median of the ratios of each run to the floor that was measured right after it."""
    pairs = list(zip(figure["seconds"], figure[floor]))
    return f"{statistics.median(seconds / floor for seconds, floor in pairs):.2f}" if pairs else ""


def row(cells):
    return "| " + " | ".join(str(cell) for cell in cells) + " |"


def find(figures, site, scenario):
    return next((figure for figure in figures if (figure["site"], figure["scenario"]) == (site, scenario)), None)


def table(figures, with_round_trips=False):
    head = ["site", "scenario", "seconds", "floor", "ratio", "same allocator", "µs a link", "peak MiB", "links +", "links -", "errors"]
    head += ["round trips"] if with_round_trips else []
    lines = [row(head), row(["---"] * len(head))]
    for figure in figures:
        seconds, floor = median(figure), median(figure, "floor")
        links = find(figures, figure["site"], "first apply")["links"]
        cells = [figure["site"], figure["scenario"], f"{seconds:.3f}", "" if floor is None else f"{floor:.3f}",
                 paired_ratio(figure), paired_ratio(figure, SAME), f"{seconds / links * 1e6:.2f}", f"{figure['peakHeap'] / 2 ** 20:.0f}",
                 figure["linksWritten"], figure["linksDeleted"], figure["errors"]]
        lines.append(row(cells + ([figure["roundTrips"]] if with_round_trips else [])))
    return lines


# What grows, from which site to which; nothing may take longer than n log n allows.
GROWTHS = (
    ("links", "10000 links", "100000 links"),
    ("links", "100000 links", "1000000 links"),
    ("links", "1000000 links", "10000000 links"),
    ("cameras", "1000 cameras, 10 triggers, 4 topics", "10000 cameras, 10 triggers, 4 topics"),
    ("triggers", "10 cameras, 1000 triggers, 4 topics", "10 cameras, 10000 triggers, 4 topics"),
    ("topics", "10 cameras, 100 triggers, 100 topics", "10 cameras, 100 triggers, 1000 topics"),
    ("triggers of one subscription", "1 cameras, 1000 triggers, 1 topics", "1 cameras, 10000 triggers, 1 topics"),
)


GROWTH_NOTE = """By which factor the work grows from one site to a larger one, beside n log n, where n is the number of links.
Instructions are exact. Times also depend on caches and on how fast the system provides memory; those of a few
milliseconds vary by 50 percent from run to run. With more topics, the capabilities of each camera grow as well, which
n does not include."""
GROWING = ("first apply", "unchanged refresh", "one trigger changed")


def growth(figures, counted):
    """The factors by which each scenario's instructions, time and memory grow from a site to a larger one."""
    head = ["what grows", "from", "to", "links", "n log n", *(f"instructions: {name}" for name in GROWING),
            *(f"time: {name}" for name in GROWING), "peak heap: unchanged refresh"]
    lines = [row(head), row(["---"] * len(head))]
    for what, small, large in GROWTHS:
        pairs = [(find(figures, small, scenario), find(figures, large, scenario)) for scenario in GROWING]
        if not all(first and second for first, second in pairs):
            continue
        before, after = (figure["links"] for figure in pairs[0])
        instructions = [ratio(counted[large][name], counted[small][name]) if small in counted and large in counted else ""
                        for name in GROWING]
        lines.append(row([what, small, large, f"{after / before:.1f}",
                          f"{after * math.log(after) / (before * math.log(before)):.1f}", *instructions,
                          *(ratio(median(second), median(first)) for first, second in pairs),
                          ratio(pairs[1][1]["peakHeap"], pairs[1][0]["peakHeap"])]))
    return lines


def library_median(library, name):
    return next((entry["real_time"] for entry in library["benchmarks"]
                 if entry["name"] == f"{name}_median" or (entry["name"] == name and "aggregate_name" not in entry)), None)


def targets(figures, library, instructions, match):
    """The figures that were promised, each as a ratio within this run."""
    lines = ["| figure | must | aim | measured |", "|---|---|---|---|"]

    def line(name, must, aim, value):
        lines.append(f"| {name} | {must} | {aim} | {value or 'not measured'} |")

    line("parsing 100,000 triggers : the JSON library reading the text", 0.5, 0.25,
         ratio(library_median(library, "parse_trigger_configs"), library_median(library, "json_library_reads_the_text")))
    first = find(figures, MILLION, "first apply")
    refresh = find(figures, MILLION, "unchanged refresh")
    changed = find(figures, MILLION, "one trigger changed")
    if first and refresh and changed:
        for name, figure, must, aim in (("first apply", first, 1.5, 1.2), ("unchanged refresh", refresh, 1.6, 1.2)):
            line(f"{name} : floor", must, aim, paired_ratio(figure))
            line(f"{name} : floor with the same allocator", "report", "", paired_ratio(figure, SAME))
        line("changing one trigger of 1,000 : unchanged refresh", 1.06, 1.02, paired_ratio(changed))
        line("peak heap of a pass : one state snapshot", 2.3, 2, ratio(refresh["peakHeap"], refresh["snapshotHeap"]))
    for scenario in ("first apply", "unchanged refresh"):
        small, large = find(figures, "10000 links", scenario), find(figures, MILLION, scenario)
        if small and large:
            own, floor = (ratio(median(large, key) / 100, median(small, key)) for key in ("seconds", "floor"))
            line(f"time per link at 10^6 : at 10^4, {scenario}", 1.5, 1.1, f"{own} (its floor: {floor})")
    for name, words in (("match", "match --events"), ("against", "match --events --against")):
        line(f"{words}, {match['events']:,} events : the JSON library reading their lines", match_events.MOST_TIMES, "",
             f"{match_events.times_as_long(match, name):.2f}")
        line(f"memory of {words} beyond the site", f"{match_events.MOST_MEMORY >> 20} MiB", "",
             f"{match_events.beyond_the_site(match, name) / 2 ** 20:.0f} MiB")
    for name, figure, aim in (("the manager alone, an unchanged trigger with 3 sources", "unchanged trigger", ""),
                              ("a log call, logging off", "log call, logging off", "under 100"),
                              ("a log call, below the level", "log call, below the level", "")):
        line(name, "report", aim, f"{instructions[figure]:,.0f} instructions")
    return lines


def plot(figures):
    """The passes of the sites that grow by links alone, and of the sites S, M and L."""
    points = {}
    for figure in figures:
        dense = figure["site"].endswith(" links")
        if dense or figure["site"] in SITES:
            links = find(figures, figure["site"], "first apply")["links"]
            for key in ("seconds", "floor"):
                if (seconds := median(figure, key)) is not None:
                    kind = (plots.DENSE if dense else plots.MIXED, figure["scenario"], key)
                    points.setdefault(kind, []).append((links, seconds))
    return plots.draw(points)


def run_note(sqlite):
    machine = f"{os.cpu_count()} cores, {platform.machine()}, Linux {platform.release()}"
    return f"Measured {datetime.date.today()} on {machine}; medians of {len(sqlite[0]['seconds'])} runs."


def figures_page(note, sqlite, postgresql, library, calls, passes, match):
    return "\n".join(["# Performance: all figures", "", FIGURES_NOTE, "", note, "", "![seconds by links](performance.svg)", "",
                      "## Targets (SQLite, 10^6 links)", "", *targets(sqlite, library, calls, match), "",
                      "## Growth (SQLite)", "", GROWTH_NOTE, "", *growth(sqlite, passes), "",
                      "## SQLite", "", *table(sqlite), "", "## PostgreSQL (over a socket)", "",
                      *(table(postgresql, True) if postgresql else ["Not measured in this run."]), ""])


FIGURES_NOTE = """`scripts/bench` writes this page. [performance.md](performance.md) says what the figures mean and how they are measured."""
SITES = {"site S": ("S", 100, 100), "site M": ("M", 300, 1000), "site L": ("L", 2000, 5000),
         MILLION: ("dense", 1000, 1000)}


def summary(note, engines):
    """The few figures that the readable page quotes: engines are pairs of a name and its figures."""
    head = ["site", "cameras", "triggers", "links", "database", *GROWING, "peak memory"]
    lines = [note, "", row(head), row(["---"] * len(head))]
    for site, (name, cameras, triggers) in SITES.items():
        for engine, figures in engines:
            passes = [find(figures, site, scenario) for scenario in GROWING]
            if all(passes):
                peak = max(figure["peakHeap"] for figure in passes)
                lines.append(row([name, f"{cameras:,}", f"{triggers:,}", f"{passes[0]['links']:,}", engine,
                                  *(f"{median(figure):#.2g} s" for figure in passes), f"{peak / 2 ** 20:.0f} MiB"]))
    return "\n".join(lines)


def write_file(folder, name, text):
    with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
        file.write(text)


def write_pages(sqlite_path, postgresql_path, library_path, calls_path, passes_path, match_path, folder):
    sqlite, postgresql = read(sqlite_path), read(postgresql_path)
    note = run_note(sqlite)
    with open(os.path.join(folder, "performance.md"), encoding="utf-8") as file:
        before, rest = file.read().split(BEGIN)
    after = rest.split(END)[1]
    quoted = summary(note, (("SQLite", sqlite), ("PostgreSQL", postgresql)))
    write_file(folder, "performance.md", f"{before}{BEGIN}\n\n{quoted}\n\n{END}{after}")
    write_file(folder, "performance-figures.md",
               figures_page(note, sqlite, postgresql, read(library_path), read(calls_path), read(passes_path),
                            read(match_path)))
    write_file(folder, "performance.svg", plot(sqlite))


def print_tables(sqlite_path, postgresql_path, passes_path):
    print("\n".join(["## Growth (SQLite)", "", *growth(read(sqlite_path), read(passes_path)), ""]))
    for engine, path in (("SQLite", sqlite_path), ("PostgreSQL", postgresql_path)):
        if figures := read(path):
            print("\n".join([f"## {engine}", "", *table(figures, engine == "PostgreSQL"), ""]))


if __name__ == "__main__":
    {"pages": write_pages, "tables": print_tables}[sys.argv[1]](*sys.argv[2:])
