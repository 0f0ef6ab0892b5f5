/**
 * Prints the tables of docs/accuracy.md that need nothing but the library itself: see tools/accuracy.
 */
#include "ProcessState.h"
#include "measurements.h"

#include <exception>
#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    // The support code states what it relies on as expectations of a test; here a broken one ends the program.
    testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(throw_on_failure, true);
    pos::prepareProcess();
    try {
        measureRoundTrips();
        measureFieldCentreSolve();
        measureHourAngleSolve();
        measureHourAngleLimits();
        measureOtherQuantities();
        measureSpaceMotion();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
