#include "ProcessWideState.h"

#include "FocalPlaneCoordinates.h"
#include "PlateCoordinates.h"
#include "Version.h"
#include "xmlStructure.h"

namespace {

void resetProcessWideState() {
    pos::datamver.clear();
    const QDomDocument map = pos::loadXmlFile(":/focal_plane_map.xml");
    pos::FocalPlaneCoordinates::initialise(map);
    pos::PlateCoordinates::initialise(map, pos::PLATE_A);
}

} // namespace

void ProcessWideState::SetUp() {
    resetProcessWideState();
}

void ProcessWideState::TearDown() {
    resetProcessWideState();
}
