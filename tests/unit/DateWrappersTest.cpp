#include "ConditionsXML.h"
#include "Estimates.h"
#include "attributeText.h"
#include "xml.h"

#include <array>
#include <erfa.h>
#include <gtest/gtest.h>

using namespace pos;

// Every other call of the astronomy library is compared to the bit where the positions and the pointing are tested.

namespace {

/** Epochs whose dates have a fraction of a day that no short binary number is. */
constexpr std::array kEpochs = {"1996.8", "2000.0", "2016.123456789", "2024.5", "1899.99", "0.0", "-1.5", "2039.7"};

double modifiedJulianDate(double epoch) {
    double zero = 0.0;
    double date = 0.0;
    eraEpj2jd(epoch, &zero, &date);
    EXPECT_EQ(zero, 2400000.5);
    return date;
}

} // namespace

TEST(DateWrappers, ADocumentsEpochIsTheLibrarysDate) {
    for (const std::string epoch : kEpochs) {
        const Conditions conditions = createConditionsXML(parseElement("<conditions epoch='" + epoch + "'/>"));
        EXPECT_EQ(conditions.epoch, modifiedJulianDate(std::stod(epoch))) << epoch;
    }
}

TEST(DateWrappers, TheEpochOfTheCommandLineIsTheLibrarysDate) {
    const Conditions conditions{57388.5, 283.0, 770.0, 0.3};
    for (const std::string text : kEpochs) {
        const double epoch = std::stod(text);
        if (epoch != 0.0) {
            EXPECT_EQ(resolveDate(epoch, conditions), modifiedJulianDate(epoch)) << epoch;
        }
    }
}

TEST(DateWrappers, AWrittenEpochIsTheLibrarysToTwoDecimals) {
    // Beside the dates of the table, some that lie within a minute of where the second decimal changes.
    for (const double date :
         {50375.7, 57389.125, 60000.0, 51544.5 + 365.25 * 24.005 + 5e-4, 51544.5 + 365.25 * 24.005 - 5e-4,
          51544.5 + 365.25 * 16.995 + 5e-4, 51544.5 + 365.25 * 16.995 - 5e-4, -678955.5}) {
        const QDomDocument document = parseDocument("<configure/>");
        saveConditionsXML({date, 283.0, 770.0, 0.3}, 0.0, document, document.documentElement());
        const QDomElement conditions = document.documentElement().firstChildElement("conditions");
        EXPECT_EQ(attributeText(conditions, "epoch"), fixedPointText(eraEpj(2400000.5, date), 2)) << date;
    }
}
