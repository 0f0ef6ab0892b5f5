#ifndef POS_TESTS_PROCESSWIDESTATE_H
#define POS_TESTS_PROCESSWIDESTATE_H

#include "Version.h"
#include "pointing.h"

#include <gtest/gtest.h>

/**
 * Resets the state that the library keeps once per process, before and after every test: the data model version is
 * empty, the optical model and the plate geometry are those of the embedded focal-plane map, the plate is PLATE_A and
 * the rotation 0. Every test that loads a configuration or a document, or touches optics or plates, uses this fixture.
 */
class ProcessWideState : public testing::Test {
protected:
    void SetUp() override {
        reset();
    }
    void TearDown() override {
        reset();
    }

private:
    static void reset() {
        pos::datamver.clear();
        pos::FocalPlaneCoordinates::setOptics(kOptics);
        pos::FocalPlaneCoordinates::setRotation(0.0);
        pos::PlateCoordinates::setGeometry({{}, pos::PLATE_A, 0.0});
    }
};

#endif
