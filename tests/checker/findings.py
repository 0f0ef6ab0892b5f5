"""What veko check and other validators find in a corpus of seeded faults, and what veko check mends."""
import collections
import json
import math
import pathlib
import re
import subprocess
import tempfile
import xml.etree.ElementTree as ET

from field_documents import FORMS, document_text, documents, encoded
from seeded_faults import corpus

ROOT = pathlib.Path(__file__).resolve().parents[2]
RESOURCES = ROOT / "pos" / "positioner" / "resources"
SCHEMA = ROOT / "schemas" / "field_definition.rng"

# A place in hours or in three parts, and back, keeps the last of six decimals of a degree, and no more.
LAST_DIGIT = 1.5e-6


class SeededFaults:
    """The corpus as files of a folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.cases = list(corpus())
        for case in self.cases:
            (self.folder / case.file).write_bytes(case.text)

    def problems(self, veko):
        """What the checker tells of each file."""
        printed = output_of([veko, "check", "--format", "json", *self.files()], self.folder)
        return {document["file"]: document["problems"] for document in json.loads(printed)["documents"]}

    def counts(self, found):
        """How many faults are told at all, on their line, and at their line and column.

        @param found for each file the lines and columns of what is told
        """
        places = [(case, found.get(case.file, ())) for case in self.cases]
        return (sum(bool(told) for _, told in places),
                sum(case.line in {line for line, _ in told} for case, told in places),
                sum((case.line, case.column) in told for case, told in places))

    def mendable(self):
        """The cases whose right text follows from the wrong one."""
        return [case for case in self.cases if case.fault.is_mendable]

    def not_mended(self, veko, veko_configure):
        """Those of them after whose mending a run does not give what it gives for the valid document."""
        configuration = few_fibres(self.folder)
        wanted = {}
        for name, root in documents().items():
            ET.ElementTree(root).write(self.folder / "valid.xml")
            wanted[name] = configured(veko_configure, self.folder / "valid.xml", configuration)
        output_of([veko, "check", "--fix", *(case.file for case in self.mendable())], self.folder)
        wrong = []
        for case in self.mendable():
            result = configured(veko_configure, self.folder / case.file, configuration)
            if result is None or not is_same_result(result, wanted[case.document]):
                wrong.append(case)
        return wrong

    def files(self):
        return [case.file for case in self.cases]


def places_of(case, problems):
    """Where problems of a fault's code are."""
    return {(problem["line"], problem["column"]) for problem in problems if problem["code"] == case.fault.code}


def output_of(command, folder):
    return subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False).stdout


def messages(command, files, folder):
    """Line and column of each message of a validator for each file; 0 for a column that it does not tell."""
    found = collections.defaultdict(set)
    while files:
        told = [re.match(r"(?:.*/)?([^/:]+\.xml):(\d+):(?:(\d+):)? (fatal)?", line)
                for line in output_of([*command, *files], folder).decode(errors="replace").splitlines()]
        for message in filter(None, told):
            found[message[1]].add((int(message[2]), int(message[3] or 0)))
        # One of the validators ends at the first file that is malformed.
        last = next((message[1] for message in filter(None, told) if message[4]), files[-1])
        files = files[files.index(last) + 1:]
    return found


def refused_by_validator(command):
    """The valid documents, in every form, that a validator has a message for."""
    with tempfile.TemporaryDirectory() as folder:
        files = []
        for name, root in documents().items():
            for number, form in enumerate(FORMS):
                files.append(f"{name}_{number}.xml")
                (pathlib.Path(folder) / files[-1]).write_bytes(encoded(document_text(root, form), form))
        return sorted(messages(command, files, folder))


def few_fibres(folder):
    """A configuration with the three fibres for which the documents ask or that they get: runs take less time."""
    bundle = (RESOURCES / "VEKO.xml").read_text()
    kept = [line for line in bundle.splitlines() if "<fibre " not in line or re.search('id="(1|193|304)"', line)]
    (folder / "bundle").write_text("\n".join(kept))
    configuration = (RESOURCES / "configure.xml").read_text().replace(":/VEKO.xml", "bundle")
    (folder / "configuration").write_text(configuration)
    return folder / "configuration"


def configured(veko_configure, document, configuration):
    """What a run makes of a document; None where it fails."""
    run = subprocess.run([veko_configure, "-i", document, "-o", "/dev/stdout", "-c", configuration],
                         capture_output=True, check=False)
    return ET.fromstring(text_of(run.stdout)) if run.returncode == 0 else None


def text_of(output):
    """A configured document as text. Python's parser does not know all encodings."""
    declared = re.match(rb"<\?xml[^>]*encoding='([^']*)'", output)
    return output.decode("utf-16" if output.startswith(b"\xff\xfe") else declared[1].decode() if declared else "utf-8")


def is_same_result(a, b):
    """Whether two elements are the same but for comments, blanks, and the last digit of numbers."""
    return (a.tag == b.tag and a.attrib.keys() == b.attrib.keys() and len(a) == len(b)
            and all(is_same_value(value, b.get(name)) for name, value in a.items())
            and (a.text or "").strip() == (b.text or "").strip()
            and all(is_same_result(*children) for children in zip(a, b)))


def is_same_value(a, b):
    try:
        return a == b or math.isclose(float(a), float(b), rel_tol=0, abs_tol=LAST_DIGIT)
    except ValueError:
        return False
