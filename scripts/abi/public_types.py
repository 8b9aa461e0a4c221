# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The types of the public headers as a compiler lays them out, in a library made for that.

The debug information of a library describes what the library itself uses. Which slots an interface has that only the
server implements, how large a record is, what an error derives from, says this one, for every type of every public
header: for each, it shows a function that takes it.
"""

import os
import subprocess

from clang.cindex import AccessSpecifier, CursorKind

from declarations import CLASSES, flags_of_dependencies, walk

NAME = "libpublic_types.so"


def is_reachable(cursor):
    """Not inside something private."""
    while cursor is not None and cursor.kind in CLASSES | {CursorKind.ENUM_DECL}:
        if cursor.access_specifier == AccessSpecifier.PRIVATE:
            return False
        cursor = cursor.semantic_parent
    return True


def types(unit, include):
    for cursor in walk(unit.cursor, include):
        if (cursor.kind in CLASSES | {CursorKind.ENUM_DECL} and cursor.is_definition() and cursor.spelling and
                is_reachable(cursor)):
            yield cursor.type.get_canonical().spelling


def source(headers, names):
    lines = [f"#include <{header}>" for header in headers]
    lines += ["namespace public_types {"]
    lines += [f"void of(const {name}&) {{}}" for name in sorted(set(names))]
    lines += ["}", ""]
    return "\n".join(lines)


def build(include, headers, names, folder):
    """The library, built from nothing but the headers."""
    path = os.path.join(folder, "public_types.cpp")
    with open(path, "w", encoding="utf-8") as file:
        file.write(source(headers, names))
    script = os.path.join(folder, "exports.map")
    with open(script, "w", encoding="utf-8") as file:
        file.write('{ global: extern "C++" { public_types::*; }; local: *; };\n')
    library = os.path.join(folder, NAME)
    subprocess.run(["g++", "-std=c++17", "-g", "-O0", "-fPIC", "-shared", "-w", "-femit-class-debug-always",
                    f"-I{include}", *flags_of_dependencies(), path, "-o", library, f"-Wl,--version-script={script}",
                    f"-Wl,-soname={NAME}"], check=True)
    return library
