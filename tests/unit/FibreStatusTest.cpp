#include "FibreStatus.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace pos;

namespace {

struct Word {
    const char* text;
    std::uint32_t value;
};

constexpr Word kWords[] = {{"enabled", 0},   {"disabled", 1}, {"broken", 2}, {"bad ferrule", 3},
                           {"no magnet", 4}, {"no prism", 5}, {"absent", 6}};

std::uint32_t valueOf(const std::string& text) {
    return FibreStatus(text).value();
}

} // namespace

TEST(FibreStatus, EachWordHasItsValueInTheStatedOrder) {
    for (const Word& word : kWords) {
        EXPECT_EQ(valueOf(word.text), word.value) << word.text;
        EXPECT_EQ(std::string(FibreStatus(static_cast<FibreStatus::Value>(word.value))), word.text);
    }
}

TEST(FibreStatus, LetterCaseDoesNotMatterAndIsWrittenBackInLowerCase) {
    EXPECT_EQ(valueOf("Enabled"), 0U);
    EXPECT_EQ(valueOf("ENABLED"), 0U);
    EXPECT_EQ(valueOf("DisAbled"), 1U);
    EXPECT_EQ(valueOf("BAD FERRULE"), 3U);
    EXPECT_EQ(valueOf("No Magnet"), 4U);
    EXPECT_EQ(valueOf("no PRISM"), 5U);
    EXPECT_EQ(valueOf("Absent"), 6U);
    EXPECT_EQ(std::string(FibreStatus(std::string("ENABLED"))), "enabled");
}

TEST(FibreStatus, AnyOtherWordCountsAsBroken) {
    for (const std::string text : {"broken", "Broken", "BROKEN", "", "enabeld", "unknown", "bad  ferrule", " enabled",
                                   "enabled ", "0", "\xc3\xa9"}) {
        EXPECT_EQ(valueOf(text), 2U) << text;
        EXPECT_EQ(std::string(FibreStatus(text)), "broken") << text;
    }
}

TEST(FibreStatus, ValueOutsideTheSetConvertsToTheEmptyText) {
    for (const std::uint32_t value : {7U, 8U, 255U, 0xffffffffU}) {
        EXPECT_EQ(std::string(FibreStatus(static_cast<FibreStatus::Value>(value))), "") << value;
    }
}

TEST(FibreStatus, IsAPlainThirtyTwoBitValue) {
    EXPECT_TRUE(std::is_trivially_copyable_v<FibreStatus>);
    EXPECT_EQ(sizeof(FibreStatus), sizeof(std::uint32_t));
}
