"""Documents with one fault each, made from valid ones.

A bad value is placed at its first character, a bad name at the name, what is missing at the "<" of the element that
lacks it, a malformed document at the first character that cannot stand there. Where a field stands wrongly in the sky,
the place is its right ascension; its declination where it never rises. Code and place come from here alone, never from
what the checker says.
"""
import copy
import dataclasses
import itertools
import xml.etree.ElementTree as ET

import night
from fault_kinds import (bad, changed, conditions, element_at, extra, Fault, field, lacking, misnamed,
                         misnamed_element, repeated, second_of, target, without)
from field_documents import (document_text, documents, encoded, FORMS, MARK, marked_place, missing, NotHere, STRAY,
                             STRAY_BYTES)
from malformed_texts import MALFORMED, malformed
from other_notations import (calendar_date, calendar_date_without_signs, degrees_with_colons, degrees_with_letters,
                             degrees_with_signs, en_dash, few_decimals, full_width, hour_angle_in_degrees, HOURS,
                             hours_with_blanks, hours_with_colons, hours_with_letters, julian_date, julian_letter,
                             lettered_julian_date, modified_julian_date, moved, scaled, unicode_minus, west_of_zero,
                             with_comma, with_unit)

DOCUMENTS_OF_A_FAULT = 3


@dataclasses.dataclass(frozen=True)
class Case:
    """A document with a fault."""
    file: str
    fault: Fault
    document: str  # the name of the valid one
    text: bytes
    line: int
    column: int


