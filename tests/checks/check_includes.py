"""Holds the project's includes to the rooms of docs/architecture.md.

Usage: check_includes.py SOURCE_FOLDER. Exits 1, naming every include that points the wrong way, every source file that
the table does not list, and every entry of the table without a file.
"""

import pathlib
import re
import sys


def read_rooms(architecture):
    """The rooms' names in order, and the room number of every file stem."""
    names = []
    room_of = {}
    for line in architecture.read_text().splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) == 3 and "`" in cells[2]:
            for stem in re.findall(r"`(\w+)`", cells[2]):
                room_of[stem] = len(names)
            names.append(cells[0])
    return names, room_of


def main():
    root = pathlib.Path(sys.argv[1])
    names, room_of = read_rooms(root / "docs" / "architecture.md")
    folders = (root / "pos" / "positioner", root / "python")
    sources = sorted(path for folder in folders for path in folder.rglob("*") if path.suffix in (".h", ".cpp"))
    complaints = []
    for path in sources:
        if path.stem not in room_of:
            complaints.append(f"{path.relative_to(root)} is in no room of docs/architecture.md")
            continue
        own_room = room_of[path.stem]
        text = path.read_text()
        for stem in re.findall(r'#include "(\w+)\.h"', text):
            if room_of.get(stem, len(names)) > own_room:
                complaints.append(f"{path.relative_to(root)} ({names[own_room]}) must not include {stem}.h")
        if names[own_room] in ("values", "geometry") and re.search(r"#include <Q(Dom|Xml)", text):
            complaints.append(f"{path.relative_to(root)} ({names[own_room]}) must not see documents")
    missing = sorted(set(room_of) - {path.stem for path in sources})
    complaints += [f"docs/architecture.md lists {stem}, which has no file" for stem in missing]
    for complaint in complaints:
        print(complaint)
    if not sources or len(names) < 2:
        complaints.append("nothing was checked")
        print(complaints[-1])
    return 1 if complaints else 0


sys.exit(main())
