# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""The version scripts: what each library shows, and in which version it began to."""

import os
import re
import subprocess
from dataclasses import dataclass, field
from glob import glob

NAME = "exports.map"


@dataclass
class Library:
    name: str        # of the target
    folder: str      # where its version script is, below the root
    versioned: bool  # its file and its symbols have a version; otherwise a server can replace it by its own

    @property
    def script(self):
        return os.path.join(self.folder, NAME)

    @property
    def file(self):
        return f"lib{self.name}.so"


@dataclass
class Script:
    """The symbols of each version, the oldest first, each with its header and what it is."""
    nodes: dict = field(default_factory=dict)

    def symbols(self):
        return {symbol: text for node in self.nodes.values() for symbol, text in node.items()}

    def node_of(self, symbol):
        return next((name for name, node in self.nodes.items() if symbol in node), None)


def libraries(root):
    """Those of vemora_export, from the bottom up by name."""
    found = []
    for path in glob(f"{root}/vemora/**/CMakeLists.txt", recursive=True):
        with open(path, encoding="utf-8") as file:
            for name, versioned in re.findall(r"^vemora_export\((\w+)( VERSIONED)?\)", file.read(), re.MULTILINE):
                found.append(Library(name, os.path.relpath(os.path.dirname(path), root), bool(versioned)))
    return sorted(found, key=lambda each: each.name)


def version_of(root):
    """Of the project: what a new symbol is promised from."""
    with open(os.path.join(root, "CMakeLists.txt"), encoding="utf-8") as file:
        return re.search(r"project\(vemora_trigger_manager VERSION (\d+)\.(\d+)\.(\d+)", file.read()).groups()


def read(path):
    """The symbols of each version of a script; what each is stands above it, behind its header."""
    script, node, header, text = Script(), None, "", ""
    if not os.path.exists(path):
        return script
    with open(path, encoding="utf-8") as file:
        for line in file:
            line = line.strip()
            if line.endswith("{"):
                node = script.nodes.setdefault(line[:-1].strip(), {})
            elif line.startswith("#") and node is not None:
                if line.endswith(".h"):
                    header = line[1:].strip()
                else:
                    text = line[1:].strip()
            elif node is not None and re.fullmatch(r"\w+;", line):
                node[line[:-1]] = (header, text)
            elif line.startswith("}"):
                node = None
    return script


def lines_of(script, heading):
    lines = [f"# {line}" for line in heading]
    before = ""
    for number, (name, node) in enumerate(script.nodes.items()):
        lines += ["", f"{name} {{".lstrip(), "  global:"]
        above = (None, None)
        for symbol, (header, text) in sorted(node.items(), key=lambda each: (each[1], each[0])):
            if header != above[0]:
                lines.append(f"    # {header}")
            if (header, text) != above:
                lines.append(f"      # {text}")
            above = (header, text)
            lines.append(f"      {symbol};")
        if number == 0:
            lines += ["  local:", "    *;"]
        lines.append(f"}}{before};")
        before = f" {name}"
    return lines


def file_of(library, folder):
    """The library as it was built or installed somewhere below the folder."""
    found = sorted(glob(f"{folder}/**/{library.file}", recursive=True))
    # The tests build libraries of these names too.
    found = [each for each in found if "tests" not in os.path.relpath(each, folder).split(os.sep)] or found
    if not found:
        raise SystemExit(f"{library.file} is nowhere below {folder}: build first, with scripts/build")
    return found[0]


def shown(path):
    """What a library shows: each symbol with its version, or with none."""
    symbols = {}
    for line in nm(path, "--dynamic", "--defined-only", "--with-symbol-versions"):
        kind, symbol = line.split()[-2:]
        name, _, version = symbol.partition("@")
        if kind != "A":  # the versions themselves
            symbols[name] = version.lstrip("@")
    return symbols


def held(path):
    """Each symbol that a library defines, shown or not, with what it stands for."""
    symbols = [line.split()[-1] for line in nm(path, "--defined-only")]
    return dict(zip(symbols, demangled(symbols)))


def nm(*arguments):
    return subprocess.run(["nm", *arguments], check=True, capture_output=True, text=True).stdout.splitlines()


def demangled(symbols):
    text = "\n".join(symbols)
    return subprocess.run(["c++filt"], input=text, check=True, capture_output=True, text=True).stdout.splitlines()


def so_name(path):
    dynamic = subprocess.run(["readelf", "--dynamic", "--wide", path], check=True, capture_output=True,
                             text=True).stdout
    return re.search(r"\(SONAME\).*\[(.*)\]", dynamic).group(1)
