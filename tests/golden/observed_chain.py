"""From the sky to a plate and back, through astropy's own frames and plain vector algebra.

Nothing here comes from the C++ library. Places are observed by astropy (ICRS to observed hour angle and declination);
the tangent plane is a scalar product of unit vectors, the distortion an own polynomial that is inverted by bisection,
and the way back is a numerical inversion of the whole way there.

What the two programs share is the astronomy library below both: a mistake inside ERFA would not be noticed here.
"""
import warnings

import astropy.units as u
import erfa
import numpy as np
from astropy.coordinates import ICRS, Distance, EarthLocation, HADec, SkyCoord
from astropy.coordinates.builtin_frames.utils import get_jd12, prepare_earth_position_vel
from astropy.coordinates.erfa_astrom import ErfaAstrom, erfa_astrom
from astropy.time import Time
from astropy.utils import iers

WAVELENGTH_UM = 0.6


def use_earth_orientation(ut1_minus_utc, pole_x, pole_y):
    """The same UT1-UTC, s, and place of the pole, arcsec, for all dates in use; nothing is fetched."""
    iers.conf.auto_download = False
    iers.conf.auto_max_age = None
    iers.conf.iers_degraded_accuracy = "error"
    # Years that the leap-second table does not reach yet count with the leap seconds of today.
    warnings.filterwarnings("ignore", message=".*dubious year.*", category=erfa.ErfaWarning)
    table = iers.IERS({"MJD": [40000.0, 70000.0] * u.d, "UT1_UTC": [ut1_minus_utc] * 2 * u.s,
                       "PM_x": [pole_x] * 2 * u.arcsec, "PM_y": [pole_y] * 2 * u.arcsec})
    iers.earth_orientation_table.set(table)


def use_ideal_earth_orientation():
    """UT1 is UTC and the pole does not move."""
    use_earth_orientation(0.0, 0.0, 0.0)


class RestingObserver(ErfaAstrom):
    """An observer who does not take part in the Earth's rotation: aberration is that of the Earth's centre."""

    @staticmethod
    def apco(frame_or_coord):
        context = ErfaAstrom.apco(frame_or_coord)
        time = frame_or_coord.obstime
        earth, sun = prepare_earth_position_vel(time)
        geocentric = erfa.apcg(*get_jd12(time, "tdb"), earth, sun)
        for field in ("eb", "eh", "em", "v", "bm1"):
            context[field] = geocentric[field]
        return context


OBSERVERS = {"turning": ErfaAstrom, "resting": RestingObserver}


def unit_vector(longitude, latitude):
    return np.stack([np.cos(latitude) * np.cos(longitude), np.cos(latitude) * np.sin(longitude),
                     np.sin(latitude) * np.ones_like(longitude)])


def wrapped(angle):
    """Into [-pi, pi)."""
    return (angle + np.pi) % (2 * np.pi) - np.pi


class Optics:
    """The focal-plane map: distortion, and where and how the plates stand in the focal plane."""

    def __init__(self, c1, c3, c5, axes, rotation_deg):
        self.coefficients = (c1, c3, c5)
        self.axes = axes  # plate name: (x0, y0)
        # All plates share the rotation of the plate VEKO.
        self.rotation = np.radians(rotation_deg)

    def radius(self, tangent):
        """Millimetres for a distance in the tangent plane, in radians."""
        angle = np.degrees(tangent)
        c1, c3, c5 = self.coefficients
        return angle * (c1 + angle**2 * (c3 + angle**2 * c5))

    def tangent(self, radius):
        """The inverse of radius(), by bisection to the last bit."""
        low = np.zeros_like(radius)
        high = np.full_like(radius, np.radians(2.5))
        for _ in range(70):
            middle = (low + high) / 2
            below = self.radius(middle) < radius
            low = np.where(below, middle, low)
            high = np.where(below, high, middle)
        return (low + high) / 2

    def to_plate(self, plate, focal):
        """Focal plane to plate, both as complex numbers x + iy."""
        return focal * np.exp(1j * self.rotation) + complex(*self.axes[plate])

    def from_plate(self, plate, position):
        return (position - complex(*self.axes[plate])) * np.exp(-1j * self.rotation)


