# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What the public headers declare for a library to define, read by libclang."""

import ctypes
import os
import re
import subprocess
import sys
from dataclasses import dataclass
from glob import glob

from clang.cindex import (AccessSpecifier, AvailabilityKind, Cursor, CursorKind, ExceptionSpecificationKind, Index,
                          LinkageKind, conf)

CLASSES = {CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL}
SCOPES = CLASSES | {CursorKind.NAMESPACE, CursorKind.LINKAGE_SPEC, CursorKind.FRIEND_DECL, CursorKind.UNEXPOSED_DECL}
STRUCTORS = {CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR}
FUNCTIONS = STRUCTORS | {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONVERSION_FUNCTION}
LINKED = FUNCTIONS | {CursorKind.VAR_DECL}
NOEXCEPT = {ExceptionSpecificationKind.BASIC_NOEXCEPT, ExceptionSpecificationKind.COMPUTED_NOEXCEPT}


class Strings(ctypes.Structure):
    """What libclang answers where it has several texts."""
    _fields_ = [("strings", ctypes.c_void_p), ("count", ctypes.c_uint)]


class Text(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("flags", ctypes.c_uint)]


conf.lib.clang_Cursor_getCXXManglings.argtypes = [Cursor]
conf.lib.clang_Cursor_getCXXManglings.restype = ctypes.POINTER(Strings)


@dataclass
class Declaration:
    header: str   # its path below the folder of includes
    line: int
    name: str     # with the scopes that it is in
    text: str     # with all that a caller relies on
    symbols: list


FOR_TESTS = "vemora_testing"  # compiled with the tests that use it: no library shows anything of it


def library_headers(root):
    """The public headers of each library, as the CMakeLists.txt name them."""
    headers = {}
    for path in glob(f"{root}/vemora/**/CMakeLists.txt", recursive=True):
        with open(path, encoding="utf-8") as file:
            listed = re.findall(r"vemora_public_headers\(\s*(\S+)\s+(?:PUBLIC|INTERFACE)\s+([^)]*)\)", file.read())
        for library, names in listed:
            if library == FOR_TESTS:
                continue
            folder = os.path.relpath(os.path.dirname(path), root)
            headers.setdefault(library, []).extend(os.path.join(folder, name) for name in names.split())
    return headers


def parse(include, headers, flags):
    """All headers as one file; each alone is compiled by scripts/check-headers."""
    text = "".join(f"#include <{header}>\n" for header in headers)
    unit = Index.create().parse("headers.cpp", ["-std=c++17", f"-I{include}", *flags], [("headers.cpp", text)])
    faults = [str(each) for each in unit.diagnostics if each.severity >= each.Error]
    if faults:
        sys.exit("the public headers cannot be read:\n" + "\n".join(faults))
    return unit


def flags_of_dependencies():
    """What a compiler needs to read the headers in the source tree."""
    flags = subprocess.run(["pkg-config", "--cflags", "jsoncpp"], check=True, capture_output=True, text=True).stdout
    return [*flags.split(), "-DBOOST_LOG_DYN_LINK"]


def is_linked(cursor):
    """A library has to define it: the headers do not, and a program outside may name it."""
    return (cursor.kind in LINKED and cursor.linkage == LinkageKind.EXTERNAL and
            cursor.availability != AvailabilityKind.NOT_AVAILABLE and  # so libclang calls what is deleted
            not cursor.is_pure_virtual_method() and not cursor.is_default_method() and
            cursor.get_definition() is None and is_open(cursor))


def is_open(cursor):
    """What is private is nobody's to call, but where it is virtual, for classes that are derived from it, or is
    marked by itself, for what the header defines inline."""
    return cursor.access_specifier != AccessSpecifier.PRIVATE or cursor.is_virtual_method() or is_marked(cursor)


def is_marked(cursor):
    return any(child.kind == CursorKind.VISIBILITY_ATTR for child in cursor.get_children())


def walk(cursor, include):
    """Everything in the scopes of the headers in this folder, scopes themselves included."""
    for child in cursor.get_children():
        if cursor.kind == CursorKind.TRANSLATION_UNIT:
            file = child.location.file
            if file is None or not os.path.realpath(file.name).startswith(include + "/"):
                continue
        yield child
        if child.kind in SCOPES:
            yield from walk(child, include)


def declarations(unit, include):
    """Each declaration that a library has to define."""
    for cursor in walk(unit.cursor, include):
        if is_linked(cursor):
            yield Declaration(header_of(cursor, include), cursor.location.line, full_name(cursor), text_of(cursor),
                              symbols_of(cursor))


def header_of(cursor, include):
    return os.path.relpath(os.path.realpath(cursor.location.file.name), include)


def full_name(cursor):
    names = []
    while cursor is not None and cursor.kind != CursorKind.TRANSLATION_UNIT:
        names.append(cursor.displayname)
        cursor = cursor.semantic_parent
    return "::".join(reversed(names))


