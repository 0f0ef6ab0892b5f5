"""Documents: reading and configuring them."""

from __future__ import annotations

import contextlib
import html
import os
from collections.abc import Iterator
from dataclasses import dataclass
from typing import Any

import numpy as np
from numpy.typing import NDArray

from . import _veko
from ._arguments import Numbers, PathLike, config_name, file_name
from ._options import HORIZON_LIMIT, estimates
from ._values import Values

UNITS = {
    "ra": "deg",
    "dec": "deg",
    "epoch": "yr",
    "pm_ra": "mas/yr",
    "pm_dec": "mas/yr",
    "parallax": "arcsec",
    "rv": "km/s",
    "x": "mm",
    "y": "mm",
}


@dataclass(frozen=True, eq=False, repr=False)
class Document(Values):
    """A field definition, configured or not; `read` and `configure` make it.

    Its attributes and arrays cannot be written to.

    Attributes
    ----------
    name : str
        The name of its file; of what `configure` made in memory, that of its input.
    xml : bytes
        The whole text.
    config : path or None
        The configuration with which it was read, which `check`, `configure`, `windows` and `report` take for it, too;
        None for the built-in one.
    pa : float
        Position angle of the observation, degrees; 0 where the document has none.
    conditions : dict
        Those of `epoch` (Julian years), `hour_angle` (hours), `temperature` (K), `pressure` (mbar) and
        `relative_humidity` that the document has, by the names that `Pointing` takes. A run takes hour angle 0 where
        there is none.
    fields : structured array
        One row for each field: centre `ra` and `dec` (degrees; NaN where the document has none), number of `targets`.
    targets : structured array
        One row for each target, in document order: number of its `field` and `group` (from 1; group 0 is none), `name`,
        `survey`, `use` ("T" science, "G" guide star, "S" sky; a run only keeps "C", "E" and "R"), `priority`,
        `configid`, `fibre` (negative for one that cannot be used, 0 for none), `automatic` (made by a run), `ra` and
        `dec` (ICRS, degrees), `epoch` (Julian years; 0 or less for a target that does not move), `pm_ra` and `pm_dec`
        (mas/yr), `parallax` (arcsec), `rv` (km/s), `x` and `y` (on the plate, mm; NaN where the document has none),
        `spaxel`.

    Examples
    --------
    >>> import veko
    >>> document = veko.configure("examples/sombrero_south.xml")
    >>> sky = document.targets["use"] == "S"
    >>> len(document.targets), sky.sum()
    (604, 56)
    """

    name: str
    xml: bytes
    config: PathLike | None
    pa: float
    conditions: dict[str, Any]
    fields: NDArray[np.void]
    targets: NDArray[np.void]

    def __post_init__(self) -> None:
        self.__setstate__(vars(self))

    @property
    def configured(self) -> bool:
        """Whether a run has made targets in it."""
        return bool(self.targets["automatic"].any())

    def __repr__(self) -> str:
        kind = ", configured" if self.configured else ""
        return f"<veko.Document {self.name}{kind}: fields {len(self.fields)}, targets {len(self.targets)}>"

    def _repr_html_(self) -> str:
        """The page of `report`, for a notebook."""
        from ._report import report

        try:
            return report(self)._repr_html_()
        except _veko.Error as error:
            return f"<pre>{html.escape(str(error))}</pre>"

    def write(self, path: PathLike) -> None:
        """Writes the text to a file, whole or not at all. Raises `veko.Error` where that is not possible."""
        _veko.write_bytes(file_name("path", path), self.xml)

    def table(self) -> Any:
        """The targets as a table of astropy, with units.

        Returns
        -------
        astropy.table.Table

        Raises
        ------
        ImportError
            Where astropy is not installed.

        Examples
        --------
        >>> import veko
        >>> veko.read("examples/sombrero_south.xml").table()["ra"].unit
        Unit("deg")
        """
        from astropy.table import Table  # type: ignore[import]

        return Table(self.targets, units=UNITS)


def structured(columns: dict[str, NDArray[Any]]) -> NDArray[np.void]:
    """Columns of one length as one structured array."""
    rows = np.empty(len(next(iter(columns.values()))), [(name, column.dtype) for name, column in columns.items()])
    for name, column in columns.items():
        rows[name] = column
    return rows


