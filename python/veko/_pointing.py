"""Pointings of the bundle's plate."""

from __future__ import annotations

import copy
import math
from typing import Any

import numpy as np

from . import _veko
from ._arguments import (
    Numbers,
    PathLike,
    columns,
    config_name,
    is_coordinate,
    julian_years,
    number,
    numbers,
)

_MOTION_UNITS = {"epoch": "yr", "pm_ra": "mas/yr", "pm_dec": "mas/yr", "parallax": "arcsec", "rv": "km/s"}
_ZERO = np.zeros(())

DEFAULT_TEMPERATURE, DEFAULT_PRESSURE, DEFAULT_HUMIDITY = _veko.default_weather()


def _date(epoch: Numbers | None, mjd_tai: Numbers | None) -> float:
    """MJD, TAI."""
    if (epoch is None) == (mjd_tai is None):
        raise TypeError("one of epoch and mjd_tai must be given, and not both")
    if mjd_tai is None:
        return _veko.mjd_of_epoch(number("epoch", julian_years(epoch), "yr"))
    return number("mjd_tai", mjd_tai.tai.mjd if hasattr(mjd_tai, "tai") else mjd_tai, "d")


def _of_coordinate(coordinate: Any, motion: dict[str, Numbers | None]) -> tuple[Numbers, Numbers]:
    """Right ascension and declination of a SkyCoord. Its proper motion and date count where no others are given."""
    place = coordinate.icrs
    if "s" in place.data.differentials:
        own = {"pm_ra": place.pm_ra_cosdec, "pm_dec": place.pm_dec, "epoch": coordinate.obstime}
        motion.update({name: value for name, value in own.items() if motion[name] is None})
    return place.ra, place.dec


def _place(ra: Numbers, dec: Numbers | None, motion: dict[str, Numbers | None]) -> dict[str, Any]:
    """A catalogue place, or many, as arrays in the units of the library."""
    if dec is None:
        if not is_coordinate(ra):
            raise TypeError("dec is missing: give ra and dec, or a SkyCoord alone")
        ra, dec = _of_coordinate(ra, motion)
    elif is_coordinate(ra):
        raise TypeError("ra is a SkyCoord, beside which there is no dec")
    if motion["epoch"] is None and any(value is not None for value in motion.values()):
        raise ValueError("epoch is missing: without it the motion of a place does not count")
    motion["epoch"] = julian_years(motion["epoch"])
    values = {
        name: _ZERO if value is None else numbers(name, value, _MOTION_UNITS[name]) for name, value in motion.items()
    }
    return {"ra": numbers("ra", ra, "deg"), "dec": numbers("dec", dec, "deg"), **values}


