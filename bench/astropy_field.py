#!/usr/bin/python3
"""The places of one field as a plain script on astropy works them out: the comparison for veko_configure's time.

Usage: astropy_field.py FIELD_DEFINITION. Prints identifier, right ascension and declination (degrees) of every fibre.
Points the telescope and observes the field centre by the functions behind the independent results of tests/golden;
then one conversion takes all fibres to the sky.
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

import numpy as np

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "golden"))
from example_targets import Bundle, catalogue_place, first_pointing, shipped_site
from observed_chain import astrometric_place, use_ideal_earth_orientation

ARRIVED_MM = 1e-4


def place_bundle(pointing, target, wanted):
    """Moves the field centre until the target lands at a plate position, by as much as it misses."""
    aim = 0j
    pointing.point_at(*target)
    while abs(miss := pointing.plate_position(*target) - wanted) > ARRIVED_MM:
        aim += miss
        pointing.point_at(*(angle.item() for angle in pointing.library_way_back(aim)))


def main(document: str) -> None:
    use_ideal_earth_orientation()
    root = ElementTree.parse(document).getroot()
    bundle = Bundle()
    pointing = first_pointing(root, shipped_site()[0])
    science = root.find("observation/fields/field/target[@targuse='T']")
    place_bundle(pointing, astrometric_place(catalogue_place(science), pointing.mjd),
                 bundle.position(bundle.fibres["304"]))
    ra, dec = pointing.library_way_back(np.array([bundle.position(fibre) for fibre in bundle.fibres.values()]))
    for identifier, fibre_ra, fibre_dec in zip(bundle.fibres, np.degrees(ra), np.degrees(dec)):
        print(f"{identifier} {fibre_ra:.6f} {fibre_dec:.6f}")


main(*sys.argv[1:])