BAD_VALUES = (
    # What the run refuses.
    bad("VK102", "document", "datamver", "8.0", True), bad("VK102", "document", "datamver", "9.00"),
    *(bad("VK104", "conditions", *pair) for pair in (
        ("epoch", "early 2027"), ("temperature", "cold"), ("pressure", "high"), ("relative_humidity", "dry"))),
    *(bad("VK105", "conditions", "ha", wrong) for wrong in ("west", "-1.0.0", "1h east")),
    *(bad("VK107", where, *pair) for where, pair in (
        ("science", ("targra", "unknown")), ("science", ("targdec", "north")), ("guide", ("targra", "none")),
        ("guide", ("targdec", "12.5north")), ("grouped", ("targuse", "X")), ("grouped", ("targra", "seven")),
        ("science", ("targepoch", "recent")), ("guide", ("targpmra", "fast")), ("guide", ("targpmdec", "slow")),
        ("science", ("targparal", "far")), ("science", ("targrv", "red")), ("science", ("targprio", "high")),
        ("science", ("fibreid", "middle")), ("guide", ("configid", "first")), ("grouped", ("automatic", "no")),
        ("science 2", ("targra", "unknown")), ("guide 2", ("targdec", "unknown")))),
    *(bad("VK108", where, *pair) for where, pair in (
        ("field", ("RA_d", "centre")), ("field", ("Dec_d", "south")), ("mask", ("radius", "wide")),
        ("mask", ("RA_d", "there")), ("mask", ("Dec_d", "there")))),
    bad("VK110", "science", "fibreid", "700"), bad("VK110", "science 2", "fibreid", "604"),
    # What it passes over.
    bad("VK205", "guide", "targuse", "g", True), bad("VK205", "science", "targuse", "t", True),
    bad("VK205", "science 2", "targuse", "t", True), bad("VK205", "grouped", "targuse", "c", True),
    *(bad("VK211", "science", "fibreid", broken) for broken in ("160", "504", "573")),
    bad("VK212", "guide", "fibreid", "9999"), bad("VK212", "grouped", "fibreid", "604"),
    bad("VK214", "observation", "pa", "about 30"), bad("VK214", "observation", "pa", "north"),
    bad("VK214", "observation", "pa", "%%%"),
    bad("VK215", "field", "RA_d", "%%%"), bad("VK215", "field", "Dec_d", "%%%"), bad("VK215", "mask", "RA_d", "%%%"),
    bad("VK207", "grouped", "targuse", "G"), bad("VK207", "grouped", "targuse", "T"),
    # Other notations.
    bad("VK301", "science", "targra", hours_with_colons, True),
    bad("VK301", "guide", "targra", hours_with_letters, True),
    bad("VK301", "field", "RA_d", hours_with_blanks, True),
    bad("VK301", "science", "targdec", degrees_with_colons, True),
    bad("VK301", "guide", "targdec", degrees_with_letters, True),
    bad("VK301", "field", "Dec_d", degrees_with_signs, True),
    bad("VK301", "science 2", "targra", hours_with_letters, True),
    bad("VK301", "guide 2", "targdec", degrees_with_signs, True),
    bad("VK301", "observation", "pa", degrees_with_colons, True),
    bad("VK301", "conditions", "ha", degrees_with_colons, True),
    bad("VK301", "science", "targra", degrees_with_signs, True),
    *(bad("VK302", where, attribute, with_comma, True) for where, attribute in (
        ("observation", "pa"), ("conditions", "epoch"), ("conditions", "temperature"),
        ("conditions", "relative_humidity"), ("conditions", "ha"), ("field", "RA_d"), ("field", "Dec_d"),
        ("science", "targra"), ("science", "targdec"), ("guide", "targepoch"), ("guide", "targpmra"),
        ("science", "targparal"), ("guide 2", "targra"), ("mask", "RA_d"))),
    *(bad("VK303", where, attribute, with_unit(unit), True) for where, attribute, unit in (
        ("observation", "pa", "\u00b0"), ("observation", "pa", " deg"), ("conditions", "epoch", " yr"),
        ("conditions", "temperature", " K"), ("conditions", "pressure", " hPa"), ("conditions", "ha", "h"),
        ("science", "targra", "\u00b0"), ("guide", "targdec", " degrees"), ("field", "RA_d", "deg"),
        ("guide", "targpmra", " mas/yr"), ("science", "targparal", "\""), ("science", "targrv", " km/s"))),
    bad("VK303", "conditions", "temperature", scaled(1, -273.15, 2, "Celsius with its sign", " \u00b0C"), True),
    bad("VK303", "conditions", "pressure", scaled(100, 0, 0, "pascal with its sign", " Pa"), True),
    bad("VK303", "conditions", "relative_humidity", scaled(100, 0, 0, "per cent with its sign", "%"), True),
    bad("VK303", "conditions", "ha", scaled(15, 0, 2, "degrees with their sign", "\u00b0"), True),
    bad("VK303", "science", "targparal", scaled(1000, 0, 1, "mas with their sign", " mas"), True),
    *(bad("VK304", where, attribute, full_width, True) for where, attribute in (
        ("conditions", "epoch"), ("science", "targra"), ("guide", "targdec"), ("observation", "pa"))),
    bad("VK304", "conditions", "ha", unicode_minus, True), bad("VK304", "science", "targdec", unicode_minus, True),
    bad("VK304", "guide", "targdec", en_dash, True), bad("VK304", "observation", "pa", en_dash, True),
    bad("VK304", "conditions", "ha", en_dash, True), bad("VK304", "guide", "targpmra", en_dash, True),
    bad("VK305", "conditions", "epoch", calendar_date, True), bad("VK305", "conditions", "epoch", julian_letter, True),
    bad("VK305", "conditions", "epoch", lettered_julian_date, True),
    bad("VK305", "science", "targepoch", julian_letter, True),
    bad("VK305", "guide", "targepoch", "2016-01-01"), bad("VK305", "guide", "targepoch", "1/1/2016"),
    bad("VK305", "science", "targepoch", "B1950.0"), bad("VK305", "guide 2", "targepoch", julian_letter, True),
    *(bad("VK306", where, attribute, few_decimals) for where, attribute in (
        ("guide", "targra"), ("guide", "targdec"), ("science", "targra"), ("field", "RA_d"), ("field", "Dec_d"),
        ("guide 2", "targdec"), ("mask", "RA_d"))),
    # Other units.
    bad("VK307", "conditions", "epoch", "%%%"),
    bad("VK308", "conditions", "epoch", modified_julian_date, True),
    bad("VK308", "guide", "targepoch", modified_julian_date, True),
    bad("VK308", "science", "targepoch", julian_date, True),
    bad("VK308", "guide", "targepoch", calendar_date_without_signs),
    *(bad("VK309", "conditions", "epoch", epoch) for epoch in ("2000.0", "2015.5", "2016.0", "1991.25")),
    bad("VK311", "conditions", "temperature", scaled(1, -273.15, 2, "degrees Celsius")),
    bad("VK311", "conditions", "temperature", "-5"), bad("VK311", "conditions", "temperature", "65.5"),
    bad("VK312", "conditions", "pressure", scaled(100, 0, 0, "pascal")),
    bad("VK312", "conditions", "pressure", scaled(0.1, 0, 1, "kilopascal")),
    bad("VK312", "conditions", "pressure", scaled(0.001, 0, 3, "bar")),
    bad("VK313", "conditions", "relative_humidity", scaled(100, 0, 0, "per cent")),
    bad("VK314", "conditions", "ha", hour_angle_in_degrees), bad("VK314", "conditions", "ha", "-30.0"),
    bad("VK315", "science", "targra", HOURS, True), bad("VK315", "guide", "targra", HOURS, True),
    bad("VK315", "field", "RA_d", HOURS, True), bad("VK315", "guide 2", "targra", HOURS, True),
    bad("VK315", "grouped", "targra", HOURS, True),
    bad("VK316", "guide", "targpmra", scaled(0.001, 0, 5, "arcsec/yr")), bad("VK316", "guide", "targpmdec", "-6e-8"),
    bad("VK316", "science", "targpmra", "0.0125"),
    bad("VK317", "science", "targparal", scaled(1000, 0, 1, "milliarcseconds")),
    bad("VK317", "guide", "targparal", scaled(1000, 0, 1, "milliarcseconds")),
    bad("VK317", "guide", "targparal", "0.25"),
    *(bad("VK318", where, *pair) for where, pair in (
        ("observation", ("pa", "400")), ("conditions", ("temperature", "600")), ("conditions", ("pressure", "-770")),
        ("conditions", ("relative_humidity", "-0.25")), ("conditions", ("ha", "-15.0")),
        ("grouped", ("targdec", "91.500000")), ("grouped", ("targra", "384.000000")), ("guide", ("targepoch", "1500")),
        ("science", ("targrv", "400000")), ("guide", ("targpmdec", "20000")), ("conditions", ("epoch", "1900.5")),
        ("mask", ("radius", "-2.5")), ("mask", ("Dec_d", "-95.000000")))),
    bad("VK318", "guide", "targra", west_of_zero), bad("VK318", "field", "RA_d", west_of_zero),
    bad("VK318", "science", "targra", west_of_zero),
    bad("VK319", "conditions", "pressure", scaled(0.7500617, 0, 1, "torr")),
    bad("VK319", "conditions", "pressure", "1013.25"),
    bad("VK320", "conditions", "temperature", "nan"), bad("VK320", "conditions", "relative_humidity", "inf"),
    bad("VK320", "guide", "targpmra", "inf"), bad("VK320", "science", "targpmdec", "nan"),
    # Places and pointing.
    bad("VK401", "guide", "targdec", moved(5)), bad("VK401", "guide", "targra", moved(8)),
    bad("VK401", "science", "targdec", moved(-4)), bad("VK401", "field", "Dec_d", moved(3)),
    bad("VK401", "field", "RA_d", moved(7)), bad("VK401", "guide 2", "targdec", moved(2)),
    bad("VK502", "field", "Dec_d", "-70.000000"), 
    bad("VK504", "conditions", "ha", "1e20"),
)

