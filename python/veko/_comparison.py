"""What is different between two documents."""

from __future__ import annotations

import html
import json
from collections.abc import Iterable
from dataclasses import dataclass
from typing import Any

from . import _veko
from ._arguments import Numbers, PathLike, number
from ._document import Document, source


@dataclass(frozen=True, eq=False, repr=False)
class Comparison:
    """Two documents beside each other; as a text it tells all, to which a notebook adds a picture of what moved.

    Attributes
    ----------
    same : bool
        Whether they are the same, within the tolerances.
    fields : list of dict
        Of each field what moved, as in the JSON of `veko compare`; the names end in the units.
    differences : list of dict
        All other differences: `place`, `first` and `second`, None where a value is missing.
    text : str
        The same to read.
    picture : str
        Each fibre with an arrow to where it went, as SVG.
    """

    same: bool
    fields: list[dict[str, Any]]
    differences: list[dict[str, Any]]
    text: str
    picture: str

    def __str__(self) -> str:
        return self.text

    def __repr__(self) -> str:
        return f"<veko.Comparison: same {self.same}, fields {len(self.fields)}, differences {len(self.differences)}>"

    def _repr_html_(self) -> str:
        return f"<pre>{html.escape(self.text)}</pre>{self.picture}"


def compare(
    first: Document | PathLike,
    second: Document | PathLike,
    *,
    plate_tolerance: Numbers = 0.0,
    sky_tolerance: Numbers = 0.0,
    ignore: Iterable[str] = (),
) -> Comparison:
    """Tells what differs between two field definitions, as `veko compare` does.

    Parameters
    ----------
    first, second : path or Document
        The documents.
    plate_tolerance : float, default 0
        Up to this, places on the plate are the same; micrometres, up to 1e6.
    sky_tolerance : float, default 0
        Up to this, places on the sky are the same; arcsec, up to 3600.
    ignore : iterable of str, optional
        Names of attributes and elements that are left out.

    Returns
    -------
    Comparison

    Raises
    ------
    TypeError, ValueError
        For an invalid argument.
    veko.Error
        For a document that cannot be read.

    Examples
    --------
    >>> import veko
    >>> example = "examples/sombrero_south.xml"
    >>> veko.compare(veko.configure(example), veko.configure(example)).same
    True
    """
    names: list[Any] = list(ignore) if isinstance(ignore, Iterable) and not isinstance(ignore, (str, bytes)) else [None]
    if not all(isinstance(name, str) for name in names):
        raise TypeError("ignore must be names of attributes and elements")
    found, text, picture = _veko.compare(
        source("first", first),
        source("second", second),
        number("plate_tolerance", plate_tolerance, "um", 0, 1e6),
        number("sky_tolerance", sky_tolerance, "arcsec", 0, 3600),
        names,
    )
    facts = json.loads(found)
    return Comparison(facts["same"], facts["fields"], facts["differences"], text, picture)
