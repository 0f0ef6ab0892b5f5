"""Checks some thousand valid documents, and every example, in which veko check must find no error and no warning.

    check_false_alarms.py VEKO

The documents have random places, times, weather, targets and forms, from a fixed seed. That they can be observed at
night is worked out by the formulas of night.py; dates and heights keep clear of every limit.
"""
import dataclasses
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET
from math import cos, radians

import night
from field_documents import EXAMPLES, FORMS, Form, document_text, encoded

SEED = 20270402
DOCUMENTS = 3000
BROKEN_FIBRES = (160, 504, 573)  # of the built-in bundle

# Every encoding that Qt and Python have under the same name, with a text in its own letters.
LATIN, JAPANESE, CHINESE = "\u00e9t\u00e9", "\u65e5\u672c", "\u4e2d\u6587"
CYRILLIC = "\u0437\u0432\u0435\u0437\u0434\u0430"
ENCODINGS = {
    **{f"ISO-8859-{part}": LATIN for part in (1, 2, 3, 4, 9, 10, 13, 14, 15, 16)},
    **{f"windows-{page}": LATIN for page in (1250, 1252, 1254, 1257, 1258)},
    **{name: CYRILLIC for name in ("ISO-8859-5", "windows-1251", "KOI8-R", "KOI8-U", "IBM866")},
    **{name: "\u03b1\u03b2\u03b3" for name in ("ISO-8859-7", "windows-1253")},
    **{name: "\u05d0\u05d1" for name in ("ISO-8859-8", "windows-1255")},
    **{name: "\u0627\u0628" for name in ("ISO-8859-6", "windows-1256")},
    **{name: JAPANESE for name in ("Shift_JIS", "EUC-JP", "ISO-2022-JP")},
    **{name: CHINESE for name in ("GB2312", "GBK", "GB18030", "Big5", "Big5-HKSCS")},
    "EUC-KR": "\ud55c\uad6d", "TIS-620": "\u0e14\u0e32\u0e27", "macintosh": LATIN, "IBM850": LATIN, "US-ASCII": "",
    "UTF-7": JAPANESE, "UTF-16LE": JAPANESE, "UTF-16BE": JAPANESE, "UTF-8": JAPANESE + "\U0001f52d",
}
MARKED = (Form("utf-32-le", "UTF-32", b"\xff\xfe\x00\x00", note=JAPANESE), Form("utf-32-be", "", b"\x00\x00\xfe\xff"),
          Form("utf-16-le", "", b"\xff\xfe", note="\U0001f52d"), Form("utf-16-be", "UTF-16", b"\xfe\xff"),
          Form("utf-8", "", b"\xef\xbb\xbf", note=LATIN))
PYTHON_NAMES = {"windows-": "cp", "macintosh": "mac-roman"}


def all_forms():
    for number, (name, note) in enumerate(ENCODINGS.items()):
        codec = name
        for ours, pythons in PYTHON_NAMES.items():
            codec = codec.replace(ours, pythons)
        yield dataclasses.replace(FORMS[number % len(FORMS)], encoding=codec, declared=name, byte_order_mark=b"",
                                  note=note)
    yield from FORMS + MARKED


