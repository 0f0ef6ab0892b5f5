"""Fields for a 603-fibre integral-field unit, with the numbers of `veko_configure`.

`Pointing` leads from the sky to the plate and back, `Bundle` has the fibres. `read` reads a field definition, `check`
finds what is wrong with one, `configure` runs on it.

Angles on the sky are degrees, places on the plate millimetres, hour angles hours. Arrays of any shape are taken, and
give arrays; quantities, times and coordinates of astropy are taken too, where astropy is installed. What fails is an
`Error`.
"""

from ._bundle import Bundle
from ._document import Document, Problem, check, configure, read
from ._pointing import Pointing
from ._veko import Error
from ._veko import version as __version__

__all__ = ["Bundle", "Document", "Error", "Pointing", "Problem", "__version__", "check", "configure", "read"]
