#!/usr/bin/python3
"""Prints how much the terms that the model leaves out, and conditions that are not as stated, move things on the plate.

See tools/accuracy. Needs Debian's python3-astropy and python3-erfa, no network. The lines have the form that tables.py
reads: the name of a table and its cells, separated by tabs; the first line of a table holds the heads of its columns.
"""
import math
import pathlib
import random
import sys
from typing import NamedTuple

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "golden"))

import astropy.units as u  # noqa: E402
import numpy as np  # noqa: E402
from astropy.coordinates import ICRS, Distance  # noqa: E402
from astropy.coordinates.erfa_astrom import erfa_astrom  # noqa: E402

from example_targets import shipped_site  # noqa: E402
from observed_chain import (OBSERVERS, Pointing, Site, Weather, unit_vector, use_earth_orientation,  # noqa: E402
                            use_ideal_earth_orientation)

SEED = 20261121
FIELDS = 20  # for each row of a table
SITE, _ = shipped_site()
WEATHER = Weather(283.15, 770.0, 0.2)
UM_PER_RADIAN = math.degrees(SITE.optics.coefficients[0]) * 1e3  # on the axis
ALTITUDES = (25.0, 90.0)  # from the default horizon limit up, where the shipped site sees the pole
SECOND = 1 / 86400  # days


class Case(NamedTuple):
    """What may differ between two observations of a field."""
    wavelength_um: float = 0.6
    ut1_minus_utc: float = 0.0
    pole: tuple[float, float] = (0.0, 0.0)
    observer: str = "turning"
    height_m: float = SITE.height_m
    weather: Weather = WEATHER
    later: float = 0.0  # days


class Field(NamedTuple):
    mjd: float
    centre: tuple[float, float]


class Colour(Pointing):
    """A pointing in light of another wavelength."""

    def __init__(self, wavelength_um: float, *rest):
        self.wavelength_um = wavelength_um
        super().__init__(*rest)

    def observed_frame(self, refraction: bool):
        frame = super().observed_frame(refraction)
        return frame.replicate_without_data(obswl=self.wavelength_um * u.micron)


def observe(field: Field, case: Case) -> Pointing:
    use_earth_orientation(case.ut1_minus_utc, *case.pole)
    site = Site(SITE.name, SITE.longitude_deg, SITE.latitude_deg, case.height_m, SITE.horizon_limit_deg, SITE.optics)
    return Colour(case.wavelength_um, site, "VEKO", field.mjd + case.later, case.weather, field.centre, 0.0,
                  case.observer)


def places_in_field(centre: tuple[float, float]) -> tuple[np.ndarray, np.ndarray]:
    """Places at half a degree and at one degree from the centre, all around it."""
    turns = np.arange(0, 2 * np.pi, np.pi / 6)
    distance = np.radians(np.repeat([0.5, 1.0], len(turns)))
    turns = np.tile(turns, 2)
    ra, dec = centre
    towards = np.array([np.cos(dec) * np.cos(ra), np.cos(dec) * np.sin(ra), np.sin(dec)])
    north = np.array([-np.sin(dec) * np.cos(ra), -np.sin(dec) * np.sin(ra), np.cos(dec)])
    east = np.array([-np.sin(ra), np.cos(ra), 0.0])
    sideways = np.outer(north, np.cos(turns)) + np.outer(east, np.sin(turns))
    places = np.outer(towards, np.ones_like(turns)) * np.cos(distance) + sideways * np.sin(distance)
    return np.arctan2(places[1], places[0]) % (2 * np.pi), np.arcsin(places[2])


class Effect(NamedTuple):
    """Worst effect, µm: on the field centre, on places relative to it, and on these when a turn may be taken out."""
    common: float
    within: float
    but_for_a_turn: float

    def worst(self, other: "Effect") -> "Effect":
        return Effect(*map(max, self, other))


def effect(field: Field, first: Case, second: Case) -> Effect:
    places = places_in_field(field.centre)
    pointings, positions = [], []
    for case in (first, second):
        pointings.append(observe(field, case))
        positions.append(pointings[-1].plate_position(*places))
    centres = [unit_vector(np.float64(p.hour_angle), np.float64(p.declination)) for p in pointings]
    common = np.linalg.norm(np.cross(*centres)) * UM_PER_RADIAN
    change = (positions[1] - positions[0]) * 1e3
    turn = np.sum((np.conj(positions[0]) * change).imag) / np.sum(np.abs(positions[0])**2)
    return Effect(common, np.max(np.abs(change)), np.max(np.abs(change - 1j * turn * positions[0])))


def fields(seed: int, altitudes: tuple[float, float], declinations: tuple[float, float]) -> list[Field]:
    """Fields at random dates and hour angles to 5 h: ranges of altitude and of absolute declination in degrees."""
    rng = random.Random(seed)
    use_ideal_earth_orientation()
    latitude = math.radians(SITE.latitude_deg)
    found: list[Field] = []
    while len(found) < FIELDS:
        hour_angle = math.radians(rng.uniform(-75, 75))
        dec = math.radians(rng.uniform(*declinations)) * rng.choice((-1, 1))
        altitude = math.degrees(math.asin(math.sin(latitude) * math.sin(dec)
                                          + math.cos(latitude) * math.cos(dec) * math.cos(hour_angle)))
        if altitudes[0] <= altitude <= altitudes[1]:
            mjd = rng.uniform(51545, 59580)
            frame = Pointing(SITE, "VEKO", mjd, WEATHER, (0.0, 0.0), 0.0, "turning")
            frame.frame = frame.observed_frame(refraction=True)
            ra, dec = frame.astrometric(np.array([hour_angle]), np.array([dec]))
            found.append(Field(mjd, (float(ra[0]), float(dec[0]))))
    return found


