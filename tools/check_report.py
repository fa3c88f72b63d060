#!/usr/bin/env python3
"""Read the lines of a report and hold each against its schema:
tools/check_report.py SCHEMA REPORT

Knows the words that doc/report.schema.json uses, and fails on any other. Prints the
number of lines.
"""
import json
import pathlib
import re
import sys

TYPES = {"string": str, "integer": int, "number": (int, float), "object": dict}
NOTES = {"description", "title", "$schema"}


def fault(value, schema, place):
    """The first thing wrong with a value, or None."""
    for word, rule in schema.items():
        if word in NOTES:
            continue
        if word == "type":
            wrong = not isinstance(value, TYPES[rule]) or isinstance(value, bool)
        elif word == "enum":
            wrong = value not in rule
        elif word == "const":
            wrong = value is not rule
        elif word == "minimum":
            wrong = value < rule
        elif word == "maximum":
            wrong = value > rule
        elif word == "pattern":
            wrong = not re.search(rule, value)
        elif word == "required":
            wrong = not set(rule) <= value.keys()
        elif word == "additionalProperties":
            wrong = not value.keys() <= schema["properties"].keys()
        elif word == "properties":
            for name, part in rule.items():
                if name in value and (inner := fault(value[name], part, name)):
                    return inner
            wrong = False
        else:
            return f"{word} is not known here"
        if wrong:
            return f"{place}: {word} {rule}: {value}"
    return None


def unique(pairs):
    members = dict(pairs)
    if len(members) != len(pairs):
        raise ValueError("a member comes twice")
    return members


def main():
    schema = json.loads(pathlib.Path(sys.argv[1]).read_text())
    count = 0
    for line in pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").splitlines():
        count += 1
        wrong = fault(json.loads(line, object_pairs_hook=unique), schema, "line")
        if wrong:
            sys.exit(f"line {count}: {wrong}")
    print(count)


main()
