#include "FieldTargets.h"

#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

TEST(FieldTargets, AreTheLastOfEachUseUntilBothAreSeen) {
    struct Row {
        const char* children;
        const char* science;
        const char* guide;
    };
    for (const Row& row : {
             Row{"<target name='a' targuse='T'/><target name='b' targuse='G'/>", "a", "b"},
             Row{"<target name='a' targuse='G'/><note/><target name='b' targuse='T'/>", "b", "a"},
             Row{"<target name='a' targuse='T'/><target name='b' targuse='T'/><target name='c' targuse='G'/>", "b",
                 "c"},
             Row{"<target name='a' targuse='G'/><target name='b' targuse='G'/><target name='c' targuse='T'/>", "c",
                 "b"},
             Row{"<target name='a' targuse='T'/><target name='b' targuse='G'/><target name='c' targuse='T'/>"
                 "<target name='d' targuse='G'/>",
                 "a", "b"},
             // Other uses, and uses in lower case.
             Row{"<target name='a' targuse='S'/><target name='b' targuse='T'/><target name='c' targuse='t'/>"
                 "<target name='d' targuse='TT'/><target name='e'/><target name='f' targuse=' T'/>"
                 "<target name='g' targuse='g'/><target name='h' targuse=''/><target name='i' targuse='G'/>",
                 "b", "i"},
             // Only the field's own targets.
             Row{"<target name='a' targuse='T'/><group><target name='b' targuse='T'/><target name='c' targuse='G'/>"
                 "</group><star name='d' targuse='T'/><target name='e' targuse='G'/>",
                 "a", "e"},
         }) {
        const FieldTargets found = findFieldTargets(parseElement("<field>" + std::string(row.children) + "</field>"));
        EXPECT_EQ(attributeText(found.science, "name"), row.science) << row.children;
        EXPECT_EQ(attributeText(found.guide, "name"), row.guide) << row.children;
    }
}

TEST(FieldTargets, ShareOneMessageWhicheverIsMissing) {
    for (const std::string children : {"<target targuse='T'/>", "<target targuse='G'/>", "",
                                       // No science target, though its record reads as one.
                                       "<target/><target targuse='G'/>"}) {
        const QDomElement field = parseElement("<field>" + children + "</field>");
        EXPECT_EQ(messageOf([&] { findFieldTargets(field); }), "No science target in field") << children;
    }
}
