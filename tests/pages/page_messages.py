"""The messages that docs/messages.md explains."""

import re

# What a placeholder stands for, where a message of the program is compared with the page.
STANDS_FOR = {"{file}": r"\S*", "{number}": r"-?[0-9.]+", "{option}": r"\S+", "{value}": r".*", "{target}": r".*",
              "{reason}": r".+"}


def read_page(text):
    """The messages of the tables. A row's first cell may hold several."""
    messages = []
    for line in text.splitlines():
        if not line.startswith("| `"):
            continue
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) != 3 or not cells[1]:
            raise SystemExit(f"docs/messages.md: not a row of message, meaning and remedy: {line}")
        for message in re.findall(r"`([^`]+)`", cells[0]):
            if message in messages:
                raise SystemExit(f"docs/messages.md explains twice: {message}")
            messages.append(message)
    return messages


def matcher(message):
    """A regular expression for the whole of a printed message."""
    parts = re.split(r"(\{\w+\})", message)
    return re.compile("".join(STANDS_FOR[part] if part in STANDS_FOR else re.escape(part) for part in parts) + r"\n?")
