#include "instrumentFinders.h"
#include "rules.h"

namespace pos {

const Rule kInstrumentUnreadable = {
    "VK601",
    Severity::Error,
    "A document of the instrument cannot be read",
    "The document is not well-formed XML 1.0, its bytes are not those of its encoding, "
    "or it exceeds a limit. The place is where the reader stopped. What stands before it is well-formed, and is "
    "checked; what stands behind it is not. Of a configuration "
    "that is not well-formed the run may read something all the same; "
    "then it is a warning.",
    R"(<telescope)",
    R"(<telescope>)"};

const Rule kInstrumentFails = {
    "VK699",
    Severity::Error,
    "Every run fails for the instrument's sake",
    "The run cannot use the instrument for a reason that no other rule covers. The message is the run's own.",
    "",
    ""};

const std::vector<InstrumentRuleEntry>& rulesOfTheInstrument() {
    static const std::vector<InstrumentRuleEntry> rules = {
        {{"VK602", Severity::Error, "A document of the instrument has another data model version",
          "`datamver` of focal-plane map and bundle must be the configuration's, letter by letter. Built-in files that "
          "the configuration names have 8.00. With an empty `datamver` in the configuration the run compares nothing, "
          "which is a warning.",
          R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.0">)",
          R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00">)"},
         findInstrumentVersions},
        {{"VK603", Severity::Error, "The configuration is for another version of the program",
          "`configure_version` must be the version of the program, letter by letter and without blanks.",
          R"(<configure_version>3.3</configure_version>)", R"(<configure_version>3.3.5</configure_version>)"},
         findOtherProgram},
        {{"VK604", Severity::Error, "A value of the instrument is missing",
          "The run reads each of these values before it points, whatever the field definition. Where it does not read "
          "the value it is a warning.",
          R"(<VEKO x0="0.0" y0="0.0"/>)", R"(<VEKO x0="0.0" y0="0.0" r0="0.0"/>)"},
         findMissingValues},
        {{"VK605", Severity::Error, "A value of the instrument cannot be read",
          "The value is not a plain number with a decimal point, or not a whole one for `id`. Where the run does not "
          "read the value it is a warning.",
          R"(<latitude>28:45:38.1</latitude>)", R"(<latitude>28.760583</latitude>)"},
         findBadValues},
        {{"VK606", Severity::Error, "A file that the configuration names cannot be opened",
          "A name that begins with `:` is a built-in file. One that begins with neither `:` nor `/` counts from the "
          "folder of the configuration. Blanks belong to the name. For the positioner plates, which the run does not "
          "read, it is a warning.",
          R"(<veko_definition>:/BUNDLE.xml</veko_definition>)", R"(<veko_definition>:/VEKO.xml</veko_definition>)"},
         findMissingFiles},
        {{"VK607", Severity::Warning, "A name of the instrument is near a known one",
          "The run knows names letter by letter, and passes over others. It looks at the name of a document element in "
          "the focal-plane map only.",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" Status="broken"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="broken"/>)"},
         findNearInstrumentNames},
        {{"VK608", Severity::Warning, "A name of the instrument stands where the run does not read it",
          "The run reads each value in its own element, and passes over it in another one.",
          R"(<optimum_rotator_angle><plate_a>-25.0</plate_a><plate_b>25.0</plate_b><latitude>28.76</latitude></optimum_rotator_angle>)",
          R"(<optimum_rotator_angle><plate_a>-25.0</plate_a><plate_b>25.0</plate_b></optimum_rotator_angle>)"},
         findMisplacedInstrumentNames},
        {{"VK609", Severity::Warning, "An element of the instrument stands twice",
          "Of an element that should stand once the run reads the first, and passes over the others.",
          R"(<VEKO x0="0.0" y0="0.0" r0="0.0"/><VEKO x0="0.0" y0="0.0" r0="1.5"/>)",
          R"(<VEKO x0="0.0" y0="0.0" r0="0.0"/>)"},
         findRepeatedInstrumentElements},
        {{"VK610", Severity::Note, "A name of the instrument is not known",
          "The run passes over it, and so do the other rules. Names with a colon are left to those who declare their "
          "prefix.",
          R"(<VEKO x0="0.0" y0="0.0" r0="0.0" surveyed="2026"/>)", R"(<VEKO x0="0.0" y0="0.0" r0="0.0"/>)"},
         findUnknownInstrumentNames},
        {{"VK611", Severity::Warning, "A number of the instrument is implausible",
          "The run checks no ranges, and computes with `nan` and `inf`. Longitudes go from -180 to 360, latitudes to "
          "90 on both sides, the horizon limit from 0 to 90; focal lengths are above 0. Heights go from -430 to 8900 "
          "metres, epochs from 1700 to 2200, rotator angles to 720 degrees, rotations of plates to 360.",
          R"(<latitude>128.760583</latitude>)", R"(<latitude>28.760583</latitude>)"},
         findUnlikelyNumbers},
        {{"VK612", Severity::Warning, "The rotator's limits are the wrong way round",
          "The rotator angle of a field must be above the lower limit and below the upper one.",
          R"(<rotator_low_limit>135.0</rotator_low_limit>)", R"(<rotator_low_limit>-135.0</rotator_low_limit>)"},
         findCrossedLimits},
        {{"VK613", Severity::Warning, "The distortion is implausible",
          "On the axis a degree is `c1` millimetres, which is close to the focal length times one degree in radians; "
          "the rule reports a difference of 10 % or more. And the radius must grow with the angle.",
          R"(<distortion_coefficients c1="0.0563" c3="3.0191" c5="-0.0995944" c7="0.0"/>)",
          R"(<distortion_coefficients c1="202.841" c3="3.0191" c5="-0.0995944" c7="0.0"/>)"},
         findOddDistortion},
        {{"VK614", Severity::Warning, "Two fibres have the same id",
          "The run takes place and status of the first, and the name of the last.",
          R"(<fibre id="2" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)"},
         findRepeatedFibreIds},
        {{"VK615", Severity::Warning, "A fibre's name is empty or that of another",
          "The name is what the output has in `ifu_spaxel`. It should tell which fibre is meant.",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="1B" status="enabled"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)"},
         findRepeatedFibreNames},
        {{"VK616", Severity::Warning, "Two fibres stand in one place",
          "Less than 0.05 millimetres are between them, and no real fibre is that thin. The places are those on the "
          "plate. Fibres that are absent do not count.",
          R"(<fibre id="1" pos_x="0.166" pos_y="-17.597" fibre_name="C01" status="enabled"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)"},
         findFibresInOnePlace},
        {{"VK617", Severity::Warning, "A fibre is off the plate",
          "The fibre is farther from the optical axis than 1 degree of the field, or `--field_radius` where that is "
          "more. That is the checker's own choice; the run places fibres as far as the distortion can be inverted. "
          "Fibres that are absent do not count. If all are off, the place of the bundle is told instead.",
          R"(<fibre id="1" pos_x="0.000" pos_y="-1750.1" fibre_name="C01" status="enabled"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)"},
         findFibresOffPlate},
        {{"VK618", Severity::Warning, "The status of a fibre is not known",
          "The run takes a fibre for broken whose `status` is none of the known words, in small or capital letters. A "
          "fibre without `status` is enabled.",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enable"/>)",
          R"(<fibre id="1" pos_x="0.000" pos_y="-17.501" fibre_name="C01" status="enabled"/>)"},
         findUnknownStates},
        {{"VK619", Severity::Note, "The bundle has no fibre 304",
          "The run places a science target that asks for no fibre on fibre 304, and fails where there is none.",
          R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00"><fibre id="1" pos_x="0" pos_y="-20" fibre_name="C14"/></plate_definition>)",
          R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00"><fibre id="304" pos_x="0" pos_y="-20" fibre_name="C14"/></plate_definition>)"},
         findNoMiddleFibre},
    };
    return rules;
}

} // namespace pos
