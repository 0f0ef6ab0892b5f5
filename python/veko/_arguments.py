"""Arguments: names of files, numbers, places."""

from __future__ import annotations

import datetime
import math
import os
from typing import Any

import numpy as np
from numpy.typing import NDArray

from . import _veko

Numbers = Any
PathLike = str | bytes | os.PathLike[str] | os.PathLike[bytes]

RANGES = _veko.ranges()
_MOTION_UNITS = {"epoch": "yr", "pm_ra": "mas/yr", "pm_dec": "mas/yr", "parallax": "arcsec", "rv": "km/s"}
_ZERO = np.zeros(())


def file_name(name: str, value: PathLike) -> bytes:
    """The name of a file."""
    if not isinstance(value, (str, bytes, os.PathLike)):
        raise TypeError(f"{name} must be the name of a file, not {type(value).__name__}")
    try:
        encoded = os.fsencode(value)
    except UnicodeEncodeError:
        raise ValueError(f"{name} has characters that no name of a file can have here: {value!r}") from None
    if encoded.lstrip().startswith(b"<"):
        raise ValueError(f"{name} must be the name of a file, not its text")
    if b"\0" in encoded:
        raise ValueError(f"{name} holds a NUL, which no name of a file can")
    return encoded


def config_name(config: PathLike | None) -> bytes:
    """The name of a configuration; the built-in one, whose files begin with ":", for None."""
    return b":/configure.xml" if config is None else file_name("config", config)


def numbers(name: str, value: Numbers, unit: str = "") -> NDArray[np.float64]:
    """An argument as an array. A quantity is converted to the unit, a masked element is NaN."""
    mask = getattr(value, "mask", None)  # of a masked array; many other classes have a method of this name
    if getattr(value, "unit", None) is not None and hasattr(value, "quantity"):
        value = value.quantity  # of a column of a table
    if hasattr(value, "to_value"):
        value = _converted(name, value, unit)
    try:
        array = np.asarray(value)
    except (TypeError, ValueError) as error:
        raise TypeError(f"{name} must be numbers: {error}") from None
    if array.dtype.kind not in "iuf":
        raise TypeError(f"{name} must be numbers, not {type(value).__name__}")
    if array.dtype != np.float64:
        with np.errstate(over="ignore"):
            array = array.astype(np.float64)
    return np.where(mask, np.nan, array) if isinstance(mask, np.ndarray) and mask.shape == array.shape else array


def _converted(name: str, quantity: Any, unit: str) -> Any:
    """The numbers of a quantity in a unit. Time is taken for hour angles, degrees Celsius for temperatures."""
    options: dict[str, Any] = {}
    if unit == "hourangle" and getattr(quantity, "unit", None) is not None and quantity.unit.is_equivalent("h"):
        unit = "h"
    elif unit == "K":
        from astropy.units import temperature  # type: ignore[import]

        options["equivalencies"] = temperature()
    try:
        return quantity.to_value(unit, **options)
    except (TypeError, ValueError) as error:
        raise ValueError(f"{name} cannot be converted to {unit or 'a plain number'}: {error}") from None


def require_range(name: str, array: NDArray[np.float64], low: float, high: float) -> None:
    """Refuses finite numbers beyond a range."""
    beyond = _veko.first_beyond(array, low, high)
    if beyond is not None:
        wanted = f"from {low:.10g} to {high:.10g}" if low > -math.inf else f"at most {high:g}"
        raise ValueError(f"{name} must be {wanted}, not {beyond:.10g}")


def number(name: str, value: Numbers, unit: str = "", low: float = -math.inf, high: float = math.inf) -> float:
    """An argument that is one finite number of a range."""
    array = numbers(name, value, unit)
    if array.ndim != 0:
        raise TypeError(f"{name} must be one number, not an array")
    if not np.isfinite(array):
        raise ValueError(f"{name} must be a finite number, not {array}")
    require_range(name, array, low, high)
    return float(array)


def optional(
    name: str, value: Numbers | None, unit: str = "", low: float = -math.inf, high: float = math.inf
) -> float | None:
    """As `number`; None stays None."""
    return None if value is None else number(name, value, unit, low, high)


