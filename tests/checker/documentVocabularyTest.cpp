#include "documentVocabulary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace pos;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;

namespace {

const KnownElement& known(const char* name) {
    return documentVocabulary().elements.at(name);
}

} // namespace

TEST(DocumentVocabulary, HoldsTheAttributesOfEachElement) {
    EXPECT_THAT(known("hour_angle_limits").attributes, ElementsAre(Key(QString("earliest")), Key(QString("latest")),
                                                                   Key(QString("name")), Key(QString("note"))));
    EXPECT_THAT(documentVocabulary().document.attributes, ElementsAre(Key(QString("datamver"))));
    EXPECT_EQ(known("target").attributes.size(), 23U);
    EXPECT_EQ(documentVocabulary().find("field_definition"), nullptr);
}

TEST(DocumentVocabulary, HoldsTheChildrenAndWhetherTheyMayStandSeveralTimes) {
    EXPECT_THAT(known("observation").children,
                ElementsAre(Pair(QString("configure"), false), Pair(QString("fields"), false)));
    EXPECT_THAT(known("field").children, ElementsAre(Pair(QString("avoidance_list"), false),
                                                     Pair(QString("group"), true), Pair(QString("target"), true)));
    EXPECT_THAT(documentVocabulary().document.children, ElementsAre(Pair(QString("observation"), false)));
    EXPECT_TRUE(known("photometry").isOpen);
    EXPECT_FALSE(known("target").isOpen);
}

TEST(DocumentVocabulary, TellsWhatARunReads) {
    const KnownAttribute& pressure = known("conditions").attributes.at("pressure");
    EXPECT_TRUE(pressure.isRead());
    EXPECT_EQ(pressure.absent, "660");
    EXPECT_EQ(pressure.unit, "millibar");
    EXPECT_TRUE(pressure.meaning.startsWith("Pressure of the air"));
    EXPECT_FALSE(known("conditions").attributes.at("tlr").isRead());
    EXPECT_FALSE(known("field").attributes.at("note").isRead());
    EXPECT_TRUE(known("fields").isRead);
    EXPECT_FALSE(known("telescope").isRead);
    EXPECT_THAT(documentVocabulary().elementsThatRead("RA_d"), ElementsAre(QString("field"), QString("mask")));
    EXPECT_THAT(documentVocabulary().elementsThatRead("targx"), IsEmpty());
}

TEST(DocumentVocabulary, TellsTheTextsAndTheRangesOfTheInstrumentsDocuments) {
    const auto& configuration = vocabularyOf("configuration").elements;
    EXPECT_EQ(configuration.at("latitude").value.numbers->low, -90.0);
    EXPECT_EQ(configuration.at("latitude").value.numbers->high, 90.0);
    EXPECT_EQ(configuration.at("latitude").value.range, "-90 to 90");
    EXPECT_FALSE(configuration.at("veko_definition").value.numbers);
    EXPECT_TRUE(configuration.at("telescope").value.name.isEmpty());
    EXPECT_TRUE(configuration.at("telescope").isRead);
    EXPECT_FALSE(configuration.at("mifu_dither").isRead);
    EXPECT_FALSE(vocabularyOf("focal_plane_map")
                     .elements.at("focal_plane_map")
                     .attributes.at("focal_length")
                     .numbers->contains(0.0));
    EXPECT_TRUE(vocabularyOf("plate").elements.at("plate_definition").children.at("fibre"));
}
