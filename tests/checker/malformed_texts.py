"""Faults that make the text of a document malformed, with MARK at the first character that cannot stand there."""
import re

from fault_kinds import Fault
from field_documents import MARK, STRAY, missing

# Patterns of a written document, and what stands instead. The place of an end tag that does not fit is its name; that
# of a text that ends too early is its end, or the "<" of what does not end.
MALFORMED = (
    ("an end tag with another name", r"</field>", rf"</{MARK}Field>"),
    ("an end tag of another element", r"</fields>", rf"</{MARK}observation>"),
    ("no end tag", r"</observation>", "", r"</(?=field_definition)", rf"</{MARK}"),
    ("an attribute twice", r"(\stargra\s*=\s*([\"']).*?\2)", rf"\1 {MARK}targra=\g<2>1\2"),
    ("an unknown entity", r"(targra\s*=\s*[\"'])", rf"\1{MARK}&nothing;"),
    ("an ampersand", r"(targdec\s*=\s*[\"'])", rf"\1A&{MARK} B"),
    ("a bracket in a value", r"(targra\s*=\s*[\"'])", rf"\1a{MARK}<b"),
    ("a bracket behind a value", r"(\stargra\s*=\s*([\"']).*?\2)", rf"\1 {MARK}<"),
    ("no equals sign", r"(\sepoch\s*)=(\s*)", rf"\1\2{MARK}"),
    ("no quotes", r"(\sepoch\s*=\s*)[\"']([^\"']*)[\"']", rf"\1{MARK}\2"),
    ("no closing quote", r"(<observation[^<>]*)[\"']>([^<]*)<", rf"\1>\2{MARK}<"),
    ("no blank between attributes", r"(\stargra\s*=\s*([\"']).*?\2)\s+(?=\w)", rf"\1{MARK}"),
    ("two hyphens in a comment", r"(<fields>)", rf"\1<!-- one --{MARK} two -->"),
    ("a control character", r"(targra\s*=\s*[\"'].)", f"\\1{MARK}\x01"),
    ("a reference to no character", r"(targra\s*=\s*[\"'])", rf"\1{MARK}&#0;"),
    ("text behind the document element", r"$(?![\r\n])", rf"{MARK}end"),
    ("a blank before the declaration", r"^", rf" {MARK}"),
    ("the end of a CDATA section", r"(<fields>)", rf"\1 ]]{MARK}>"),
    ("a name that begins with a digit", r"(<fields)", rf"\1 {MARK}2nd='1'"),
    ("a document that ends among its elements", r"(?s)(</fields>\s*).*$", rf"\1{MARK}"),
    ("a document that ends in a tag", r"(?s)<(fields)>.*$", rf"{MARK}<\1 "),
    ("a document that ends in a value", r"(?s)<(fields)>.*$", rf"{MARK}<\1 name='x"),
    ("a document that ends in a comment", r"(?s)<(fields)>.*$", rf"<\1>{MARK}<!-- x "),
    ("an encoding that is not known", r"(encoding\s*=\s*[\"'])[^\"']*", rf"\1{MARK}no-such-encoding"),
    ("another version of XML", r"(version\s*=\s*[\"'])1.0", rf"\1{MARK}1.1"),
    ("a byte that the encoding does not have", r"(targra\s*=\s*[\"'])", rf"\1{MARK}{STRAY}"),
    ("a reference to another file", r"<field_definition", rf"<!DOCTYPE field_definition [<!ENTITY x SYSTEM 'x'>]>\g<0>",
     r"<fields>", rf"\g<0>{MARK}&x;"),
    ("no document at all", r"(?s)^.*$", MARK),
)


def malformed(name, *changes):
    def break_text(text):
        if "DOCTYPE" in text and any("DOCTYPE" in change for change in changes):
            missing()
        for pattern, replacement in zip(changes[::2], changes[1::2]):
            text, count = re.subn(pattern, replacement, text, count=1)
            if count == 0:
                missing()
        return text
    return Fault("VK101", name, break_text)
