"""Holds docs/messages.md and the manual page to each other.

Usage: check_messages.py SOURCE_FOLDER. Exits 1, naming every message that only one of them explains.
"""

import pathlib
import sys

from manual import manual_messages
from page_messages import read_page


def complaints(root):
    page = set(read_page((root / "docs" / "messages.md").read_text()))
    manual = set(manual_messages((root / "man" / "veko_configure.1").read_text()))
    found = [f"veko_configure(1) lacks {message!r}" for message in sorted(page - manual)]
    found += [f"docs/messages.md lacks {message!r} of veko_configure(1)" for message in sorted(manual - page)]
    if len(page) < 10:
        found.append("next to nothing was checked")
    return found


if __name__ == "__main__":
    problems = complaints(pathlib.Path(sys.argv[1]))
    print("\n".join(problems))
    sys.exit(1 if problems else 0)
