"""The tables of tests/golden/, worked out by another program."""

import csv
import pathlib

PROJECT = pathlib.Path(__file__).resolve().parents[2]


def table(name):
    """The rows of a table, as dictionaries."""
    lines = (PROJECT / "tests" / "golden" / name).read_text().splitlines()
    return list(csv.DictReader(line for line in lines if not line.startswith("#")))


def field(example):
    """The first field of a configured example."""
    return next(row for row in table("example_fields.csv") if row["example"] == example)
