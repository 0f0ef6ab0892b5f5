"""Parts of pages that are made from another place, each between two marks, which are comments of the page."""
import difflib
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def roff(text):
    """A line of text, with roff's own characters escaped."""
    for character, escape in (("\\", "\\e"), ("-", "\\-"), ("^", "\\(ha"), ("'", "\\(aq")):
        text = text.replace(character, escape)
    text = re.sub(r"[^\x00-\x7f]", lambda found: f"\\[u{ord(found.group()):04X}]", text)
    return text if not text.startswith(".") else "\\&" + text


def roff_of_markdown(text):
    """The same of a line of Markdown: code and strong text become bold, and links lose their targets."""
    text = roff(re.sub(r"\[(.+?)\]\(.+?\)", r"\1", text))
    return re.sub(r"\*\*(.+?)\*\*|`(.+?)`", r"\\fB\1\2\\fR", text)


def marks(page, made):
    comment = "<!-- {} -->" if page.endswith(".md") else '.\\" {}'
    return comment.format(f"Made by {made}:"), comment.format("End")


def renewed(page, text, made, lines):
    begin, end = marks(page, made)
    found = re.compile(f"^{re.escape(begin)}\n.*?^{re.escape(end)}$", re.M | re.S)
    if not found.search(text):
        raise SystemExit(f"{page} lacks the marks {begin!r} and {end!r}")
    return found.sub(lambda _: "\n".join([begin, *lines, end]), text)


def renew(parts, check):
    """Writes parts of pages anew, or prints what would change in them; true if something differs that must not.

    parts: page, what stands in the first mark ("TOOL from SOURCE"), the lines between the marks
    """
    differs = False
    for page, made, lines in parts:
        path = ROOT / page
        text = path.read_text(encoding="utf-8")
        new = renewed(page, text, made, lines)
        if new != text and check:
            differs = True
            sys.stdout.writelines(difflib.unified_diff(text.splitlines(True), new.splitlines(True), page, made))
        elif new != text:
            path.write_text(new, encoding="utf-8")
    if differs:
        print("Pages differ from what they are made from; without --check the tool writes them anew.")
    return differs


def check_asked(usage, arguments):
    """Whether the arguments are --check; prints the usage, and ends, if they are something else."""
    if arguments not in ([], ["--check"]):
        raise SystemExit(usage)
    return bool(arguments)