BAD_NAMES = (
    *(misnamed("VK201", *names) for names in (
        ("observation", "pa", "PA"), ("observation", "pa", "Pa"), ("observation", "pa", "position_angle"),
        ("conditions", "epoch", "Epoch"), ("conditions", "epoch", "epohc"), ("conditions", "ha", "HA"),
        ("conditions", "ha", "hour_angle"), ("conditions", "temperature", "temprature"),
        ("conditions", "relative_humidity", "relative-humidity"), ("conditions", "relative_humidity", "humidity"),
        ("conditions", "pressure", "Pressure"), ("field", "RA_d", "ra_d"), ("field", "Dec_d", "DEC_d"),
        ("field", "RA_d", "RA"), ("field", "Dec_d", "Dec"), ("science", "targra", "targRA"),
        ("guide", "targdec", "targ_dec"), ("science", "targuse", "Targuse"), ("guide", "targuse", "use"),
        ("guide", "targepoch", "targepohc"), ("guide", "targpmra", "targpm_ra"), ("guide", "targpmdec", "pmdec"),
        ("science", "fibreid", "fiberid"), ("science", "fibreid", "FibreId"), ("grouped", "configid", "config_id"),
        ("science", "targparal", "parallax"), ("science", "targname", "targnmae"), ("science 2", "targra", "Targra"),
        ("guide 2", "targepoch", "epoch"), ("mask", "radius", "raduis"))),
    *(misnamed_element("VK201", *names) for names in (
        ("conditions", "Conditions"), ("conditions", "condition"), ("field", "Field"), ("field 2", "feild"),
        ("guide", "Target"), ("configure", "Configure"), ("observation", "Observation"), ("fields", "Fields"),
        ("mask", "Mask"), ("science 2", "traget"))),
    *(extra("VK202", *names) for names in (
        ("conditions", "pa", "30"), ("field", "targra", "187.500000"), ("observation", "ha"),
        ("fields", "epoch", "2027.25"), ("configure", "epoch", "2027.25"))),
    *(extra("VK204", *names) for names in (
        ("conditions", "seeing", "0.8"), ("science", "airmass"), ("observation", "observer", "me"))),
)

