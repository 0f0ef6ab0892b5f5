"""The bundle as arrays."""

import pathlib
import pickle
import xml.etree.ElementTree as ElementTree

import numpy as np
import pytest
import veko
from conftest import ROOT


def test_the_bundle_is_that_of_its_definition() -> None:
    definition = ElementTree.parse(ROOT / "pos/positioner/resources/VEKO.xml").getroot()
    fibres = sorted(definition.iter("fibre"), key=lambda fibre: int(fibre.attrib["id"]))
    bundle = veko.Bundle()
    assert bundle.ids.tolist() == [int(fibre.attrib["id"]) for fibre in fibres]
    assert bundle.names.tolist() == [fibre.attrib["fibre_name"] for fibre in fibres]
    assert bundle.statuses.tolist() == [fibre.get("status", "enabled") for fibre in fibres]
    assert bundle.dx.tolist() == [float(fibre.attrib["pos_x"]) for fibre in fibres]
    assert bundle.dy.tolist() == [float(fibre.attrib["pos_y"]) for fibre in fibres]
    angle = np.radians(float(definition.attrib["orientation"]))
    assert bundle.orientation == pytest.approx(float(definition.attrib["orientation"]))
    x = float(definition.attrib["centre_x"]) + bundle.dx * np.cos(angle) - bundle.dy * np.sin(angle)
    y = float(definition.attrib["centre_y"]) + bundle.dx * np.sin(angle) + bundle.dy * np.cos(angle)
    np.testing.assert_allclose([bundle.x, bundle.y], [x, y], rtol=0, atol=1e-12)


def test_the_arrays_of_a_bundle_cannot_be_written_to() -> None:
    bundle = veko.Bundle()
    for again in (bundle, pickle.loads(pickle.dumps(bundle))):
        with pytest.raises(ValueError, match="read-only"):
            again.x[0] = 77


def test_a_configuration_that_cannot_be_read_is_an_error_with_the_message_of_the_run(tmp_path: pathlib.Path) -> None:
    missing = tmp_path / "no_configuration.xml"
    with pytest.raises(veko.Error) as caught:
        veko.Bundle(missing)
    assert str(caught.value) == f"Unable to open config file: {missing}"
    assert isinstance(caught.value, RuntimeError)


def test_the_name_of_a_file_that_is_no_text_survives_in_the_message(tmp_path: pathlib.Path) -> None:
    missing = bytes(tmp_path) + b"/\xff.xml"
    with pytest.raises(veko.Error, match="Unable to open config file: .*/\udcff.xml"):
        veko.Bundle(missing)
