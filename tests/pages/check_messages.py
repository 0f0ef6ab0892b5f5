"""Holds docs/messages.md and the manual page to each other.

Names every message that only one of them explains.
"""
from manual import manual_messages
from page_messages import read_page
from pages import ROOT, finish


def complaints():
    page = set(read_page((ROOT / "docs" / "messages.md").read_text()))
    manual = set(manual_messages((ROOT / "man" / "veko_configure.1").read_text()))
    found = [f"veko_configure(1) lacks {message!r}" for message in sorted(page - manual)]
    found += [f"docs/messages.md lacks {message!r} of veko_configure(1)" for message in sorted(manual - page)]
    if len(page) < 10:
        found.append("next to nothing was checked")
    return found


finish(complaints())
