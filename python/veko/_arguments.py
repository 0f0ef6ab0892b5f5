"""What the functions of this package accept."""

from __future__ import annotations

import math
import os
from typing import Any

import numpy as np
from numpy.typing import NDArray

Numbers = Any
"""Numbers of any shape, or a quantity of astropy."""
PathLike = str | bytes | os.PathLike[str] | os.PathLike[bytes]

BUILT_IN = b":/configure.xml"


def config_name(config: PathLike | None) -> bytes:
    """The name of a configuration; the built-in one for None."""
    return BUILT_IN if config is None else os.fsencode(config)


def numbers(name: str, value: Numbers, unit: str = "") -> NDArray[np.float64]:
    """An argument as an array. A quantity is converted to the unit, a masked element is NaN."""
    if hasattr(value, "to_value"):
        try:
            value = value.to_value(unit)
        except (TypeError, ValueError) as error:
            raise ValueError(f"{name} cannot be converted to {unit or 'a plain number'}: {error}") from None
    array = np.asarray(value)
    if array.dtype.kind not in "iuf":
        raise TypeError(f"{name} must be numbers, not {type(value).__name__} of {array.dtype}")
    array = array.astype(np.float64, copy=False)
    mask = getattr(value, "mask", None)
    return array if mask is None else np.where(mask, np.nan, array)


def number(name: str, value: Numbers, unit: str = "", low: float = -math.inf, high: float = math.inf) -> float:
    """An argument that is one finite number of a range."""
    array = numbers(name, value, unit)
    if array.ndim != 0:
        raise TypeError(f"{name} must be one number, not an array")
    result = float(array)
    if not math.isfinite(result):
        raise ValueError(f"{name} must be a finite number, not {result}")
    if not low <= result <= high:
        raise ValueError(f"{name} must be from {low:g} to {high:g}, not {result:g}")
    return result


def optional(
    name: str, value: Numbers | None, unit: str = "", low: float = -math.inf, high: float = math.inf
) -> float | None:
    """As `number`; None stays None."""
    return None if value is None else number(name, value, unit, low, high)


def is_coordinate(value: Any) -> bool:
    """Whether it is a SkyCoord of astropy."""
    return hasattr(value, "icrs")


def julian_years(value: Numbers) -> Numbers:
    """An epoch: Julian years, or a Time of astropy."""
    return value.tt.jyear if hasattr(value, "tt") else value


def columns(**arrays: NDArray[np.float64]) -> tuple[tuple[int, ...], list[NDArray[np.float64]]]:
    """The common shape of some arguments, and each as a flat array with one element or as many as that shape has."""
    shapes_found = {array.shape for array in arrays.values()} - {()}
    try:
        shape = np.broadcast_shapes(*shapes_found) if len(shapes_found) != 1 else shapes_found.pop()
    except ValueError:
        shapes = ", ".join(f"{name} {array.shape}" for name, array in arrays.items() if array.ndim > 0)
        raise ValueError(f"the shapes of these arguments do not fit together: {shapes}") from None
    return shape, [
        array.reshape(-1) if array.size == 1 or array.shape == shape else np.broadcast_to(array, shape).ravel()
        for array in arrays.values()
    ]
