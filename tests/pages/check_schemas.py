"""Holds the schemas to the documents: those that are right keep to them, and each fault is refused.

    check_schemas.py PROGRAM

The schemas are used from a copy of their folder, as they are installed, by xmllint.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET

from pages import ROOT
from schema import RNG, Schema

PROGRAM = os.path.abspath(sys.argv[1])
EXAMPLES = os.path.join(ROOT, "examples")
RESOURCES = os.path.join(ROOT, "pos", "positioner", "resources")
VALID, INVALID = 0, 3  # the exit statuses of xmllint; others tell of an unreadable document or schema
EXAMPLE_NAMES = sorted(name for name in os.listdir(EXAMPLES) if name.endswith(".xml"))

FIELD, CONFIGURED, CONFIGURATION = "field_definition.rng", "configured_field.rng", "configuration.rng"
MAP, PLATE = "focal_plane_map.rng", "plate.rng"

# A field definition that has what the faults below change.
FIELD_DOCUMENT = """<field_definition datamver="8.00">
 <observation name="a" note="b" pa="-20.5" RA_d="10.00000" Dec_d="%%%">
  <configure>
   <conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" tlr="0.006" ha="-1.0"/>
  </configure>
  <fields>
   <field RA_d="189.997633" Dec_d="-11.623054">
    <target targname="science" targsrvy="s" targuse="T" targprio="9" targra="189.997633" targdec="-11.623054"
            targepoch="2000.0" targpmra="1.5" targpmdec="-2" targparal="0.01" targrv="12" fibreid="193" configid="5"
            automatic="0" cname="%%%" targcat="c" targclass="g" targprog="p" targid="i" targx="" targy="" ifu_pa=""
            ifu_spaxel=""><photometry band="r"><mag>9.5</mag></photometry></target>
    <target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0"/>
    <group><target targname="other" targuse="C" targra="190.00000" targdec="-11.50000"/></group>
    <avoidance_list><mask RA_d="190.00000" Dec_d="-11.50000" radius="2.5"/></avoidance_list>
   </field>
  </fields>
 </observation>
