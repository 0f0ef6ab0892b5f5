"""Documents made to fill the memory or to take for ever, of any size.

Each is a class of costs: what a reader or writer of documents may do once for every pair of things, again for every
piece that it reads, or as often as entities say.
"""

import itertools
import pathlib
from typing import Callable, NamedTuple


class Attack(NamedTuple):
    """A document, and what the run says of it: the reason behind the file's name, or the whole message."""

    name: str
    refusal: str
    text: Callable[[int], str]  #: of about so many bytes


MALFORMED = "is not valid XML"
LOADED = "Configure element not found"  # it was read to its end
NODES = "elements, attributes and other nodes"
ATTRIBUTES = "has more than 256 attributes in one tag"
DEEP = "is nested more than 256 levels deep"
ENTITIES = "has entities that make it larger than 8 MiB and than twice its size"
MANY_ENTITIES = "declares more than 256 entities"
DECLARATIONS = "declares more than 64 KiB in its document type"
UNKNOWN_ENTITY = "refers to an entity that cannot be known without reading another file"


def document(content: str, declarations: str = "") -> str:
    """Of the data model version of the embedded configuration."""
    doctype = f"<!DOCTYPE f [{declarations}]>" if declarations else ""
    return f'{doctype}<f datamver="8.00">{content}</f>'


