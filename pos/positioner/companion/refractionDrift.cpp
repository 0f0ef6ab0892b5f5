#include "refractionDrift.h"

#include "angles.h"

#include <cmath>
#include <erfa.h>

namespace pos {

namespace {

/** Refraction at a wavelength, radians. @param micrometres the wavelength */
double refraction(const Conditions& air, double zenithDistance, double micrometres) {
    constexpr double kZeroCelsius = 273.15;
    double a = 0.0;
    double b = 0.0;
    eraRefco(air.pressure, air.temperature - kZeroCelsius, air.relativeHumidity, micrometres, &a, &b);
    const double tangent = std::tan(zenithDistance);
    return a * tangent + b * tangent * tangent * tangent;
}

ColourShift shiftAt(const FocalPlane& pointing) {
    const Conditions air = pointing.conditions();
    const double zenithDistance = pointing.zenithDistance();
    return {air.epoch, kPi / 2 - zenithDistance, pointing.parallacticAngle(),
            refraction(air, zenithDistance, 0.4) - refraction(air, zenithDistance, 0.8), 0.0};
}

/** The length of the difference of two shifts. */
double driftBetween(const ColourShift& a, const ColourShift& b) {
    const double north = b.shift * std::cos(b.parallacticAngle) - a.shift * std::cos(a.parallacticAngle);
    const double east = b.shift * std::sin(b.parallacticAngle) - a.shift * std::sin(a.parallacticAngle);
    return std::hypot(north, east);
}

} // namespace

std::vector<ColourShift> colourShifts(FocalPlane pointing, double exposure) {
    const double lowest = degreesToRadians(1);
    const double begin = pointing.date();
    std::vector<ColourShift> shifts;
    for (const double part : {0.0, 0.5, 1.0}) {
        pointing.setDate(begin + part * exposure);
        shifts.push_back(shiftAt(pointing));
        shifts.back().drift = driftBetween(shifts.front(), shifts.back());
        if (shifts.back().altitude < lowest) {
            return {};
        }
    }
    return shifts;
}

} // namespace pos
