#include "TargetUse.h"

#include "thrown.h"

#include <gtest/gtest.h>

using namespace pos;

TEST(TargetUse, LettersAreReadInEitherCaseAndWrittenInUpperCase) {
    const std::string upper = "TCGSER";
    const std::string lower = "tcgser";
    for (std::uint32_t value = 0; value < upper.size(); ++value) {
        for (const std::string& letters : {upper, lower}) {
            const TargetUse use(std::string(1, letters.at(value)));
            EXPECT_EQ(use.value(), value);
            EXPECT_EQ(std::string(use), std::string(1, upper.at(value)));
        }
    }
}

TEST(TargetUse, UnknownTextIsNamedAsItStood) {
    for (const std::string text : {"", "x", "sky", "Tt", " T", "T ", "0", "\xc3\xa9"}) {
        EXPECT_EQ(messageOf([&] { return TargetUse(text); }), text + " is not a valid target use");
    }
}

TEST(TargetUse, ValueOutsideTheSetConvertsToTheEmptyText) {
    for (const std::uint32_t value : {6U, 0xffffffffU}) {
        EXPECT_EQ(std::string(TargetUse(static_cast<TargetUse::Value>(value))), "") << value;
    }
}