class Site:
    def __init__(self, name, longitude_deg, latitude_deg, height_m, horizon_limit_deg, optics):
        self.name = name
        self.longitude_deg = longitude_deg
        self.latitude_deg = latitude_deg
        self.height_m = height_m
        self.horizon_limit_deg = horizon_limit_deg
        self.optics = optics
        self.location = EarthLocation.from_geodetic(longitude_deg * u.deg, latitude_deg * u.deg, height_m * u.m)


class Weather:
    def __init__(self, temperature_k, pressure_mbar, humidity):
        self.temperature_k = temperature_k
        self.pressure_mbar = pressure_mbar
        self.humidity = humidity


def tai(mjd):
    return Time(2400000.5, mjd, format="jd", scale="tai")


def astrometric_place(catalogue, mjd):
    """A catalogue place (ra, dec, epoch, pm_ra, pm_dec, parallax, rv) with its space motion up to a date.

    Radians, years, mas/yr, mas/yr, arcsec, km/s. Without an epoch the place stays as it is.
    """
    ra, dec, epoch, pm_ra, pm_dec, parallax, rv = catalogue
    if epoch <= 0:
        return ra, dec
    motion = {"pm_ra_cosdec": pm_ra * u.mas / u.yr, "pm_dec": pm_dec * u.mas / u.yr}
    if parallax > 0:
        motion["distance"] = Distance(parallax=parallax * u.arcsec)
        motion["radial_velocity"] = rv * u.km / u.s
    start = SkyCoord(ra=ra * u.rad, dec=dec * u.rad, frame="icrs", obstime=Time(epoch, format="jyear", scale="tt"),
                     **motion)
    with warnings.catch_warnings():
        warnings.filterwarnings("ignore", message='.*pmsafe.*', category=erfa.ErfaWarning)
        moved = start.apply_space_motion(new_obstime=tai(mjd).tt)
    return moved.ra.rad, moved.dec.rad


