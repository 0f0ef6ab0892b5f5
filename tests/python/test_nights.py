"""Windows, pages and comparisons: as veko makes them."""

import datetime
import json
import math
import pathlib
import re
import signal
from types import FrameType
from typing import Any

import numpy as np
import pytest
import veko
from conftest import ROOT, VEKO, replaced, run

SOMBRERO = ROOT / "examples/sombrero_south.xml"
VIRGO = ROOT / "examples/virgo_two_fields.xml"
OWN_OPTIONS: dict[str, Any] = {"twilight": -15, "airmass": 2, "moon": 30, "minimum": 20, "horizon_limit": 28, "pressure": 700}
OPTIONS = ["--twilight", "-15", "--airmass", "2", "--moon", "30", "--minimum", "20", "--horizon_limit", "28"]
OPTIONS += ["--pressure", "700"]


def values_of(moment: veko.Moment) -> dict[str, Any]:
    """A moment as the JSON of veko window has it, without what ends there."""
    return {
        "utc": f"{moment.utc:%Y-%m-%dT%H:%M:%S}.{moment.utc.microsecond // 1000:03}Z",
        "mjdTai": moment.mjd_tai,
        "epoch": moment.epoch,
        "lstHours": moment.sidereal_time,
        "hourAngleHours": moment.hour_angle,
        "runHourAngleHours": moment.run_hour_angle,
        "altitudeDeg": moment.altitude,
        "airmass": None if math.isnan(moment.airmass) else moment.airmass,
        "azimuthDeg": moment.azimuth,
        "parallacticDeg": moment.parallactic_angle,
        "rotatorDeg": moment.rotator_angle,
    }


def expect_windows(nights: list[veko.NightWindows], *arguments: object) -> None:
    """The windows are those of the program, to the bit."""
    expected = json.loads(run(VEKO, "window", *arguments, "--format", "json").stdout)["nights"]
    assert len(nights) == len(expected)
    for night, facts in zip(nights, expected):
        assert (night.file, night.field, str(night.night)) == (facts["file"], facts["field"], facts["night"])
        assert (len(night.windows), night.reason) == (len(facts["windows"]), facts["reason"])
        for window, moments in zip(night.windows, facts["windows"]):
            for name in ("start", "best", "end"):
                assert values_of(getattr(window, name)).items() <= moments[name].items()
            limits = (moments["start"]["limit"], moments["end"]["limit"], moments["longest"])
            assert (window.start_limit, window.end_limit, window.is_longest) == limits


def test_windows_of_a_season_are_those_of_the_program() -> None:
    nights = veko.windows(VIRGO, "2027-04-28", datetime.date(2027, 5, 2))
    assert [(night.field, night.night.day) for night in nights] == [(f, d) for f in (1, 2) for d in (28, 29, 30, 1, 2)]
    assert all(night.windows for night in nights)
    expect_windows(nights, VIRGO, "--from", "2027-04-28", "--to", "2027-05-02")
    assert veko.windows(veko.read(VIRGO), "2027-04-28") == veko.windows(VIRGO, datetime.date(2027, 4, 28))


def test_windows_take_the_options_of_the_program() -> None:
    weather: dict[str, Any] = {"temperature": 290, "relative_humidity": 0.5}
    place = ["--ra", "190", "--dec", "-11.6", "--pa", "20", "--temperature", "290", "--relative_humidity", "0.5"]
    nights = veko.windows((190, -11.6), "2027-04-01", pa=20, **weather, **OWN_OPTIONS)
    expect_windows(nights, *place, "--night", "2027-04-01", *OPTIONS)
    expect_windows(veko.windows(SOMBRERO, "2027-04-01", **OWN_OPTIONS), SOMBRERO, "--night", "2027-04-01", *OPTIONS)


def test_a_night_without_a_window_has_a_reason() -> None:
    (night,) = veko.windows((190, 89), "2027-10-01", airmass=1.5)
    assert night.windows == ()
    assert night.reason is not None and "airmass is never below 1.5" in night.reason


