# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the libraries promise to show: what their public headers declare, and what goes with it."""

import os
from dataclasses import dataclass

import declarations
import exports
import public_types

CONTRACTS = "vemora_platform"  # the headers that the four libraries of a server implement
OF_A_CLASS = ("vtable for", "VTT for", "typeinfo for", "typeinfo name for")
OF_EVERY_USER = OF_A_CLASS[2:]


@dataclass
class Headers:
    of_library: dict
    declared: list
    classes: list
    variables: list
    types: list
    lines: list  # each declaration with all that a program relies on

    def all(self):
        return sorted(sum(self.of_library.values(), []))

    def own(self, library):
        return set(self.of_library.get(library.name, ()))

    def contracts(self):
        return set(self.of_library[CONTRACTS])


def read_headers(root):
    """Of the libraries with a version script, and of the contracts."""
    include = os.path.realpath(root)
    names = {library.name for library in exports.libraries(include)} | {CONTRACTS}
    of_library = {name: listed for name, listed in declarations.library_headers(include).items() if name in names}
    unit = declarations.parse(include, sorted(sum(of_library.values(), [])), declarations.flags_of_dependencies())
    return Headers(of_library,
                   list(declarations.declarations(unit, include)),
                   list(declarations.polymorphic_classes(unit, include)),
                   list(declarations.shared_variables(unit, include)),
                   list(public_types.types(unit, include)),
                   sorted(set(declarations.lines(unit, include))))


def names_of_class(each):
    """What a compiler makes of it besides its functions. Without a key function, tables belong to each library that
    makes such objects, and only the type information is shown, for catching and casting between libraries."""
    if not each.has_key:
        return OF_EVERY_USER
    return OF_A_CLASS if each.has_virtual_base else tuple(name for name in OF_A_CLASS if name != "VTT for")


def promised(headers, library, path):
    """Each symbol that the library shows, with its header and what it is. Of the contracts, the library that defines a
    function shows it."""
    held = exports.held(path)
    symbol_of = {name: symbol for symbol, name in held.items()}
    own, contracts = headers.own(library), headers.contracts()
    found = {}
    for each in headers.declared:
        if each.header in own or (each.header in contracts and each.symbols[0] in held):
            found.update((symbol, (each.header, each.text)) for symbol in each.symbols)
    for each in headers.classes:
        if each.header in own | contracts:
            for name in names_of_class(each):
                if f"{name} {each.name}" in symbol_of:
                    found[symbol_of[f"{name} {each.name}"]] = (each.header, f"class {each.name}")
    for each in headers.variables:
        if each.header in own | contracts and each.symbols[0] in held:
            found[each.symbols[0]] = (each.header, each.text)
            found["_ZGV" + each.symbols[0][2:]] = (each.header, each.text)
    return found


def script_of(root, headers, library, path):
    """The lines of the version script. A symbol stays in the version in which it was published, as long as the major
    number is the same; a new one is promised from the project's version on."""
    symbols = promised(headers, library, path)
    nodes = {"": symbols}
    if library.versioned:
        major, minor, _ = exports.version_of(root)
        before = exports.read(os.path.join(root, library.script))
        current = f"VEMORA_{major}.{minor}"
        nodes = {name: {} for name in [*before.nodes, current] if name.startswith(f"VEMORA_{major}.")}
        for symbol, what in symbols.items():
            node = before.node_of(symbol)
            nodes[node if node in nodes else current][symbol] = what
    return exports.lines_of(exports.Script({name: node for name, node in nodes.items() if node}), [
        f"What {library.file} shows: what its public headers declare, and nothing else.",
        "Written by scripts/write-exports; docs/abi.md says when and how."])
