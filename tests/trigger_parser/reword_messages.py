# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Rewords every sentence of a C++ source: reword_messages.py SOURCE RESULT

What the program does stays the same, and so do the holes of format strings. Log lines, names of keys and what stands in
comments and includes are left alone.
"""

import os
import re
import sys

TOKEN = re.compile(r'//[^\n]*|^#[^\n]*|"(?:[^"\\\n]|\\.)*"', re.MULTILINE)


def reworded(source):
    count = 0

    def reword(found):
        nonlocal count
        token = found.group()
        if not token.startswith('"') or " " not in token or "|" in token or "={}" in token:
            return token
        count += 1
        return f'"Reworded {count} ' + "{} " * token.count("{}") + '."'

    return TOKEN.sub(reword, source)


def main(source, result):
    with open(source, encoding="utf-8") as file:
        text = reworded(file.read())
    os.makedirs(os.path.dirname(result), exist_ok=True)
    with open(result, "w", encoding="utf-8") as file:
        file.write(text)


if __name__ == "__main__":
    main(*sys.argv[1:])
