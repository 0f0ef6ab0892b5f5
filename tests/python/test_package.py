"""The package as a whole."""

import ast
import pickle
import sys
import types

import numpy as np
import veko
from conftest import PROGRAM, ROOT, SOMBRERO, run
from veko import _veko


def test_the_stub_has_the_names_of_the_module() -> None:
    stub = ast.parse((ROOT / "python/veko/_veko.pyi").read_text()).body
    named = {part.name for part in stub if isinstance(part, (ast.FunctionDef, ast.ClassDef))}
    named |= {part.target.id for part in stub if isinstance(part, ast.AnnAssign) and isinstance(part.target, ast.Name)}
    assert named == {name for name in dir(_veko) if not name.startswith("_")}


def test_everything_that_is_offered_tells_what_it_is() -> None:
    aliases = {"Date", "Numbers", "PathLike", "__version__"}
    offered = [getattr(veko, name) for name in veko.__all__ if name not in aliases]
    members = [member for thing in offered if isinstance(thing, type) for member in vars(thing).items()]
    for name, member in members:
        if not name.startswith("_") and isinstance(member, (types.FunctionType, property)):
            assert member.__doc__, name
    # A dataclass without a docstring gets its signature.
    assert all(thing.__doc__ and not thing.__doc__.startswith(f"{thing.__name__}(") for thing in offered)


def test_the_version_is_that_of_the_program() -> None:
    assert f"version {veko.__version__}\n" in run(PROGRAM, "--version").stdout


def test_what_is_a_value_survives_pickling() -> None:
    document = veko.configure(SOMBRERO)
    values = [document, veko.compare(document, document), *veko.windows(document, "2027-04-01"), *veko.check(document)]
    for value in values:
        again = pickle.loads(pickle.dumps(value))
        assert repr(again) == repr(value)
    np.testing.assert_array_equal(pickle.loads(pickle.dumps(document)).targets, document.targets)
    np.testing.assert_array_equal(pickle.loads(pickle.dumps(veko.Bundle())).x, veko.Bundle().x)
    assert pickle.loads(pickle.dumps(veko.report(document))) == veko.report(document)


def test_the_package_does_without_astropy() -> None:
    program = """
import sys
sys.modules["astropy"] = None
import veko
document = veko.configure("examples/sombrero_south.xml")
veko.Pointing(190, -11.6, epoch=2027.25).sky_to_plate(document.targets["ra"], document.targets["dec"])
veko.windows((190, -11.6), "2027-04-01")
try:
    document.table()
except ImportError:
    print("no table")
"""
    result = run(sys.executable, "-c", program)
    assert (result.returncode, result.stdout, result.stderr) == (0, "no table\n", "")