def filled(size: int, one: str) -> str:
    return one * (size // len(one))


def numbered(size: int, one: str) -> str:
    """A text many times over, with a number of seven digits in place of each of its "#"."""
    length = len(one) + 6 * one.count("#")
    return "".join(one.replace("#", f"{i:07}") for i in range(size // length))


def nested_entities(innermost: str, levels: int = 9) -> str:
    """Entities of which each stands ten times for the one before."""
    entities = [innermost] + [f"&e{level};" * 10 for level in range(levels)]
    return "".join(f"<!ENTITY e{level} '{text}'>" for level, text in enumerate(entities))


def colliding_names(count: int, blocks: int = 10) -> list[str]:
    """Names that the XML library's hash cannot tell apart."""
    return ["".join(name) for name in itertools.islice(itertools.product(("ao", "bP", "c1"), repeat=blocks), count)]


def tags(size: int, names: list[str]) -> str:
    return filled(size, "<a" + "".join(f" {name}=''" for name in names) + "/>")


# The hash of the standard library: MurmurHash64A, whose mixing has an inverse.
MULTIPLIER, WORD, SEED = 0xC6A4A7935BD1E995, 2**64 - 1, 0xC70F6907
INVERSE = pow(MULTIPLIER, -1, 2**64)


def shift_mix(value: int) -> int:
    return value ^ (value >> 47)


def colliding_values(size: int) -> str:
    """Elements whose values of 16 characters, 300 different ones, have one hash in the standard library."""
    values = []
    for first in itertools.count(1):
        if len(values) == 300:
            return filled(size, "".join(values))
        begin = f"{first:08}".encode()
        mixed = (shift_mix(int.from_bytes(begin, "little") * MULTIPLIER & WORD) * MULTIPLIER) & WORD
        state = ((SEED ^ (16 * MULTIPLIER & WORD)) ^ mixed) * MULTIPLIER & WORD
        # The second word that makes the state after both of them 0.
        second = state * INVERSE & WORD
        second = (shift_mix(second) * INVERSE) & WORD
        end = second.to_bytes(8, "little")
        if all(0x20 <= byte < 0x7F and byte not in b"<&'" for byte in end):
            values.append(f"<a b='{begin.decode()}{end.decode()}'/>")


ATTACKS = [
    # Entities.
    Attack("entities nested in text", ENTITIES, lambda n: document("&e9;" + filled(n, "x"), nested_entities("x"))),
    Attack("entities nested in an attribute", ENTITIES,
           lambda n: document("<a b='&e9;'/>" + filled(n, "x"), nested_entities("x"))),
    Attack("entities behind padding", ENTITIES,
           lambda n: document(filled(n, "<!--" + "x" * 9_993 + "-->") + "<a b='&e9;'/>", nested_entities("x" * 1000))),
    Attack("entities before padding", ENTITIES,
           lambda n: document("<a b='&e9;'/>" + filled(n, "x"), nested_entities("x" * 1000))),
    Attack("entities of elements, nested", NODES, lambda n: document("&e9;" + filled(n, "x"), nested_entities("<a/>"))),
    Attack("entity used for itself", MALFORMED,
           lambda n: document(filled(n, "x") + "&e;", "<!ENTITY e '&f;'><!ENTITY f '&e;'>")),
    Attack("empty entity used often", LOADED, lambda n: document(filled(n, "&e;"), "<!ENTITY e ''>")),
    Attack("entity used often", LOADED, lambda n: document(filled(n, "&e;"), "<!ENTITY e 'xyz'>")),
    Attack("entity used often in attributes", LOADED,
           lambda n: document(filled(n, "<a b='" + "&e;" * 10_000 + "'/>"), "<!ENTITY e 'xyz'>")),
    Attack("entity that opens what it does not close", MALFORMED,
           lambda n: document(filled(n, "x") + "&e;</a>", "<!ENTITY e '<a>'>")),
    # Document types.
    Attack("parameter entity used often", LOADED,
           lambda n: document("", "<!ENTITY % p ''>" + filled(n, "%p;"))),
    Attack("parameter entity that declares", DECLARATIONS,
           lambda n: document("", "<!ENTITY % p '<!ENTITY e SYSTEM \"x\">'>" + filled(n, "%p;"))),
    Attack("parameter entities nested", DECLARATIONS,
           lambda n: document("", "<!ENTITY % p '<!ELEMENT e ANY>'><!ENTITY % q '" + "&#37;p;" * 500 + "'>"
                              + filled(n, "%q;"))),
    Attack("declared attributes", DECLARATIONS,
           lambda n: document("", "<!ATTLIST f" + numbered(n, " a# CDATA ''") + ">")),
    Attack("declared attributes behind padding", DECLARATIONS,
           lambda n: filled(n, "<!--" + "x" * 993 + "-->") + document("", "<!ENTITY % p '<!ATTLIST f"
                                                      + numbered(30_000, " a# CDATA \"\"") + ">'>" + "%p;" * 1000)),
    Attack("default attributes", LOADED,
           lambda n: document(filled(n, "<a23456789012/>"),
                              "<!ATTLIST a23456789012" + numbered(20_000, " a# CDATA 'v'") + ">")),
    Attack("many entities", MANY_ENTITIES, lambda n: document("", numbered(n, "<!ENTITY e# 'x'>"))),
    Attack("one entity declared often", DECLARATIONS, lambda n: document("", filled(n, "<!ENTITY e ''>"))),
    Attack("many notations", DECLARATIONS, lambda n: document("", numbered(n, "<!NOTATION n# SYSTEM 'x'>"))),
    Attack("content model nested", DECLARATIONS,
           lambda n: document("", "<!ELEMENT e " + "(" * (n // 2) + "a" + ")" * (n // 2) + ">")),
    Attack("long document type", LOADED, lambda n: document("", "<!--" + "x" * n + "-->")),
    Attack("attributes beside an external document type", ATTRIBUTES,
           lambda n: "<!DOCTYPE f SYSTEM 'x'><f" + numbered(n, " a#=''") + "/>"),
    Attack("many attributes beside an external document type", LOADED,
           lambda n: "<!DOCTYPE f SYSTEM 'x'>" + document(filled(n, "<a b='" + "x" * 90 + "'/>"))),
    Attack("references beside an external document type", UNKNOWN_ENTITY,
           lambda n: "<!DOCTYPE f SYSTEM 'x'>" + document(filled(n, "<a b='" + "x" * 90 + "'/>") + "<a b='&e;'/>")),
    # What collides, and what is long.
    Attack("values that collide", NODES, lambda n: document(colliding_values(max(n, 4_200_000)))),
    Attack("names of attributes that collide", LOADED, lambda n: document(tags(n, colliding_names(256)))),
    Attack("many names of attributes that collide", ATTRIBUTES,
           lambda n: document(tags(n, colliding_names(min(n // 24, 59_000))))),
    Attack("as many attributes as a tag may have", LOADED,
           lambda n: document(tags(n, [f"attribute_{i:03}" for i in range(256)]))),
    Attack("a million attributes", ATTRIBUTES, lambda n: "<f" + numbered(n, " a#=''") + "/>"),
    Attack("one attribute often", MALFORMED, lambda n: "<f" + filled(n, " a=''") + "/>"),
    Attack("names of elements", LOADED, lambda n: document(numbered(n, "<element#/>"))),
    Attack("long name", LOADED, lambda n: document(f"<{'x' * n}/>")),
    Attack("long names", LOADED, lambda n: document("".join(f"<{'x' * 1000}{i}/>" for i in range(n // 1004)))),
    Attack("long attribute", LOADED, lambda n: document(f"<a b='{'x' * n}'/>")),
    Attack("long comment", LOADED, lambda n: document(f"<!--{'x' * n}-->")),
    Attack("lines", LOADED, lambda n: document(filled(n, "x\n"))),
    Attack("references", LOADED, lambda n: document(filled(n, "&lt;&#65;"))),
    Attack("references in an attribute", LOADED, lambda n: document("<a b='" + filled(n, "&quot;") + "'/>")),
    Attack("blanks", LOADED, lambda n: document(filled(n, " "))),
    # Nodes and levels.
    Attack("levels", DEEP, lambda n: filled(n, "<a>")),
    Attack("ends", MALFORMED, lambda n: "<a>" + filled(n, "</a>")),
    Attack("siblings", NODES, lambda n: document(filled(max(n, 2_100_000), "<a/>"))),
    Attack("siblings, as many as fit", LOADED, lambda n: document(filled(n, "<abcdefghijkl/>"))),
    Attack("elements with an attribute", NODES, lambda n: document(filled(max(n, 1_600_000), "<a b=''/>"))),
    Attack("texts", NODES, lambda n: document(filled(max(n, 1_300_000), "x<a/>"))),
    Attack("CDATA sections", NODES, lambda n: document(filled(max(n, 6_600_000), "<![CDATA[]]>"))),
    Attack("comments", NODES, lambda n: document(filled(max(n, 3_600_000), "<!---->"))),
    Attack("instructions", NODES, lambda n: document(filled(max(n, 2_600_000), "<?a?>"))),
    # What never ends.
    Attack("tag that never ends", MALFORMED, lambda n: "<" + "a" * n),
    Attack("attribute that never ends", MALFORMED, lambda n: "<a b='" + "x" * n),
    Attack("comment that never ends", MALFORMED, lambda n: "<!--" + filled(n, "- ")),
    Attack("CDATA section that never ends", MALFORMED, lambda n: "<a><![CDATA[" + filled(n, "]>")),
    Attack("instruction that never ends", MALFORMED, lambda n: "<?a " + "?" * n),
    Attack("document type that never ends", MALFORMED, lambda n: "<!DOCTYPE f [" + filled(n, "<!-- x")),
    Attack("less-thans", MALFORMED, lambda n: "<" * n),
    Attack("ampersands", MALFORMED, lambda n: "<a>" + "&" * n),
    Attack("NULs", MALFORMED, lambda n: "\0" * n),
]

EXAMPLE = (pathlib.Path(__file__).resolve().parents[2] / "examples" / "sombrero_south.xml").read_text()
CONFIGURED = ""  # no message at all


def in_field(content: str) -> str:
    """The example with more at the beginning of its field."""
    begin = 'Dec_d="-11.623054">'
    return EXAMPLE.replace(begin, begin + content, 1)


TARGET = '<target targname="one of the rest" targuse="R" targra="190.123456" targdec="-11.654321"/>'
MASK = '<mask RA_d="190.123456" Dec_d="-11.654321" name="a star that is bright"/>'

GROWTHS = [
    Attack("elements in a field", CONFIGURED,
           lambda n: in_field(filled(n, "<a b='0123456789abcdefghijklmnopqrstuvwxyz'/>"))),
    Attack("instructions before text", CONFIGURED, lambda n: in_field(filled(n, "<?x?>yyyyyyyyyyyyyyyyyyyyyyy"))),
    Attack("targets", CONFIGURED, lambda n: in_field(filled(n, TARGET))),
    Attack("groups of a target", CONFIGURED, lambda n: in_field(filled(n, f"<group>{TARGET}</group>"))),
    Attack("masks", CONFIGURED, lambda n: in_field(f"<avoidance_list>{filled(n, MASK)}</avoidance_list>")),
    Attack("observations that are none", CONFIGURED,
           lambda n: in_field(filled(n, "<observation name='none of that name'><a/></observation>"))),
]
