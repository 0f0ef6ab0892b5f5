#!/usr/bin/python3
"""Writes the data files of this folder: see README.md. Needs Debian's python3-astropy and python3-erfa, no network.

    /usr/bin/python3 tests/golden/generate_golden.py
"""
import math
import pathlib
import platform
import random

import astropy
import erfa
import numpy as np

import example_targets
import worked_example
from observed_chain import Optics, Pointing, Site, Weather, astrometric_place, use_ideal_earth_orientation

FOLDER = pathlib.Path(__file__).resolve().parent
SEED = 20261121
DATE = "2026-11-21"
OBSERVERS = ("turning", "resting")
POINTINGS_PER_SITE = 20
PLACES_PER_POINTING = 10
FIELD_RADIUS_DEG = 1.0
LOWEST_DEC_DEG, HIGHEST_DEC_DEG = -25.0, 89.9

SHIPPED_OPTICS = Optics(202.841, 3.0191, -0.0995944, {"PLATE_A": (0.0, 0.0), "VEKO": (0.0, 0.0)}, 0.0)
TURNED_OPTICS = Optics(198.125, 2.75, -0.125, {"PLATE_A": (-3.5, 0.875), "VEKO": (1.5, -2.25)}, 7.25)
SITES = [
    Site("shipped", -17.881639, 28.760583, 2332.0, 5.0, SHIPPED_OPTICS),
    Site("southern", -70.404, -24.627, 2635.0, 30.0, SHIPPED_OPTICS),
    Site("turned_plate", 35.5, 46.25, 650.0, 12.0, TURNED_OPTICS),
]


def write_table(name, about, columns, rows):
    """A table as text. Doubles have 17 significant digits, so that they read back to the same bits."""
    head = [f"# {line}" for line in about.splitlines()] + [
        "# Written by tests/golden/generate_golden.py: /usr/bin/python3 tests/golden/generate_golden.py",
        f"# astropy {astropy.__version__}, pyerfa {erfa.__version__} (ERFA {erfa.version.erfa_version}), "
        f"numpy {np.__version__}, Python {platform.python_version()}",
        f"# {DATE}, seed {SEED}",
        ",".join(columns),
    ]
    text = [",".join(f"{float(v):.17g}" if isinstance(v, float) else str(v) for v in row) for row in rows]
    (FOLDER / name).write_text("\n".join(head + text) + "\n")


def altitude_deg(site, hour_angle, declination):
    latitude = math.radians(site.latitude_deg)
    sine = (math.sin(latitude) * math.sin(declination)
            + math.cos(latitude) * math.cos(declination) * math.cos(hour_angle))
    return math.degrees(math.asin(sine))


def choose_direction(rng, site, index):
    """Hour angle (to 5 h) and declination: every fourth below the limit of refraction, every fourth just above it."""
    limit = site.horizon_limit_deg
    if site.latitude_deg > 0 and index < 4:
        # The ends of the range, where the field is above the limit.
        declination = math.radians((HIGHEST_DEC_DEG, HIGHEST_DEC_DEG, LOWEST_DEC_DEG, 86.0)[index])
        return (rng.uniform(2, 5), rng.uniform(-5, -2), rng.uniform(-1, 1), rng.uniform(-5, 5))[index] * math.pi / 12, \
            declination
    lowest, highest = ((limit - 3, limit - 0.2), (limit + 0.2, limit + 3), (limit + 3, 90), (30, 90))[index % 4]
    mirror = 1 if site.latitude_deg > 0 or index % 2 else -1
    while True:
        hour_angle = rng.uniform(-5, 5) * math.pi / 12
        declination = mirror * math.radians(rng.uniform(LOWEST_DEC_DEG, HIGHEST_DEC_DEG))
        if lowest <= altitude_deg(site, hour_angle, declination) <= highest:
            return hour_angle, declination


def choose_pointing(rng, site, index):
    """Site, plate, date, weather, centre and position angle of a pointing."""
    mjd = 51544.5 + rng.uniform(0, 40 * 365.25)
    weather = Weather(rng.uniform(263, 295), 0.0 if index == 11 else rng.uniform(600, 1020), rng.uniform(0, 0.9))
    hour_angle, declination = choose_direction(rng, site, index)
    position_angle = (0.0, 90.0, 180.0, -90.0)[index % 4] if index >= 16 else \
        (index % 4) * 90 - 180 + rng.uniform(1, 89)
    plate = "PLATE_A" if index % 5 == 3 else "VEKO"
    # Any centre will do to reach the frame; then the centre is put at the chosen direction.
    pointing = Pointing(site, plate, mjd, weather, (0.0, 0.0), position_angle, "turning")
    pointing.frame = pointing.observed_frame(refraction=index % 4 != 0 or index < 4)
    centre = pointing.astrometric(np.array([hour_angle]), np.array([declination]))
    centre = (float(centre[0][0]), float(centre[1][0]))
    pointings = [Pointing(site, plate, mjd, weather, centre, position_angle, o) for o in OBSERVERS]
    for p in pointings:
        if abs(math.degrees(p.altitude) - site.horizon_limit_deg) < 0.05:
            raise RuntimeError("too near the limit of refraction to tell which side it is on")
    return pointings


