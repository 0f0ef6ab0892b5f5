#include "FocalPlaneXML.h"
#include "ProcessWideState.h"
#include "documents.h"
#include "pointings.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class FocalPlaneRecordProperty : public ProcessWideState {};

double number(const QDomElement& element, const char* attribute) {
    bool ok = false;
    const double value = element.attribute(QString::fromLatin1(attribute)).toDouble(&ok);
    RC_ASSERT(ok);
    return value;
}

/** The record of a pointing, as it comes back from a file. */
QDomDocument recordOf(const FocalPlane& focalPlane) {
    const QDomDocument document = emptyDocument("configure");
    saveFocalPlaneXML(focalPlane, document, document.documentElement());
    return writtenAndLoaded(document);
}

/** A pointing with optics of its own, which replace those of the map. */
FocalPlane anyFocalPlane(const Pointing& pointing) {
    FocalPlane focalPlane = focalPlaneOf(pointing);
    FocalPlaneCoordinates::setFocalLength(*between(10000.0, 13000.0).as("focal length"));
    FocalPlaneCoordinates::setDistortion(*between(180.0, 220.0).as("c1"), *between(-5.0, 5.0).as("c3"),
                                         *between(-0.5, 0.5).as("c5"));
    return focalPlane;
}

} // namespace

RC_GTEST_FIXTURE_PROP(FocalPlaneRecordProperty, TheOpticsReadBackAsAMap, ()) {
    const FocalPlane focalPlane = anyFocalPlane(anyPointing(false));
    const FocalPlaneCoordinates::params used = FocalPlaneCoordinates::save();
    const QDomDocument record = recordOf(focalPlane);
    const QDomElement map = record.documentElement().firstChildElement("focal_plane_map");
    requireToDecimals(number(map, "nominal_focal_length"), FocalPlaneCoordinates::nominalFocalLength(), 1);

    FocalPlaneCoordinates::initialise(record);
    const FocalPlaneCoordinates::params read = FocalPlaneCoordinates::save();
    requireToDecimals(read.focalLength, used.focalLength, 1);
    RC_ASSERT(read.c1 == used.c1);
    RC_ASSERT(read.c3 == used.c3);
    RC_ASSERT(read.c5 == used.c5);

    // What a second record holds is the same to the bit.
    FocalPlaneCoordinates::initialise(recordOf(focalPlane));
    const FocalPlaneCoordinates::params again = FocalPlaneCoordinates::save();
    RC_ASSERT(again.focalLength == read.focalLength);
    RC_ASSERT(again.c1 == read.c1);
    RC_ASSERT(again.c3 == read.c3);
    RC_ASSERT(again.c5 == read.c5);
}

// A map states the rotation of a plate in degrees, the record in radians: read as a map it would be another rotation.
RC_GTEST_FIXTURE_PROP(FocalPlaneRecordProperty, ThePlatesReadBackToThreeDecimals, ()) {
    const Pointing pointing = anyPointing(false);
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const QDomDocument record = recordOf(focalPlane);
    const QDomElement axes =
        record.documentElement().firstChildElement("focal_plane_map").firstChildElement("optical_axis");
    for (const char* plate : {"PLATE_A", "PLATE_B", "VEKO"}) {
        const QDomElement axis = axes.firstChildElement(QString::fromLatin1(plate));
        requireToDecimals(number(axis, "x0"), pointing.plate.x0, 3);
        requireToDecimals(number(axis, "y0"), pointing.plate.y0, 3);
        requireToDecimals(number(axis, "r0"), pointing.plate.r0, 3);
    }
    PlateCoordinates::initialise(record, VEKO);
    requireToDecimals(PlateCoordinates::opticalAxis(VEKO).x0, pointing.plate.x0, 3);
    requireToDecimals(PlateCoordinates::opticalAxis(VEKO).y0, pointing.plate.y0, 3);
}
