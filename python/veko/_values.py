"""Values whose arrays cannot be written to."""

from __future__ import annotations

from typing import Any

import numpy as np


class Values:
    """A value with arrays, which neither it nor a copy of it lets be written to."""

    def __setstate__(self, state: dict[str, Any]) -> None:
        for value in state.values():
            if isinstance(value, np.ndarray):
                value.flags.writeable = False
        vars(self).update(state)
