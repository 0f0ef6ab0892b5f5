"""Makes the program print its messages and holds each to the catalogue of messages.

    check_printed.py PROGRAM

Every run must end with status 1, write no output, and print what exactly one message of the catalogue matches. Every
message must come up, but for those of NOT_PROVOKED.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

from pages import ROOT, finish
from message_catalogue import Catalogue
from schema import Schema

NOT_PROVOKED = {
    # Needs a disk that fails twice; tests/runs/EverySystemCallTest.cpp does that.
    "File write error: Unable to write output file {file}: {reason}; its old contents could not be put back",
    # Needs a disk that fails at the last moment; tests/runs/InjectedFaultsTest.cpp does that.
    "File write error: Unable to write output file {file}: {reason}; the new file stands under its name, but it is not "
    "certain that it survives a power cut",
    # Need much memory and time, or none; tests/robustness/ManyFieldsTest.cpp and tests/runs/MemoryLimitTest.cpp.
    "The output would be larger than 256 MiB",
    # Needs a document that is nested as deep as can be; tests/unit/xmlSerialiseTest.cpp.
    "The output would be nested more than 256 levels deep",
    "There is not enough memory to configure the field definition",
    # The loader's, before the program begins.
    "{file}: error while loading shared libraries: {reason}",
    # No epoch has exactly this date; tests/runs/EpochAndHourAngleTest.cpp.
    "No epoch specified",
    # The program never meets these two; tests/unit/PosConfigTest.cpp does.
    "VANTE_POS_CONFIG environment variable not set",
    "data model version mismatch",
}

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
RESOURCES = ROOT / "pos" / "positioner" / "resources"
FIELD = (ROOT / "examples" / "sombrero_south.xml").read_text()
CONFIGURATION = (RESOURCES / "configure.xml").read_text().replace(":/VEKO.xml", "bundle.xml").replace(
    ":/focal_plane_map.xml", "map.xml")
MAP = (RESOURCES / "focal_plane_map.xml").read_text()
BUNDLE = """<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00">
 <fibre id="304" pos_x="0" pos_y="-20" fibre_name="C14"/>
