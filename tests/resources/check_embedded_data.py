#!/usr/bin/env python3
"""Holds the five embedded data files to the figures that they must meet.

Usage: check_embedded_data.py RESOURCES_DIR. The checks share no code with the script that makes the plate definitions;
that script is only run, to prove that the committed files are its output. Lengths are millimetres.
"""

import math
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from collections import Counter
from pathlib import Path

GENERATOR = Path(__file__).resolve().parents[2] / "tools" / "generate_plates.py"
PLATE_FILES = ("VEKO.xml", "PLATE_A.xml", "PLATE_B.xml")

PITCH = 2.499 / 13  # between neighbouring fibres of the VEKO body
SKY_RADIUS, SKY_SPACING = 7.885, 0.200  # of the sky groups' middles, and from there to their other fibres
ROUNDING = 0.0005000001  # of one position to three decimals
FIELD_RADIUS = 202.841 + 3.0191 - 0.0995944  # 1 degree of field angle

# Values of the configuration, with what the comment right before each says.
CONFIGURATION = {
    "configure_version": ("3.3.5", "must equal pos::configure_version"),
    "default_epoch": ("2016.0", "Julian epoch given to targets that the program generates"),
    "telescope": (None, "telescope"),
    "telescope/east_longitude": ("-17.881639", "site longitude, degrees, east positive"),
    "telescope/latitude": ("28.760583", "site latitude, degrees"),
    "telescope/height": ("2332.0", "height above mean sea level, metres"),
    "telescope/horizon_limit": ("5.0", "elevation in degrees below which refraction is no longer computed"),
    "telescope/focal_plane_map": (":/focal_plane_map.xml", "file with the sky-to-focal-plane mapping"),
    "telescope/rotator_low_limit": ("-135.0", "lower limit of the rotator motion, degrees"),
    "telescope/rotator_high_limit": ("135.0", "upper limit of the rotator motion, degrees"),
    "telescope/optimum_rotator_angle": (None, "optimum rotator angles"),
    "telescope/optimum_rotator_angle/plate_a":
        ("-25.0", "rotator angle (degrees) at the centre of the range of best image quality for plate A"),
    "telescope/optimum_rotator_angle/plate_b": ("25.0", "the same for plate B"),
    "telescope/rotator_offset":
        ("0.0", "offset (degrees) between parallactic and rotator angle at field position angle zero: "
                "rotator angle = offset - parallactic angle"),
    "plate_a_definition": (":/PLATE_A.xml", "plate A definition file (not read by this program)"),
    "plate_b_definition": (":/PLATE_B.xml", "plate B definition file (not read by this program)"),
    "veko_definition": (":/VEKO.xml", "VEKO plate definition file"),
    "mifu_dither": (None, "dither patterns of the small integral-field units (not read by this program)"),
    "veko_dither": (None, "dither patterns of the VEKO (not read by this program)"),
}
# Number of exposures by pattern, distance of fibres by unit in arcseconds: PITCH at about 17.7 arcsec/mm, and half of it.
DITHER_PATTERNS = {"pattern_3": 3, "pattern_4": 4, "pattern_5": 5, "pattern_6": 6, "pattern_-3": 3}
DITHER_PITCHES = {"mifu_dither": 1.7, "veko_dither": 3.4}

RESOURCES = Path(sys.argv[1]).resolve()


def root_of(name):
    """The document element, with comments as children."""
    builder = ElementTree.TreeBuilder(insert_comments=True)
    return ElementTree.parse(RESOURCES / name, ElementTree.XMLParser(target=builder)).getroot()


def fibres_of(name):
    return [child for child in root_of(name) if child.tag is not ElementTree.Comment]


def place(fibre):
    return float(fibre.get("pos_x")), float(fibre.get("pos_y"))


def identifiers(fibres):
    return [int(fibre.get("id")) for fibre in fibres]


