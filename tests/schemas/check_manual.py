"""Formats the manual page of the documents; an attribute left out is a failure.

    check_manual.py SOURCE_FOLDER

That no manual page formats with a warning is what tests/messages/check_manual.py holds.
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
    def test_the_page_tells_every_name_of_the_schemas(self):
        page = os.path.join(SOURCE, "man", "veko_configure.5")
        formatted = subprocess.run(["groff", "-man", "-Tutf8", "-P-c", page], capture_output=True, text=True, check=True)
        words = set(re.findall(r"[\w-]+", re.sub(".\b", "", formatted.stdout)))
        names = names_in_schemas()
        self.assertGreater(len(names), 80)
        self.assertEqual(names - words, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
