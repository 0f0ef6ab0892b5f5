#include "rules.h"

#include "Instrument.h"
#include "Night.h"
#include "PosConfig.h"
#include "RunMessages.h"
#include "SunAndMoon.h"
#include "TargetXML.h"
#include "TelescopeConfig.h"
#include "Veko.h"
#include "angles.h"
#include "numberText.h"
#include "placeVeko.h"
#include "pointDocument.h"
#include "positionAngles.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace pos {

namespace {

Telescope telescopeOf(const CheckedDocument& document) {
    return readTelescope(document.instrument.config());
}

double altitudeLimit(const CheckedDocument& document) {
    return kPi / 2 - document.options.estimates.zenithDistanceLimit;
}

/** Whether a pointing is above the horizon limit, in the run's own words; NaN is not. */
bool isHighEnough(const CheckedDocument& document, const FieldPointing& pointing) {
    return document.options.estimates.zenithDistanceLimit > pointing.zenithDistance;
}

/** Whether a field with a declination never reaches the horizon limit, wherever the sky has turned. */
bool neverRises(const CheckedDocument& document, const FieldPointing& pointing) {
    const double greatestAltitude = kPi / 2 - std::fabs(document.pointing->latitude() - pointing.dec);
    return greatestAltitude <= altitudeLimit(document);
}

/** The value that makes a field stand where it does. */
Span placeOf(const CheckedDocument& document, const FieldPointing& pointing, const QString& ofCentre,
             const QString& ofTarget) {
    if (pointing.field == nullptr) {
        return opening(document.root);
    }
    return pointing.number == 1 ? valueOrOpening(*pointing.field->element, ofCentre)
                                : valueOrOpening(*pointing.field->science, ofTarget);
}

/** The run judges the first field alone. */
Severity severityOf(const FieldPointing& pointing) {
    return pointing.number == 1 ? Severity::Error : Severity::Warning;
}

/** The run's message for its field; for another field which it is. */
std::string subject(const FieldPointing& pointing, const char* runMessage, const char* sameOfOthers) {
    return pointing.number == 1 ? runMessage : "Field " + std::to_string(pointing.number) + ' ' + sameOfOthers;
}

/** Whether a value is none because of the field itself. The run's own field fails with such a value too. */
bool isUnknown(const FieldPointing& pointing, double value) {
    return pointing.number != 1 && std::isnan(value);
}

/** The rotator angle at a parallactic angle, radians. */
double rotatorAngle(const CheckedDocument& document, double parallacticAngle, double positionAngle) {
    return wrapAngle(document.pointing->rotatorOffset() - parallacticAngle + positionAngle);
}

/** The same at the position angle of the document. */
double rotatorAngle(const CheckedDocument& document, double parallacticAngle) {
    return rotatorAngle(document, parallacticAngle, document.pointing->positionAngle());
}

/**
 * The hour angles of the first field, in hours, at which both it and another field can be observed, in words; empty if
 * there are none.
 */
class HourAngleSearch {
public:
    HourAngleSearch(const CheckedDocument& document, const FieldPointing& pointing)
        : document_(document), telescope_(telescopeOf(document)), first_(document.pointings.front()),
          pointing_(pointing) {}

    std::string inWords() const {
        std::string words;
        std::optional<double> begin;
        for (int step = -kSteps; step <= kSteps + 1; ++step) {
            const bool does = step <= kSteps && isObservable(first_, step) && isObservable(pointing_, step);
            if (does && !begin) {
                begin = hoursOf(step);
            } else if (!does && begin) {
                words += (words.empty() ? "from " : ", or from ") + shortText(*begin) + " to " +
                         shortText(hoursOf(step - 1));
                begin.reset();
            }
        }
        return words.empty() ? words : words + " hours";
    }

private:
    static constexpr int kSteps = 240; ///< of three minutes in half a day
    /** Refraction moves a low field by a tenth of a degree: so far from a limit it surely does. */
    static constexpr double kMargin = 0.002;

    static double hoursOf(int step) {
        return step * 12.0 / kSteps;
    }

    /** Whether a field can be observed where the first one stands at the hour angle of a step. */
    bool isObservable(const FieldPointing& field, int step) const {
        const double hourAngle = hoursToRadians(hoursOf(step)) + field.hourAngle - first_.hourAngle;
        double azimuth = 0.0;
        double altitude = 0.0;
        eraHd2ae(hourAngle, field.dec, telescope_.latitude, &azimuth, &altitude);
        const double rotator = rotatorAngle(document_, eraHd2pa(hourAngle, field.dec, telescope_.latitude));
        return altitude > altitudeLimit(document_) + kMargin && rotator > telescope_.rotatorLowLimit + kMargin &&
               rotator < telescope_.rotatorHighLimit - kMargin;
    }