class Generator(unittest.TestCase):
    """The committed plate definitions are what the script makes."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)

    def complaints(self, *arguments):
        result = subprocess.run([sys.executable, GENERATOR, *arguments], capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return [name for name in PLATE_FILES if name in result.stderr]

    def test_it_writes_the_committed_bytes(self):
        self.assertEqual(self.complaints("--check", RESOURCES), [])
        self.assertEqual(self.complaints(self.scratch), [])
        self.assertEqual({path.name: path.read_bytes() for path in self.scratch.iterdir()},
                         {name: (RESOURCES / name).read_bytes() for name in PLATE_FILES})

    def test_check_names_the_files_that_are_missing_or_differ(self):
        self.assertEqual(self.complaints("--check", self.scratch), list(PLATE_FILES))
        self.assertEqual(list(self.scratch.iterdir()), [])
        for changed in PLATE_FILES:
            for name in PLATE_FILES:
                shutil.copyfile(RESOURCES / name, self.scratch / name)
            with (self.scratch / changed).open("ab") as file:
                file.write(b"\n")
            self.assertEqual(self.complaints("--check", self.scratch), [changed])


class PlateDefinitions(unittest.TestCase):
    """What holds for the three plate definitions."""

    def test_files_are_ascii_with_unix_line_ends_and_a_final_newline(self):
        for name in (*PLATE_FILES, "configure.xml", "focal_plane_map.xml"):
            self.assertRegex((RESOURCES / name).read_bytes(), rb"\A[\n -~]*>\n\Z", name)

    def test_fibres_have_the_same_attributes_and_ascend(self):
        for name in PLATE_FILES:
            root, fibres = root_of(name), fibres_of(name)
            self.assertEqual((root.tag, root.attrib), ("plate_definition", {
                "centre_x": "0", "centre_y": "0", "orientation": "0", "datamver": "8.00"}))
            for fibre in fibres:
                self.assertEqual((fibre.tag, set(fibre.attrib)), ("fibre", {
                    "id", "pos_x", "pos_y", "fibre_name", "type", "status", "slit_entry"}))
                self.assertEqual(fibre.get("type"), "Spectrograph")
                self.assertIn(fibre.get("status"), ("enabled", "broken"))
                for axis in ("pos_x", "pos_y"):
                    self.assertRegex(fibre.get(axis), r"\A(?!-0\.000)-?(0|[1-9][0-9]*)\.[0-9]{3}\Z")
                self.assertLessEqual(math.hypot(*place(fibre)), FIELD_RADIUS)
            self.assertEqual(identifiers(fibres), sorted(set(identifiers(fibres))))
            for unique in ({fibre.get("fibre_name") for fibre in fibres}, set(map(place, fibres))):
                self.assertEqual(len(unique), len(fibres))

    def test_slit_entries_follow_the_identifiers(self):
        for name in PLATE_FILES:
            working = [tuple(map(int, fibre.get("slit_entry").split("-"))) for fibre in fibres_of(name)
                       if fibre.get("status") == "enabled"]
            self.assertEqual({fibre.get("slit_entry") for fibre in fibres_of(name) if fibre.get("status") == "broken"},
                             {"0-0"} if name == "VEKO.xml" else set())
            # Every block is filled from its first place; only the last may be short.
            lengths = Counter(block for block, _ in working)
            self.assertEqual(working, [(block, slit) for block in range(1, len(lengths) + 1)
                                       for slit in range(1, lengths[block] + 1)])
            self.assertEqual(len({lengths[block] for block in range(1, len(lengths))}), 1)


class Veko(unittest.TestCase):
    """The large integral-field unit's bundle."""

    def setUp(self):
        self.fibres = {fibre.get("fibre_name"): fibre for fibre in fibres_of("VEKO.xml")}

    def expect_at(self, name, x, y):
        for found, exact in zip(place(self.fibres[name]), (x, y)):
            self.assertAlmostEqual(found, exact, delta=ROUNDING, msg=name)

    def test_numbers_of_fibres(self):
        self.assertEqual(identifiers(self.fibres.values()), list(range(1, 604)))
        given = {"C14": 304, "C07": 160, "26F": 573, "27A": 504}
        self.assertEqual({name: int(self.fibres[name].get("id")) for name in given}, given)
        self.assertEqual({name for name, fibre in self.fibres.items() if fibre.get("status") == "broken"},
                         {"C07", "26F", "27A"})

    def test_extents(self):
        for axis, extent in (("pos_x", ["-8.058", "8.058"]), ("pos_y", ["-28.085", "-11.915"])):
            texts = sorted((fibre.get(axis) for fibre in self.fibres.values()), key=float)
            self.assertEqual([texts[0], texts[-1]], extent)

    def test_the_body_is_a_hexagon_of_rows_that_fall_by_30_degrees(self):
        # Row n crosses the column x = 0 at its fibre Cn; the others are lettered in ascending x, the column's place too.
        for row in range(1, 28):
            below = row - 14  # the middle row
            columns = range(max(-13, -13 - below), min(13, 13 - below) + 1)
            for letter, column in zip("ABCDEFGHIJKLMNOPQRSTUVWXYZa", columns):
                self.expect_at(f"{row}{letter}" if column else f"C{row:02}", column * PITCH * math.sqrt(3) / 2,
                               -20 - (below + column / 2) * PITCH)

    def test_the_sky_is_seen_by_eight_groups_of_seven_consecutive_names_around_the_body(self):
        directions = set()
        for first in range(1, 57, 7):
            group = {name: place(self.fibres[name]) for name in (f"S{n:02}" for n in range(first, first + 7))}
            x, y = (sum(axis) / 7 for axis in zip(*group.values()))
            direction = round(math.degrees(math.atan2(y + 20, x)) / 45) * 45
            directions.add(direction % 360)
            middle = (SKY_RADIUS * math.cos(math.radians(direction)),
                      SKY_RADIUS * math.sin(math.radians(direction)) - 20)
            around = [(0, 0)] + [(SKY_SPACING * math.cos(angle), SKY_SPACING * math.sin(angle))
                                 for angle in map(math.radians, range(30, 390, 60))]
            for dx, dy in around:
                name = min(group, key=lambda n: math.dist(group[n], (middle[0] + dx, middle[1] + dy)))
                self.expect_at(name, middle[0] + dx, middle[1] + dy)
                del group[name]
        self.assertEqual(directions, set(range(0, 360, 45)))


