#include "reportPage.h"

#include "CheckResources.h"
#include "Report.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "fileAccess.h"
#include "nightPicture.h"
#include "numberText.h"
#include "pageTemplate.h"
#include "pageText.h"
#include "platePictures.h"
#include "provenance.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

Json fact(const std::string& name, const std::string& value) {
    return {{"name", name}, {"value", value}};
}

/** "2027-04-02 02:13:45 UTC". */
std::string timeText(double mjdTai) {
    return QString::fromStdString(utcText(mjdTai, 0)).replace('T', ' ').replace('Z', " UTC").toStdString();
}

Json factsOf(const Report& report) {
    const Conditions& air = report.conditions;
    const FocalPlane& pointing = report.fields.front().pointing;
    return {fact("Time", timeText(air.epoch)),
            fact("MJD (TAI)", numberText(air.epoch, 6)),
            fact("Night of", report.night.evening.toString(Qt::ISODate).toStdString()),
            fact("Position angle", degreesText(pointing.positionAngle(), 2) + "°"),
            fact("Temperature", numberText(air.temperature, 1) + "\u00a0K"),
            fact("Pressure", numberText(air.pressure, 1) + "\u00a0mbar"),
            fact("Relative humidity", numberText(air.relativeHumidity, 2)),
            fact("Site", degreesText(report.telescope.latitude, 4) + "°\u00a0N, " +
                             degreesText(report.telescope.eastLongitude, 4) + "°\u00a0E, " +
                             numberText(report.telescope.height, 0) + "\u00a0m")};
}

Json problemsOf(const std::vector<CheckedFile>& files) {
    Json problems = Json::array();
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            const LineColumn place = file.result.text.at(problem.place.begin);
            problems.push_back({{"severity", severityWord(problem.severity)},
                                {"code", problem.rule->code},
                                {"place", QString::fromStdString(file.name).toStdString() + ':' +
                                              std::to_string(place.line) + ':' + std::to_string(place.column)},
                                {"message", problem.message},
                                {"help", problem.help}});
        }
    }
    return problems;
}

/** What ends a window, behind "ended by". */
std::string whatEnds(WindowLimit limit) {
    switch (limit) {
    case WindowLimit::Horizon:
        return "the horizon";
    case WindowLimit::RotatorLow:
    case WindowLimit::RotatorHigh:
        return "the rotator";
    case WindowLimit::Airmass:
        return "the airmass";
    case WindowLimit::Moon:
        return "the Moon";
    default:
        return wordOf(limit);
    }
}

std::string verdictOf(const Report& report, const ReportedField& field) {
    const std::vector<Window>& windows = field.windows.windows;
    if (windows.empty()) {
        return "Not observable. " + field.windows.reason + '.';
    }
    std::string verdict = "Observable ";
    bool isMomentInside = false;
    for (const Window& window : windows) {
        verdict += (&window == &windows.front() ? "" : ", and ") + clockText(window.start.mjdTai) + " to " +
                   clockText(window.end.mjdTai) + " UTC, ended by " + whatEnds(window.endLimit);
        const double moment = report.conditions.epoch;
        isMomentInside = isMomentInside || (window.start.mjdTai <= moment && moment <= window.end.mjdTai);
    }
    return verdict +
           (isMomentInside ? "." : ". The chosen moment, " + timeText(report.conditions.epoch) + ", is outside.");
}

Json momentFacts(const ReportedField& field) {
    const FocalPlane& pointing = field.pointing;
    const double altitude = pointing.altitude();
    return {fact("Hour angle", hourAngleText(pointing.hourAngle())),
            fact("Altitude", degreesText(altitude, 2) + "°"),
            fact("Airmass", altitude > 0 ? numberText(airmass(altitude), 3) : "–"),
            fact("Azimuth", degreesText(pointing.azimuth(), 2) + "°"),
            fact("Parallactic angle", degreesText(pointing.parallacticAngle(), 2) + "°"),
            fact("Rotator angle",
                 degreesText(
                     wrapAngle(pointing.rotatorOffset() - pointing.parallacticAngle() + pointing.positionAngle()), 2) +
                     "°")};
}

Json placeRow(const std::string& what, const std::string& name, Astrometric sky, PlateCoordinates plate) {
    return {{"what", what},
            {"name", name},
            {"ra", degreesText(sky.ra, 6)},
            {"dec", degreesText(sky.dec, 6)},
            {"x", numberText(plate.x, 3)},
            {"y", numberText(plate.y, 3)}};
}

Json placesOf(const ReportedField& field) {
    Json places = {placeRow("Field centre", "", field.centre.sky, field.centre.plate),
                   placeRow("Science target", field.science.name, field.science.sky, field.science.plate),
                   placeRow("Guide star", field.guide.name, field.guide.sky, field.guide.plate)};
    for (const ReportedMask& mask : field.masks) {
        places.push_back(placeRow("Mask", "radius " + numberText(mask.mask.radius, 1), mask.mask.centre, mask.plate));
    }
    return places;
}