</plate_definition>"""

MASK = '<avoidance_list><mask radius="1" RA_d="1.00000" Dec_d="1.00000"/></avoidance_list></field>'
MASKED = FIELD.replace("</field>", MASK)
SCIENCE, GUIDE_RA = 'targuse="T"', 'targra="190.120000"'

# Arguments behind "-i in.xml -o out.xml".
ARGUMENTS = [["extra"], ["--%value%"], ["--bogus"], ["--h", "1"], ["-i", "in.xml"], ["--help=1"], ["--ha"], ["--ha="],
             ["--ha", "nan"], ["--epoch", "soon"], ["-c", "missing.xml"], ["--horizon_limit", "80"], ["--ha", "6"],
             ["--ha", "1e300"]]
# Changes of the field definition: what stands there, what takes its place.
FIELD_CHANGES = [
    ("<field_definition", "<"), ('datamver="8.00"', 'datamver="7.00"'), ("configure>", "other>"),
    ('pa="0"', 'pa="170"'), (SCIENCE, ""), (SCIENCE, 'targuse="S"'), ('targuse="G"', ""),
    (SCIENCE, SCIENCE + ' fibreid="604"'), ('targname=', 'configid="7" targname='), (' targra="189.997633"', ""),
    (' targdec="-11.623054"', ""), (SCIENCE, SCIENCE + ' targprio="-1"'), (GUIDE_RA, 'targra="10.120000"'),
    (SCIENCE, SCIENCE + ' targpmra="nan"'), (SCIENCE, SCIENCE + "".join(f" a{i}=''" for i in range(245))),
]
# Positions, each with too few decimals, and as no plain number.
POSITIONS = [(element, attribute, value) for value in ("1.0", "nan")
             for element, attributes in (("target", ("targra", "targdec")), ("field", ("RA_d", "Dec_d")),
                                         ("mask", ("RA_d", "Dec_d"))) for attribute in attributes]
CONFIGURATION_CHANGES = [
    ("<latitude>28.760583</latitude>", ""), (">28.760583<", ">north<"), ("</configure>", ""), (' datamver="8.00"', ""),
    ("3.3.5<", "3.3.4<"), ("map.xml", "missing.xml"), ("bundle.xml", "missing.xml"),
    ("<default_epoch>", "<a>" * 1001 + "<default_epoch>"), ("<default_epoch>", "\n" * 1024 ** 2 + "<default_epoch>"),
]
MAP_CHANGES = [('focal_length="11724.24"', ""), ('c3="3.0191"', 'c3="x"'), ('<PLATE_B x0="0.0"', '<PLATE_B x0="x"'),
               ('r0="0.0"', 'r0="x"'), ('c1="202.841"', 'c1="nan"'), ('x0="0.0"', 'x0="nan"'),
               ('datamver="8.00"', ""), ("</focal_plane_map>", ""),
               ("<focal_plane_map", "<!DOCTYPE a SYSTEM 'x'><focal_plane_map a='&e;'"), ("UTF-8", "no-such-encoding"),
               ('version="1.0"', 'version="1.1"'), ("</focal_plane_map>", "<a>" * 300),
               ("<focal_plane_map", "<focal_plane_map" + "".join(f" a{i}=''" for i in range(260))),
               ("</focal_plane_map>", "<a/>" * 500_000 + "</focal_plane_map>"),
               ("<focal_plane_map", "<!DOCTYPE a [" + "".join(f"<!ENTITY e{i} ''>" for i in range(260)) + "]><focal_plane_map"),
               ("<focal_plane_map", "<!DOCTYPE a [<!ELEMENT " + "a" * 70_000 + " ANY>]><focal_plane_map"),
               ("<focal_plane_map", f"<!DOCTYPE a [<!ENTITY e '{'x' * 50_000}'>]><focal_plane_map a='{'&e;' * 200}'")]
BUNDLE_CHANGES = [
    (' centre_x="0"', ""), (' orientation="0"', ""), ('centre_x="0"', 'centre_x="x"'), ('centre_y="0"', 'centre_y="x"'),
    (' centre_y="0"', ""), ('orientation="0"', 'orientation="x"'), (' id="304"', ""), (' pos_x="0"', ""),
    (' pos_y="-20"', ""), (' fibre_name="C14"', ""), ('id="304"', 'id="-1"'), ('pos_x="0"', 'pos_x="x"'),
    ('pos_y="-20"', 'pos_y="x"'),
]


def changed(text, change):
    old, new = change
    if old not in text:
        raise SystemExit(f"nothing to change: {old}")
    return text.replace(old, new)


def with_attribute(element, attribute, value):
    """The field definition with this attribute of the first element of a name."""
    tag = re.search(f"<{element}\\b[^>]*?(?=/?>)", MASKED).group()
    return MASKED.replace(tag, re.sub(f' {attribute}="[^"]*"', "", tag) + f' {attribute}="{value}"', 1)


def attributes_not_to_be_wrong():
    """Element and name of each attribute of a field definition that a run reads as something else than a text."""
    elements = Schema("field_definition.rng").elements
    found = [(element, name) for element, entry in elements.items() for name, (facts, _) in entry.attributes.items()
             if facts["run"].startswith("read") and facts["range"] != "any text" and name not in ("datamver", "pa")]
    assert len(found) > 20, found
    return found


def cases():
    """What is run: a name, the arguments, the files that differ, and where the standard output goes."""
    files = ["-i", "in.xml", "-o", "out.xml"]
    yield "no arguments", [], {}
    yield "no output", ["-i", "in.xml"], {}
    yield "no input file", ["-i", "missing.xml", "-o", "out.xml"], {}
    yield "endless input", ["-i", "/dev/zero", "-o", "out.xml"], {}
    yield "missing folder", ["-i", "in.xml", "-o", "missing/out.xml"], {}
    yield "full device", ["-i", "in.xml", "-o", "/dev/full"], {}
    for name in ("configure.xml", "map.xml", "bundle.xml"):
        yield f"output over {name}", ["-i", "in.xml", "-c", "configure.xml", "-o", name], {}
    for arguments in ARGUMENTS:
        yield f"arguments {arguments}", files + arguments, {}
    for element, attribute, value in POSITIONS + [(*names, "x") for names in attributes_not_to_be_wrong()]:
        yield f"{attribute} {value} of {element}", files, {"in.xml": with_attribute(element, attribute, value)}
    groups = [("in.xml", FIELD, FIELD_CHANGES), ("configure.xml", CONFIGURATION, CONFIGURATION_CHANGES),
              ("map.xml", MAP, MAP_CHANGES), ("bundle.xml", BUNDLE, BUNDLE_CHANGES)]
    for name, text, changes in groups:
        for change in changes:
            arguments = files if name == "in.xml" else files + ["-c", "configure.xml"]
            yield f"{name}: {change[0][:40]} -> {change[1][:40]}", arguments, {name: changed(text, change)}


def run(arguments, folder, **options):
    return subprocess.run([PROGRAM, *arguments], cwd=folder, capture_output="stdout" not in options, text=True,
                          timeout=60, **options)


def run_case(arguments, changes, folder):
    for name, text in {"in.xml": FIELD, "configure.xml": CONFIGURATION, "map.xml": MAP, "bundle.xml": BUNDLE,
                       **changes}.items():
        (folder / name).write_text(text)
    result = run(arguments, folder)
    if result.returncode != 1 or result.stdout or (folder / "out.xml").exists():
        (folder / "out.xml").unlink(missing_ok=True)
        return f"status {result.returncode}, or an output or a text on standard output, and {result.stderr}"
    return result.stderr


def special_cases(folder):
    """What needs more than arguments and files."""
    with open("/dev/full", "w") as full:
        yield "help to a full device", run(["--help"], folder, stdout=full, stderr=subprocess.PIPE).stderr
    for name, text in {"configure.xml": CONFIGURATION, "map.xml": MAP, "bundle.xml": BUNDLE, "in.xml": FIELD}.items():
        (folder / name).write_text(text)
    gone = folder / "gone"
    gone.mkdir()
    command = 'rmdir "$1/gone" && exec "$0" -c "$1/configure.xml" -i "$1/in.xml" -o "$1/out.xml"'
    yield "folder that is gone", subprocess.run(["bash", "-c", command, PROGRAM, folder], cwd=gone, capture_output=True,
                                                text=True, timeout=60).stderr
    for line in run(["--version"], folder).stdout.splitlines():
        yield "version", line


def main():
    catalogue = Catalogue()
    explained = catalogue.texts()
    matchers = {text: catalogue.matcher(text) for text in explained}
    met, problems = set(), []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        printed = [(case, run_case(arguments, changes, folder)) for case, arguments, changes in cases()]
        printed += special_cases(folder)
    for case, text in printed:
        matching = [known for known, matcher in matchers.items() if matcher.fullmatch(text)]
        met.update(matching)
        if len({explained[known] for known in matching}) != 1:
            problems.append(f"{case}: {text!r} is explained by {matching}")
    problems += [f"not printed by any run: {message}" for message in set(matchers) - met - NOT_PROVOKED]
    problems += [f"printed, and yet called not provoked: {message}" for message in met & NOT_PROVOKED]
    problems += [f"not in the catalogue: {message}" for message in NOT_PROVOKED - set(matchers)]
    print(f"{len(printed)} texts, {len(met)} of {len(matchers)} messages met")
    finish(problems)


main()
