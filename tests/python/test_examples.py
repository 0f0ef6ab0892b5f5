"""The examples, held to the program and to a formula."""

import json
import pathlib
import re
import sys

import numpy as np
import veko
from conftest import ROOT, SOMBRERO, VEKO, run
from numpy.typing import NDArray


def output_of(example: str, *arguments: object) -> list[str]:
    """The lines that an example prints."""
    result = run(sys.executable, ROOT / "examples/python" / example, *arguments)
    assert (result.returncode, result.stderr) == (0, "")
    return result.stdout.splitlines()


def is_picture(path: pathlib.Path) -> bool:
    return path.read_bytes().startswith(b"\x89PNG")


def test_a_season_is_planned(tmp_path: pathlib.Path) -> None:
    picture = tmp_path / "season.png"
    _, *galaxies = output_of("season.py", "2027-04-01", "2027-04-03", picture)
    assert [line[:5].strip() for line in galaxies] == ["M 74", "M 81", "M 104", "M 64"]
    options = ["--ra", "194.1821", "--dec", "21.6828", "--twilight", "-18", "--moon", "30", "--airmass", "2"]
    season = ["--from", "2027-04-01", "--to", "2027-04-03", "--format", "json"]
    nights = json.loads(run(VEKO, "window", *options, *season).stdout)["nights"]
    days = sum(window["end"]["mjdTai"] - window["start"]["mjdTai"] for night in nights for window in night["windows"])
    assert float(galaxies[3].split()[3]) == round(days * 24, 1)
    assert is_picture(picture)


def squeezed(pointing: veko.Pointing, offsets: NDArray[np.float64]) -> NDArray[np.float64]:
    """By how much refraction moves offsets from a place, east and north: the first order in the refractivity n - 1.

    A small field is squeezed by it, along the vertical by (n - 1) / cos² z, and turned with the direction to the pole.
    """
    refractivity = 79.2e-6 * pointing.pressure / pointing.temperature  # of visible light; millibar and kelvin
    tan_z = 1 / np.tan(np.radians(pointing.altitude))
    parallactic = np.radians(pointing.parallactic_angle)
    zenith = np.array([np.sin(parallactic), np.cos(parallactic)])
    turn = tan_z * zenith[0] * np.tan(np.radians(pointing.field_centre[1]))
    matrix = np.eye(2) + tan_z**2 * np.outer(zenith, zenith) + turn * np.array([[0, -1], [1, 0]])
    return np.asarray(refractivity * matrix @ offsets)


def test_the_drift_of_the_fibres_is_that_of_refraction(tmp_path: pathlib.Path) -> None:
    picture = tmp_path / "drift.png"
    lines = output_of("drift.py", SOMBRERO, picture)
    drifts = [float(re.findall(r"([0-9.]+) mas", line)[0]) for line in lines]
    pointings = [veko.Pointing(190, -11.623, epoch=2027.25, hour_angle=hours) for hours in np.arange(-3, 3.1, 0.5)]
    bundle = veko.Bundle()
    arcsec = np.degrees(1 / 11724.24) * 3600  # of a millimetre on the plate, by the focal length
    offsets = np.array([-bundle.x, bundle.y + 20]) * arcsec
    moved = [squeezed(pointing, offsets) for pointing in pointings]
    expected = [np.hypot(*(now - moved[0])).max() * 1000 for now in moved]
    np.testing.assert_allclose(drifts, expected, rtol=0.04)
    assert is_picture(picture)
