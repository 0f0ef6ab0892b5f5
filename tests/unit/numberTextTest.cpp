#include "numberText.h"

#include "xml.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace pos;

TEST(NumberText, IsFixedPointWithTiesAwayFromZero) {
    struct Row {
        double value;
        int decimals;
        const char* text;
    };
    // A tie is a sum of powers of two, so that it is exact.
    for (const auto& [value, decimals, text] :
         {Row{1.0, 0, "1"}, Row{-150.25, 6, "-150.250000"}, Row{9.9996, 3, "10.000"}, Row{1234567.0, 1, "1234567.0"},
          Row{std::ldexp(1.0, 60), 0, "1152921504606846976"}, Row{0.5, 0, "1"}, Row{-2.5, 0, "-3"},
          Row{0.125, 2, "0.13"}, Row{std::nextafter(0.125, 0.0), 2, "0.12"},
          Row{1.005, 2, "1.00"}, // the double is less
          Row{0.0001, 2, "0.00"}, Row{std::nan(""), 3, "nan"}}) {
        EXPECT_EQ(fixedText(value, decimals).toStdString(), text);
    }
}

TEST(NumberText, InGeneralNotationIsThatOfTheAttributeSetter) {
    QDomElement element = parseElement("<e/>");
    for (const double value : {0.0, -0.0, -20.0, 0.1, 1.0 / 3, 0.00001, 1e15, 1e17, std::ldexp(1.0, -1074),
                               std::numeric_limits<double>::max(), -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
        element.setAttribute("v", value);
        EXPECT_EQ(generalText(value), element.attribute("v")) << value;
    }
}
