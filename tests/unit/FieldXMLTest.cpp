#include "FieldXML.h"

#include "ProcessWideState.h"
#include "TargetXML.h"
#include "TemporaryFolder.h"
#include "Version.h"
#include "attributeText.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <QDomDocument>
#include <gmock/gmock.h>

using namespace pos;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FieldXML : public ProcessWideState {};

/** A target element with a position and further attributes. */
std::string target(const std::string& attributes) {
    return "<target targra='150.000000' targdec='30.000000' " + attributes + "/>";
}

/** A target element that has an id, which is its name too. */
std::string numbered(const std::string& id) {
    return target("targname='" + id + "' configid='" + id + "'");
}

std::string named(const std::string& name) {
    return target("targname='" + name + "'");
}

QDomElement fieldElement(const std::string& children) {
    return parseElement("<field RA_d='150.000000' Dec_d='30.000000'>" + children + "</field>");
}

/** The targets of every group as "name:id name:id". */
std::vector<std::string> groupsOf(const Field& field) {
    std::vector<std::string> groups;
    for (const std::vector<Target>& group : field.groups) {
        std::string text;
        for (const Target& target : group) {
            text += (text.empty() ? "" : " ") + target.name + ":" + std::to_string(target.configid);
        }
        groups.push_back(text);
    }
    return groups;
}

/** The "configid" of every target below an element, at any depth, in document order. */
std::vector<std::string> idsBelow(const QDomElement& element) {
    std::vector<std::string> ids;
    const QDomNodeList targets = element.elementsByTagName(QStringLiteral("target"));
    for (int i = 0; i < targets.count(); ++i) {
        ids.push_back(attributeText(targets.at(i).toElement(), "configid"));
    }
    return ids;
}

/** The elements below an element: a target as its id, a group in brackets, anything else as its tag. */
std::string outline(const QDomElement& element) {
    std::string text;
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        text += text.empty() ? "" : " ";
        if (child.tagName() == QLatin1String("group")) {
            text += "[" + outline(child) + "]";
        } else if (child.tagName() == QLatin1String("target")) {
            text += attributeText(child, "configid");
        } else {
            text += child.tagName().toStdString();
        }
    }
    return text;
}

} // namespace

TEST_F(FieldXML, ReadsTheCentre) {
    const auto field = createFieldXML(parseElement("<field RA_d='45.00000' Dec_d='-22.50000'/>"));
    EXPECT_NEAR(field->centre.ra, 3.141592653589793 / 4, kAngleTolerance);
    EXPECT_NEAR(field->centre.dec, -3.141592653589793 / 8, kAngleTolerance);
    EXPECT_THAT(groupsOf(*field), ElementsAre(""));
    EXPECT_TRUE(field->skyMasks.empty());
    EXPECT_TRUE(field->element.isNull());
}

TEST_F(FieldXML, TargetsWithoutIdsGetTwoThreeFourInDocumentOrder) {
    const QDomElement element = fieldElement(named("a") + target("targname='b' configid='0'") + named("c"));
    const auto field = createFieldXML(element);
    EXPECT_THAT(groupsOf(*field), ElementsAre("a:2 b:3 c:4"));
    EXPECT_THAT(idsBelow(element), ElementsAre("2", "3", "4"));
}

TEST_F(FieldXML, AssignedIdsPassOverThoseOfTheDocument) {
    const QDomElement element = fieldElement(named("a") + numbered("2") + numbered("3"));
    const auto field = createFieldXML(element);
    EXPECT_THAT(groupsOf(*field), ElementsAre("2:2 3:3 a:4"));
    EXPECT_THAT(idsBelow(element), ElementsAre("4", "2", "3"));
}

TEST_F(FieldXML, ReadingChangesNothingButMissingIds) {
    const QDomElement element =
        fieldElement("<note>kept</note>" + numbered("9") + named("a") + "<avoidance_list><mask/></avoidance_list>");
    createFieldXML(element);
    EXPECT_EQ(treeText(element),
              treeText(fieldElement("<note>kept</note>" + numbered("9") + target("targname='a' configid='2'") +
                                    "<avoidance_list><mask/></avoidance_list>")));
}

