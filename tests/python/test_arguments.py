"""Arguments that are refused, and what is said."""

import re
from typing import Any

import pytest
import veko
from conftest import M64, SOMBRERO, m64

ANY: Any = veko
NIGHT = "2027-04-02"
NO_PLACE = "what must be the name of a file, a Document, a pair of right ascension and declination, or a SkyCoord, not "
BAD_CALLS = [
    (lambda: m64(mjd_tai=None), TypeError, "one of epoch and mjd_tai must be given, and not both"),
    (lambda: m64(epoch=2025), TypeError, "one of epoch and mjd_tai must be given, and not both"),
    (lambda: m64(mjd_tai=2461497.5), ValueError, "mjd_tai must be from 36934.5 to 124594.5, not 2461497.5"),
    (lambda: veko.Pointing(0, 0, epoch=61497), ValueError, "epoch must be from 1960 to 2200, not 61497"),
    (lambda: m64(dec=90.5), ValueError, "dec must be from -90 to 90, not 90.5"),
    (lambda: m64(ra=float("nan")), ValueError, "ra must be a finite number, not nan"),
    (lambda: m64(ra=[1, 2]), TypeError, "ra must be one number, not an array"),
    (lambda: m64(ra=[[1], [1, 2]]), TypeError, "ra must be numbers: "),
    (lambda: m64(pa="north"), TypeError, "pa must be numbers, not str"),
    (lambda: m64(relative_humidity=20), ValueError, "relative_humidity must be from 0 to 1, not 20"),
    (lambda: m64(pressure=77000), ValueError, "pressure must be from 0 to 10000, not 77000"),
    (lambda: m64(temperature=10), ValueError, "temperature must be from 123.15 to 473.15, not 10"),
    (lambda: m64(hour_angle=15), ValueError, "hour_angle must be from -12 to 12, not 15"),
    (lambda: m64(config=3), TypeError, "config must be the name of a file, not int"),
    (lambda: veko.Bundle("a\0b"), ValueError, "config holds a NUL, which no name of a file can"),
    (lambda: M64.sky_to_plate(1), TypeError, "dec is missing: give ra and dec, or a SkyCoord alone"),
    (lambda: M64.sky_to_plate(1, [0, -91]), ValueError, "dec must be from -90 to 90, not -91"),
    (
        lambda: M64.sky_to_plate(1, 2, epoch=2016, parallax=50),
        ValueError,
        "parallax must be from -0.77 to 0.77, not 50",
    ),
    (lambda: M64.sky_to_plate(1, 2, epoch=57388), ValueError, "epoch must be at most 2200, not 57388"),
    (lambda: M64.sky_to_plate(1, "x"), TypeError, "dec must be numbers, not str"),
    (
        lambda: M64.sky_to_plate(1, 2, rv=3),
        ValueError,
        "epoch is missing: without it, or a SkyCoord's obstime, the motion of a place does not count",
    ),
    (
        lambda: M64.plate_to_sky([1, 2], [1, 2, 3]),
        ValueError,
        "the shapes of these arguments do not fit together: x (2,), y (3,)",
    ),
    (lambda: M64.plate_to_sky(1j, 0), TypeError, "x must be numbers, not complex"),
    (lambda: M64.place(194, 21, 1.5), TypeError, "fibre must be an integer, not float"),
    (lambda: M64.place(194, 21, True), TypeError, "fibre must be an integer, not bool"),
    (lambda: M64.place(194, 21, -3), ValueError, "fibre must be the number of a fibre, not -3"),
    (lambda: M64.check(95), ValueError, "horizon_limit must be from -90 to 90, not 95"),
    (lambda: veko.configure(SOMBRERO, epoch=0), ValueError, "epoch must be from 1960 to 2200, not 0"),
    (
        lambda: veko.configure(SOMBRERO, pressure=0),
        ValueError,
        "pressure must be above 0: with 0 a run takes that of its document",
    ),
    (lambda: veko.configure(SOMBRERO, hour_angle=100), ValueError, "hour_angle must be from -12 to 12, not 100"),
    (lambda: ANY.read(5), TypeError, "path must be the name of a file, not int"),
    (lambda: veko.check(SOMBRERO.read_bytes()), ValueError, "documents must be the name of a file, not its text"),
    (
        lambda: m64(mjd_tai=None, epoch="2027-04-02"),
        TypeError,
        "epoch must be Julian years or a Time of astropy, not str",
    ),
    (lambda: ANY.check(None), TypeError, "documents must be the name of a file, not NoneType"),
    (lambda: veko.read("\ud800"), ValueError, "path has characters that no name of a file can have here: '\\ud800'"),
    (lambda: veko.windows("<a/>", NIGHT), ValueError, "what must be the name of a file, not its text"),
    (lambda: veko.windows((190, 0), "20270402"), ValueError, "night is not a date YYYY-MM-DD: 20270402"),
    (lambda: veko.windows((190, 0), "soon"), ValueError, "night is not a date YYYY-MM-DD: soon"),
    (
        lambda: ANY.windows((190, 0), 61000),
        TypeError,
        "night must be a date without a time, or a text YYYY-MM-DD, not int",
    ),
    (lambda: veko.windows((190, 0), NIGHT, "2027-04-01"), ValueError, "last is before night"),
    (lambda: veko.windows((190, 0), NIGHT, airmass=0.5), ValueError, "airmass must be from 1 to 40, not 0.5"),
    (lambda: veko.windows(SOMBRERO, NIGHT, pa=3), TypeError, "pa is for a place; a document has its own"),
    (lambda: veko.windows((190, 0, 3), NIGHT), TypeError, NO_PLACE + "tuple"),
    (lambda: veko.windows(190, NIGHT), TypeError, NO_PLACE + "int"),
    (lambda: veko.windows((190, "x"), NIGHT), TypeError, "dec must be numbers, not str"),
    (
        lambda: veko.windows((190, 0), NIGHT, twilight="dusk"),
        ValueError,
        "twilight must be one of astronomical, civil, nautical, none or an altitude, not dusk",
    ),
    (
        lambda: veko.windows((190, 0), "1850-01-01"),
        ValueError,
        "The night of 1850-01-01 is not between 1900 and 2100, the years in which Sun and Moon are known",
    ),
    (lambda: veko.report(SOMBRERO, field_radius=0), ValueError, "field_radius must be above 0"),
    (
        lambda: veko.compare(SOMBRERO, SOMBRERO, ignore="ha"),
        TypeError,
        "ignore must be names of attributes and elements",
    ),
    (
        lambda: ANY.compare(SOMBRERO, SOMBRERO, ignore=None),
        TypeError,
        "ignore must be names of attributes and elements",
    ),
    (lambda: ANY.compare(5, SOMBRERO), TypeError, "first must be the name of a file, not int"),
]


@pytest.mark.parametrize(("call", "kind", "message"), BAD_CALLS, ids=[message for _, _, message in BAD_CALLS])
def test_a_bad_argument_is_named(call: Any, kind: type[Exception], message: str) -> None:
    whole = "" if message.endswith(" ") else "$"
    with pytest.raises(kind, match=f"^{re.escape(message)}{whole}"):
        call()
