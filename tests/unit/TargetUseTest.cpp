#include "TargetUse.h"

#include "thrown.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace pos;

namespace {

struct Letter {
    const char* upper;
    const char* lower;
    std::uint32_t value;
};

constexpr Letter kLetters[] = {{"T", "t", 0}, {"C", "c", 1}, {"G", "g", 2},
                               {"S", "s", 3}, {"E", "e", 4}, {"R", "r", 5}};

} // namespace

TEST(TargetUse, EachLetterHasItsValueInTheStatedOrder) {
    for (const Letter& letter : kLetters) {
        EXPECT_EQ(TargetUse(std::string(letter.upper)).value(), letter.value) << letter.upper;
        EXPECT_EQ(std::string(TargetUse(static_cast<TargetUse::Value>(letter.value))), letter.upper);
    }
}

TEST(TargetUse, LowerCaseIsReadAndWrittenBackInUpperCase) {
    for (const Letter& letter : kLetters) {
        EXPECT_EQ(TargetUse(std::string(letter.lower)).value(), letter.value) << letter.lower;
        EXPECT_EQ(std::string(TargetUse(std::string(letter.lower))), letter.upper);
    }
}

TEST(TargetUse, UnknownTextIsNamedAsItStood) {
    for (const std::string text : {"X", "x", "sky", "Tt", "TC", " T", "T ", "0", "\xc3\xa9"}) {
        EXPECT_EQ(messageOf([&] { return TargetUse(text); }), text + " is not a valid target use");
    }
}

TEST(TargetUse, EmptyTextIsNotValid) {
    EXPECT_EQ(messageOf([] { return TargetUse(std::string()); }), " is not a valid target use");
}

TEST(TargetUse, ValueOutsideTheSetConvertsToTheEmptyText) {
    for (const std::uint32_t value : {6U, 7U, 255U, 0xffffffffU}) {
        EXPECT_EQ(std::string(TargetUse(static_cast<TargetUse::Value>(value))), "") << value;
    }
}

TEST(TargetUse, IsAPlainThirtyTwoBitValue) {
    EXPECT_TRUE(std::is_trivially_copyable_v<TargetUse>);
    EXPECT_EQ(sizeof(TargetUse), sizeof(std::uint32_t));
}
