#!/usr/bin/python3
"""Prints the processor time in which astroplan finds when a field is up and the Sun down; see windows.py.

    astroplan_windows.py FIRST_NIGHT NIGHTS RA DEC

Seconds, without the start of the interpreter and the imports; the second number is that of a second time.
"""
import sys
import time
import warnings

import astropy.units as u
import numpy as np
from astroplan import FixedTarget, Observer
from astropy.coordinates import EarthLocation, SkyCoord
from astropy.time import Time
from astropy.utils import iers

warnings.simplefilter("ignore")
iers.conf.auto_download = False
iers.conf.auto_max_age = None


def find(first, nights, ra, dec):
    site = EarthLocation.from_geodetic(-17.881639 * u.deg, 28.760583 * u.deg, 2332 * u.m)
    observer = Observer(location=site, pressure=770 * u.hPa, temperature=10 * u.deg_C, relative_humidity=0.2)
    noons = Time(first) + (0.5 + 17.881639 / 360 + np.arange(nights)) * u.d
    field = FixedTarget(SkyCoord(ra * u.deg, dec * u.deg))
    ends = [observer.target_rise_time(noons, field, which="next", horizon=25 * u.deg),
            observer.target_set_time(noons, field, which="next", horizon=25 * u.deg),
            observer.sun_set_time(noons, which="next", horizon=-12 * u.deg),
            observer.sun_rise_time(noons, which="next", horizon=-12 * u.deg)]
    return [end.isot for end in ends]


def main():
    first, nights, ra, dec = sys.argv[1], int(sys.argv[2]), float(sys.argv[3]), float(sys.argv[4])
    for _ in range(2):
        begin = time.process_time()
        find(first, nights, ra, dec)
        print(time.process_time() - begin)


main()
