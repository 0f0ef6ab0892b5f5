/**
 * @file
 * The observing conditions: when, and through which air.
 */
#ifndef POS_CONDITIONS_H
#define POS_CONDITIONS_H

namespace pos {

/** Date and weather of an observation, a plain value without checks. */
struct Conditions {
    double epoch;            ///< date and time of the observation, Modified Julian Date on the TAI scale
    double temperature;      ///< ambient temperature, kelvin
    double pressure;         ///< ambient pressure, millibar (hPa); 0 means no refraction
    double relativeHumidity; ///< relative humidity, 0 to 1

    /** Whether all four are equal; never with a NaN. */
    bool operator==(const Conditions&) const = default;
};

} // namespace pos

#endif
