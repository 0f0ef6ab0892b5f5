"""Writes the places of a configured document's first field as the initialisers that floor.cpp includes.

Usage: tabulate_places.py CONFIGURED_DOCUMENT TABLE
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

NUMBERS = ("fibreid", "configid", "targra", "targdec", "targepoch", "targx", "targy", "ifu_pa")


def main(document: str, table: str) -> None:
    field = ElementTree.parse(document).getroot().find("observation/fields/field")
    placed = [target for target in field.findall("target") if target.get("ifu_spaxel")]
    placed.sort(key=lambda target: int(target.get("configid")))
    rows = []
    for target in placed:
        texts = (f'"{target.get(name, "")}"' for name in ("ifu_spaxel", "targuse", "targclass"))
        rows.append("{" + ", ".join([*texts, *(target.get(name) for name in NUMBERS)]) + "},\n")
    pathlib.Path(table).write_text("".join(rows))


main(*sys.argv[1:])
