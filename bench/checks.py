"""Counts the instructions of veko check beside those of xmllint with the schema; prints tables.

Usage: checks.py BUILD_FOLDER [quick]

Instructions are counted by callgrind. The quick tables leave out the document of 10 MB.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[1]
EXAMPLE = (PROJECT / "examples" / "sombrero_south.xml").read_text()
SCHEMA = str(PROJECT / "schemas" / "field_definition.rng")
DOCUMENTS = 500
MILLION = 1e6


def instructions(command: list[str]) -> float:
    """Millions. Both programs end with 0, or 1 for a document with an error."""
    valgrind = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command]
    result = subprocess.run(valgrind, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if result.returncode > 1:
        sys.exit(f"{command[:2]} ended with {result.returncode}: {result.stderr}")
    return int(re.search(r"Collected : (\d+)", result.stderr).group(1)) / MILLION


class Files:
    """Documents in a folder."""

    def __init__(self, folder: str):
        self.folder = pathlib.Path(folder)

    def write(self, name: str, text: str) -> str:
        path = self.folder / name
        path.write_text(text)
        return str(path)

    def of_one_field(self, number: int, epoch: str) -> list[str]:
        """Fields over ten hours of the sky, at hour angles from -1 to 1."""
        def shifted(index: int) -> str:
            text = EXAMPLE.replace('epoch="2027.25"', f'epoch="{epoch.format(index % 1000)}"')
            text = text.replace('ha="-1.0"', f'ha="{-1 + index % 50 * 0.04:.2f}"')
            return re.sub(r'((?:targra|RA_d)=")([\d.]+)',
                          lambda found: f"{found[1]}{float(found[2]) - 80 + index * 0.32:.6f}", text)
        return [self.write(f"{epoch}_{index}.xml", shifted(index)) for index in range(number)]

    def of_fields(self, number: int) -> str:
        before, field, after = re.fullmatch(r"(.*<fields>\n)(.*)( </fields>.*)", EXAMPLE, re.DOTALL).groups()
        return self.write(f"{number}.xml", before + field * number + after)

    def broken(self, size: int, point: str) -> str:
        """Targets without an end; a decimal point that is none is a fault."""
        text = EXAMPLE[:EXAMPLE.index("<target ")]
        targets = (f'<target targname="t{index}" targra="{190 + index * 2e-4:.6f}" targdec="-11.623054"/>\n'
                   for index in range(size // 68))
        return self.write(f"{size}_bytes.xml", text + "".join(targets).replace(".", point))


def print_documents(veko: list[str], files: Files) -> None:
    print("\n| Instructions, millions | veko check | xmllint | ratio | goal |\n|---|---:|---:|---:|---:|")
    for what, epoch, goal in [("of one epoch", "2027.25", "2.0"), ("of different epochs", "2027.25{:03}", "")]:
        documents = files.of_one_field(DOCUMENTS, epoch)
        before = [0.0, 0.0]
        for first, last in [(0, 1), (1, DOCUMENTS // 10), (DOCUMENTS // 10, DOCUMENTS)]:
            both = [instructions([*command, *documents[:last]])
                    for command in (veko, ["xmllint", "--noout", "--relaxng", SCHEMA])]
            each = [(now - then) / (last - first) for now, then in zip(both, before)]
            label = f"1 document {what}" if last == 1 else f"each further one, {first} to {last}"
            print(f"| {label} | {each[0]:.2f} | {each[1]:.2f} | {each[0] / each[1]:.2f} | |", flush=True)
            before = both
        print(f"| {DOCUMENTS} documents {what} | {both[0]:.0f} | {both[1]:.0f} | {both[0] / both[1]:.2f} | {goal} |",
              flush=True)


def print_fields(veko: list[str], files: Files) -> None:
    print("\n| Instructions, millions | veko check |\n|---|---:|")
    before, fewer = instructions([*veko, files.of_fields(1)]), 1
    for fields in (10, 100):
        now = instructions([*veko, files.of_fields(fields)])
        print(f"| each further field, {fewer} to {fields} | {(now - before) / (fields - fewer):.3f} |", flush=True)
        before, fewer = now, fields


def print_broken(veko: list[str], files: Files, largest: list[int]) -> None:
    print("\n| Document without its end | instructions per byte |\n|---|---:|")
    nothing = instructions([*veko, files.broken(0, ".")])
    for what, point, sizes in [("right targets", ".", [100_000, 1_000_000, *largest]),
                               ("two faults in each target", ",", [100_000, 300_000])]:
        for size in sizes:
            each = (instructions([*veko, files.broken(size, point)]) - nothing) * MILLION / size
            print(f"| {size / 1e6:g} MB of {what} | {each:.0f} |", flush=True)


def main(build: str, mode: str = "full") -> None:
    os.environ["QT_HASH_SEED"] = "0"
    veko = [str(pathlib.Path(build).resolve() / "pos" / "positioner" / "veko" / "veko"), "check"]
    with tempfile.TemporaryDirectory(prefix="veko-checks-") as folder:
        files = Files(folder)
        print_documents(veko, files)
        print_fields(veko, files)
        print_broken(veko, files, [] if mode == "quick" else [10_000_000])


main(*sys.argv[1:])
