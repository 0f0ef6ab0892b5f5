"""Measures what hostile and growing documents cost; prints a table.

Usage: costs.py PROGRAM [WORD...]. Of each document of tests/robustness/attacks.py, or of those whose names hold one of
the words: processor time and the most memory at 10 MB, and how many times the instructions of a byte at 100 kB (counted
by valgrind's callgrind, the rest of the run left out) a byte takes at 300 kB and at 1 MB. Exits 1 where a run takes more
than 2 s or 256 MiB (512 MiB where it writes the document), or a byte costs a fifth more.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parents[1] / "tests" / "robustness"
sys.path.insert(0, str(TESTS))
from attacks import ATTACKS, EXAMPLE, GROWTHS, Attack  # noqa: E402

SIZE = 10_000_000
SIZES = [100_000, 300_000, 1_000_000]
MAX_SECONDS, MAX_GROWTH = 2.0, 1.2
MAX_MEMORY, MAX_CONFIGURED_MEMORY = 256, 512  # MiB; of what is written there are two texts beside the tree


class Folder:
    """Runs the program on documents in a folder."""

    def __init__(self, program: str, name: str):
        self.document = pathlib.Path(name) / "in.xml"
        self.command = [program, "-i", str(self.document), "-o", f"{name}/out.xml"]

    def cost(self, text: str) -> tuple[float, float]:
        """The least processor time of three runs, s, and the most memory, MiB."""
        self.document.write_text(text)
        measured = self.document.with_name("measured")
        runs = []
        for _ in range(3):
            subprocess.run([sys.executable, TESTS / "measure.py", measured, *self.command], stderr=subprocess.DEVNULL)
            runs.append([float(word) for word in measured.read_text().split()])
        return min(seconds for _, seconds in runs), max(kib for kib, _ in runs) / 1024

    def instructions(self, text: str) -> int:
        self.document.write_text(text)
        command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *self.command]
        report = subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False).stderr
        return int(re.search(r"Collected : (\d+)", report).group(1))


def measure(folder: Folder, attack: Attack, rest: int) -> bool:
    """Prints a row. Returns whether it keeps to the limits. @param rest instructions of a run without the document"""
    seconds, memory = folder.cost(attack.text(SIZE))
    texts = [attack.text(size) for size in SIZES]
    per_byte = [(folder.instructions(text) - rest) / len(text) for text in texts]
    growths = [later / per_byte[0] for later in per_byte[1:]]
    max_memory = MAX_CONFIGURED_MEMORY if attack in GROWTHS else MAX_MEMORY
    holds = seconds <= MAX_SECONDS and memory <= max_memory and max(growths) <= MAX_GROWTH
    shown = " | ".join(f"{growth:.2f}" for growth in growths)
    print(f"| {attack.name} | {seconds:.2f} | {memory:.0f} | {shown} |{'' if holds else ' <- too much'}", flush=True)
    return holds


def main() -> int:
    program, *words = sys.argv[1:]
    chosen = [attack for attack in ATTACKS + GROWTHS if not words or any(word in attack.name for word in words)]
    with tempfile.TemporaryDirectory() as name:
        folder = Folder(program, name)
        refused, configured = folder.instructions(""), folder.instructions(EXAMPLE)
        print("| Input of 10 MB | s | MiB | 300 kB | 1 MB |\n|---|---|---|---|---|")
        return 0 if all([measure(folder, attack, configured if attack in GROWTHS else refused)
                         for attack in chosen]) else 1


if __name__ == "__main__":
    sys.exit(main())
