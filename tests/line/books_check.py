#!/usr/bin/env python3
"""Checks that each record is one by the schema, and that a table of comma-separated values says the same.

usage: books_check.py SCHEMA RECORDS.jsonl TABLE.csv
"""
import csv
import json
import re
import sys

import jsonschema

# As the table shows them: a control character would tell a terminal something.
CONTROL = re.compile("[\x00-\x1f\x7f\x80-\x9f]")


def text_of(value):
    if value is None:
        return ""
    if isinstance(value, bool):
        return "true" if value else "false"
    return CONTROL.sub("?", str(value))


def leaves(record):
    """All that is in a record, by the name of its column."""
    found = {}
    for key, value in record.items():
        if isinstance(value, dict):
            found.update({f"{key}_{inner}": text_of(one) for inner, one in value.items()})
        else:
            found[key] = text_of(value)
    return found


def columns_of(schema):
    for key, what in schema["properties"].items():
        inner = [*what.get("properties", {}), *what.get("propertyNames", {}).get("enum", [])]
        yield from [f"{key}_{one}" for one in inner] or [key]


def main():
    schema = json.load(open(sys.argv[1]))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    lines = open(sys.argv[2], encoding="utf-8").read().split("\n")[:-1]
    rows = list(csv.DictReader(open(sys.argv[3], newline="", encoding="utf-8")))
    assert set(rows[0]) == set(columns_of(schema)), set(rows[0]) ^ set(columns_of(schema))
    assert len(lines) == len(rows), (len(lines), len(rows))
    for line, row in zip(lines, rows):
        record = json.loads(line)
        for error in validator.iter_errors(record):
            sys.exit(f"{record.get('attempt')}: {error.json_path}: {error.message}")
        told = leaves(record)
        for column, value in row.items():
            assert value == told.get(column, ""), (record["attempt"], column, value, told.get(column))
    print(f"{len(lines)} records")


main()
