#ifndef POS_TESTS_TESTPOINTING_H
#define POS_TESTS_TESTPOINTING_H

#include "PosConfig.h"
#include "angles.h"
#include "pointing.h"

/** The embedded configuration. */
inline pos::PosConfig embeddedConfig() {
    return {":/configure.xml", pos::PosConfig::XML};
}

/** A spring night at the site, with ordinary weather. */
inline pos::Conditions ordinaryConditions() {
    return {58941.9, 283.0, 770.0, 0.3};
}

inline pos::Astrometric highField() {
    return kHighField;
}

/** Where a catalogue position lies on the plate in use. */
inline pos::PlateCoordinates plateOf(const pos::FocalPlane& focalPlane, double date, const pos::ICRS& position) {
    return focalPlane.cirsToXy(position.toAstrometric(date).toCirs(date));
}

#endif
