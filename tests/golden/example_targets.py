"""Every attribute of every target that a configured example must hold.

Reads the examples, the bundle, the configuration and the focal-plane map as data and works out what a run makes of them
with observed_chain.py. Where the program stops an iteration early, so that its answer depends on its steps, the steps
are repeated here (the date of the wanted hour angle); the field centre, which the program finds to 1e-4 mm, is solved
to the last bits instead.
"""
import math
import pathlib
import xml.etree.ElementTree as ElementTree

from observed_chain import Optics, Pointing, Site, Weather, astrometric_place, wrapped

PROJECT = pathlib.Path(__file__).resolve().parents[2]
RESOURCES = PROJECT / "pos" / "positioner" / "resources"
ABSENT = "<absent>"  # a cell of an attribute that the target does not have
DEFAULT_SCIENCE_FIBRE = "304"
ONE_SECOND_OF_TIME = math.pi / 12 / 3600
SIDEREAL_RATE = 1.00273790934
# What a generated target gets unless the science target, of which it is a copy, already has it.
DEFAULTS = {"targname": "", "targsrvy": "", "targprio": "1", "cname": "%%%", "ifu_pa": "", "ifu_spaxel": "",
            "targcat": "", "targprog": "", "targid": ""}
CATALOGUE = (("targepoch", 2015.5), ("targpmra", 0.0), ("targpmdec", 0.0), ("targparal", 0.0), ("targrv", 0.0))


def number(text):
    """A double that reads back to the same bits."""
    return f"{float(text):.17g}"


def given(element, name, default):
    """The number in an attribute of the conditions, where %%% marks one that is not filled in."""
    text = element.get(name, "%%%")
    return default if text == "%%%" else float(text)


def shipped_site():
    configuration = ElementTree.parse(RESOURCES / "configure.xml").getroot()
    telescope = {child.tag: child.text for child in configuration.find("telescope")}
    focal_plane = ElementTree.parse(RESOURCES / "focal_plane_map.xml").getroot()
    axis = focal_plane.find("optical_axis/VEKO")
    c = focal_plane.find("distortion_coefficients")
    optics = Optics(float(c.get("c1")), float(c.get("c3")), float(c.get("c5")),
                    {"VEKO": (float(axis.get("x0")), float(axis.get("y0")))}, float(axis.get("r0")))
    site = Site("shipped", float(telescope["east_longitude"]), float(telescope["latitude"]),
                float(telescope["height"]), float(telescope["horizon_limit"]), optics)
    return site, float(configuration.findtext("default_epoch"))


class Bundle:
    """The fibres by ascending identifier, and where they stand on the plate."""

    def __init__(self):
        root = ElementTree.parse(RESOURCES / "VEKO.xml").getroot()
        self.centre = complex(float(root.get("centre_x")), float(root.get("centre_y")))
        turn = math.radians(float(root.get("orientation")))
        self.turn = complex(math.cos(turn), math.sin(turn))
        self.fibres = {f.get("id"): f for f in sorted(root.findall("fibre"), key=lambda f: int(f.get("id")))}

    def position(self, fibre):
        return self.centre + complex(float(fibre.get("pos_x")), float(fibre.get("pos_y"))) * self.turn


def catalogue_place(target):
    return (math.radians(float(target.get("targra"))), math.radians(float(target.get("targdec"))),
            *(float(target.get(name) or default) for name, default in CATALOGUE))


def epoch_years(mjd):
    return 2000 + (mjd - 51544.5) / 365.25


def date_of_hour_angle(pointing, wanted):
    """Steps the date until the centre is within a second of time of an hour angle, as the program documents it."""
    while True:
        off = wrapped(pointing.hour_angle - wanted)
        if abs(off) <= ONE_SECOND_OF_TIME:
            return
        pointing.mjd -= off * 12 / math.pi / 24 / SIDEREAL_RATE
        pointing.point_at(*pointing.centre)


def first_pointing(root, site):
    """Date, weather and position angle of the run, pointed at the first field's own centre."""
    observation = root.find("observation")
    conditions = observation.find("configure/conditions")
    mjd = 51544.5 + (given(conditions, "epoch", 0.0) - 2000) * 365.25
    weather = Weather(given(conditions, "temperature", 283.0), given(conditions, "pressure", 660.0),
                      given(conditions, "relative_humidity", 0.2))
    field = observation.find("fields/field")
    centre = [math.radians(given(field, name, 0.0)) for name in ("RA_d", "Dec_d")]
    pointing = Pointing(site, "VEKO", mjd, weather, centre, float(observation.get("pa")), "resting")
    date_of_hour_angle(pointing, given(conditions, "ha", 0.0) * math.pi / 12)
    return pointing


