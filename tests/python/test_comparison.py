"""Comparisons, as `veko compare` makes them."""

import html
import json
import pathlib
from typing import Any

import veko
from conftest import SOMBRERO, VEKO, run


def test_a_comparison_is_that_of_the_program(tmp_path: pathlib.Path) -> None:
    first, second = tmp_path / "first.xml", tmp_path / "second.xml"
    documents: Any = veko.configure(SOMBRERO, first), veko.configure(SOMBRERO, second, pressure=700, hour_angle=0.5)
    options = ["--plate-tolerance", "2", "--sky-tolerance", "0.01", "--ignore", "ha"]
    expected = json.loads(run(VEKO, "compare", first, second, *options, "--format", "json").stdout)
    for one, other in (documents, (first, second)):
        found = veko.compare(one, other, plate_tolerance=2, sky_tolerance=0.01, ignore=(name for name in ["ha"]))
        assert (found.same, found.fields, found.differences) == (False, expected["fields"], expected["differences"])
        assert str(found) == run(VEKO, "compare", first, second, *options).stdout
    run(VEKO, "compare", first, second, *options, "--picture", tmp_path / "picture.svg")
    picture = (tmp_path / "picture.svg").read_text()
    assert found._repr_html_() == f"<pre>{html.escape(str(found))}</pre>{picture}"