class Pointing:
    """A field centre (astrometric place) with a position angle, observed from a site at a date."""

    def __init__(self, site, plate, mjd, weather, centre, position_angle_deg, observer):
        self.site = site
        self.plate = plate
        self.mjd = mjd
        self.weather = weather
        self.position_angle_deg = position_angle_deg
        self.observer = observer
        self.point_at(*centre)

    def point_at(self, ra, dec):
        self.centre = (float(ra), float(dec))
        self.frame = self.observed_frame(refraction=True)
        self.observe_centre()
        self.refracted = self.altitude >= np.radians(self.site.horizon_limit_deg)
        if not self.refracted:
            self.frame = self.observed_frame(refraction=False)
            self.observe_centre()
        # The plate's axes on the sky: y towards the position angle, x 90 degrees from it through west.
        sin_h, cos_h = np.sin(self.hour_angle), np.cos(self.hour_angle)
        sin_d, cos_d = np.sin(self.declination), np.cos(self.declination)
        towards = np.array([cos_d * cos_h, cos_d * sin_h, sin_d])
        north = np.array([-sin_d * cos_h, -sin_d * sin_h, cos_d])
        west = np.array([-sin_h, cos_h, 0.0])  # hour angle grows westwards
        pa = np.radians(self.position_angle_deg)
        self.axes = np.stack([np.cos(pa) * west + np.sin(pa) * north, np.cos(pa) * north - np.sin(pa) * west, towards])

    def observed_frame(self, refraction):
        weather = self.weather
        return HADec(obstime=tai(self.mjd), location=self.site.location,
                     pressure=(weather.pressure_mbar if refraction else 0.0) * u.hPa,
                     temperature=(weather.temperature_k - 273.15) * u.deg_C, relative_humidity=weather.humidity,
                     obswl=WAVELENGTH_UM * u.micron)

    def observed(self, ra, dec):
        """Observed hour angle and declination of an astrometric place."""
        with erfa_astrom.set(OBSERVERS[self.observer]()):
            place = ICRS(ra=ra * u.rad, dec=dec * u.rad).transform_to(self.frame)
        return wrapped(place.ha.rad), place.dec.rad

    def observe_centre(self):
        self.hour_angle, self.declination = self.observed(*self.centre)
        latitude = np.radians(self.site.latitude_deg)
        up = unit_vector(np.float64(0.0), latitude)
        self.altitude = np.arcsin(up @ unit_vector(self.hour_angle, self.declination))

    def plate_position(self, ra, dec):
        """Where astrometric places land on the plate, mm, as complex numbers x + iy."""
        x, y, z = self.axes @ unit_vector(*self.observed(ra, dec))
        flat = (x + 1j * y) / z
        distance = np.abs(flat)
        optics = self.site.optics
        scale = np.where(distance > 0, optics.radius(distance) / np.where(distance > 0, distance, 1.0), 0.0)
        return optics.to_plate(self.plate, flat * scale)

    def observed_direction(self, position):
        """Observed hour angle and declination of plate positions."""
        focal = self.site.optics.from_plate(self.plate, position)
        distance = np.abs(focal)
        tangent = self.site.optics.tangent(distance)
        flat = focal * np.where(distance > 0, tangent / np.where(distance > 0, distance, 1.0), 0.0)
        directions = np.stack([flat.real, flat.imag, np.ones_like(distance)])
        place = self.axes.T @ (directions / np.linalg.norm(directions, axis=0))
        return np.arctan2(place[1], place[0]), np.arcsin(place[2])

    def sky_position(self, position):
        """The astrometric places that land at plate positions: the way there, inverted numerically."""
        position = np.asarray(position, dtype=complex)
        start = unit_vector(*self.library_way_back(position))
        return refine(lambda place: self.plate_position(*angles(place)) - position, start)

    def astrometric(self, hour_angle, declination):
        """Astrometric places of observed ones, with ERFA's own approximate inverse of refraction."""
        frame = self.frame
        observed = HADec(ha=hour_angle * u.rad, dec=declination * u.rad, obstime=frame.obstime,
                         location=frame.location, pressure=frame.pressure, temperature=frame.temperature,
                         relative_humidity=frame.relative_humidity, obswl=frame.obswl)
        with erfa_astrom.set(OBSERVERS[self.observer]()):
            place = observed.transform_to(ICRS())
        return place.ra.rad, place.dec.rad

    def library_way_back(self, position):
        """As sky_position, but with the astronomy library's inverse in place of a numerical inversion."""
        return self.astrometric(*self.observed_direction(np.asarray(position, dtype=complex)))

    def place_target(self, target, wanted):
        """Points so that a target lands at a wanted plate position."""
        def miss(place):
            misses = []
            for ra, dec in zip(*angles(place)):
                self.point_at(ra, dec)
                misses.append(self.plate_position(*target) - wanted)
            return np.array(misses)

        start = unit_vector(np.array([target[0]]), np.array([target[1]]))
        ra, dec = refine(miss, start)
        self.point_at(ra[0], dec[0])


def angles(place):
    """Longitude in [0, 2 pi) and latitude of vectors."""
    return np.arctan2(place[1], place[0]) % (2 * np.pi), np.arctan2(place[2], np.hypot(place[0], place[1]))


def refine(miss, place):
    """Moves unit vectors until miss(vectors), in mm, is zero: Newton's method with numerical derivatives."""
    step = 1e-6
    for _ in range(12):
        # Two directions across each vector, good at the pole too.
        helper = np.where(np.abs(place[2]) < 0.7, np.array([[0.0], [0.0], [1.0]]), np.array([[1.0], [0.0], [0.0]]))
        first = np.cross(helper, place, axis=0)
        first /= np.linalg.norm(first, axis=0)
        second = np.cross(place, first, axis=0)
        there = miss(place)
        by_first = (miss(place + step * first) - miss(place - step * first)) / (2 * step)
        by_second = (miss(place + step * second) - miss(place - step * second)) / (2 * step)
        determinant = by_first.real * by_second.imag - by_first.imag * by_second.real
        along_first = (there.real * by_second.imag - there.imag * by_second.real) / determinant
        along_second = (by_first.real * there.imag - by_first.imag * there.real) / determinant
        place = place - along_first * first - along_second * second
        place /= np.linalg.norm(place, axis=0)
        if np.max(np.hypot(along_first, along_second)) < 2e-13:
            return angles(place)
    raise RuntimeError(f"not converging: {np.max(np.abs(there))} mm")
