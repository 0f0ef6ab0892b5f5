"""Documents: read, configured and checked as the programs do it."""

import copy
import json
import os
import pathlib
import pickle
import re
import sys
import threading
import xml.etree.ElementTree as ElementTree
from typing import Any

import numpy as np
import pytest
import veko
from conftest import EXAMPLES, PROGRAM, ROOT, SECOND, SOMBRERO, VEKO, replaced, run

ESTIMATES: dict[str, Any] = {"epoch": 2027.4, "hour_angle": 0.25, "pressure": 700, "horizon_limit": 30}
OPTIONS = ["--epoch", "2027.4", "--ha", "0.25", "--pressure", "700", "--horizon_limit", "30"]


def changed(folder: pathlib.Path, old: str, new: str) -> pathlib.Path:
    """A document that is the example but for one place."""
    document = folder / "field.xml"
    document.write_text(replaced(SOMBRERO.read_text(), old, new))
    return document


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda example: str(example.stem))
def test_configure_gives_the_bytes_of_the_exact_program(example: pathlib.Path, tmp_path: pathlib.Path) -> None:
    ours, theirs = tmp_path / "ours.xml", tmp_path / "theirs.xml"
    assert run(PROGRAM, "-i", example, "-o", theirs).returncode == 0
    assert veko.configure(example).xml == theirs.read_bytes()
    assert veko.configure(example, ours).xml == ours.read_bytes() == theirs.read_bytes()


def test_configure_takes_what_the_command_line_takes(tmp_path: pathlib.Path, other_config: pathlib.Path) -> None:
    theirs = tmp_path / "theirs.xml"
    assert run(PROGRAM, "-i", SOMBRERO, "-o", theirs, *OPTIONS, "-c", other_config).returncode == 0
    assert veko.configure(SOMBRERO, **ESTIMATES, config=other_config).xml == theirs.read_bytes()


def test_a_document_in_memory_is_configured_without_its_file(
    newer_document: pathlib.Path, newer_config: pathlib.Path
) -> None:
    expected = veko.configure(newer_document, config=newer_config)
    document = veko.read(newer_document, config=newer_config)
    newer_document.unlink()
    again = veko.configure(document)
    assert (again.xml, again.name, again.config) == (expected.xml, str(newer_document), str(newer_config))
    assert (document.configured, again.configured) == (False, True)


FAULTS = {
    "no XML": ("</field_definition>", ""),
    "another version": ('datamver="8.00"', 'datamver="7.00"'),
    "no guide star": ('targuse="G"', 'targuse="S"'),
    "no hour angle": ('ha="-1.0"', 'ha="x"'),
    "below the horizon": ('ha="-1.0"', 'ha="5"'),
    "no such fibre": ('targuse="T"', 'targuse="T" fibreid="9999"'),
    "no temperature": ('temperature="281.5"', 'temperature="cold"'),
}


@pytest.mark.parametrize("fault", FAULTS)
def test_configure_fails_with_the_message_of_the_program(
    fault: str, tmp_path: pathlib.Path, capfd: pytest.CaptureFixture[str]
) -> None:
    document, output = changed(tmp_path, *FAULTS[fault]), tmp_path / "output.xml"
    program = run(PROGRAM, "-i", document, "-o", output)
    assert (program.returncode, program.stdout, output.exists()) == (1, "", False)
    output.write_text("older")
    with pytest.raises(veko.Error, match=f"^{re.escape(program.stderr.rstrip())}$"):
        veko.configure(document, output)
    assert output.read_text() == "older"
    assert capfd.readouterr() == ("", "")


def test_configure_never_replaces_a_file_of_the_instrument(other_config: pathlib.Path) -> None:
    before = other_config.read_bytes()
    with pytest.raises(veko.Error, match=f"^The output file {other_config} is the configuration file in use$"):
        veko.configure(SOMBRERO, other_config, config=other_config)
    assert other_config.read_bytes() == before


def test_files_that_are_not_there_are_told_as_the_programs_tell_them(tmp_path: pathlib.Path) -> None:
    missing = tmp_path / "missing.xml"
    with pytest.raises(veko.Error, match=f"^Error parsing field definition file: {missing} could not be opened$"):
        veko.configure(missing)
    with pytest.raises(veko.Error, match=f"^{missing} could not be opened$"):
        veko.read(missing)
    with pytest.raises(veko.Error, match=f"^{missing} could not be opened$"):
        veko.check(missing)
    with pytest.raises(veko.Error, match="^File open error: Unable to open output file$"):
        veko.configure(SOMBRERO, tmp_path / "no_folder" / "output.xml")


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda example: str(example.stem))
def test_a_document_has_every_field_and_target_of_its_text(example: pathlib.Path) -> None:
    document = veko.configure(example)
    root = ElementTree.fromstring(document.xml)
    fields = list(root.iter("field"))
    assert document.pa == float(next(root.iter("observation")).attrib["pa"])
    assert document.fields["ra"].tolist() == [float(field.attrib["RA_d"]) for field in fields]
    assert document.fields["dec"].tolist() == [float(field.attrib["Dec_d"]) for field in fields]
    rows = [(number, target) for number, field in enumerate(fields, 1) for target in field.iter("target")]
    assert len(document.targets) == document.fields["targets"].sum() == len(rows)
    for found, (number, target) in zip(document.targets, rows):
        text = target.attrib
        assert found["field"] == number
        assert (found["name"], found["use"]) == (text["targname"], text["targuse"])
        assert (found["ra"], found["dec"]) == (float(text["targra"]), float(text["targdec"]))
        assert found["fibre"] == (int(text["fibreid"]) if text.get("fibreid", "%%%") not in ("", "%%%") else 0)
        assert found["spaxel"] == text.get("ifu_spaxel", "")
        assert found["automatic"] == (text.get("automatic") == "1")
        plate = [float(text[name]) if text.get(name, "%%%") != "%%%" else np.nan for name in ("targx", "targy")]
        np.testing.assert_array_equal([found["x"], found["y"]], plate)


