"""Holds veko_configure(1) to the program's own list of options and version, and every manual page to groff's rules.

Usage: check_manual.py PROGRAM SOURCE_FOLDER. Exits 1, naming what differs.
"""

import pathlib
import re
import subprocess
import sys

from manual import manual_options, plain

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


def check_groff(pages):
    problems = []
    for page in pages:
        result = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-z", page], capture_output=True, text=True)
        if result.returncode != 0 or result.stderr:
            problems.append(f"groff on {page.name}: {result.stderr}")
    return problems


def main():
    program = sys.argv[1]
    folder = pathlib.Path(sys.argv[2]) / "man"
    manual = (folder / "veko_configure.1").read_text()
    problems = check_options(program, manual) + check_version(program, manual)
    problems += check_groff(sorted(folder.glob("*.[15]")))
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