MISSING = (
    lacking("VK102", "document", "datamver"),
    lacking("VK107", "science", "targra"), lacking("VK107", "science", "targdec"), lacking("VK107", "guide", "targra"),
    lacking("VK107", "guide 2", "targdec"), lacking("VK107", "grouped", "targra"),
    lacking("VK107", "science 2", "targra"),
    lacking("VK215", "field", "RA_d", "Dec_d"), lacking("VK215", "field", "RA_d"), lacking("VK215", "field", "Dec_d"),
    lacking("VK216", "conditions", "relative_humidity"), lacking("VK216", "conditions", "pressure"),
    lacking("VK216", "conditions", "ha"),
    lacking("VK307", "conditions", "epoch"),
)


@changed("VK103", "no configure")
def no_configure(root):
    observation = element_at(root, "observation")
    observation.remove(element_at(root, "configure"))
    observation.tag = f"{MARK}<observation"


@changed("VK217", "no field")
def no_field(root):
    fields = element_at(root, "fields")
    fields.clear()
    fields.tag = f"{MARK}<fields"


@changed("VK208", "an empty group before all targets")
def empty_group(root):
    field(root).insert(0, ET.Element(f"{MARK}<group"))


@changed("VK203", "a second conditions")
def second_conditions(root):
    ET.SubElement(element_at(root, "configure"), f"{MARK}conditions", epoch="2027.75")


@changed("VK203", "a second configure")
def second_configure(root):
    ET.SubElement(element_at(root, "observation"), f"{MARK}configure")


@changed("VK202", "a target outside of a field")
def homeless_target(root):
    ET.SubElement(element_at(root, "observation"), f"{MARK}target", targuse="R")


@changed("VK202", "a field outside of the fields")
def homeless_field(root):
    ET.SubElement(element_at(root, "observation"), f"{MARK}field")


@changed("VK204", "an unknown element")
def unknown_element(root):
    ET.SubElement(field(root), f"{MARK}finding_chart")


@changed("VK403", "the guide star on the science target")
def same_place(root):
    science, guide = target(root, "T"), target(root, "G")
    first, second = sorted((science, guide), key=list(field(root)).index)
    second.set("targra", MARK + first.get("targra"))
    second.set("targdec", first.get("targdec"))


@changed("VK404", "a field twice")
def field_twice(root):
    again = copy.deepcopy(field(root))
    for one in again.iter("target"):
        one.attrib.pop("configid", None)
    science = next(one for one in again if one.get("targuse") == "T")
    science.set("targra", MARK + science.get("targra"))
    element_at(root, "fields").append(again)


@changed("VK402", "a guide star off the plate")
def off_the_plate(root):
    """The bundle's middle stands some 20 mm below the axis on the plate: a star far below it is beyond 1 degree."""
    pa = float(element_at(root, "observation").get("pa", "0"))
    science, guide = target(root, "T"), target(root, "G")
    ra, dec = float(science.get("targra")), float(science.get("targdec"))
    guide.set("targra", f"{ra - 0.97 * night.sind(pa) / night.cosd(dec):.6f}")
    guide.set("targdec", f"{MARK}{dec - 0.97 * night.cosd(pa):.6f}")


@changed("VK506", "a guide star behind the telescope")
def behind(root):
    science, guide = target(root, "T"), target(root, "G")
    guide.set("targra", f"{MARK}{(float(science.get('targra')) + 180) % 360:.6f}")
    guide.set("targdec", f"{-float(science.get('targdec')):.6f}")


def pointing_of(root):
    """Right ascension and declination of the first field, and its hour angle in degrees."""
    hour_angle = conditions(root).get("ha", "%%%")
    return (float(field(root).get("RA_d")), float(field(root).get("Dec_d")),
            15 * float(hour_angle if hour_angle != "%%%" else missing()))


@changed("VK501", "an hour angle at which the field is too low")
def too_low(root):
    field(root).set("RA_d", MARK + field(root).get("RA_d"))
    conditions(root).set("ha", "9.0")


@changed("VK509", "an hour angle at which the field is low")
def rather_low(root):
    dec = pointing_of(root)[1]
    hours = next((h / 20 for h in range(240) if 27 < night.altitude(h * 0.75, dec) < 28), None) or missing()
    field(root).set("RA_d", MARK + field(root).get("RA_d"))
    conditions(root).set("ha", f"{hours:.2f}")


