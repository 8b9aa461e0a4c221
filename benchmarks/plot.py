# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Draws passes beside their floors with gnuplot: seconds by links, both axes logarithmic."""

import subprocess

DENSE, MIXED = "dense sites", "sites S, M and L"
HEAD = """set terminal svg size 960,480 font "sans-serif,13" background "white"
set logscale xy
set xlabel "links (a trigger and a record that it uses)"
set ylabel "seconds"
set format x "10^{%L}"
set grid xtics ytics linecolor "#dddddd"
set key outside right center reverse Left width -9 spacing 1.3
"""
PASS = "'-' using 1:2 with {style} linewidth 2 linecolor '{color}' pointtype {point} {dash} title '{title}'"
COLORS = {"first apply": "#b03a2e", "unchanged refresh": "#1f618d"}


def series(scenario, key, points):
    """How a series looks: a dense site grows along a line, the others are points; a floor is open and dashed."""
    floor = key == "floor"
    for place, style, (full, open_) in ((DENSE, "linespoints", (7, 6)), (MIXED, "points", (5, 4))):
        found = sorted(points.get((place, scenario, key), ()))
        if found:
            title = f"{'its floor' if floor else scenario}, {place}"
            yield PASS.format(style=style, color=COLORS[scenario], point=open_ if floor else full,
                              dash="dashtype 2" if floor else "", title=title), found


def draw(points):
    """The picture, as SVG. points: of a kind of site, a scenario and "seconds" or "floor", pairs of links and seconds."""
    drawn = [each for scenario in COLORS for key in ("seconds", "floor") for each in series(scenario, key, points)]
    links = [number for _, found in drawn for number, _ in found]
    lines = [HEAD, f"set xrange [{min(links) * 0.8}:{max(links) * 1.25}]", "plot " + ", ".join(plot for plot, _ in drawn)]
    for _, found in drawn:
        lines += [f"{links} {seconds:.6f}" for links, seconds in found] + ["e"]
    return subprocess.run(["gnuplot"], input="\n".join(lines) + "\n", capture_output=True, text=True, check=True).stdout
