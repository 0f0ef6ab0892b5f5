#include "xmlStructure.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "Version.h"
#include "thrown.h"
#include "xml.h"

#include <sys/stat.h>

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

TEST_F(XmlLoader, AnyDocumentLoadsWhileNoVersionIsFixed) {
    EXPECT_EQ(loadXmlFile(folder_.write("a.xml", "<a/>")).documentElement().tagName().toStdString(), "a");
    EXPECT_NO_THROW(loadXmlFile(folder_.write("b.xml", "<a datamver='1.00'/>")));
}

TEST_F(XmlLoader, VersionOfTheDocumentElementMustBeTheSameText) {
    datamver = "8.00";
    EXPECT_NO_THROW(loadXmlFile(folder_.write("a.xml", "<a datamver='8.00'/>")));
    for (const std::string text :
         {"<a datamver='8.0'/>", "<a datamver='8'/>", "<a datamver=''/>", "<a datamver='8.00 '/>",
          "<a datamver='8.000'/>", "<a Datamver='8.00'/>", "<a/>", "<a><b datamver='8.00'/></a>"}) {
        EXPECT_EQ(failure(folder_.write("b.xml", text)), "Data model version mismatch") << text;
    }
}

TEST_F(XmlLoader, VersionIsComparedAsUtf8) {
    datamver = "8\xc2\xb7"
               "00";
    EXPECT_NO_THROW(
        loadXmlFile(folder_.write("a.xml", "<?xml version='1.0' encoding='ISO-8859-1'?><a datamver='8&#xb7;00'/>")));
}

TEST_F(XmlLoader, MissingFileCouldNotBeOpened) {
    const std::string name = folder_.path("none.xml");
    EXPECT_EQ(failure(name), name + " could not be opened");
    EXPECT_EQ(failure(":/none.xml"), ":/none.xml could not be opened");
    EXPECT_EQ(failure(""), " could not be opened");
}

TEST_F(XmlLoader, FolderCouldNotBeOpened) {
    EXPECT_EQ(failure(folder_.name()), folder_.name() + " could not be opened");
}

TEST_F(XmlLoader, WhatIsNotXmlIsRefusedBeforeItsVersionIsLookedAt) {
    datamver = "8.00";
    const std::string name = folder_.write("a.xml", "<a datamver='7.00'><b></a>");
    EXPECT_EQ(failure(name), name + " is not valid XML");
    const std::string empty = folder_.write("empty.xml", "");
    EXPECT_EQ(failure(empty), empty + " is not valid XML");
}

TEST_F(XmlLoader, EmbeddedResourcesLoadByName) {
    EXPECT_EQ(loadXmlFile(":/focal_plane_map.xml").documentElement().tagName().toStdString(), "focal_plane_map");
}

TEST_F(XmlLoader, FileNameInUtf8OpensTheFileThatItNames) {
    const std::string name = folder_.write("f\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80.xml", "<a name='right'/>");
    EXPECT_EQ(nameOf(loadXmlFile(name).documentElement()), "right");
}

TEST_F(XmlLoader, FileNameInAnotherEncodingNeverOpensADifferentFile) {
    folder_.write("f\xc3\xa9.xml", "<a/>");
    folder_.write("f\xef\xbf\xbd.xml", "<a/>");
    folder_.write("f?.xml", "<a/>");
    const std::string name = folder_.path("f\xe9.xml");
    EXPECT_EQ(failure(name), name + " could not be opened");
}

TEST_F(XmlLoader, FileNameThatHoldsANulOpensNothing) {
    const std::string existing = folder_.write("a.xml", "<a/>");
    // The message is shown up to the NUL.
    EXPECT_EQ(failure(existing + std::string("\0.xml", 5)), existing);
}

TEST_F(XmlLoader, NamesWithUndeclaredPrefixesStayAsTheyAreWritten) {
    const QDomElement root = loadXmlFile(folder_.write("a.xml", "<p:a q:b='1'><r:c/></p:a>")).documentElement();
    EXPECT_EQ(root.tagName().toStdString(), "p:a");
    EXPECT_EQ(root.attribute("q:b").toStdString(), "1");
    EXPECT_EQ(root.firstChildElement("r:c").tagName().toStdString(), "r:c");
}