def julian_epoch(value: Numbers) -> Numbers:
    """An epoch: Julian years, or a Time of astropy, whose instant the years then mean on the scale TAI."""
    if isinstance(value, (str, datetime.date)):
        raise TypeError(f"epoch must be Julian years or a Time of astropy, not {type(value).__name__}")
    return value.tai.jyear if hasattr(value, "tai") else value


def is_coordinate(value: Any) -> bool:
    """Whether it is a SkyCoord of astropy, or a frame with data."""
    return hasattr(value, "transform_to")


def _of_coordinate(coordinate: Any) -> dict[str, Numbers]:
    """What a SkyCoord tells of its places; of motions where it has a proper motion."""
    from astropy.coordinates import RadialDifferential, SkyCoord  # type: ignore[import]
    from astropy.units import parallax

    coordinate = SkyCoord(coordinate)
    try:
        place = coordinate.icrs
    except AttributeError:  # so SkyCoord tells a frame that lacks what it needs
        raise ValueError(f"ra cannot be converted to ICRS: it is a SkyCoord of the frame {coordinate.name}") from None
    sphere = place.spherical
    known = {"ra": sphere.lon, "dec": sphere.lat}
    motion = place.data.differentials.get("s")
    if motion is None or isinstance(motion, RadialDifferential):
        return known
    on_sky = place.sphericalcoslat.differentials["s"]
    known |= {"epoch": coordinate.obstime, "pm_ra": on_sky.d_lon_coslat, "pm_dec": on_sky.d_lat}
    if sphere.distance.unit.is_equivalent("pc"):
        known |= {"parallax": sphere.distance.to("arcsec", equivalencies=parallax()), "rv": place.radial_velocity}
    return known


def catalogue_place(ra: Numbers, dec: Numbers | None, **motion: Numbers | None) -> dict[str, NDArray[np.float64]]:
    """A catalogue place, or many, by the name of each number, in the units of the library; what is not given is 0."""
    if is_coordinate(ra):
        if dec is not None:
            raise TypeError("ra is a SkyCoord, beside which there is no dec; what follows needs its name")
        known = _of_coordinate(ra)
        ra, dec = known["ra"], known["dec"]
        motion = {name: known.get(name) if value is None else value for name, value in motion.items()}
    elif dec is None:
        raise TypeError("dec is missing: give ra and dec, or a SkyCoord alone")
    values = {"ra": numbers("ra", ra, "deg"), "dec": numbers("dec", dec, "deg")}
    require_range("dec", values["dec"], *RANGES["dec"])
    if motion.get("epoch") is not None:
        motion["epoch"] = julian_epoch(motion["epoch"])
    elif any(value is not None for value in motion.values()):
        raise ValueError("epoch is missing: without it, or a SkyCoord's obstime, the motion of a place does not count")
    for name, value in motion.items():
        if value is None:
            values[name] = _ZERO
        else:
            low, high = RANGES[name]
            values[name] = numbers(name, value, _MOTION_UNITS[name])
            require_range(name, values[name], -math.inf if name == "epoch" else low, high)
    return values


def direction(ra: Numbers, dec: Numbers | None) -> tuple[float, float]:
    """One place without motion, degrees."""
    place = catalogue_place(ra, dec)
    return number("ra", place["ra"]), number("dec", place["dec"])


def columns(**arrays: NDArray[np.float64]) -> tuple[tuple[int, ...], list[NDArray[np.float64]]]:
    """The common shape of some arguments, and each as a flat array with one element or as many as that shape has."""
    try:
        shape = np.broadcast(*arrays.values()).shape
    except ValueError:
        shapes = ", ".join(f"{name} {array.shape}" for name, array in arrays.items() if array.ndim > 0)
        raise ValueError(f"the shapes of these arguments do not fit together: {shapes}") from None
    return shape, [
        array.reshape(-1) if array.size == 1 or array.shape == shape else np.broadcast_to(array, shape).ravel()
        for array in arrays.values()
    ]
