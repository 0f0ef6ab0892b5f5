#include "ProcessWideState.h"

#include "Version.h"
#include "pointing.h"

namespace {

void resetProcessWideState() {
    pos::datamver.clear();
    pos::FocalPlaneCoordinates::setOptics(kOptics);
    pos::FocalPlaneCoordinates::setRotation(0.0);
    pos::PlateCoordinates::setGeometry({{}, pos::PLATE_A, 0.0});
}

} // namespace

void ProcessWideState::SetUp() {
    resetProcessWideState();
}

void ProcessWideState::TearDown() {
    resetProcessWideState();
}
