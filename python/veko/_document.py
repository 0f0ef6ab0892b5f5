"""Documents: reading, configuring and checking them."""

from __future__ import annotations

import html
import json
import os
from dataclasses import dataclass
from typing import Any

import numpy as np
from numpy.typing import NDArray

from . import _veko
from ._arguments import Numbers, PathLike, config_name, julian_years, number, optional

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


def estimates(
    epoch: Numbers | None, hour_angle: Numbers | None, pressure: Numbers | None, horizon_limit: Numbers
) -> _veko.Estimates:
    """What takes the place of a document's values."""
    return _veko.Estimates(
        optional("epoch", julian_years(epoch), "yr"),
        optional("hour_angle", hour_angle, "hourangle"),
        optional("pressure", pressure, "mbar"),
        number("horizon_limit", horizon_limit, "deg"),
    )


def structured(columns: dict[str, Any]) -> NDArray[np.void]:
    """Columns of one length as one structured array; a list has texts."""
    arrays = {
        name: np.array(values, dtype=np.str_) if isinstance(values, list) else values for name, values in columns.items()
    }
    dtype = [(name, array.dtype) for name, array in arrays.items()]
    result = np.empty(len(next(iter(arrays.values()))), dtype=dtype)
    for name, array in arrays.items():
        result[name] = array
    return result


class Document:
    """A field definition, configured or not; `read` and `configure` make it.

    Attributes
    ----------
    name : str
        The name of its file.
    xml : bytes
        The whole text.
    pa : float
        Position angle of the observation, degrees.
    fields : structured array
        One row for each field: centre `ra` and `dec` (degrees), number of `targets`.
    targets : structured array
        One row for each target, in document order: number of its `field` and `group` (from 1; group 0 is none), `name`,
        `survey`, `use`, `priority`, `configid`, `fibre` (negative for one that cannot be used, 0 for none), `automatic`
        (made by a run), `ra` and `dec` (ICRS, degrees), `epoch` (Julian years), `pm_ra` and `pm_dec` (mas/yr),
        `parallax` (arcsec), `rv` (km/s), `x` and `y` (on the plate, mm; NaN where the document has none), `spaxel`.

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
    pa: float
    fields: NDArray[np.void]
    targets: NDArray[np.void]

    def __init__(self, xml: bytes, name: PathLike, config: PathLike | None = None) -> None:
        parts = _veko.document(xml, os.fsencode(name), config_name(config))
        self.name = os.fsdecode(name)
        self.xml = xml
        self.pa = parts["pa"]
        self.fields = structured(parts["fields"])
        parts["targets"]["automatic"] = np.array(parts["targets"]["automatic"], dtype=np.bool_)
        self.targets = structured(parts["targets"])

    def __repr__(self) -> str:
        return f"<veko.Document {self.name}: fields {len(self.fields)}, targets {len(self.targets)}>"

    def _repr_html_(self) -> str:
        """The page of `report`, for a notebook."""
        from ._report import report

        try:
            return report(self)._repr_html_()
        except _veko.Error as error:
            return f"<pre>{html.escape(str(error))}</pre>"

    def write(self, path: PathLike) -> None:
        """Writes the text to a file, whole or not at all. Raises `veko.Error` where that is not possible."""
        _veko.write_bytes(os.fsencode(path), self.xml)

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
        For a document that the run could not read either, with its message.

    Examples
    --------
    >>> import veko
    >>> document = veko.read("examples/sombrero_south.xml")
    >>> document.targets["name"]
    array(['M 104', 'invented guide star 1'], dtype='<U21')
    """
    return Document(_veko.read_bytes(os.fsencode(path)), path, config)


