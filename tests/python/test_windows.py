"""Windows, as `veko window` finds them."""

import datetime
import json
import math
import pathlib
import signal
from collections.abc import Callable
from types import FrameType
from typing import Any

import numpy as np
import pytest
import veko
from conftest import NIGHT, NIGHT_OPTIONS, ROOT, SOMBRERO, VEKO, run

VIRGO = ROOT / "examples/virgo_two_fields.xml"


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
    nights = veko.windows((190, -11.6), "2027-04-01", pa=20, **weather, **NIGHT)
    expect_windows(nights, *place, "--night", "2027-04-01", *NIGHT_OPTIONS)
    expect_windows(veko.windows(SOMBRERO, "2027-04-01", **NIGHT), SOMBRERO, "--night", "2027-04-01", *NIGHT_OPTIONS)


def test_a_night_without_a_window_has_a_reason() -> None:
    (night,) = veko.windows((190, 89), "2027-10-01", airmass=1.5)
    assert night.windows == ()
    assert night.reason is not None and "airmass is never below 1.5" in night.reason


def test_windows_are_of_the_instrument_that_is_asked_for(
    newer_document: pathlib.Path, newer_config: pathlib.Path
) -> None:
    latitude = newer_config.read_text().replace("<latitude>28.760583<", "<latitude>-28.760583<")
    newer_config.write_text(latitude)
    nights = veko.windows(newer_document, "2027-04-01", config=newer_config)
    assert nights[0].windows != veko.windows(SOMBRERO, "2027-04-01")[0].windows
    expect_windows(nights, newer_document, "--night", "2027-04-01", "-c", newer_config)
    assert veko.windows(veko.read(newer_document, config=newer_config), "2027-04-01") == nights
    older_map = newer_config.parent / "focal_plane_map.xml"
    older_map.write_text(older_map.read_text().replace('datamver="9.00"', 'datamver="7.00"'))
    with pytest.raises(veko.Error, match="^Data model version mismatch$"):
        veko.windows((190, 0), "2027-04-01", config=newer_config)


def test_a_leap_second_is_the_first_of_the_next_day() -> None:
    # 2016 ended with one. The field culminates in it.
    (night,) = veko.windows((29.8665, -11.6), "2016-12-31", twilight="none")
    instants = [moment.utc for window in night.windows for moment in (window.start, window.best, window.end)]
    assert datetime.datetime(2017, 1, 1, tzinfo=datetime.timezone.utc) in [
        instant.replace(microsecond=0) for instant in instants
    ]


class Interrupted(Exception):
    """What the handler of a signal raises."""


def test_a_signal_ends_a_long_call() -> None:
    def interrupt(number: int, frame: FrameType | None) -> None:
        raise Interrupted

    pointing, ra = veko.Pointing(190, 0, epoch=2027), np.full(10_000_000, 190.1)
    long_calls: list[Callable[[], object]] = [
        lambda: veko.windows((190, 0), "1950-01-01", "2050-01-01"),
        lambda: pointing.sky_to_plate(ra, 0.1),
    ]
    previous = signal.signal(signal.SIGALRM, interrupt)
    try:
        for call in long_calls:
            signal.setitimer(signal.ITIMER_REAL, 0.1)
            with pytest.raises(Interrupted):
                call()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, previous)
