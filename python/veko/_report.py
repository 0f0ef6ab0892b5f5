"""Pages to see field definitions on."""

from __future__ import annotations

import html
from dataclasses import dataclass

from . import _veko
from ._arguments import Numbers, PathLike, file_name, number
from ._document import Document, about, configuration, source
from ._options import FIELD_RADIUS, HORIZON_LIMIT, Date, estimates, evening, field_radius_degrees, window_options


@dataclass(frozen=True)
class Page:
    """A page of HTML that needs nothing beside itself; a notebook shows it.

    Attributes
    ----------
    html : str
        All of it.
    """

    html: str

    def __repr__(self) -> str:
        return f"<veko.Page of {len(self.html)} characters>"

    def _repr_html_(self) -> str:
        page = html.escape(self.html)
        return f'<iframe srcdoc="{page}" style="width: 100%; height: 75em; border: 0"></iframe>'

    def write(self, path: PathLike) -> None:
        """Writes the page to a file, whole or not at all. Raises `veko.Error` where that is not possible."""
        _veko.write_bytes(file_name("path", path), self.html.encode())


def report(
    document: Document | PathLike,
    *,
    night: Date | None = None,
    epoch: Numbers | None = None,
    hour_angle: Numbers | None = None,
    pressure: Numbers | None = None,
    horizon_limit: Numbers = HORIZON_LIMIT,
    twilight: str | Numbers = "nautical",
    airmass: Numbers | None = None,
    moon: Numbers | None = None,
    minimum: Numbers = 0.0,
    exposure: Numbers = 60.0,
    field_radius: Numbers = FIELD_RADIUS,
    config: PathLike | None = None,
) -> Page:
    """Makes a page to see a field definition on, as `veko report` does.

    Parameters
    ----------
    document : path or Document
        The field definition, configured or not.
    night : datetime.date or str, optional
        Date of the evening at the site; without it that of the observation.
    epoch, hour_angle, pressure, horizon_limit, config
        As `configure` takes them.
    twilight, airmass, moon, minimum
        As `windows` takes them.
    exposure : float, default 60
        Length of the exposure, for refraction, minutes up to 1440.
    field_radius : float, default 1
        As `check` takes it.

    Returns
    -------
    Page

    Raises
    ------
    TypeError, ValueError
        For an invalid argument.
    veko.Error
        For a document that the run refuses, with each error and its place on a line of its own.

    Examples
    --------
    >>> import veko
    >>> veko.report("examples/sombrero_south.xml").write("/dev/null")
    """
    given = source("document", document)
    with about(given[1]):
        page = _veko.report(
            given,
            None if night is None else evening("night", night),
            configuration(document, config),
            estimates(epoch, hour_angle, pressure, horizon_limit),
            window_options(horizon_limit, twilight, airmass, moon, minimum),
            field_radius_degrees(field_radius),
            number("exposure", exposure, "min", 0, 1440),
        )
    return Page(page)
