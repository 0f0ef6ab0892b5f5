#!/usr/bin/python3
"""Prints how far ends of windows by Sun, Moon and airmass are from where astropy has them, in seconds of time.

    window_ends.py VEKO

See tools/window_figures. Needs Debian's python3-astropy and python3-erfa, no network. The lines have the form that
tables.py reads. What the two programs share is the ephemeris of Sun and Moon, for want of another without a network.
"""
import datetime
import json
import math
import pathlib
import random
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "tests" / "golden"))

import astropy.units as u  # noqa: E402
import numpy as np  # noqa: E402
from astropy.coordinates import CIRS, ICRS, AltAz, get_body  # noqa: E402
from astropy.time import Time  # noqa: E402

from observed_chain import Optics, Site, tai, use_ideal_earth_orientation  # noqa: E402

SEED = 20261122
NIGHTS = 80  # at each site
SECOND = 1 / 86400  # days
NO_OPTICS = Optics(1.0, 0.0, 0.0, {}, 0.0)
SITES = [Site("shipped", -17.881639, 28.760583, 2332.0, 5.0, NO_OPTICS),
         Site("equatorial", 37.2, 0.0, 1800.0, 5.0, NO_OPTICS),
         Site("southern", -70.404, -24.627, 2635.0, 5.0, NO_OPTICS),
         Site("arctic", 25.5, 68.25, 0.0, 5.0, NO_OPTICS)]
TWILIGHTS = {"civil": -6, "nautical": -12, "astronomical": -18}
AIR = {"pressure": 770 * u.hPa, "temperature": 10 * u.deg_C, "relative_humidity": 0.2, "obswl": 0.6 * u.micron}


class Sky:
    """What astropy sees from a site of a field, the Sun and the Moon. Degrees."""

    def __init__(self, site, ra, dec):
        self.site = site
        self.field = ICRS(ra=ra * u.deg, dec=dec * u.deg)

    def body_altitude(self, name, times):
        body = get_body(name, times, self.site.location, ephemeris="builtin")
        return body.transform_to(AltAz(obstime=times, location=self.site.location)).alt.deg

    def moon_distance(self, times):
        frame = CIRS(obstime=times, location=self.site.location)
        moon = get_body("moon", times, self.site.location, ephemeris="builtin").transform_to(frame)
        return self.field.transform_to(frame).separation(moon).deg

    def airmass(self, times):
        """By the formula of Pickering (2002)."""
        altitude = self.field.transform_to(AltAz(obstime=times, location=self.site.location, **AIR)).alt.deg
        return 1 / np.sin(np.radians(altitude + 244 / (165 + 47 * altitude**1.1)))


def seconds_to_zero(quantity, mjd):
    """How long after an instant a quantity passes zero; two of Newton's steps with its rate around the instant."""
    before, here, after = quantity(tai(mjd + np.array([-20, 0, 20]) * SECOND))
    rate = (after - before) / 40
    first = -here / rate
    return first - quantity(tai(np.array([mjd + first * SECOND])))[0] / rate


def configuration(site, folder):
    """The shipped configuration at another site; its rotator turns wherever it must."""
    text = (PROJECT / "pos" / "positioner" / "resources" / "configure.xml").read_text()
    for old, new in (("-17.881639", site.longitude_deg), ("28.760583", site.latitude_deg), ("2332.0", site.height_m),
                     ("-135.0", -200.0), ("135.0", 200.0)):
        assert f">{old}<" in text
        text = text.replace(f">{old}<", f">{new}<")
    path = pathlib.Path(folder) / f"{site.name}.xml"
    path.write_text(text)
    return str(path)


def windows(veko, *arguments):
    done = subprocess.run([veko, "window", "--format", "json", *map(str, arguments)], stdout=subprocess.PIPE, text=True)
    if done.returncode not in (0, 1):
        sys.exit(f"{done.args} ended with {done.returncode}")
    return json.loads(done.stdout)["nights"][0]["windows"]


def differences_of_night(veko, config, site, numbers):
    """The kind of each end that a night has by Sun, airmass or Moon, and by how much astropy has it later."""
    ra, dec = numbers.uniform(0, 360), math.degrees(math.asin(numbers.uniform(-1, 1)))
    night = datetime.date(2000, 1, 1) + datetime.timedelta(days=numbers.randrange(50 * 365))
    sky = Sky(site, ra, dec)
    twilight, airmass = numbers.choice(list(TWILIGHTS)), numbers.uniform(1.2, 5)
    # As far as the Moon is at some instant of the night.
    moon = sky.moon_distance(Time(night.isoformat()) + numbers.uniform(0.5, 1.5) * u.d - site.longitude_deg / 360 * u.d)
    trials = [(["--twilight", twilight],
               {"twilight, by the Sun": lambda times: sky.body_altitude("sun", times) - TWILIGHTS[twilight]}),
              (["--twilight=none", f"--airmass={airmass}"],
               {"airmass": lambda times: sky.airmass(times) - airmass}),
              (["--twilight=none", f"--moon={moon}"],
               {"rising and setting of the Moon": lambda times: sky.body_altitude("moon", times),
                "distance from the Moon": lambda times: sky.moon_distance(times) - moon})]
    for options, quantities in trials:
        for window in windows(veko, "-c", config, f"--ra={ra}", f"--dec={dec}", "--night", night, *options,
                              "--horizon_limit=6", "--pressure=770", "--temperature=283.15"):
            for end in (window["start"], window["end"]):
                if end["limit"] in ("twilight", "airmass", "moon"):
                    yield min(((kind, seconds_to_zero(quantity, end["mjdTai"]))
                               for kind, quantity in quantities.items()), key=lambda found: abs(found[1]))


def main():
    veko = sys.argv[1]
    use_ideal_earth_orientation()
    numbers = random.Random(SEED)
    found = {}
    with tempfile.TemporaryDirectory() as folder:
        for site in SITES:
            config = configuration(site, folder)
            for _ in range(NIGHTS):
                for kind, seconds in differences_of_night(veko, config, site, numbers):
                    found.setdefault(kind, []).append(seconds)
    print("windows-astropy\tEnd by\tEnds\tWorst, s\trms, s")
    for kind in sorted(found):
        seconds = np.array(found[kind])
        print(f"windows-astropy\t{kind}\t{len(seconds)}\t{np.max(np.abs(seconds)):.6e}\t"
              f"{np.sqrt(np.mean(seconds**2)):.6e}")


main()