    const CheckedDocument& document_;
    Telescope telescope_;
    const FieldPointing& first_;
    const FieldPointing& pointing_;
};

/** What to do about a field that no hour angle suits. */
std::string withoutHourAngle(const FieldPointing& pointing) {
    return pointing.number == 1
               ? "Choose another position angle too: at this one no hour angle suits horizon and rotator"
               : "Observe the field at another date, in a document of its own: at this position angle no hour angle "
                 "suits both it and the first field";
}

void findFieldsBelowHorizon(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const FieldPointing& pointing : document.pointings) {
        if (isHighEnough(document, pointing) || isUnknown(pointing, pointing.zenithDistance) ||
            neverRises(document, pointing)) {
            continue;
        }
        const std::string hours = HourAngleSearch(document, pointing).inWords();
        problems.add(rule, severityOf(pointing), placeOf(document, pointing, attr::raD, attr::targra),
                     subject(pointing, "field is below the horizon limit", "is below the horizon limit") +
                         ": at the hour angle " + fixedText(radiansToHours(pointing.hourAngle), 2).toStdString() +
                         " h it stands at an altitude of " + degreesText(kPi / 2 - pointing.zenithDistance) +
                         " degrees, and the limit is " + shortText(radiansToDegrees(altitudeLimit(document))),
                     hours.empty()
                         ? withoutHourAngle(pointing)
                         : "Choose an hour angle of the first field " + hours + ", where horizon and rotator allow it");
    }
}

void findFieldsThatNeverRise(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const FieldPointing& pointing : document.pointings) {
        if (!isHighEnough(document, pointing) && neverRises(document, pointing)) {
            const double greatest = kPi / 2 - std::fabs(document.pointing->latitude() - pointing.dec);
            problems.add(rule, severityOf(pointing), placeOf(document, pointing, attr::decD, attr::targdec),
                         subject(pointing, "field is below the horizon limit: it never rises", "never rises") +
                             " above " + degreesText(greatest) + " degrees of altitude, and the limit is " +
                             shortText(radiansToDegrees(altitudeLimit(document))),
                         "Correct the declination, or observe the field from another site");
        }
    }
}

/** The position angles that suit both a field and the first one, in words; empty if there are none. */
std::string positionAnglesOf(const CheckedDocument& document, const Telescope& telescope,
                             const FieldPointing& pointing) {
    const std::string angles =
        positionAnglesInWords(telescope, {document.pointings.front().parallacticAngle, pointing.parallacticAngle},
                              document.pointing->positionAngle());
    const std::string ofBoth = pointing.number == 1 ? "" : " for the first field too";
    return angles.empty() ? "" : angles + ", which do at this hour angle" + ofBoth;
}

/** What to do about a field that the rotator cannot follow. @param angles, hours that do, in words */
std::string withinRotator(const FieldPointing& pointing, const std::string& angles, const std::string& hours) {
    if (pointing.number != 1 && angles.empty() && hours.empty()) {
        return "Observe the field in a document of its own: no position angle and no hour angle suits both it and the "
               "first field";
    }
    const std::string hoursToo = hours.empty() ? "" : ", or choose an hour angle of the first field " + hours;
    return (angles.empty() ? "Choose another position angle" : "Write " + angles) + hoursToo;
}

void findFieldsBeyondRotator(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    // The run has judged the first field where it succeeds.
    if (document.pointings.empty() || (document.pointed && document.pointings.size() == 1)) {
        return;
    }
    const Telescope telescope = telescopeOf(document);
    for (const FieldPointing& pointing : document.pointings) {
        const double angle = rotatorAngle(document, pointing.parallacticAngle);
        const bool isWithin = telescope.rotatorLowLimit < angle && angle < telescope.rotatorHighLimit;
        if (isWithin || isUnknown(pointing, angle) || !isHighEnough(document, pointing)) {
            continue;
        }
        const std::string hours = HourAngleSearch(document, pointing).inWords();
        const std::string angles = positionAnglesOf(document, telescope, pointing);
        const bool isPlacedAtAngle = pointing.number == 1 && document.observation != nullptr;
        problems.add(
            rule, severityOf(pointing),
            isPlacedAtAngle ? valueOrOpening(*document.observation, attr::pa)
                            : placeOf(document, pointing, attr::raD, attr::targra),
            subject(pointing, "field position angle is outside the rotator limits", "is outside the rotator limits") +
                ": at the position angle " + shortText(radiansToDegrees(document.pointing->positionAngle())) +
                " the rotator would stand at " + degreesText(angle) + " degrees, and it reaches from " +
                shortText(radiansToDegrees(telescope.rotatorLowLimit)) + " to " +
                shortText(radiansToDegrees(telescope.rotatorHighLimit)),
            withinRotator(pointing, angles, hours));
    }
}

