"""When galaxies can be observed in a season: a table, and a picture of the hours in each night."""

import argparse

import matplotlib.pyplot as plt  # type: ignore[import]
import veko

GALAXIES = {
    "M 74": (24.1740, 15.7836),
    "M 81": (148.8882, 69.0653),
    "M 104": (189.9976, -11.6231),
    "M 64": (194.1821, 21.6828),
}
"""ICRS, degrees."""


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("first", help="date of the first evening, such as 2027-01-01")
    parser.add_argument("last", help="of the last, such as 2027-06-30")
    parser.add_argument("picture", help="file to draw in, such as season.png")
    arguments = parser.parse_args()

    figure, axes = plt.subplots(figsize=(8, 4.5), layout="constrained")
    print("galaxy   nights   hours   best night   highest, deg")
    for name, place in GALAXIES.items():
        nights = veko.windows(place, arguments.first, arguments.last, twilight="astronomical", moon=30, airmass=2)
        hours = [night.hours for night in nights]
        best = max(range(len(nights)), key=hours.__getitem__)
        highest = max((window.best.altitude for night in nights for window in night.windows), default=float("nan"))
        possible = sum(length > 0 for length in hours)
        print(f"{name:8} {possible:6} {sum(hours):7.1f}   {nights[best].night}   {highest:8.1f}")
        axes.plot([night.night for night in nights], hours, label=name)
    axes.set_ylabel("hours in the night")
    axes.set_title("Dark, below airmass 2, and 30 degrees from the Moon while it is up")
    axes.legend()
    figure.savefig(arguments.picture)


main()
