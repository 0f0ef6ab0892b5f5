#!/usr/bin/env python3
"""Check the five embedded data files against the figures they must meet.

Usage: check_embedded_data.py RESOURCES_DIR [unittest options]

The checks read the files alone and share no code with the script that makes
the plate definitions; that script is only run, to prove that the committed
files are its output. Lengths are millimetres unless a name says otherwise.
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
ALL_FILES = PLATE_FILES + ("configure.xml", "focal_plane_map.xml")
FIBRE_ATTRIBUTES = {"id", "pos_x", "pos_y", "fibre_name", "type", "status", "slit_entry"}

PITCH = 2.499 / 13  # between neighbouring fibres of the VEKO body
SKY_SPACING = 0.200  # from the middle of a sky group to its other fibres
ROUNDING = 0.0005000001  # of one position to three decimals
DISTANCE_ROUNDING = 2.0 * math.sqrt(2.0) * ROUNDING  # of a distance of two positions
FIELD_RADIUS = 202.841 + 3.0191 - 0.0995944  # 1 degree of field angle

VEKO_PITCH_ARCSEC = 3.4  # PITCH at about 17.7 arcsec/mm
MIFU_PITCH_ARCSEC = 1.7  # the small units' fibres stand half as far apart

CONFIGURATION_DEFAULTS = {
    "configure_version": "3.3.5",
    "default_epoch": "2016.0",
    "telescope/east_longitude": "-17.881639",
    "telescope/latitude": "28.760583",
    "telescope/height": "2332.0",
    "telescope/horizon_limit": "5.0",
    "telescope/focal_plane_map": ":/focal_plane_map.xml",
    "telescope/rotator_low_limit": "-135.0",
    "telescope/rotator_high_limit": "135.0",
    "telescope/optimum_rotator_angle/plate_a": "-25.0",
    "telescope/optimum_rotator_angle/plate_b": "25.0",
    "telescope/rotator_offset": "0.0",
    "plate_a_definition": ":/PLATE_A.xml",
    "plate_b_definition": ":/PLATE_B.xml",
    "veko_definition": ":/VEKO.xml",
}

# What the comment right before each element must say.
CONFIGURATION_COMMENTS = {
    "configure_version": "must equal pos::configure_version",
    "default_epoch": "Julian epoch given to targets that the program generates",
    "telescope": "telescope",
    "telescope/east_longitude": "site longitude, degrees, east positive",
    "telescope/latitude": "site latitude, degrees",
    "telescope/height": "height above mean sea level, metres",
    "telescope/horizon_limit":
        "elevation in degrees below which refraction is no longer computed",
    "telescope/focal_plane_map": "file with the sky-to-focal-plane mapping",
    "telescope/rotator_low_limit": "lower limit of the rotator motion, degrees",
    "telescope/rotator_high_limit": "upper limit of the rotator motion, degrees",
    "telescope/optimum_rotator_angle": "optimum rotator angles",
    "telescope/optimum_rotator_angle/plate_a":
        "rotator angle (degrees) at the centre of the range of best image quality for plate A",
    "telescope/optimum_rotator_angle/plate_b": "the same for plate B",
    "telescope/rotator_offset":
        "offset (degrees) between parallactic and rotator angle at field position angle zero: "
        "rotator angle = offset - parallactic angle",
    "plate_a_definition": "plate A definition file (not read by this program)",
    "plate_b_definition": "plate B definition file (not read by this program)",
    "veko_definition": "VEKO plate definition file",
    "mifu_dither":
        "dither patterns of the small integral-field units (not read by this program)",
    "veko_dither": "dither patterns of the VEKO (not read by this program)",
}

DITHER_PATTERNS = {"pattern_3": 3, "pattern_4": 4, "pattern_5": 5, "pattern_6": 6,
                   "pattern_-3": 3}

RESOURCES = None  # the directory given on the command line


def root_of(name):
    """Parse one file, comments kept as children, and return its root."""
    builder = ElementTree.TreeBuilder(insert_comments=True)
    return ElementTree.parse(RESOURCES / name, ElementTree.XMLParser(target=builder)).getroot()


def elements_in(parent):
    """Return the child elements of parent, without its comments."""
    return [child for child in parent if child.tag is not ElementTree.Comment]


def distance(a, b):
    """Return the distance of two (x, y) points."""
    return math.hypot(a[0] - b[0], a[1] - b[1])


class Fibre:
    """A fibre element's values; the position is a pair of numbers."""

    def __init__(self, element):
        self.attributes = dict(element.attrib)
        self.identifier = int(element.get("id"))
        self.place = (float(element.get("pos_x")), float(element.get("pos_y")))
        self.name = element.get("fibre_name")
        self.status = element.get("status")
        self.slit = tuple(int(part) for part in element.get("slit_entry").split("-"))


