#include "Report.h"

#include "FieldTargets.h"
#include "Instrument.h"
#include "PosConfig.h"
#include "ReadDocument.h"
#include "SkyMaskXML.h"
#include "TargetXML.h"
#include "TelescopeConfig.h"
#include "Veko.h"
#include "angles.h"
#include "checkInstrument.h"
#include "configureDocument.h"
#include "fileAccess.h"
#include "instrumentFiles.h"
#include "placeVeko.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <QCryptographicHash>
#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

/** The errors with their places, one a line. */
std::string errorsIn(const std::vector<CheckedFile>& files) {
    std::string lines;
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            if (problem.severity == Severity::Error) {
                const LineColumn place = file.result.text.at(problem.place.begin);
                lines += (lines.empty() ? "" : "\n") + file.name + ':' + std::to_string(place.line) + ':' +
                         std::to_string(place.column) + ": " + problem.message;
            }
        }
    }
    return lines;
}

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
                                 " is not between 1900 and 2100, the years in which Sun and Moon are known");
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

/** The fields of a document. */
std::vector<QDomElement> fieldsOf(const QDomDocument& document) {
    const QDomElement root = document.documentElement();
    std::vector<QDomElement> fields;
    for (QDomElement field = findFieldElement(root, {}); !field.isNull(); field = findFieldElement(root, field)) {
        fields.push_back(field);
    }
    return fields;
}

/** Whether a run has written the targets of the fibres into all fields. */
bool isConfigured(const QDomDocument& document) {
    const std::vector<QDomElement> fields = fieldsOf(document);
    return !fields.empty() && std::all_of(fields.begin(), fields.end(),
                                          [](const QDomElement& field) { return hasGeneratedTargets(field); });
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
void reportNight(Instrument& instrument, const Plan& plan, Report& report) {
    const DateContexts contexts(report.night.begin, report.night.end);
    const std::vector<FieldNight> nights =
        findFieldNights(instrument, plan, report.request.file, {report.night}, contexts, report.request.windows);
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

std::string sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

std::vector<DocumentRead> documentsOf(const ReportRequest& request, const PosConfig& config) {
    std::vector<DocumentRead> documents = {{"field definition", request.file, sha256(request.bytes)}};
    const auto add = [&](const std::string& what, const std::string& name, const std::string& shown) {
        const bool canBeReadAgain = name.starts_with(":") || isPlainFile(name);
        documents.push_back({what, shown, canBeReadAgain ? sha256(readFile(name).value_or(QByteArray())) : ""});
    };
    add("configuration", config.name(), config.name());
    for (const auto& [what, key] :
         {std::pair("focal-plane map", "telescope.focal_plane_map"), std::pair("bundle", "veko_definition")}) {
        add(what, config.getFilename(key), fileBeside(config.name(), config.get<std::string>(key)));
    }
    return documents;
}

} // namespace

Report makeReport(const ReportRequest& request) {
    const CheckedInstrument checked = checkInstrument(request.configFile, request.fieldRadius);
    Instrument& instrument = *checked.instrument;
    Report report{request};
    report.checked = checked.files;
    const std::string instrumentErrors = errorsIn(report.checked);
    if (!instrumentErrors.empty()) {
        throw std::runtime_error(instrumentErrors);
    }
    report.telescope = readTelescope(*checked.config);
    const Estimates estimates = estimatesOf(request, report.telescope);
    report.checked.push_back(
        {request.file, checkDocument(request.bytes, request.file, instrument, {estimates, request.fieldRadius, true})});
    const ReadDocument read = readDocument(request.bytes, request.file);
    report.document = read.parsed.document;
    report.wasConfigured = !read.fault && isConfigured(report.document);
    // Those of a configured document tell of configuring it again.
    const std::string errors = errorsIn(report.checked);
    if (!errors.empty() && !report.wasConfigured) {
        throw std::runtime_error(errors);
    }
    requireDataModelVersion(report.document);

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
    reportNight(instrument, plan, report);
    report.documents = documentsOf(request, *checked.config);
    return report;
}

} // namespace pos
