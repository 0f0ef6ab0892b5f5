"""The Debian packages: what they hold, what they ask for, which version they have, and that the program in them works.

Usage: check_packages.py FOLDER_OF_PACKAGES CPACK CPACK_CONFIGURATION
"""

import gzip
import os
import pathlib
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import golden

PACKAGES, CPACK, CONFIGURATION = sys.argv[1:]
CACHE = pathlib.Path(CONFIGURATION).with_name("CMakeCache.txt").read_text()
HAS_PYTHON = re.search("^POS_BUILD_PYTHON:.*=ON$", CACHE, re.MULTILINE)
NAMES = ("veko-configure", "veko-tools", *(["python3-veko"] if HAS_PYTHON else []), "libpos-dev")
HERE = pathlib.Path(__file__).resolve().parent
INTERNAL = {"MalformedXml.h", "fileAccess.h", "numberText.h", "xmlEncoding.h", "xmlParse.h"}
EXAMPLE = "sombrero_south.xml"
SKY_TOLERANCE_DEGREES = 1.1e-6  # a unit of the last place that is written, and the rounding of what is read
PLATE_TOLERANCE_MM = 1e-4       # to which the program finds a field centre


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def package_file(name, folder=PACKAGES):
    found = list(pathlib.Path(folder).glob(f"{name}_*.deb"))
    assert len(found) == 1, f"{len(found)} files of the package {name} in {folder}"
    return str(found[0])


