"""Configures the example of docs/pictures/bundle.svg, draws it and compares: check_pictures.py PROGRAM PROJECT."""
import pathlib
import subprocess
import sys
import tempfile

program, project = sys.argv[1], pathlib.Path(sys.argv[2])
pictures = project / "docs" / "pictures"
with tempfile.TemporaryDirectory() as folder:
    configured = pathlib.Path(folder) / "configured.xml"
    subprocess.run([program, "-i", project / "examples" / "sombrero_south.xml", "-o", configured], check=True)
    drawn = subprocess.run([sys.executable, pictures / "draw_bundle.py", configured], check=True,
                           stdout=subprocess.PIPE).stdout
    # Asked for help, it says what it wants.
    asked = subprocess.run([sys.executable, pictures / "draw_bundle.py", "--help"], capture_output=True, text=True)
if asked.returncode != 0 or "CONFIGURED.xml" not in asked.stdout or asked.stderr:
    sys.exit(f"draw_bundle.py --help ends with {asked.returncode}:\n{asked.stdout}{asked.stderr}")
if drawn != (pictures / "bundle.svg").read_bytes():
    sys.exit("docs/pictures/bundle.svg is not what docs/pictures/draw_bundle.py draws of a fresh output")
print("docs/pictures/bundle.svg is what a fresh output looks like")
