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
#include <limits>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <stdexcept>
#include <string>
#include <utility>

namespace pos {

namespace {

namespace py = pybind11;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;
using Two = std::pair<double, double>;

/** An argument of many: a number for each place, or one for all. */
class Column {
public:
    explicit Column(const Numbers& numbers) : data_(numbers.data()), step_(numbers.size() == 1 ? 0 : 1) {}

    double at(py::ssize_t i) const {
        return data_[i * step_];
    }

private:
    const double* data_;
    py::ssize_t step_;
};

/** Refuses what is no declination, degrees; what is not finite is left alone. */
void requireDeclinations(const double* begin, const double* end) {
    if (std::any_of(begin, end, [](double dec) { return std::isfinite(dec) && std::fabs(dec) > 90; })) {
        throw py::value_error("dec must be from -90 to 90 degrees");
    }
}

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
Two plateOf(const FocalPlane& pointing, const std::array<double, 7>& values) {
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
Two skyOf(const FocalPlane& pointing, double x, double y) {
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
    const FocalPlane pointing = inLibrary([&] { return plate.focalPlane(); });
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
    const Numbers& dec = values[1];
    requireDeclinations(dec.data(), dec.data() + dec.size());
    std::vector<Column> columns(values.begin(), values.end());
    return convertAll(plate, size, [&](const FocalPlane& pointing, py::ssize_t i) {
        std::array<double, 7> place{};
        std::transform(columns.begin(), columns.end(), place.begin(), [i](const Column& c) { return c.at(i); });
        return plateOf(pointing, place);
    });
}

py::tuple plateToSky(const PointedPlate& plate, py::ssize_t size, const Numbers& x, const Numbers& y) {
    const Column xColumn(x);
    const Column yColumn(y);
    return convertAll(plate, size, [&](const FocalPlane& pointing, py::ssize_t i) {
        return skyOf(pointing, xColumn.at(i), yColumn.at(i));
    });
}

/** Angles are radians. @param conditions those of Conditions, in their order */
std::unique_ptr<PointedPlate> point(const std::string& configFile, Astrometric centre, double positionAngle,
                                    const std::array<double, 4>& conditions, std::optional<double> hourAngle) {
    return inLibrary([&] {
        return std::make_unique<PointedPlate>(configFile, centre, positionAngle,
                                              Conditions{conditions[0], conditions[1], conditions[2], conditions[3]},
                                              hourAngle);
    });
}

/** The same in degrees, and hours. */
std::unique_ptr<PointedPlate> pointAtDegrees(const std::string& configFile, double ra, double dec, double pa,
                                             const std::array<double, 4>& conditions, std::optional<double> hours) {
    return point(configFile, {degreesToRadians(ra), degreesToRadians(dec)}, degreesToRadians(pa), conditions,
                 hours ? std::optional(hoursToRadians(*hours)) : std::nullopt);
}

/** A property that a function reads from the pointing. */
template <typename Read> auto property(Read read) {
    return [read](const PointedPlate& plate) { return inLibrary([&] { return read(plate.focalPlane()); }); };
}

Two fieldCentre(const FocalPlane& pointing) {
    const Astrometric centre = pointing.fieldCentre();
    return {radiansToDegrees(centre.ra), radiansToDegrees(centre.dec)};
}

double altitudeOf(const FocalPlane& pointing) {
    return kPi / 2 - pointing.zenithDistance();
}

std::array<double, 4> conditionsOf(const FocalPlane& pointing) {
    const Conditions conditions = pointing.conditions();
    return {conditions.epoch, conditions.temperature, conditions.pressure, conditions.relativeHumidity};
}

LimitsCalc limitsOf(const PointedPlate& plate, double horizonLimit) {
    return plate.limits(zenithDistanceOf(horizonLimit));
}

Two hourAngleLimits(const PointedPlate& plate, double horizonLimit) {
    const Two limits = inLibrary([&] { return limitsOf(plate, horizonLimit).hourAngleLimits(); });
    return {radiansToHours(limits.first), radiansToHours(limits.second)};
}

/** All that a pointing is made of, in the library's own units, so that it comes back to the bit. */
py::tuple stateOf(const PointedPlate& plate) {
    const FocalPlane pointing = inLibrary([&] { return plate.focalPlane(); });
    const Astrometric centre = pointing.fieldCentre();
    return py::make_tuple(py::bytes(plate.configFile()), centre.ra, centre.dec, pointing.positionAngle(),
                          conditionsOf(pointing));
}

std::unique_ptr<PointedPlate> pointAgain(const py::tuple& state) {
    const auto conditions = state[4].cast<std::array<double, 4>>();
    return point(state[0].cast<std::string>(), {state[1].cast<double>(), state[2].cast<double>()},
                 state[3].cast<double>(), conditions, std::nullopt);
}

} // namespace

void bindPointing(py::module_& module) {
    py::class_<PointedPlate>(module, "PointedPlate")
        .def(py::init(&pointAtDegrees), py::arg("config"), py::arg("ra"), py::arg("dec"), py::arg("pa"),
             py::arg("conditions"), py::arg("hour_angle"))
        .def(py::pickle(&stateOf, &pointAgain))
        .def("sky_to_plate", &skyToPlate, py::arg("size"), py::arg("values"))
        .def("plate_to_sky", &plateToSky, py::arg("size"), py::arg("x"), py::arg("y"))
        .def(
            "place",
            [](PointedPlate& plate, const std::array<double, 7>& place, std::uint32_t fibre) {
                requireDeclinations(&place[1], &place[2]);
                inLibrary([&] { plate.place(placeOf(place), fibre); });
            },
            py::arg("place"), py::arg("fibre"))
        .def(
            "check",
            [](const PointedPlate& plate, double limit) { inLibrary([&] { checkLimits(limitsOf(plate, limit)); }); },
            py::arg("horizon_limit"))
        .def("hour_angle_limits", &hourAngleLimits, py::arg("horizon_limit"))
        .def_property_readonly("field_centre", property(fieldCentre))
        .def_property_readonly("conditions", property(conditionsOf))
        .def_property_readonly("pa", property([](const FocalPlane& p) { return radiansToDegrees(p.positionAngle()); }))
        .def_property_readonly("altitude",
                               property([](const FocalPlane& p) { return radiansToDegrees(altitudeOf(p)); }))
        .def_property_readonly(
            "airmass", property([](const FocalPlane& p) { return altitudeOf(p) < 0 ? kNaN : airmass(altitudeOf(p)); }))
        .def_property_readonly("azimuth", property([](const FocalPlane& p) { return radiansToDegrees(p.azimuth()); }))
        .def_property_readonly("parallactic_angle",
                               property([](const FocalPlane& p) { return radiansToDegrees(p.parallacticAngle()); }))
        .def_property_readonly("hour_angle",
                               property([](const FocalPlane& p) { return radiansToHours(p.hourAngle()); }))
        .def_property_readonly("rotator_angle", [](const PointedPlate& plate) {
            return inLibrary([&] { return radiansToDegrees(limitsOf(plate, 0.0).rotatorAngle()); });
        });
}

} // namespace pos
