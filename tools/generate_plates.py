#!/usr/bin/env python3
"""Make the embedded plate definitions VEKO.xml, PLATE_A.xml and PLATE_B.xml.

No measured fibre positions are shipped, so the three files describe the
nominal geometry, computed here. All positions are plate millimetres, x to the
right and y upwards. The output is the same, byte for byte, on every run.

Usage:
    generate_plates.py OUTPUT_DIR    write the three files into OUTPUT_DIR
    generate_plates.py --check DIR   compare the files in DIR with what would
                                     be written; name each one that differs or
                                     is missing and exit with status 1
"""

import argparse
import math
import string
import sys
from dataclasses import dataclass
from pathlib import Path

DATA_MODEL_VERSION = "8.00"

# The VEKO body is a hexagon of close-packed fibres, 27 across its diameter.
HEXAGON_RADIUS = 13  # lattice steps from the middle fibre to a corner
PITCH_MM = 2.499 / HEXAGON_RADIUS  # between neighbouring fibres
BUNDLE_MIDDLE_Y_MM = -20.0  # the bundle sits below the plate origin
ROW_LETTERS = string.ascii_uppercase + "a"  # the middle row has 27 places

# Small groups of sky fibres stand in a ring around the body.
SKY_GROUPS = 8
SKY_RING_RADIUS_MM = 7.885  # from the bundle's middle to a group's middle
SKY_FIBRE_SPACING_MM = 0.200  # from a group's middle to the six around it
ROWS_PER_SKY_GROUP = 3  # a sky group follows every third row along the slit

# These fibres keep the identifiers they have at the instrument; the others
# are numbered along the slit with the identifiers that remain.
FIXED_IDENTIFIERS = {"C07": 160, "C14": 304, "27A": 504, "26F": 573}
BROKEN_FIBRES = {"C07", "27A", "26F"}

SLIT_BLOCK_PLACES = 24  # fibres in one block of the spectrograph slit

# Positioner plates: the buttons' home places, in staggered tiers just inside
# the rim of the field. One degree of field angle is 205.766 mm.
POSITIONER_FIBRES = 1008
POSITIONER_TIER_RADII_MM = (205.0, 201.0, 197.0)
POSITIONER_BUNDLES = 20  # small integral-field units, on plate B only
POSITIONER_BUNDLE_RADIUS_MM = 193.0


@dataclass(frozen=True)
class Fibre:
    """One fibre of a plate: its identifier, place (mm), name and health."""

    identifier: int
    x_mm: float
    y_mm: float
    name: str
    broken: bool = False


def veko_row(row):
    """Return [(name, x, y)] of one row of the VEKO body, x ascending, in mm.

    Row 1 is the uppermost. Each row runs down to the right at 30 degrees to
    the x axis and crosses the vertical diameter, the column C01 to C27, once.
    The fibre in that column is named after it, and its letter is left out.
    """
    # Steps up the column, and along the row from the column. The two
    # directions are 120 degrees apart, so the third side of the hexagon
    # bounds their difference.
    up = HEXAGON_RADIUS + 1 - row
    first = max(-HEXAGON_RADIUS, up - HEXAGON_RADIUS)
    last = min(HEXAGON_RADIUS, up + HEXAGON_RADIUS)
    fibres = []
    for letter, along in zip(ROW_LETTERS, range(first, last + 1)):
        name = f"C{row:02d}" if along == 0 else f"{row}{letter}"
        x_mm = along * PITCH_MM * math.sqrt(3.0) / 2.0
        y_mm = BUNDLE_MIDDLE_Y_MM + (up - along / 2.0) * PITCH_MM
        fibres.append((name, x_mm, y_mm))
    return fibres


def sky_group(group):
    """Return [(name, x, y)] of sky group 0 to 7, counted anticlockwise from +x.

    The first of the seven fibres is the group's middle; the six around it
    start above the middle and also go anticlockwise. Positions are in mm.
    """
    ring_angle = math.radians(group * 360.0 / SKY_GROUPS)
    middle_x = SKY_RING_RADIUS_MM * math.cos(ring_angle)
    middle_y = BUNDLE_MIDDLE_Y_MM + SKY_RING_RADIUS_MM * math.sin(ring_angle)
    places = [(middle_x, middle_y)]
    for sixth in range(6):
        angle = math.radians(90.0 + sixth * 60.0)
        places.append((middle_x + SKY_FIBRE_SPACING_MM * math.cos(angle),
                       middle_y + SKY_FIBRE_SPACING_MM * math.sin(angle)))
    first_number = group * len(places) + 1
    return [(f"S{first_number + i:02d}", x, y) for i, (x, y) in enumerate(places)]


