#include "LibraryCall.h"
#include "Source.h"
#include "bindings.h"

#include "Estimates.h"
#include "Report.h"
#include "TelescopeConfig.h"
#include "angles.h"
#include "reportPage.h"
#include "windowRecords.h"

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
        throw py::value_error("The night of " + text + kNotOfKnownYears);
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

/** Finds windows, a night at a time, so that signals have their turn. */
class NightSearch {
public:
    NightSearch(const std::string& configFile, const std::optional<std::string>& file, WindowOptions options)
        : NightSearch(openConfig(configFile), file, options) {}

    /** @param first, last evenings */
    std::string find(const Plan& plan, QDate first, QDate last) {
        constexpr qint64 kNightsAtOnce = 400;
        std::vector<FieldNight> found;
        for (QDate evening = first; evening <= last; evening = evening.addDays(kNightsAtOnce)) {
            addNights(plan, evening, std::min(last, evening.addDays(kNightsAtOnce - 1)), found);
        }
        std::stable_sort(found.begin(), found.end(),
                         [](const FieldNight& a, const FieldNight& b) { return a.field < b.field; });
        return withoutInterpreter([&] { return windowJson(found, {{}, telescope_}); });
    }

private:
    void addNights(const Plan& plan, QDate first, QDate last, std::vector<FieldNight>& found) {
        const double longitude = telescope_.eastLongitude;
        const DateContexts contexts =
            inLibrary([&] { return DateContexts(nightOf(first, longitude).begin, nightOf(last, longitude).end); });
        for (QDate evening = first; evening <= last; evening = evening.addDays(1)) {
            const std::vector<Night> night = {nightOf(evening, longitude)};
            const auto more = inLibrary(
                [&] { return findFieldNights(pointing_, telescope_, plan, file_, night, contexts, options_); });
            found.insert(found.end(), more.begin(), more.end());
            endAtSignals();
        }
    }

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
    auto search = inLibrary([&] { return NightSearch(configFile, std::nullopt, options); });
    return search.find(planOf(place, weather[0], weather[1], weather[2]), eveningOf(first), eveningOf(last));
}

/** @param pressure millibar; nothing for the document's */
std::string windowsOfDocument(const Source& source, std::optional<double> pressure, const std::string& first,
                              const std::string& last, const std::string& configFile, const WindowOptions& options) {
    std::optional<Plan> plan;
    auto search = inLibrary([&] {
        NightSearch opened(configFile, source.second, options);
        plan = readPlan(load(source), {.pressure = pressure.value_or(kNotGiven)});
        return opened;
    });
    return search.find(*plan, eveningOf(first), eveningOf(last));
}

/** @param exposureMinutes of the exposure */
std::string report(const Source& source, const std::optional<std::string>& night, const std::string& configFile,
                   const Estimates& estimates, const WindowOptions& options, double fieldRadiusDeg,
                   double exposureMinutes) {
    const auto& [xml, name] = source;
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
    py::class_<WindowOptions>(module, "WindowOptions").def(py::init(&windowOptions));
    module.def("windows_of_place", &windowsOfPlace);
    module.def("windows_of_document", &windowsOfDocument);
    module.def("report", &report);
}

} // namespace pos
