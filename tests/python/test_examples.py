"""The examples run, and tell what the module tells."""

import pathlib
import subprocess
import sys

import veko
from conftest import ROOT


def output_of(example: str, *arguments: object) -> list[str]:
    """The lines that an example prints."""
    command = [sys.executable, ROOT / "examples/python" / example, *arguments]
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    assert (result.returncode, result.stderr) == (0, "")
    return result.stdout.splitlines()


def is_picture(path: pathlib.Path) -> bool:
    return path.read_bytes().startswith(b"\x89PNG")


def test_a_season_is_planned(tmp_path: pathlib.Path) -> None:
    picture = tmp_path / "season.png"
    _, *galaxies = output_of("season.py", "2027-04-01", "2027-04-03", picture)
    assert [line[:5].strip() for line in galaxies] == ["M 74", "M 81", "M 104", "M 64"]
    nights = veko.windows((194.1821, 21.6828), "2027-04-01", "2027-04-03", twilight=-18, moon=30, airmass=2)
    assert float(galaxies[3].split()[3]) == round(sum(w.hours for night in nights for w in night.windows), 1)
    assert is_picture(picture)


def test_the_drift_of_the_fibres_is_drawn(tmp_path: pathlib.Path) -> None:
    picture = tmp_path / "drift.png"
    lines = output_of("drift.py", ROOT / "examples/sombrero_south.xml", picture)
    drifts = [float(line.split()[-2]) for line in lines]
    assert len(drifts) == 13
    assert drifts[0] == 0 and 10 < drifts[-1] < 500
    assert is_picture(picture)
