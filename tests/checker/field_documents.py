"""Valid field definitions as trees, and the many forms in which the same tree can be written.

Where a text of a tree has MARK in it, marked_place says where the character behind it stands.
"""
import dataclasses
import pathlib
import re
import xml.etree.ElementTree as ET
from xml.sax.saxutils import escape

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"

# Private characters, which no document has: see marked_place, and a place for bytes that an encoding does not have.
MARK = "\ue000"
STRAY = "\ue001"

class NotHere(Exception):
    """A document has no place for a fault, or a value no other form."""


def missing():
    raise NotHere


# Every attribute that a run reads, groups, masks and three fields; the places have short sexagesimal forms.
EVERY_ATTRIBUTE = """<field_definition datamver="8.00">
<observation name="Three &lt;fields&gt; &amp; more" pa="15.5">
<configure>
<conditions epoch="2027.30" temperature="281.5" pressure="770" relative_humidity="0.25" tlr="0.0065" ha="-2.0"/>
</configure>
<fields>
<field name="one" RA_d="187.500000" Dec_d="12.500000">
<target targname="A &amp; B" targsrvy="EXAMPLE" targuse="T" targprio="9.0" targra="187.500000" targdec="12.500000"
 targepoch="2000.0" targpmra="-12.5" targpmdec="8.0" targparal="0.0032" targrv="-120.5" fibreid="193" configid="7"
 automatic="0" cname="J1230" targcat="CAT" targclass="GALAXY" targprog="P1" targid="id 1">
<photometry band="r"><mag value="9.46"/></photometry></target>
<target targname="guide one" targsrvy="EXAMPLE" targuse="G" targra="187.625000" targdec="12.375000" targepoch="2016.0"
 targpmra="25.5" targpmdec="-14.0" targparal="0.0125" targrv="12.25" targid="id 2" configid="8"/>
<group name="calibration">
<target targname="white dwarf" targuse="C" targra="187.375000" targdec="12.600000" targepoch="2016.0" configid="700"/>
<group name="spare"><target targname="spare" targuse="R" targra="187.250000" targdec="12.250000"/></group>
</group>
<target targname="other star" targuse="E" targra="187.400000" targdec="12.400000" targcat="CAT" targid="id 3"/>
<avoidance_list>
<mask RA_d="187.450000" Dec_d="12.450000" radius="12.5"/>
<mask RA_d="187.550000" Dec_d="12.550000"/>
</avoidance_list>
</field>
<field name="two" RA_d="188.250000" Dec_d="12.750000">
<target targname="second" targsrvy="EXAMPLE" targuse="T" targra="188.250000" targdec="12.750000" targepoch="2015.5"/>
<target targname="guide two" targuse="G" targra="188.125000" targdec="12.875000" targepoch="2016.0" configid="9"/>
</field>
<field name="three">
<target targname="third" targsrvy="EXAMPLE" targuse="T" targra="189.000000" targdec="13.000000" fibreid="%%%"/>
<target targname="guide three" targuse="G" targra="189.125000" targdec="13.125000" targepoch="2000.0"/>
</field>
</fields>
</observation>
</field_definition>
"""

# As little as a run needs.
LITTLE = """<field_definition datamver="8.00">
<observation>
<configure><conditions epoch="2027.25" ha="-1.0"/></configure>
<fields>
<field RA_d="190.000000" Dec_d="-11.500000">
<target targuse="G" targra="190.125000" targdec="-11.375000"/>
<target targuse="T" targra="190.000000" targdec="-11.500000"/>
</field>
</fields>
</observation>
</field_definition>
"""


def documents():
    """The valid documents by name: the examples and those above, with a text in each science target."""
    found = {path.stem: ET.parse(path).getroot() for path in sorted(EXAMPLES.glob("*.xml"))}
    found.update(every_attribute=ET.fromstring(EVERY_ATTRIBUTE), little=ET.fromstring(LITTLE))
    for root in found.values():
        for science in root.iterfind(".//target[@targuse='T']"):
            photometry = science.find("photometry")
            if photometry is None:
                photometry = ET.SubElement(science, "photometry", band="g")
            photometry.text = 'fainter than 9 & <target targra="1.5">'
    return found


@dataclasses.dataclass(frozen=True)
class Form:
    """How a document is written."""
    encoding: str
    declared: str = ""        # the name in the declaration; empty for none
    byte_order_mark: bytes = b""
    line_end: str = "\n"
    quote: str = '"'
    between: str = " "        # before each attribute
    equals: str = "="
    note: str = ""            # a comment in front of each element, on its line
    has_cdata: bool = False
    has_entity: bool = False  # for the survey's name
    has_references: bool = False  # for the first character of each value


