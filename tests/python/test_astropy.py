"""Quantities, times, coordinates and columns of astropy."""

import re
from typing import Any

import astropy.units as u  # type: ignore[import]
import numpy as np
import pytest
import veko
from astropy.coordinates import ICRS, SkyCoord  # type: ignore[import]
from astropy.table import Column, MaskedColumn  # type: ignore[import]
from astropy.time import Time  # type: ignore[import]
from conftest import CHAIN_TOLERANCE_MM, M64, PLACEMENT_TOLERANCE_MM, SECOND


def test_quantities_are_converted() -> None:
    pointing = veko.Pointing(
        ra=194.182151 * u.deg,
        dec=21.781378 * 60 * u.arcmin,
        pa=np.radians(30) * u.rad,
        mjd_tai=Time("2025-04-18T23:30:35.000", scale="utc"),
        hour_angle=1 * u.h,
        temperature=9.85 * u.deg_C,
        pressure=66000 * u.Pa,
        relative_humidity=20 * u.percent,
    )
    same = veko.Pointing(194.182151, 21.781378, 30, mjd_tai=60783.98, hour_angle=1)
    assert pointing.hour_angle == pytest.approx(1, abs=SECOND)
    assert pointing.temperature == pytest.approx(283)
    assert veko.Pointing(0, 0, epoch=2027, hour_angle=15 * u.deg).hour_angle == pytest.approx(1, abs=SECOND)
    # Refraction in the second by which the dates may differ.
    np.testing.assert_allclose(pointing.sky_to_plate(194.2, 21.8), same.sky_to_plate(194.2, 21.8), atol=1e-3)
    x, y = pointing.plate_to_sky(12 * u.cm, [1, 2] * u.mm)
    np.testing.assert_array_equal([x, y], pointing.plate_to_sky(120, [1, 2]))


def test_columns_of_a_table_have_their_units_and_masks() -> None:
    ra, dec = Column([194.2 / 15, 194.3 / 15], unit="hourangle"), Column([21.8 * 60, 21.7 * 60], unit="arcmin")
    expected = M64.sky_to_plate([194.2, 194.3], [21.8, 21.7])
    np.testing.assert_allclose(M64.sky_to_plate(ra, dec), expected, rtol=0, atol=CHAIN_TOLERANCE_MM)
    masked = MaskedColumn([12.0, 13.0], mask=[False, True], unit="cm")
    np.testing.assert_array_equal(M64.plate_to_sky(masked, 5)[0], [M64.plate_to_sky(120, 5)[0], np.nan])
    np.testing.assert_array_equal(M64.plate_to_sky(Column([12.0]), 5), M64.plate_to_sky([12.0], 5))


def test_times_are_taken_on_every_scale() -> None:
    date = Time(60783.98, format="mjd", scale="tai")
    for scale in ("tai", "utc", "tt"):
        assert veko.Pointing(0, 0, mjd_tai=getattr(date, scale)).mjd_tai == pytest.approx(60783.98, abs=1e-10)
        assert veko.Pointing(0, 0, epoch=getattr(date, scale)).mjd_tai == pytest.approx(60783.98, abs=1e-9)


def test_coordinates_are_taken_in_every_frame_with_their_motion() -> None:
    ra, dec = np.array([[194.2, 194.3]]), np.array([[21.8], [21.7]])
    place = SkyCoord(*np.broadcast_arrays(ra, dec), unit="deg")
    np.testing.assert_allclose(
        M64.sky_to_plate(place.galactic), M64.sky_to_plate(ra, dec), rtol=0, atol=CHAIN_TOLERANCE_MM
    )
    motion = {"pm_ra_cosdec": 120 * u.mas / u.yr, "pm_dec": -80 * u.mas / u.yr}
    star = SkyCoord(194.25 * u.deg, 21.8 * u.deg, obstime=Time(2016, format="jyear"), **motion)
    expected = M64.sky_to_plate(194.25, 21.8, epoch=star.obstime.tt.jyear, pm_ra=120, pm_dec=-80)
    # Without a parallax, rounding decides on 0.0001 of the motion: see docs/accuracy.md.
    np.testing.assert_allclose(M64.sky_to_plate(star), expected, rtol=0, atol=1e-5)
    assert M64.sky_to_plate(star, pm_dec=0)[1] > expected[1]
    moved = veko.Pointing(194, 21.8, mjd_tai=60783.98)
    moved.place(star, fibre=304)
    np.testing.assert_allclose(moved.sky_to_plate(star), [0, -20], rtol=0, atol=PLACEMENT_TOLERANCE_MM)
    galaxy = SkyCoord(190 * u.deg, -11.6 * u.deg)
    assert veko.windows(galaxy, "2027-04-01") == veko.windows((190, -11.6), "2027-04-01")
    assert (
        veko.Pointing(galaxy, pa=20, epoch=2027).field_centre == veko.Pointing(190, -11.6, 20, epoch=2027).field_centre
    )


