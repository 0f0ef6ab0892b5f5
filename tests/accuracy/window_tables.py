#!/usr/bin/python3
"""Measures the tables of docs/window.md. Run by tools/window_figures, which builds what is needed here.

    window_tables.py BUILD_FOLDER           prints the tables as they stand in the page, or should
    window_tables.py BUILD_FOLDER --check   compares them with the page; exits 1 when they differ
    window_tables.py BUILD_FOLDER --write   puts them into the page
"""
import pathlib
import sys

from tables import PROJECT, run, show, tables_of_lines

PAGE = PROJECT / "docs" / "window.md"
WINDOW_ENDS = PROJECT / "tests" / "accuracy" / "window_ends.py"


def main() -> int:
    build, option = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2] if len(sys.argv) > 2 else ""
    if option not in ("", "--check", "--write"):
        sys.exit(__doc__)
    tables = tables_of_lines(run(sys.executable, "-B", WINDOW_ENDS, build / "pos" / "positioner" / "veko" / "veko"))
    tables.update(tables_of_lines(run(build / "tests" / "accuracy" / "measure_windows")))
    return show(PAGE, tables, option)


if __name__ == "__main__":
    sys.exit(main())
