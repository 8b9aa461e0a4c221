#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The page that says what a server supplies names what the product needs: the symbols, by library.

    symbols_page.py PAGE PRODUCT LIBRARY...           the section between the markers is what the libraries say
    symbols_page.py --write PAGE PRODUCT LIBRARY...   writes it

What the product leaves undefined is read from it, and which of the platform libraries defines it from those.
"""

import os
import re
import subprocess
import sys

BEGIN, END = "<!-- symbols: begin -->\n", "<!-- symbols: end -->\n"


def symbols(library, which):
    """As C++ declares them; the mangled names are what the linker compares, and say the same."""
    answer = subprocess.run(["nm", "--dynamic", which, "--demangle", library], check=True, capture_output=True, text=True)
    names = (re.sub(r"@.*$", "", re.sub("^[0-9a-f ]* [A-Za-z] ", "", line)) for line in answer.stdout.splitlines())
    return {name for name in names if "kuv::" in name.split("(")[0]}


def without_defaults(text):
    """Without the template arguments that nobody writes: comparisons and allocators."""
    text = text.replace("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string")
    default = re.compile(r", std::(less|allocator)<")
    while found := default.search(text):
        depth, end = 1, found.end()
        while depth:
            depth += {"<": 1, ">": -1}.get(text[end], 0)
            end += 1
        text = text[:found.start()] + text[end:]
    return re.sub(r"\s+>", ">", text)


def section(product, libraries):
    needed = symbols(product, "--undefined-only")
    lines = []
    for library in libraries:
        supplied = sorted(map(without_defaults, needed & symbols(library, "--defined-only")))
        lines += [f"`{os.path.basename(library)}`:", "", "```"] + supplied + ["```", ""]
        needed -= symbols(library, "--defined-only")
    if needed:
        sys.exit(f"symbols_page: no platform library supplies {', '.join(sorted(needed))}")
    return "\n" + "\n".join(lines)


def main():
    words = sys.argv[1:]
    write = words[0] == "--write"
    page, product, *libraries = words[1:] if write else words
    with open(page, encoding="utf-8") as file:
        text = file.read()
    before, rest = text.split(BEGIN)
    stated, after = rest.split(END)
    true = section(product, libraries)
    if write:
        with open(page, "w", encoding="utf-8") as file:
            file.write(before + BEGIN + true + END + after)
    elif stated != true:
        sys.exit(f"{page} does not say what {product} needs; it should say:\n{true}\n"
                 f"write it with {' '.join([sys.argv[0], '--write', *words])}")


main()