class Pointing:
    """A pointing of the bundle's plate: a field centre, a position angle, a date and the weather.

    Any number of pointings may be used at the same time, in one thread or several.

    Parameters
    ----------
    ra, dec : float
        Field centre: ICRS, at the date of the pointing, degrees; `dec` is from -90 to 90.
    pa : float, default 0
        Position angle, from north through east, degrees.
    epoch : float or astropy.time.Time
        Date as Julian epoch, years.
    mjd_tai : float or astropy.time.Time
        Date as Modified Julian Date, TAI. Either this or `epoch` is required.
    hour_angle : float, optional
        The date moves, by up to half a day, until the field centre has this hour angle to a second of time; hours,
        positive west of the meridian. Without it the date stays.
    temperature : float, default 283
        Kelvin.
    pressure : float, default 660
        Millibar; 0 means no refraction.
    relative_humidity : float, default 0.2
        From 0 to 1.
    config : path, optional
        A configuration file; without it the built-in instrument counts.

    Raises
    ------
    TypeError, ValueError
        For an argument that cannot be meant; the message names it.
    veko.Error
        For a configuration that cannot be read, or an hour angle that cannot be reached.

    Notes
    -----
    Numbers may be quantities of astropy, in any fitting unit.

    Examples
    --------
    The star that docs/position.md follows from the catalogue to the plate:

    >>> import veko
    >>> pointing = veko.Pointing(194.182151, 21.781378, 30, mjd_tai=60783.98, pressure=770)
    >>> x, y = pointing.sky_to_plate(194.25, 21.8, epoch=2016, pm_ra=120, pm_dec=-80, parallax=0.05, rv=20)
    >>> print(f"{x:.6f} {y:.6f}")
    -9.244864 9.662388
    """

    def __init__(
        self,
        ra: Numbers,
        dec: Numbers,
        pa: Numbers = 0.0,
        *,
        epoch: Numbers | None = None,
        mjd_tai: Numbers | None = None,
        hour_angle: Numbers | None = None,
        temperature: Numbers = DEFAULT_TEMPERATURE,
        pressure: Numbers = DEFAULT_PRESSURE,
        relative_humidity: Numbers = DEFAULT_HUMIDITY,
        config: PathLike | None = None,
    ) -> None:
        conditions = (
            _date(epoch, mjd_tai),
            number("temperature", temperature, "K", low=0),
            number("pressure", pressure, "mbar", low=0),
            number("relative_humidity", relative_humidity, low=0, high=1),
        )
        self._plate = _veko.PointedPlate(
            config_name(config),
            number("ra", ra, "deg"),
            number("dec", dec, "deg", -90, 90),
            number("pa", pa, "deg"),
            conditions,
            None if hour_angle is None else number("hour_angle", hour_angle, "hourangle"),
        )

    def __copy__(self) -> Pointing:
        return copy.deepcopy(self)

    def __repr__(self) -> str:
        ra, dec = self.field_centre
        return f"veko.Pointing({ra:.6f}, {dec:.6f}, {self.pa:g}, mjd_tai={self.mjd_tai:.6f})"

    def sky_to_plate(
        self,
        ra: Numbers,
        dec: Numbers | None = None,
        *,
        epoch: Numbers | None = None,
        pm_ra: Numbers | None = None,
        pm_dec: Numbers | None = None,
        parallax: Numbers | None = None,
        rv: Numbers | None = None,
    ) -> tuple[Any, Any]:
        """Where places on the sky fall on the plate.

        All arguments may be arrays; their shapes are broadcast.

        Parameters
        ----------
        ra, dec : array_like
            Catalogue places: ICRS, degrees. In place of both, a SkyCoord, whose proper motion and `obstime` count.
        epoch : array_like or astropy.time.Time, optional
            Julian epoch of the places, years. Without it they do not move.
        pm_ra, pm_dec : array_like, optional
            Proper motions, mas/yr; that in right ascension has the factor cos(dec). They need `epoch`.
        parallax : array_like, optional
            Arcsec. It only changes the proper motion a little; the annual parallax is not applied.
        rv : array_like, optional
            Radial velocity, km/s, positive receding.

        Returns
        -------
        x, y : array, or float
            Places on the plate, mm. NaN where an argument is not finite, and for a place that is 90 degrees or more
            away from the field centre.

        Raises
        ------
        TypeError, ValueError
            For an argument that cannot be meant, and for shapes that do not fit together.

        Examples
        --------
        >>> import veko
        >>> pointing = veko.Pointing(194.182151, 21.781378, mjd_tai=60783.98)
        >>> x, y = pointing.sky_to_plate([194.182151, float("nan")], 21.781378)
        >>> print(x.round(6) + 0, y.round(6) + 0)
        [ 0. nan] [ 0. nan]
        """
        motion = {"epoch": epoch, "pm_ra": pm_ra, "pm_dec": pm_dec, "parallax": parallax, "rv": rv}
        shape, values = columns(**_place(ra, dec, motion))
        x, y = self._plate.sky_to_plate(math.prod(shape), values)
        return x.reshape(shape)[()], y.reshape(shape)[()]

    def plate_to_sky(self, x: Numbers, y: Numbers) -> tuple[Any, Any]:
        """The places on the sky that fall on places on the plate.

        Parameters
        ----------
        x, y : array_like
            Places on the plate, mm; their shapes are broadcast.

        Returns
        -------
        ra, dec : array, or float
            ICRS at the date of the pointing, degrees; `ra` from 0 to 360. NaN where an argument is not finite, and
            where the optics see no sky.

        Raises
        ------
        TypeError, ValueError
            For an argument that cannot be meant, and for shapes that do not fit together.

        Examples
        --------
        The place that fibre 304 sees in the pointing of docs/position.md:

        >>> import veko
        >>> pointing = veko.Pointing(194.182151, 21.781378, 30, mjd_tai=60783.98, pressure=770)
        >>> ra, dec = pointing.plate_to_sky(0, -20)
        >>> print(f"{ra:.6f} {dec:.6f}")
        194.129037 21.696006
        """
        shape, values = columns(x=numbers("x", x, "mm"), y=numbers("y", y, "mm"))
        ra, dec = self._plate.plate_to_sky(math.prod(shape), *values)
        return ra.reshape(shape)[()], dec.reshape(shape)[()]

    def place(
        self,
        ra: Numbers,
        dec: Numbers | None,
        fibre: int,
        *,
        epoch: Numbers | None = None,
        pm_ra: Numbers | None = None,
        pm_dec: Numbers | None = None,
        parallax: Numbers | None = None,
        rv: Numbers | None = None,
    ) -> None:
        """Moves the pointing so that a place falls on a fibre, to 0.1 micrometres. Date and position angle stay.

        Parameters
        ----------
        ra, dec : float
            Catalogue place: ICRS, degrees; a SkyCoord and None will do, too.
        fibre : int
            Number of the fibre, see `Bundle`.
        epoch, pm_ra, pm_dec, parallax, rv : float, optional
            As `sky_to_plate` takes them.

        Raises
        ------
        TypeError, ValueError
            For an argument that cannot be meant.
        veko.Error
            For a fibre that does not exist, or a pointing that cannot be found; the pointing is then the one before.

        Examples
        --------
        >>> import veko
        >>> pointing = veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=-1)
        >>> pointing.place(189.997633, -11.623054, 304)
        >>> x, y = pointing.sky_to_plate(189.997633, -11.623054)
        >>> print(f"{abs(x):.3f} {y:.3f}")
        0.000 -20.000
        """
        motion = {"epoch": epoch, "pm_ra": pm_ra, "pm_dec": pm_dec, "parallax": parallax, "rv": rv}
        values = [number(name, value) for name, value in _place(ra, dec, motion).items()]
        if not isinstance(fibre, (int, np.integer)):
            raise TypeError(f"fibre must be an integer, not {type(fibre).__name__}")
        if not 0 <= fibre < 2**31:
            raise ValueError(f"fibre must be the number of a fibre, not {fibre}")
        self._plate.place(values, int(fibre))

    def check(self, horizon_limit: Numbers = 25.0) -> None:
        """Checks horizon and rotator as the run does.

        Parameters
        ----------
        horizon_limit : float, default 25
            Altitude above which the field centre must be, degrees.

        Raises
        ------
        veko.Error
            "field is below the horizon limit" or "field position angle is outside the rotator limits".

        Examples
        --------
        >>> import veko
        >>> veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=6).check()
        Traceback (most recent call last):
        veko.Error: field is below the horizon limit
        """
        self._plate.check(number("horizon_limit", horizon_limit, "deg", -90, 90))

    def hour_angle_limits(self, horizon_limit: Numbers = 25.0) -> tuple[float, float]:
        """The hour angles between which the field stays observable, as the run writes them.

        Parameters
        ----------
        horizon_limit : float, default 25
            Altitude above which the field centre must be, degrees.

        Returns
        -------
        earliest, latest : float
            Hours. Both are 0 for a field that is below the limit now, and NaN for one that nothing limits.

        Examples
        --------
        >>> import veko
        >>> limits = veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=-1).hour_angle_limits()
        >>> print(f"{limits[0]:.2f} {limits[1]:.2f}")
        -3.51 3.51
        """
        return self._plate.hour_angle_limits(number("horizon_limit", horizon_limit, "deg", -90, 90))

    @property
    def field_centre(self) -> tuple[float, float]:
        """Right ascension and declination of the field centre: ICRS at the date of the pointing, degrees."""
        return self._plate.field_centre

    @property
    def pa(self) -> float:
        """Position angle, from north through east, degrees, from -180 to 180."""
        return self._plate.pa

    @property
    def mjd_tai(self) -> float:
        """The date: Modified Julian Date, TAI."""
        return self._plate.conditions[0]

    @property
    def temperature(self) -> float:
        """Kelvin."""
        return self._plate.conditions[1]

    @property
    def pressure(self) -> float:
        """Millibar."""
        return self._plate.conditions[2]

    @property
    def relative_humidity(self) -> float:
        """From 0 to 1."""
        return self._plate.conditions[3]

    @property
    def altitude(self) -> float:
        """Observed altitude of the field centre, degrees, from -90 to 90."""
        return self._plate.altitude

    @property
    def airmass(self) -> float:
        """Airmass of the field centre; NaN below the horizon."""
        return self._plate.airmass

    @property
    def azimuth(self) -> float:
        """Observed azimuth of the field centre, from north through east, degrees, from 0 to 360."""
        return self._plate.azimuth

    @property
    def hour_angle(self) -> float:
        """Observed hour angle of the field centre, positive west of the meridian, hours, from -12 to 12."""
        return self._plate.hour_angle

    @property
    def parallactic_angle(self) -> float:
        """Parallactic angle of the field centre, degrees, from -180 to 180."""
        return self._plate.parallactic_angle

    @property
    def rotator_angle(self) -> float:
        """The rotator angle that the pointing needs, degrees, from -180 to 180."""
        return self._plate.rotator_angle
