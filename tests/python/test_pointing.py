"""Pointings of the plate: against another program, veko_configure, and each other."""

import contextlib
import copy
import multiprocessing
import pathlib
import pickle
import shutil
import subprocess
import sys
import threading
import xml.etree.ElementTree as ElementTree
from collections.abc import Callable
from typing import Any

import hypothesis.extra.numpy as hnp
import numpy as np
import pytest
import veko
from conftest import CHAIN_TOLERANCE_MM, EXAMPLES, LIBRARY_PLACES, M64, PROGRAM, SOMBRERO, golden, m64, run
from hypothesis import given
from hypothesis import strategies as st
from numpy.typing import NDArray

Floats = NDArray[np.float64]

WAY_BACK_TOLERANCE_DEG = 1e-7 / 3.6  # 0.1 mas, in docs/accuracy.md from 30 degrees of altitude on
WAY_BACK_TOLERANCE_MM = 1e-5  # the same on the plate


def degrees(row: dict[str, str], *names: str) -> list[float]:
    return [float(np.degrees(float(row[name]))) for name in names]


def golden_pointing(row: dict[str, str]) -> veko.Pointing:
    ra, dec = degrees(row, "centre_ra", "centre_dec")
    return veko.Pointing(
        ra,
        dec,
        float(row["pa_deg"]),
        mjd_tai=float(row["mjd_tai"]),
        temperature=float(row["temperature_k"]),
        pressure=float(row["pressure_mbar"]),
        relative_humidity=float(row["humidity"]),
    )


SHIPPED = {row["pointing"]: row for row in golden("pointings.csv") if row["site"] == "shipped"}


def test_places_fall_where_astropys_frames_lead() -> None:
    compared = 0
    for row in golden("places.csv"):
        # Without a parallax, rounding decides a part of the motion: see docs/accuracy.md.
        is_still = float(row["pm_ra"]) == float(row["pm_dec"]) == 0
        if row["pointing"] in SHIPPED and (is_still or float(row["parallax"]) > 0):
            motion = {name: float(row[name]) for name in ("epoch", "pm_ra", "pm_dec", "parallax", "rv")}
            place = golden_pointing(SHIPPED[row["pointing"]]).sky_to_plate(*degrees(row, "ra", "dec"), **motion)
            expected = [float(row["x_resting"]), float(row["y_resting"])]
            np.testing.assert_allclose(place, expected, rtol=0, atol=CHAIN_TOLERANCE_MM)
            compared += 1
    assert compared >= 100


def test_places_on_the_plate_see_what_astropys_frames_see() -> None:
    compared = 0
    for row in golden("way_back.csv"):
        pointing = SHIPPED.get(row["pointing"])
        if pointing is not None and degrees(pointing, "zd_resting")[0] < 60:
            ra, dec = golden_pointing(pointing).plate_to_sky(float(row["x"]), float(row["y"]))
            expected_ra, expected_dec = degrees(row, "ra_resting", "dec_resting")
            along_ra = (ra - expected_ra + 180) % 360 - 180
            assert np.hypot(along_ra * np.cos(np.radians(dec)), dec - expected_dec) < WAY_BACK_TOLERANCE_DEG
            compared += 1
    assert compared >= 50


def test_the_field_centre_stands_where_the_worked_example_has_it() -> None:
    expected = {row["quantity"]: float(row["value"]) for row in golden("worked_example.csv")}  # with 7 to 10 decimals
    pointing = m64()
    assert pointing.hour_angle == pytest.approx(expected["centre_ha"], abs=1e-9)
    assert pointing.altitude == pytest.approx(90 - expected["centre_zd"], abs=1e-8)
    assert pointing.parallactic_angle == pytest.approx(expected["centre_parallactic"], abs=1e-7)
    assert pointing.rotator_angle == pytest.approx(30 - expected["centre_parallactic"], abs=1e-7)
    zenith_distance = np.radians(expected["centre_zd"])
    altitude = 90 - expected["centre_zd"]
    pickering = 1 / np.sin(np.radians(altitude + 244 / (165 + 47 * altitude**1.1)))
    assert pointing.airmass == pytest.approx(pickering, abs=1e-9)
    dec, hour_angle = np.radians(expected["centre_observed_dec"]), expected["centre_ha"] * np.pi / 12
    azimuth = np.arcsin(-np.sin(hour_angle) * np.cos(dec) / np.sin(zenith_distance))  # from south through east
    assert pointing.azimuth == pytest.approx(180 - np.degrees(azimuth), abs=1e-6)
    np.testing.assert_allclose(pointing.field_centre, (194.182151, 21.781378), rtol=1e-15)
    assert pointing.pa == pytest.approx(30)
    assert (pointing.mjd_tai, pointing.pressure) == (60783.98, 770)
    assert (pointing.temperature, pointing.relative_humidity) == (283, 0.2)


