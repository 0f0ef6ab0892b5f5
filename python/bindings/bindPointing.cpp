#include "LibraryCall.h"
#include "PointedPlate.h"
#include "bindings.h"

#include "Estimates.h"
#include "PointingInForce.h"
#include "SunAndMoon.h"
#include "angles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <erfa.h>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;
using Pair = std::pair<double, double>;

/** An argument of many: a number for each place, or one for all. */
class Column {
public:
    Column(const Numbers& numbers, py::ssize_t size) : data_(numbers.data()), step_(numbers.size() == 1 ? 0 : 1) {
        if (numbers.size() != 1 && numbers.size() != size) {
            throw std::invalid_argument("An argument has another size");
        }
    }

    double at(py::ssize_t i) const {
        return data_[i * step_];
    }

private:
    const double* data_;
    py::ssize_t step_;
};

/** A catalogue place. @param values degrees, degrees, years, mas/yr, mas/yr, arcsec, km/s */
ICRS placeOf(const std::array<double, 7>& values) {
    return {degreesToRadians(values[0]),
            degreesToRadians(values[1]),
            values[2],
            values[3],
            values[4],
            values[5],
            values[6]};
}

/** mm; NaN where the place has none. */
Pair plateOf(const FocalPlane& pointing, const std::array<double, 7>& values) {
    if (!std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); })) {
        return {kNaN, kNaN};
    }
    try {
        const Astrometric place = placeOf(values).toAstrometric(pointing.date());
        const PlateCoordinates position = pointing.cirsToXy(place.toCirs(pointing.dateContext()));
        return {position.x, position.y};
    } catch (const std::runtime_error&) {
        return {kNaN, kNaN};
    }
}

/** Degrees; NaN where the position sees no place. */
Pair skyOf(const FocalPlane& pointing, double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return {kNaN, kNaN};
    }
    try {
        const Astrometric place = pointing.xyToCirs({x, y}).toAstrometric(pointing.dateContext());
        return {radiansToDegrees(place.ra), radiansToDegrees(place.dec)};
    } catch (const std::runtime_error&) {
        return {kNaN, kNaN};
    }
}

/**
 * Converts many places with the pointing as it is now. Other calls have their turn, and signals, after some
 * milliseconds each.
 */
template <typename Convert> py::tuple convertAll(const PointedPlate& plate, py::ssize_t size, const Convert& convert) {
    constexpr py::ssize_t kInOneCall = 10'000;
    const FocalPlane pointing = inLibrary([&] { return plate.pointing(); });
    py::array_t<double> first(size);
    py::array_t<double> second(size);
    double* const firstData = first.mutable_data();
    double* const secondData = second.mutable_data();
    for (py::ssize_t begin = 0; begin < size; begin += kInOneCall) {
        inLibrary([&] {
            const PointingInForce inForce(pointing);
            for (py::ssize_t i = begin; i < std::min(size, begin + kInOneCall); ++i) {
                std::tie(firstData[i], secondData[i]) = convert(pointing, i);
            }
        });
        endAtSignals();
    }
    return py::make_tuple(first, second);
}

py::tuple skyToPlate(const PointedPlate& plate, py::ssize_t size, const std::array<Numbers, 7>& values) {
    std::vector<Column> columns;
    for (const Numbers& numbers : values) {
        columns.emplace_back(numbers, size);
    }
    return convertAll(plate, size, [&](const FocalPlane& pointing, py::ssize_t i) {
        std::array<double, 7> place{};
        std::transform(columns.begin(), columns.end(), place.begin(), [i](const Column& c) { return c.at(i); });
        return plateOf(pointing, place);
    });
}

py::tuple plateToSky(const PointedPlate& plate, py::ssize_t size, const Numbers& x, const Numbers& y) {
    const Column xColumn(x, size);
    const Column yColumn(y, size);
    return convertAll(plate, size, [&](const FocalPlane& pointing, py::ssize_t i) {
        return skyOf(pointing, xColumn.at(i), yColumn.at(i));
    });
}

/** Angles are radians. @param conditions those of Conditions, in their order */
std::unique_ptr<PointedPlate> pointRadians(const std::string& configFile, Astrometric centre, double positionAngle,
                                           const std::array<double, 4>& conditions, std::optional<double> hourAngle) {
    return inLibrary([&] {
        return std::make_unique<PointedPlate>(configFile, centre, positionAngle,
                                              Conditions{conditions[0], conditions[1], conditions[2], conditions[3]},
                                              hourAngle);
    });
}

