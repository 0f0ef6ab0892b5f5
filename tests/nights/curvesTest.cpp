#include "curves.h"

#include "angles.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace pos;
using testing::DoubleNear;
using testing::ElementsAre;

namespace {

constexpr double kMillisecond = 1e-3 / 86400;
/** A day that begins at an ordinary date. */
constexpr double kBegin = 61442.5;
constexpr double kEnd = kBegin + 1;
/** Half a second from the turn the wave is lower by this. */
const double kDepth = 1 - std::cos(2 * kPi * 0.5 / 86400);

/** A wave of a day that is highest in its middle. @param offset by which it is lifted, radians */
Curve wave(double offset) {
    const auto value = [offset](double mjdTai) { return offset - std::cos(2 * kPi * (mjdTai - kBegin)); };
    return {value, {kBegin + 0.5 + 0.9 * kTurnError}};
}

} // namespace

TEST(Curves, PassZeroWhereTheyDo) {
    EXPECT_THAT(crossings(wave(0.0), kBegin, kEnd),
                ElementsAre(DoubleNear(kBegin + 0.25, kMillisecond), DoubleNear(kBegin + 0.75, kMillisecond)));
    EXPECT_THAT(crossings(wave(0.0), kBegin + 0.3, kEnd), ElementsAre(DoubleNear(kBegin + 0.75, kMillisecond)));
    EXPECT_THAT(crossings(wave(-1.1), kBegin, kEnd), ElementsAre());
}

TEST(Curves, AreFoundToPassZeroForASecond) {
    const std::vector<double> found = crossings(wave(kDepth - 1), kBegin, kEnd);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_NEAR((found.at(1) - found.at(0)) * 86400, 1.0, 1e-3);
    EXPECT_TRUE(crossings(wave(-1 - kDepth), kBegin, kEnd).empty());
}

TEST(Curves, AreFoundToPassZeroWhereTheTurnIsThoughtToBeOutside) {
    EXPECT_EQ(crossings(wave(kDepth - 1), kBegin, kBegin + 0.51).size(), 2U);
    EXPECT_EQ(crossings(wave(kDepth - 1), kBegin + 0.4999, kBegin + 0.51).size(), 2U);
}

TEST(Curves, AreFoundToPassZeroJustBeforeAJump) {
    Curve jumping = wave(0.0);
    constexpr double kJump = kBegin + 0.2501;
    jumping.value = [smooth = jumping.value](double mjdTai) { return smooth(mjdTai) - (mjdTai < kJump ? 0.0 : 0.1); };
    jumping.jumps = {kJump};
    EXPECT_THAT(crossings(jumping, kBegin, kBegin + 0.5),
                ElementsAre(DoubleNear(kBegin + 0.25, kMillisecond), DoubleNear(kJump, kMillisecond),
                            DoubleNear(kBegin + 0.25 + std::asin(0.1) / (2 * kPi), kMillisecond)));
}

TEST(Curves, TurnWhereTheyDo) {
    constexpr double kMinute = 1.0 / 1440;
    EXPECT_THAT(turnsOf(wave(0.0).value, kBegin - 0.1, kEnd + 0.1),
                ElementsAre(DoubleNear(kBegin, kMinute), DoubleNear(kBegin + 0.5, kMinute), DoubleNear(kEnd, kMinute)));
    // Beside the ends, where only one neighbour is within.
    EXPECT_THAT(turnsOf(wave(0.0).value, kBegin + 0.49, kBegin + 0.6), ElementsAre(DoubleNear(kBegin + 0.5, kMinute)));
}
