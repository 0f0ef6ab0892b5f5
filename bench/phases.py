"""Prints where the instructions of a run go, phase by phase, from a file that callgrind wrote.

    valgrind --tool=callgrind --callgrind-out-file=run.callgrind veko_configure -i INPUT -o OUTPUT
    python3 bench/phases.py run.callgrind

A phase is the cost of some calls, with all that happens in them, less that of calls in them that belong elsewhere. It
ends with an error when a call of the list no longer exists under its name, as after link-time inlining.
"""
import collections
import re
import sys

ANY = ""
RUN = "veko_configure("
CONFIGURE = "pos::configureDocument("
LOAD = "pos::loadXmlFile("
BUNDLE = "pos::createVekoXML("
POINTING = "pos::FocalPlane::FocalPlane("
TARGETS = "pos::FibreTargets::save("
DOCUMENT_END = "QDomDocument::~QDomDocument("
FIBRE_PLACES = [(TARGETS, "pos::CIRS::toAstrometric("), (TARGETS, "pos::FocalPlane::xyToCirs(")]

# Phase, calls that count, calls that do not: (beginning of the caller's name, beginning of the callee's).
PHASES = [
    ("command line", [(ANY, "main")], [(ANY, RUN), (ANY, "pos::PosConfig::PosConfig(")]),
    ("configuration", [("pos::runCommandLine(", "pos::PosConfig::PosConfig(")], []),
    ("reading documents", [(ANY, LOAD)], []),
    ("table of fibres", [(CONFIGURE, BUNDLE)], [(BUNDLE, LOAD), (BUNDLE, POINTING), (BUNDLE, DOCUMENT_END)]),
    ("pointing, limits, solves",
     [(BUNDLE, POINTING), (CONFIGURE, "pos::pointFocalPlane("), (CONFIGURE, "pos::LimitsCalc::"),
      (CONFIGURE, "pos::placeVeko("), (CONFIGURE, "pos::vekoFieldCentre("), (CONFIGURE, "pos::saveGuideStar(")],
     [(POINTING, LOAD)]),
    ("places of the fibres", [(CONFIGURE, "pos::FibreTargets::requirePlaces("), *FIBRE_PLACES], []),
    ("cloning, attributes", [(CONFIGURE, "pos::FibreTargets::FibreTargets("), (CONFIGURE, TARGETS)], FIBRE_PLACES),
    ("serialisation", [(RUN, "pos::serialiseXml(")], []),
    ("writing the file", [(RUN, "pos::writeFile(")], []),
    ("destruction of documents", [(BUNDLE, DOCUMENT_END)], []),
]


def read(name: str) -> tuple[dict[tuple[str, str], int], int]:
    """Inclusive instructions by caller and callee, and of the whole run."""
    calls: dict[tuple[str, str], int] = collections.Counter()
    names: dict[str, str] = {}
    caller = callee = ""
    total = 0
    is_call = False
    with open(name) as lines:
        for line in lines:
            if match := re.match(r"(c?fn)=\((\d+)\)(?: (.*))?", line):
                kind, number, text = match.groups()
                function = names.setdefault(number, text)
                caller, callee = (function, callee) if kind == "fn" else (caller, function)
            elif line.startswith("calls="):
                is_call = True
            elif line.startswith("totals: "):
                total = int(line.split()[1])
            elif is_call:
                calls[caller, callee] += int(line.split()[1])
                is_call = False
    return calls, total


def cost(calls: dict[tuple[str, str], int], wanted: tuple[str, str]) -> int:
    """Of the calls from one function, or any, to another; a function's calls of its own overloads are in it already."""
    found = [value for (caller, callee), value in calls.items()
             if caller.startswith(wanted[0]) and callee.startswith(wanted[1]) and not caller.startswith(wanted[1])]
    if not found:
        sys.exit(f"No call from '{wanted[0]}' to '{wanted[1]}' in the profile")
    return sum(found)


def main(name: str) -> None:
    calls, total = read(name)
    rows = [("start-up and exit", total - cost(calls, (ANY, "main")))]
    rows += [(phase, sum(cost(calls, call) for call in counted) - sum(cost(calls, call) for call in elsewhere))
             for phase, counted, elsewhere in PHASES]
    rows.append(("all other", total - sum(value for _, value in rows)))
    print("| Phase | instructions, millions | share |\n|---|---:|---:|")
    for phase, value in [*rows, ("whole run", total)]:
        print(f"| {phase} | {value / 1e6:.2f} | {value / total:.1%} |")


main(*sys.argv[1:])