class PositionerPlates(unittest.TestCase):
    """Plates A and B."""

    def test_plate_b_is_plate_a_and_twenty_bundles(self):
        plate_a, plate_b = fibres_of("PLATE_A.xml"), fibres_of("PLATE_B.xml")
        self.assertEqual(identifiers(plate_b), list(range(1028)))
        self.assertEqual([fibre.attrib for fibre in plate_a], [fibre.attrib for fibre in plate_b[:1008]])
        self.assertEqual({fibre.get("status") for fibre in plate_b}, {"enabled"})

    def test_homes_stand_all_around_the_rim_and_keep_a_distance(self):
        places = [place(fibre) for fibre in fibres_of("PLATE_B.xml")]
        self.assertGreater(min(math.hypot(*home) for home in places), 0.9 * FIELD_RADIUS)
        for members in (places[:1008], places[1008:]):
            angles = sorted(math.degrees(math.atan2(y, x)) % 360 for x, y in members)
            gaps = [b - a for a, b in zip(angles, angles[1:] + [angles[0] + 360])]
            self.assertLess(max(gaps), 1.01 * 360 / len(members))
        self.assertGreater(min(math.dist(a, b) for i, a in enumerate(places) for b in places[:i]), 3.5)


class Configuration(unittest.TestCase):
    """The default configuration, and the focal-plane map that it names."""

    def elements(self, parent=None, prefix=""):
        """(path, element, what precedes it) of all elements."""
        previous = None
        for child in root_of("configure.xml") if parent is None else parent:
            if child.tag is not ElementTree.Comment:
                yield prefix + child.tag, child, previous
                yield from self.elements(child, f"{prefix}{child.tag}/")
            previous = child

    def test_values_are_the_defaults_to_the_letter_and_nothing_else_is_there(self):
        self.assertEqual(root_of("configure.xml").attrib, {"datamver": "8.00"})
        patterns = [f"{table}/{pattern}{end}" for table in DITHER_PITCHES for pattern in DITHER_PATTERNS
                    for end in ("", "/x", "/y")]
        self.assertEqual(sorted(path for path, _, _ in self.elements()), sorted([*CONFIGURATION, *patterns]))
        for path, element, _ in self.elements():
            value = CONFIGURATION.get(path, (None, ""))[0]
            if value is not None:
                self.assertEqual(element.text, value, path)
        self.assertEqual((RESOURCES / "configure.xml").stat().st_size, 3802)

    def test_a_comment_before_every_element_explains_it(self):
        for path, element, previous in self.elements():
            if element.tag not in ("x", "y"):  # explained once, before the tables
                self.assertIs(previous.tag, ElementTree.Comment, path)
                self.assertRegex(" ".join(previous.text.split()), re.escape(CONFIGURATION.get(path, (None, ""))[1]) or ".")
        text = " ".join((RESOURCES / "configure.xml").read_text(encoding="ascii").split())
        self.assertRegex(text.split("<configure ")[0], r"<!-- Default configuration\b.* --> \Z")
        for phrase in ("x and y hold the telescope offsets in arcseconds", "along the positioner's x and y axes",
                       "at position angle zero y points north and x east"):
            self.assertIn(phrase, text.split("<mifu_dither>")[0])

    def test_the_focal_plane_map(self):
        root = root_of("focal_plane_map.xml")
        zero = {"x0": "0.0", "y0": "0.0", "r0": "0.0"}
        self.assertEqual([(node.tag, node.attrib) for node in root.iter() if node.tag is not ElementTree.Comment], [
            ("focal_plane_map", {"datamver": "8.00", "focal_length": "11724.24"}), ("optical_axis", {}),
            ("PLATE_A", zero), ("PLATE_B", zero), ("VEKO", zero),
            ("distortion_coefficients", {"c1": "202.841", "c3": "3.0191", "c5": "-0.0995944", "c7": "0.0"})])