TEST(XmlFinders, ElementOfTheWantedNameIsItsOwnResult) {
    const QDomElement root = parseElement("<observation name='outer'><observation name='inner'/></observation>");
    EXPECT_EQ(nameOf(findElement(root, "observation")), "outer");
    EXPECT_EQ(nameOf(findObservationElement(root)), "outer");
}

TEST(XmlFinders, OwnChildrenComeBeforeDeeperElementsInFrontOfThem) {
    const QDomElement root = parseElement("<r><a><x name='deep'/></a><x name='near'/></r>");
    EXPECT_EQ(nameOf(findElement(root, "x")), "near");
}

TEST(XmlFinders, DeeperElementsAreSearchedOneBranchAfterTheOther) {
    const QDomElement root =
        parseElement("<r><a><b><c><x name='first branch'/></c></b></a><d><x name='second branch'/></d></r>");
    EXPECT_EQ(nameOf(findElement(root, "x")), "first branch");
}

TEST(XmlFinders, NamesAreComparedWithTheirCase) {
    EXPECT_TRUE(findElement(parseElement("<r><Observation/><OBSERVATION/></r>"), "observation").isNull());
}

TEST(XmlFinders, SearchThatFindsNothingReturnsANullElement) {
    EXPECT_TRUE(findElement(parseElement("<r><a>observation</a><!-- observation --></r>"), "observation").isNull());
    EXPECT_TRUE(findElement(QDomElement(), "observation").isNull());
    EXPECT_TRUE(findObservationElement(parseElement("<r/>")).isNull());
    EXPECT_TRUE(findConfigureElement(parseElement("<r/>")).isNull());
    EXPECT_TRUE(findConditionsElement(parseElement("<r/>")).isNull());
    EXPECT_TRUE(findFieldsElement(parseElement("<r/>")).isNull());
    EXPECT_TRUE(findFieldElement(parseElement("<r/>"), {}).isNull());
    EXPECT_TRUE(findConfigureElement(QDomElement()).isNull());
}

TEST(XmlFinders, EachElementIsFoundFromTheDocumentElement) {
    const QDomElement root = parseElement(kDocument);
    EXPECT_EQ(nameOf(findObservationElement(root)), "o");
    EXPECT_EQ(nameOf(findConfigureElement(root)), "c");
    EXPECT_EQ(nameOf(findConditionsElement(root)), "w");
    EXPECT_EQ(nameOf(findOrCreateConditionsElement(root)), "w");
    EXPECT_EQ(nameOf(findFieldsElement(root)), "l");
    EXPECT_EQ(nameOf(findOrCreateFieldsElement(root)), "l");
    EXPECT_EQ(nameOf(findOrCreateFieldElement(root)), "1");
}

TEST(XmlFinders, ObservationIsFoundHoweverDeepItStands) {
    const QDomElement root =
        parseElement("<a><b/><c><d><observation name='o'><configure name='c'/></observation></d></c></a>");
    EXPECT_EQ(nameOf(findObservationElement(root)), "o");
    EXPECT_EQ(nameOf(findConfigureElement(root)), "c");
}

