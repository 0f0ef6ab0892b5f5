#include "fields.h"

#include <cmath>

using namespace pos;

double Numbers::between(double low, double high) {
    // The standard library's own distributions differ from one implementation to the next.
    return low + (high - low) * (static_cast<double>(engine_() >> 11U) * 0x1p-53);
}

std::pair<double, double> Numbers::inDisc(double radius) {
    return onCircle(radius * std::sqrt(between(0, 1)));
}

std::pair<double, double> Numbers::onCircle(double radius) {
    const double direction = between(-kTestPi, kTestPi);
    return {radius * std::cos(direction), radius * std::sin(direction)};
}

Pointing anySituation(Numbers& numbers, bool airless) {
    Pointing pointing;
    pointing.telescope.eastLongitude = rad(numbers.between(-180, 180));
    pointing.telescope.latitude = rad(numbers.between(-70, 70));
    pointing.telescope.height = numbers.between(0, 5000);
    pointing.conditions = {numbers.between(51545, 59580), numbers.between(265, 295),
                           airless ? 0.0 : numbers.between(600, 1000), numbers.between(0, 1)};
    pointing.positionAngle = numbers.between(-kTestPi, kTestPi);
    pointing.plate = {numbers.between(-20, 20), numbers.between(-20, 20), rad(numbers.between(-180, 180))};
    return pointing;
}

Pointing fieldAtAltitude(Numbers& numbers, const Range& altitude, bool airless) {
    Pointing pointing = anySituation(numbers, airless);
    const double azimuth = numbers.between(-kTestPi, kTestPi);
    const double zenithDistance = rad(90 - numbers.between(altitude.lowest, altitude.highest));
    pointing.centre = placeObservedAt("A", azimuth, zenithDistance, pointing.conditions, pointing.telescope);
    return pointing;
}

Pointing fieldAtDeclination(Numbers& numbers, const Range& declination, bool airless) {
    for (;;) {
        Pointing pointing = anySituation(numbers, airless);
        const double hourAngle = numbers.between(-kTestPi, kTestPi);
        const double side = std::copysign(1, pointing.telescope.latitude);
        const double dec = side * rad(numbers.between(declination.lowest, declination.highest));
        double azimuth = 0.0;
        double altitude = 0.0;
        eraHd2ae(hourAngle, dec, pointing.telescope.latitude, &azimuth, &altitude);
        if (altitude > rad(30)) {
            pointing.centre = placeObservedAt("H", hourAngle, dec, pointing.conditions, pointing.telescope);
            return pointing;
        }
    }
}

Astrometric placeInField(Numbers& numbers, const Astrometric& centre) {
    const auto [xi, eta] = numbers.inDisc(std::tan(rad(kFieldRadiusDeg)));
    Astrometric place{};
    eraTpsts(xi, eta, centre.ra, centre.dec, &place.ra, &place.dec);
    return place;
}
