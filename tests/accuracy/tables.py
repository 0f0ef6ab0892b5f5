#!/usr/bin/python3
"""Measures the tables of docs/accuracy.md. Run by tools/accuracy, which builds what is needed here.

    tables.py BUILD_FOLDER           prints the tables as they stand in the page, or should
    tables.py BUILD_FOLDER --check   compares them with the page; exits 1 when they differ
    tables.py BUILD_FOLDER --write   puts them into the page
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[2]
PAGE = PROJECT / "docs" / "accuracy.md"
LEFT_OUT = PROJECT / "tests" / "accuracy" / "left_out.py"
BLOCK = re.compile(r"<!-- measured: (\S+) -->\n(.*?)<!-- end -->\n", re.DOTALL)
# Numbers of two digits agree when they differ by no more than rounding of the second.
RELATIVE_TOLERANCE = 0.1
# What is left of doubles differs from one processor to the next; in µas, nm and µs.
ROUNDING_NOISE = 0.1

Tables = dict[str, list[list[str]]]  # by name; the first row holds the heads


def run(*command: object) -> str:
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} failed:\n{done.stdout}")
    return done.stdout


def tables_of_lines(text: str) -> Tables:
    tables: Tables = {}
    for line in text.splitlines():
        name, *cells = line.split("\t")
        tables.setdefault(name, []).append(cells)
    return tables


def chain_properties(build: pathlib.Path) -> dict[tuple[str, int], dict[str, str]]:
    """What the comparison with tests/golden/ left in its report: by kind and lowest degree, count, worst and rms."""
    with tempfile.TemporaryDirectory() as folder:
        report = pathlib.Path(folder) / "report.xml"
        run(build / "tests" / "unit_tests", "--gtest_filter=IndependentChainTest.*", f"--gtest_output=xml:{report}")
        found: dict[tuple[str, int], dict[str, str]] = {}
        for item in ElementTree.parse(report).iter("property"):
            parts = re.fullmatch(r"(\w+)_from_(\d+)_degrees_(count|worst|rms)", item.get("name"))
            found.setdefault((parts[1], int(parts[2])), {})[parts[3]] = item.get("value")
    return found


def chain_tables(build: pathlib.Path) -> Tables:
    found = chain_properties(build)

    def bands(kind: str) -> list[tuple[str, dict[str, str]]]:
        lowest = sorted(low for name, low in found if name == kind)
        return [(f"{low}–{high}", found[kind, low]) for low, high in zip(lowest, lowest[1:] + [90])]

    def spread(kind: str, low: int) -> list[str]:
        there = found.get((kind, low))
        return [there["worst"], there["rms"]] if there else ["–", "–"]

    altitude = [["Altitude, degrees", "Places", "Catalogue → plate: worst, nm", "rms, nm",
                 "Centre in hour angle and declination: worst, µas", "rms, µas", "Plate → sky: worst, µas", "rms, µas",
                 "against the library's own way back: worst, µas", "rms, µas"]]
    for (name, landing), low in zip(bands("landing_nanometres"), (0, 5, 10, 20, 30, 60)):
        altitude.append([name, landing["count"], landing["worst"], landing["rms"],
                         *spread("observed_centre_microarcseconds", low), *spread("way_back_microarcseconds", low),
                         *spread("way_back_by_the_library_microarcseconds", low)])
    declination = [["Declination, degrees", "Places", "Catalogue → plate: worst, µm", "rms, µm"]]
    for name, turning in bands("turning_micrometres"):
        declination.append([name, turning["count"], turning["worst"], turning["rms"]])
    motion = [["Catalogue place", "Places", "Place at the date: worst, µas", "rms, µas"]]
    for name, kind in (("with a parallax", "space_motion_microarcseconds"),
                       ("without one", "space_motion_without_parallax_microarcseconds")):
        there = found[kind, 0]
        motion.append([name, there["count"], there["worst"], there["rms"]])
    return {"chain": altitude, "chain-turning": declination, "chain-space-motion": motion}


def is_measured(cell: str) -> bool:
    return re.fullmatch(r"[0-9.]+(e[-+]\d+)?", cell) is not None and not cell.isdigit()


def two_digits(cell: str) -> str:
    """A measured number with two significant digits; anything else, a count too, as it is."""
    if not is_measured(cell):
        return cell
    value = float(f"{float(cell):.1e}")
    if value == 0 or value >= 10:
        return f"{value:,.0f}"
    return f"{value:.1e}".replace("e-0", "e-") if value < 1e-4 else f"{value:.2g}"


def markdown(rows: list[list[str]]) -> str:
    heads, *body = rows
    # The first column names the row, and numbers in it are not measured.
    lines = [heads, ["---"] * len(heads)] + [[row[0]] + [two_digits(cell) for cell in row[1:]] for row in body]
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def number(cell: str) -> float:
    return float(cell.replace(",", ""))


def agree(one: str, other: str, unit: str) -> bool:
    if one == other:
        return True
    try:
        larger = max(number(one), number(other))
        if any(small in unit for small in ("µas", "nm", "µs")) and larger <= ROUNDING_NOISE:
            return True
        return abs(number(one) - number(other)) <= RELATIVE_TOLERANCE * larger
    except ValueError:
        return False


def differences(name: str, page: str, measured: str) -> list[str]:
    def cells(text: str) -> list[list[str]]:
        return [line.strip("| ").split(" | ") for line in text.strip().splitlines()]

    there, here = cells(page), cells(measured)
    if [len(row) for row in there] != [len(row) for row in here]:
        return [f"{name}: the page has another table"]
    found = []
    for page_row, row in zip(there, here):
        for head, one, other in zip(here[0], page_row, row):
            unit = row[1] if here[0][1] == "Unit" else head
            if not agree(one, other, unit):
                found.append(f"{name}, {row[0]}, {head}: the page says {one}, measured {other}")
    return found


def check(page: pathlib.Path, texts: dict[str, str]) -> int:
    blocks = dict(BLOCK.findall(page.read_text()))
    found = [f"{name}: only on one side" for name in sorted(set(blocks) ^ set(texts))]
    for name in sorted(set(blocks) & set(texts)):
        found += differences(name, blocks[name], texts[name])
    print("\n".join(found) or f"All {len(texts)} tables of {page.relative_to(PROJECT)} are as measured.")
    return 1 if found else 0


def show(page: pathlib.Path, tables: Tables, option: str) -> int:
    """Prints tables, compares them with a page, or puts them there."""
    texts = {name: markdown(rows) for name, rows in tables.items()}
    if option == "--check":
        return check(page, texts)
    if option == "--write":
        page.write_text(BLOCK.sub(lambda m: f"<!-- measured: {m[1]} -->\n{texts[m[1]]}<!-- end -->\n",
                                  page.read_text()))
        return 0
    for name, text in texts.items():
        print(f"<!-- measured: {name} -->\n{text}<!-- end -->\n")
    return 0


def main() -> int:
    build, option = pathlib.Path(sys.argv[1]), sys.argv[2] if len(sys.argv) > 2 else ""
    if option not in ("", "--check", "--write"):
        sys.exit(__doc__)
    tables = chain_tables(build)
    tables.update(tables_of_lines(run(build / "tests" / "accuracy" / "measure_accuracy")))
    tables.update(tables_of_lines(run(sys.executable, "-B", LEFT_OUT)))
    return show(PAGE, tables, option)


if __name__ == "__main__":
    sys.exit(main())
