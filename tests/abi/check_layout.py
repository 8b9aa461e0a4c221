#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Compares the classes that servers are compiled against with what their layout must be.

    check_layout.py EXPECTED LIBRARY...          fails where a class differs, or is not to be found
    check_layout.py --print EXPECTED LIBRARY...  shows the same classes as the libraries have them

What a class is made of is read from the debug information of the libraries, so it is the compiler's
own word: bases, members with their offsets in bytes, virtual operations with their slots. A class
must be the same in every library and in every file of each.
"""

import re
import subprocess
import sys
from dataclasses import dataclass, field

CLASS_TAGS = {"DW_TAG_class_type", "DW_TAG_structure_type"}
SCOPE_TAGS = CLASS_TAGS | {"DW_TAG_namespace"}
PART_TAGS = {"DW_TAG_member", "DW_TAG_inheritance", "DW_TAG_subprogram"}
ENTRY = re.compile(r" <([0-9a-f]+)><([0-9a-f]+)>: Abbrev Number: \d+ \((\w+)\)")
# The form in which a value is kept stands before it.
ATTRIBUTE = re.compile(r"    <[0-9a-f]+>\s+(DW_AT_\w+)\s*:\s(?:\((?:\w+)\) )?(.*)")
READ_ATTRIBUTES = {"DW_AT_name", "DW_AT_linkage_name", "DW_AT_data_member_location", "DW_AT_type",
                   "DW_AT_vtable_elem_location", "DW_AT_byte_size", "DW_AT_declaration",
                   "DW_AT_virtuality", "DW_AT_external"}


@dataclass
class Entry:
    """One entry of the debug information, with those below it that a layout consists of."""
    offset: str
    tag: str
    depth: int
    attributes: dict = field(default_factory=dict)
    parts: list = field(default_factory=list)

    def text(self, attribute):
        """Texts kept elsewhere stand behind a note that says where."""
        return re.sub(r"^\((?:offset|indirect)[^)]*\): ", "", self.attributes.get(attribute, ""))

    def number(self, attribute):
        return int(re.match(r"(0x[0-9a-f]+|\d+)", self.attributes[attribute]).group(1), 0)

    def slot(self):
        """Such as "2 byte block: 10 2 (DW_OP_constu: 2)"."""
        return int(re.search(r"DW_OP_\w+: (\d+)", self.attributes["DW_AT_vtable_elem_location"])[1])


def classes_of(library):
    """Every class with a definition, with its full name; a name may come many times."""
    dump = subprocess.Popen(["readelf", "--debug-dump=info", "--wide", library],
                            stdout=subprocess.PIPE, text=True, errors="replace")
    scopes, names, found, entry = [], {}, [], None
    for line in dump.stdout:
        if line.startswith(" <"):
            entry = None
            match = ENTRY.match(line)
            if not match:
                continue
            depth = int(match[1], 16)
            while scopes and scopes[-1].depth >= depth:
                scopes.pop()
            if match[3] in SCOPE_TAGS or match[3] in PART_TAGS:
                entry = Entry(match[2], match[3], depth)
                entry.scopes = list(scopes)
                if match[3] in PART_TAGS:
                    if scopes and scopes[-1].depth == depth - 1:
                        scopes[-1].parts.append(entry)
                else:
                    scopes.append(entry)
                    if match[3] in CLASS_TAGS:
                        found.append(entry)
        elif entry is not None:
            match = ATTRIBUTE.match(line)
            if match and match[1] in READ_ATTRIBUTES:
                entry.attributes[match[1]] = match[2]
    if dump.wait() != 0:
        raise SystemExit(f"{library} cannot be read")
    for entry in found:
        names[entry.offset] = "::".join(
            [scope.text("DW_AT_name") for scope in entry.scopes] + [entry.text("DW_AT_name")])
    return [(names[entry.offset], entry, names) for entry in found
            if "DW_AT_declaration" not in entry.attributes]


def describe(entry, names):
    """A class as the file of expectations has it."""
    lines = [f"size {entry.number('DW_AT_byte_size')}"]
    slots, destructor = {}, None
    for part in entry.parts:
        if part.tag == "DW_TAG_inheritance":
            base = names.get(re.search(r"<0x([0-9a-f]+)>", part.attributes["DW_AT_type"])[1])
            virtual = "virtual " if "DW_AT_virtuality" in part.attributes else ""
            lines.append(f"base {virtual}{base}")
        elif part.tag == "DW_TAG_member" and "DW_AT_data_member_location" in part.attributes:
            if not part.text("DW_AT_name").startswith("_vptr"):
                lines.append(f"member {part.number('DW_AT_data_member_location')} "
                             f"{part.text('DW_AT_name')}")
        elif "DW_AT_vtable_elem_location" in part.attributes:
            slots[part.slot()] = signature(part)
        elif part.text("DW_AT_name").startswith("~") and "DW_AT_virtuality" in part.attributes:
            destructor = part.text("DW_AT_name") + "()"
    if destructor and slots:
        add_destructor(slots, destructor)
    return lines + [f"slot {slot} {slots[slot]}" for slot in sorted(slots)]


def add_destructor(slots, destructor):
    """The compiler does not say where it stands, but it takes the two slots that are left over."""
    left_over = [slot for slot in range(len(slots) + 2) if slot not in slots]
    slots.update((slot, destructor) for slot in left_over)


def signature(operation):
    """Name and parameters, without the class."""
    mangled = operation.text("DW_AT_linkage_name")
    plain = subprocess.run(["c++filt", mangled], check=True, capture_output=True, text=True).stdout
    return operation.text("DW_AT_name") + without_defaults(plain.strip()[plain.index("("):])


def without_defaults(types):
    """std::set<T> for std::set<T, std::less<T>, std::allocator<T> >."""
    types = types.replace("std::__cxx11::basic_string<char, std::char_traits<char>, "
                          "std::allocator<char> >", "std::string")
    nested = "[^<>]"
    for _ in range(6):
        nested = f"(?:[^<>]|<{nested}*>)"
    while " >" in types:
        types = types.replace(" >", ">")
    return re.sub(f", std::(?:less|allocator)<{nested}*>", "", types)


def read_expected(path):
    """Blocks of a "class NAME" line and what follows it, in order."""
    expected = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            line = line.split("#")[0].strip()
            if line.startswith("class "):
                lines = expected[line[len("class "):]] = []
            elif line:
                lines.append(line)
    return expected


def actual_layouts(wanted, libraries):
    """For each class that is wanted every layout that was found of it, with where."""
    layouts = {name: {} for name in wanted}
    for library in libraries:
        for name, entry, names in classes_of(library):
            if name in layouts:
                layouts[name].setdefault(tuple(describe(entry, names)), library)
    return layouts


def compare(expected, layouts):
    for name, wanted in expected.items():
        if not layouts[name]:
            yield f"{name}: in none of the libraries (were they built with debug information?)"
        for found, library in layouts[name].items():
            if list(found) != wanted:
                yield "\n".join([f"{name} differs in {library}:", "  expected", *indented(wanted),
                                 "  found", *indented(found)])


def indented(lines):
    return ["    " + line for line in lines]


def main(arguments):
    show = arguments[:1] == ["--print"]
    expected_path, *libraries = arguments[1 if show else 0:]
    expected = read_expected(expected_path)
    layouts = actual_layouts(expected, libraries)
    if show:
        for name, found in layouts.items():
            for lines in found:
                print("\n".join([f"class {name}", *("  " + line for line in lines), ""]))
        return 0
    faults = list(compare(expected, layouts))
    print("\n".join(faults) or f"{len(expected)} classes are as they must be")
    return 1 if faults or not expected else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
