#include "SourceTree.h"

#include "xmlParse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace pos;
using testing::ElementsAre;

namespace {

/** Every element and attribute of a document with the text at its places: "tag|name", "tag|name/name in its end tag",
 * "name=value". */
std::vector<std::string> placesOf(const QByteArray& document) {
    const ParsedXml parsed = parseXml(document, "d");
    const auto root = locateElements(document, parsed);
    const auto at = [&](Span span) { return document.mid(span.begin, span.end - span.begin).toStdString(); };
    std::vector<std::string> places;
    const std::function<void(const SourceElement&)> visit = [&](const SourceElement& element) {
        places.push_back(at(element.tag) + '|' + at(element.namePlace) +
                         (element.endNamePlace ? '/' + at(*element.endNamePlace) : ""));
        for (const SourceAttribute& attribute : element.attributes) {
            places.push_back(at(attribute.namePlace) + '=' + at(attribute.valuePlace));
        }
        for (const auto& child : element.children) {
            EXPECT_EQ(child->parent, &element);
            visit(*child);
        }
    };
    visit(*root);
    return places;
}

} // namespace

TEST(SourceTree, PlacesElementsAndAttributesAsTheyAreWritten) {
    EXPECT_THAT(placesOf("<a>\n <b  x = 'a>b/'\n\ty=\"&lt;'\"/><!-- <c/> --><![CDATA[<d>]]></a\n>"),
                ElementsAre("<a>|a/a", "<b  x = 'a>b/'\n\ty=\"&lt;'\"/>|b", "x=a>b/", "y=&lt;'"));
}

TEST(SourceTree, PlacesWhatStandsBehindADocumentType) {
    EXPECT_THAT(placesOf("<!DOCTYPE a [<!ENTITY e 'text'><!ATTLIST a z CDATA 'default'>]>\n<a x=\"&e;\"><b/></a>"),
                ElementsAre("<a x=\"&e;\">|a/a", "x=&e;", "<b/>|b"));
}

TEST(SourceTree, WhatAnEntityBringsStandsAtItsReference) {
    EXPECT_THAT(placesOf("<!DOCTYPE a [<!ENTITY e '<b x=\"1\"><c/></b>'>]><a>&e;<d></d></a>"),
                ElementsAre("<a>|a/a", "&e;|&e;", "&e;=&e;", "&e;|&e;", "<d>|d/d"));
}