def fibres_of(name):
    """Return the fibres of a plate definition in document order."""
    return [Fibre(element) for element in elements_in(root_of(name))]


class Generator(unittest.TestCase):
    """The committed plate definitions are what the script makes."""

    def run_generator(self, *arguments):
        return subprocess.run([sys.executable, str(GENERATOR), *map(str, arguments)],
                              capture_output=True, text=True, check=False)

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)

    def test_committed_files_are_its_output(self):
        result = self.run_generator("--check", RESOURCES)
        self.assertEqual((0, "", ""), (result.returncode, result.stdout, result.stderr))

    def test_writes_the_committed_bytes(self):
        self.assertEqual(0, self.run_generator(self.scratch).returncode)
        self.assertEqual(set(PLATE_FILES), {path.name for path in self.scratch.iterdir()})
        for name in PLATE_FILES:
            with self.subTest(file=name):
                self.assertEqual((RESOURCES / name).read_bytes(),
                                 (self.scratch / name).read_bytes())

    def test_check_names_exactly_the_file_that_differs(self):
        for changed in PLATE_FILES:
            with self.subTest(file=changed):
                for name in PLATE_FILES:
                    shutil.copyfile(RESOURCES / name, self.scratch / name)
                with (self.scratch / changed).open("ab") as file:
                    file.write(b"\n")
                result = self.run_generator("--check", self.scratch)
                self.assertEqual(1, result.returncode)
                named = [name for name in PLATE_FILES if name in result.stderr]
                self.assertEqual([changed], named)

    def test_check_names_every_missing_file_and_writes_none(self):
        result = self.run_generator("--check", self.scratch)
        self.assertEqual(1, result.returncode)
        for name in PLATE_FILES:
            self.assertIn(name, result.stderr)
        self.assertEqual([], list(self.scratch.iterdir()))


class EveryFile(unittest.TestCase):
    """What holds for all five files."""

    def test_is_well_formed_with_data_model_version_8(self):
        for name in ALL_FILES:
            with self.subTest(file=name):
                self.assertEqual("8.00", root_of(name).get("datamver"))

    def test_is_ascii_with_unix_line_ends_and_a_final_newline(self):
        for name in ALL_FILES:
            with self.subTest(file=name):
                content = (RESOURCES / name).read_bytes()
                self.assertTrue(content.isascii())
                self.assertNotIn(b"\r", content)
                self.assertTrue(content.endswith(b">\n"))


