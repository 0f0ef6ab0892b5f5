"""Runs the program on each attack of 10 MB, on part of each as a configuration, and on documents of 10 MB that it takes.

Usage: check_attacks.py PROGRAM. A run must end with the attack's message and status 1, or with none and status 0, and
never have had more than 256 MiB; where it is refused, the older output stays as it is.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

from attacks import ATTACKS, GROWTHS

MEASURE = pathlib.Path(__file__).parent / "measure.py"
SIZE = 10_000_000
MAX_MEMORY = 256  # MiB
MAX_GROWTH_MEMORY = 512  # MiB; of what is written there are two texts beside the tree
CONFIGURATION_SIZE = 200_000  # larger ones take the configuration's own parser longer


def run(folder, program, *arguments):
    """Returns the program's status, its error stream and the most memory that it had, MiB."""
    measured = folder / "measured"
    result = subprocess.run([sys.executable, MEASURE, measured, program, *arguments], capture_output=True, text=True)
    return result.returncode, result.stderr, int(measured.read_text().split()[0]) / 1024


def expected(attack, name):
    if attack.refusal.startswith("Configure"):
        return attack.refusal + "\n"
    return f"Error parsing field definition file: {name} {attack.refusal}\n"


def check(program, folder):
    problems = []
    document, output = folder / "in.xml", folder / "out.xml"
    output.write_text("old")
    for attack in ATTACKS:
        text = attack.text(SIZE)
        if len(text) > 1.1 * SIZE:
            problems.append(f"{attack.name}: {len(text)} bytes")
        document.write_text(text)
        status, message, memory = run(folder, program, "-i", document, "-o", output)
        is_node_limit = attack.refusal.startswith("elements") and message.endswith(attack.refusal + "\n")
        if status != 1 or not (is_node_limit or message == expected(attack, document)) or memory > MAX_MEMORY:
            problems.append(f"{attack.name}: {status}, {message[:200]!r}, {memory:.0f} MiB")
        document.write_text(text[:CONFIGURATION_SIZE])
        status, message, memory = run(folder, program, "-c", document, "-i", "nothing.xml", "-o", output)
        if status != 1 or not message or memory > MAX_MEMORY:
            problems.append(f"{attack.name}, as a configuration: {status}, {message[:200]!r}, {memory:.0f} MiB")
    if output.read_text() != "old":
        problems.append("the older output has changed")
    for growth in GROWTHS:
        document.write_text(growth.text(SIZE))
        status, message, memory = run(folder, program, "-i", document, "-o", output)
        if status != 0 or message or memory > MAX_GROWTH_MEMORY:
            problems.append(f"{growth.name}: {status}, {message[:200]!r}, {memory:.0f} MiB")
    return problems


if __name__ == "__main__":
    # In memory, where there is room for the documents: on a disk they take longer than the runs.
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(dir=memory) as name:
        complaints = check(sys.argv[1], pathlib.Path(name))
    print("\n".join(complaints) or f"{len(ATTACKS)} attacks refused or read")
    sys.exit(bool(complaints))
