"""When fields can be observed."""

from __future__ import annotations

import datetime
import json
import math
from dataclasses import dataclass
from typing import Any

from . import _veko
from ._arguments import Numbers, PathLike, config_name, is_coordinate, number, optional
from ._document import Document, source
from ._pointing import DEFAULT_HUMIDITY, DEFAULT_PRESSURE, DEFAULT_TEMPERATURE

Date = str | datetime.date

TWILIGHTS = {"civil": -6.0, "nautical": -12.0, "astronomical": -18.0, "none": None}


def evening(name: str, date: Date) -> str:
    """A date as YYYY-MM-DD."""
    if isinstance(date, datetime.datetime) or not isinstance(date, (str, datetime.date)):
        raise TypeError(f"{name} must be a date or a text YYYY-MM-DD, not {type(date).__name__}")
    try:
        return (datetime.date.fromisoformat(date) if isinstance(date, str) else date).isoformat()
    except ValueError:
        raise ValueError(f"{name} is not a date YYYY-MM-DD: {date}") from None


def _sun_altitude(twilight: str | Numbers) -> float | None:
    """The altitude below which the Sun must be, degrees."""
    if not isinstance(twilight, str):
        return number("twilight", twilight, "deg", -90, 0)
    if twilight not in TWILIGHTS:
        raise ValueError(f"twilight must be one of {', '.join(TWILIGHTS)} or an altitude, not {twilight}")
    return TWILIGHTS[twilight]


def window_options(
    horizon_limit: Numbers, twilight: str | Numbers, airmass: Numbers | None, moon: Numbers | None, minimum: Numbers
) -> _veko.WindowOptions:
    """What must hold in a window."""
    return _veko.WindowOptions(
        number("horizon_limit", horizon_limit, "deg"),
        _sun_altitude(twilight),
        optional("airmass", airmass, low=1, high=40),
        optional("moon", moon, "deg", 0, 180),
        number("minimum", minimum, "min", 0, 1440),
    )


@dataclass(frozen=True)
class Moment:
    """Where a field stands at an instant.

    Attributes
    ----------
    utc : datetime.datetime
        To the millisecond.
    mjd_tai : float
        Modified Julian Date, TAI.
    epoch : float
        Julian epoch: with it `configure` comes to this instant.
    sidereal_time : float
        Local apparent, hours.
    hour_angle : float
        Observed, hours.
    run_hour_angle : float
        The same of the first field of the document, which a run takes for that of all.
    altitude, azimuth : float
        Observed, degrees.
    airmass : float
        NaN below the horizon.
    parallactic_angle, rotator_angle : float
        Degrees.
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


@dataclass(frozen=True)
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


@dataclass(frozen=True)
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


def _moment(found: dict[str, Any]) -> Moment:
    return Moment(
        utc=datetime.datetime.fromisoformat(found["utc"].replace("Z", "+00:00")),
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
    ra, dec = (what.icrs.ra, what.icrs.dec) if is_coordinate(what) else what
    return number("ra", ra, "deg", 0, 360), number("dec", dec, "deg", -90, 90), optional("pa", pa, "deg") or 0.0


def _weather(temperature: Numbers | None, pressure: Numbers | None, humidity: Numbers | None) -> list[float]:
    given = (
        optional("temperature", temperature, "K", low=0),
        optional("pressure", pressure, "mbar", low=0),
        optional("relative_humidity", humidity, low=0, high=1),
    )
    defaults = (DEFAULT_TEMPERATURE, DEFAULT_PRESSURE, DEFAULT_HUMIDITY)
    return [default if value is None else value for value, default in zip(given, defaults)]


def windows(
    what: Document | PathLike | Any,
    night: Date,
    last: Date | None = None,
    *,
    twilight: str | Numbers = "nautical",
    airmass: Numbers | None = None,
    moon: Numbers | None = None,
    minimum: Numbers = 0.0,
    horizon_limit: Numbers = 25.0,
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
        A field definition; or a place, ICRS, degrees.
    night : datetime.date or str
        Date of the evening at the site, from 1900 to 2100; of a season, that of the first night.
    last : datetime.date or str, optional
        The last night of a season.
    twilight : str or float, default "nautical"
        "civil", "nautical", "astronomical" or "none"; or the altitude below which the Sun must be, degrees.
    airmass : float, optional
        Greatest airmass, from 1 to 40.
    moon : float, optional
        Least distance from the Moon while that is up, degrees.
    minimum : float, default 0
        Length of the shortest window that counts, minutes.
    horizon_limit : float, default 25
        Altitude above which the field must be, degrees.
    pressure : float, optional
        Millibar; without it the document's, or 660.
    pa : float, optional
        Of a place: position angle, degrees; 0 without it.
    temperature, relative_humidity : float, optional
        Of a place: kelvin, and from 0 to 1; 283 and 0.2 without them.
    config : path, optional
        A configuration file; without it the built-in instrument counts.

    Returns
    -------
    list of NightWindows
        Field by field, one for each night.

    Raises
    ------
    TypeError, ValueError
        For an argument that cannot be meant.
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
    if is_coordinate(what) or (isinstance(what, (tuple, list)) and len(what) == 2):
        weather = _weather(temperature, pressure, relative_humidity)
        text = _veko.windows_of_place(_place(what, pa), weather, first, final, config_name(config), options)
    else:
        for name, value in {"pa": pa, "temperature": temperature, "relative_humidity": relative_humidity}.items():
            if value is not None:
                raise TypeError(f"{name} is for a place; a document has its own")
        xml, file = source(what)
        low = optional("pressure", pressure, "mbar", low=0)
        text = _veko.windows_of_document(xml, file, low, first, final, config_name(config), options)
    return [_night(found) for found in json.loads(text)["nights"]]
