#!/usr/bin/env python3
"""Draws the fibres of a configured document on the sky, as SVG on standard output:

    draw_bundle.py CONFIGURED.xml >bundle.svg

The first field's targets are drawn around its science target: north up, east to the left, offsets in arcseconds. The
same document gives the same bytes.
"""
import argparse
import html
import math
import sys
import xml.etree.ElementTree as ElementTree

FIBRE_RADIUS_ARCSEC = 1.3  # drawn; a neighbour is 3.4 arcsec away
PIXELS_PER_ARCSEC = 2.4
HALF_SIZE_ARCSEC = 160
BAR_ARCSEC = 60
LEGEND = [("fibre", "sees the object"), ("sky", "sees the sky"), ("broken", "broken"), ("science", "science target")]

# Colours that stand out on white and on black; the text follows the reader's scheme.
STYLE = """
    text { font: 13px sans-serif; fill: #333 }
    .title { font-size: 16px }
    .line { stroke: #555; stroke-width: 1.5; fill: none }
    .fibre { fill: #3d85c6 }
    .sky { fill: #e69f00 }
    .broken { fill: none; stroke: #999; stroke-width: 1.5 }
    .science { fill: #d62728; stroke: #fff; stroke-width: 0.6 }
    .paper { fill: #fff }
    @media (prefers-color-scheme: dark) {
      text { fill: #ddd } .line { stroke: #bbb } .paper { fill: #0d1117 } .fibre { fill: #5fa8e8 }
    }"""


def offsets(target, centre):
    """East and north of the centre in its tangent plane, arcsec."""
    ra, dec = (math.radians(float(target.get(name))) for name in ("targra", "targdec"))
    ra0, dec0 = (math.radians(float(centre.get(name))) for name in ("targra", "targdec"))
    towards = math.sin(dec) * math.sin(dec0) + math.cos(dec) * math.cos(dec0) * math.cos(ra - ra0)
    east = math.cos(dec) * math.sin(ra - ra0) / towards
    north = (math.sin(dec) * math.cos(dec0) - math.cos(dec) * math.sin(dec0) * math.cos(ra - ra0)) / towards
    return math.degrees(east) * 3600, math.degrees(north) * 3600


def pixels(east, north):
    return (HALF_SIZE_ARCSEC - east) * PIXELS_PER_ARCSEC, (HALF_SIZE_ARCSEC - north) * PIXELS_PER_ARCSEC


def kind(target):
    if target.get("automatic") is None:
        return "science"
    if target.get("fibreid").startswith("-"):
        return "broken"
    return "sky" if target.get("targuse") == "S" else "fibre"


def fibre(name, x, y, scale=1.0):
    radius = FIBRE_RADIUS_ARCSEC * PIXELS_PER_ARCSEC * scale * (1.5 if name == "science" else 1)
    return f'<circle class="{name}" cx="{x:.1f}" cy="{y:.1f}" r="{radius:.1f}"/>'


def label(text, x, y, anchor="start", style=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{style}>{text}</text>'


def compass():
    """Arrows to north and east."""
    x, y, length = 2 * HALF_SIZE_ARCSEC * PIXELS_PER_ARCSEC - 50, 90.0, 45.0
    head = 5
    return [f'<path class="line" d="M{x} {y - length} V{y} H{x - length} '
            f'M{x - head} {y - length + head} L{x} {y - length} L{x + head} {y - length + head} '
            f'M{x - length + head} {y - head} L{x - length} {y} L{x - length + head} {y + head}"/>',
            label("N", x, y - length - 6, "middle"), label("E", x - length - 6, y + 5, "end")]


def scale_bar():
    size = 2 * HALF_SIZE_ARCSEC * PIXELS_PER_ARCSEC
    length = BAR_ARCSEC * PIXELS_PER_ARCSEC
    x, y = size - 24 - length, size - 28
    return [f'<path class="line" d="M{x:.1f} {y - 5} v10 m0 -5 h{length:.1f} m0 -5 v10"/>',
            label(f"{BAR_ARCSEC} arcsec", x + length / 2, y - 10, "middle")]


def legend(counts):
    size = 2 * HALF_SIZE_ARCSEC * PIXELS_PER_ARCSEC
    lines = []
    for row, (name, text) in enumerate(LEGEND):
        y = size - 28 - 22 * (len(LEGEND) - 1 - row)
        lines += [fibre(name, 28, y, 1.6), label(f"{text} ({counts[name]})", 42, y + 4.5)]
    return lines


def draw(document):
    field = next(ElementTree.parse(document).iter("field"))
    targets = [t for t in field.findall("target") if t.get("ifu_spaxel")]
    science = next(t for t in targets if kind(t) == "science")
    size = 2 * HALF_SIZE_ARCSEC * PIXELS_PER_ARCSEC
    name = html.escape(science.get("targname"))
    on = f'on fibre {science.get("fibreid")}, spaxel {html.escape(science.get("ifu_spaxel"))}'
    place = f'{float(science.get("targra")):.6f}°, {float(science.get("targdec")):.6f}°'
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {size:g} {size:g}" width="{size:g}" '
             f'height="{size:g}" role="img" aria-label="The fibres of the bundle on the sky around {name}">',
             f"<style>{STYLE}\n</style>", f'<rect class="paper" width="{size:g}" height="{size:g}"/>',
             label(name, 20, 32, style=' class="title"'), label(place, 20, 52), label(on, 20, 70)]
    # The science fibre last, above its neighbours.
    for target in sorted(targets, key=lambda t: kind(t) == "science"):
        lines.append(fibre(kind(target), *pixels(*offsets(target, science))))
    counts = {name: sum(kind(t) == name for t in targets) for name, _ in LEGEND}
    lines += compass() + scale_bar() + legend(counts) + ["</svg>"]
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("configured", metavar="CONFIGURED.xml", help="a document that veko_configure has written")
    sys.stdout.buffer.write(draw(parser.parse_args().configured).encode())
