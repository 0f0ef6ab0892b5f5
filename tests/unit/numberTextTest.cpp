#include "numberText.h"

#include "attributeText.h"

#include <QTextStream>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace pos;

namespace {

std::string fixed(double value, int decimals) {
    return fixedText(value, decimals).toStdString();
}

std::string filledIn(double value, int decimals) {
    return QStringLiteral("%1").arg(value, 0, 'f', decimals, QLatin1Char(' ')).toStdString();
}

std::string streamed(double value, int decimals) {
    QString text;
    QTextStream stream(&text);
    stream.setRealNumberNotation(QTextStream::FixedNotation);
    stream.setRealNumberPrecision(decimals);
    stream << value;
    stream.flush();
    return text.toStdString();
}

} // namespace

TEST(NumberText, HasTheStatedNumberOfDecimals) {
    EXPECT_EQ(fixed(1.0, 0), "1");
    EXPECT_EQ(fixed(1.0, 1), "1.0");
    EXPECT_EQ(fixed(-150.25, 6), "-150.250000");
    EXPECT_EQ(fixed(0.1234567, 6), "0.123457");
    EXPECT_EQ(fixed(2016.0, 2), "2016.00");
}

TEST(NumberText, ExactTiesGoAwayFromZero) {
    // Each of these is a sum of powers of two, so that the tie is exact.
    EXPECT_EQ(fixed(0.5, 0), "1");
    EXPECT_EQ(fixed(1.5, 0), "2");
    EXPECT_EQ(fixed(2.5, 0), "3");
    EXPECT_EQ(fixed(-2.5, 0), "-3");
    EXPECT_EQ(fixed(0.125, 2), "0.13");
    EXPECT_EQ(fixed(-0.125, 2), "-0.13");
    EXPECT_EQ(fixed(0.375, 2), "0.38");
    EXPECT_EQ(fixed(1.0625, 3), "1.063");
    EXPECT_EQ(fixed(0.00390625, 7), "0.0039063");
}

TEST(NumberText, ValuesBesideATieGoToTheNearerSide) {
    EXPECT_EQ(fixed(std::nextafter(2.5, 0.0), 0), "2");
    EXPECT_EQ(fixed(std::nextafter(0.125, 0.0), 2), "0.12");
    EXPECT_EQ(fixed(std::nextafter(0.125, 1.0), 2), "0.13");
    EXPECT_EQ(fixed(1.005, 2), "1.00"); // the double lies below
}

TEST(NumberText, RoundingCarriesIntoTheNextDigit) {
    EXPECT_EQ(fixed(9.9996, 3), "10.000");
    EXPECT_EQ(fixed(-359.9999999, 6), "-360.000000");
}

TEST(NumberText, LargeValuesAreWrittenInFullAndNeverWidenedOrGrouped) {
    EXPECT_EQ(fixed(1234567.0, 1), "1234567.0");
    EXPECT_EQ(fixed(1e15, 2), "1000000000000000.00");
    EXPECT_EQ(fixed(std::ldexp(1.0, 60), 0), "1152921504606846976");
}

TEST(NumberText, SmallValuesKeepTheirSignAsTheLibraryWritesIt) {
    for (const double value : {-0.0, -0.0001, -1e-300}) {
        EXPECT_EQ(fixed(value, 2), filledIn(value, 2)) << value;
    }
    EXPECT_EQ(fixed(0.0001, 2), "0.00");
}

TEST(NumberText, IsTheLibrarysFixedNotationHoweverItIsReached) {
    constexpr unsigned kSeed = 20161;
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-30, 40);
    std::uniform_int_distribution<int> digits(0, 6);
    std::uniform_int_distribution<int> tie(-1000000, 1000000);
    for (int i = 0; i < 2000; ++i) {
        const double value = i % 2 == 0 ? std::ldexp(mantissa(random), exponent(random)) : tie(random) / 64.0;
        const int decimals = digits(random);
        ASSERT_EQ(fixed(value, decimals), filledIn(value, decimals)) << "seed " << kSeed;
        ASSERT_EQ(fixed(value, decimals), streamed(value, decimals)) << "seed " << kSeed;
    }
}

TEST(NumberText, SpecialValuesAreThoseOfTheStream) {
    for (const double value : {0.0, -0.0, -0.0001, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(fixed(value, 3), streamed(value, 3));
        EXPECT_EQ(fixed(value, 3), filledIn(value, 3));
    }
}

TEST(NumberText, InGeneralNotationIsThatOfTheAttributeSetter) {
    constexpr unsigned kSeed = 20261121;
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-1074, 1024);
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -20.0,
                                  0.0001,
                                  0.00001,
                                  1e15,
                                  1e16,
                                  1e17,
                                  std::ldexp(1.0, -17),
                                  std::numeric_limits<double>::max(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::quiet_NaN(),
                                  -std::numeric_limits<double>::quiet_NaN()};
    for (int i = 0; i < 2000; ++i) {
        values.push_back(i % 2 == 0 ? std::ldexp(mantissa(random), exponent(random)) : 300.0 * mantissa(random));
    }
    for (const double value : values) {
        EXPECT_EQ(generalText(value).toStdString(), setterText(value)) << "seed " << kSeed;
    }
}
