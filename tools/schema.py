"""What a schema of schemas/ says of the elements and attributes of a document."""
import xml.etree.ElementTree as ET

from generated import ROOT

RNG = "{http://relaxng.org/ns/structure/1.0}"
DOCUMENTATION = "{http://relaxng.org/ns/compatibility/annotations/1.0}documentation"
REFERENCE = "{urn:veko_configure:reference}"
FACTS = ("unit", "default", "range", "run")
OPTIONAL = (RNG + "optional", RNG + "zeroOrMore", RNG + "choice")
FORMS = {"oneDecimal": "1 decimal", "twoDecimals": "2 decimals", "threeDecimals": "3 decimals",
         "fourDecimals": "4 decimals", "fiveDecimals": "5 decimals", "sixDecimals": "6 decimals",
         "number": "a number", "empty": "empty", "fourDecimalsOrNan": "4 decimals or nan",
         "bundleFibre": "1 to 603"}


class Element:
    """All that a schema says of the elements of one name."""

    def __init__(self, name):
        self.name = name
        self.text = ""
        self.facts = None     # of the value that stands in the element
        self.parents = []
        self.attributes = {}  # name: (facts, text), None until documented


def documentation(node):
    text = node.findtext(DOCUMENTATION)
    return " ".join(text.split()) if text else ""


def facts_of(node):
    facts = {fact: node.get(REFERENCE + fact) for fact in FACTS}
    given = [fact for fact in FACTS if facts[fact] is not None]
    if given and len(given) != len(FACTS):
        raise SystemExit(f"{node.get('name')} lacks one of {', '.join(FACTS)}")
    return facts if given else None


class Schema:
    def __init__(self, name):
        self.defines = {}
        self.start = None
        self.load(ROOT / "schemas" / name)
        self.elements = {}
        self.variants = []  # (element, title, {attribute that is always there: form})
        self.active = []
        self.walk(self.start, None, False, None)

    def load(self, path):
        for child in ET.parse(path).getroot():
            if child.tag == RNG + "include":
                self.load(path.parent / child.get("href"))
                for override in child.iter(RNG + "define"):
                    self.defines[override.get("name")] = override
            elif child.tag == RNG + "define":
                self.defines[child.get("name")] = child
            elif child.tag == RNG + "start":
                self.start = child

    def walk(self, node, element, optional, always):
        """Collects what stands in a pattern. always: the attributes that the element at hand must have"""
        if node.tag == RNG + "ref":
            name = node.get("name")
            if self.active.count(name) < 2:  # a group may stand in a group
                self.active.append(name)
                self.walk(self.defines[name], element, optional, always)
                self.active.pop()
            return
        if node.tag == RNG + "attribute":
            self.add_attribute(node, element, optional, always)
            return
        if node.tag == RNG + "element":
            element, always = self.add_element(node, element)
            optional = False
            if element is None:
                return
        for child in node:
            if child.tag.startswith(RNG):
                self.walk(child, element, optional or node.tag in OPTIONAL, always)

    def add_element(self, node, parent):
        name = node.get("name") or node.get(REFERENCE + "title")
        if name is None:
            return None, None  # any element
        element = self.elements.setdefault(name, Element(name))
        element.text = element.text or documentation(node)
        element.facts = element.facts or facts_of(node)
        if parent is not None and parent.name not in element.parents:
            element.parents.append(parent.name)
        always = {}
        title = node.get(REFERENCE + "title") or name
        if (name, title) not in [(known, kind) for known, kind, _ in self.variants]:
            self.variants.append((name, title, always))
        return element, always

    def add_attribute(self, node, element, optional, always):
        name = node.get("name")
        if name is None:
            return  # any attribute
        text, facts = documentation(node), facts_of(node)
        if element.attributes.get(name) is None:
            element.attributes[name] = (facts, text) if text and facts else None
        if not optional:
            always[name] = form(node)


def form(attribute):
    values = [value.text or "" for value in attribute.iter(RNG + "value")]
    references = [FORMS[ref.get("name")] for ref in attribute.iter(RNG + "ref") if ref.get("name") in FORMS]
    if values:
        return " or ".join(value or "empty" for value in values)
    if references:
        return references[0]
    data = attribute.find(RNG + "data")
    if data is None:
        return "a text" if attribute.find(RNG + "ref") is None else ""
    return {"int": "a whole number", "double": "a number", "string": "a text"}[data.get("type")]
