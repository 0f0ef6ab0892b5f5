"""Does what a page tells its reader to do, and holds what comes out against what the page shows.

    run_page.py PAGE PROGRAM...

Fenced blocks of a page, in their order:

- "console": lines after "$ " are commands, the lines below are what they print, on either stream. "..." stands for any
  lines, or in a line for any text. A command that fails must be followed by "$ echo $?".
- a block with a second word, as in "xml field.xml": a file of that name with that text.

Everything happens in a folder of its own that holds a copy of the examples and schemas, with the programs in the PATH,
as the page's own preparations leave it. Other blocks are not run.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from pages import ROOT, finish


def blocks(text):
    """Language, file name or None, lines and line number of each fenced block."""
    found = None
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith("```") and found is None:
            words = line[3:].split()
            found = (words[0] if words else "", words[1] if len(words) > 1 else None, [], number)
        elif line.startswith("```"):
            yield found
            found = None
        elif found is not None:
            found[2].append(line)
    if found is not None:
        raise SystemExit(f"line {found[3]}: the block does not end")


def commands(lines, number):
    """Command, expected lines and line number of each command of a block."""
    result = []
    for offset, line in enumerate(lines, 1):
        if line.startswith("$ "):
            result.append((line[2:], [], number + offset))
        elif result:
            result[-1][1].append(line)
        else:
            raise SystemExit(f"line {number + offset}: a console block begins with a command")
    return result


def pattern(expected):
    """A regular expression for the expected lines."""
    return "".join("(?:.*\n)*" if line == "..." else re.escape(line).replace(r"\.\.\.", ".*") + "\n"
                   for line in expected)


def run_page(page, folder, environment):
    """Runs all commands of a page; returns how many, and descriptions of what was wrong."""
    status, count, wrong = 0, 0, []
    for language, name, lines, number in blocks(page.read_text()):
        if name:
            (folder / name).write_text("\n".join(lines) + "\n")
        elif language == "console":
            for command, expected, line in commands(lines, number):
                count += 1
                if status != 0 and command != "echo $?":
                    wrong.append(f"line {line}: the command before ended with {status}, which the page does not show")
                result = subprocess.run(["bash", "-c", f"(exit {status})\n{command}"], cwd=folder, env=environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        text=True, timeout=60)
                status = result.returncode
                if not re.fullmatch(pattern(expected), result.stdout):
                    wrong.append(f"line {line}: $ {command}\n-- the page shows\n" + "\n".join(expected)
                                 + f"\n-- it printed\n{result.stdout}")
    if status != 0:
        wrong.append(f"the last command ended with {status}")
    return count, wrong


def main():
    page, programs = ROOT / sys.argv[1], [pathlib.Path(program).resolve() for program in sys.argv[2:]]
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        (folder / "bin").mkdir()
        for program in programs:
            (folder / "bin" / program.name).symlink_to(program)
        work = folder / "fields"
        work.mkdir()
        for copied in ("examples", "schemas"):
            shutil.copytree(ROOT / copied, work / copied)
        environment = {**os.environ, "PATH": f"{folder / 'bin'}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        count, wrong = run_page(page, work, environment)
    if count == 0:
        wrong.append("the page has no commands")
    print(f"{page.name}: {count} commands")
    finish(wrong)


main()
