"""The bundle of fibres."""

from __future__ import annotations

import numpy as np
from numpy.typing import NDArray

from . import _veko
from ._arguments import PathLike, config_name
from ._values import Values


class Bundle(Values):
    """The fibres of the bundle, in ascending number. The arrays cannot be written to.

    Parameters
    ----------
    config : path, optional
        A configuration file; without it the built-in instrument counts.

    Attributes
    ----------
    ids : array of int
        The numbers of the fibres.
    names : array of str
        Their spaxel names, the `spaxel` of a document's targets. Those that begin with "S" see the sky beside the
        science target; a run gives them targets of `use` "S".
    statuses : array of str
        "enabled", "disabled", "broken", "bad ferrule", "no magnet", "no prism" or "absent".
    dx, dy : array of float
        Offsets from the centre of the bundle, before its orientation, mm.
    x, y : array of float
        Places on the plate, mm: what `Pointing.plate_to_sky` takes.
    orientation : float
        How the bundle is turned on the plate, from its x axis towards y, degrees.

    Raises
    ------
    veko.Error
        For a configuration, or a bundle definition, that cannot be read.

    Examples
    --------
    >>> import veko
    >>> bundle = veko.Bundle()
    >>> len(bundle)
    603
    >>> middle = bundle.ids == 304
    >>> bundle.names[middle], bundle.x[middle], bundle.y[middle]
    (array(['C14'], dtype='<U3'), array([0.]), array([-20.]))
    """

    ids: NDArray[np.uint32]
    names: NDArray[np.str_]
    statuses: NDArray[np.str_]
    dx: NDArray[np.float64]
    dy: NDArray[np.float64]
    x: NDArray[np.float64]
    y: NDArray[np.float64]
    orientation: float

    def __init__(self, config: PathLike | None = None) -> None:
        self.__setstate__(_veko.bundle(config_name(config)))

    def __len__(self) -> int:
        return len(self.ids)

    def __repr__(self) -> str:
        return f"<veko.Bundle of {len(self)} fibres>"
