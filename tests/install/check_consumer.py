"""A program of somebody else, built against the installed library by CMake and by pkg-config, finds a star's place.

Usage: check_consumer.py FOLDER_OF_PACKAGES CMAKE BUILD_FOLDER COMPILER
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import golden

PACKAGES, CMAKE, BUILD, COMPILER = sys.argv[1:]
CONSUMER = pathlib.Path(__file__).resolve().parent / "consumer"
EXAMPLE = "sombrero_south.xml"  # whose weather the consumer assumes
PLATE_TOLERANCE_MM = 1e-5       # what a cosine in doubles loses, with the printed decimals


def run(*command, **options):
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True, **options)
    assert result.returncode == 0, f"{command}\n{result.stdout}{result.stderr}"
    return result.stdout


def built_with_cmake(folder):
    """Against `cmake --install` into some folder."""
    installed = folder / "installed"
    run(CMAKE, "--install", BUILD, "--prefix", installed, "--component", "development")
    run(CMAKE, "-S", CONSUMER, "-B", folder / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={installed}",
        f"-DCMAKE_CXX_COMPILER={COMPILER}", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
    run(CMAKE, "--build", folder / "build")
    return folder / "build" / "star_on_plate"


def built_with_pkg_config(folder):
    """Against the package, unpacked where it was not meant to be; with every header that is in it."""
    package = next(pathlib.Path(PACKAGES).glob("libpos-dev_*.deb"))
    run("dpkg", "-x", package, folder / "unpacked")
    path = next((folder / "unpacked").rglob("pos.pc")).parent
    flags = run("pkg-config", "--cflags", "--static", "--libs", "pos", env={**os.environ, "PKG_CONFIG_PATH": str(path)})
    assert f"-I{folder}/unpacked" in flags and f"-L{folder}/unpacked" in flags, flags
    program = folder / "star_on_plate"
    headers = [f"-include{header.name}" for header in (folder / "unpacked").rglob("*.h")]
    assert len(headers) > 30, headers
    run(COMPILER, "-std=c++20", *headers, CONSUMER / "star_on_plate.cpp", *flags.split(), "-o", program)
    return program


class Consumer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        cls.programs = [built_with_cmake(cls.folder), built_with_pkg_config(cls.folder)]

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def test_both_find_the_guide_star_where_another_program_found_it(self):
        field = golden.field(EXAMPLE)
        star = next(row for row in golden.table(field["targets"]) if row["targuse"] == "G")
        arguments = [field["centre_ra_d"], field["centre_dec_d"], field["epoch"], star["targra"], star["targdec"]]
        with_cmake, with_pkg_config = [run(program, *arguments) for program in self.programs]
        self.assertEqual(with_cmake, with_pkg_config)
        x, y = map(float, with_cmake.split())
        self.assertAlmostEqual(x, float(star["targx"]), delta=PLATE_TOLERANCE_MM)
        self.assertAlmostEqual(y, float(star["targy"]), delta=PLATE_TOLERANCE_MM)

    def test_cmake_finds_the_installed_library_and_no_other(self):
        cache = (self.folder / "build" / "CMakeCache.txt").read_text()
        self.assertTrue(re.search("^pos_DIR:PATH=(.*)$", cache, re.MULTILINE).group(1).startswith(str(self.folder)))

    def test_the_options_of_this_project_stay_with_it(self):
        command = json.loads((self.folder / "build" / "compile_commands.json").read_text())[0]["command"]
        self.assertIn("star_on_plate.cpp", command)
        self.assertNotRegex(command, r" -(W|ffp-contract|fsanitize|O)")

    def test_the_installed_files_name_neither_sources_nor_build(self):
        files = [*(self.folder / "installed").rglob("*.cmake"), *(self.folder / "installed").rglob("*.pc"),
                 *(self.folder / "unpacked").rglob("*.cmake"), *(self.folder / "unpacked").rglob("*.pc")]
        self.assertGreater(len(files), 8)
        for file in files:
            for folder in (BUILD, str(golden.PROJECT), str(self.folder)):
                self.assertNotIn(folder, file.read_text(), file)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
