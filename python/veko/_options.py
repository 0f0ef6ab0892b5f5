"""Arguments that mean the same to several functions: what takes the place of a document's values, nights, limits."""

from __future__ import annotations

import datetime

from . import _veko
from ._arguments import RANGES, Numbers, julian_epoch, number, optional

Date = str | datetime.date

HORIZON_LIMIT = _veko.horizon_limit
FIELD_RADIUS = _veko.field_radius
TWILIGHTS = _veko.twilights()
_WEATHER = _veko.default_weather()


def date_epoch(epoch: Numbers) -> float:
    """The date of an observation, Julian years."""
    return number("epoch", julian_epoch(epoch), "yr", *RANGES["date"])


def hour_angle_hours(hour_angle: Numbers | None) -> float | None:
    """Hours."""
    return optional("hour_angle", hour_angle, "hourangle", *RANGES["hour_angle"])


def pressure_millibar(pressure: Numbers | None) -> float | None:
    """What takes the place of the pressure of a document."""
    value = optional("pressure", pressure, "mbar", *RANGES["pressure"])
    if value == 0:
        raise ValueError("pressure must be above 0: with 0 a run takes that of its document")
    return value


def horizon(limit: Numbers) -> float:
    """The altitude above which a field must be, degrees."""
    return number("horizon_limit", limit, "deg", -90, 90)


def weather(temperature: Numbers | None, pressure: Numbers | None, relative_humidity: Numbers | None) -> list[float]:
    """Kelvin, millibar, and from 0 to 1; what a document without any has for None."""
    given = (
        optional("temperature", temperature, "K", *RANGES["temperature"]),
        optional("pressure", pressure, "mbar", *RANGES["pressure"]),
        optional("relative_humidity", relative_humidity, "", *RANGES["relative_humidity"]),
    )
    return [default if value is None else value for value, default in zip(given, _WEATHER)]


def estimates(
    epoch: Numbers | None, hour_angle: Numbers | None, pressure: Numbers | None, horizon_limit: Numbers
) -> _veko.Estimates:
    """What takes the place of a document's values."""
    return _veko.Estimates(
        None if epoch is None else date_epoch(epoch),
        hour_angle_hours(hour_angle),
        pressure_millibar(pressure),
        horizon(horizon_limit),
    )


def field_radius_degrees(field_radius: Numbers) -> float:
    """How far apart centre and targets of a field may be, degrees."""
    radius = number("field_radius", field_radius, "deg", 0, 90)
    if radius == 0:
        raise ValueError("field_radius must be above 0")
    return radius


def evening(name: str, date: Date) -> str:
    """A date as YYYY-MM-DD."""
    if isinstance(date, datetime.datetime) or not isinstance(date, (str, datetime.date)):
        raise TypeError(f"{name} must be a date without a time, or a text YYYY-MM-DD, not {type(date).__name__}")
    try:
        day = datetime.datetime.strptime(date, "%Y-%m-%d").date() if isinstance(date, str) else date
    except ValueError:
        raise ValueError(f"{name} is not a date YYYY-MM-DD: {date}") from None
    return day.isoformat()


def sun_altitude(twilight: str | Numbers) -> float | None:
    """The altitude below which the Sun must be, degrees; None for any."""
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
        horizon(horizon_limit),
        sun_altitude(twilight),
        optional("airmass", airmass, low=1, high=40),
        optional("moon", moon, "deg", 0, 180),
        number("minimum", minimum, "min", 0, 1440),
    )