TEST_F(FieldXML, EachGroupElementIsAGroupOfItsOwn) {
    const auto field = createFieldXML(fieldElement(numbered("10") + "<group>" + numbered("11") + numbered("12") +
                                                   "</group><group>" + numbered("13") + "</group>" + numbered("14")));
    EXPECT_THAT(groupsOf(*field), ElementsAre("10:10 14:14", "11:11 12:12", "13:13"));
    EXPECT_EQ(field->targetById(12).name, "12");
    EXPECT_EQ(field->currentGroup, 0U);
}

TEST_F(FieldXML, BehindANestedGroupTheFieldsOwnGroupIsCurrentAgain) {
    const auto field = createFieldXML(fieldElement("<group>" + numbered("11") + "<group>" + numbered("12") +
                                                   "</group>" + numbered("13") + "</group>" + numbered("14")));
    EXPECT_THAT(groupsOf(*field), ElementsAre("13:13 14:14", "11:11", "12:12"));
}

TEST_F(FieldXML, TargetsWithoutAnIdGoToGroupZeroBehindTheNumberedOnes) {
    const QDomElement element = fieldElement(named("a") + "<group>" + named("b") + numbered("3") + "</group><group>" +
                                             named("c") + "</group>" + numbered("8"));
    const auto field = createFieldXML(element);
    EXPECT_THAT(groupsOf(*field), ElementsAre("8:8 a:2 b:4 c:5", "3:3", ""));
    EXPECT_THAT(idsBelow(element), ElementsAre("2", "4", "3", "5", "8"));
    EXPECT_EQ(outline(element), "2 [4 3] [5] 8");
}

TEST_F(FieldXML, AnEmptyGroupEndsItsLevel) {
    const QDomElement element = fieldElement(numbered("10") + "<group/>" + named("unread"));
    EXPECT_THAT(groupsOf(*createFieldXML(element)), ElementsAre("10:10", ""));
    EXPECT_THAT(idsBelow(element), ElementsAre("10", "(absent)"));
}

TEST_F(FieldXML, BehindAnEmptyGroupTheWalkGoesOnAfterItsParent) {
    const auto field = createFieldXML(
        fieldElement("<group>" + numbered("11") + "<group/>" + numbered("12") + "</group>" + numbered("13")));
    EXPECT_THAT(groupsOf(*field), ElementsAre("13:13", "11:11", ""));
}

TEST_F(FieldXML, AnEmptyGroupDoesNotPullInTheNextField) {
    const QDomElement fields = parseElement("<fields><field><group/>" + numbered("1") + "</field><field>" +
                                            numbered("2") + "</field></fields>");
    EXPECT_THAT(groupsOf(*createFieldXML(fields.firstChildElement())), ElementsAre("", ""));
    EXPECT_THAT(groupsOf(*createFieldXML(fields.lastChildElement())), ElementsAre("2:2"));
}

TEST_F(FieldXML, PassesOverOtherElementsWithAllThatTheyHold) {
    const auto field = createFieldXML(fieldElement("<!-- c --><list>" + numbered("1") + "<group>" + numbered("2") +
                                                   "</group></list>text<Target/>" + numbered("3")));
    EXPECT_THAT(groupsOf(*field), ElementsAre("3:3"));
}

TEST_F(FieldXML, RefusesTwoTargetsWithOneId) {
    const QDomElement together = fieldElement(numbered("5") + numbered("5"));
    EXPECT_EQ(messageOf([&] { createFieldXML(together); }), "Target configid already exists");
    const QDomElement apart = fieldElement(numbered("5") + "<group>" + numbered("5") + "</group>");
    EXPECT_EQ(messageOf([&] { createFieldXML(apart); }), "Target configid already exists");
}

