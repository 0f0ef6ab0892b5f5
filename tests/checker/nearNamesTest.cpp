#include "nearNames.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** How near a name is to a known one: "word", "similar" or "far". */
std::string nearness(const QString& name, const QString& known) {
    return isSameWord(name, known) ? "word" : isSimilar(name, known) ? "similar" : "far";
}

} // namespace

TEST(NearNames, AWordIsTheSameWithoutCaseSeparatorsPrefixAndUnit) {
    for (const auto& [name, known] :
         std::vector<std::pair<const char*, const char*>>{{"PA", "pa"},
                                                          {"Targuse", "targuse"},
                                                          {"targpm_ra", "targpmra"},
                                                          {"config-id", "configid"},
                                                          {"relativeHumidity", "relative_humidity"},
                                                          {"epoch", "targepoch"},
                                                          {"pm_dec", "targpmdec"},
                                                          {"targfibreid", "fibreid"},
                                                          {"RA", "RA_d"},
                                                          {"ra_deg", "RA_d"},
                                                          {"pa_deg", "pa"},
                                                          {"temperature_kelvin", "temperature"}}) {
        EXPECT_EQ(nearness(name, known), "word") << name;
    }
}

TEST(NearNames, ASlipOrAPartIsSimilar) {
    for (const auto& [name, known] :
         std::vector<std::pair<const char*, const char*>>{{"presure", "pressure"},
                                                          {"temprature", "temperature"},
                                                          {"fiberid", "fibreid"},
                                                          {"tagra", "targra"},
                                                          {"targdce", "targdec"},
                                                          {"targar", "targra"},
                                                          {"ah", "ha"},
                                                          {"relativ_humidty", "relative_humidity"},
                                                          {"temp", "temperature"},
                                                          {"humidity", "relative_humidity"},
                                                          {"targparallax", "targparal"},
                                                          {"targpm", "targpmdec"}}) {
        EXPECT_EQ(nearness(name, known), "similar") << name;
    }
}

TEST(NearNames, ShortAndOtherWordsAreFar) {
    const std::string longName(1000, 't');
    for (const auto& [name, known] :
         std::vector<std::pair<std::string, const char*>>{{"x", "pa"},
                                                          {"pb", "pa"},
                                                          {"alt", "tlr"},
                                                          {"targmag", "targcat"},
                                                          {"targpi", "targra"},
                                                          {"targ", "targra"},
                                                          {"relative_velocity", "relative_humidity"},
                                                          {"seeing", "pressure"},
                                                          {"", "ha"},
                                                          {"_", "ha"},
                                                          {longName, "targra"}}) {
        EXPECT_EQ(nearness(QString::fromStdString(name), known), "far") << name;
    }
}

TEST(NearNames, ANameOfFiveLettersMayBeginTheMeaning) {
    EXPECT_TRUE(namesMeaning("hour_angle", "Hour angle of the field"));
    EXPECT_TRUE(namesMeaning("targParallax", "Parallax in arcseconds"));
    EXPECT_FALSE(namesMeaning("hour", "Hour angle of the field"));
    EXPECT_FALSE(namesMeaning("angle", "Hour angle of the field"));
    EXPECT_FALSE(namesMeaning("hour_angle_limits", "Hour angle"));
}
