"""The messages of veko_configure and the mistakes that have none, from pos/positioner/resources/messages.xml."""
import collections
import re
import xml.etree.ElementTree as ET

from generated import ROOT

Group = collections.namedtuple("Group", "title intro messages")
Message = collections.namedtuple("Message", "texts meaning remedy")
Placeholder = collections.namedtuple("Placeholder", "pattern meaning")
Trap = collections.namedtuple("Trap", "title text")


def one_line(text):
    return " ".join((text or "").split())


class Catalogue:
    def __init__(self):
        root = ET.parse(ROOT / "pos" / "positioner" / "resources" / "messages.xml").getroot()
        self.placeholders = {node.get("name"): Placeholder(node.get("pattern"), one_line(node.text))
                             for node in root.iter("placeholder")}
        self.traps = [Trap(node.get("title"), one_line(node.text)) for node in root.iter("trap")]
        self.groups = [Group(node.get("title"), one_line(node.findtext("intro")),
                             [self.message(entry) for entry in node.iter("message")]) for node in root.iter("group")]
        texts = [text.text for text in root.iter("text")]
        for text in texts:
            if texts.count(text) > 1:
                raise SystemExit(f"messages.xml explains twice: {text}")

    def message(self, entry):
        message = Message(tuple(text.text for text in entry.iter("text")), one_line(entry.findtext("meaning")),
                          one_line(entry.findtext("remedy")))
        if not message.texts or not message.meaning:
            raise SystemExit(f"messages.xml has a message without text or meaning: {message}")
        for text in message.texts:
            unknown = set(re.findall(r"\{(\w+)\}", text)) - set(self.placeholders)
            if unknown:
                raise SystemExit(f"messages.xml does not explain {', '.join(unknown)} of {text!r}")
        return message

    def texts(self):
        """The message that explains each text."""
        return {text: message for group in self.groups for message in group.messages for text in message.texts}

    def matcher(self, text):
        """A regular expression for the whole of a printed message."""
        parts = re.split(r"\{(\w+)\}", text)
        parts[::2] = map(re.escape, parts[::2])
        parts[1::2] = (self.placeholders[name].pattern for name in parts[1::2])
        return re.compile("".join(parts) + r"\n?")
