#ifndef POS_TESTS_TESTPOINTING_H
#define POS_TESTS_TESTPOINTING_H

#include "CelestialPosition.h"
#include "Conditions.h"
#include "FocalPlane.h"
#include "PlateCoordinates.h"
#include "PosConfig.h"
#include "angles.h"

/** The embedded configuration. */
inline pos::PosConfig embeddedConfig() {
    return {":/configure.xml", pos::PosConfig::XML};
}

/** A spring night at the site, with ordinary weather. */
inline pos::Conditions ordinaryConditions() {
    return {58941.9, 283.0, 770.0, 0.3};
}

/** A field centre that culminates near the zenith of the site. */
inline pos::Astrometric highField() {
    return {pos::degreesToRadians(150.0), pos::degreesToRadians(30.0)};
}

/** Where a catalogue position lies on the plate in use, by the conversions one after the other. */
inline pos::PlateCoordinates plateOf(const pos::FocalPlane& focalPlane, double date, const pos::ICRS& position) {
    const pos::CIRS place = position.toAstrometric(date).toCirs(date);
    return pos::PlateCoordinates(pos::FocalPlaneCoordinates(focalPlane.cirsToStd(place)));
}

#endif