def test_a_coordinate_brings_distance_and_radial_velocity_with_its_proper_motion() -> None:
    motion = {"pm_ra_cosdec": 120 * u.mas / u.yr, "pm_dec": -80 * u.mas / u.yr, "radial_velocity": 20 * u.km / u.s}
    star = SkyCoord(194.25 * u.deg, 21.8 * u.deg, 20 * u.pc, obstime=Time(2016, format="jyear"), **motion)
    expected = M64.sky_to_plate(194.25, 21.8, epoch=star.obstime.tai.jyear, pm_ra=120, pm_dec=-80, parallax=0.05, rv=20)
    for coordinate in (star, star.galactic):
        np.testing.assert_allclose(M64.sky_to_plate(coordinate), expected, rtol=0, atol=CHAIN_TOLERANCE_MM)


def test_a_coordinate_without_a_proper_motion_stays() -> None:
    expected = M64.sky_to_plate(194.25, 21.8)
    still = SkyCoord(194.25 * u.deg, 21.8 * u.deg, 20 * u.pc)
    receding = SkyCoord(194.25 * u.deg, 21.8 * u.deg, radial_velocity=20 * u.km / u.s)
    for coordinate in (still, receding, SkyCoord(still.cartesian), ICRS(194.25 * u.deg, 21.8 * u.deg)):
        np.testing.assert_allclose(M64.sky_to_plate(coordinate), expected, rtol=0, atol=CHAIN_TOLERANCE_MM)


BAD_CALLS = [
    (
        lambda: M64.place(SkyCoord(194, 21, unit="deg"), 304),
        "ra is a SkyCoord, beside which there is no dec; what follows needs its name",
    ),
    (
        lambda: M64.sky_to_plate(SkyCoord(194, 21, unit="deg", frame="altaz")),
        "ra cannot be converted to ICRS: it is a SkyCoord of the frame altaz",
    ),
    (lambda: M64.sky_to_plate(1 * u.mm, 2), "ra cannot be converted to deg: "),
    (lambda: M64.plate_to_sky(1 * u.mm, 2 * u.deg), "y cannot be converted to mm: "),
    (lambda: M64.sky_to_plate(Time(2000, format="jyear"), 2), "ra cannot be converted to deg: "),
    (lambda: veko.Pointing(0, 0, pa=3 * u.mm, epoch=2027), "pa cannot be converted to deg: "),
    (lambda: veko.Pointing(0, 0, temperature=3 * u.mm, epoch=2027), "temperature cannot be converted to K: "),
    (lambda: veko.Pointing(0, 0, hour_angle=3 * u.mm, epoch=2027), "hour_angle cannot be converted to hourangle: "),
    (
        lambda: veko.Pointing(0, 0, epoch=2027, relative_humidity=3 * u.mbar),
        "relative_humidity cannot be converted to a plain number: ",
    ),
]


@pytest.mark.parametrize(("call", "message"), BAD_CALLS, ids=[message for _, message in BAD_CALLS])
def test_what_does_not_fit_is_refused_by_name(call: Any, message: str) -> None:
    with pytest.raises((ValueError, TypeError), match=f"^{re.escape(message)}"):
        call()
