#include "xmlStructure.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "Version.h"
#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

std::string nameOf(const QDomElement& element) {
    return element.attribute("name", "(null)").toStdString();
}

/** A document as a user writes it, with its elements named in the order in which they stand. */
constexpr const char* kDocument = "<root><observation name='o'>"
                                  "<configure name='c'><conditions name='w'/><conditions name='w2'/></configure>"
                                  "<configure name='c2'/>"
                                  "<fields name='l'><field name='1'/><other/><field name='2'/>text<field name='3'/>"
                                  "</fields><fields name='l2'><field name='4'/></fields>"
                                  "</observation></root>";

} // namespace

class XmlLoader : public ProcessWideState {
protected:
    TemporaryFolder folder_;

    std::string failure(const std::string& file) const {
        return messageOf([&] { loadXmlFile(file); });
    }
};

TEST_F(XmlLoader, WhileAVersionIsFixedThatOfTheDocumentElementMustBeTheSameText) {
    EXPECT_NO_THROW(loadXmlFile(folder_.write("a.xml", "<a datamver='1.00'/>")));
    datamver = "8\xc2\xb7"
               "00";
    EXPECT_NO_THROW(
        loadXmlFile(folder_.write("a.xml", "<?xml version='1.0' encoding='ISO-8859-1'?><a datamver='8&#xb7;00'/>")));
    datamver = "8.00";
    EXPECT_NO_THROW(loadXmlFile(folder_.write("a.xml", "<a datamver='8.00'/>")));
    for (const std::string text : {"<a datamver='8.0'/>", "<a datamver=''/>", "<a datamver='8.00 '/>",
                                   "<a Datamver='8.00'/>", "<a/>", "<a><b datamver='8.00'/></a>"}) {
        EXPECT_EQ(failure(folder_.write("b.xml", text)), "Data model version mismatch") << text;
    }
    const std::string broken = folder_.write("c.xml", "<a datamver='7.00'><b></a>");
    EXPECT_EQ(failure(broken), broken + " is not valid XML");
}

TEST_F(XmlLoader, WhatCannotBeReadCouldNotBeOpened) {
    for (const std::string& name : {folder_.path("none.xml"), std::string(":/none.xml"), std::string(), folder_.name(),
                                    folder_.path("f\xe9.xml")}) {
        EXPECT_EQ(failure(name), name + " could not be opened");
    }
}

TEST_F(XmlLoader, FileNameThatHoldsANulOpensNothing) {
    const std::string existing = folder_.write("a.xml", "<a/>");
    // The message is shown up to the NUL.
    EXPECT_EQ(failure(existing + std::string("\0.xml", 5)), existing);
}

TEST(XmlFinders, TheElementItselfComesFirstThenItsChildrenThenTheDeeperOnesBranchByBranch) {
    EXPECT_EQ(nameOf(findElement(parseElement("<x name='itself'><x/></x>"), "x")), "itself");
    EXPECT_EQ(nameOf(findElement(parseElement("<r><a><x name='deep'/></a><x name='near'/></r>"), "x")), "near");
    EXPECT_EQ(nameOf(findElement(parseElement("<r><a><b><x name='first branch'/></b></a><d><x name='second'/></d></r>"),
                                 "x")),
              "first branch");
    EXPECT_TRUE(findElement(parseElement("<r><X/><a>x</a><!-- x --></r>"), "x").isNull());
    EXPECT_TRUE(findElement(QDomElement(), "x").isNull());
}

TEST(XmlFinders, EachElementIsFoundFromAnywhereAboveIt) {
    for (const std::string& text : {std::string(kDocument), "<a><b/><c>" + std::string(kDocument) + "</c></a>"}) {
        const QDomElement root = parseElement(text);
        EXPECT_EQ(nameOf(findObservationElement(root)), "o");
        EXPECT_EQ(nameOf(findConfigureElement(root)), "c");
        EXPECT_EQ(nameOf(findConditionsElement(root)), "w");
        EXPECT_EQ(nameOf(findOrCreateConditionsElement(root)), "w");
        EXPECT_EQ(nameOf(findFieldsElement(root)), "l");
        EXPECT_EQ(nameOf(findOrCreateFieldsElement(root)), "l");
        EXPECT_EQ(nameOf(findOrCreateFieldElement(root)), "1");
    }
}

TEST(XmlFinders, ElementHandedInIsReturnedIfItHasTheName) {
    EXPECT_EQ(nameOf(findConfigureElement(parseElement("<configure name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findConditionsElement(parseElement("<conditions name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateConditionsElement(parseElement("<conditions name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findFieldsElement(parseElement("<fields name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateFieldsElement(parseElement("<fields name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateFieldElement(parseElement("<field name='me'/>"))), "me");
}

TEST(XmlFinders, ConfigureAndFieldsAreSoughtOnlyAmongTheChildrenOfTheObservation) {
    for (const char* text : {"<r/>", "<r><configure name='no'/><fields name='no'/>"
                                     "<observation><deep><configure/><fields/></deep></observation></r>"}) {
        const QDomElement root = parseElement(text);
        EXPECT_TRUE(findConfigureElement(root).isNull());
        EXPECT_TRUE(findFieldsElement(root).isNull());
        EXPECT_TRUE(findConditionsElement(root).isNull());
        EXPECT_TRUE(findFieldElement(root, {}).isNull());
    }
    const QDomElement configure = parseElement("<configure><x><conditions/></x><conditions name='w'/></configure>");
    EXPECT_EQ(nameOf(findConditionsElement(configure)), "w");
}

TEST(XmlFinders, FieldsOfTheFirstListAreVisitedInDocumentOrder) {
    const QDomElement root = parseElement(kDocument);
    std::string visited;
    for (QDomElement field = findFieldElement(root, {}); !field.isNull(); field = findFieldElement(root, field)) {
        visited += nameOf(field);
    }
    EXPECT_EQ(visited, "123");
    EXPECT_EQ(nameOf(findFieldElement(parseElement("<r><a><fields><x/><field name='1'/></fields></a></r>"), {})), "1");
}

TEST(XmlFinders, WhatIsMissingIsAppendedWhereItsParentIs) {
    using Finder = QDomElement (*)(QDomElement);
    struct Row {
        Finder finder;
        const char* before;
        const char* after;
    };
    for (const auto& [finder, before, after] : std::vector<Row>{
             {findOrCreateConditionsElement, "<observation><configure><a/></configure></observation>",
              "<observation><configure><a/><conditions/></configure></observation>"},
             {findOrCreateFieldElement, "<r><observation><configure/></observation></r>",
              "<r><observation><configure/><fields><field/></fields></observation></r>"},
             {findOrCreateFieldElement, "<observation><fields><x/></fields></observation>",
              "<observation><fields><x/><field/></fields></observation>"},
             {findOrCreateFieldsElement, "<observation><a/></observation>", "<observation><a/><fields/></observation>"},
             {findOrCreateConditionsElement, "<observation><fields/></observation>", nullptr},
             {findOrCreateFieldsElement, "<r><configure/></r>", nullptr},
             {findOrCreateFieldElement, "<r><configure/></r>", nullptr}}) {
        const QDomElement root = parseElement(before);
        const QDomElement found = finder(root);
        EXPECT_EQ(found.isNull(), after == nullptr) << before;
        EXPECT_TRUE(finder(root) == found) << before;
        EXPECT_EQ(treeText(root), treeText(parseElement(after == nullptr ? before : after)));
    }
}