/** The table of the shifts of colours, where the drift is worth it. */
Json coloursOf(const ReportedField& field) {
    constexpr double kWorthTelling = degreesToRadians(0.1 / 3600);
    const auto arcseconds = [](double radians) { return degreesText(radians * 3600, 2); };
    Json rows = Json::array();
    bool isWorthTelling = false;
    for (const ColourShift& shift : field.colours) {
        rows.push_back({{"utc", clockText(shift.mjdTai)},
                        {"altitude", degreesText(shift.altitude, 1)},
                        {"parallactic", degreesText(shift.parallacticAngle, 1)},
                        {"shift", arcseconds(shift.shift)},
                        {"drift", arcseconds(shift.drift)}});
        isWorthTelling = isWorthTelling || shift.drift > kWorthTelling;
    }
    return isWorthTelling ? Json{{"rows", rows}} : Json(false);
}

std::string textIn(const QDomElement& target, const QString& attribute) {
    const QString text = target.attribute(attribute);
    return text == kMissingValue ? "" : text.toStdString();
}

std::string millimetresIn(const QDomElement& target, const QString& attribute) {
    const std::optional<double> value = numberOf(target.attribute(attribute));
    return value ? pictureText(*value, 3) : "";
}

/** A row for each target at or below an element. The generated ones have the name of the science target: left out. */
void addTargets(const QDomElement& parent, Json& rows) {
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == tag::target) {
            const bool isGenerated = child.attribute(attr::automatic).toInt() != 0;
            rows.push_back({{"spaxel", textIn(child, attr::ifuSpaxel)},
                            {"fibre", textIn(child, attr::fibreid)},
                            {"use", textIn(child, attr::targuse)},
                            {"ra", textIn(child, attr::targra)},
                            {"dec", textIn(child, attr::targdec)},
                            {"x", millimetresIn(child, attr::targx)},
                            {"y", millimetresIn(child, attr::targy)},
                            {"name", isGenerated ? Json(false) : Json(textIn(child, attr::targname))}});
        } else if (child.tagName() == tag::group) {
            addTargets(child, rows);
        }
    }
}

Json fieldValues(const Report& report, const ReportedField& field, std::size_t number) {
    Json targets = Json::array();
    addTargets(field.element, targets);
    return {{"number", std::to_string(number)},
            {"name", field.name.empty() ? field.science.name : field.name},
            {"isOneOfSeveral", report.fields.size() > 1},
            {"verdict", verdictOf(report, field)},
            {"isObservable", !field.windows.windows.empty()},
            {"scienceFibre", std::to_string(field.scienceFibre)},
            {"bundle", bundlePicture(field)},
            {"plate", platePicture(field)},
            {"night", nightPicture(report, field)},
            {"moment", momentFacts(field)},
            {"places", placesOf(field)},
            {"colours", coloursOf(field)},
            {"targetCount", std::to_string(targets.size())},
            {"targets", std::move(targets)}};
}

/** The attributes of an element and of all below it, by their path. */
void addAttributes(const QDomElement& element, const QString& path, Json& facts) {
    constexpr int kDigits = 12; // without what only makes a double certain
    const QDomNamedNodeMap attributes = element.attributes();
    std::map<QString, QString> sorted;
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        sorted.emplace(attribute.name(), attribute.value());
    }
    for (const auto& [name, value] : sorted) {
        const std::optional<double> number = numberOf(value);
        facts.push_back(fact((path + name).toStdString(),
                             number ? QString::number(*number, 'g', kDigits).toStdString() : value.toStdString()));
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        addAttributes(child, path + child.tagName() + ' ', facts);
    }
}

/** What the run records of telescope and optics. */
Json focalPlaneRecord(const QDomDocument& document) {
    const QDomElement configure = findConfigureElement(document.documentElement());
    Json facts = Json::array();
    for (const QString& name : {tag::telescope, tag::focalPlaneMap}) {
        addAttributes(configure.firstChildElement(name), "", facts);
    }
    return facts;
}

Json valuesOf(const Report& report) {
    Json fields = Json::array();
    for (const ReportedField& field : report.fields) {
        fields.push_back(fieldValues(report, field, fields.size() + 1));
    }
    const Json problems = problemsOf(report.checked);
    const std::string file = QString::fromStdString(report.request.file).toStdString();
    return {{"title", report.observation.empty() ? file : report.observation},
            {"file", file},
            {"wasConfigured", report.wasConfigured},
            {"facts", factsOf(report)},
            {"hasProblems", !problems.empty()},
            {"problems", problems},
            {"horizon", numberText(90 - radiansToDegrees(report.request.windows.zenithDistanceLimit), 1)},
            {"exposure", numberText(report.request.exposure * 1440, 0)},
            {"fields", std::move(fields)},
            {"focalPlane", focalPlaneRecord(report.document)},
            {"provenance", provenanceJson(report)},
            {"data", reportJson(report)}};
}

} // namespace

QByteArray reportPage(const Report& report) {
    static_cast<void>(qInitResources_check_files());
    const QByteArray text = readFile(":/report.html").value_or(QByteArray());
    return QByteArray::fromStdString(filledTemplate(text.toStdString(), valuesOf(report)));
}

} // namespace pos
