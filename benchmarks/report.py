# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Writes what the benchmarks measured into the documentation, or prints the tables.

    report.py pages RUN FOLDER
        writes FOLDER/performance-figures.md and FOLDER/performance.svg, and what FOLDER/performance.md quotes, between
        its markers
    report.py tables RUN
        prints the tables of growth and of both engines

RUN is the folder of what was measured: sqlite.json and postgresql.json by whole_passes, passes.json and calls.json by
count_instructions.py; for the pages also library.json, match.json and documents.json by the programs of these names.
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
import whole_documents

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


def document_targets(library, documents):
    yield ("parsing 100,000 triggers : the JSON library reading the text", 0.28, 0.2,
           ratio(library_median(library, "parse_trigger_configs"), library_median(library, "json_library_reads_the_text")))
    megabytes = f"{documents['triggers']:,} triggers ({documents['bytes'] / 1e6:.0f} MB)"
    for name, other, words, must, aim in (("check", "reading", "the JSON library reading the text", 0.9, 0.6),
                                          ("refresh", "reading", "the JSON library reading the text", 1.8, 1.2),
                                          ("check", "rules", "promtool check rules", 0.12, 0.08)):
        times = whole_documents.times_as_long(documents, name, other)
        yield f"{name} of {megabytes}, whole process : {words}", must, aim, times and f"{times:.2f}"


def pass_targets(figures):
    first, refresh, changed = (find(figures, MILLION, scenario) for scenario in GROWING)
    if first and refresh and changed:
        for name, figure, must, aim in (("first apply", first, 1.5, 1.2), ("unchanged refresh", refresh, 1.6, 1.2)):
            yield f"{name} : floor", must, aim, paired_ratio(figure)
            yield f"{name} : floor with the same allocator", "report", "", paired_ratio(figure, SAME)
        yield "changing one trigger of 1,000 : unchanged refresh", 1.06, 1.02, paired_ratio(changed)
        yield "peak heap of a pass : one state snapshot", 2.3, 2, ratio(refresh["peakHeap"], refresh["snapshotHeap"])
    for site, words, must, aim in (("1 cameras, 10000 triggers, 1 topics", "one subscription with 10,000 triggers", 4.5, 2),
                                   *((site, site, 2.3, 1.6) for site in ("site S", "site M", "site L"))):
        if refresh := find(figures, site, "unchanged refresh"):
            yield f"{words}, unchanged refresh : floor", must, aim, paired_ratio(refresh)
    for scenario in ("first apply", "unchanged refresh"):
        small, large = find(figures, "10000 links", scenario), find(figures, MILLION, scenario)
        if small and large:
            own, floor = (ratio(median(large, key) / 100, median(small, key)) for key in ("seconds", "floor"))
            yield f"time per link at 10^6 : at 10^4, {scenario}", 1.5, 1.1, f"{own} (its floor: {floor})"


def postgresql_targets(figures):
    for scenario, must in (("first apply", 1.6), ("unchanged refresh", 1.5)):
        if figure := find(figures, MILLION, scenario):
            yield f"PostgreSQL, {scenario} : floor", must, 1.2, paired_ratio(figure)


def match_targets(match):
    for name, words in (("match", "match --events"), ("against", "match --events --against")):
        yield (f"{words}, {match['events']:,} events : the JSON library reading their lines", match_events.MOST_TIMES, "",
               f"{match_events.times_as_long(match, name):.2f}")
        yield (f"memory of {words} beyond the site", f"{match_events.MOST_MEMORY >> 20} MiB", "",
               f"{match_events.beyond_the_site(match, name) / 2 ** 20:.0f} MiB")


def call_targets(instructions):
    for name, figure, aim in (("the manager alone, an unchanged trigger with 3 sources", "unchanged trigger", ""),
                              ("a log call, logging off", "log call, logging off", "under 100"),
                              ("a log call, below the level", "log call, below the level", "")):
        yield name, "report", aim, f"{instructions[figure]:,.0f} instructions"


def targets(run):
    """The figures that were promised, each as a ratio within this run."""
    figures = [*document_targets(run["library"], run["documents"]), *pass_targets(run["sqlite"]),
               *postgresql_targets(run["postgresql"]), *match_targets(run["match"]), *call_targets(run["calls"])]
    return ["| figure | must | aim | measured |", "|---|---|---|---|",
            *(row([name, must, aim, value or "not measured"]) for name, must, aim, value in figures)]


def peers(note, documents):
    """Whole processes beside those of others."""
    head = [f"{documents['triggers']:,} triggers, {documents['bytes'] / 1e6:.0f} MB", "times the JSON library", "seconds",
            "peak memory"]
    lines = [note, "", row(head), row(["---"] * len(head))]
    for name, words in whole_documents.NAMES.items():
        if name in documents:
            lines.append(row([words, f"{whole_documents.times_as_long(documents, name, 'reading'):.2f}",
                              f"{median(documents[name]):.1f}", f"{documents[name]['memory'] / 2 ** 20:.0f} MiB"]))
    return "\n".join(lines)


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


def run_note(figures):
    machine = f"{os.cpu_count()} cores, {platform.machine()}, Linux {platform.release()}"
    runs = {len(figure["seconds"]) for figure in figures}
    or_more = "" if len(runs) == 1 else " or more"
    return f"Measured {datetime.date.today()} on {machine}; medians of {min(runs)} runs{or_more}."


def figures_page(note, run):
    postgresql = run["postgresql"]
    return "\n".join(["# Performance: all figures", "", FIGURES_NOTE, "", note, "", "![seconds by links](performance.svg)", "",
                      "## Targets (SQLite and 10^6 links, unless it says something else)", "", *targets(run), "",
                      "## Growth (SQLite)", "", GROWTH_NOTE, "", *growth(run["sqlite"], run["passes"]), "",
                      "## SQLite", "", *table(run["sqlite"]), "",
                      "## PostgreSQL (over a socket, unless the site says how far away it is)", "",
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


def quoted(page, name, text):
    """The page, with this text between the markers of this name."""
    begin, end = f"<!-- {name} begin -->", f"<!-- {name} end -->"
    before, rest = page.split(begin)
    return f"{before}{begin}\n\n{text}\n\n{end}{rest.split(end)[1]}"


def read_run(folder, *names):
    return {name: read(os.path.join(folder, f"{name}.json")) for name in names}


def write_pages(measured, folder):
    run = read_run(measured, "sqlite", "postgresql", "library", "calls", "passes", "match", "documents")
    note = run_note(run["sqlite"])
    with open(os.path.join(folder, "performance.md"), encoding="utf-8") as file:
        page = file.read()
    page = quoted(page, "figures", summary(note, (("SQLite", run["sqlite"]), ("PostgreSQL", run["postgresql"]))))
    write_file(folder, "performance.md", quoted(page, "peers", peers(run_note([run["documents"]["reading"]]), run["documents"])))
    write_file(folder, "performance-figures.md", figures_page(note, run))
    write_file(folder, "performance.svg", plot(run["sqlite"]))


def print_tables(measured):
    run = read_run(measured, "sqlite", "postgresql", "passes")
    print("\n".join(["## Growth (SQLite)", "", *growth(run["sqlite"], run["passes"]), ""]))
    for engine, figures in (("SQLite", run["sqlite"]), ("PostgreSQL", run["postgresql"])):
        if figures:
            print("\n".join([f"## {engine}", "", *table(figures, engine == "PostgreSQL"), ""]))


if __name__ == "__main__":
    {"pages": write_pages, "tables": print_tables}[sys.argv[1]](*sys.argv[2:])