def configured(example: pathlib.Path, folder: pathlib.Path) -> ElementTree.Element:
    output = folder / example.name
    assert run(PROGRAM, "-i", example, "-o", output).returncode == 0
    return ElementTree.parse(output).getroot()


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda example: str(example.stem))
def test_a_pointing_has_the_numbers_of_veko_configure(example: pathlib.Path, tmp_path: pathlib.Path) -> None:
    before, after = ElementTree.parse(example).getroot(), configured(example, tmp_path)
    given_conditions = next(before.iter("conditions")).attrib
    conditions: dict[str, Any] = {name: float(text) for name, text in given_conditions.items() if text != "%%%"}
    conditions["hour_angle"] = conditions.pop("ha", 0.0)
    first = next(before.iter("field"))
    pa = float(next(before.iter("observation")).attrib["pa"])
    pointing = veko.Pointing(float(first.attrib["RA_d"]), float(first.attrib["Dec_d"]), pa, **conditions)
    pointing.check()

    written = next(after.iter("conditions"))
    assert f"{pointing.hour_angle:.4f}" == written.attrib["ha"]
    limits = next(after.iter("hour_angle_limits")).attrib
    # A document has the smaller as the latest.
    assert [f"{limit:.4f}" for limit in pointing.hour_angle_limits()] == [limits["latest"], limits["earliest"]]
    bundle = veko.Bundle()
    for field in after.iter("field"):
        science, guide = (next(t for t in field.findall("target") if t.attrib["targuse"] == use) for use in "TG")
        pointing.place(*catalogue_place(science)[0], abs(int(science.attrib["fibreid"])), **catalogue_place(science)[1])
        place, motion = catalogue_place(guide)
        assert pointing.sky_to_plate(*place, **motion) == (float(guide.attrib["targx"]), float(guide.attrib["targy"]))
        assert [f"{value:.6f}" for value in pointing.field_centre] == [field.attrib["RA_d"], field.attrib["Dec_d"]]

        seen = {int(t.attrib["fibreid"]): t for t in field.iter("target") if t.get("automatic") == "1"}
        ra, dec = pointing.plate_to_sky(bundle.x, bundle.y)
        here = {int(fibre): (f"{r:.6f}", f"{d:.6f}") for fibre, r, d in zip(bundle.ids, ra, dec)}
        assert len(seen) >= 600
        for fibre, target in seen.items():
            assert here[abs(fibre)] == (target.attrib["targra"], target.attrib["targdec"])


@pytest.mark.parametrize("is_other", [False, True], ids=["built-in", "other"])
def test_thousands_of_places_have_the_bits_of_the_library(is_other: bool, other_config: pathlib.Path) -> None:
    numbers = np.random.default_rng(20270402)
    config = other_config if is_other else None
    centre, pa, conditions = (190.25, -11.5), 37.5, (61497.0625, 281.5, 770.0, 0.25)
    air = dict(zip(("mjd_tai", "temperature", "pressure", "relative_humidity"), conditions))
    pointing = veko.Pointing(*centre, pa, **air, config=config)
    size = 5000
    place = np.array(centre)[:, np.newaxis] + numbers.uniform(-1, 1, (2, size))
    motion = {
        "epoch": numbers.uniform(1950, 2026, size),
        "pm_ra": numbers.uniform(-500, 500, size),
        "pm_dec": numbers.uniform(-500, 500, size),
        "parallax": numbers.uniform(0.001, 0.5, size),
        "rv": numbers.uniform(-200, 200, size),
    }
    x, y = numbers.uniform(-200, 200, (2, size))
    found = *pointing.sky_to_plate(*place, **motion), *pointing.plate_to_sky(x, y)

    def radians(degrees: Any) -> Floats:
        return np.asarray(degrees) / 180 * np.pi

    start = np.array([*radians(centre), radians(pa), *conditions])
    rows = np.column_stack([*radians(place), *motion.values(), x, y])
    result = subprocess.run(
        [LIBRARY_PLACES, config or ":/configure.xml"], input=start.tobytes() + rows.tobytes(), capture_output=True
    )
    expected = np.frombuffer(result.stdout).reshape(size, 4).T
    np.testing.assert_array_equal(found, [*expected[:2], *(expected[2:] * 180 / np.pi)])


def catalogue_place(target: ElementTree.Element) -> tuple[tuple[float, float], dict[str, float]]:
    names = {"epoch": "targepoch", "pm_ra": "targpmra", "pm_dec": "targpmdec", "parallax": "targparal", "rv": "targrv"}
    motion = {name: float(target.attrib.get(attribute) or 0) for name, attribute in names.items()}
    return (float(target.attrib["targra"]), float(target.attrib["targdec"])), motion


