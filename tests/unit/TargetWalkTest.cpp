#include "TargetWalk.h"

#include "xml.h"
#include "xmlStructure.h"

#include <gtest/gtest.h>
#include <limits>

using namespace pos;

namespace {

/** A walk as text: the names of the targets, "(" for a group entered and ")" for a level left. */
std::string walkText(const QDomElement& field) {
    std::string text;
    TargetWalk walk(field);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        switch (step) {
        case TargetWalk::Step::Target:
            text += walk.element().attribute("n").toStdString();
            break;
        case TargetWalk::Step::GroupEntered:
            text += '(';
            break;
        default:
            text += ')';
        }
    }
    return text;
}

std::string found(const std::string& content, std::uint64_t configid) {
    const QDomElement field = parseElement("<field>" + content + "</field>");
    return findTargetElement(field, configid).attribute("n", "(null)").toStdString();
}

} // namespace

TEST(TargetWalk, VisitsTargetsAndGroupsInDocumentOrder) {
    struct Row {
        const char* content;
        const char* walk;
    };
    for (const auto& [content, walk] : std::vector<Row>{
             {"", ""},
             {"text", ""},
             {"<target n='a'/>text<group><!-- c --><target n='b'/><target n='c'/></group><?p q?><target n='d'/>",
              "a(bc)d"},
             {"<group><target n='a'/></group><group><target n='b'/></group>", "(a)(b)"},
             {"<group><target n='a'/><group><target n='b'/></group></group><target n='c'/>", "(a(b))c"},
             {"<group><group><group><target n='a'/></group></group><target n='b'/></group><target n='c'/>",
              "(((a))b)c"},
             // Other elements are passed over with all that they hold.
             {"<x><target n='no'/></x><target n='a'><target n='no'/></target><Target n='no'/>"
              "<Group><target n='no'/></Group><target n='b'/>",
              "ab"},
             {"<group><x/></group><target n='a'/>", "()a"},
             // A group without elements ends the level that it stands in.
             {"<target n='a'/><group/><target n='lost'/>", "a()"},
             {"<target n='a'/><group>text<!-- c --></group><target n='lost'/>", "a()"},
             {"<group><target n='a'/><group/><target n='lost'/></group><target n='b'/>", "(a()b)"}}) {
        EXPECT_EQ(walkText(parseElement(std::string("<field>") + content + "</field>")), walk) << content;
    }
    EXPECT_EQ(walkText(QDomElement()), "");
}

TEST(TargetWalk, PassesOverTheFieldsBehindOneThatEndsInAnEmptyGroup) {
    const QDomElement fields =
        parseElement("<fields><field><target n='a'/><group/></field>"
                     "<field><target n='other'/><group><target n='other'/></group></field></fields>");
    EXPECT_EQ(walkText(fields.firstChildElement()), "a()");
}

TEST(TargetWalk, TargetMayBeRemovedBeforeTheNextStep) {
    const QDomElement field = parseElement("<field><target n='a'/><group><target n='b'/><target n='c'/></group>"
                                           "<group><group><target n='d'/></group></group><target n='e'/></field>");
    std::string visited;
    TargetWalk walk(field);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::Target) {
            QDomElement target = walk.element();
            visited += target.attribute("n").toStdString();
            target.parentNode().removeChild(target);
        }
    }
    EXPECT_EQ(visited, "abcde");
    EXPECT_EQ(field.elementsByTagName("target").count(), 0);
}

TEST(TargetWalk, DeepGroupsNeedNoRecursion) {
    constexpr int kDepth = 5000;
    QDomDocument document;
    const QDomElement field = document.createElement("field");
    QDomElement group = field;
    for (int i = 0; i < kDepth; ++i) {
        group = group.appendChild(document.createElement("group")).toElement();
    }
    QDomElement target = document.createElement("target");
    target.setAttribute("configid", 7);
    group.appendChild(target);
    EXPECT_TRUE(findTargetElement(field, 7) == target);
    EXPECT_TRUE(findTargetElement(field, 8).isNull());
}

TEST(FindTargetElement, FindsTheFirstTargetWithAnIdWhereTheWalkComes) {
    EXPECT_EQ(found("<target n='a' configid='1'/><target n='b' configid='2'/>", 2), "b");
    EXPECT_EQ(found("<target n='a' configid='1'/><target n='b' configid='2'/>", 3), "(null)");
    EXPECT_EQ(found("<group><target n='a' configid='3'/></group><target n='b' configid='3'/>", 3), "a");
    EXPECT_EQ(found("<group><group/><target n='b' configid='2'/></group><target n='c' configid='3'/>", 2), "(null)");
    EXPECT_EQ(found("<group><group/><target n='b' configid='2'/></group><target n='c' configid='3'/>", 3), "c");
}

TEST(FindTargetElement, IdIsReadInBaseTenAndIsZeroWhereThereIsNone) {
    EXPECT_EQ(found("<target n='a' configid='010'/>", 10), "a");
    EXPECT_EQ(found("<target n='a' configid='2147483647'/>", 2147483647), "a");
    EXPECT_EQ(found("<target n='a' configid='-1'/>", std::numeric_limits<std::uint64_t>::max()), "a");
    EXPECT_EQ(found("<target n='a' configid='1'/><target n='b'/>", 0), "b");
    for (const std::string id : {"", "abc", "1.0", "99999999999999999999"}) {
        EXPECT_EQ(found("<target n='a' configid='" + id + "'/>", 0), "a") << id;
    }
}
