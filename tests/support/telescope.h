#ifndef POS_TESTS_TELESCOPE_H
#define POS_TESTS_TELESCOPE_H

#include "pointing.h"

/** A telescope in degrees and metres. */
struct TelescopeSettings {
    double eastLongitude = -17.881639;
    double latitude = 28.760583;
    double height = 2332.0;
    double rotatorOffset = 0.0;
    double rotatorLowLimit = -135.0;
    double rotatorHighLimit = 135.0;
};

inline pos::Telescope telescopeConfig(const TelescopeSettings& settings) {
    pos::Telescope telescope = kTelescope;
    telescope.eastLongitude = rad(settings.eastLongitude);
    telescope.latitude = rad(settings.latitude);
    telescope.height = settings.height;
    telescope.rotatorOffset = rad(settings.rotatorOffset);
    telescope.rotatorLowLimit = rad(settings.rotatorLowLimit);
    telescope.rotatorHighLimit = rad(settings.rotatorHighLimit);
    return telescope;
}

inline eraASTROM libraryContext(const TelescopeSettings& telescope, const pos::Conditions& conditions) {
    return libraryContext(conditions, telescopeConfig(telescope));
}

inline pos::Astrometric placeObservedAt(const char* type, double first, double second,
                                        const TelescopeSettings& telescope, const pos::Conditions& conditions) {
    return placeObservedAt(type, first, second, conditions, telescopeConfig(telescope));
}

#endif
