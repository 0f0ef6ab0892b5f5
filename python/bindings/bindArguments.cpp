#include "bindings.h"

#include "CheckedDocument.h"
#include "ConditionsXML.h"
#include "Estimates.h"
#include "Quantity.h"
#include "requirements.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <string>
#include <utility>

namespace pos {

namespace {

namespace py = pybind11;

/** Temperature, pressure and humidity of a document that names none. */
std::array<double, 3> defaultWeather() {
    const Conditions conditions = createConditionsXML({});
    return {conditions.temperature, conditions.pressure, conditions.relativeHumidity};
}

/** MJD, TAI. */
double mjdOfEpoch(double epoch) {
    return resolveDate(epoch, {});
}

/** The first finite number of an array that is beyond a range; nothing where there is none. */
std::optional<double> firstBeyond(const py::array_t<double, py::array::c_style | py::array::forcecast>& array,
                                  double low, double high) {
    const double* const end = array.data() + array.size();
    const double* const found = std::find_if(
        array.data(), end, [&](double value) { return std::isfinite(value) && (value < low || value > high); });
    return found == end ? std::nullopt : std::optional(*found);
}

/** The smallest and the largest value of what a number measures. */
std::map<std::string, std::pair<double, double>> ranges() {
    std::map<std::string, std::pair<double, double>> all;
    for (const auto& [name, quantity] : std::map<std::string, Quantity>{{"dec", Quantity::Declination},
                                                                        {"pa", Quantity::PositionAngle},
                                                                        {"hour_angle", Quantity::HourAngle},
                                                                        {"date", Quantity::ObservationDate},
                                                                        {"epoch", Quantity::CatalogueEpoch},
                                                                        {"temperature", Quantity::Temperature},
                                                                        {"pressure", Quantity::Pressure},
                                                                        {"relative_humidity", Quantity::Humidity},
                                                                        {"pm_ra", Quantity::ProperMotion},
                                                                        {"pm_dec", Quantity::ProperMotion},
                                                                        {"parallax", Quantity::Parallax},
                                                                        {"rv", Quantity::RadialVelocity}}) {
        const Range range = rangeOf(quantity);
        all[name] = {range.low, range.high};
    }
    return all;
}

} // namespace

void bindArguments(py::module_& module) {
    // None of these uses what is process-wide.
    module.attr("horizon_limit") = kHorizonLimitDeg;
    module.attr("field_radius") = kFieldRadiusDeg;
    module.def("default_weather", &defaultWeather);
    module.def("mjd_of_epoch", &mjdOfEpoch);
    module.def("ranges", &ranges);
    module.def("first_beyond", &firstBeyond);
    module.def("twilights", &twilights);
}

} // namespace pos