@changed("VK502", "a second field that never rises")
def second_never_rises(root):
    for one in field(root, 1):
        one.set("targdec", f"{MARK if one.get('targuse') == 'T' else ''}-70.000000")


@changed("VK501", "a second field that is down")
def second_is_down(root):
    science, guide = target(root, "T", 1), target(root, "G", 1)
    for one in science, guide:
        one.set("targra", f"{float(one.get('targra')) + 170:.6f}")
    science.set("targra", MARK + science.get("targra"))
    field(root, 1).attrib.pop("RA_d", None)
    field(root, 1).attrib.pop("Dec_d", None)


@changed("VK503", "a position angle that the rotator does not reach")
def beyond_rotator(root):
    _, dec, hour_angle = pointing_of(root)
    parallactic = night.parallactic_angle(hour_angle, dec)
    # The rotator would stand at 180 degrees, in the middle of where it cannot.
    element_at(root, "observation").set("pa", f"{MARK}{(180 + parallactic) % 360:.1f}")


@changed("VK507", "an epoch at which the Sun is up")
def sunlit(root):
    ra, _, hour_angle = pointing_of(root)
    epoch = float(conditions(root).get("epoch")) + 0.5
    assert night.sun_altitude(epoch, ra, hour_angle) > 0
    conditions(root).set("epoch", f"{MARK}{epoch:.4f}")


@changed("VK508", "an epoch at which the Moon is near")
def moonlit(root):
    ra, dec, hour_angle = pointing_of(root)
    first = float(conditions(root).get("epoch"))
    epoch = next((epoch for day in range(-14, 15) if night.separation(
        night.moon(epoch := first + day / 365.25), (ra, dec)) < 15), None) or missing()
    assert night.sun_altitude(epoch, ra, hour_angle) < -15
    conditions(root).set("epoch", f"{epoch:.4f}")
    field(root).set("RA_d", MARK + field(root).get("RA_d"))


@changed("VK310", "a proper motion without an epoch")
def moving(root):
    guide = target(root, "G")
    guide.attrib.pop("targepoch", None)
    guide.set("targpmra", "-12.5")
    guide.tag = f"{MARK}<target"


@changed("VK213", "a generated target")
def generated(root):
    ET.SubElement(field(root), "target", automatic=f"{MARK}1", targuse="R", targra=field(root)[0].get("targra"),
                  targdec=field(root)[0].get("targdec"))


@changed("VK321", "the window of hour angles")
def window(root):
    limits = element_at(root, "configure").find("hour_angle_limits")
    if limits is None:
        limits = ET.SubElement(element_at(root, "configure"), "hour_angle_limits")
    limits.set(f"{MARK}latest", "-2.0")


PARTS = (
    *(without("VK106", where, use) for where in ("field", "field 2") for use in "TG"),
    *(second_of(use, number) for use in "TG" for number in (0, 1)),
    repeated("VK109", "guide", "configid", "12"), repeated("VK209", "guide", "targname", "same"),
    repeated("VK210", "guide", "targid", "17"), repeated("VK210", "guide 2", "configid", "12"),
    no_configure, no_field, empty_group, second_conditions, second_configure, homeless_target, homeless_field,
    unknown_element, same_place, field_twice, off_the_plate, behind, too_low, rather_low, second_never_rises,
    second_is_down, beyond_rotator, sunlit, moonlit, moving, generated, window,
)

TREE_FAULTS = BAD_VALUES + BAD_NAMES + MISSING + PARTS
TEXT_FAULTS = tuple(malformed(*row) for row in MALFORMED)


def planted(fault, root, form):
    """The text of a document in a form, with a fault and MARK."""
    if fault in TEXT_FAULTS:
        text = fault.plant(document_text(root, form))
        return missing() if STRAY in text and form.encoding not in STRAY_BYTES else text
    tree = copy.deepcopy(root)
    fault.plant(tree)
    return document_text(tree, form)


def corpus():
    """Every fault in some of the documents that have a place for it, each in the next form."""
    valid = documents()
    names, forms = list(valid), itertools.cycle(FORMS)
    for number, fault in enumerate(TREE_FAULTS + TEXT_FAULTS):
        count = 0
        for document in names[number % len(names):] + names[:number % len(names)]:
            form = next(forms)
            try:
                text = planted(fault, valid[document], form)
            except NotHere:
                continue
            yield Case(f"{number:03d}_{document}.xml", fault, document, encoded(text, form), *marked_place(text, form))
            count += 1
            if count == DOCUMENTS_OF_A_FAULT:
                break