TEST_F(FieldXML, PassesOnTheFailuresOfCentreTargetsAndMasks) {
    struct Case {
        std::string field;
        const char* message;
    };
    for (const Case& c : {Case{"<field RA_d='x'/>", "Field centre has an invalid RA 'x'"},
                          Case{"<field Dec_d='1.5'/>", "Field centre Dec_d '1.5' does not have enough precision"},
                          Case{"<field><target targname='X'/></field>", "Target X has no targra"},
                          Case{"<field><group><target targname='X' targprio='-1'/></group></field>",
                               "Target X has an invalid priority '-1'"},
                          Case{"<field><avoidance_list><mask radius='x'/></avoidance_list></field>",
                               "Sky mask has an invalid radius 'x'"}}) {
        EXPECT_EQ(messageOf([&] { createFieldXML(parseElement(c.field)); }), c.message);
    }
}

TEST_F(FieldXML, ReadsTheMasksOfTheFirstAvoidanceListAndLeavesThemAlone) {
    const QDomElement element = fieldElement("<avoidance_list><mask radius='1'/><mask/></avoidance_list>"
                                             "<avoidance_list><mask radius='7'/></avoidance_list>");
    const std::string before = treeText(element);
    const auto field = createFieldXML(element);
    ASSERT_EQ(field->skyMasks.size(), 2U);
    EXPECT_EQ(field->skyMasks[0].radius, 1.0);
    EXPECT_EQ(field->skyMasks[1].radius, 3.0);
    EXPECT_EQ(treeText(element), before);
}

TEST_F(FieldXML, ReadsAFieldThatIsAFilesDocumentElement) {
    const TemporaryFolder folder;
    const std::string name =
        folder.write("field.xml", "<field RA_d='45.00000' Dec_d='0.00000'>" + numbered("6") + "</field>");
    const auto field = createFieldXML(name);
    EXPECT_NEAR(field->centre.ra, 3.141592653589793 / 4, kAngleTolerance);
    EXPECT_THAT(groupsOf(*field), ElementsAre("6:6"));
}

TEST_F(FieldXML, AFieldThatIsDeeperInAFileIsNotLookedFor) {
    const TemporaryFolder folder;
    const std::string name = folder.write("fields.xml", "<fields><field>" + numbered("6") + "</field></fields>");
    EXPECT_THAT(groupsOf(*createFieldXML(name)), ElementsAre(""));
}

TEST_F(FieldXML, PassesOnTheFailuresOfLoadingAFile) {
    const TemporaryFolder folder;
    const std::string missing = folder.path("missing.xml");
    EXPECT_EQ(messageOf([&] { createFieldXML(missing); }), missing + " could not be opened");
    const std::string broken = folder.write("broken.xml", "<field>");
    EXPECT_EQ(messageOf([&] { createFieldXML(broken); }), broken + " is not valid XML");
    const std::string old = folder.write("old.xml", "<field datamver='7.00'/>");
    datamver = "8.00";
    EXPECT_EQ(messageOf([&] { createFieldXML(old); }), "Data model version mismatch");
}

TEST_F(FieldXML, WritesCentreTargetsAndGroupsInOrder) {
    Field field({3.141592653589793 / 4, -3.141592653589793 / 8});
    field.groups.resize(4);
    for (auto [group, id] : {std::pair{0U, 8U}, {0U, 6U}, {1U, 7U}, {3U, 3U}, {3U, 2U}}) {
        field.currentGroup = group;
        Target target;
        target.configid = id;
        field.addTarget(target);
    }
    field.skyMasks.emplace_back();
    const QDomDocument document = parseDocument("<other/>");
    const QDomElement element = saveFieldXML(field, document);

    EXPECT_EQ(element.tagName(), QLatin1String("field"));
    EXPECT_EQ(attributeText(element, "RA_d"), "45.000000");
    EXPECT_EQ(attributeText(element, "Dec_d"), "-22.500000");
    EXPECT_EQ(outline(element), "8 6 [7] [] [3 2]");
    EXPECT_TRUE(element.parentNode().isNull());
    EXPECT_EQ(element.ownerDocument(), document);
    EXPECT_EQ(treeText(document.documentElement()), treeText(parseElement("<other/>")));
}

