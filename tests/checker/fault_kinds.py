"""Kinds of faults: each changes the tree of a valid document, and puts MARK where the problem belongs."""
import copy
import dataclasses
from typing import Callable

from field_documents import MARK, missing


@dataclasses.dataclass(frozen=True)
class Fault:
    code: str
    name: str
    plant: Callable            # changes a tree; a text where it is malformed
    is_mendable: bool = False  # the right text follows from the wrong one


# Elements of a tree, found by the names that "where" has below.

def conditions(root):
    return root.find("observation/configure/conditions")


def field(root, number=0):
    fields = root.findall("observation/fields/field")
    return fields[number] if number < len(fields) else missing()


def target(root, use, number=0):
    found = [one for one in field(root, number) if one.get("targuse") == use]
    return found[0] if found else missing()


WHERE = {
    "document": lambda root: root,
    "observation": lambda root: root.find("observation"),
    "configure": lambda root: root.find("observation/configure"),
    "conditions": conditions,
    "fields": lambda root: root.find("observation/fields"),
    "field": field,
    "field 2": lambda root: field(root, 1),
    "science": lambda root: target(root, "T"),
    "guide": lambda root: target(root, "G"),
    "science 2": lambda root: target(root, "T", 1),
    "guide 2": lambda root: target(root, "G", 1),
    "grouped": lambda root: root.find(".//group/target"),
    "mask": lambda root: root.find(".//mask"),
}


def element_at(root, where):
    element = WHERE[where](root)
    return element if element is not None else missing()


# Kinds of change. Each gives a fault.

def bad(code, where, attribute, wrong, is_mendable=False):
    """A bad value, or a function that makes it of the right one."""
    def plant(root):
        element = element_at(root, where)
        if not callable(wrong):
            element.set(attribute, MARK + wrong)
        elif element.get(attribute, "%%%") != "%%%":
            element.set(attribute, MARK + wrong(element.get(attribute)))
        else:
            missing()
    label = wrong if isinstance(wrong, str) else wrong.__name__
    return Fault(code, f"{attribute} of {where} as {label}", plant, is_mendable)


def misnamed(code, where, attribute, wrong):
    def plant(root):
        element = element_at(root, where)
        if attribute not in element.attrib:
            missing()
        attributes = [(MARK + wrong if name == attribute else name, value) for name, value in element.items()]
        element.attrib.clear()
        element.attrib.update(attributes)
    return Fault(code, f"{wrong} of {where}", plant, is_mendable=True)


def misnamed_element(code, where, wrong):
    def plant(root):
        element_at(root, where).tag = MARK + wrong
    return Fault(code, f"{wrong} instead of {where}", plant, is_mendable=True)


def lacking(code, where, *attributes):
    def plant(root):
        element = element_at(root, where)
        if any(element.get(attribute, "%%%") == "%%%" for attribute in attributes):
            missing()
        for attribute in attributes:
            del element.attrib[attribute]
        element.tag = f"{MARK}<{element.tag}"
    return Fault(code, f"{where} without {' and '.join(attributes)}", plant)


def extra(code, where, name, value="1"):
    """An attribute that does not belong there."""
    def plant(root):
        element_at(root, where).set(MARK + name, value)
    return Fault(code, f"{name} on {where}", plant)


def changed(code, name):
    """Makes a fault of a function that changes a tree."""
    return lambda plant: Fault(code, name, plant)


def without(code, where, use):
    """A field whose target of a use is gone."""
    def plant(root):
        element = element_at(root, where)
        element.remove(next(one for one in element if one.get("targuse") == use))
        element.tag = f"{MARK}<field"
    return Fault(code, f"{where} without {use}", plant)


def second_of(use, number):
    """A second target of a use, behind both: the first counts."""
    def plant(root):
        again = copy.deepcopy(target(root, use, number))
        again.set("targuse", MARK + use)
        again.set("targra", f"{float(again.get('targra')) + 0.2:.6f}")
        for name in ("targname", "targid", "configid"):
            again.attrib.pop(name, None)
        field(root, number).append(again)
    return Fault("VK206", f"a second {use} in field {number + 1}", plant)


def repeated(code, where, attribute, value):
    """A target with the id or the name of the science target."""
    def plant(root):
        one = target(root, "T", 1 if where.endswith("2") else 0)
        other = element_at(root, where)
        elements = list(root.iter("target"))
        first, second = sorted((one, other), key=elements.index)
        first.set(attribute, value)
        second.set(attribute, MARK + value)
        if attribute == "targid":
            first.set("targcat", "CAT")
            second.set("targcat", "CAT")
    return Fault(code, f"{attribute} of {where} twice", plant)