def test_what_a_document_has_cannot_be_changed() -> None:
    document: Any = veko.read(SOMBRERO)
    with pytest.raises(AttributeError):
        document.pa = 77
    for again in (document, pickle.loads(pickle.dumps(document)), copy.deepcopy(document)):
        with pytest.raises(ValueError, match="read-only"):
            again.targets["ra"][0] = 77


def test_a_field_without_a_centre_has_none() -> None:
    fields = veko.read(ROOT / "examples/virgo_two_fields.xml").fields
    np.testing.assert_array_equal(np.isnan(fields["ra"]), [False, True])


def test_groups_and_motions_are_read(tmp_path: pathlib.Path) -> None:
    star = (
        '<target targname="α" targuse="C" targra="190.10000" targdec="-11.60000" targepoch="2016" targpmra="1.5" '
        'targpmdec="-2" targparal="0.25" targrv="30" targprio="3" targsrvy="S"/>'
    )
    document = veko.read(changed(tmp_path, "</field>", f"<group>{star}</group><group>{star}</group></field>"))
    assert document.targets["group"].tolist() == [0, 0, 1, 2]
    last = document.targets[-1]
    assert (last["name"], last["survey"], last["priority"], last["automatic"]) == ("α", "S", 3, False)
    assert [last[name] for name in ("epoch", "pm_ra", "pm_dec", "parallax", "rv")] == [2016, 1.5, -2, 0.25, 30]
    assert np.isnan(last["x"])


def test_a_document_without_fields_has_empty_arrays(tmp_path: pathlib.Path) -> None:
    document = tmp_path / "empty.xml"
    document.write_text('<field_definition datamver="8.00"/>')
    targets = veko.read(document).targets
    assert len(targets) == 0
    assert [targets[name].dtype.kind for name in ("automatic", "ra", "fibre", "name")] == ["b", "f", "i", "U"]


def test_a_table_has_the_columns_with_their_units() -> None:
    units = pytest.importorskip("astropy.units")
    table = veko.configure(SOMBRERO).table()
    assert len(table) == 604
    assert (table["ra"].unit, table["x"].unit, table["pm_ra"].unit) == (units.deg, units.mm, units.mas / units.yr)
    assert table["name"].unit is None


def problems_of(*arguments: object) -> list[veko.Problem]:
    """What veko check finds."""
    found = json.loads(run(VEKO, "check", "--format", "json", *arguments).stdout)
    return [
        veko.Problem(
            file["file"],
            problem["code"],
            problem["severity"],
            problem["line"],
            problem["column"],
            problem["endLine"],
            problem["endColumn"],
            problem["message"],
            problem["help"],
            problem["fix"]["text"] if problem["fix"] else None,
        )
        for file in found["documents"]
        for problem in file["problems"]
    ]


@pytest.mark.parametrize("fault", FAULTS)
def test_check_finds_what_veko_check_finds(fault: str, tmp_path: pathlib.Path) -> None:
    document = changed(tmp_path, *FAULTS[fault])
    found = veko.check(document)
    assert any(problem.severity == "error" for problem in found)
    assert found == problems_of(document)


def test_check_takes_what_the_command_line_takes(newer_document: pathlib.Path, newer_config: pathlib.Path) -> None:
    expected = problems_of(newer_document, *OPTIONS, "--field_radius", "0.01", "-c", newer_config)
    assert {"VK401", "VK617"} <= {problem.code for problem in expected}
    assert veko.check(newer_document, **ESTIMATES, field_radius=0.01, config=newer_config) == expected
    document = veko.read(newer_document, config=newer_config)
    assert veko.check(document, **ESTIMATES, field_radius=0.01) == expected


def test_check_finds_problems_of_the_instrument_too(other_config: pathlib.Path) -> None:
    other_config.write_text(replaced(other_config.read_text(), "<latitude>28.760583<", "<latitude>x<"))
    (problem, *_) = veko.check(SOMBRERO, config=other_config)
    assert (problem.file, problem.severity) == (str(other_config), "error")
    assert str(problem).startswith(f"{other_config}:{problem.line}:{problem.column}: error: ")


