"""What the source of a manual page holds."""

import re


def plain(text):
    """A text without roff's fonts and escapes."""
    text = re.sub(r"\\f[A-Z]", "", text)
    for escape, character in {r"\-": "-", r"\(aq": "'", r"\e": "\\", '""': '"', r"\~": " ", r"\|": ""}.items():
        text = text.replace(escape, character)
    return text


def section(text, name):
    """The lines of a section."""
    found = re.search(rf"^\.SH {name}\n(.*?)(?=^\.SH |\Z)", text, re.M | re.S)
    if not found:
        raise SystemExit(f"no section {name}")
    return found.group(1).splitlines()


def manual_options(text):
    """The options with the text about them: tag without fonts and quotes -> description."""
    options, tag = {}, None
    lines = section(text, "OPTIONS")
    for before, line in zip(lines, lines[1:]):
        if before == ".TP":
            tag = re.sub(r' ?"([^"]*)" ?', r"\1", plain(line.split(" ", 1)[1]))
            options[tag] = ""
        elif tag and line != ".TP":
            options[tag] += plain(re.sub(r"^\.[A-Z]+ ", "", line)) + "\n"
    return options
