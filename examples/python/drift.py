"""How the places that the fibres see drift through a night by refraction, while the telescope follows the field.

Each pointing keeps the science target on fibre 304. What the other fibres see moves all the same, because refraction
differs from one end of the bundle to the other. A picture shows the way of each place, five hundred times as long.
"""

import argparse

import matplotlib.pyplot as plt  # type: ignore[import]
import numpy as np
import veko
from numpy.typing import NDArray

EPOCH = 2027.25
MIDDLE_FIBRE = 304
HOURS = np.linspace(-3, 3, 13)
CULMINATION = 6
"""The place of hour angle 0 in HOURS."""
SCALE = 500
ARCSEC_PER_DEGREE = 3600.0


def offsets(pointing: veko.Pointing, bundle: veko.Bundle) -> NDArray[np.float64]:
    """East and north of what the middle fibre sees, in arcsec, of what each fibre sees."""
    ra, dec = pointing.plate_to_sky(bundle.x, bundle.y)
    (middle,) = np.flatnonzero(bundle.ids == MIDDLE_FIBRE)
    east = ((ra - ra[middle] + 180) % 360 - 180) * np.cos(np.radians(dec[middle]))
    return np.array([east, dec - dec[middle]], dtype=np.float64) * ARCSEC_PER_DEGREE


def draw(ways: NDArray[np.float64], picture: str) -> None:
    """Draws the offsets of all fibres at all hours; their drift from culmination is made longer."""
    places = ways[CULMINATION]
    longer = places + (ways - places) * SCALE
    figure, axes = plt.subplots(figsize=(6, 6), layout="constrained")
    axes.plot(longer[:, 0], longer[:, 1], color="tab:blue", linewidth=0.6)
    axes.plot(*places, ".", color="black", markersize=2)
    axes.set(aspect="equal", xlabel="east, arcsec", ylabel="north, arcsec")
    axes.set_title(f"Drift in three hours before and after culmination (dots),\n{SCALE} times as large")
    axes.invert_xaxis()
    figure.savefig(picture)


def main() -> None:
    parser = argparse.ArgumentParser(description=(__doc__ or "").splitlines()[0])
    parser.add_argument("document", help="field definition, such as examples/sombrero_south.xml")
    parser.add_argument("picture", help="file to draw in, such as drift.png")
    arguments = parser.parse_args()

    document = veko.read(arguments.document)
    science = document.targets[document.targets["use"] == "T"][0]
    place = science["ra"], science["dec"]
    bundle = veko.Bundle()
    ways: list[NDArray[np.float64]] = []
    for hour_angle in HOURS:
        pointing = veko.Pointing(*place, document.pa, epoch=EPOCH, hour_angle=hour_angle)
        pointing.place(*place, fibre=MIDDLE_FIBRE)
        ways.append(offsets(pointing, bundle))
        drift = np.hypot(*(ways[-1] - ways[0]))
        fibre = bundle.ids[drift.argmax()]
        print(
            f"hour angle {hour_angle:5.1f}   airmass {pointing.airmass:.2f}   "
            f"largest drift {drift.max() * 1000:6.2f} mas, of fibre {fibre}"
        )
    draw(np.array(ways), arguments.picture)


main()