def test_check_takes_many_documents(tmp_path: pathlib.Path, other_config: pathlib.Path) -> None:
    faulty = changed(tmp_path, *FAULTS["no guide star"])
    expected = problems_of(SOMBRERO, faulty, "-c", other_config)
    assert {problem.file for problem in expected} > {str(faulty)}
    assert veko.check([SOMBRERO, veko.read(faulty)], config=other_config) == expected
    assert veko.check([]) == []
    with pytest.raises(ValueError, match="^config is missing: the documents do not share one$"):
        veko.check([SOMBRERO, veko.read(faulty, config=other_config)])


def test_a_document_in_memory_is_checked_without_its_file(tmp_path: pathlib.Path) -> None:
    document = veko.read(changed(tmp_path, 'targuse="G"', 'targuse="S"'))
    (tmp_path / "field.xml").unlink()
    assert [problem.code for problem in veko.check(document)] == ["VK106"]


def test_a_document_has_its_conditions_by_the_names_that_a_pointing_takes(tmp_path: pathlib.Path) -> None:
    document = veko.read(SOMBRERO)
    assert document.conditions == {
        "epoch": 2027.25,
        "hour_angle": -1,
        "temperature": 281.5,
        "pressure": 770,
        "relative_humidity": 0.25,
    }
    centre = document.fields[0]
    pointing = veko.Pointing(centre["ra"], centre["dec"], document.pa, **document.conditions)
    assert (pointing.temperature, pointing.pressure) == (281.5, 770)
    assert pointing.hour_angle == pytest.approx(-1, abs=SECOND)
    assert "pressure" not in veko.read(changed(tmp_path, 'pressure="770', 'pressure="%%%')).conditions


def test_an_error_notes_the_document(tmp_path: pathlib.Path) -> None:
    low = veko.read(changed(tmp_path, *FAULTS["below the horizon"]))
    with pytest.raises(veko.Error) as caught:
        veko.configure(low)
    assert (str(caught.value), caught.value.__notes__) == (
        "field is below the horizon limit",
        [f"The document is {low.name}"],
    )
    broken = changed(tmp_path, *FAULTS["no temperature"])
    with pytest.raises(veko.Error) as caught:
        veko.windows(broken, "2027-04-01")
    assert caught.value.__notes__ == [f"The document is {broken}"]


def test_a_document_is_written_whole_or_not_at_all(tmp_path: pathlib.Path) -> None:
    document, output = veko.configure(SOMBRERO), tmp_path / "output.xml"
    document.write(output)
    assert output.read_bytes() == document.xml
    # A limit of the size of files, which the process of this test cannot take back.
    program = f"""
import resource, veko
resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
try:
    veko.configure({str(SOMBRERO)!r}, hour_angle=1).write({str(output)!r})
except veko.Error as error:
    print(error)
"""
    result = run(sys.executable, "-c", program)
    assert (result.stdout, result.stderr) == (
        f"File write error: Unable to write output file {output}: File too large\n",
        "",
    )
    assert output.read_bytes() == document.xml


def test_the_output_may_be_the_input(tmp_path: pathlib.Path) -> None:
    document = tmp_path / "field.xml"
    document.write_bytes(SOMBRERO.read_bytes())
    assert veko.configure(document, document).xml == document.read_bytes() == veko.configure(SOMBRERO).xml


@pytest.mark.parametrize("call", [veko.read, veko.configure])
def test_a_pipe_does_not_hold_up_other_threads(call: Any, tmp_path: pathlib.Path) -> None:
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    found: list[veko.Document] = []
    reader = threading.Thread(target=lambda: found.append(call(pipe)))
    reader.start()
    with pipe.open("wb") as writer:  # waits until the reader is there
        other = threading.Thread(target=veko.Bundle, daemon=True)
        other.start()
        other.join(timeout=20)
        assert not other.is_alive()
        writer.write(SOMBRERO.read_bytes())
    reader.join()
    assert found[0].xml == call(SOMBRERO).xml


def test_things_tell_what_they_are() -> None:
    document = veko.configure(SOMBRERO)
    (night,) = veko.windows(SOMBRERO, "2027-04-01")
    window = night.windows[0]
    shown = [document, veko.Bundle(), veko.compare(document, document), window, window.best, night]
    assert [repr(thing).replace(str(ROOT) + "/", "") for thing in shown] == [
        "<veko.Document examples/sombrero_south.xml, configured: fields 1, targets 604>",
        "<veko.Bundle of 603 fibres>",
        "<veko.Comparison: same True, fields 1, differences 0>",
        "<veko.Window 2027-04-01 21:42 to 04:42 UTC, from horizon to horizon>",
        f"<veko.Moment 2027-04-02 {window.best.utc:%H:%M:%S} UTC, hour angle 0.00, altitude 49.5>",
        "<veko.NightWindows 2027-04-01, field 1: "
        "<veko.Window 2027-04-01 21:42 to 04:42 UTC, from horizon to horizon>>",
    ]
