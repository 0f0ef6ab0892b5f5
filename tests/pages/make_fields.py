"""Field definitions for runs on many documents.

Fields with a galaxy and a guide star each, spread over the sky south of the zenith; one in the middle lies below the
horizon.
"""
import pathlib

FIELD = """<?xml version="1.0" encoding="UTF-8"?>
<field_definition datamver="8.00">
 <observation name="Survey {name}" pa="0">
  <configure>
   <conditions epoch="2027.25" ha="0"/>
  </configure>
  <fields>
   <field RA_d="{ra:.6f}" Dec_d="{dec:.6f}">
    <target targname="galaxy {name}" targuse="T" targra="{ra:.6f}" targdec="{dec:.6f}" targepoch="2000.0"/>
    <target targname="star {name}" targuse="G" targra="{ra:.6f}" targdec="{guide_dec:.6f}" targepoch="2016.0"/>
   </field>
  </fields>
 </observation>
</field_definition>
"""


def failing(count):
    """The name of the document that cannot be configured."""
    return f"f{count * 2 // 3:03}"


def make(folder, count):
    """Writes them into a new folder."""
    folder.mkdir()
    for number in range(count):
        name = f"f{number:03}"
        dec = -75.0 if name == failing(count) else -10.0 + number * 30.0 / count
        text = FIELD.format(name=name, ra=number * 360.0 / count, dec=dec, guide_dec=dec + 0.05)
        (folder / f"{name}.xml").write_text(text)
