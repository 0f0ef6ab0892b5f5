#include "Night.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "numberText.h"
#include "pointingFinders.h"
#include "positionAngles.h"
#include "xmlKeywords.h"

#include <erfa.h>

namespace pos {

namespace {

/** The site; nothing where the places of Sun and Moon are not known at the date of the run. */
std::optional<Telescope> siteUnderSky(const CheckedDocument& document) {
    constexpr double kMjd1900 = 15020.0;
    constexpr double kMjd2100 = 88069.0;
    if (!document.pointing || !(document.pointing->date() > kMjd1900 && document.pointing->date() < kMjd2100)) {
        return std::nullopt;
    }
    Telescope site;
    site.eastLongitude = document.pointing->eastLongitude();
    site.latitude = document.pointing->latitude();
    site.height = document.pointing->height();
    return site;
}

/** Whether the hour angle, and so the hour of the night, was chosen by anyone. */
bool isHourAngleChosen(const CheckedDocument& document) {
    return document.options.estimates.hourAngle != kHourAngleNotGiven ||
           (document.conditions != nullptr &&
            document.conditions->node.attribute(attr::ha, kMissingValue) != kMissingValue);
}

} // namespace

void findSunlight(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const double kDark = degreesToRadians(-12.0);
    const std::optional<Telescope> site = siteUnderSky(document);
    if (!site) {
        return;
    }
    const BodyPlace sun = sunFrom(*site, document.pointing->dateContext());
    if (sun.altitude > kDark) {
        const SourceElement& element = document.conditions != nullptr ? *document.conditions : document.root;
        problems.add(rule, isHourAngleChosen(document) ? Severity::Warning : Severity::Note,
                     valueOrOpening(element, document.options.estimates.epoch == kNotGiven ? attr::epoch : attr::ha),
                     "The Sun stands at an altitude of " + degreesText(sun.altitude) +
                         " degrees at the time of the observation, " + utcText(document.pointing->date(), 0) +
                         ", and it is dark below -12",
                     "Choose an epoch at which the field stands in the night sky, or another hour angle");
    }
}

void findMoonlight(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const double kNear = degreesToRadians(30.0);
    const std::optional<Telescope> site = siteUnderSky(document);
    if (!site) {
        return;
    }
    const BodyPlace moon = moonFrom(*site, document.pointing->dateContext());
    for (const FieldPointing& pointing : document.pointings) {
        const CIRS centre = pointing.centre.toCirs(document.pointing->dateContext());
        const double distance = eraSeps(centre.ra, centre.dec, moon.place.ra, moon.place.dec);
        if (moon.altitude > 0.0 && distance < kNear && isHighEnough(document, pointing)) {
            problems.add(rule, placeOfPointing(document, pointing, attr::raD, attr::targra),
                         "The Moon is " + degreesText(distance) + " degrees away from field " +
                             std::to_string(pointing.number) + " at " + utcText(document.pointing->date(), 0) +
                             ", at an altitude of " + degreesText(moon.altitude) + " degrees",
                         "Choose an epoch some days earlier or later");
        }
    }
}

void findMuchAir(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    constexpr double kMuchAir = 2.0;
    for (const FieldPointing& pointing : document.pointings) {
        const double altitude = kPi / 2 - pointing.zenithDistance;
        if (isHighEnough(document, pointing) && altitude > 0.0 && airmass(altitude) > kMuchAir) {
            problems.add(rule, placeOfPointing(document, pointing, attr::raD, attr::targra),
                         "Field " + std::to_string(pointing.number) + " is seen through an airmass of " +
                             fixedText(airmass(altitude), 2).toStdString() + ", at an altitude of " +
                             degreesText(altitude) + " degrees",
                         "Choose an hour angle nearer to 0");
        }
    }
}

} // namespace pos
