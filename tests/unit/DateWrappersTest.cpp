#include "ConditionsXML.h"
#include "Estimates.h"
#include "xml.h"

#include <erfa.h>
#include <gtest/gtest.h>

using namespace pos;

// Every other call of the astronomy library is compared to the bit where the positions and the pointing are tested.

TEST(DateWrappers, AnEpochIsTheLibrarysDate) {
    // Their dates have a fraction of a day that no short binary number is.
    for (const std::string text :
         {"1996.8", "2000.0", "2016.123456789", "2024.5", "1899.99", "0.0", "-1.5", "2039.7"}) {
        double zero = 0.0;
        double date = 0.0;
        eraEpj2jd(std::stod(text), &zero, &date);
        EXPECT_EQ(createConditionsXML(parseElement("<conditions epoch='" + text + "'/>")).epoch, date) << text;
        const bool isGiven = text != "0.0"; // on the command line 0 stands for no epoch
        EXPECT_EQ(resolveDate(std::stod(text), {57388.5, 283.0, 770.0, 0.3}), isGiven ? date : 57388.5) << text;
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