TEST_F(FieldXML, WritesTargetsAsNewElementsWithoutATemplate) {
    Field field({0.0, 0.0});
    Target target{"T1", "WL", {1.0, 0.5, 2016.0, 0, 0, 0, 0}, TargetUse::C, 2.5, 8, 12, false};
    field.addTarget(target);
    const QDomDocument document = parseDocument("<other/>");
    const QDomElement element = saveFieldXML(field, document);
    const QDomElement expected = parseElement("<field/>");
    saveTargetXML(target, expected, QDomElement());
    EXPECT_EQ(treeText(element.firstChildElement()), treeText(expected.firstChildElement()));
}

TEST_F(FieldXML, AFieldSurvivesWritingAndReading) {
    const auto field = createFieldXML(
        fieldElement(named("a") + "<group>" + numbered("7") + "</group><group>" + numbered("8") + "</group>"));
    const QDomDocument document = parseDocument("<other/>");
    const auto again = createFieldXML(saveFieldXML(*field, document));
    EXPECT_THAT(groupsOf(*again), ElementsAre("a:2", "7:7", "8:8"));
    EXPECT_NEAR(again->centre.ra, field->centre.ra, kDocumentAngleTolerance);
}

TEST_F(FieldXML, UpdatingWritesTheFibresOfStoredTargets) {
    const QDomElement element = fieldElement(numbered("5") + "<group>" + numbered("6") + "</group>" + numbered("7"));
    const auto field = createFieldXML(element);
    for (std::uint64_t id : {5U, 6U, 7U}) {
        Target target = field->targetById(id);
        target.fibreid = static_cast<std::int32_t>(100 + id);
        field->replaceTarget(target);
    }
    updateFieldXML(*field, element, nullptr);
    EXPECT_EQ(treeText(element), treeText(fieldElement(target("targname='5' configid='5' fibreid='105'") + "<group>" +
                                                       target("targname='6' configid='6' fibreid='106'") + "</group>" +
                                                       target("targname='7' configid='7' fibreid='107'"))));
}

TEST_F(FieldXML, UpdatingRemovesAutomaticTargetsWithoutAFibre) {
    const QDomElement element = fieldElement(
        target("configid='2' automatic='1'") + target("configid='3' automatic='1' fibreid='-8'") + "<group>" +
        target("configid='4' automatic='1' fibreid='%%%'") + target("configid='5' automatic='1' fibreid='0'") +
        "</group>" + target("configid='6' automatic='1'"));
    const auto field = createFieldXML(element);
    updateFieldXML(*field, element, nullptr);
    EXPECT_EQ(outline(element), "[5]");
    EXPECT_EQ(attributeText(element.firstChildElement().firstChildElement(), "fibreid"), "0");
}

TEST_F(FieldXML, UpdatingKeepsAUsersTargetWithoutAFibreButNotItsFibreId) {
    const QDomElement element =
        fieldElement(target("configid='2' fibreid='%%%'") + target("configid='3' automatic='0' fibreid='-8'"));
    const auto field = createFieldXML(element);
    updateFieldXML(*field, element, nullptr);
    EXPECT_EQ(treeText(element), treeText(fieldElement(target("configid='2'") + target("configid='3' automatic='0'"))));
}

TEST_F(FieldXML, UpdatingRefusesAnIdThatTheFieldDoesNotHold) {
    const auto field = createFieldXML(fieldElement(numbered("5")));
    for (const std::string id : {"configid='6'", "configid='%%%'", "configid='5x'", ""}) {
        const QDomElement element = fieldElement(target(id));
        EXPECT_EQ(messageOf<std::out_of_range>([&] { updateFieldXML(*field, element, nullptr); }), "map::at") << id;
    }
}

TEST_F(FieldXML, UpdatingFollowsTheWalkOfReading) {
    const std::string children = numbered("5") + "<list>" + numbered("77") + "</list><group/>" + numbered("88");
    const QDomElement element = fieldElement(children);
    const auto field = createFieldXML(element);
    Target target = field->targetById(5);
    target.fibreid = 9;
    field->replaceTarget(target);
    updateFieldXML(*field, element, nullptr);
    EXPECT_EQ(attributeText(element.firstChildElement(), "fibreid"), "9");
    EXPECT_EQ(attributeText(element.lastChildElement(), "configid"), "88");
    EXPECT_EQ(attributeText(element.lastChildElement(), "fibreid"), "(absent)");
}
