"""Holds veko_configure(1) to the program, veko_configure(5) to the schemas, both to groff's rules: check_manual.py PROGRAM."""
import re
import subprocess
import sys
import xml.etree.ElementTree as ET

from manual import manual_options, plain
from pages import ROOT, finish

RNG = "{http://relaxng.org/ns/structure/1.0}"

# The units of the program's list, and the words of the manual page.
UNITS = {"yr": "years", "hr": "hours", "deg": "degrees", "mBar": "millibar"}


def answer(program, option):
    return subprocess.run([program, option], capture_output=True, text=True, check=True).stdout


def listed_options(listing):
    """Long name -> (short name, default, unit), each None where it has none, from the program's list."""
    entry = r"(?:(-\w) \[ )?(--\w+)(?: \])?(?: arg)?(?: \(=(.*?)\))?(?:\s|$)"
    found = {}
    for text in re.split(r"\n(?=  -)", listing)[1:]:
        short, name, default = re.match(entry, text.strip()).groups()
        unit = re.search(r"\((\w+)\)\s*$", text)
        found[name] = (short, default, unit and unit.group(1))
    return found


def check_options(program, manual):
    listed = listed_options(answer(program, "--help"))
    explained = {re.search(r"--\w+", tag).group(): (tag, text) for tag, text in manual_options(manual).items()}
    problems = [f"{name} is in only one of --help and the manual page" for name in listed.keys() ^ explained.keys()]
    for name in listed.keys() & explained.keys():
        short, default, unit = listed[name]
        tag, text = explained[name]
        if tag.split(" ")[0].rstrip(",") != (short or name):
            problems.append(f"{name}: {tag!r} does not begin with {short or name}")
        stated = re.search(r"^Default: (.*)\.$", text, re.M)
        if (stated and stated.group(1)) != default:
            problems.append(f"{name}: the default is {default}, not {stated and stated.group(1)}")
        if unit and UNITS[unit] not in text:
            problems.append(f"{name}: no {UNITS[unit]} in its text")
    if len(listed) < 5 or not any(unit for _, _, unit in listed.values()):
        problems.append("next to nothing was found in --help")
    return problems


def check_version(program, manual):
    version = answer(program, "--version").split("\n")[0].rsplit(" ", 1)[1]
    header = plain(manual.split(".TH ", 1)[1].split("\n")[0])
    return [] if f"veko_configure {version}" in header else [f"the manual page is not of version {version}: {header}"]


def names_in_schemas():
    return {node.get("name") for schema in (ROOT / "schemas").iterdir() for node in ET.parse(schema).iter()
            if node.tag in (RNG + "attribute", RNG + "element") and node.get("name")}


def check_formatted():
    """No page formats with a warning, and veko_configure(5) tells every name of the schemas."""
    problems = []
    for page in sorted((ROOT / "man").iterdir()):
        result = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-P-c", page], capture_output=True, text=True)
        if result.returncode != 0 or result.stderr:
            problems.append(f"groff on {page.name}: {result.stderr}")
    words = set(re.findall(r"[\w-]+", re.sub(".\b", "", result.stdout)))
    names = names_in_schemas()
    if len(names) < 80:
        problems.append("next to no names were found in the schemas")
    return problems + [f"veko_configure(5) lacks {name}" for name in names - words]


program = sys.argv[1]
manual_page = (ROOT / "man" / "veko_configure.1").read_text()
finish(check_options(program, manual_page) + check_version(program, manual_page) + check_formatted())
