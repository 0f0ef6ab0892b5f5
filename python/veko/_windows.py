"""When fields can be observed."""

from __future__ import annotations

import datetime
import json
import math
import os
from dataclasses import dataclass
from typing import Any

import numpy as np

from . import _veko
from ._arguments import RANGES, Numbers, PathLike, config_name, direction, is_coordinate, optional
from ._document import Document, about, configuration, source
from ._options import HORIZON_LIMIT, Date, evening, pressure_millibar, weather, window_options


@dataclass(frozen=True, repr=False)
class Moment:
    """Where a field stands at an instant.

    Attributes
    ----------
    utc : datetime.datetime
        To the millisecond, with its time zone; a leap second is the first of the next day.
    mjd_tai : float
        Modified Julian Date, TAI.
    epoch : float
        Julian epoch, years, TAI. `configure` with it as `epoch` and with `run_hour_angle` as `hour_angle` comes to this
        instant.
    sidereal_time : float
        Local apparent, hours from 0 to 24.
    hour_angle : float
        Observed, positive west of the meridian, hours from -12 to 12.
    run_hour_angle : float
        The observed hour angle of the document's first field at this instant, hours from -12 to 12.
    altitude, azimuth : float
        Observed, degrees; azimuth from north through east, 0 to 360.
    airmass : float
        NaN below the horizon.
    parallactic_angle, rotator_angle : float
        Degrees from -180 to 180.
    """

    utc: datetime.datetime
    mjd_tai: float
    epoch: float
    sidereal_time: float
    hour_angle: float
    run_hour_angle: float
    altitude: float
    airmass: float
    azimuth: float
    parallactic_angle: float
    rotator_angle: float

    def __repr__(self) -> str:
        place = f"hour angle {self.hour_angle:.2f}, altitude {self.altitude:.1f}"
        return f"<veko.Moment {self.utc:%Y-%m-%d %H:%M:%S} UTC, {place}>"


@dataclass(frozen=True, repr=False)
class Window:
    """An interval in which a field can be observed.

    Attributes
    ----------
    start, best, end : Moment
        At `best` the field stands highest.
    start_limit, end_limit : str
        What ends it: "horizon", "rotator low", "rotator high", "twilight", "airmass", "moon" or "noon".
    is_longest : bool
        Whether it is the longest of its night.
    """

    start: Moment
    best: Moment
    end: Moment
    start_limit: str
    end_limit: str
    is_longest: bool

    @property
    def hours(self) -> float:
        """The length, hours."""
        return (self.end.mjd_tai - self.start.mjd_tai) * 24

    def __repr__(self) -> str:
        times = f"{self.start.utc:%Y-%m-%d %H:%M} to {self.end.utc:%H:%M} UTC"
        return f"<veko.Window {times}, from {self.start_limit} to {self.end_limit}>"


@dataclass(frozen=True, repr=False)
class NightWindows:
    """The windows of a field in a night.

    Attributes
    ----------
    file : str or None
        Name of the document; None for a place.
    field : int
        Number of the field in its document, from 1.
    night : datetime.date
        Of the evening at the site.
    windows : tuple of Window
        In the order of time.
    reason : str or None
        Why there is none.
    """

    file: str | None
    field: int
    night: datetime.date
    windows: tuple[Window, ...]
    reason: str | None

    @property
    def hours(self) -> float:
        """The length of all windows, hours; 0 where there is none."""
        return math.fsum(window.hours for window in self.windows)

    def __repr__(self) -> str:
        found = ", ".join(map(repr, self.windows)) or self.reason
        return f"<veko.NightWindows {self.night}, field {self.field}: {found}>"


def _utc(text: str) -> datetime.datetime:
    """An instant of ISO 8601. The type knows no second 60."""
    leap = datetime.timedelta(seconds=1 if ":60" in text else 0)
    return datetime.datetime.fromisoformat(text.replace(":60", ":59").replace("Z", "+00:00")) + leap


def _moment(found: dict[str, Any]) -> Moment:
    return Moment(
        utc=_utc(found["utc"]),
        mjd_tai=found["mjdTai"],
        epoch=found["epoch"],
        sidereal_time=found["lstHours"],
        hour_angle=found["hourAngleHours"],
        run_hour_angle=found["runHourAngleHours"],
        altitude=found["altitudeDeg"],
        airmass=math.nan if found["airmass"] is None else found["airmass"],
        azimuth=found["azimuthDeg"],
        parallactic_angle=found["parallacticDeg"],
        rotator_angle=found["rotatorDeg"],
    )


