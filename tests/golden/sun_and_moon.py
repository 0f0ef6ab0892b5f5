#!/usr/bin/python3
"""Writes sun_and_moon.csv: Sun and Moon from a site, through astropy's frames. Needs Debian's python3-astropy.

    /usr/bin/python3 tests/golden/sun_and_moon.py

Altitude and azimuth are without refraction, UT1 is UTC and the pole rests. The Sun's and the Moon's places themselves
come from ERFA, as in the C++ code (there is no other ephemeris without a network); light time, aberration, parallax,
time scales and the way to the horizon are astropy's own.
"""
import math
import pathlib
import platform
import random

import astropy
import astropy.units as u
import erfa
import numpy as np
from astropy.coordinates import CIRS, AltAz, get_body

from observed_chain import Optics, Site, tai, use_ideal_earth_orientation

SEED = 20261121
DATE = "2026-11-21"
DATES_PER_SITE = 100
NO_OPTICS = Optics(1.0, 0.0, 0.0, {}, 0.0)
SITES = [Site("shipped", -17.881639, 28.760583, 2332.0, 5.0, NO_OPTICS),
         Site("southern", -70.404, -24.627, 2635.0, 30.0, NO_OPTICS),
         Site("arctic", 25.5, 78.25, 0.0, 30.0, NO_OPTICS)]
# The dates for which observed_chain states the Earth's orientation: 1968 to 2050.
FIRST_MJD, LAST_MJD = 40000.0, 70000.0


def row(site, mjd, name):
    time = tai(mjd)
    body = get_body(name, time, site.location, ephemeris="builtin")
    place = body.transform_to(CIRS(obstime=time, location=site.location))
    horizon = body.transform_to(AltAz(obstime=time, location=site.location, pressure=0 * u.hPa))
    return [site.name, site.longitude_deg, site.latitude_deg, site.height_m, mjd, name, place.ra.rad, place.dec.rad,
            horizon.az.rad, horizon.alt.rad]


def main():
    use_ideal_earth_orientation()
    rng = random.Random(SEED)
    columns = "site,east_longitude_deg,latitude_deg,height_m,mjd_tai,body,ra,dec,azimuth,altitude"
    lines = ["# Sun and Moon from three sites, radians: CIRS place, and azimuth and altitude without refraction",
             "# Written by tests/golden/sun_and_moon.py: /usr/bin/python3 tests/golden/sun_and_moon.py",
             f"# astropy {astropy.__version__}, pyerfa {erfa.__version__} (ERFA {erfa.version.erfa_version}), "
             f"numpy {np.__version__}, Python {platform.python_version()}",
             f"# {DATE}, seed {SEED}", columns]
    for site in SITES:
        for _ in range(DATES_PER_SITE):
            mjd = round(rng.uniform(FIRST_MJD, LAST_MJD), 5)
            for name in ("sun", "moon"):
                cells = row(site, mjd, name)
                assert all(not isinstance(cell, float) or math.isfinite(cell) for cell in cells)
                lines.append(",".join(f"{float(cell):.10g}" if isinstance(cell, float) else str(cell)
                                      for cell in cells))
    (pathlib.Path(__file__).resolve().parent / "sun_and_moon.csv").write_text("\n".join(lines) + "\n")


main()
