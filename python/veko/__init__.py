"""Fields for a 603-fibre integral-field unit, with the numbers of `veko_configure`.

`Pointing` leads from the sky to the plate and back, `Bundle` has the fibres. `read` reads a field definition, `check`
finds what is wrong with one, `configure` runs on it, `report` makes a page of it, and `compare` tells what differs between
two. `windows` tells when a field or a place can be observed.

Angles on the sky are degrees, places on the plate millimetres, hour angles hours. Arrays of any shape are taken, and
give arrays; quantities, times and coordinates of astropy are taken too, where astropy is installed. What fails is an
`Error`.
"""

from ._bundle import Bundle
from ._check import Problem, check
from ._comparison import Comparison, compare
from ._document import Document, configure, read
from ._pointing import Pointing
from ._report import Page, report
from ._veko import Error
from ._veko import version as __version__
from ._windows import Moment, NightWindows, Window, windows

__all__ = [
    "Bundle",
    "Comparison",
    "Document",
    "Error",
    "Moment",
    "NightWindows",
    "Page",
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
