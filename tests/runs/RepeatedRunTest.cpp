#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "xml.h"

#include <gtest/gtest.h>
#include <map>

// A run on the output of an earlier one.

namespace {

/** Two fields, of which the first has a target of its own besides the two that every field has. @param id its number */
std::string document(const std::string& id = "1000") {
    return documentWithFields(
        {fieldXml("<group>" + targetXml("S", "Blank", "150.4000000", "20.3000000", "configid=\"" + id + "\"") +
                  "</group>" + scienceTargetXml() + guideStarXml()),
         secondFieldXml()});
}

/** How often each configure target id stands among the targets of a field. */
std::map<std::string, int> idCounts(const QDomElement& field) {
    std::map<std::string, int> counts;
    for (const QDomElement& target : elements(field, "target")) {
        ++counts[attributeText(target, "configid")];
    }
    return counts;
}

/** The targets of a field, as text, from one to before another. */
std::string targetsText(const QDomElement& field, std::size_t first, std::size_t end) {
    const std::vector<QDomElement> targets = children(field, "target");
    std::string result;
    for (std::size_t i = first; i < end; ++i) {
        result += treeText(targets.at(i));
    }
    return result;
}

/** Science target, guide star and the targets of the other fibres. */
constexpr std::size_t kTargetsAfterOneRun = 604;
constexpr std::size_t kTargetsAfterTwoRuns = kTargetsAfterOneRun + 602;

} // namespace

TEST(RepeatedRun, AddsAFurtherTargetForEveryOtherFibre) {
    const std::string once = configuredBytes(document());
    const QDomDocument first = parseDocument(once);
    const QDomDocument second = configured(once);
    for (std::size_t i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const QDomElement before = elements(first, "field").at(i);
        const QDomElement after = elements(second, "field").at(i);
        ASSERT_EQ(children(before, "target").size(), kTargetsAfterOneRun);
        ASSERT_EQ(children(after, "target").size(), kTargetsAfterTwoRuns);
        // What was there stays as it was. The date is a rounded one now, and with it, last digits of the new targets
        // and of the guide star's plate position may differ.
        EXPECT_EQ(targetsText(after, 0, 1), targetsText(before, 0, 1));
        EXPECT_EQ(targetsText(after, 2, kTargetsAfterOneRun), targetsText(before, 2, kTargetsAfterOneRun));
        const std::map<std::string, int> counts = idCounts(after);
        for (int id = 1; id <= 603; ++id) {
            EXPECT_EQ(counts.at(std::to_string(id)), id == 304 ? 1 : 2) << id;
        }
        EXPECT_EQ(counts.at("0"), 1);
    }
}

TEST(RepeatedRun, ReusesItsElementsButRecordsThePlatesAgain) {
    const QDomDocument second = configured(configuredBytes(document()));
    for (const char* once : {"configure", "conditions", "hour_angle_limits", "telescope", "focal_plane_map",
                             "optical_axis", "distortion_coefficients"}) {
        EXPECT_EQ(elements(second, once).size(), 1U) << once;
    }
    for (const char* again : {"PLATE_A", "PLATE_B", "VEKO"}) {
        EXPECT_EQ(elements(second, again).size(), 2U) << again;
    }
}

TEST(RepeatedRun, FindsEveryIdTwiceInTheFirstFieldTheThirdTime) {
    const TemporaryFolder folder;
    const std::string twice = configuredBytes(configuredBytes(document()));
    const ProgramResult third = runVekoConfigure({"-i", folder.write("in.xml", twice), "-o", folder.path("out.xml")});
    EXPECT_EQ(third.status, 1);
    EXPECT_EQ(third.out, "");
    EXPECT_EQ(third.err, "Target configid already exists\n");
    EXPECT_FALSE(folder.contains("out.xml"));
}

TEST(RepeatedRun, FindsATargetsIdTwiceTheSecondTimeWhereItIsAFibresToo) {
    // "0" is replaced by the first free number, 2, which is then given to the target of fibre 2 as well.
    for (const char* id : {"0", "7"}) {
        SCOPED_TRACE(id);
        const TemporaryFolder folder;
        const std::string once = configuredBytes(document(id));
        const ProgramResult second =
            runVekoConfigure({"-i", folder.write("in.xml", once), "-o", folder.path("out.xml")});
        EXPECT_EQ(second.status, 1);
        EXPECT_EQ(second.err, "Target configid already exists\n");
        EXPECT_FALSE(folder.contains("out.xml"));
    }
}

TEST(RepeatedRun, MayWriteOverItsInput) {
    const TemporaryFolder folder;
    const std::string file = folder.write("field.xml", document());
    expectSilentSuccess(runVekoConfigure({"-i", file, "-o", file}));
    const std::string once = configuredBytes(document());
    EXPECT_EQ(folder.read("field.xml"), once);

    expectSilentSuccess(runVekoConfigure({"-i", file, "-o", file}));
    const std::string twice = configuredBytes(once);
    EXPECT_EQ(folder.read("field.xml"), twice);

    // The third run fails and leaves the document, which is input and output, whole.
    const ProgramResult third = runVekoConfigure({"-i", file, "-o", file});
    EXPECT_EQ(third.status, 1);
    EXPECT_EQ(third.err, "Target configid already exists\n");
    EXPECT_EQ(folder.read("field.xml"), twice);
}
