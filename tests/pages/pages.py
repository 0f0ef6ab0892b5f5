"""What the checks of pages share: where the project and the modules of its tools are, and how a check ends."""
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "tools"))


def finish(problems):
    """Ends a check: prints the problems, and has status 1 where there are any."""
    print("\n".join(problems))
    sys.exit(1 if problems else 0)
