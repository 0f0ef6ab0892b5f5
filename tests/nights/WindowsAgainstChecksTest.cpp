#include "ProcessWideState.h"
#include "windowDifferences.h"

namespace {

constexpr std::uint64_t kSeed = 13;

using WindowsAgainstChecks = ProcessWideState;

/** @return how many windows there were */
int expectNoDifference(const std::vector<WindowKind>& kinds, int nights) {
    int windows = 0;
    for (const WindowKind& kind : kinds) {
        Numbers numbers(kSeed);
        WindowDifferences differences;
        for (int night = 0; night < nights; ++night) {
            differences.add(kind.make(numbers));
        }
        EXPECT_LT(differences.ends.worst(), 1.0) << kind.name << ": milliseconds";
        EXPECT_EQ(differences.lost, 0) << kind.name;
        EXPECT_EQ(differences.invented, 0) << kind.name;
        EXPECT_EQ(differences.wrongLimits, 0) << kind.name;
        windows += differences.windows;
    }
    return windows;
}

} // namespace

// tests/accuracy/windowCases.cpp makes the cases; docs/window.md has the figures of thousands.
TEST_F(WindowsAgainstChecks, AreThoseThatTheRunsOwnChecksShowAtEachKindOfSite) {
    EXPECT_GT(expectNoDifference(windowsBySite(), 8), 20);
}

TEST_F(WindowsAgainstChecks, AreNotLostWhenTheyLastASecond) {
    EXPECT_GT(expectNoDifference(grazingWindows(), 5), 35);
}
