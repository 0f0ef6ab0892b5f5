"""What the tests of the Python module share."""

from __future__ import annotations

import csv
import os
import pathlib
import shutil
import subprocess
from typing import Any

import pytest
import veko
from hypothesis import settings

# The same cases in every run, and nothing kept in the tree.
settings.register_profile("fixed", derandomize=True, database=None, deadline=None)
settings.load_profile("fixed")

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = os.environ["VEKO_CONFIGURE"]
VEKO = os.environ["VEKO"]
LIBRARY_PLACES = os.environ["LIBRARY_PLACES"]
EXAMPLES = sorted((ROOT / "examples").glob("*.xml"))
SOMBRERO = ROOT / "examples/sombrero_south.xml"


CHAIN_TOLERANCE_MM = 1e-8
"""Rounding on two ways from the sky to the plate, as the C++ tests have it."""
PLACEMENT_TOLERANCE_MM = 1e-4
"""The field-centre solve ends when a place is this near to its fibre."""
SECOND = 1 / 3600
"""How near the hour-angle solve comes, hours."""
NIGHT: dict[str, Any] = {"twilight": -15, "airmass": 2, "moon": 30, "minimum": 20, "horizon_limit": 28, "pressure": 700}
NIGHT_OPTIONS = ["--twilight", "-15", "--airmass", "2", "--moon", "30", "--minimum", "20", "--horizon_limit", "28"]
NIGHT_OPTIONS += ["--pressure", "700"]
"""What is asked of a night, in Python and on the command line."""


def golden(name: str) -> list[dict[str, str]]:
    """The rows of a table of another program."""
    lines = (ROOT / "tests/golden" / name).read_text().splitlines()
    return list(csv.DictReader(line for line in lines if not line.startswith("#")))


def run(*arguments: object) -> subprocess.CompletedProcess[str]:
    """What a program does with its arguments."""
    return subprocess.run([str(argument) for argument in arguments], capture_output=True, text=True)


def m64(**changes: Any) -> veko.Pointing:
    """The pointing of docs/position.md."""
    values: dict[str, Any] = {
        "ra": 194.182151,
        "dec": 21.781378,
        "pa": 30,
        "mjd_tai": 60783.98,
        "pressure": 770,
        **changes,
    }
    return veko.Pointing(**values)


M64: Any = m64()


def replaced(text: str, old: str, new: str) -> str:
    """A text in which something stands in the place of what stands there once."""
    assert text.count(old) == 1, old
    return text.replace(old, new)


@pytest.fixture
def other_config(tmp_path: pathlib.Path) -> pathlib.Path:
    """The configuration of an instrument with other optics, and a plate that is shifted and turned."""
    folder = tmp_path / "instrument"
    shutil.copytree(ROOT / "pos/positioner/resources", folder)
    config = folder / "configure.xml"
    config.write_text(config.read_text().replace(">:/", ">"))
    focal_plane_map = folder / "focal_plane_map.xml"
    text = replaced(focal_plane_map.read_text(), 'c1="202.841"', 'c1="190.5"')
    text = replaced(text, '<VEKO x0="0.0" y0="0.0" r0="0.0"/>', '<VEKO x0="1.5" y0="-2.25" r0="7"/>')
    focal_plane_map.write_text(text)
    return config


@pytest.fixture
def newer_config(other_config: pathlib.Path) -> pathlib.Path:
    """The same with a data model version of its own."""
    for file in other_config.parent.glob("*.xml"):
        file.write_text(file.read_text().replace('datamver="8.00"', 'datamver="9.00"'))
    return other_config


@pytest.fixture
def newer_document(tmp_path: pathlib.Path) -> pathlib.Path:
    """The example with that data model version."""
    document = tmp_path / "newer.xml"
    document.write_text(replaced(SOMBRERO.read_text(), 'datamver="8.00"', 'datamver="9.00"'))
    return document