ANY: Any = veko
BAD_CALLS = [
    (lambda: veko.windows((190, 0), "soon"), ValueError, "night is not a date YYYY-MM-DD: soon"),
    (lambda: ANY.windows((190, 0), 61000), TypeError, "night must be a date or a text YYYY-MM-DD, not int"),
    (lambda: veko.windows((190, 0), "2027-04-02", "2027-04-01"), ValueError, "last is before night"),
    (lambda: veko.windows((190, 0), "2027-04-02", airmass=0.5), ValueError, "airmass must be from 1 to 40, not 0.5"),
    (lambda: veko.windows(SOMBRERO, "2027-04-02", pa=3), TypeError, "pa is for a place; a document has its own"),
    (
        lambda: veko.windows((190, 0), "2027-04-02", twilight="dusk"),
        ValueError,
        "twilight must be one of civil, nautical, astronomical, none or an altitude, not dusk",
    ),
    (
        lambda: veko.windows((190, 0), "1850-01-01"),
        ValueError,
        "The night of 1850-01-01 is not between 1900 and 2100, the years in which Sun and Moon are known",
    ),
    (lambda: veko.report(SOMBRERO, field_radius=0), ValueError, "field_radius must be above 0"),
    (lambda: veko.compare(SOMBRERO, SOMBRERO, ignore="ha"), TypeError, "ignore must be a sequence of names, not one text"),
]


@pytest.mark.parametrize(("call", "kind", "message"), BAD_CALLS, ids=[message for _, _, message in BAD_CALLS])
def test_a_bad_argument_is_named(call: Any, kind: type[Exception], message: str) -> None:
    with pytest.raises(kind, match=f"^{re.escape(message)}$"):
        call()


class Interrupted(Exception):
    """What the handler of a signal raises."""


def test_a_signal_ends_a_long_call() -> None:
    def interrupt(number: int, frame: FrameType | None) -> None:
        raise Interrupted

    previous = signal.signal(signal.SIGALRM, interrupt)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.05)
        with pytest.raises(Interrupted):
            veko.windows((190, 0), "2000-01-01", "2050-01-01")
        signal.setitimer(signal.ITIMER_REAL, 0.05)
        with pytest.raises(Interrupted):
            veko.Pointing(190, 0, epoch=2027).sky_to_plate(np.full(10_000_000, 190.1), 0.1)
    finally:
        signal.signal(signal.SIGALRM, previous)


def test_a_report_is_the_page_of_the_program(tmp_path: pathlib.Path) -> None:
    output = tmp_path / "page.html"
    options = ["--night", "2027-04-01", "--exposure", "30", "--field_radius", "0.5", *OPTIONS]
    result = run(VEKO, "report", SOMBRERO, "-o", output, *options)
    assert (result.returncode, result.stderr) == (0, "")
    command = " ".join(str(word) for word in [VEKO, "report", SOMBRERO, "-o", output, *options])
    theirs = output.read_text()
    assert command in theirs
    night = datetime.date(2027, 4, 1)
    page = veko.report(SOMBRERO, night=night, exposure=30, field_radius=0.5, **OWN_OPTIONS)
    assert page.html == theirs.replace(command, f"veko.report {SOMBRERO}")
    page.write(output)
    assert output.read_text() == page.html


def test_a_notebook_shows_a_document_as_its_page(tmp_path: pathlib.Path) -> None:
    shown = veko.read(SOMBRERO)._repr_html_()
    assert shown.startswith('<iframe srcdoc="&lt;!doctype html&gt;')
    assert shown.count("<") == 2
    document = tmp_path / "field.xml"
    document.write_text(replaced(SOMBRERO.read_text(), 'ha="-1.0"', 'ha="5"'))
    failed = veko.read(document)._repr_html_()
    assert failed.startswith(f"<pre>{document}:10:17: ") and "field is below the horizon limit" in failed


def test_a_comparison_is_that_of_the_program(tmp_path: pathlib.Path) -> None:
    first, second = tmp_path / "first.xml", tmp_path / "second.xml"
    documents: Any = veko.configure(SOMBRERO, first), veko.configure(SOMBRERO, second, pressure=700, hour_angle=0.5)
    options = ["--plate-tolerance", "2", "--sky-tolerance", "0.01", "--ignore", "ha"]
    expected = json.loads(run(VEKO, "compare", first, second, *options, "--format", "json").stdout)
    for one, other in (documents, (first, second)):
        found = veko.compare(one, other, plate_tolerance=2, sky_tolerance=0.01, ignore=["ha"])
        assert (found.same, found.fields, found.differences) == (False, expected["fields"], expected["differences"])
        assert str(found) == run(VEKO, "compare", first, second, *options).stdout
    run(VEKO, "compare", first, second, *options, "--picture", tmp_path / "picture.svg")
    assert found._repr_svg_() == (tmp_path / "picture.svg").read_text()