def configure(
    input: PathLike,
    output: PathLike | None = None,
    *,
    epoch: Numbers | None = None,
    hour_angle: Numbers | None = None,
    pressure: Numbers | None = None,
    horizon_limit: Numbers = 25.0,
    config: PathLike | None = None,
) -> Document:
    """Configures a field definition: the run of `veko_configure`, to the byte.

    Parameters
    ----------
    input : path
        The field definition.
    output : path, optional
        The document to write, which may be the input. Without it nothing is written.
    epoch : float or astropy.time.Time, optional
        Julian epoch of the observation, years; takes the place of the document's, as the next two do.
    hour_angle : float, optional
        Hour angle of the first field's centre, hours.
    pressure : float, optional
        Millibar.
    horizon_limit : float, default 25
        Altitude above which the first field must be, degrees.
    config : path, optional
        A configuration file; without it the built-in instrument counts.

    Returns
    -------
    Document
        The configured document.

    Raises
    ------
    TypeError, ValueError
        For an argument that cannot be meant.
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
    xml = _veko.configure(os.fsencode(input), None if output is None else os.fsencode(output), config_name(config), values)
    return Document(xml, input if output is None else output, config)


@dataclass(frozen=True)
class Problem:
    """What is wrong with a document, and where: `check` finds it.

    Attributes
    ----------
    file : str
        Name of the document.
    code : str
        Of the rule, such as "VK106"; `veko check --explain VK106` tells more.
    severity : str
        "error": the run fails. "warning": it probably does not what is meant. "note": it passes.
    line, column, end_line, end_column : int
        Where it is, from 1; the end is the last character.
    message : str
        What is wrong, one sentence without its full stop.
    help : str
        What to do.
    fix : str or None
        What to write in the place instead, if that is certain.
    """

    file: str
    code: str
    severity: str
    line: int
    column: int
    end_line: int
    end_column: int
    message: str
    help: str
    fix: str | None

    def __str__(self) -> str:
        return f"{self.file}:{self.line}:{self.column}: {self.severity}: {self.message} [{self.code}]"


def source(document: Document | PathLike) -> tuple[bytes, bytes]:
    """The text and the name of a document."""
    if isinstance(document, Document):
        return document.xml, os.fsencode(document.name)
    return _veko.read_bytes(os.fsencode(document)), os.fsencode(document)


def field_radius_of(field_radius: Numbers) -> float:
    """How far apart centre and targets of a field may be, degrees."""
    radius = number("field_radius", field_radius, "deg", 0, 90)
    if radius == 0:
        raise ValueError("field_radius must be above 0")
    return radius


def check(
    document: Document | PathLike,
    *,
    epoch: Numbers | None = None,
    hour_angle: Numbers | None = None,
    pressure: Numbers | None = None,
    horizon_limit: Numbers = 25.0,
    field_radius: Numbers = 1.0,
    config: PathLike | None = None,
) -> list[Problem]:
    """Finds every problem of a field definition, as `veko check` does.

    Parameters
    ----------
    document : path or Document
        The field definition; it need not be well-formed.
    epoch, hour_angle, pressure, horizon_limit, config
        As `configure` takes them. The files of a configuration are checked, too.
    field_radius : float, default 1
        How far apart centre and targets of a field may be, degrees, above 0 and up to 90.

    Returns
    -------
    list of Problem
        In document order. With an error among them the run fails; without one it passes.

    Raises
    ------
    TypeError, ValueError
        For an argument that cannot be meant.
    veko.Error
        For a document or a configuration that cannot be opened.

    Examples
    --------
    >>> import veko
    >>> veko.check("examples/sombrero_south.xml")
    []
    """
    xml, name = source(document)
    radius = field_radius_of(field_radius)
    values = estimates(epoch, hour_angle, pressure, horizon_limit)
    found = json.loads(_veko.check(xml, name, config_name(config), values, radius))
    return [_problem(file["file"], problem) for file in found["documents"] for problem in file["problems"]]


def _problem(file: str, found: dict[str, Any]) -> Problem:
    """A problem of the JSON of `veko check`."""
    return Problem(
        file=file,
        code=found["code"],
        severity=found["severity"],
        line=found["line"],
        column=found["column"],
        end_line=found["endLine"],
        end_column=found["endColumn"],
        message=found["message"],
        help=found["help"],
        fix=found["fix"] and found["fix"]["text"],
    )