def worst_effect(some_fields: list[Field], pairs: list[tuple[Case, Case]]) -> Effect:
    worst = Effect(0.0, 0.0, 0.0)
    for field in some_fields:
        for first, second in pairs:
            worst = worst.worst(effect(field, first, second))
    return worst


def print_row(table: str, *cells: object) -> None:
    print(table, *(f"{cell:.6e}" if isinstance(cell, float) else str(cell) for cell in cells), sep="\t")


DECLINATIONS = (("0–45", (0.0, 45.0)), ("45–60", (45.0, 60.0)), ("60–85", (60.0, 85.0)), ("85–89", (85.0, 89.0)),
                ("89.9", (89.9, 89.9)))


def print_left_out() -> None:
    turning = Case()
    terms = (
        ("Speed of the turning Earth (diurnal aberration)", [(Case(observer="resting"), turning)]),
        ("UT1−UTC of 0.9 s", [(turning, Case(ut1_minus_utc=0.9))]),
        ("Polar motion of 0.5″", [(turning, Case(pole=pole)) for pole in ((0.5, 0.0), (0.0, 0.5))]),
        ("Height of the site, 0 against 5000 m", [(Case(height_m=0.0), Case(height_m=5000.0))]),
    )
    print_row("left-out", "Term", "Field centre, µm", *(f"Field at declination {name}°, µm" for name, _ in DECLINATIONS),
              "but for a turn, any declination, µm")
    by_declination = [fields(SEED + i, ALTITUDES, limits) for i, (_, limits) in enumerate(DECLINATIONS)]
    for name, pairs in terms:
        effects = [worst_effect(some, pairs) for some in by_declination]
        print_row("left-out", name, max(e.common for e in effects), *(e.within for e in effects),
                  max(e.but_for_a_turn for e in effects))


def shift_by_parallax(field: Field, parallax: float) -> float:
    """How far a target's own annual parallax, arcsec, moves it, µm."""
    pointing = observe(field, Case())
    ra, dec = field.centre
    near = ICRS(ra=[ra] * u.rad, dec=[dec] * u.rad, distance=Distance(parallax=[parallax] * u.arcsec))
    with erfa_astrom.set(OBSERVERS["turning"]()):
        seen = near.transform_to(pointing.frame)
    first = unit_vector(np.float64(seen.ha.rad[0]), np.float64(seen.dec.rad[0]))
    second = unit_vector(np.float64(pointing.hour_angle), np.float64(pointing.declination))
    return float(np.linalg.norm(np.cross(first, second)) * UM_PER_RADIAN)


def print_parallaxes() -> None:
    print_row("annual-parallax", "Parallax of the target, arcsec", "The target, worst, µm")
    some = fields(SEED + 10, ALTITUDES, (0.0, 85.0))
    for parallax in (0.01, 0.1, 0.75):
        print_row("annual-parallax", str(parallax), max(shift_by_parallax(field, parallax) for field in some))


def at_altitudes(table: str, first_head: str, rows: list[tuple[str, list[tuple[Case, Case]]]]) -> None:
    """The field centre and the field, by altitude, for declinations to 60 degrees."""
    altitudes = (("30°", (29.5, 30.5)), ("45°", (44.5, 45.5)), ("60°", (59.5, 60.5)), ("85–90°", (85.0, 90.0)))
    print_row(table, first_head, *(f"{part} at {name}, µm" for name, _ in altitudes for part in ("Centre", "field")))
    by_altitude = [fields(SEED + 20 + i, limits, (0.0, 60.0)) for i, (_, limits) in enumerate(altitudes)]
    for name, pairs in rows:
        effects = [worst_effect(some, pairs) for some in by_altitude]
        print_row(table, name, *(value for e in effects for value in (e.common, e.within)))


def main() -> None:
    print_left_out()
    print_parallaxes()
    stated = Case()
    at_altitudes("wavelength", "Light of", [(f"{colour} µm", [(stated, Case(wavelength_um=colour))])
                                            for colour in (0.4, 0.5, 0.7, 0.9)])

    def air(kelvin: float = 283.15, millibar: float = 770.0, humidity: float = 0.2) -> Case:
        return Case(weather=Weather(kelvin, millibar, humidity))

    at_altitudes("conditions", "Not as stated", [
        ("1 s later (the tolerance of the hour angle)", [(stated, Case(later=SECOND))]),
        ("10 min later", [(stated, Case(later=600 * SECOND))]),
        ("10 mbar more", [(stated, air(millibar=780.0))]),
        ("5 K warmer", [(stated, air(kelvin=288.15))]),
        ("Humidity 0.7 for 0.2", [(stated, air(humidity=0.7))]),
    ])


if __name__ == "__main__":
    main()