def _window(found: dict[str, Any]) -> Window:
    start, best, end = (_moment(found[name]) for name in ("start", "best", "end"))
    return Window(start, best, end, found["start"]["limit"], found["end"]["limit"], found["longest"])


def _night(found: dict[str, Any]) -> NightWindows:
    windows = tuple(_window(window) for window in found["windows"])
    night = datetime.date.fromisoformat(found["night"])
    return NightWindows(found["file"], found["field"], night, windows, found["reason"])


def _place(what: Any, pa: Numbers | None) -> tuple[float, float, float]:
    """Right ascension, declination and position angle, degrees."""
    if is_coordinate(what):
        ra, dec = direction(what, None)
    elif isinstance(what, (tuple, list)) and len(what) == 2 or np.shape(what) == (2,):
        ra, dec = direction(*what)
    else:
        raise TypeError(
            "what must be the name of a file, a Document, a pair of right ascension and declination, or a SkyCoord, "
            f"not {type(what).__name__}"
        )
    return ra, dec, optional("pa", pa, "deg", *RANGES["pa"]) or 0.0


def windows(
    what: Document | PathLike | Any,
    night: Date,
    last: Date | None = None,
    *,
    twilight: str | Numbers = "nautical",
    airmass: Numbers | None = None,
    moon: Numbers | None = None,
    minimum: Numbers = 0.0,
    horizon_limit: Numbers = HORIZON_LIMIT,
    pressure: Numbers | None = None,
    pa: Numbers | None = None,
    temperature: Numbers | None = None,
    relative_humidity: Numbers | None = None,
    config: PathLike | None = None,
) -> list[NightWindows]:
    """Tells when the fields of a document, or a place, can be observed, as `veko window` does.

    Parameters
    ----------
    what : path, Document, pair of float or SkyCoord
        A field definition; or a place that stays, ICRS, degrees.
    night : datetime.date or str
        Date of the evening at the site, from 1900 to 2100; of a season, that of the first night.
    last : datetime.date or str, optional
        The last night of a season.
    twilight : str or float, default "nautical"
        "civil", "nautical", "astronomical" or "none"; or the altitude below which the Sun must be,
        degrees from -90 to 0.
    airmass : float, optional
        Greatest airmass, from 1 to 40.
    moon : float, optional
        Least distance from the Moon while that is up, degrees from 0 to 180.
    minimum : float, default 0
        Length of the shortest window that counts, minutes up to 1440.
    horizon_limit : float, default 25
        Altitude above which the field must be, degrees from -90 to 90.
    pressure : float, optional
        Millibar; without it the document's, or 660. For a place 0 means no refraction.
    pa : float, optional
        Of a place: position angle, from the north of the date through east, degrees from -360 to 360; 0 without it. It
        decides where the rotator ends a window: a field that culminates north of the zenith needs one near 180.
    temperature, relative_humidity : float, optional
        Of a place: kelvin, and from 0 to 1; 283 and 0.2 without them.
    config : path, optional
        A configuration file. Without it that of the `Document` counts; for all else the built-in one.

    Returns
    -------
    list of NightWindows
        Field by field, one for each night.

    Raises
    ------
    TypeError, ValueError
        For an invalid argument.
    veko.Error
        For a document or a configuration that cannot be read.

    Examples
    --------
    >>> import veko
    >>> (night,) = veko.windows((190, -11.6), "2027-04-01")
    >>> [(f"{window.start.utc:%H:%M}", f"{window.end.utc:%H:%M}") for window in night.windows]
    [('21:42', '04:42')]
    """
    options = window_options(horizon_limit, twilight, airmass, moon, minimum)
    first, final = evening("night", night), evening("last", night if last is None else last)
    if final < first:
        raise ValueError("last is before night")
    if isinstance(what, (Document, str, bytes, os.PathLike)):
        for name, value in {"pa": pa, "temperature": temperature, "relative_humidity": relative_humidity}.items():
            if value is not None:
                raise TypeError(f"{name} is for a place; a document has its own")
        given = source("what", what)
        with about(given[1]):
            text = _veko.windows_of_document(
                given, pressure_millibar(pressure), first, final, configuration(what, config), options
            )
    else:
        air = weather(temperature, pressure, relative_humidity)
        text = _veko.windows_of_place(_place(what, pa), air, first, final, config_name(config), options)
    return [_night(found) for found in json.loads(text)["nights"]]
