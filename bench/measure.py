"""Measures veko_configure as a process beside the floor, an empty program and a script on astropy; prints a table.

Usage: measure.py BUILD_FOLDER [quick]

Instructions are counted by callgrind and depend on neither the machine's speed nor its load, only on its libraries. The
quick table leaves out what takes minutes: long documents and wall times.
"""
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[1]
RESOURCES = PROJECT / "pos" / "positioner" / "resources"
SYSTEM_PYTHON = "/usr/bin/python3"
# The XML library orders attributes by a hash with a random seed; the program sets this one by itself.
ENVIRONMENT = {**os.environ, "QT_HASH_SEED": "0"}
MILLION = 1e6

Command = list[str]


class Programs:
    """The commands to measure, and the inputs, made in a folder of their own."""

    def __init__(self, build: pathlib.Path, folder: pathlib.Path):
        self.folder = folder
        self.program = str(build / "pos" / "positioner" / "veko_configure" / "veko_configure")
        self.floor = str(build / "bench" / "floor")
        self.empty = str(build / "bench" / "empty")

    def input(self, fields: int) -> str:
        """A document with the example's one field as many times as wanted."""
        name = self.folder / f"{fields}.xml"
        if not name.exists():
            text = (PROJECT / "examples" / "sombrero_south.xml").read_text()
            before, field, after = re.fullmatch(r"(.*<fields>\n)(.*)( </fields>.*)", text, re.DOTALL).groups()
            name.write_text(before + field * fields + after)
        return str(name)

    def run(self, fields: int) -> Command:
        return [self.program, "-i", self.input(fields), "-o", str(self.folder / "program.xml")]

    def floor_run(self, fields: int) -> Command:
        documents = [str(RESOURCES / name) for name in ("configure.xml", "focal_plane_map.xml", "VEKO.xml")]
        return [self.floor, *documents, self.input(fields), str(self.folder / "floor.xml")]


def finished(command: Command) -> str:
    """Runs a command to its good end. Returns its error stream."""
    result = subprocess.run(command, env=ENVIRONMENT, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if result.returncode != 0:
        sys.exit(f"{shlex.join(command)} ended with {result.returncode}: {result.stderr}")
    return result.stderr


def instructions(command: Command) -> int:
    report = finished(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command])
    return int(re.search(r"Collected : (\d+)", report).group(1))


def peak_kib(command: Command) -> int:
    """Peak resident memory: the median of three runs."""
    return sorted(int(finished(["time", "-f", "%M", *command]).split()[-1]) for _ in range(3))[1]


def wall_ms(command: Command) -> float:
    """The median."""
    with tempfile.NamedTemporaryFile() as report:
        finished(["hyperfine", "--shell=none", "--warmup=1", "--min-runs=5",
                  f"--export-json={report.name}", shlex.join(command)])
        return json.load(report)["results"][0]["median"] * 1000


def placed_targets(document: str) -> list[list[dict[str, str]]]:
    """The attributes of the targets on fibres, by field."""
    fields = ElementTree.parse(document).getroot().findall("observation/fields/field")
    return [[t.attrib for t in field.findall("target") if t.get("ifu_spaxel")] for field in fields]


def loaded_libraries(program: str) -> set[str]:
    """The shared libraries of a program and of its libraries."""
    return set(re.findall(r"(\S+) => ", subprocess.check_output(["ldd", program], text=True)))


def check_comparison(programs: Programs) -> None:
    """The floor must write the targets that the program writes, and the empty program load the same libraries."""
    finished(programs.run(2))
    finished(programs.floor_run(2))
    targets = placed_targets(str(programs.folder / "program.xml"))
    if [len(field) for field in targets] != [603, 603] or targets != placed_targets(str(programs.folder / "floor.xml")):
        sys.exit("The floor does not write the program's targets")
    difference = loaded_libraries(programs.program) ^ loaded_libraries(programs.empty)
    if difference:
        sys.exit(f"The empty program is not linked like the program: {difference}")


def print_row(what: str, value: float, beside: float, goal: str, decimals: int) -> None:
    print(f"| {what} | {value:.{decimals}f} | {beside:.{decimals}f} | {value / beside:.3f} | {goal} |", flush=True)


def print_head(value: str, beside: str) -> None:
    print(f"\n| {value} | program | {beside} | ratio | goal |\n|---|---:|---:|---:|---:|")


def print_by_fields(count, programs: Programs, numbers: list[int], unit: float, goal: str, decimals: int) -> None:
    """A row for the least number of fields, and one for each further field between two numbers."""
    before = None
    for fields in numbers:
        both = [count(run(fields)) / unit for run in (programs.run, programs.floor_run)]
        if before is None:
            print_row("1 field" if fields == 1 else f"{fields} fields", *both, goal, decimals)
        else:
            each = [(now - then) / (fields - number) for now, then in zip(both, before)]
            print_row(f"each further field, {number} to {fields}", *each, goal, decimals)
        before, number = both, fields


def print_wall_times(programs: Programs, numbers: list[int]) -> None:
    print_head("Wall time, ms, median", "floor")
    for fields in numbers:
        print_row(f"{fields} field{'s' if fields > 1 else ''}", wall_ms(programs.run(fields)),
                  wall_ms(programs.floor_run(fields)), "", 1)
    print_head("Wall time, ms, median", "other")
    print_row("`--help` beside an empty program", wall_ms([programs.program, "--help"]), wall_ms([programs.empty]),
              "", 1)
    if subprocess.run([SYSTEM_PYTHON, "-c", "import astropy"], stderr=subprocess.DEVNULL).returncode != 0:
        print("\nNo comparison with astropy: Debian's python3-astropy is not installed.")
        return
    script = [SYSTEM_PYTHON, str(PROJECT / "bench" / "astropy_field.py"), programs.input(1)]
    print_row("1 field beside a script on astropy", wall_ms(programs.run(1)), wall_ms(script), "", 1)


def main(build: str, mode: str = "full") -> None:
    if mode not in ("full", "quick"):
        sys.exit("usage: measure.py BUILD_FOLDER [quick]")
    quick = mode == "quick"
    with tempfile.TemporaryDirectory(prefix="veko-bench-") as folder:
        programs = Programs(pathlib.Path(build).resolve(), pathlib.Path(folder))
        check_comparison(programs)
        print_head("Instructions, millions", "floor")
        print_by_fields(instructions, programs, [1, 2, 10] if quick else [1, 2, 10, 100], MILLION, "1.0, aim 0.85", 2)
        print_head("Instructions, millions", "empty program")
        print_row("`--help`", instructions([programs.program, "--help"]) / MILLION,
                  instructions([programs.empty]) / MILLION, "1.1", 2)
        print_head("Peak memory, KiB", "floor")
        print_by_fields(peak_kib, programs, [1, 10] if quick else [1, 10, 100, 200], 1,
                        "1.0 each further", 0)
        if not quick:
            print_wall_times(programs, [1, 10, 100, 200])


main(*sys.argv[1:])