FORMS = (
    Form("utf-8", "UTF-8"),
    Form("utf-8", "UTF-8", b"\xef\xbb\xbf", "\r\n", "'", "\n\t", note="gr\u00f6\u00dfer \U0001f600"),
    Form("utf-16-le", "UTF-16", b"\xff\xfe", note="\U0001d6fc and \U0001f52d", has_cdata=True),
    Form("iso-8859-1", "ISO-8859-1", line_end="\r\n", between="\n    ", note="\u00e9t\u00e9", has_entity=True),
    Form("utf-8", line_end="\r", quote="'", note="e\u0301 \u65e5\u672c\n\U0001f30c"),
    Form("cp1252", "windows-1252", equals=" = ", note="\u20ac\u2026", has_references=True),
    Form("utf-16-be", "UTF-16", b"\xfe\xff", "\r\n", between="\n\t\t", note="\U0001f600\u00e9", has_entity=True),
    Form("gb18030", "GB18030", quote="'", note="\u65e5\u672c\U0001f600", has_cdata=True),
    Form("shift_jis", "Shift_JIS", line_end="\r\n", between="\r\n ", note="\u65e5\u672c"),
    Form("iso-8859-15", "ISO-8859-15", line_end="\r", between="\t", note="\u20ac\u0160", has_entity=True),
    Form("koi8-r", "KOI8-R", quote="'", note="\u0437\u0432\u0435\u0437\u0434\u0430\n", has_references=True),
    Form("ascii", "US-ASCII", between="\n", note="\u00e9 as &#233;", has_references=True, has_cdata=True),
    Form("euc-jp", "EUC-JP", note="\u65e5\u672c\n\u672c", quote="'"),
    Form("utf-16-le", "UTF-16LE", equals="\n=\t", note="\U0001f600\t\u00e9", has_cdata=True, has_entity=True),
    Form("big5", "Big5", line_end="\r\n", equals=" =", note="\u65e5\u672c", has_cdata=True),
)
STRAY_BYTES = {"utf-8": b"\x81", "ascii": b"\xe9", "shift_jis": b"\xff", "big5": b"\xff",
               "gb18030": b"\xff"}

SURVEY = "EXAMPLE"


def attribute_text(name, value, form):
    text = escape(value, {form.quote: "&quot;" if form.quote == '"' else "&apos;"})
    if form.has_entity and value == SURVEY:
        text = "&survey;"
    elif form.has_references:
        text = re.sub(f"^({MARK}?)([\\w+-])", lambda first: f"{first[1]}&#x{ord(first[2]):X};", text)
    return f"{form.between}{name}{form.equals}{form.quote}{text}{form.quote}"


def content_text(text, form):
    return f"<![CDATA[{text}]]>" if form.has_cdata else escape(text)


def element_text(element, form):
    """An element on a line of its own. A tag may have MARK before its name, or MARK and "<"."""
    tag = element.tag if "<" in element.tag else "<" + element.tag
    start = tag + "".join(attribute_text(name, value, form) for name, value in element.items())
    comment = f"<!--{form.note}-->" if form.note else ""
    text = content_text(element.text, form) if (element.text or "").strip() else ""
    if not text and len(element) == 0:
        return f"\n{comment}{start}/>"
    children = "".join(element_text(child, form) for child in element)
    return f"\n{comment}{start}>{text}{children}\n</{re.sub(f'[<{MARK}]', '', element.tag)}>"


def document_text(root, form):
    """A document as text, MARK included, that is still to be encoded."""
    declaration = f"<?xml version={form.quote}1.0{form.quote}"
    if form.declared:
        declaration += f" encoding={form.quote}{form.declared}{form.quote}"
    entities = f"\n<!DOCTYPE field_definition [<!ENTITY survey '{SURVEY}'>]>" if form.has_entity else ""
    text = f"{declaration}?>{entities}{element_text(root, form)}\n"
    return re.sub("\r\n|\r|\n", form.line_end, text)


def encoded(text, form):
    """The bytes of a document; characters that the encoding lacks become references."""
    parts = [part.encode(form.encoding, "xmlcharrefreplace") for part in text.replace(MARK, "").split(STRAY)]
    return form.byte_order_mark + STRAY_BYTES.get(form.encoding, b"").join(parts)


def marked_place(text, form):
    """Line and column of the character behind MARK, from 1, as a reader of the encoded document sees it."""
    before = text[:text.index(MARK)].encode(form.encoding, "xmlcharrefreplace").decode(form.encoding)
    lines = re.split("\r\n|\r|\n", before)
    return len(lines), len(lines[-1]) + 1
