#include "Report.h"

#include "FieldTargets.h"
#include "Instrument.h"
#include "PosConfig.h"
#include "SkyMaskXML.h"
#include "TargetXML.h"
#include "TelescopeConfig.h"
#include "Veko.h"
#include "angles.h"
#include "configureDocument.h"
#include "placeVeko.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

/** The estimates of the run: a night alone stands for an epoch in its middle. */
Estimates estimatesOf(const ReportRequest& request, const Telescope& telescope) {
    Estimates estimates = request.estimates;
    if (request.evening && estimates.epoch == kNotGiven) {
        const Night night = nightOf(*request.evening, telescope.eastLongitude);
        estimates.epoch = julianEpochOf((night.begin + night.end) / 2);
    }
    return estimates;
}

void requireKnownNight(const Night& night) {
    if (!areSunAndMoonKnown(night.evening)) {
        throw std::runtime_error("The night of " + night.evening.toString(Qt::ISODate).toStdString() +
                                 kNotOfKnownYears);
    }
}

PlateAxes axesOf(const FocalPlane& pointing) {
    const double step = degreesToRadians(10.0 / 3600);
    const Astrometric centre = pointing.fieldCentre();
    const auto plateOf = [&](Astrometric place) { return pointing.cirsToXy(place.toCirs(pointing.dateContext())); };
    const PlateCoordinates here = plateOf(centre);
    const auto perRadian = [&](Astrometric place) {
        const PlateCoordinates there = plateOf(place);
        return PlateCoordinates{(there.x - here.x) / step, (there.y - here.y) / step};
    };
    return {perRadian({centre.ra, centre.dec + step}),
            perRadian({centre.ra + step / std::cos(centre.dec), centre.dec})};
}

/** A target that has a place on the plate. */
ReportedPlace placeOf(const QDomElement& target, const FocalPlane& pointing) {
    const Target read = createTargetXML(target);
    return {read.name,
            read.position.toAstrometric(pointing.date()),
            {target.attribute(attr::targx).toDouble(), target.attribute(attr::targy).toDouble()}};
}

/** The masks of a field; none where one cannot be read or drawn: the run passes over those of other fields than the
 * first. */
std::vector<ReportedMask> masksOf(const QDomElement& field, const FocalPlane& pointing) {
    std::vector<ReportedMask> masks;
    try {
        for (const SkyMask& mask : createSkyMasksXML(field.firstChildElement(tag::avoidanceList))) {
            masks.push_back({mask, pointing.cirsToXy(mask.centre.toCirs(pointing.dateContext()))});
        }
    } catch (const std::runtime_error&) {
        return {};
    }
    return masks;
}

/** A field as the bundle, placed on it, sees it. @param element of the configured document */
ReportedField reportField(Veko& veko, const PlacedField& placed, const QDomElement& element,
                          const ReportRequest& request) {
    veko.focalPlane.setFieldCentre(placed.pointing, veko.focalPlane.positionAngle());
    const FocalPlane& pointing = veko.focalPlane;
    const FieldTargets targets = findFieldTargets(element);
    const PlateCoordinates axis = FocalPlaneCoordinates(0.0, 0.0);
    const PlateCoordinates edge = FocalPlaneCoordinates(StandardCoordinates{0.0, request.fieldRadius});
    return {element.attribute("name").toStdString(),
            element,
            {"field centre", vekoFieldCentre(veko), {0.0, 0.0}},
            placeOf(targets.science, pointing),
            placed.fibre,
            placeOf(targets.guide, pointing),
            masksOf(element, pointing),
            reportedFibres(element, veko),
            axesOf(pointing),
            std::hypot(edge.x - axis.x, edge.y - axis.y),
            pointing,
            colourShifts(pointing, request.exposure)};
}

