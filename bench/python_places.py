"""Measures the Python module's processor time beside a script on astropy for the same places; prints a table.

Usage: python_places.py BUILD_FOLDER

Both lead the places of the 603 fibres, and a million places, from the sky to the plate, and must agree. Of the module
also what a call takes beside the library's own work: the time for one place, and for arguments that are arrays.
"""
import pathlib
import statistics
import subprocess
import sys
import time
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[1]
sys.path[:0] = [str(pathlib.Path(sys.argv[1]).resolve() / "python"), str(PROJECT / "tests" / "golden")]

import numpy as np
import veko
from example_targets import first_pointing, shipped_site
from observed_chain import use_ideal_earth_orientation

SYSTEM_PYTHON = "/usr/bin/python3"
EXAMPLE = PROJECT / "examples" / "sombrero_south.xml"
AGREEMENT_MM = 1e-7
MANY = 1_000_000


def milliseconds(work, repeats):
    """Processor time of one call; the middle one of some runs."""
    times = []
    for _ in range(15):
        start = time.process_time()
        for _ in range(repeats):
            work()
        times.append((time.process_time() - start) / repeats * 1e3)
    return statistics.median(times)


def start_of(statement):
    """Processor time of an interpreter for a statement, less that of one that does nothing but import numpy."""
    code = f"import numpy, time; start = time.process_time(); {statement}; print(time.process_time() - start)"
    run = [SYSTEM_PYTHON, "-c", code]
    environment = {"PYTHONPATH": sys.path[0]}
    return statistics.median(float(subprocess.run(run, env=environment, capture_output=True, check=True).stdout)
                             for _ in range(15)) * 1e3


def main():
    use_ideal_earth_orientation()
    astropys = first_pointing(ElementTree.parse(EXAMPLE).getroot(), shipped_site()[0])
    ra, dec = 189.997633, -11.623054
    ours = veko.Pointing(ra, dec, mjd_tai=astropys.mjd, temperature=281.5, pressure=770, relative_humidity=0.25)
    bundle = veko.Bundle()
    ra, dec = ours.plate_to_sky(bundle.x, bundle.y)
    theirs = astropys.plate_position(np.radians(ra), np.radians(dec))
    x, y = ours.sky_to_plate(ra, dec)
    assert np.abs(theirs - (x + 1j * y)).max() < AGREEMENT_MM
    many = np.resize(ra, MANY), np.resize(dec, MANY)
    ones = [np.array([ra[0]]), np.array([dec[0]])] + [np.zeros(1)] * 5
    arrays = [ra, dec] + [np.zeros(1)] * 5
    field = milliseconds(lambda: ours.sky_to_plate(ra, dec), 100)
    astropy_field = milliseconds(lambda: astropys.plate_position(np.radians(ra), np.radians(dec)), 3)
    bound = milliseconds(lambda: ours._plate.sky_to_plate(len(ra), arrays), 100)
    call = milliseconds(lambda: ours._plate.sky_to_plate(1, ones), 1000)
    million = milliseconds(lambda: ours.sky_to_plate(*many), 1)
    print("| Processor time, ms | veko | astropy | ratio |\n|---|---:|---:|---:|")
    print(f"| 603 places to the plate | {field:.3f} | {astropy_field:.1f} | {field / astropy_field:.4f} |")
    print(f"| of that, the arguments in Python | {field - bound:.3f} | | |")
    print(f"| of that, a call of the binding | {call:.3f} | | |")
    print(f"| 1,000,000 places to the plate | {million:.0f} | | |")
    print(f"| `import`, numpy imported before | {start_of('import veko'):.0f} | {start_of('import astropy.coordinates'):.0f} | |")


main()
