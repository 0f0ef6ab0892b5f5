#include "LibraryCall.h"
#include "PointedPlate.h"
#include "bindings.h"

#include "ConditionsXML.h"
#include "Estimates.h"
#include "OutputFile.h"
#include "Report.h"
#include "TelescopeConfig.h"
#include "angles.h"
#include "reportPage.h"
#include "windowRecords.h"
#include "xmlStructure.h"

#include <QDate>
#include <algorithm>
#include <array>
#include <optional>
#include <pybind11/stl.h>
#include <string>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** @param text YYYY-MM-DD. @throw pybind11::value_error for a night of which Sun and Moon are not known */
QDate eveningOf(const std::string& text) {
    const QDate date = QDate::fromString(QString::fromStdString(text), Qt::ISODate);
    if (!areSunAndMoonKnown(date)) {
        throw py::value_error("The night of " + text +
                              " is not between 1900 and 2100, the years in which Sun and Moon are known");
    }
    return date;
}

std::optional<double> radiansOf(std::optional<double> degrees) {
    return degrees ? std::optional(degreesToRadians(*degrees)) : std::nullopt;
}

/** What a window needs. @param minimum minutes; angles are degrees */
WindowOptions windowOptions(double horizonLimit, std::optional<double> sunAltitude, std::optional<double> airmass,
                            std::optional<double> moon, double minimum) {
    return {zenithDistanceOf(horizonLimit),
            radiansOf(sunAltitude),
            airmass,
            radiansOf(moon),
            minimum / (24 * 60),
            kMarginOfRuns};
}

/** A plan for one place that is none of a document. @param place right ascension, declination, pa, degrees */
Plan planOf(const std::array<double, 3>& place, double temperature, double pressure, double relativeHumidity) {
    const ICRS field{degreesToRadians(place[0]), degreesToRadians(place[1]), 0, 0, 0, 0, 0};
    return {{field}, degreesToRadians(place[2]), {0.0, temperature, pressure, relativeHumidity}};
}

/** The plan of a document. @param pressure millibar; kNotGiven for the document's */
Plan planOfDocument(const std::string& xml, const std::string& name, double pressure) {
    return readPlan(loadXmlBytes(QByteArray::fromStdString(xml), name), {.pressure = pressure});
}

/** Finds windows, a night at a time, so that signals have their turn. */
class NightSearch {
public:
    NightSearch(const std::string& configFile, const std::optional<std::string>& file, WindowOptions options)
        : NightSearch(openConfig(configFile), file, options) {}

    /** @param first, last evenings */
    std::string find(const Plan& plan, QDate first, QDate last) {
        std::vector<Night> nights;
        for (QDate evening = first; evening <= last; evening = evening.addDays(1)) {
            nights.push_back(nightOf(evening, telescope_.eastLongitude));
        }
        const DateContexts contexts = inLibrary([&] { return DateContexts(nights.front().begin, nights.back().end); });
        std::vector<FieldNight> found;
        for (const Night& night : nights) {
            const auto more = inLibrary(
                [&] { return findFieldNights(pointing_, telescope_, plan, file_, {night}, contexts, options_); });
            found.insert(found.end(), more.begin(), more.end());
            endAtSignals();
        }
        std::stable_sort(found.begin(), found.end(),
                         [](const FieldNight& a, const FieldNight& b) { return a.field < b.field; });
        return windowJson(found, {{}, telescope_});
    }

private:
    NightSearch(const PosConfig& config, const std::optional<std::string>& file, WindowOptions options)
        : telescope_(readTelescope(config)), pointing_(config, VEKO, Astrometric{}, 0.0, {}), file_(file),
          options_(options) {}

    Telescope telescope_;
    FocalPlane pointing_;
    std::optional<std::string> file_;
    WindowOptions options_;
};

std::string windowsOfPlace(const std::array<double, 3>& place, const std::array<double, 3>& weather,
                           const std::string& first, const std::string& last, const std::string& configFile,
                           const WindowOptions& options) {
    auto search = inLibrary([&] { return std::make_unique<NightSearch>(configFile, std::nullopt, options); });
    return search->find(planOf(place, weather[0], weather[1], weather[2]), eveningOf(first), eveningOf(last));
}

std::string windowsOfDocument(const std::string& xml, const std::string& name, std::optional<double> pressure,
                              const std::string& first, const std::string& last, const std::string& configFile,
                              const WindowOptions& options) {
    std::optional<Plan> plan;
    auto search = inLibrary([&] {
        auto opened = std::make_unique<NightSearch>(configFile, name, options);
        plan = planOfDocument(xml, name, pressure.value_or(kNotGiven));
        return opened;
    });
    return search->find(*plan, eveningOf(first), eveningOf(last));
}

/** @param exposureMinutes of the exposure */
std::string report(const std::string& xml, const std::string& name, const std::optional<std::string>& night,
                   const std::string& configFile, const Estimates& estimates, const WindowOptions& options,
                   double fieldRadiusDeg, double exposureMinutes) {
    const ReportRequest request{name,
                                QByteArray::fromStdString(xml),
                                configFile,
                                estimates,
                                night ? std::optional(eveningOf(*night)) : std::nullopt,
                                options,
                                degreesToRadians(fieldRadiusDeg),
                                exposureMinutes / (24 * 60),
                                {"veko.report", name}};
    return inLibrary([&] { return reportPage(makeReport(request)).toStdString(); });
}

} // namespace

void bindNights(py::module_& module) {
    py::class_<WindowOptions>(module, "WindowOptions")
        .def(py::init(&windowOptions), py::arg("horizon_limit"), py::arg("sun_altitude"), py::arg("airmass"),
             py::arg("moon"), py::arg("minimum"));
    module.def("windows_of_place", &windowsOfPlace, py::arg("place"), py::arg("weather"), py::arg("first"),
               py::arg("last"), py::arg("config"), py::arg("options"));
    module.def("windows_of_document", &windowsOfDocument, py::arg("xml"), py::arg("name"), py::arg("pressure"),
               py::arg("first"), py::arg("last"), py::arg("config"), py::arg("options"));
    module.def("report", &report, py::arg("xml"), py::arg("name"), py::arg("night"), py::arg("config"),
               py::arg("estimates"), py::arg("options"), py::arg("field_radius"), py::arg("exposure"));
    module.def(
        "write_bytes",
        [](const std::string& name, const std::string& bytes) {
            inLibrary([&] { writeFile(name, QByteArray::fromStdString(bytes)); });
        },
        py::arg("name"), py::arg("bytes"));
}

} // namespace pos
