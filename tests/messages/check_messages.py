"""Holds docs/messages.md and the manual page to the messages of the code.

Usage: check_messages.py SOURCE_FOLDER. Exits 1, naming every message that the code makes and the page does not explain,
every message on the page that no code makes, and every difference between the page and veko_configure(1). Messages of
libraries are in both documents, but not in the code.
"""

import pathlib
import sys

from code_messages import WILD, Unreadable, read_sources
from manual import manual_messages
from page_messages import LIBRARIES, pattern, read_page


def complaints(root):
    page = read_page((root / "docs" / "messages.md").read_text())
    try:
        code = read_sources(root).messages()
    except Unreadable as problem:
        return [f"cannot read the messages of the code: {problem}"]
    explained = {pattern(message, WILD): message for message, heading in page.items() if heading != LIBRARIES}
    found = []
    for text in sorted(code.keys() - explained.keys()):
        shown, files = text.replace(WILD, "{…}"), ", ".join(sorted(code[text]))
        found.append(f"docs/messages.md does not explain {shown!r}, made in {files}")
    found += [f"docs/messages.md explains {explained[text]!r}, which no code makes"
              for text in sorted(explained.keys() - code.keys())]
    manual = set(manual_messages((root / "man" / "veko_configure.1").read_text()))
    found += [f"veko_configure(1) lacks {message!r}" for message in sorted(page.keys() - manual)]
    found += [f"docs/messages.md lacks {message!r} of veko_configure(1)" for message in sorted(manual - page.keys())]
    if len(code) < 10 or len(page) < 10:
        found.append("next to nothing was checked")
    return found


if __name__ == "__main__":
    problems = complaints(pathlib.Path(sys.argv[1]))
    print("\n".join(problems))
    sys.exit(1 if problems else 0)
