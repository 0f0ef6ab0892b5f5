"""Measures the processor time of veko window beside astroplan's for the same job; prints a table.

Usage: windows.py BUILD_FOLDER [quick]

The job is one that both can do: when a field is 25 degrees up and the Sun 12 degrees down. veko window looks at the
rotator too. The start of either program, with all that it reads once, is taken off. The quick table leaves out
astroplan's season, which takes half a minute.
"""
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[1]
EXAMPLE = (PROJECT / "examples" / "sombrero_south.xml").read_text()
SYSTEM_PYTHON = "/usr/bin/python3"
PLACE = ("189.997633", "-11.623054")  # of the example
FIRST, LAST, NIGHTS = "2027-01-01", "2027-12-31", 365
RUNS = 15
FURTHER = 100


def milliseconds(command: list[str]) -> float:
    """Processor time; the middle one of some runs."""
    times = []
    for _ in range(RUNS):
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"{command} ended with {process.returncode}")
        times.append((usage.ru_utime + usage.ru_stime) * 1e3)
    return statistics.median(times)


class Documents:
    """Documents in a folder, made from the example."""

    def __init__(self, folder: str):
        self.folder = pathlib.Path(folder)

    def write(self, name: str, text: str) -> str:
        path = self.folder / name
        path.write_text(text)
        return str(path)

    def of_fields(self, number: int) -> str:
        before, field, after = re.fullmatch(r"(.*<fields>\n)(.*)( </fields>.*)", EXAMPLE, re.DOTALL).groups()
        return self.write(f"{number}.xml", before + field * number + after)

    def of_nights(self, number: int) -> list[str]:
        """Three nights apart."""
        return [self.write(f"night_{index}.xml", EXAMPLE.replace("2027.25", f"{2027.25 + index * 3 / 365.25:.6f}"))
                for index in range(number)]


def astroplan(nights: int) -> str:
    """Milliseconds, once what it keeps is there."""
    script = [SYSTEM_PYTHON, str(PROJECT / "bench" / "astroplan_windows.py"), FIRST, str(nights), *PLACE]
    output = subprocess.run(script, stdout=subprocess.PIPE, text=True, check=True).stdout
    return f"{float(output.split()[1]) * 1e3:.0f}"


def main(build: str, mode: str = "full") -> None:
    window = [str(pathlib.Path(build).resolve() / "pos" / "positioner" / "veko" / "veko"), "window"]
    season = [*window, "--ra", PLACE[0], "--dec", PLACE[1], "--from", FIRST, "--to", LAST]
    with tempfile.TemporaryDirectory(prefix="veko-windows-") as folder:
        documents = Documents(folder)
        one = milliseconds([*window, documents.of_fields(1)])
        each_field = (milliseconds([*window, documents.of_fields(1 + FURTHER)]) - one) / FURTHER
        each_night = (milliseconds([*window, *documents.of_nights(1 + FURTHER)]) - one) / FURTHER
    has_astroplan = subprocess.run([SYSTEM_PYTHON, "-c", "import astroplan"], stderr=subprocess.DEVNULL).returncode == 0
    print("\n| Processor time, ms | veko window | astroplan | goal |\n|---|---:|---:|---:|")
    print(f"| start and configuration | {one - each_night:.1f} | | |")
    print(f"| a document of one field in a night of its own | {each_night:.2f} | {astroplan(1) if has_astroplan else ''} "
          "| 1 |")
    print(f"| a further field in the same night | {each_field:.2f} | | |")
    print(f"| a field in {NIGHTS} nights | {milliseconds(season) - one + each_night:.0f} | "
          f"{astroplan(NIGHTS) if has_astroplan and mode != 'quick' else ''} | 200 |")


main(*sys.argv[1:])
