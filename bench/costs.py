"""Measures what hostile documents cost at three sizes; prints a table.

Usage: costs.py PROGRAM [WORD...]. Of each document of tests/robustness/attacks.py, or of those whose names hold one of
the words: processor time and the most memory at 10 MB, and how much more a byte costs there than at 1 MB, the time that
every run takes left out. Exits 1 where a run takes more than 2 s or 256 MiB (512 MiB where it
writes the document), or a byte costs a fifth more.
"""

import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "robustness"))
from attacks import ATTACKS, EXAMPLE, GROWTHS, Attack  # noqa: E402

SIZES = {1_000_000: 7, 3_000_000: 5, 10_000_000: 3}  # and how often each is run
MAX_SECONDS, MAX_GROWTH = 2.0, 1.2
MAX_MEMORY, MAX_CONFIGURED_MEMORY = 256, 512  # MiB; of what is written there are two texts beside the tree
SHORTEST = 0.02  # seconds at 10 MB; what costs less is lost in the noise
# A child begins with its parent's memory, so another process starts it.
SCRIPT = """import resource, subprocess, sys
subprocess.run(sys.argv[1:], stderr=subprocess.DEVNULL)
used = resource.getrusage(resource.RUSAGE_CHILDREN)
print(used.ru_utime + used.ru_stime, used.ru_maxrss / 1024)"""


def cost(program: str, folder: pathlib.Path, text: str, times: int) -> tuple[float, float]:
    """The least processor time of some runs, s, and the most memory, MiB."""
    document = folder / "in.xml"
    document.write_text(text)
    command = [sys.executable, "-c", SCRIPT, program, "-i", str(document), "-o", str(folder / "out.xml")]
    runs = [[float(word) for word in subprocess.run(command, capture_output=True, text=True, check=True).stdout.split()]
            for _ in range(times)]
    return min(seconds for seconds, _ in runs), max(memory for _, memory in runs)


def measure(program: str, folder: pathlib.Path, attack: Attack, empty: float) -> bool:
    """Prints a row. Returns whether it keeps to the limits."""
    seconds, memory = {}, 0.0
    for size, times in SIZES.items():
        text = attack.text(size)
        taken, memory = cost(program, folder, text, times)
        seconds[size] = (max(taken - empty, 0.0), len(text))
    (first, first_size), (last, last_size) = seconds[min(SIZES)], seconds[max(SIZES)]
    growth = (last / last_size) / (first / first_size) if first > 0 and last >= SHORTEST else 1.0
    max_memory = MAX_CONFIGURED_MEMORY if attack in GROWTHS else MAX_MEMORY
    holds = last <= MAX_SECONDS and memory <= max_memory and growth <= MAX_GROWTH
    print(f"| {attack.name} | {last:.2f} | {memory:.0f} | {growth:.2f} |{'' if holds else ' <- too much'}", flush=True)
    return holds


def main() -> int:
    program, *words = sys.argv[1:]
    chosen = [attack for attack in ATTACKS + GROWTHS if not words or any(word in attack.name for word in words)]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        refused, _ = cost(program, folder, "", 9)
        configured, _ = cost(program, folder, EXAMPLE, 9)
        print("| Input of 10 MB | s | MiB | a byte, times that of 1 MB |\n|---|---|---|---|")
        return 0 if all([measure(program, folder, attack, configured if attack in GROWTHS else refused)
                         for attack in chosen]) else 1


if __name__ == "__main__":
    sys.exit(main())