</field_definition>
"""

# Each fault: what the schema refuses, a text of the document above, and what stands in its place.
FIELD_FAULTS = (
    ("another data model version", 'datamver="8.00"', 'datamver="8.0"'),
    ("no data model version", ' datamver="8.00"', ""),
    ("a document element with the name of one in it", "field_definition", "configure"),
    ("a missing configure element", "<configure>", "<configuration>", "</configure>", "</configuration>"),
    ("a position angle in words", 'pa="-20.5"', 'pa="north"'),
    ("a misspelt attribute", 'targepoch="2000.0"', 'targepohc="2000.0"'),
    ("an unknown element", "<group>", "<group><extra/>"),
    ("two conditions elements", "</configure>", "<conditions/></configure>"),
    ("an epoch that is a Modified Julian Date", 'epoch="2027.25"', 'epoch="61497.5"'),
    ("an epoch of zero", 'epoch="2027.25"', 'epoch="0"'),
    ("an empty epoch", 'epoch="2027.25"', 'epoch=""'),
    ("a temperature in degrees Celsius", 'temperature="281.5"', 'temperature="8.5"'),
    ("a negative pressure", 'pressure="770"', 'pressure="-770"'),
    ("a humidity in per cent", 'relative_humidity="0.25"', 'relative_humidity="25"'),
    ("an hour angle in degrees", 'ha="-1.0"', 'ha="-15.0"'),
    ("an hour angle with a decimal comma", 'ha="-1.0"', 'ha="-1,0"'),
    ("a hexadecimal number", 'targprio="9"', 'targprio="0x9"'),
    ("a number that is not one", 'targpmra="1.5"', 'targpmra="nan"'),
    ("a missing right ascension", ' targra="190.120000"', ""),
    ("a missing declination", ' targdec="-11.500000"', ""),
    ("a right ascension of four decimals", 'targra="189.997633"', 'targra="189.9976"'),
    ("a right ascension in hours, minutes and seconds", 'targra="189.997633"', 'targra="12:39:59.43"'),
    ("a right ascension beyond 360 degrees", 'targra="189.997633"', 'targra="360.00001"'),
    ("a declination beyond the pole", 'targdec="-11.623054"', 'targdec="-90.00001"'),
    ("a field centre of two decimals", 'RA_d="189.997633"', 'RA_d="190.00"'),
    ("a parallax in milliarcseconds", 'targparal="0.01"', 'targparal="10"'),
    ("a placeholder for a proper motion", 'targpmra="1.5"', 'targpmra="%%%"'),
    ("a negative priority", 'targprio="9"', 'targprio="-1"'),
    ("a fibre in words", 'fibreid="193"', 'fibreid="C10"'),
    ("a science target on no fibre", 'fibreid="193"', 'fibreid="0"'),
    ("a science target on a negative fibre", 'fibreid="193"', 'fibreid="-5"'),
    ("a science target on a fibre beyond the bundle", 'fibreid="193"', 'fibreid="604"'),
    ("a placeholder for an id", 'configid="5"', 'configid="%%%"'),
    ("an unknown use", 'targuse="C"', 'targuse="X"'),
    ("a use in lower case", 'targuse="T"', 'targuse="t"'),
    ("a missing use", ' targuse="C"', ""),
    ("a field without a science target", 'targuse="T"', 'targuse="C"'),
    ("a field without a guide star", 'targuse="G"', 'targuse="R"'),
    ("a science target in a group", 'targuse="C"', 'targuse="T"'),
    ("an empty group", "<group>", "<group/><group>"),
    ("a target that claims to be generated and is not complete", 'automatic="0"', 'automatic="1"'),
    ("a mask without a centre", ' RA_d="190.00000" Dec_d="-11.50000"', ""),
    ("a mask of no size", 'radius="2.5"', 'radius="0"'),
    ("two lists of masks", "<avoidance_list>", "<avoidance_list/><avoidance_list>"),
    ("no fields", "<fields>", "<fields/><!--", "</fields>", "-->"),
)
CONFIGURED_FAULTS = (
    ("an observation without a centre", ' RA_d="189.997672"', "", 'Dec_d="-11.524431"', ""),
    ("another version of the program", 'configure_version="3.3.5"', 'configure_version="3.3.4"'),
    ("a window that is missing", "<hour_angle_limits ", "<telescope ", ),
    ("a window of two decimals", 'latest="-3.5097"', 'latest="-3.51"'),
    ("an infinite window", 'latest="-3.5097"', 'latest="-inf"'),
    ("optics without plates", "<PLATE_A ", "<PLATE_C "),
    ("a seventh-order distortion", 'c7="0"', 'c7="0.1"'),
    ("a science target without a fibre", 'fibreid="304"', 'fibreid=""'),
    ("a science target on a fibre that is not enabled", 'fibreid="304"', 'fibreid="-304"'),
    ("a guide star with an id", 'configid="0"', 'configid="7"'),
    ("a generated target that moves", 'targpmra="0"', 'targpmra="1"'),
    ("a generated target without a spaxel", ' ifu_spaxel="C01"', ""),
)
CONFIGURATION_FAULTS = (
    ("a configuration of another version", "<configure_version>3.3.5<", "<configure_version>3.3.4<"),
    ("a configuration without a site", "<latitude>28.760583</latitude>", ""),
    ("a latitude beyond the pole", "<latitude>28.760583<", "<latitude>128.760583<"),
    ("an epoch in words", "<default_epoch>2016.0<", "<default_epoch>J2016<"),
    ("a bundle definition without a name", "<veko_definition>:/VEKO.xml<", "<veko_definition><"),
    ("a misspelt limit", "rotator_low_limit>", "rotator_lower_limit>"),
)
MAP_FAULTS = (
    ("a focal length of zero", 'focal_length="11724.24"', 'focal_length="0"'),
    ("a map without the bundle's plate", '<VEKO x0="0.0" y0="0.0" r0="0.0"/>', ""),
    ("an axis without a rotation", '<VEKO x0="0.0" y0="0.0" r0="0.0"/>', '<VEKO x0="0.0" y0="0.0"/>'),
    ("a distortion without a coefficient", ' c5="-0.0995944"', ""),
)
PLATE_FAULTS = (
    ("a bundle without a y centre", ' centre_y="0"', ""),
    ("a fibre without a name", ' fibre_name="C14"', ""),
    ("a fibre with a negative number", 'id="304"', 'id="-304"'),
    ("a fibre with a number in words", 'id="304"', 'id="C14"'),
    ("an unknown status", 'status="broken"', 'status="lost"'),
    ("a place that is no number", 'pos_y="-20.000"', 'pos_y="-20,000"'),
)


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


class Schemas(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.schemas = os.path.join(cls.folder.name, "installed", "schemas")
        shutil.copytree(os.path.join(ROOT, "schemas"), cls.schemas)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def judge(self, schema, name):
        """The exit status of xmllint, and what it says."""
        command = ["xmllint", "--noout", "--nonet", "--relaxng", os.path.join(self.schemas, schema), name]
        result = subprocess.run(command, cwd="/", capture_output=True, text=True, check=False)
        return result.returncode, result.stderr

    def path(self, name, text):
        path = os.path.join(self.folder.name, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def expect_valid(self, schema, name):
        status, message = self.judge(schema, name)
        self.assertEqual(status, VALID, message)

    def configured(self, name, *arguments):
        output = os.path.join(self.folder.name, "configured_" + os.path.basename(name))
        subprocess.run([PROGRAM, "-i", name, "-o", output, *arguments], check=True)
        return output

    def expect_refused(self, schema, text, faults):
        """The text is valid, and no longer with any one fault."""
        self.expect_valid(schema, self.path("right.xml", text))
        for claim, *changes in faults:
            with self.subTest(claim):
                wrong = text
                for part, replacement in zip(changes[::2], changes[1::2]):
                    self.assertIn(part, wrong)
                    wrong = wrong.replace(part, replacement)
                status, message = self.judge(schema, self.path("wrong.xml", wrong))
                self.assertEqual(status, INVALID, message)

    def test_examples_are_field_definitions(self):
        self.assertGreaterEqual(len(EXAMPLE_NAMES), 4)
        for name in EXAMPLE_NAMES:
            with self.subTest(name):
                self.expect_valid(FIELD, os.path.join(EXAMPLES, name))

    def test_configured_examples_are_configured_fields_and_field_definitions(self):
        for name in EXAMPLE_NAMES:
            with self.subTest(name):
                output = self.configured(os.path.join(EXAMPLES, name))
                self.expect_valid(CONFIGURED, output)
                self.expect_valid(FIELD, output)

    def test_what_a_second_run_leaves_is_a_configured_field(self):
        output = self.configured(os.path.join(EXAMPLES, "sombrero_south.xml"))
        self.expect_valid(CONFIGURED, self.configured(output))

    def test_a_target_with_every_attribute_is_that_of_a_configured_field_after_a_run(self):
        others = [name for name in Schema(FIELD).elements["target"].attributes if f" {name}=" not in FIELD_DOCUMENT]
        added = "".join(f' {name}="1"' for name in others)  # which every number and every text may be
        name = self.path("full.xml", FIELD_DOCUMENT.replace(' targname="science"', added + ' targname="science"'))
        self.expect_valid(FIELD, name)
        self.expect_valid(CONFIGURED, self.configured(name))

    def test_the_observation_may_be_the_document(self):
        start, end = FIELD_DOCUMENT.index(" <observation"), FIELD_DOCUMENT.index("</field_definition>")
        text = FIELD_DOCUMENT[start:end].strip().replace("<observation", '<observation datamver="8.00"')
        name = self.path("observation.xml", text)
        self.expect_valid(FIELD, name)
        self.expect_valid(CONFIGURED, self.configured(name))

    def expect_window(self, arguments, declination, latest, earliest):
        """What a run at this declination leaves has the window, and keeps to the schemas."""
        text = FIELD_DOCUMENT.replace('pa="-20.5"', 'pa="0"')
        for part in ('Dec_d="-11.623054"', 'targdec="-11.623054"', 'targdec="-11.500000"'):
            self.assertIn(part, text)
            text = text.replace(part, part.split('"')[0] + f'"{declination}"')
        name = self.path("window.xml", text)
        self.expect_valid(FIELD, name)
        output = self.configured(name, *arguments)
        limits = ET.parse(output).find(".//hour_angle_limits")
        self.assertRegex(limits.get("latest"), latest)
        self.assertRegex(limits.get("earliest"), earliest)
        self.expect_valid(CONFIGURED, output)
        self.expect_valid(FIELD, output)

    def test_a_window_that_the_rotator_does_not_end_is_no_number_and_legal(self):
        text = read(RESOURCES, "configure.xml")
        for key, value in (("latitude", "60"), ("rotator_low_limit", "-90"), ("rotator_high_limit", "90")):
            text, count = re.subn(f"<{key}>[^<]*<", f"<{key}>{value}<", text)
            self.assertEqual(count, 1)
        configuration = self.path("far_north.xml", text)
        self.expect_valid(CONFIGURATION, configuration)
        self.expect_window(["-c", configuration], "57.000000", "^nan$", "^nan$")

    def test_a_window_beyond_twelve_hours_is_legal(self):
        self.expect_window(["--ha", "5"], "89.970000", r"^2\.", r"^21\.")

    def test_fibres_of_the_schemas_are_those_of_the_built_in_bundle(self):
        numbers = [int(fibre.get("id")) for fibre in ET.parse(os.path.join(RESOURCES, "VEKO.xml")).iter("fibre")]
        for fibre, status in ((min(numbers), VALID), (min(numbers) - 1, INVALID), (max(numbers), VALID),
                              (max(numbers) + 1, INVALID), ("", VALID), ("%%%", VALID)):
            with self.subTest(fibre=fibre):
                text = FIELD_DOCUMENT.replace('fibreid="193"', f'fibreid="{fibre}"')
                self.assertEqual(self.judge(FIELD, self.path("fibre.xml", text))[0], status)

    def test_bounds_are_values_of_their_own_type(self):
        """Validators other than xmllint refuse a schema with a bound that its own pattern does not take."""
        bounds = 0
        for name in os.listdir(self.schemas):
            for data in ET.parse(os.path.join(self.schemas, name)).iter(RNG + "data"):
                texts = {param.get("name"): param.text for param in data.iter(RNG + "param")}
                for kind in set(texts) & {"minInclusive", "maxInclusive", "minExclusive", "maxExclusive"}:
                    self.assertRegex(texts[kind], f"^(?:{texts.get('pattern', '.*')})$", name)
                    bounds += 1
        self.assertGreater(bounds, 20)

    def test_an_unconfigured_field_is_no_configured_field(self):
        for name in EXAMPLE_NAMES:
            with self.subTest(name):
                self.assertEqual(self.judge(CONFIGURED, os.path.join(EXAMPLES, name))[0], INVALID)

    def test_embedded_files_keep_to_their_schemas(self):
        for name, schema in (("configure", CONFIGURATION), ("focal_plane_map", MAP), ("PLATE_A", PLATE),
                             ("PLATE_B", PLATE), ("VEKO", PLATE)):
            with self.subTest(name):
                self.expect_valid(schema, os.path.join(RESOURCES, name + ".xml"))

    def test_a_wrong_field_definition_is_refused(self):
        self.expect_refused(FIELD, FIELD_DOCUMENT, FIELD_FAULTS)

    def test_a_wrong_configured_field_is_refused(self):
        output = self.configured(os.path.join(EXAMPLES, "sombrero_south.xml"))
        self.expect_refused(CONFIGURED, read(output), CONFIGURED_FAULTS)

    def test_a_wrong_configuration_is_refused(self):
        self.expect_refused(CONFIGURATION, read(RESOURCES, "configure.xml"), CONFIGURATION_FAULTS)

    def test_a_wrong_focal_plane_map_is_refused(self):
        self.expect_refused(MAP, read(RESOURCES, "focal_plane_map.xml"), MAP_FAULTS)

    def test_a_wrong_plate_definition_is_refused(self):
        self.expect_refused(PLATE, read(RESOURCES, "VEKO.xml"), PLATE_FAULTS)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