def veko_fibres():
    """Return the 603 fibres of the VEKO in ascending identifier.

    The slit takes the rows from the top of the bundle downwards, with the sky
    groups spread evenly between them.
    """
    along_slit = []
    for row in range(1, 2 * HEXAGON_RADIUS + 2):
        along_slit += veko_row(row)
        group, rows_left = divmod(row, ROWS_PER_SKY_GROUP)
        if rows_left == 0 and group <= SKY_GROUPS:
            along_slit += sky_group(group - 1)

    fixed = set(FIXED_IDENTIFIERS.values())
    free = (i for i in range(1, len(along_slit) + 1) if i not in fixed)
    fibres = []
    for name, x_mm, y_mm in along_slit:
        identifier = FIXED_IDENTIFIERS[name] if name in FIXED_IDENTIFIERS else next(free)
        fibres.append(Fibre(identifier, x_mm, y_mm, name, name in BROKEN_FIBRES))
    return sorted(fibres, key=lambda fibre: fibre.identifier)


def positioner_fibres():
    """Return the 1008 fibres common to both positioner plates, ids from 0."""
    fibres = []
    for i in range(POSITIONER_FIBRES):
        radius = POSITIONER_TIER_RADII_MM[i % len(POSITIONER_TIER_RADII_MM)]
        angle = math.radians(i * 360.0 / POSITIONER_FIBRES)
        fibres.append(Fibre(i, radius * math.cos(angle), radius * math.sin(angle), f"F{i:04d}"))
    return fibres


def positioner_bundles():
    """Return the 20 bundles of plate B, numbered on from the fibres."""
    bundles = []
    for i in range(POSITIONER_BUNDLES):
        angle = math.radians((i + 0.5) * 360.0 / POSITIONER_BUNDLES)
        bundles.append(Fibre(POSITIONER_FIBRES + i,
                             POSITIONER_BUNDLE_RADIUS_MM * math.cos(angle),
                             POSITIONER_BUNDLE_RADIUS_MM * math.sin(angle),
                             f"M{i + 1:02d}"))
    return bundles


def millimetres(value):
    """Format a length in mm with three decimals; zero never has a sign."""
    text = f"{value:.3f}"
    return "0.000" if text == "-0.000" else text


def plate_definition(title, fibres):
    """Return the plate definition document of the given fibres as text.

    Working fibres fill the slit's blocks in the order given; a broken fibre
    has no place in the slit, which is written "0-0".
    """
    lines = [
        '<?xml version="1.0" encoding="UTF-8"?>',
        f"<!-- {title}; positions in mm. Written by tools/generate_plates.py. -->",
        '<plate_definition centre_x="0" centre_y="0" orientation="0"'
        f' datamver="{DATA_MODEL_VERSION}">',
    ]
    places_taken = 0
    for fibre in fibres:
        if fibre.broken:
            status, slit_entry = "broken", "0-0"
        else:
            block, place = divmod(places_taken, SLIT_BLOCK_PLACES)
            status, slit_entry = "enabled", f"{block + 1}-{place + 1}"
            places_taken += 1
        lines.append(
            f'  <fibre id="{fibre.identifier}"'
            f' pos_x="{millimetres(fibre.x_mm)}" pos_y="{millimetres(fibre.y_mm)}"'
            f' fibre_name="{fibre.name}" type="Spectrograph"'
            f' status="{status}" slit_entry="{slit_entry}"/>')
    lines.append("</plate_definition>")
    return "\n".join(lines) + "\n"


def plate_files():
    """Return {file name: content as bytes} of the three plate definitions."""
    common = positioner_fibres()
    documents = {
        "VEKO.xml": plate_definition("VEKO, the large integral-field unit", veko_fibres()),
        "PLATE_A.xml": plate_definition("Positioner plate A, home places", common),
        "PLATE_B.xml": plate_definition("Positioner plate B, home places",
                                        common + positioner_bundles()),
    }
    return {name: text.encode("ascii") for name, text in documents.items()}


def main():
    """Write or check the plate files; return the exit status."""
    parser = argparse.ArgumentParser(description="Make the embedded plate definitions.")
    parser.add_argument("--check", action="store_true",
                        help="compare with the files in the directory, write nothing")
    parser.add_argument("directory", type=Path)
    arguments = parser.parse_args()

    status = 0
    for name, content in plate_files().items():
        path = arguments.directory / name
        if not arguments.check:
            path.write_bytes(content)
        elif not path.is_file() or path.read_bytes() != content:
            print(f"{path} is not what generate_plates.py makes", file=sys.stderr)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
