#include "Instrument.h"
#include "TelescopeConfig.h"
#include "angles.h"
#include "numberText.h"
#include "pointingFinders.h"
#include "positionAngles.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <cmath>
#include <erfa.h>
#include <vector>

namespace pos {

namespace {

Telescope telescopeOf(const CheckedDocument& document) {
    return readTelescope(document.instrument.config());
}

double altitudeLimit(const CheckedDocument& document) {
    return kPi / 2 - document.options.estimates.zenithDistanceLimit;
}

/** Whether a field with a declination never reaches the horizon limit, wherever the sky has turned. */
bool neverRises(const CheckedDocument& document, const FieldPointing& pointing) {
    const double greatestAltitude = kPi / 2 - std::fabs(document.pointing->latitude() - pointing.dec);
    return greatestAltitude <= altitudeLimit(document);
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
double rotatorAngle(const CheckedDocument& document, double parallacticAngle) {
    const FocalPlane& pointing = *document.pointing;
    return wrapAngle(pointing.rotatorOffset() - parallacticAngle + pointing.positionAngle());
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

} // namespace

Span placeOfPointing(const CheckedDocument& document, const FieldPointing& pointing, const QString& ofCentre,
                     const QString& ofTarget) {
    if (pointing.field == nullptr) {
        return opening(document.root);
    }
    return pointing.number == 1 ? valueOrOpening(*pointing.field->element, ofCentre)
                                : valueOrOpening(*pointing.field->science, ofTarget);
}

void findFieldsBelowHorizon(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const FieldPointing& pointing : document.pointings) {
        if (isHighEnough(document, pointing) || isUnknown(pointing, pointing.zenithDistance) ||
            neverRises(document, pointing)) {
            continue;
        }
        const std::string hours = HourAngleSearch(document, pointing).inWords();
        problems.add(rule, severityOf(pointing), placeOfPointing(document, pointing, attr::raD, attr::targra),
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
            problems.add(rule, severityOf(pointing), placeOfPointing(document, pointing, attr::decD, attr::targdec),
                         subject(pointing, "field is below the horizon limit: it never rises", "never rises") +
                             " above " + degreesText(greatest) + " degrees of altitude, and the limit is " +
                             shortText(radiansToDegrees(altitudeLimit(document))),
                         "Correct the declination, or observe the field from another site");
        }
    }
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
                            : placeOfPointing(document, pointing, attr::raD, attr::targra),
            subject(pointing, "field position angle is outside the rotator limits", "is outside the rotator limits") +
                ": at the position angle " + shortText(radiansToDegrees(document.pointing->positionAngle())) +
                " the rotator would stand at " + degreesText(angle) + " degrees, and it reaches from " +
                shortText(radiansToDegrees(telescope.rotatorLowLimit)) + " to " +
                shortText(radiansToDegrees(telescope.rotatorHighLimit)),
            withinRotator(pointing, angles, hours));
    }
}

} // namespace pos
