# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Checks documents against the JSON Schemas of this repository.

Knows the keywords that they use and refuses any other, so that no rule is passed over in silence.
"""

import re

ANNOTATIONS = {"$schema", "$defs", "title", "description"}


def is_integer(value):
    if isinstance(value, bool):
        return False
    return isinstance(value, int) or (isinstance(value, float) and value.is_integer())


TYPES = {
    "object": lambda value: isinstance(value, dict),
    "array": lambda value: isinstance(value, list),
    "string": lambda value: isinstance(value, str),
    "boolean": lambda value: isinstance(value, bool),
    "integer": is_integer,
    "null": lambda value: value is None,
}


def same(one, other):
    return type(one) is type(other) and one == other


class Schema:
    def __init__(self, root):
        self.root = root

    def faults(self, document):
        """What is wrong with a document, each with its place; empty when it is valid."""
        return list(self._check(self.root, document, "$"))

    def _check(self, schema, value, place):
        for keyword in schema:
            if keyword in ANNOTATIONS or keyword in ("then", "else"):
                continue
            rule = getattr(self, "_" + keyword.lstrip("$"), None)
            if rule is None:
                raise NotImplementedError(f"unknown keyword {keyword}")
            yield from rule(schema, value, place)

    def _valid(self, schema, value, place):
        return not list(self._check(schema, value, place))

    def _ref(self, schema, value, place):
        path = schema["$ref"]
        assert path.startswith("#/"), path
        target = self.root
        for step in path[2:].split("/"):
            target = target[step]
        yield from self._check(target, value, place)

    def _type(self, schema, value, place):
        wanted = schema["type"]
        names = [wanted] if isinstance(wanted, str) else wanted
        if not any(TYPES[name](value) for name in names):
            yield f"{place}: is no {' or '.join(names)}"

    def _enum(self, schema, value, place):
        if not any(same(value, allowed) for allowed in schema["enum"]):
            yield f"{place}: is none of {schema['enum']}"

    def _const(self, schema, value, place):
        if not same(value, schema["const"]):
            yield f"{place}: is not {schema['const']}"

    def _minimum(self, schema, value, place):
        if is_integer(value) and value < schema["minimum"]:
            yield f"{place}: is less than {schema['minimum']}"

    def _maximum(self, schema, value, place):
        if is_integer(value) and value > schema["maximum"]:
            yield f"{place}: is more than {schema['maximum']}"

    def _minLength(self, schema, value, place):
        if isinstance(value, str) and len(value) < schema["minLength"]:
            yield f"{place}: is too short"

    def _pattern(self, schema, value, place):
        if isinstance(value, str) and not re.search(schema["pattern"], value):
            yield f"{place}: does not match {schema['pattern']}"

    def _minItems(self, schema, value, place):
        if isinstance(value, list) and len(value) < schema["minItems"]:
            yield f"{place}: has too few elements"

    def _items(self, schema, value, place):
        if isinstance(value, list):
            for index, element in enumerate(value):
                yield from self._check(schema["items"], element, f"{place}[{index}]")

    def _required(self, schema, value, place):
        if isinstance(value, dict):
            for key in schema["required"]:
                if key not in value:
                    yield f"{place}: lacks {key}"

    def _properties(self, schema, value, place):
        if isinstance(value, dict):
            for key, rule in schema["properties"].items():
                if key in value:
                    yield from self._check(rule, value[key], f"{place}.{key}")

    def _additionalProperties(self, schema, value, place):
        rule = schema["additionalProperties"]
        if not isinstance(value, dict):
            return
        for key in value.keys() - schema.get("properties", {}).keys():
            if rule is False:
                yield f"{place}: has an unknown key {key}"
            else:
                yield from self._check(rule, value[key], f"{place}.{key}")

    def _allOf(self, schema, value, place):
        for part in schema["allOf"]:
            yield from self._check(part, value, place)

    def _anyOf(self, schema, value, place):
        if not any(self._valid(part, value, place) for part in schema["anyOf"]):
            yield f"{place}: fits none of the allowed forms"

    def _if(self, schema, value, place):
        branch = "then" if self._valid(schema["if"], value, place) else "else"
        if branch in schema:
            yield from self._check(schema[branch], value, place)