class Maker:
    """Makes documents of random values."""

    def __init__(self):
        self.random = random.Random(SEED)
        self.count = 0

    def one_in(self, number):
        return self.random.randrange(number) == 0

    def number(self, low, high, decimals):
        return f"{self.random.uniform(low, high):.{decimals}f}"

    def unique(self):
        self.count += 1
        return self.count

    def pointing(self):
        """Epoch, place, hour angle in hours and position angle of a field that is well up in a dark night."""
        while True:
            epoch, ra = self.random.uniform(2026, 2036), self.random.uniform(4, 356)
            dec, hour_angle = self.random.uniform(-20, 75), self.random.choice((0.0, self.random.uniform(-4, 4)))
            is_up = 38 < night.altitude(15 * hour_angle, dec) < 78
            is_dark = (night.sun_altitude(epoch, ra, 15 * hour_angle) < -15
                       and night.separation(night.moon(epoch), (ra, dec)) > 45)
            if is_up and is_dark:
                rotator = self.random.uniform(-110, 110)
                pa = (rotator + night.parallactic_angle(15 * hour_angle, dec) + 180) % 360 - 180
                return epoch, (ra, dec), hour_angle, pa

    def place_near(self, centre, radius):
        """A place in a square around another one."""
        ra, dec = centre
        return (ra + self.random.uniform(-radius, radius) / cos(radians(dec)),
                dec + self.random.uniform(-radius, radius))

    def place_attributes(self, names, place):
        decimals = self.random.randrange(5, 10)
        return {name: f"{value:.{decimals}f}" for name, value in zip(names, place)}

    def target(self, parent, use, place):
        attributes = {"targuse": use, **self.place_attributes(("targra", "targdec"), place)}
        if self.one_in(2):
            attributes["targepoch"] = self.random.choice(("2000.0", "2015.5", "2016.0", "1991.25"))
            if self.one_in(2):
                attributes["targpmra"], attributes["targpmdec"] = self.number(1, 200, 2), self.number(-200, -1, 3)
            if self.one_in(3):
                attributes["targparal"] = self.number(0.0005, 0.09, 5)
        optional = {"targname": f"{self.random.choice(('M', 'Gaia & DR3', 'a<b', LATIN, JAPANESE))} {self.unique()}",
                    "targsrvy": "EXAMPLE", "targprio": self.number(1, 9, 1), "targrv": self.number(-400, 400, 2),
                    "targid": str(self.unique()), "targcat": "CAT", "targprog": "P", "targclass": "STAR",
                    "cname": "%%%", "automatic": "0", "configid": self.random.choice(("0", str(1000 + self.unique())))}
        attributes.update((name, value) for name, value in optional.items() if self.one_in(3))
        if use == "T" and self.one_in(2):
            fibre = self.random.choice([number for number in range(1, 604) if number not in BROKEN_FIBRES])
            attributes["fibreid"] = self.random.choice(("", "%%%", str(fibre)))
        items = list(attributes.items())
        self.random.shuffle(items)
        element = ET.SubElement(parent, "target", dict(items))
        if self.one_in(4):
            ET.SubElement(element, "photometry", band="r", mag="12.5", anything="else").text = "r < 13 & g > 9"

    def field(self, fields, centre, is_first):
        attributes = {"name": f"field {self.unique()}"} if self.one_in(2) else {}
        if is_first or self.one_in(2):
            attributes.update(self.place_attributes(("RA_d", "Dec_d"), centre))
        field = ET.SubElement(fields, "field", attributes)
        science = self.place_near(centre, 0.1)
        pair = [("T", science), ("G", self.place_near(science, 0.45))]
        self.random.shuffle(pair)
        for use, place in pair:
            self.target(field, use, place)
        parent = field
        for _ in range(self.random.randrange(5)):
            if self.one_in(3):
                parent = ET.SubElement(parent, "group", name=f"group {self.unique()}")
            self.target(parent, self.random.choice("CSER"), self.place_near(centre, 0.6))
        if self.one_in(3):
            masks = ET.SubElement(field, "avoidance_list")
            for _ in range(self.random.randrange(1, 4)):
                ET.SubElement(masks, "mask", self.place_attributes(("RA_d", "Dec_d"), self.place_near(centre, 0.6)))
            if self.one_in(2):
                masks[0].set("radius", self.number(0.5, 20, 1))

    def conditions(self, epoch, hour_angle):
        attributes = {"epoch": f"{epoch:.{self.random.randrange(4, 7)}f}"}
        weather = {"temperature": self.number(262, 298, 1), "pressure": self.number(700, 820, 0),
                   "relative_humidity": self.number(0, 1, 2)}
        kind = self.random.randrange(3)
        attributes.update({} if kind == 0 else weather if kind == 1 else dict.fromkeys(weather, "%%%"))
        if self.one_in(4):
            attributes["tlr"] = "0.0065"
        in_hours = f"{hour_angle:.{self.random.randrange(4, 7)}f}"
        attributes["ha"] = in_hours if hour_angle else self.random.choice(("0", "%%%"))
        return attributes

    def document(self):
        epoch, place, hour_angle, pa = self.pointing()
        root = ET.Element("field_definition", datamver="8.00")
        angle = f"{pa % 360 if self.one_in(2) else pa:.{self.random.randrange(1, 5)}f}"
        observation = ET.SubElement(root, "observation", pa=angle, name="<&>")
        configure = ET.SubElement(observation, "configure")
        ET.SubElement(configure, "conditions", self.conditions(epoch, hour_angle))
        fields = ET.SubElement(observation, "fields")
        for number in range(self.random.choice((1, 1, 1, 2, 3))):
            # Two degrees from one to the next, so that none is a copy.
            self.field(fields, (place[0], place[1] + 2 * number), number == 0)
        return root


def main():
    veko, maker, forms = os.path.abspath(sys.argv[1]), Maker(), list(all_forms())
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(dir=memory) as folder:
        files = [str(path) for path in EXAMPLES.glob("*.xml")]
        for number in range(DOCUMENTS):
            form = forms[number % len(forms)]
            files.append(f"{number}_{form.declared}.xml")
            (pathlib.Path(folder) / files[-1]).write_bytes(encoded(document_text(maker.document(), form), form))
        command = [veko, "check", "--format", "json", *files]
        printed = subprocess.run(command, cwd=folder, capture_output=True, check=False).stdout
    documents = json.loads(printed)["documents"]
    for document in documents:
        for problem in document["problems"]:
            if problem["severity"] != "note":
                print("{0}:{line}:{column}: {severity}: {message} [{code}]".format(document["file"], **problem))
    alarms = sum(document["errors"] + document["warnings"] > 0 for document in documents)
    print(f"{len(documents)} valid documents, {alarms} with an error or a warning; seed {SEED}, {len(forms)} forms")
    sys.exit(alarms > 0 or len(documents) != len(files))


if __name__ == "__main__":
    main()
