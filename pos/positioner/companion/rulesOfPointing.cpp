#include "pointingFinders.h"
#include "rules.h"

namespace pos {

const std::vector<RuleEntry>& rulesOfPointing() {
    static const std::vector<RuleEntry> rules = {
        {{"VK501", Severity::Error, "A field is below the horizon limit",
          "The centre of the first field must stand higher than `--horizon_limit` (25 degrees if not given) at the "
          "hour angle. The run checks the first field alone; the others are observed at the same date, and one of them "
          "that is too low is a warning. The hour angles in the help are those of the first field, at which both it "
          "and "
          "this field are high enough and the rotator can follow them at the position angle of the document.",
          R"(<conditions epoch="2027.25" ha="10.0"/>)", R"(<conditions epoch="2027.25" ha="0.5"/>)"},
         findFieldsBelowHorizon},
        {{"VK502", Severity::Error, "A field never rises above the horizon limit",
          "From the site of the configuration the declination stands below the limit at every hour angle. A warning "
          "for every field but the first, which alone the run checks.",
          R"(<field RA_d="189.997633" Dec_d="-70.000000">)", R"(<field RA_d="189.997633" Dec_d="-11.623054">)"},
         findFieldsThatNeverRise},
        {{"VK503", Severity::Error, "The rotator cannot follow a field at this position angle",
          "The rotator angle is offset - parallactic angle + position angle, and must lie between the limits of the "
          "configuration. South of the zenith `pa` must be nearer to 0, north of it nearer to 180. The run checks the "
          "first field alone; for the others this is a warning. The bundle fits the sky at any of the position angles "
          "that the help names, but lies on it differently.",
          R"(<observation pa="180">)", R"(<observation pa="0">)"},
         findFieldsBeyondRotator},
        {{"VK504", Severity::Error, "The hour angle leads to no date",
          "The run looks for the date near the epoch at which the first field has the hour angle, and finds none: the "
          "epoch or the hour angle is absurd, or the field lies within a twentieth of a degree of the pole.",
          R"(<conditions epoch="2460000.5" ha="0.5"/>)", R"(<conditions epoch="2027.25" ha="0.5"/>)"},
         findUnreachableHourAngle},
        {{"VK505", Severity::Error, "The bundle cannot be placed on a field",
          "The steps towards the field centre that brings the science target onto its fibre lead nowhere. That happens "
          "low above the horizon, close to the pole, with a proper motion that is not a number, and with absurd "
          "distortion coefficients or fibres in the documents of the instrument.",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="9999" relative_humidity="0.25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findFieldsWithoutPlace},
        {{"VK506", Severity::Error, "The guide star is not in front of the telescope",
          "It is 90 degrees or more from the science target, or its proper motion is not a number.",
          R"(<target targname="star" targuse="G" targra="10.120000" targdec="11.500000"/>)",
          R"(<target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/>)"},
         findGuideStarsBehind},
        {{"VK507", Severity::Warning, "The Sun is up, or the sky not yet dark",
          "Epoch and hour angle together fix the moment of the observation: the time, within half a day of the epoch, "
          "at which the first field has the hour angle. At that moment the Sun is higher than 12 degrees below the "
          "horizon. A note where neither the document nor `--ha` chooses an hour angle.",
          R"(<conditions epoch="2027.75" ha="0.5"/>)", R"(<conditions epoch="2027.25" ha="0.5"/>)"},
         findSunlight},
        {{"VK508", Severity::Warning, "The Moon is near",
          "At the moment of the observation the Moon is above the horizon and within 30 degrees of the field.",
          R"(<conditions epoch="2027.22" ha="0.5"/>)", R"(<conditions epoch="2027.25" ha="0.5"/>)"},
         findMoonlight},
        {{"VK509", Severity::Warning, "A field is seen through much air",
          "The airmass is above 2, at an altitude of less than 30 degrees: half of the blue light is lost, and "
          "refraction spreads the colours over more than a fibre.",
          R"(<conditions epoch="2027.25" ha="3.3"/>)", R"(<conditions epoch="2027.25" ha="0.5"/>)"},
         findMuchAir},
    };
    return rules;
}

} // namespace pos