class PlateDefinitions(unittest.TestCase):
    """What holds for the three plate definitions."""

    def test_root(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                root = root_of(name)
                self.assertEqual("plate_definition", root.tag)
                self.assertEqual({"centre_x": "0", "centre_y": "0", "orientation": "0",
                                  "datamver": "8.00"}, root.attrib)
                self.assertEqual({"fibre"}, {child.tag for child in elements_in(root)})

    def test_every_fibre_has_the_same_attributes(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                for fibre in fibres_of(name):
                    self.assertEqual(FIBRE_ATTRIBUTES, set(fibre.attributes))
                    self.assertEqual("Spectrograph", fibre.attributes["type"])
                    self.assertIn(fibre.status, ("enabled", "broken"))

    def test_positions_have_three_decimals_and_no_negative_zero(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                for fibre in fibres_of(name):
                    for attribute in ("pos_x", "pos_y"):
                        text = fibre.attributes[attribute]
                        self.assertRegex(text, r"\A-?(0|[1-9][0-9]*)\.[0-9]{3}\Z")
                        self.assertNotEqual("-0.000", text)

    def test_identifiers_ascend_and_names_and_places_are_unique(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                fibres = fibres_of(name)
                identifiers = [fibre.identifier for fibre in fibres]
                self.assertEqual(sorted(set(identifiers)), identifiers)
                self.assertEqual(len(fibres), len({fibre.name for fibre in fibres}))
                self.assertEqual(len(fibres), len({fibre.place for fibre in fibres}))

    def test_slit_entries_follow_the_identifiers(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                working = []
                for fibre in fibres_of(name):
                    text = fibre.attributes["slit_entry"]
                    if fibre.status == "broken":
                        self.assertEqual("0-0", text)
                    else:
                        self.assertRegex(text, r"\A[1-9][0-9]*-[1-9][0-9]*\Z")
                        working.append(fibre.slit)
                self.assertEqual(sorted(set(working)), working)
                # Every block is filled from its first place; only the last may be short.
                lengths = Counter(block for block, _ in working)
                self.assertEqual(list(range(1, len(lengths) + 1)), list(lengths))
                self.assertEqual({(block, place) for block in lengths
                                  for place in range(1, lengths[block] + 1)}, set(working))
                self.assertEqual(1, len({lengths[block] for block in list(lengths)[:-1]}))

    def test_every_fibre_is_within_one_degree_of_the_field_centre(self):
        for name in PLATE_FILES:
            with self.subTest(file=name):
                farthest = max(math.hypot(*fibre.place) for fibre in fibres_of(name))
                self.assertLessEqual(farthest, FIELD_RADIUS)


class Veko(unittest.TestCase):
    """The large integral-field unit's bundle."""

    def setUp(self):
        self.fibres = fibres_of("VEKO.xml")
        self.by_name = {fibre.name: fibre for fibre in self.fibres}
        self.column = [fibre for fibre in self.fibres if re.fullmatch(r"C\d\d", fibre.name)]
        self.sky = [fibre for fibre in self.fibres if re.fullmatch(r"S\d\d", fibre.name)]
        self.rows = [fibre for fibre in self.fibres
                     if re.fullmatch(r"([1-9]|1\d|2[0-7])[A-Za]", fibre.name)]

    def row(self, number):
        """Return the row's fibres that are not in the column, in ascending x."""
        members = [fibre for fibre in self.rows if fibre.name[:-1] == str(number)]
        return sorted(members, key=lambda fibre: fibre.place)

    def test_counts(self):
        self.assertEqual(603, len(self.fibres))
        self.assertEqual(27, len(self.column))
        self.assertEqual(56, len(self.sky))
        self.assertEqual(520, len(self.rows))

    def test_identifiers_are_1_to_603(self):
        self.assertEqual(list(range(1, 604)), [fibre.identifier for fibre in self.fibres])

    def test_given_identifiers(self):
        given = {"C14": 304, "C07": 160, "26F": 573, "27A": 504}
        self.assertEqual(given, {name: self.by_name[name].identifier for name in given})

    def test_three_broken_fibres_and_600_enabled(self):
        self.assertEqual({"enabled": 600, "broken": 3},
                         Counter(fibre.status for fibre in self.fibres))
        self.assertEqual({("C07", 160), ("26F", 573), ("27A", 504)},
                         {(fibre.name, fibre.identifier) for fibre in self.fibres
                          if fibre.status == "broken"})

    def test_extents(self):
        xs = [fibre.attributes["pos_x"] for fibre in self.fibres]
        ys = [fibre.attributes["pos_y"] for fibre in self.fibres]
        self.assertEqual(("-8.058", "8.058"), (min(xs, key=float), max(xs, key=float)))
        self.assertEqual(("-28.085", "-11.915"), (min(ys, key=float), max(ys, key=float)))

    def test_column_runs_down_from_c01_in_even_steps(self):
        column = sorted(self.column, key=lambda fibre: fibre.name)
        self.assertEqual([f"C{n:02d}" for n in range(1, 28)], [fibre.name for fibre in column])
        self.assertEqual({"0.000"}, {fibre.attributes["pos_x"] for fibre in column})
        self.assertEqual("-17.501", column[0].attributes["pos_y"])
        self.assertEqual("-22.499", column[-1].attributes["pos_y"])
        for n, fibre in enumerate(column):
            self.assertAlmostEqual(-17.501 - n * PITCH, fibre.place[1], delta=ROUNDING)

    def test_c14_is_the_middle(self):
        middle = self.by_name["C14"].attributes
        self.assertEqual(("0.000", "-20.000"), (middle["pos_x"], middle["pos_y"]))

    def test_row_letters_are_places_in_ascending_x_without_the_column_fibre(self):
        letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZa"
        for number in range(1, 28):
            with self.subTest(row=number):
                members = self.row(number)
                places = 27 - abs(14 - number)
                left_of_column = sum(fibre.place[0] < 0.0 for fibre in members)
                expected = letters[:left_of_column] + letters[left_of_column + 1:places]
                self.assertEqual(expected, "".join(fibre.name[-1] for fibre in members))

    def test_rows_are_straight_even_and_cross_the_column_at_their_number(self):
        step_x, step_y = PITCH * math.sqrt(3.0) / 2.0, PITCH / 2.0
        for number in range(1, 28):
            with self.subTest(row=number):
                crossing = self.by_name[f"C{number:02d}"]
                whole = sorted(self.row(number) + [crossing], key=lambda fibre: fibre.place)
                start = whole.index(crossing)
                exact_y = -20.0 + (14 - number) * PITCH
                for i, fibre in enumerate(whole):
                    self.assertAlmostEqual((i - start) * step_x, fibre.place[0], delta=ROUNDING)
                    self.assertAlmostEqual(exact_y - (i - start) * step_y, fibre.place[1],
                                           delta=ROUNDING)

    def test_row_ends(self):
        self.assertEqual("27A", self.row(27)[0].name)
        self.assertLess(self.row(27)[-1].place[0], self.by_name["C27"].place[0])
        self.assertGreater(self.row(1)[0].place[0], self.by_name["C01"].place[0])
        self.assertEqual(("14A", "14a"), (self.row(14)[0].name, self.row(14)[-1].name))
        self.assertEqual(["14a"], [fibre.name for fibre in self.rows if fibre.name[-1] == "a"])
        self.assertTrue({"13A", "26F", "27A"} <= set(self.by_name))

    def test_body_is_a_closed_hexagon_of_close_packed_fibres(self):
        body = [fibre.place for fibre in self.column + self.rows]
        neighbours = []
        for i, here in enumerate(body):
            gaps = [distance(here, there) for j, there in enumerate(body) if j != i]
            self.assertGreaterEqual(min(gaps), PITCH - DISTANCE_ROUNDING)
            neighbours.append(sum(gap <= PITCH + DISTANCE_ROUNDING for gap in gaps))
        # Six corners, twelve fibres between the corners of each side, the inside.
        self.assertEqual({3: 6, 4: 72, 6: 469}, Counter(neighbours))

    def test_sky_names_are_s01_to_s56(self):
        self.assertEqual([f"S{n:02d}" for n in range(1, 57)],
                         sorted(fibre.name for fibre in self.sky))

    def test_sky_groups_have_one_fibre_in_the_middle_and_six_around_it(self):
        angles = []
        for centre in self.sky:
            near = [(fibre.place[0] - centre.place[0], fibre.place[1] - centre.place[1])
                    for fibre in self.sky
                    if 0.0 < distance(fibre.place, centre.place) < 1.5 * SKY_SPACING]
            if len(near) != 6:
                continue
            for offset in near:
                self.assertAlmostEqual(SKY_SPACING, math.hypot(*offset), delta=DISTANCE_ROUNDING)
            directions = sorted(math.degrees(math.atan2(y, x)) for x, y in near)
            for expected, actual in zip((-150.0, -90.0, -30.0, 30.0, 90.0, 150.0), directions):
                # Rounding turns a direction by up to DISTANCE_ROUNDING / SKY_SPACING.
                self.assertAlmostEqual(expected, actual,
                                       delta=math.degrees(DISTANCE_ROUNDING / SKY_SPACING))
            x, y = centre.place[0], centre.place[1] + 20.0
            self.assertAlmostEqual(7.885, math.hypot(x, y), delta=DISTANCE_ROUNDING)
            angles.append(math.degrees(math.atan2(y, x)) % 360.0)
        self.assertEqual(8, len(angles))
        for expected, actual in zip(range(0, 360, 45), sorted(angles)):
            self.assertAlmostEqual(expected, actual, delta=math.degrees(ROUNDING / 7.0))

    def test_sky_fibres_are_at_their_places_to_the_last_decimal(self):
        diagonal = 7.885 / math.sqrt(2.0)
        middles = [(7.885, 0.0), (diagonal, diagonal), (0.0, 7.885), (-diagonal, diagonal),
                   (-7.885, 0.0), (-diagonal, -diagonal), (0.0, -7.885), (diagonal, -diagonal)]
        side = SKY_SPACING * math.sqrt(3.0) / 2.0
        around = [(0.0, 0.0), (0.0, 0.2), (0.0, -0.2), (side, 0.1), (side, -0.1), (-side, 0.1),
                  (-side, -0.1)]
        for x, y in ((mx + dx, my + dy - 20.0) for mx, my in middles for dx, dy in around):
            found = [fibre.name for fibre in self.sky
                     if abs(fibre.place[0] - x) <= ROUNDING and abs(fibre.place[1] - y) <= ROUNDING]
            self.assertEqual(1, len(found), f"sky fibres at ({x:.3f}, {y:.3f})")

    def test_sky_groups_hold_seven_consecutive_names(self):
        for first in range(1, 57, 7):
            members = [self.by_name[f"S{n:02d}"].place for n in range(first, first + 7)]
            widest = max(distance(a, b) for a in members for b in members)
            self.assertAlmostEqual(2.0 * SKY_SPACING, widest, delta=DISTANCE_ROUNDING)

    def test_sky_fibres_stand_clear_of_the_body(self):
        farthest = max(distance(fibre.place, (0.0, -20.0)) for fibre in self.column + self.rows)
        nearest = min(distance(fibre.place, (0.0, -20.0)) for fibre in self.sky)
        self.assertGreater(nearest, farthest + PITCH)


class PositionerPlates(unittest.TestCase):
    """Plates A and B."""

    def test_plate_a_has_fibres_0_to_1007(self):
        self.assertEqual(list(range(1008)),
                         [fibre.identifier for fibre in fibres_of("PLATE_A.xml")])

    def test_plate_b_is_plate_a_and_the_bundles_1008_to_1027(self):
        plate_a, plate_b = fibres_of("PLATE_A.xml"), fibres_of("PLATE_B.xml")
        self.assertEqual([fibre.attributes for fibre in plate_a],
                         [fibre.attributes for fibre in plate_b[:1008]])
        self.assertEqual(list(range(1008, 1028)), [fibre.identifier for fibre in plate_b[1008:]])

    def test_every_fibre_is_enabled(self):
        for name in ("PLATE_A.xml", "PLATE_B.xml"):
            self.assertEqual({"enabled"}, {fibre.status for fibre in fibres_of(name)})

    def test_homes_stand_all_around_the_rim(self):
        fibres = fibres_of("PLATE_B.xml")
        for fibre in fibres:
            self.assertGreater(math.hypot(*fibre.place), 0.9 * FIELD_RADIUS)
        for members in (fibres[:1008], fibres[1008:]):
            angles = sorted(math.degrees(math.atan2(y, x)) % 360.0
                            for x, y in (fibre.place for fibre in members))
            gaps = [b - a for a, b in zip(angles, angles[1:] + [angles[0] + 360.0])]
            self.assertLess(max(gaps), 1.01 * 360.0 / len(members))

    def test_homes_keep_a_distance(self):
        places = [fibre.place for fibre in fibres_of("PLATE_B.xml")]
        nearest = min(distance(a, b) for i, a in enumerate(places) for b in places[:i])
        self.assertGreater(nearest, 3.5)


class FocalPlaneMap(unittest.TestCase):
    """The mapping between the sky and the focal plane."""

    def setUp(self):
        self.root = root_of("focal_plane_map.xml")

    def test_root(self):
        self.assertEqual("focal_plane_map", self.root.tag)
        self.assertEqual({"datamver": "8.00", "focal_length": "11724.24"}, self.root.attrib)
        self.assertEqual(["optical_axis", "distortion_coefficients"],
                         [child.tag for child in elements_in(self.root)])

    def test_optical_axes(self):
        zero = {"x0": "0.0", "y0": "0.0", "r0": "0.0"}
        plates = elements_in(self.root.find("optical_axis"))
        self.assertEqual([("PLATE_A", zero), ("PLATE_B", zero), ("VEKO", zero)],
                         [(plate.tag, plate.attrib) for plate in plates])

    def test_distortion(self):
        self.assertEqual({"c1": "202.841", "c3": "3.0191", "c5": "-0.0995944", "c7": "0.0"},
                         self.root.find("distortion_coefficients").attrib)


class Configuration(unittest.TestCase):
    """The default configuration."""

    def setUp(self):
        self.root = root_of("configure.xml")

    def test_is_exactly_3802_bytes(self):
        self.assertEqual(3802, len((RESOURCES / "configure.xml").read_bytes()))

    def test_root(self):
        self.assertEqual("configure", self.root.tag)
        self.assertEqual({"datamver": "8.00"}, self.root.attrib)

    def test_values_are_the_defaults_to_the_letter(self):
        for path, value in CONFIGURATION_DEFAULTS.items():
            with self.subTest(element=path):
                found = self.root.findall(path)
                self.assertEqual([value], [element.text for element in found])
                self.assertEqual(0, len(found[0]))

    def paths_below(self, parent, prefix=""):
        """Return [(path, element, what precedes it)] of all elements below parent."""
        found, previous = [], None
        for child in parent:
            if child.tag is not ElementTree.Comment:
                path = prefix + child.tag
                found.append((path, child, previous))
                found += self.paths_below(child, path + "/")
            previous = child
        return found

    def test_has_no_other_elements_and_none_twice(self):
        expected = list(CONFIGURATION_DEFAULTS) + ["telescope", "telescope/optimum_rotator_angle"]
        for table in ("mifu_dither", "veko_dither"):
            expected.append(table)
            for pattern in DITHER_PATTERNS:
                expected += [f"{table}/{pattern}{end}" for end in ("", "/x", "/y")]
        self.assertEqual(sorted(expected),
                         sorted(path for path, _, _ in self.paths_below(self.root)))

    def test_a_comment_before_every_element_explains_it(self):
        for path, element, previous in self.paths_below(self.root):
            if element.tag in ("x", "y"):
                continue  # explained once, before the tables
            with self.subTest(element=path):
                self.assertIsNotNone(previous)
                self.assertIs(ElementTree.Comment, previous.tag)
                words = " ".join(previous.text.split())
                self.assertNotEqual("", words)
                if element.tag not in DITHER_PATTERNS:
                    self.assertIn(CONFIGURATION_COMMENTS[path], words)

    def test_a_comment_before_the_root_explains_it(self):
        text = (RESOURCES / "configure.xml").read_text(encoding="ascii")
        self.assertRegex(text.split("<configure ")[0], r"<!-- Default configuration\b.* -->\n\Z")

    def test_the_comment_of_the_dithers_explains_x_and_y(self):
        comments = [previous for path, _, previous in self.paths_below(self.root)
                    if path == "mifu_dither"]
        words = " ".join(comments[0].text.split())
        for phrase in ("x and y hold the telescope offsets in arcseconds",
                       "along the positioner's x and y axes",
                       "at position angle zero y points north and x east"):
            self.assertIn(phrase, words)


class DitherPatterns(unittest.TestCase):
    """The dither tables of the default configuration."""

    def offsets(self, table, pattern):
        """Return the pattern's [(x, y)] in arcseconds."""
        element = root_of("configure.xml").find(f"{table}/{pattern}")
        axes = [element.find(axis).text for axis in ("x", "y")]
        for text in axes:
            self.assertRegex(text, r"\A-?\d+\.\d\d( -?\d+\.\d\d)*\Z")
        xs, ys = ([float(word) for word in text.split(" ")] for text in axes)
        self.assertEqual(len(xs), len(ys))
        return list(zip(xs, ys))

    def every_pattern(self):
        """Return [(table/pattern, exposures, fibre pitch in arcseconds, offsets)]."""
        return [(f"{table}/{pattern}", exposures, pitch, self.offsets(table, pattern))
                for table, pitch in (("mifu_dither", MIFU_PITCH_ARCSEC),
                                     ("veko_dither", VEKO_PITCH_ARCSEC))
                for pattern, exposures in DITHER_PATTERNS.items()]

    def test_each_table_holds_the_five_patterns(self):
        for table in ("mifu_dither", "veko_dither"):
            found = elements_in(root_of("configure.xml").find(table))
            self.assertEqual(list(DITHER_PATTERNS), [pattern.tag for pattern in found])
            for pattern in found:
                self.assertEqual(["x", "y"], [axis.tag for axis in elements_in(pattern)])

    def test_the_name_gives_the_number_of_exposures(self):
        for name, exposures, _, offsets in self.every_pattern():
            self.assertEqual(exposures, len(offsets), name)

    def test_the_first_exposure_is_not_offset(self):
        for name, _, _, offsets in self.every_pattern():
            self.assertEqual((0.0, 0.0), offsets[0], name)

    def test_offsets_are_smaller_than_the_distance_of_fibres(self):
        for name, _, pitch, offsets in self.every_pattern():
            for offset in offsets:
                self.assertLess(math.hypot(*offset), pitch, name)

    def test_exposures_fall_into_the_gaps_between_fibres(self):
        # However the offsets are moved by whole fibre distances, no two
        # exposures put fibres closer than a quarter of that distance.
        for name, _, pitch, offsets in self.every_pattern():
            lattice = [(i * pitch * math.sqrt(3.0) / 2.0, (j + i / 2.0) * pitch)
                       for i in range(-3, 4) for j in range(-4, 5)]
            for i, a in enumerate(offsets):
                for b in offsets[:i]:
                    nearest = min(distance((a[0] - b[0], a[1] - b[1]), node) for node in lattice)
                    self.assertGreater(nearest, 0.25 * pitch, name)

    def test_three_points_make_an_equilateral_triangle_on_gap_centres(self):
        for table, pitch in (("mifu_dither", MIFU_PITCH_ARCSEC),
                             ("veko_dither", VEKO_PITCH_ARCSEC)):
            a, b, c = self.offsets(table, "pattern_3")
            for side in (distance(a, b), distance(b, c), distance(c, a)):
                self.assertAlmostEqual(pitch / math.sqrt(3.0), side, delta=0.015)

    def test_pattern_minus_3_mirrors_pattern_3(self):
        for table in ("mifu_dither", "veko_dither"):
            self.assertEqual([(-x, y) for x, y in self.offsets(table, "pattern_3")],
                             self.offsets(table, "pattern_-3"))


if __name__ == "__main__":
    if len(sys.argv) < 2 or not Path(sys.argv[1]).is_dir():
        sys.exit("usage: check_embedded_data.py RESOURCES_DIR [unittest options]")
    RESOURCES = Path(sys.argv.pop(1)).resolve()
    unittest.main()