class DitherPatterns(unittest.TestCase):
    """The dither tables of the default configuration."""

    def offsets(self, table, pattern):
        """The pattern's [(x, y)] in arcseconds."""
        texts = [root_of("configure.xml").find(f"{table}/{pattern}/{axis}").text for axis in "xy"]
        for text in texts:
            self.assertRegex(text, r"\A-?\d+\.\d\d( -?\d+\.\d\d)*\Z")
        return list(zip(*([float(word) for word in text.split(" ")] for text in texts)))

    def test_exposures_fall_into_the_gaps_between_fibres(self):
        for table, pitch in DITHER_PITCHES.items():
            # However the offsets are moved by whole fibre distances, no two exposures put fibres closer than a quarter
            # of that distance.
            lattice = [(i * pitch * math.sqrt(3) / 2, (j + i / 2) * pitch) for i in range(-3, 4) for j in range(-4, 5)]
            for pattern, exposures in DITHER_PATTERNS.items():
                offsets = self.offsets(table, pattern)
                self.assertEqual((len(offsets), offsets[0]), (exposures, (0, 0)), pattern)
                self.assertLess(max(math.hypot(*offset) for offset in offsets), pitch, pattern)
                self.assertGreater(min(math.dist((a[0] - b[0], a[1] - b[1]), node) for i, a in enumerate(offsets)
                                       for b in offsets[:i] for node in lattice), 0.25 * pitch, pattern)

    def test_three_points_make_an_equilateral_triangle_on_gap_centres_and_its_mirror_image(self):
        for table, pitch in DITHER_PITCHES.items():
            a, b, c = self.offsets(table, "pattern_3")
            for side in (math.dist(a, b), math.dist(b, c), math.dist(c, a)):
                self.assertAlmostEqual(side, pitch / math.sqrt(3), delta=0.015)
            self.assertEqual([(-x, y) for x, y in (a, b, c)], self.offsets(table, "pattern_-3"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