@contextlib.contextmanager
def about(name: bytes) -> Iterator[None]:
    """Notes at an error which document it is about."""
    try:
        yield
    except _veko.Error as error:
        error.add_note(f"The document is {os.fsdecode(name)}")
        raise


def document_of(xml: bytes, name: bytes, config: bytes) -> Document:
    """The document of a text."""
    with about(name):
        parts = _veko.document((xml, name), config)
    everywhere = None if config.startswith(b":") else os.path.abspath(os.fsdecode(config))
    fields, targets = structured(parts["fields"]), structured(parts["targets"])
    return Document(os.fsdecode(name), xml, everywhere, parts["pa"], parts["conditions"], fields, targets)


def source(argument: str, document: Document | PathLike) -> tuple[bytes, bytes]:
    """The text and the name of a document."""
    if isinstance(document, Document):
        return document.xml, os.fsencode(document.name)
    name = file_name(argument, document)
    return _veko.read_bytes(name), name


def configuration(document: Document | PathLike, config: PathLike | None) -> bytes:
    """The name of the configuration for a document: the one that is given, else that with which it was read."""
    return config_name(document.config if config is None and isinstance(document, Document) else config)


def read(path: PathLike, *, config: PathLike | None = None) -> Document:
    """Reads a field definition.

    Parameters
    ----------
    path : path
        The document, configured or not.
    config : path, optional
        The configuration with whose data model version the document must agree; without it the built-in one.

    Returns
    -------
    Document

    Raises
    ------
    veko.Error
        For a document whose fields and targets the run could not read either, with its message. `check` tells where it
        is wrong.

    Examples
    --------
    >>> import veko
    >>> document = veko.read("examples/sombrero_south.xml")
    >>> document.targets["name"]
    array(['M 104', 'invented guide star 1'], dtype='<U21')
    """
    name = file_name("path", path)
    return document_of(_veko.read_bytes(name), name, config_name(config))


def configure(
    input: Document | PathLike,
    output: PathLike | None = None,
    *,
    epoch: Numbers | None = None,
    hour_angle: Numbers | None = None,
    pressure: Numbers | None = None,
    horizon_limit: Numbers = HORIZON_LIMIT,
    config: PathLike | None = None,
) -> Document:
    """Configures a field definition: the run of `veko_configure`, to the byte.

    Parameters
    ----------
    input : path or Document
        The field definition.
    output : path, optional
        The document to write, which may be the input. Without it nothing is written.
    epoch : float or astropy.time.Time, optional
        Julian epoch of the observation, years on the scale TAI, from 1960 to 2200. It, `hour_angle` and `pressure` take
        the place of the document's values. Where an hour angle is known, from here or from the document, the date moves
        to it: for an instant of your own give both, see docs/python.md.
    hour_angle : float, optional
        Hour angle of the first field's centre, positive west of the meridian, hours from -12 to 12. The date moves, by
        up to half a day, until it is reached.
    pressure : float, optional
        Millibar, above 0.
    horizon_limit : float, default 25
        Altitude above which the first field must be, degrees from -90 to 90.
    config : path, optional
        A configuration file. Without it that of the `Document` counts; for a file the built-in one, whose name is
        ":/configure.xml".

    Returns
    -------
    Document
        The configured document. In memory it has the name of its input.

    Raises
    ------
    TypeError, ValueError
        For an invalid argument.
    veko.Error
        For what the run refuses, with its message. An older output is then untouched.

    Examples
    --------
    >>> import veko
    >>> document = veko.configure("examples/sombrero_south.xml", hour_angle=0.5)
    >>> document.fields["targets"]
    array([604], dtype=int32)
    """
    values = estimates(epoch, hour_angle, pressure, horizon_limit)
    to = None if output is None else file_name("output", output)
    given: bytes | tuple[bytes, bytes]
    if isinstance(input, Document):
        given = _, name = source("input", input)
    else:
        given = name = file_name("input", input)
    instrument = configuration(input, config)
    with about(name):
        xml = _veko.configure(given, to, instrument, values)
    return document_of(xml, name if to is None else to, instrument)