def choose_catalogue_place(rng, pointing, index):
    """A catalogue place that stands within the field, but for its motion, at the date."""
    distance = math.radians(FIELD_RADIUS_DEG) * math.sqrt(rng.random())
    direction = rng.uniform(0, 2 * math.pi)
    ra0, dec0 = pointing.centre
    dec = math.asin(math.sin(dec0) * math.cos(distance) + math.cos(dec0) * math.sin(distance) * math.cos(direction))
    ra = ra0 + math.atan2(math.sin(direction) * math.sin(distance) * math.cos(dec0),
                          math.cos(distance) - math.sin(dec0) * math.sin(dec))
    epoch = (2000.0, 2016.0, 1991.25, 2015.5, 0.0)[index % 5]
    speed = (0.0, 50.0, 10000.0)[index % 3]  # mas/yr
    pm_ra, pm_dec = speed * math.sin(direction * 5), speed * math.cos(direction * 5)
    parallax = (0.0, 0.0125, 0.75, 0.0)[index % 4]
    rv = rng.uniform(-300, 300) if parallax > 0 else 0.0
    return ra % (2 * math.pi), dec, epoch, pm_ra, pm_dec, parallax, rv


def main():
    use_ideal_earth_orientation()
    rng = random.Random(SEED)
    pointing_rows, place_rows, back_rows = [], [], []
    for site_number, site in enumerate(SITES):
        for index in range(POINTINGS_PER_SITE):
            number = site_number * POINTINGS_PER_SITE + index
            pointings = choose_pointing(rng, site, index)
            first = pointings[0]
            row = [number, site.name, first.plate, first.mjd, first.weather.temperature_k, first.weather.pressure_mbar,
                   first.weather.humidity, *first.centre, first.position_angle_deg,
                   int(first.refracted and first.weather.pressure_mbar > 0)]
            for p in pointings:
                row += [float(p.hour_angle), float(p.declination), math.pi / 2 - float(p.altitude)]
            pointing_rows.append(row)
            for place_index in range(PLACES_PER_POINTING):
                catalogue = choose_catalogue_place(rng, first, place_index + index)
                at_date = astrometric_place(catalogue, first.mjd)
                row = [number, *catalogue, *(float(a) for a in at_date)]
                for p in pointings:
                    landed = p.plate_position(*at_date)
                    row += [float(landed.real), float(landed.imag)]
                place_rows.append(row)
            radii = [207.0 * math.sqrt(rng.random()) for _ in range(PLACES_PER_POINTING - 1)] + [0.0]
            turns = [rng.uniform(0, 2 * math.pi) for _ in radii]
            positions = np.array([complex(r * math.cos(t), r * math.sin(t)) for r, t in zip(radii, turns)])
            ways = [p.sky_position(positions) for p in pointings] + [pointings[1].library_way_back(positions)]
            back_rows += [[number, float(xy.real), float(xy.imag)] + [float(a[i]) for way in ways for a in way]
                          for i, xy in enumerate(positions)]

    write_table("sites.csv",
                "Sites and focal-plane maps of pointings.csv. The rotation r0 of the plate VEKO is in force for every plate.",
                ["site", "east_longitude_deg", "latitude_deg", "height_m", "horizon_limit_deg", "c1", "c3", "c5",
                 "plate_a_x0", "plate_a_y0", "veko_x0", "veko_y0", "r0_deg"],
                [[s.name, s.longitude_deg, s.latitude_deg, s.height_m, s.horizon_limit_deg, *s.optics.coefficients,
                  *s.optics.axes["PLATE_A"], *s.optics.axes["VEKO"], math.degrees(s.optics.rotation)] for s in SITES])
    write_table("pointings.csv",
                "Field centres (astrometric place, radians) and where they are observed (radians), by an observer who\n"
                "turns with the Earth and by one without that speed. pa in degrees, mjd_tai in days.",
                ["pointing", "site", "plate", "mjd_tai", "temperature_k", "pressure_mbar", "humidity", "centre_ra",
                 "centre_dec", "pa_deg", "refracted"]
                + [f"{c}_{o}" for o in OBSERVERS for c in ("ha", "dec", "zd")], pointing_rows)
    write_table("places.csv",
                "Catalogue places (radians, Julian years, mas/yr, arcsec, km/s), the astrometric place at the date of\n"
                "the pointing, radians, and where it lands on the plate, mm.",
                ["pointing", "ra", "dec", "epoch", "pm_ra", "pm_dec", "parallax", "rv", "at_date_ra", "at_date_dec"]
                + [f"{c}_{o}" for o in OBSERVERS for c in "xy"], place_rows)
    write_table("way_back.csv",
                "Plate positions, mm, and the astrometric places that land there, radians: the way there inverted\n"
                "numerically, and (library) astropy's own way back with its approximate inverse of refraction.",
                ["pointing", "x", "y"] + [f"{c}_{o}" for o in (*OBSERVERS, "library") for c in ("ra", "dec")],
                back_rows)
    example_targets.write(write_table)
    worked_example.write(write_table)


if __name__ == "__main__":
    main()
