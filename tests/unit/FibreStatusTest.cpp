#include "FibreStatus.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** How a word is read, and written back. */
std::pair<std::uint32_t, std::string> taken(const std::string& word) {
    return {FibreStatus(word).value(), std::string(FibreStatus(word))};
}

std::pair<std::uint32_t, std::string> as(std::uint32_t value, const char* text) {
    return {value, text};
}

} // namespace

TEST(FibreStatus, WordsAreReadInAnyCaseAndWrittenInLowerCase) {
    EXPECT_EQ(taken("enabled"), as(0, "enabled"));
    EXPECT_EQ(taken("DisAbled"), as(1, "disabled"));
    EXPECT_EQ(taken("BROKEN"), as(2, "broken"));
    EXPECT_EQ(taken("BAD FERRULE"), as(3, "bad ferrule"));
    EXPECT_EQ(taken("No Magnet"), as(4, "no magnet"));
    EXPECT_EQ(taken("no PRISM"), as(5, "no prism"));
    EXPECT_EQ(taken("Absent"), as(6, "absent"));
}

TEST(FibreStatus, AnyOtherWordCountsAsBroken) {
    for (const std::string word : {"", "enabeld", "bad  ferrule", " enabled", "enabled ", "0", "\xc3\xa9"}) {
        EXPECT_EQ(taken(word), as(2, "broken")) << word;
    }
}

TEST(FibreStatus, ValueOutsideTheSetConvertsToTheEmptyText) {
    for (const std::uint32_t value : {7U, 0xffffffffU}) {
        EXPECT_EQ(std::string(FibreStatus(static_cast<FibreStatus::Value>(value))), "") << value;
    }
}