/** The same in degrees, and hours. */
std::unique_ptr<PointedPlate> pointDegrees(const std::string& configFile, double ra, double dec, double pa,
                                           const std::array<double, 4>& conditions, std::optional<double> hours) {
    return pointRadians(configFile, {degreesToRadians(ra), degreesToRadians(dec)}, degreesToRadians(pa), conditions,
                        hours ? std::optional(hoursToRadians(*hours)) : std::nullopt);
}

/** @param values as placeOf takes them */
void place(PointedPlate& plate, const std::array<double, 7>& values, std::uint32_t fibre) {
    inLibrary([&] { plate.place(placeOf(values), fibre); });
}

LimitsCalc limitsOf(PointedPlate& plate, double horizonLimit) {
    return plate.limits(zenithDistanceOf(horizonLimit));
}

void checkPointing(PointedPlate& plate, double horizonLimit) {
    inLibrary([&] { checkLimits(limitsOf(plate, horizonLimit)); });
}

Pair hourAngleLimits(PointedPlate& plate, double horizonLimit) {
    const Pair limits = inLibrary([&] { return limitsOf(plate, horizonLimit).hourAngleLimits(); });
    return {radiansToHours(limits.first), radiansToHours(limits.second)};
}

/** What a pointing tells of itself, by name: hours, and degrees. */
std::map<std::string, double> state(PointedPlate& plate) {
    return inLibrary([&] {
        const FocalPlane& pointing = plate.pointing();
        const Conditions conditions = pointing.conditions();
        return std::map<std::string, double>{{"ra", radiansToDegrees(eraAnp(pointing.fieldCentre().ra))},
                                             {"dec", radiansToDegrees(pointing.fieldCentre().dec)},
                                             {"pa", radiansToDegrees(pointing.positionAngle())},
                                             {"mjd_tai", conditions.epoch},
                                             {"temperature", conditions.temperature},
                                             {"pressure", conditions.pressure},
                                             {"relative_humidity", conditions.relativeHumidity},
                                             {"altitude", radiansToDegrees(pointing.altitude())},
                                             {"airmass", airmass(pointing.altitude())},
                                             {"azimuth", radiansToDegrees(pointing.azimuth())},
                                             {"hour_angle", radiansToHours(pointing.hourAngle())},
                                             {"parallactic_angle", radiansToDegrees(pointing.parallacticAngle())},
                                             {"rotator_angle", radiansToDegrees(limitsOf(plate, 0.0).rotatorAngle())}};
    });
}

PointedPlate copied(const PointedPlate& plate) {
    return inLibrary([&] { return plate; });
}

/** All that a pointing is made of, in the library's own units, so that it comes back to the bit. */
py::tuple pickled(const PointedPlate& plate) {
    const FocalPlane pointing = inLibrary([&] { return plate.pointing(); });
    const Astrometric centre = pointing.fieldCentre();
    const Conditions conditions = pointing.conditions();
    return py::make_tuple(
        py::bytes(plate.configFile()), centre.ra, centre.dec, pointing.positionAngle(),
        std::array{conditions.epoch, conditions.temperature, conditions.pressure, conditions.relativeHumidity});
}

std::unique_ptr<PointedPlate> unpickled(const py::tuple& parts) {
    const auto conditions = parts[4].cast<std::array<double, 4>>();
    return pointRadians(parts[0].cast<std::string>(), {parts[1].cast<double>(), parts[2].cast<double>()},
                        parts[3].cast<double>(), conditions, std::nullopt);
}

} // namespace

void bindPointing(py::module_& module) {
    py::class_<PointedPlate>(module, "PointedPlate")
        .def(py::init(&pointDegrees))
        .def(py::pickle(&pickled, &unpickled))
        .def("__copy__", &copied)
        .def("__deepcopy__", [](const PointedPlate& plate, const py::dict& /*memo*/) { return copied(plate); })
        .def("sky_to_plate", &skyToPlate)
        .def("plate_to_sky", &plateToSky)
        .def("place", &place)
        .def("check", &checkPointing)
        .def("hour_angle_limits", &hourAngleLimits)
        .def("state", &state);
}

} // namespace pos
