"""Formats the manual pages: each is of the program's version, veko_configure(5) tells every name of the schemas, and every
line of a list of options fits on a terminal.

    check_manual.py PROGRAM VEKO
"""
import re
import subprocess
import sys
import xml.etree.ElementTree as ET

from pages import ROOT, finish
from schema import RNG


def formatted(page, problems):
    """The page as a reader sees it, without the fonts."""
    result = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-P-cbou", page], capture_output=True, text=True)
    if result.returncode != 0 or result.stderr:
        problems.append(f"groff on {page.name}: {result.stderr}")
    return result.stdout


def names_in_schemas():
    return {node.get("name") for schema in (ROOT / "schemas").iterdir() for node in ET.parse(schema).iter()
            if node.tag in (RNG + "attribute", RNG + "element") and node.get("name")}


def main():
    problems = []
    printed = subprocess.run([sys.argv[1], "--version"], capture_output=True, text=True, check=True).stdout
    version = re.match("VANTE (.*) version (.*)", printed).expand(r"\1 \2")
    texts = {page.name: formatted(page, problems) for page in (ROOT / "man").iterdir()}
    problems += [f"{name} is not the page of {version}" for name, text in texts.items() if version not in text]
    names = names_in_schemas()
    if len(names) < 80:
        problems.append("next to no names were found in the schemas")
    words = set(re.findall(r"[\w-]+", texts["veko_configure.5"]))
    for command in ([], ["check"], ["compare"], ["export"]):
        listing = subprocess.run([sys.argv[2], *command, "--help"], capture_output=True, text=True, check=True).stdout
        problems += [f"wider than 80 columns: {line}" for line in listing.splitlines() if len(line) > 80]
    finish(problems + [f"veko_configure(5) lacks {name}" for name in names - words])


main()
