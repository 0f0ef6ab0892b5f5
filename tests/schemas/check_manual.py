"""Formats the manual page of the documents; any warning of the formatter is a failure, and so is an attribute left out.

    check_manual.py SOURCE_FOLDER
"""
import os
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ET

SOURCE = sys.argv[1]
RNG = "{http://relaxng.org/ns/structure/1.0}"


def names_in_schemas():
    folder = os.path.join(SOURCE, "schemas")
    names = set()
    for file in os.listdir(folder):
        for node in ET.parse(os.path.join(folder, file)).iter():
            if node.tag in (RNG + "attribute", RNG + "element") and node.get("name"):
                names.add(node.get("name"))
    return names


class Manual(unittest.TestCase):
    def setUp(self):
        page = os.path.join(SOURCE, "man", "veko_configure.5")
        self.formatted = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-P-c", page], capture_output=True, text=True,
                                        check=True)

    def test_the_page_formats_without_a_warning(self):
        self.assertEqual(self.formatted.stderr, "")

    def test_the_page_tells_every_name_of_the_schemas(self):
        words = set(re.findall(r"[\w-]+", re.sub(".\b", "", self.formatted.stdout)))
        names = names_in_schemas()
        self.assertGreater(len(names), 80)
        self.assertEqual(names - words, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