/** What leads to no date: the hour angle, the declination, or the epoch. */
Span placeOfHourAngle(const CheckedDocument& document) {
    constexpr double kBesideThePole = 0.998; // of a right angle
    const CheckedField* const field = document.fields.empty() ? nullptr : &document.fields.front();
    if (field != nullptr && field->centre && std::fabs(field->centre->dec) > kBesideThePole * kPi / 2) {
        return valueOrOpening(*field->element, attr::decD);
    }
    const SourceElement* const conditions = document.conditions;
    const auto given = [&](const QString& name, bool byOption) {
        return conditions != nullptr && !byOption && conditions->attribute(name) != nullptr;
    };
    const Estimates& estimates = document.options.estimates;
    if (given(attr::ha, estimates.hourAngle != kHourAngleNotGiven) &&
        std::fabs(numberOf(conditions->node.attribute(attr::ha)).value_or(0.0)) > 24) {
        return conditions->attribute(attr::ha)->valuePlace;
    }
    if (given(attr::epoch, estimates.epoch != kNotGiven)) {
        return conditions->attribute(attr::epoch)->valuePlace;
    }
    return opening(field != nullptr ? *field->element : document.root);
}

void findUnreachableHourAngle(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.hourAngleFailure) {
        problems.add(rule, placeOfHourAngle(document),
                     *document.hourAngleFailure + ": no date was found at which the first field has the hour angle",
                     whatToDo(*document.hourAngleFailure));
    }
}

/**
 * Whether it is to be tried to place the bundle on a field. Where the run succeeds it has done so. Where the first
 * field is too low, another date will be chosen, and what now fails for its altitude is not told.
 */
bool isToBePlaced(const CheckedDocument& document, const FieldPointing& pointing) {
    return document.failure && pointing.field != nullptr && pointing.field->science != nullptr &&
           (isHighEnough(document, document.pointings.front()) || isHighEnough(document, pointing));
}

/** Whether a message is one of those with which placing the bundle fails. */
bool isOfPlacing(const std::string& message) {
    return message == "Field centre not converging" || message == "celestial position not in the tangent plane" ||
           message.starts_with("Inverse distortion not converging");
}

/** The message with which a step of placing the bundle fails. What else it fails with is for other rules. */
template <typename Step> std::optional<std::string> placingFailure(const Step& step) {
    try {
        step();
    } catch (const std::exception& error) {
        const std::string message = error.what();
        return isOfPlacing(message) ? std::optional(message) : std::nullopt;
    }
    return std::nullopt;
}

void findFieldsWithoutPlace(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (!document.failure || !document.pointing) {
        return;
    }
    Veko& veko = bundleOfRun(document);
    for (const FieldPointing& pointing : document.pointings) {
        if (!isToBePlaced(document, pointing)) {
            continue;
        }
        const auto failure = placingFailure([&] {
            placeOnScience(veko, *pointing.field);
            const Target science = createTargetXML(pointing.field->science->node);
            document.instrument.requirePlaces(scienceFibre(science));
        });
        if (failure) {
            problems.add(rule, valueOrOpening(*pointing.field->science, attr::targra),
                         *failure + ": the bundle finds no place on field " + std::to_string(pointing.number),
                         whatToDo(*failure));
        }
    }
}

void findGuideStarsBehind(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    constexpr double kSurelyInFront = 1.4; // radians, a tenth less than a right angle
    for (const FieldPointing& pointing : document.pointings) {
        const CheckedField* const field = pointing.field;
        if (!isToBePlaced(document, pointing) || !field->sciencePlace || !field->guidePlace) {
            continue;
        }
        const double distance =
            eraSeps(field->sciencePlace->ra, field->sciencePlace->dec, field->guidePlace->ra, field->guidePlace->dec);
        if (distance < kSurelyInFront) {
            continue;
        }
        Veko& veko = bundleOfRun(document);
        if (placingFailure([&] { placeOnScience(veko, *field); })) {
            continue; // The science target is at fault.
        }
        if (const auto failure =
                placingFailure([&] { saveGuideStar(veko, field->guide->node.cloneNode(false).toElement()); })) {
            problems.add(rule, valueOrOpening(*field->guide, attr::targra),
                         *failure + ": the guide star is " + degreesText(distance) +
                             " degrees away from the science target",
                         "Correct place and proper motion of the guide star");
        }
    }
}

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
            problems.add(rule, placeOf(document, pointing, attr::raD, attr::targra),
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
            problems.add(rule, placeOf(document, pointing, attr::raD, attr::targra),
                         "Field " + std::to_string(pointing.number) + " is seen through an airmass of " +
                             fixedText(airmass(altitude), 2).toStdString() + ", at an altitude of " +
                             degreesText(altitude) + " degrees",
                         "Choose an hour angle nearer to 0");
        }
    }
}

} // namespace

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
