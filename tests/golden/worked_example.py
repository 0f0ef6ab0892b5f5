"""The numbers of the worked example in docs/position.md, worked out with observed_chain.py from the page's inputs.

Frames and space motion are astropy's, the tangent plane, distortion, rotation and the way back are this folder's own;
nothing is read of the C++ library or of the page's results.
"""
import math
import pathlib
import re

import astropy.units as u
import numpy as np
from astropy.coordinates import CIRS, ICRS, SkyCoord

from example_targets import shipped_site
from observed_chain import Pointing, Weather, astrometric_place, tai, unit_vector, wrapped

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "position.md"


def page_inputs():
    """The numbers in the page's tables, by name."""
    rows = re.findall(r"^\| `(\w+)` \| ([-+0-9.]+) \|", PAGE.read_text(), re.MULTILINE)
    return {name: float(value) for name, value in rows}


def separation_arcsec(a, b):
    return math.degrees(np.linalg.norm(unit_vector(*map(np.float64, a)) - unit_vector(*map(np.float64, b)))) * 3600


def zenith_distance_deg(pointing, hour_angle, dec):
    up = unit_vector(np.float64(0.0), math.radians(pointing.site.latitude_deg))
    return math.degrees(math.acos(up @ unit_vector(hour_angle, dec)))


def parallactic_angle_deg(pointing):
    """The angle at the place between the pole and the zenith, from their directions as seen there."""
    h, d = pointing.hour_angle, pointing.declination
    up = unit_vector(np.float64(0.0), math.radians(pointing.site.latitude_deg))
    north = np.array([-np.sin(d) * np.cos(h), -np.sin(d) * np.sin(h), np.cos(d)])
    west = np.array([-np.sin(h), np.cos(h), 0.0])
    # Towards the east positive: west of the meridian the zenith lies on the eastern side.
    return math.degrees(math.atan2(-(up @ west), up @ north))


def numbers():
    given = page_inputs()
    site, _ = shipped_site()
    mjd = given["date"]
    star = (math.radians(given["star_ra"]), math.radians(given["star_dec"]), given["star_epoch"], given["star_pmra"],
            given["star_pmdec"], given["star_parallax"], given["star_rv"])
    centre = (math.radians(given["centre_ra"]), math.radians(given["centre_dec"]))
    weather = Weather(given["temperature"], given["pressure"], given["humidity"])
    pointing = Pointing(site, "VEKO", mjd, weather, centre, given["pa"], "resting")
    result = {"centre_ha": math.degrees(pointing.hour_angle) / 15, "centre_observed_dec": math.degrees(
        pointing.declination), "centre_zd": 90 - math.degrees(pointing.altitude),
        "centre_parallactic": parallactic_angle_deg(pointing)}

    moved = tuple(float(a) for a in astrometric_place(star, mjd))
    result.update(moved_ra=math.degrees(moved[0]), moved_dec=math.degrees(moved[1]),
                  moved_by=separation_arcsec(star[:2], moved))
    cirs = SkyCoord(ICRS(ra=moved[0] * u.rad, dec=moved[1] * u.rad)).transform_to(CIRS(obstime=tai(mjd)))
    result.update(cirs_ra=cirs.ra.deg, cirs_dec=cirs.dec.deg)

    hour_angle, dec = map(float, pointing.observed(*moved))
    result.update(star_ha=math.degrees(hour_angle) / 15, star_observed_dec=math.degrees(dec))
    airless = Pointing(site, "VEKO", mjd, Weather(weather.temperature_k, 0.0, weather.humidity), centre, given["pa"],
                       "resting")
    lifted = zenith_distance_deg(pointing, *airless.observed(*moved)) - zenith_distance_deg(pointing, hour_angle, dec)
    result["lifted"] = lifted * 3600

    upright = Pointing(site, "VEKO", mjd, weather, centre, 0.0, "resting")
    west, north, towards = upright.axes @ unit_vector(hour_angle, dec)
    xi, eta = -west / towards, north / towards  # xi grows eastwards
    result.update(xi=math.degrees(xi) * 3600, eta=math.degrees(eta) * 3600)
    radius = math.hypot(xi, eta)
    result.update(field_angle=math.degrees(radius), radius=float(site.optics.radius(radius)),
                  distortion=(float(site.optics.radius(radius)) - site.optics.coefficients[0] * math.degrees(radius))
                  * 1000)
    for name, p in (("unturned", upright), ("plate", pointing)):
        place = complex(p.plate_position(*moved))
        result.update({f"{name}_x": place.real, f"{name}_y": place.imag})

    ra, dec = pointing.sky_position([complex(given["fibre_x"], given["fibre_y"])])
    result.update(fibre_ra=math.degrees(ra[0]), fibre_dec=math.degrees(dec[0]))
    return result


def write(write_table):
    write_table("worked_example.csv", "The numbers of the worked example in docs/position.md.", ["quantity", "value"],
                [[name, float(value)] for name, value in numbers().items()])