def numbers_of(pointing: veko.Pointing) -> bytes:
    """The bits of all that a pointing gives."""
    grid = np.linspace(-200, 200, 15)
    ra, dec = pointing.plate_to_sky(grid, grid[:, np.newaxis])
    x, y = pointing.sky_to_plate(ra, dec)
    angles = [pointing.altitude, pointing.azimuth, pointing.hour_angle, pointing.rotator_angle, pointing.pa]
    return b"".join(part.tobytes() for part in (ra, dec, x, y, np.array(angles)))


def test_eight_threads_give_the_bits_of_one_while_others_use_the_rest(other_config: pathlib.Path) -> None:
    pointings = [m64(pa=pa, config=config) for pa in (0, 30, 60, 90) for config in (None, other_config)]
    alone = [numbers_of(pointing) for pointing in pointings]
    together: list[list[bytes]] = [[] for _ in pointings]

    def use(i: int) -> None:
        for turn in range(10):
            together[i].append(numbers_of(pointings[(i + turn) % len(pointings)]))

    def rest_of(config: pathlib.Path | None) -> list[object]:
        document = veko.configure(SOMBRERO, config=config)
        windows = veko.windows(document, "2027-04-01")
        return [document.xml, veko.check(document), veko.report(document), windows]

    configs = (None, other_config)
    rest_alone = [rest_of(config) for config in configs]
    rest: dict[int, list[object]] = {}

    def use_the_rest(i: int) -> None:
        rest[i] = rest_of(configs[i])

    threads = [threading.Thread(target=use, args=(i,)) for i in range(len(pointings))]
    threads += [threading.Thread(target=use_the_rest, args=(i,)) for i in range(len(configs))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert [rest[i] for i in range(len(configs))] == rest_alone
    for i, results in enumerate(together):
        assert results == [alone[(i + turn) % len(pointings)] for turn in range(10)]


def test_pickled_and_copied_pointings_give_the_same_bits(
    other_config: pathlib.Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.chdir(other_config.parent)
    pointing = m64(pa=350, config=other_config.name)
    monkeypatch.chdir("/")
    for fibre in (12, 304):
        copies = pickle.loads(pickle.dumps(pointing)), copy.copy(pointing), copy.deepcopy(pointing)
        assert [numbers_of(copied) for copied in copies] == [numbers_of(pointing)] * 3
        pointing.place(194.25, 21.8, fibre)
        assert numbers_of(pointing) not in [numbers_of(copied) for copied in copies]


def test_a_copy_needs_no_file(other_config: pathlib.Path) -> None:
    pointing = m64(config=other_config)
    shutil.rmtree(other_config.parent)
    assert numbers_of(copy.copy(pointing)) == numbers_of(pointing)
    with pytest.raises(veko.Error, match=f"^Unable to open config file: {other_config}$"):
        pickle.loads(pickle.dumps(pointing))


def test_a_child_can_call_while_a_thread_of_its_parent_is_in_a_call() -> None:
    thread = threading.Thread(target=veko.windows, args=((190, -11.6), "2000-01-01", "2003-01-01"))
    thread.start()
    with multiprocessing.get_context("fork").Pool(2) as pool:
        found = pool.map_async(len, [veko.Bundle()] * 4).get(timeout=60)
    thread.join()
    assert found == [603] * 4


@pytest.mark.parametrize("call", ["plate_to_sky(range(5000), 0)", "place(190, -11.6, 9999)"])
def test_the_interpreter_ends_while_threads_are_in_a_call(call: str) -> None:
    program = f"""
import contextlib, threading, veko
begun = threading.Event()
def use():
    pointing = veko.Pointing(190, -11.6, epoch=2027.25)
    while True:
        with contextlib.suppress(veko.Error):
            pointing.{call}
        begun.set()
for _ in range(4):
    threading.Thread(target=use, daemon=True).start()
begun.wait()
"""
    assert run(sys.executable, "-c", program).returncode == 0


def test_a_pointing_below_the_horizon_has_no_airmass_and_no_limits() -> None:
    pointing = veko.Pointing(190, -11.6, epoch=2027.25, hour_angle=11)
    assert pointing.altitude < 0
    assert np.isnan(pointing.airmass)
    assert pointing.hour_angle_limits() == (0, 0)


def test_every_date_of_the_range_is_taken_in_both_forms() -> None:
    for year in (1960, 2200):
        pointing = veko.Pointing(190, -11.6, epoch=year)
        assert veko.Pointing(190, -11.6, mjd_tai=pointing.mjd_tai).mjd_tai == pointing.mjd_tai


def test_a_scalar_gives_a_scalar_and_an_array_its_shape() -> None:
    pointing = m64()
    for value in pointing.sky_to_plate(194.2, 21.8):
        assert isinstance(value, float)
    x, y = pointing.sky_to_plate(np.full((2, 1, 3), 194.2), [[21.7], [21.8]], epoch=np.zeros(1))
    assert x.shape == y.shape == (2, 2, 3)
    assert x[1, 1, 2] == pointing.sky_to_plate(194.2, 21.8)[0]
    assert pointing.plate_to_sky([], 0)[0].shape == (0,)


LAYOUTS: dict[str, Callable[[Floats], Any]] = {
    "as it is": lambda array: array,
    "every second": lambda array: np.repeat(array, 2, axis=-1)[..., ::2],
    "backwards": lambda array: array[..., ::-1][..., ::-1],
    "in columns": np.asfortranarray,
    "of the other byte order": lambda array: array.astype(">f8"),
}


@given(
    hnp.arrays(np.float64, hnp.array_shapes(max_dims=3, max_side=4), elements=st.floats(-250, 250)),
    st.sampled_from(sorted(LAYOUTS)),
)
def test_shape_layout_and_type_of_an_array_make_no_difference(x: Floats, layout: str) -> None:
    given_x = LAYOUTS[layout](x)
    given_x.flags.writeable = False
    before = given_x.copy()
    ra, dec = M64.plate_to_sky(given_x, 5)
    np.testing.assert_array_equal(given_x, before)
    for index in np.ndindex(x.shape):
        assert (ra[index], dec[index]) == M64.plate_to_sky(float(x[index]), 5)


@pytest.mark.parametrize("dtype", [np.int8, np.uint16, np.int64, np.float16, np.float32, np.longdouble])
def test_numbers_of_all_types_are_taken(dtype: type) -> None:
    expected = m64().plate_to_sky([1.0, 100.0], -20.0)
    np.testing.assert_array_equal(m64().plate_to_sky(np.array([1, 100], dtype=dtype), -20), expected)


@given(hnp.arrays(np.float64, 7, elements=st.floats()), hnp.arrays(np.float64, 7, elements=st.floats()))
def test_what_is_no_place_gives_nan_there_and_nowhere_else(x: Floats, y: Floats) -> None:
    for index in range(len(x)):
        if not abs(x[index]) < 200 or not abs(y[index]) < 200:
            x[index] = np.nan if index % 2 else np.inf
    ra, dec = M64.plate_to_sky(x, y)
    good = np.isfinite(x) & np.isfinite(y)
    np.testing.assert_array_equal(np.isfinite(ra), good)
    np.testing.assert_array_equal(np.isfinite(dec), good)
    np.testing.assert_allclose(
        M64.sky_to_plate(ra, dec), np.where(good, (x, y), np.nan), rtol=0, atol=WAY_BACK_TOLERANCE_MM
    )


def test_a_place_behind_the_telescope_is_nan_as_are_masked_elements() -> None:
    x, y = M64.sky_to_plate([14.0, 194.2], [-21.0, 21.8])
    np.testing.assert_array_equal(np.isnan([x, y]), [[True, False]] * 2)
    masked: Any = np.ma
    x, y = M64.sky_to_plate(masked.masked_equal([194.0, 194.2], 194.0), 21.8)
    np.testing.assert_array_equal(np.isnan(x), [True, False])


class Series:
    """An array as data frames have it, with a method where masked arrays have their mask."""

    def __init__(self, values: list[float]) -> None:
        self.values = values

    def __array__(self) -> Floats:
        return np.array(self.values)

    def mask(self) -> None:
        """Nothing that counts."""


def test_columns_of_data_frames_are_taken() -> None:
    np.testing.assert_array_equal(M64.sky_to_plate(Series([194.2]), 21.8), M64.sky_to_plate([194.2], 21.8))


def test_failures_are_those_of_the_run_and_leave_the_pointing_alone(capfd: pytest.CaptureFixture[str]) -> None:
    pointing = m64()
    before = numbers_of(pointing)
    with pytest.raises(veko.Error, match="^fibre assigned to science target does not exist$"):
        pointing.place(194.2, 21.8, 9999)
    with pytest.raises(veko.Error, match="^Field centre not converging$"):
        m64(hour_angle=6.3).place(194.2, 21.8, 304)
    with pytest.raises(veko.Error, match="^field position angle is outside the rotator limits$"):
        m64(pa=180, hour_angle=0).check()
    assert numbers_of(pointing) == before
    assert capfd.readouterr() == ("", "")


def resident_pages() -> int:
    return int(pathlib.Path("/proc/self/statm").read_text().split()[1])


def test_many_calls_leave_no_memory_behind() -> None:
    def call(times: int) -> None:
        for _ in range(times):
            M64.plate_to_sky(1.0, 2.0)
            with contextlib.suppress(ValueError):
                M64.sky_to_plate(1.0, 91.0)

    call(1_000)
    before = resident_pages()
    call(50_000)
    assert resident_pages() - before < 256  # 1 MiB, of which a leak of 24 bytes a call, the least there is, takes more
