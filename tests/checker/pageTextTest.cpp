#include "pageText.h"
#include "angles.h"
#include "pageTemplate.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace pos;

TEST(PageText, NumbersHaveTheMinusSignOfTypographyAndNoNegativeZero) {
    EXPECT_EQ(numberText(-1.25, 1), "−1.3");
    EXPECT_EQ(numberText(-0.04, 1), "0.0");
    EXPECT_EQ(pictureText(-0.04, 1), "0");
    EXPECT_EQ(pictureText(120.50, 2), "120.5");
}

TEST(PageText, TimesAreRoundedToTheirLastPlace) {
    constexpr double kTaiLessUtc = 37.0 / 86400; // since 2017
    constexpr double kSecond = 1.0 / 86400;
    EXPECT_EQ(clockText(61498 - 31 * kSecond + kTaiLessUtc), "23:59");
    EXPECT_EQ(clockText(61498 - 29 * kSecond + kTaiLessUtc), "00:00");
    EXPECT_EQ(hourAngleText(-kPi / 12), "−01:00:00");
    EXPECT_EQ(hourAngleText(-1e-7), "00:00:00");
}

TEST(PageText, SmallAnglesAreToldInTheUnitThatSuitsThem) {
    EXPECT_EQ(smallAngleText(degreesToRadians(59.9 / 3600)), "59.9″");
    EXPECT_EQ(smallAngleText(degreesToRadians(7.5 / 60)), "7.5′");
}

TEST(PageTemplate, EscapesValuesAndRepeatsSections) {
    const nlohmann::ordered_json values = {{"list", {{{"name", "a<b"}}, {{"name", "{{list}}"}}}}, {"none", false}};
    EXPECT_EQ(filledTemplate("{{#list}}[{{name}}]{{/list}}{{^none}}-{{/none}}{{#none}}+{{/none}}", values),
              "[a&lt;b][{{list}}]-");
    EXPECT_THROW(filledTemplate("{{#list}}", values), std::runtime_error);
}

TEST(PageTemplate, JsonCannotEndItsScriptElement) {
    const nlohmann::ordered_json values = {{"name", "</script><!--"}};
    const std::string text = jsonForScript(values);
    EXPECT_EQ(text.find('<'), std::string::npos);
    EXPECT_EQ(nlohmann::ordered_json::parse(text), values);
}

} // namespace