TEST(XmlFinders, ElementHandedInIsReturnedIfItHasTheName) {
    EXPECT_EQ(nameOf(findConfigureElement(parseElement("<configure name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findConditionsElement(parseElement("<conditions name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateConditionsElement(parseElement("<conditions name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findFieldsElement(parseElement("<fields name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateFieldsElement(parseElement("<fields name='me'/>"))), "me");
    EXPECT_EQ(nameOf(findOrCreateFieldElement(parseElement("<field name='me'/>"))), "me");
}

TEST(XmlFinders, ConfigureAndFieldsAreSoughtOnlyUnderTheObservation) {
    const QDomElement root = parseElement("<r><configure name='no'/><fields name='no'/>"
                                          "<observation><deep><configure/><fields/></deep></observation></r>");
    EXPECT_TRUE(findConfigureElement(root).isNull());
    EXPECT_TRUE(findFieldsElement(root).isNull());
    EXPECT_TRUE(findConditionsElement(root).isNull());
}

TEST(XmlFinders, ConditionsAreSoughtUnderAConfigureHandedIn) {
    const QDomElement configure = parseElement("<configure><x><conditions/></x><conditions name='w'/></configure>");
    EXPECT_EQ(nameOf(findConditionsElement(configure)), "w");
}

TEST(XmlFinders, FieldsAreVisitedInDocumentOrder) {
    const QDomElement root = parseElement(kDocument);
    std::string visited;
    for (QDomElement field = findFieldElement(root, {}); !field.isNull(); field = findFieldElement(root, field)) {
        visited += nameOf(field);
    }
    EXPECT_EQ(visited, "123");
}

TEST(XmlFinders, FieldIterationTakesFieldsFromAnywhere) {
    const QDomElement root = parseElement("<r><a><fields><x/><field name='1'/></fields></a></r>");
    EXPECT_EQ(nameOf(findFieldElement(root, {})), "1");
    EXPECT_TRUE(findFieldElement(root, findFieldElement(root, {})).isNull());
    EXPECT_TRUE(findFieldElement(parseElement("<fields/>"), {}).isNull());
}

TEST(XmlFinders, MissingConditionsAreAppendedToTheConfigureElement) {
    const QDomDocument document = parseDocument("<observation><configure><a/></configure></observation>");
    const QDomElement created = findOrCreateConditionsElement(document.documentElement());
    EXPECT_EQ(treeText(document), treeText(parseDocument("<observation><configure><a/><conditions/></configure>"
                                                         "</observation>")));
    EXPECT_TRUE(created == document.documentElement().firstChildElement().lastChildElement());
    EXPECT_TRUE(findOrCreateConditionsElement(document.documentElement()) == created);
}

TEST(XmlFinders, ConditionsAreNotCreatedWithoutAConfigureElement) {
    const QDomDocument document = parseDocument("<observation><fields/></observation>");
    const std::string before = treeText(document);
    EXPECT_TRUE(findOrCreateConditionsElement(document.documentElement()).isNull());
    EXPECT_EQ(treeText(document), before);
}

TEST(XmlFinders, MissingFieldsAndFieldAreAppended) {
    const QDomDocument document = parseDocument("<r><observation><configure/></observation></r>");
    const QDomElement field = findOrCreateFieldElement(document.documentElement());
    EXPECT_EQ(treeText(document), treeText(parseDocument("<r><observation><configure/><fields><field/></fields>"
                                                         "</observation></r>")));
    EXPECT_EQ(field.tagName().toStdString(), "field");
    EXPECT_TRUE(findOrCreateFieldElement(document.documentElement()) == field);
}

TEST(XmlFinders, MissingFieldIsAppendedToFieldsThatAreThere) {
    const QDomDocument document = parseDocument("<observation><fields><x/></fields></observation>");
    findOrCreateFieldElement(document.documentElement());
    EXPECT_EQ(treeText(document), treeText(parseDocument("<observation><fields><x/><field/></fields></observation>")));
}

TEST(XmlFinders, MissingFieldsAreAppendedEmpty) {
    const QDomDocument document = parseDocument("<observation><a/></observation>");
    findOrCreateFieldsElement(document.documentElement());
    EXPECT_EQ(treeText(document), treeText(parseDocument("<observation><a/><fields/></observation>")));
}

TEST(XmlFinders, NothingIsCreatedWithoutAnObservation) {
    const QDomDocument document = parseDocument("<r><configure/></r>");
    const std::string before = treeText(document);
    EXPECT_TRUE(findOrCreateFieldsElement(document.documentElement()).isNull());
    EXPECT_TRUE(findOrCreateFieldElement(document.documentElement()).isNull());
    EXPECT_EQ(treeText(document), before);
}
