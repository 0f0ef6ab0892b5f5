#include "FieldXML.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <QDomDocument>
#include <gmock/gmock.h>

using namespace pos;
using testing::ElementsAre;
using testing::ElementsAreArray;

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

TEST_F(FieldXML, EachGroupElementIsAGroupOfItsOwn) {
    struct Row {
        std::string children;
        std::vector<std::string> groups;
    };
    for (const auto& [children, groups] :
         std::vector<Row>{{numbered("10") + "<group>" + numbered("11") + numbered("12") + "</group><group>" +
                               numbered("13") + "</group>" + numbered("14"),
                           {"10:10 14:14", "11:11 12:12", "13:13"}},
                          // Behind a nested group the field's own group is current again.
                          {"<group>" + numbered("11") + "<group>" + numbered("12") + "</group>" + numbered("13") +
                               "</group>" + numbered("14"),
                           {"13:13 14:14", "11:11", "12:12"}},
                          // An empty group ends its level.
                          {numbered("10") + "<group/>" + named("unread"), {"10:10", ""}},
                          {"<group>" + numbered("11") + "<group/>" + numbered("12") + "</group>" + numbered("13"),
                           {"13:13", "11:11", ""}},
                          // Without an id they go to the field's own group, behind the others.
                          {named("a") + "<group>" + named("b") + numbered("3") + "</group><group>" + named("c") +
                               "</group>" + numbered("8"),
                           {"8:8 a:2 b:4 c:5", "3:3", ""}}}) {
        const auto field = createFieldXML(fieldElement(children));
        EXPECT_THAT(groupsOf(*field), ElementsAreArray(groups));
        EXPECT_EQ(field->currentGroup, 0U);
    }
}

TEST_F(FieldXML, ReadingChangesNothingButMissingIds) {
    const auto content = [](const std::string& a, const std::string& b) {
        return fieldElement("<note>kept</note>" + numbered("2") + target("targname='a' " + a) + "<group>" +
                            target("targname='b' " + b) + "</group><avoidance_list><mask/></avoidance_list>");
    };
    const QDomElement element = content("configid='0'", "");
    createFieldXML(element);
    EXPECT_EQ(treeText(element), treeText(content("configid='3'", "configid='4'")));
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
                               "Sky mask has an invalid radius 'x'"},
                          Case{"<field>" + numbered("5") + "<group>" + numbered("5") + "</group></field>",
                               "Target configid already exists"}}) {
        EXPECT_EQ(messageOf([&] { createFieldXML(parseElement(c.field)); }), c.message);
    }
}

TEST_F(FieldXML, ReadsTheMasksOfTheFirstAvoidanceList) {
    const QDomElement element = fieldElement("<avoidance_list><mask radius='1'/><mask/></avoidance_list>"
                                             "<avoidance_list><mask radius='7'/></avoidance_list>");
    const auto field = createFieldXML(element);
    ASSERT_EQ(field->skyMasks.size(), 2U);
    EXPECT_EQ(field->skyMasks[0].radius, 1.0);
    EXPECT_EQ(field->skyMasks[1].radius, 3.0);
}

TEST_F(FieldXML, ReadsAFieldThatIsAFilesDocumentElement) {
    const TemporaryFolder folder;
    const std::string name = folder.write("field.xml", "<field>" + numbered("6") + "</field>");
    EXPECT_THAT(groupsOf(*createFieldXML(name)), ElementsAre("6:6"));
    const std::string deeper = folder.write("deeper.xml", "<fields><field>" + numbered("6") + "</field></fields>");
    EXPECT_THAT(groupsOf(*createFieldXML(deeper)), ElementsAre(""));
    const std::string missing = folder.path("missing.xml");
    EXPECT_EQ(messageOf([&] { createFieldXML(missing); }), missing + " could not be opened");
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

TEST_F(FieldXML, UpdatingWritesTheFibresOfStoredTargetsWhereTheWalkOfReadingComes) {
    const auto content = [](const std::string& fibre5, const std::string& fibre6) {
        return fieldElement(target("configid='5' " + fibre5) + "<group>" + target("configid='6' " + fibre6) +
                            "</group><list>" + numbered("77") + "</list><group/>" + numbered("88"));
    };
    const QDomElement element = content("", "");
    const auto field = createFieldXML(element);
    for (std::uint64_t id : {5U, 6U}) {
        Target target = field->targetById(id);
        target.fibreid = static_cast<std::int32_t>(100 + id);
        field->replaceTarget(target);
    }
    updateFieldXML(*field, element, nullptr);
    EXPECT_EQ(treeText(element), treeText(content("fibreid='105'", "fibreid='106'")));
}

TEST_F(FieldXML, UpdatingRemovesTheFibreIdsThatAreNoneAndAutomaticTargetsWithThem) {
    const QDomElement element = fieldElement(
        target("configid='2' automatic='1'") + target("configid='3' automatic='1' fibreid='-8'") + "<group>" +
        target("configid='4' automatic='1' fibreid='%%%'") + target("configid='5' automatic='1' fibreid='0'") +
        "</group>" + target("configid='6' fibreid='%%%'") + target("configid='7' automatic='0' fibreid='-8'"));
    updateFieldXML(*createFieldXML(element), element, nullptr);
    EXPECT_EQ(treeText(element),
              treeText(fieldElement("<group>" + target("configid='5' automatic='1' fibreid='0'") + "</group>" +
                                    target("configid='6'") + target("configid='7' automatic='0'"))));
}

TEST_F(FieldXML, UpdatingRefusesAnIdThatTheFieldDoesNotHold) {
    const auto field = createFieldXML(fieldElement(numbered("5")));
    for (const std::string id : {"configid='6'", "configid='%%%'", "configid='5x'", ""}) {
        const QDomElement element = fieldElement(target(id));
        EXPECT_EQ(messageOf<std::out_of_range>([&] { updateFieldXML(*field, element, nullptr); }), "map::at") << id;
    }
}
