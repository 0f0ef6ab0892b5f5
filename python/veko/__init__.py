"""Fields for a 603-fibre integral-field unit, with the numbers of `veko_configure`.

`Pointing` leads from the sky to the plate and back, `Bundle` has the fibres. `read` reads a field definition, `check`
finds what is wrong with one, `configure` runs on it, `report` makes a page of it, and `compare` tells what differs
between two. `windows` tells when a field or a place can be observed.

Angles on the sky are degrees, places on the plate millimetres, hour angles hours. In signatures `Numbers` is a number, an
array, or a quantity, column, time or coordinate of astropy: `sky_to_plate` and `plate_to_sky` take arrays of any shape,
all else takes one number. A `PathLike` is the name of a file, a `Date` a `datetime.date` or a text YYYY-MM-DD. "A run" is
one of the program `veko_configure`, which `configure` is, to the byte.

What a run or the library refuses is an `Error`, an invalid argument a `ValueError` or a `TypeError`. Nothing is
printed.
"""

from ._arguments import Numbers, PathLike
from ._bundle import Bundle
from ._check import Problem, check
from ._comparison import Comparison, compare
from ._document import Document, configure, read
from ._options import Date
from ._pointing import Pointing
from ._report import Page, report
from ._veko import Error
from ._veko import version as __version__
from ._windows import Moment, NightWindows, Window, windows

__all__ = [
    "Bundle",
    "Comparison",
    "Date",
    "Document",
    "Error",
    "Moment",
    "NightWindows",
    "Numbers",
    "Page",
    "PathLike",
    "Pointing",
    "Problem",
    "Window",
    "__version__",
    "check",
    "compare",
    "configure",
    "read",
    "report",
    "windows",
]