def field_of(package, name):
    return output_of("dpkg-deb", "--field", package_file(package), name).strip()


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.folder.name)
        for package in NAMES:
            subprocess.run(["dpkg", "-x", package_file(package), cls.root / package], check=True)
        cls.usr = cls.root / "veko-configure" / "usr"
        cls.program = str(cls.usr / "bin" / "veko_configure")
        cls.tools = cls.root / "veko-tools" / "usr"
        cls.checker = str(cls.tools / "bin" / "veko")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def expect_files(self, package, expected):
        root = self.root / package
        found = {str(path.relative_to(root)) for path in root.rglob("*") if not path.is_dir()}
        self.assertEqual(found, set(expected))

    def test_the_programs_come_with_the_files_of_their_lists(self):
        for package in NAMES[:-1]:
            self.expect_files(package, (HERE / f"{package}.files").read_text().split())

    def test_the_library_comes_with_the_files_of_its_list_and_every_header_of_its_interface(self):
        build_type = re.search("^CMAKE_BUILD_TYPE:.*=(.*)$", CACHE, re.MULTILINE).group(1).lower()
        listed = (HERE / "libpos-dev.files").read_text().replace("BUILDTYPE", build_type)
        listed = listed.replace("MULTIARCH", output_of("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip())
        headers = {path.name for path in (golden.PROJECT / "pos" / "positioner" / "poslib").glob("*.h")} - INTERNAL
        self.expect_files("libpos-dev", listed.split() + [f"usr/include/pos/{header}" for header in headers])

    def test_everybody_may_read_the_files_and_run_the_programs_and_the_recipe(self):
        for path in [path for package in NAMES for path in (self.root / package).rglob("*")]:
            run = path.is_dir() or str(path) in (self.program, self.checker) or path.name == "night.sh"
            self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o755 if run else 0o644, path)

    def test_the_packages_ask_for_the_libraries_that_are_linked(self):
        shared = ["libqt5core5a", "libqt5xml5", "liberfa1", "libexpat1"]
        for package, libraries in (("veko-configure", [*shared, "libboost-program-options1.74.0"]), ("veko-tools", shared)):
            runtime = re.sub(r"\s*\([^)]*\)", "", field_of(package, "Depends")).split(", ")
            self.assertEqual(set(libraries) - set(runtime), set())
        if HAS_PYTHON:
            for needed in (*shared, "python3-numpy", "python3 (<< 3.12)"):
                self.assertIn(needed, field_of("python3-veko", "Depends"))
        development = field_of("libpos-dev", "Depends")
        for library in ("qtbase5-dev", "liberfa-dev", "libexpat1-dev", "libboost-dev", "libboost-filesystem-dev"):
            self.assertIn(library, development)

    def test_the_version_is_that_of_the_newest_release_and_begins_with_the_programs(self):
        changelog = (golden.PROJECT / "CHANGELOG.md").read_text()
        newest = re.search(r"^## (\S+)", changelog, re.MULTILINE).group(1)
        printed = output_of(self.program, "--version")
        program = re.match(r"VANTE veko_configure version (\S+)\n", printed).group(1)
        self.assertRegex(newest, f"^{re.escape(program)}-[1-9][0-9]*$")
        for package in NAMES:
            self.assertEqual(field_of(package, "Version"), newest)
            self.assertTrue(pathlib.Path(package_file(package)).name.startswith(f"{package}_{newest}_"))
            doc = self.root / package / "usr" / "share" / "doc" / package
            debian = gzip.decompress((doc / "changelog.Debian.gz").read_bytes()).decode()
            self.assertTrue(debian.startswith(f"{package} ({newest}) "), debian[:80])
        version_file = next((self.root / "libpos-dev").rglob("pos-config-version.cmake")).read_text()
        self.assertIn(f'set(PACKAGE_VERSION "{program}")', version_file)
        self.assertIn(f"Version: {program}\n", next((self.root / "libpos-dev").rglob("pos.pc")).read_text())

    def test_releases_are_counted_without_a_gap_for_each_version(self):
        changelog = (golden.PROJECT / "CHANGELOG.md").read_text()
        headings = re.findall(r"^## (.*)$", changelog, re.MULTILINE)
        versions = {}
        for heading in reversed(headings):
            version, release = re.fullmatch(r"(\d+\.\d+\.\d+)-(\d+) \(\d{4}-\d\d-\d\d\)", heading).groups()
            versions[version] = versions.get(version, 0) + 1
            self.assertEqual(int(release), versions[version], heading)

    def test_nobody_invented_a_licence(self):
        for package in NAMES:
            text = (self.root / package / "usr/share/doc" / package / "copyright").read_text()
            self.assertIn("No licence has been chosen", text)
            self.assertNotRegex(text, r"(?i)\b(gpl|lgpl|mit|bsd|apache|mozilla|public domain|common-licenses)\b")

    def test_manual_pages_schemas_and_completion_can_be_read(self):
        pages = [page for usr in (self.usr, self.tools) for page in usr.glob("share/man/man?/*.gz")]
        self.assertEqual({page.stem for page in pages}, {page.name for page in (HERE.parents[1] / "man").iterdir()})
        for page in pages:
            self.assertRegex(gzip.decompress(page.read_bytes()).decode(), rf"(?m)^\.TH \S+ {page.suffixes[0][1]}\b")
        for schema in (self.usr / "share/veko_configure/schemas").iterdir():
            self.assertEqual(ElementTree.parse(schema).getroot().tag,
                             "{http://relaxng.org/ns/structure/1.0}grammar", schema.name)
        for usr, program in ((self.usr, "veko_configure"), (self.tools, "veko")):
            output_of("bash", "-n", str(usr / "share/bash-completion/completions" / program))

    def test_links_between_the_installed_pages_hold(self):
        pages = sorted((self.usr / "share/veko_configure").rglob("*.md"))
        links = [(page, link) for page in pages for link in re.findall(r"\]\(([^)#]+)[^)]*\)", page.read_text())]
        self.assertGreater(len(links), 10)
        for page, link in links:
            self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")

    def test_the_program_configures_an_installed_example(self):
        example = self.usr / "share/veko_configure/examples" / EXAMPLE
        configured = self.root / "configured.xml"
        result = subprocess.run([self.program, "-i", example, "-o", configured], capture_output=True, text=True,
                                env={"PATH": os.environ["PATH"]}, cwd=self.root)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        targets = list(ElementTree.parse(configured).iter("target"))
        expected = golden.table(golden.field(EXAMPLE)["targets"])
        self.assertEqual(len(targets), len(expected))
        for target, row in zip(targets, expected):
            self.assertEqual(target.get("ifu_spaxel"), row["ifu_spaxel"])
            for attribute, tolerance in (("targx", PLATE_TOLERANCE_MM), ("targy", PLATE_TOLERANCE_MM),
                                         ("targra", SKY_TOLERANCE_DEGREES), ("targdec", SKY_TOLERANCE_DEGREES)):
                self.assertAlmostEqual(float(target.get(attribute)), float(row[attribute]), delta=tolerance)

    @unittest.skipUnless(HAS_PYTHON, "the module is not built")
    def test_the_module_configures_an_installed_example_as_the_program_does(self):
        example = self.usr / "share/veko_configure/examples" / EXAMPLE
        configured = self.root / "configured_in_python.xml"
        subprocess.run([self.program, "-i", example, "-o", configured], check=True)
        folder = self.root / "python3-veko/usr/lib/python3/dist-packages"
        code = f"import veko; print(veko.__file__); assert veko.configure({str(example)!r}).xml == open({str(configured)!r}, 'rb').read()"
        result = subprocess.run(["/usr/bin/python3", "-B", "-c", code], capture_output=True, text=True, cwd=self.root,
                                env={"PATH": os.environ["PATH"], "PYTHONPATH": str(folder)})
        self.assertEqual((result.stdout, result.stderr), (f"{folder}/veko/__init__.py\n", ""))

    def test_the_checker_finds_nothing_wrong_with_the_installed_examples(self):
        examples = sorted(self.usr.glob("share/veko_configure/examples/*.xml"))
        self.assertEqual(output_of(self.checker, "check", "--strict", *examples),
                         f"{len(examples)} files: 0 errors, 0 warnings\n")

    def test_the_installed_instrument_is_the_one_that_is_built_in(self):
        share = self.usr / "share/veko_configure"
        instrument = self.root / "instrument"
        shutil.copytree(share / "instrument", instrument)
        configuration = instrument / "configure.xml"
        configuration.write_text(configuration.read_text().replace(">:/", ">"))
        outputs = []
        for arguments in ([], ["-c", configuration]):
            outputs.append(self.root / f"instrument{len(arguments)}.xml")
            subprocess.run([self.program, *arguments, "-i", share / "examples" / EXAMPLE, "-o", outputs[-1]], check=True)
        self.assertEqual(outputs[0].read_bytes(), outputs[1].read_bytes())

    def test_packing_again_gives_the_same_bytes(self):
        again = self.root / "again"
        subprocess.run([CPACK, "--config", CONFIGURATION, "-B", again], check=True, capture_output=True)
        for package in NAMES:
            self.assertEqual(pathlib.Path(package_file(package, again)).read_bytes(),
                             pathlib.Path(package_file(package)).read_bytes())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