/** A copy of a configured document as it was before: without the targets that a run has made. */
QDomDocument beforeTheRun(const QDomDocument& document) {
    QDomDocument copy = document.cloneNode().toDocument();
    for (QDomElement field : fieldsOf(copy)) {
        for (QDomElement child = field.firstChildElement(); !child.isNull();) {
            const QDomElement next = child.nextSiblingElement();
            if (isGenerated(child)) {
                field.removeChild(child);
            }
            child = next;
        }
    }
    return copy;
}

/** Configures the document, unless that has been done, and looks at its fields. */
void reportFields(Instrument& instrument, const Estimates& estimates, Report& report) {
    const std::vector<QDomElement> fields = fieldsOf(report.document);
    const PlacedDocument placed =
        placeDocument(instrument, report.wasConfigured ? beforeTheRun(report.document) : report.document, estimates);
    report.conditions = placed.veko.focalPlane.conditions();
    if (!report.wasConfigured) {
        saveTargets(placed);
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        report.fields.push_back(reportField(placed.veko, placed.fields.at(i), fields.at(i), report.request));
    }
}

/** The dark part of the night, widened to what is told of. */
std::pair<double, double> partShown(const Report& report, const DateContexts& contexts) {
    constexpr double kHalfAnHour = 0.5 / 24;
    std::pair<double, double> shown = darkPart(report.telescope, contexts, report.night);
    const auto widen = [&](double instant) {
        if (instant >= report.night.begin && instant <= report.night.end) {
            shown = {std::min(shown.first, instant - kHalfAnHour), std::max(shown.second, instant + kHalfAnHour)};
        }
    };
    widen(report.conditions.epoch);
    for (const ReportedField& field : report.fields) {
        for (const Window& window : field.windows.windows) {
            widen(window.start.mjdTai);
            widen(window.end.mjdTai);
        }
    }
    return {std::max(shown.first, report.night.begin), std::min(shown.second, report.night.end)};
}

/** Windows and curves of all fields. */
void reportNight(const Plan& plan, Report& report) {
    const DateContexts contexts(report.night.begin, report.night.end);
    const std::vector<FieldNight> nights =
        findFieldNights(report.fields.front().pointing, report.telescope, plan, report.request.file, {report.night},
                        contexts, report.request.windows);
    for (std::size_t i = 0; i < report.fields.size(); ++i) {
        report.fields.at(i).windows = nights.at(i).found;
    }
    report.shown = partShown(report, contexts);
    for (std::size_t i = 0; i < report.fields.size(); ++i) {
        ReportedField& field = report.fields.at(i);
        field.followed = plan.fields.at(i).toAstrometric(report.night.begin);
        FocalPlane pointing = field.pointing;
        pointing.setFieldCentre(field.followed, plan.positionAngle);
        FieldTrack track(pointing, report.telescope, contexts);
        field.night = sampleNight(track, contexts, report.shown.first, report.shown.second);
    }
}

} // namespace

Report makeReport(const ReportRequest& request) {
    const CheckedInstrument checked = openSoundInstrument(request.configFile, request.fieldRadius);
    Instrument& instrument = *checked.instrument;
    Report report{request};
    report.checked = checked.files;
    report.telescope = readTelescope(*checked.config);
    const Estimates estimates = estimatesOf(request, report.telescope);
    const SoundDocument sound =
        openSoundDocument(request.bytes, request.file, instrument, {estimates, request.fieldRadius, true});
    report.checked.push_back(sound.checked);
    report.document = sound.document;
    report.wasConfigured = sound.isConfigured;

    report.observation = findObservationElement(report.document.documentElement()).attribute("name").toStdString();
    Plan plan = readPlan(report.document, estimates);
    if (!plan.hasEpoch) {
        throw std::runtime_error(request.file + ": There is no epoch, so that the night is not known: give --night");
    }
    reportFields(instrument, estimates, report);
    const double longitude = report.telescope.eastLongitude;
    report.night =
        request.evening ? nightOf(*request.evening, longitude) : nightAround(report.conditions.epoch, longitude);
    requireKnownNight(report.night);
    reportNight(plan, report);
    report.documents = documentsRead(request.file, request.bytes, *checked.config);
    return report;
}

} // namespace pos