def assign_identifiers(field):
    """The first field's targets without a configid get the next free one from 2 on, in document order."""
    taken = {t.get("configid") for t in field.iter("target")}
    following = 2
    for target in field.iter("target"):
        if target.get("configid") is None:
            while str(following) in taken:
                following += 1
            target.set("configid", str(following))
            taken.add(str(following))


def configured_field(field, pointing, bundle, epoch):
    """Rows of attributes of all targets of a field, in document order, and the field's centre in degrees."""
    own = list(field.iter("target"))
    science = [t for t in field.findall("target") if t.get("targuse") == "T"][-1]
    guide = [t for t in field.findall("target") if t.get("targuse") == "G"][-1]
    science_fibre = science.get("fibreid") or DEFAULT_SCIENCE_FIBRE
    place = astrometric_place(catalogue_place(science), pointing.mjd)
    pointing.place_target(place, bundle.position(bundle.fibres[science_fibre]))
    ra, dec = pointing.sky_position([bundle.position(f) for f in bundle.fibres.values()])
    centre_ra, centre_dec = pointing.sky_position([0.0])
    position_angle = number(pointing.position_angle_deg)

    template = dict(science.attrib)
    generated = []
    for (identifier, fibre), fibre_ra, fibre_dec in zip(bundle.fibres.items(), ra, dec):
        position = bundle.position(fibre)
        name = fibre.get("fibre_name")
        on_fibre = {"targx": number(position.real), "targy": number(position.imag), "ifu_pa": position_angle,
                    "ifu_spaxel": name, "configid": identifier}
        if identifier == science_fibre:
            science.attrib.update(on_fibre, fibreid=identifier)
            continue
        sky = name.startswith("S")
        generated.append({
            **DEFAULTS, "targclass": "" if sky else "UNKNOWN", **template, **on_fibre,
            "fibreid": identifier if fibre.get("status") == "enabled" else "-" + identifier,
            "targuse": "S" if sky else "T", "automatic": "1", "targparal": "0", "targpmra": "0", "targpmdec": "0",
            "targra": number(math.degrees(fibre_ra)), "targdec": number(math.degrees(fibre_dec)),
            "targepoch": f"{epoch:.2f}"})
    place = astrometric_place(catalogue_place(guide), pointing.mjd)
    landed = pointing.plate_position(*place)
    guide.attrib.update(targx=number(landed.real), targy=number(landed.imag), ifu_pa=position_angle, fibreid="",
                        ifu_spaxel="", configid="0")
    return [dict(t.attrib) for t in own] + generated, (math.degrees(centre_ra[0]), math.degrees(centre_dec[0]))


def write(write_table):
    site, epoch = shipped_site()
    bundle = Bundle()
    fields = []
    for example in sorted((PROJECT / "examples").glob("*.xml")):
        root = ElementTree.parse(example).getroot()
        pointing = first_pointing(root, site)
        hour_angle = float(pointing.hour_angle)
        assign_identifiers(root.find("observation/fields/field"))
        for index, field in enumerate(root.findall("observation/fields/field")):
            rows, centre = configured_field(field, pointing, bundle, epoch)
            columns = sorted({name for row in rows for name in row})
            fields.append([example.name, index, f"example_{example.stem}_{index}.csv", *map(float, centre),
                           epoch_years(pointing.mjd), hour_angle * 12 / math.pi])
            write_table(fields[-1][2],
                        f"All targets of field {index} of examples/{example.name}, configured: attributes in document\n"
                        f"order. {ABSENT} stands for an attribute that a target does not have.", columns,
                        [[row.get(name, ABSENT) for name in columns] for row in rows])
    write_table("example_fields.csv",
                "The fields of the configured examples: field centre, degrees; Julian epoch and hour angle (hours) of\n"
                "the whole run.",
                ["example", "field", "targets", "centre_ra_d", "centre_dec_d", "epoch", "ha_hours"], fields)
