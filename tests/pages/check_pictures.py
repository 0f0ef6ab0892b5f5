"""Configures the example of docs/pictures/bundle.svg, draws it and compares: check_pictures.py PROGRAM."""
import pathlib
import subprocess
import sys
import tempfile

from pages import ROOT, finish

PICTURES = ROOT / "docs" / "pictures"

with tempfile.TemporaryDirectory() as folder:
    configured = pathlib.Path(folder) / "configured.xml"
    subprocess.run([sys.argv[1], "-i", ROOT / "examples" / "sombrero_south.xml", "-o", configured], check=True)
    drawn = subprocess.run([sys.executable, PICTURES / "draw_bundle.py", configured], check=True, capture_output=True)
asked = subprocess.run([sys.executable, PICTURES / "draw_bundle.py", "--help"], capture_output=True, text=True)
problems = []
if asked.returncode != 0 or "CONFIGURED.xml" not in asked.stdout or asked.stderr:
    problems.append(f"draw_bundle.py --help ends with {asked.returncode}:\n{asked.stdout}{asked.stderr}")
if drawn.stdout != (PICTURES / "bundle.svg").read_bytes():
    problems.append("docs/pictures/bundle.svg is not what docs/pictures/draw_bundle.py draws of a fresh output")
finish(problems)
