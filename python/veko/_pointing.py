"""Pointings of the bundle's plate."""

from __future__ import annotations

import copy
import math
from typing import Any

import numpy as np

from . import _veko
from ._arguments import (
    RANGES,
    Numbers,
    PathLike,
    catalogue_place,
    columns,
    config_name,
    direction,
    number,
    numbers,
)
from ._options import HORIZON_LIMIT, date_epoch, horizon, hour_angle_hours, weather


def _date(epoch: Numbers | None, mjd_tai: Numbers | None) -> float:
    """MJD, TAI."""
    if (epoch is None) == (mjd_tai is None):
        raise TypeError("one of epoch and mjd_tai must be given, and not both")
    if mjd_tai is None:
        return _veko.mjd_of_epoch(date_epoch(epoch))
    first, last = map(_veko.mjd_of_epoch, RANGES["date"])
    return number("mjd_tai", mjd_tai.tai.mjd if hasattr(mjd_tai, "tai") else mjd_tai, "d", first, last)


class Pointing:
    """A pointing of the bundle's plate: a field centre, a position angle, a date and the weather.

    Any number of pointings may be used at the same time, in one thread or several.

    Parameters
    ----------
    ra, dec : float
        Field centre: ICRS, at the date of the pointing, degrees; `dec` is from -90 to 90. In place of both, a SkyCoord,
        whose motion does not count.
    pa : float, default 0
        Position angle, from the north of the date through east, degrees from -360 to 360.
    epoch : float or astropy.time.Time
        Date as Julian epoch, years on the scale TAI, from 1960 to 2200.
    mjd_tai : float or astropy.time.Time
        Date as Modified Julian Date, TAI. Either this or `epoch` is required.
    hour_angle : float, optional
        The date moves, by up to half a day, until the field centre has this hour angle to a second of time; hours from
        -12 to 12, positive west of the meridian. Without it the date stays.
    temperature : float, default 283
        Kelvin, from 123.15 to 473.15.
    pressure : float, default 660
        Millibar, up to 10000; 0 means no refraction.
    relative_humidity : float, default 0.2
        From 0 to 1.
    config : path, optional
        A configuration file; without it the built-in instrument counts.

    Raises
    ------
    TypeError, ValueError
        For an invalid argument; the message names it.
    veko.Error
        For a configuration that cannot be read, or an hour angle that cannot be reached.

    Notes
    -----
    Numbers may be quantities of astropy, in any fitting unit.

    The optical model is that of the plate, some 1.1 degrees around the field centre. Farther away the conversions go on
    with its formula, and their numbers mean little.

    A pickled pointing has the name of its configuration, which is read again where it comes back.

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
        dec: Numbers | None = None,
        pa: Numbers = 0.0,
        *,
        epoch: Numbers | None = None,
        mjd_tai: Numbers | None = None,
        hour_angle: Numbers | None = None,
        temperature: Numbers | None = None,
        pressure: Numbers | None = None,
        relative_humidity: Numbers | None = None,
        config: PathLike | None = None,
    ) -> None:
        self._plate = _veko.PointedPlate(
            config_name(config),
            *direction(ra, dec),
            number("pa", pa, "deg", *RANGES["pa"]),
            [_date(epoch, mjd_tai), *weather(temperature, pressure, relative_humidity)],
            hour_angle_hours(hour_angle),
        )

    def __copy__(self) -> Pointing:
        copied = object.__new__(type(self))
        vars(copied).update(vars(self), _plate=copy.copy(self._plate))
        return copied

    def __repr__(self) -> str:
        now = self._plate.state()
        centre = f"{now['ra']:.6f} {now['dec']:.6f}, pa {now['pa']:g}, mjd_tai {now['mjd_tai']:.6f}"
        return f"<veko.Pointing {centre}, hour angle {now['hour_angle']:.2f}, altitude {now['altitude']:.1f}>"

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
            Catalogue places: ICRS, degrees. In place of both, a SkyCoord; where it has a proper motion, this counts,
            with its `obstime`, distance and radial velocity, as far as the arguments below are not given.
        epoch : array_like or astropy.time.Time, optional
            Julian epoch of the places, years up to 2200. Without it, or where it is 0 or less, they do not move.
        pm_ra, pm_dec : array_like, optional
            Proper motions, mas/yr; that in right ascension has the factor cos(dec). They need `epoch`.
        parallax : array_like, optional
            Arcsec, at most 0.77. It only changes the proper motion a little; the annual parallax is not applied.
        rv : array_like, optional
            Radial velocity, km/s, positive receding.

        Returns
        -------
        x, y : array, or float
            Places on the plate, mm. NaN where an argument is not finite or is masked, and for a place that is 90
            degrees or more away from the field centre.

        Raises
        ------
        TypeError, ValueError
            For an invalid argument, and for shapes that do not fit together.

        Examples
        --------
        >>> import veko
        >>> pointing = veko.Pointing(194.182151, 21.781378, mjd_tai=60783.98)
        >>> x, y = pointing.sky_to_plate([194.182151, float("nan")], 21.781378)
        >>> print(x.round(6) + 0, y.round(6) + 0)
        [ 0. nan] [ 0. nan]
        """
        place = catalogue_place(ra, dec, epoch=epoch, pm_ra=pm_ra, pm_dec=pm_dec, parallax=parallax, rv=rv)
        shape, values = columns(**place)
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
            ICRS at the date of the pointing, degrees; `ra` from 0 to 360. NaN where an argument is not finite or is
            masked, and where the optics see no sky.

        Raises
        ------
        TypeError, ValueError
            For an invalid argument, and for shapes that do not fit together.

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
        dec: Numbers | None = None,
        fibre: int | np.integer[Any] | None = None,
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
            Catalogue place: ICRS, degrees. In place of both, a SkyCoord.
        fibre : int
            Number of the fibre, see `Bundle`; required. It may be a broken one.
        epoch, pm_ra, pm_dec, parallax, rv : float, optional
            As `sky_to_plate` takes them.

        Raises
        ------
        TypeError, ValueError
            For an invalid argument.
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
        place = catalogue_place(ra, dec, epoch=epoch, pm_ra=pm_ra, pm_dec=pm_dec, parallax=parallax, rv=rv)
        values = [number(name, value) for name, value in place.items()]
        if not isinstance(fibre, (int, np.integer)) or isinstance(fibre, bool):
            raise TypeError(f"fibre must be an integer, not {type(fibre).__name__}")
        if not 0 <= fibre < 2**31:
            raise ValueError(f"fibre must be the number of a fibre, not {fibre}")
        self._plate.place(values, int(fibre))

    def check(self, horizon_limit: Numbers = HORIZON_LIMIT) -> None:
        """Checks horizon and rotator as the run does.

        Parameters
        ----------
        horizon_limit : float, default 25
            Altitude above which the field centre must be, degrees from -90 to 90.

        Raises
        ------
        TypeError, ValueError
            For an invalid argument.
        veko.Error
            "field is below the horizon limit" or "field position angle is outside the rotator limits".

        Examples
        --------
        >>> import veko
        >>> veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=6).check()
        Traceback (most recent call last):
        veko.Error: field is below the horizon limit
        """
        self._plate.check(horizon(horizon_limit))

    def hour_angle_limits(self, horizon_limit: Numbers = HORIZON_LIMIT) -> tuple[float, float]:
        """The hour angles that a run writes as limits: how far the field can be followed from where it is now.

        They begin and end at the horizon limit, or where the rotator is at one of its ends; the field must pass `check`
        now. Where it does not, they mean nothing: ask `windows`, which knows all intervals of a night.

        Parameters
        ----------
        horizon_limit : float, default 25
            Altitude above which the field centre must be, degrees from -90 to 90.

        Returns
        -------
        smaller, larger : float
            Hours; of a field that never sets, up to a turn beyond -12 and 12. Both are 0 for a field that is below the
            limit now, and NaN for one that has no limit. A document has the smaller as `latest`, the larger as
            `earliest`.

        Raises
        ------
        TypeError, ValueError
            For an invalid argument.

        Examples
        --------
        >>> import veko
        >>> limits = veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=-1).hour_angle_limits()
        >>> print(f"{limits[0]:.2f} {limits[1]:.2f}")
        -3.51 3.51
        """
        return self._plate.hour_angle_limits(horizon(horizon_limit))

    @property
    def field_centre(self) -> tuple[float, float]:
        """Right ascension, from 0 to 360, and declination: ICRS at the date of the pointing, degrees."""
        now = self._plate.state()
        return now["ra"], now["dec"]

    @property
    def pa(self) -> float:
        """Position angle, from the north of the date through east, degrees, from -180 to 180."""
        return self._plate.state()["pa"]

    @property
    def mjd_tai(self) -> float:
        """The date: Modified Julian Date, TAI."""
        return self._plate.state()["mjd_tai"]

    @property
    def temperature(self) -> float:
        """Kelvin."""
        return self._plate.state()["temperature"]

    @property
    def pressure(self) -> float:
        """Millibar."""
        return self._plate.state()["pressure"]

    @property
    def relative_humidity(self) -> float:
        """From 0 to 1."""
        return self._plate.state()["relative_humidity"]

    @property
    def altitude(self) -> float:
        """Observed altitude of the field centre, degrees, from -90 to 90."""
        return self._plate.state()["altitude"]

    @property
    def airmass(self) -> float:
        """Airmass of the field centre; NaN below the horizon."""
        return self._plate.state()["airmass"]

    @property
    def azimuth(self) -> float:
        """Observed azimuth of the field centre, from north through east, degrees, from 0 to 360."""
        return self._plate.state()["azimuth"]

    @property
    def hour_angle(self) -> float:
        """Observed hour angle of the field centre, positive west of the meridian, hours, from -12 to 12."""
        return self._plate.state()["hour_angle"]

    @property
    def parallactic_angle(self) -> float:
        """Parallactic angle of the field centre, degrees, from -180 to 180."""
        return self._plate.state()["parallactic_angle"]

    @property
    def rotator_angle(self) -> float:
        """The rotator angle that the pointing needs, degrees, from -180 to 180."""
        return self._plate.state()["rotator_angle"]
