#include "DateContexts.h"

#include "angles.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** How far places by interpolated contexts are from the library's, radians. */
double largestError(double begin, double end, int instants) {
    const DateContexts contexts(begin, end);
    double largest = 0.0;
    for (int i = 0; i < instants; ++i) {
        const double date = begin + (end - begin) * (i + 0.37) / instants;
        const DateContext exact(date);
        const DateContext interpolated = contexts.at(date);
        EXPECT_EQ(interpolated.date, date);
        for (const Astrometric place : {Astrometric{0.1, 0.0}, {2.0, 0.7}, {4.0, -1.2}, {5.5, 1.57}}) {
            const CIRS expected = place.toCirs(exact);
            const CIRS found = place.toCirs(interpolated);
            largest = std::max(largest, eraSeps(expected.ra, expected.dec, found.ra, found.dec));
        }
    }
    return largest;
}

} // namespace

TEST(DateContexts, AreAsNearToTheLibrarysAsTheySay) {
    EXPECT_LT(largestError(57500.0, 57900.0, 800), DateContexts::kLargestError);
    for (double begin = 15100.0; begin < 88000.0; begin += 2345.6) {
        for (const double nights : {1.0, 2.0, 4.0, 9.0}) {
            EXPECT_LT(largestError(begin, begin + nights, 20), DateContexts::kLargestError) << begin << ", " << nights;
        }
    }
}
