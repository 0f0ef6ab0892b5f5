"""The messages that docs/messages.md explains."""

import re

PLACEHOLDER = re.compile(r"\{\w+\}")
# What a placeholder stands for, where a message of the program is compared with the page.
STANDS_FOR = {"{file}": r"\S*", "{number}": r"-?[0-9.]+", "{option}": r"\S+", "{value}": r".*", "{target}": r".*",
              "{reason}": r".+"}
LIBRARIES = "Messages of libraries"


def read_page(text):
    """Message -> the second-level heading under which it stands. A row's first cell may hold several."""
    messages, heading = {}, ""
    for line in text.splitlines():
        if line.startswith("## "):
            heading = line[3:]
        if not line.startswith("| `"):
            continue
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) != 3 or not cells[1]:
            raise SystemExit(f"docs/messages.md: not a row of message, meaning and remedy: {line}")
        for message in re.findall(r"`([^`]+)`", cells[0]):
            if message in messages:
                raise SystemExit(f"docs/messages.md explains twice: {message}")
            messages[message] = heading
    return messages


def pattern(message, wild):
    """The message with every placeholder replaced."""
    for placeholder in set(PLACEHOLDER.findall(message)):
        if placeholder not in STANDS_FOR:
            raise SystemExit(f"docs/messages.md does not say what {placeholder} stands for")
    return PLACEHOLDER.sub(wild, message)


def matcher(message):
    """A regular expression for the whole of a printed message."""
    parts = re.split(r"(\{\w+\})", message)
    return re.compile("".join(STANDS_FOR[part] if part in STANDS_FOR else re.escape(part) for part in parts) + r"\n?")
