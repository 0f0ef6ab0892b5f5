"""Pages, as `veko report` makes them."""

import datetime
import pathlib

import veko
from conftest import NIGHT, NIGHT_OPTIONS, SOMBRERO, VEKO, replaced, run


def test_a_report_is_the_page_of_the_program(tmp_path: pathlib.Path) -> None:
    output = tmp_path / "page.html"
    options = ["--night", "2027-04-01", "--exposure", "30", "--field_radius", "0.5", *NIGHT_OPTIONS]
    result = run(VEKO, "report", SOMBRERO, "-o", output, *options)
    assert (result.returncode, result.stderr) == (0, "")
    command = " ".join(str(word) for word in [VEKO, "report", SOMBRERO, "-o", output, *options])
    theirs = output.read_text()
    assert command in theirs
    night = datetime.date(2027, 4, 1)
    page = veko.report(SOMBRERO, night=night, exposure=30, field_radius=0.5, **NIGHT)
    assert page.html == theirs.replace(command, f"veko.report {SOMBRERO}")
    page.write(output)
    assert output.read_text() == page.html


def test_a_notebook_shows_a_document_as_its_page(tmp_path: pathlib.Path) -> None:
    shown = veko.read(SOMBRERO)._repr_html_()
    assert shown.startswith('<iframe srcdoc="&lt;!doctype html&gt;')
    assert shown.count("<") == 2
    document = tmp_path / "field.xml"
    document.write_text(replaced(SOMBRERO.read_text(), 'ha="-1.0"', 'ha="5"'))
    failed = veko.read(document)._repr_html_()
    assert failed.startswith(f"<pre>{document}:10:17: ") and "field is below the horizon limit" in failed


def test_a_report_is_of_the_instrument_of_its_document(
    newer_document: pathlib.Path, newer_config: pathlib.Path
) -> None:
    document = veko.read(newer_document, config=newer_config)
    assert document._repr_html_().startswith("<iframe")
    assert veko.report(document).html == veko.report(newer_document, config=newer_config).html