def text_of(cursor):
    """Such as "bool kuv::A::f(int) const noexcept": what the symbol does not say, and callers rely on, included."""
    if cursor.kind == CursorKind.VAR_DECL:
        return f"{cursor.type.get_canonical().spelling} {full_name(cursor)}"
    result = "" if cursor.kind in STRUCTORS else cursor.result_type.get_canonical().spelling + " "
    const = " const" if cursor.is_const_method() else ""
    # Of a destructor, libclang knows it only where something else asked before.
    says_so = cursor.kind not in STRUCTORS and cursor.exception_specification_kind in NOEXCEPT
    noexcept = " noexcept" if says_so else ""
    return f"{result}{full_name(cursor)}{const}{noexcept}"


def symbols_of(cursor):
    """A constructor or destructor has one symbol for whole objects, one for bases, one for deletion."""
    if cursor.kind not in STRUCTORS:
        return [cursor.mangled_name]
    found = conf.lib.clang_Cursor_getCXXManglings(cursor).contents
    texts = ctypes.cast(found.strings, ctypes.POINTER(Text))
    return [ctypes.string_at(texts[number].data).decode() for number in range(found.count)]


def is_polymorphic(cursor):
    return any(child.is_virtual_method() for child in functions_of(cursor)) or any(
        is_polymorphic(base) for base in bases_of(cursor))


def functions_of(cursor):
    return [child for child in cursor.get_children() if child.kind in FUNCTIONS]


def bases_of(cursor):
    for child in cursor.get_children():
        if child.kind == CursorKind.CXX_BASE_SPECIFIER:
            definition = child.type.get_canonical().get_declaration().get_definition()
            if definition is not None:
                yield definition


def has_virtual_base(cursor):
    return any(child.kind == CursorKind.CXX_BASE_SPECIFIER and conf.lib.clang_isVirtualBase(child)
               for child in cursor.get_children()) or any(has_virtual_base(base) for base in bases_of(cursor))


def key_function(cursor):
    """The function with which the compiler puts the class's table of virtual functions into a library."""
    return next((each for each in functions_of(cursor)
                 if each.is_virtual_method() and not each.is_pure_virtual_method() and is_linked(each)), None)


@dataclass
class Polymorphic_Class:
    header: str
    name: str
    has_key: bool  # otherwise every library that uses it has its own tables and type information
    has_virtual_base: bool


def polymorphic_classes(unit, include):
    for cursor in walk(unit.cursor, include):
        if cursor.kind in CLASSES and cursor.is_definition() and is_polymorphic(cursor):
            yield Polymorphic_Class(header_of(cursor, include), cursor.type.get_canonical().spelling,
                                    key_function(cursor) is not None, has_virtual_base(cursor))


def shared_variables(unit, include):
    """Variables that headers define and show: there is one of each in a process."""
    for cursor in walk(unit.cursor, include):
        if (cursor.kind == CursorKind.VAR_DECL and cursor.linkage == LinkageKind.EXTERNAL and
                (is_marked(cursor) or is_marked(cursor.semantic_parent)) and
                cursor.get_definition() is not None and not cursor.type.is_pod()):
            yield Declaration(header_of(cursor, include), cursor.location.line, full_name(cursor), text_of(cursor),
                              symbols_of(cursor))


def is_visible(cursor):
    """Not inside something private; what is virtual is overridden and called all the same."""
    if not is_open(cursor):
        return False
    scope = cursor.semantic_parent
    while scope is not None and scope.kind in CLASSES:
        if scope.access_specifier == AccessSpecifier.PRIVATE:
            return False
        scope = scope.semantic_parent
    return True


def lines(unit, include):
    """Each function and constant of the headers, with what a program that uses it has taken over from its declaration."""
    for cursor in walk(unit.cursor, include):
        if cursor.kind in FUNCTIONS | {CursorKind.FUNCTION_TEMPLATE} and is_visible(cursor):
            yield f"{header_of(cursor, include)}: {words_before(cursor)}{text_of(cursor)}{words_behind(cursor)}"
        elif cursor.kind == CursorKind.VAR_DECL and cursor.type.is_const_qualified() and is_visible(cursor):
            yield f"{header_of(cursor, include)}: {text_of(cursor)}{value_of(cursor)}"


def words_before(cursor):
    virtual = "virtual " if cursor.is_virtual_method() else ""
    static = "static " if cursor.is_static_method() else ""
    inline = "inline " if cursor.get_definition() is not None and not cursor.is_default_method() else ""
    return f"{inline}{virtual}{static}"


def words_behind(cursor):
    if cursor.is_pure_virtual_method():
        return " = 0"
    if cursor.availability == AvailabilityKind.NOT_AVAILABLE:
        return " = delete"
    return " = default" if cursor.is_default_method() else ""


def value_of(cursor):
    """As it is written: programs have it compiled in."""
    words = [token.spelling for token in cursor.get_tokens()]
    return " = " + " ".join(words[words.index("=") + 1:]) if "=" in words else ""
