"""What is wrong with documents."""

from __future__ import annotations

import json
from collections.abc import Iterable
from dataclasses import dataclass
from typing import Any

from . import _veko
from ._arguments import Numbers, PathLike, config_name
from ._document import Document, configuration, source
from ._options import FIELD_RADIUS, HORIZON_LIMIT, estimates, field_radius_degrees


@dataclass(frozen=True)
class Problem:
    """What is wrong with a document, and where: `check` finds it.

    Attributes
    ----------
    file : str
        Name of the document, or of the file of its configuration that the problem is in.
    code : str
        The code of the rule, such as "VK106"; `veko check --explain VK106` tells more.
    severity : str
        "error": the run fails. "warning": it passes, but probably does not do what is meant. "note": it passes.
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


def check(
    documents: Document | PathLike | Iterable[Document | PathLike],
    *,
    epoch: Numbers | None = None,
    hour_angle: Numbers | None = None,
    pressure: Numbers | None = None,
    horizon_limit: Numbers = HORIZON_LIMIT,
    field_radius: Numbers = FIELD_RADIUS,
    config: PathLike | None = None,
) -> list[Problem]:
    """Finds every problem of field definitions, as `veko check` does.

    Parameters
    ----------
    documents : path or Document, or several
        The field definitions; they need not be well-formed.
    epoch, hour_angle, pressure, horizon_limit, config
        As `configure` takes them. The files of a configuration are checked, too, once for all documents.
    field_radius : float, default 1
        How far apart centre and targets of a field may be, degrees, above 0 and up to 90.

    Returns
    -------
    list of Problem
        Those of the configuration, then those of each document, in the order of their places. With an error among them a
        run fails; without one it passes.

    Raises
    ------
    TypeError, ValueError
        For an invalid argument.
    veko.Error
        For a document or a configuration that cannot be opened.

    Examples
    --------
    >>> import veko
    >>> veko.check("examples/sombrero_south.xml")
    []
    """
    radius = field_radius_degrees(field_radius)
    values = estimates(epoch, hour_angle, pressure, horizon_limit)
    if not isinstance(documents, Iterable) or isinstance(documents, (str, bytes)):
        documents = [documents]
    several = list(documents)
    configs = {configuration(document, config) for document in several} or {config_name(config)}
    if len(configs) > 1:
        raise ValueError("config is missing: the documents do not share one")
    found = json.loads(
        _veko.check([source("documents", document) for document in several], configs.pop(), values, radius)
    )
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
