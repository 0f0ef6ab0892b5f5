"""How the places that the fibres see drift through a night by refraction, while the telescope follows the field.

The pointing keeps its field centre on the same place; what the fibres see then moves, because refraction changes from
the one end of the bundle to the other. A picture shows the way of each place, five hundred times as long.

usage: drift.py FIELD_DEFINITION PICTURE      for example  drift.py examples/sombrero_south.xml drift.png
"""

import sys

import matplotlib.pyplot as plt  # type: ignore[import]
import numpy as np
import veko
from numpy.typing import NDArray

EPOCH = 2027.25
SCALE = 500
ARCSEC_PER_DEGREE = 3600.0


def offsets(pointing: veko.Pointing, bundle: veko.Bundle) -> NDArray[np.float64]:
    """East and north of the field centre, in arcsec, of what each fibre sees."""
    ra, dec = pointing.plate_to_sky(bundle.x, bundle.y)
    centre_ra, centre_dec = pointing.plate_to_sky(*middle(bundle))
    east = (ra - centre_ra) * np.cos(np.radians(centre_dec))
    return np.array([east, dec - centre_dec], dtype=np.float64) * ARCSEC_PER_DEGREE


def middle(bundle: veko.Bundle) -> tuple[float, float]:
    """Where fibre 304 is."""
    (index,) = np.flatnonzero(bundle.ids == 304)
    return float(bundle.x[index]), float(bundle.y[index])


def main(path: str, picture: str) -> None:
    document = veko.read(path)
    science = document.targets[document.targets["use"] == "T"][0]
    bundle = veko.Bundle()
    places = []
    hours = np.linspace(-3, 3, 13)
    for hour_angle in hours:
        pointing = veko.Pointing(science["ra"], science["dec"], document.pa, epoch=EPOCH, hour_angle=hour_angle)
        pointing.place(science["ra"], science["dec"], 304)
        places.append(offsets(pointing, bundle))
        largest = np.hypot(*(places[-1] - places[0])).max()
        print(f"hour angle {hour_angle:5.1f}   airmass {pointing.airmass:.2f}   largest drift {largest * 1000:6.2f} mas")
    figure, axes = plt.subplots(figsize=(6, 6), layout="constrained")
    ways = np.array(places)
    ways = ways[6] + (ways - ways[6]) * SCALE
    axes.plot(ways[:, 0], ways[:, 1], color="tab:blue", linewidth=0.6)
    axes.plot(*places[6], ".", color="black", markersize=2)
    axes.set(aspect="equal", xlabel="east, arcsec", ylabel="north, arcsec")
    axes.set_title(f"Drift in six hours, {SCALE} times as large")
    axes.invert_xaxis()
    figure.savefig(picture)


main(*sys.argv[1:])
