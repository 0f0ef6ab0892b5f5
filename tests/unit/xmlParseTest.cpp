#include "xmlParse.h"

#include "xml.h"
#include "xmlSerialise.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

using namespace pos;
using namespace std::string_literals;

namespace {

constexpr const char* kUnknownEntity = "refers to an entity that cannot be known without reading another file";

} // namespace

TEST(XmlParse, WellFormedDocumentsPass) {
    for (const std::string text :
         {"\n<a/>\n", "<?xml version=\"1.0\" standalone='yes'?><a/>",
          "<!-- c --><?p q?><!DOCTYPE a><a b='1' c=\"2\">t<!-- c --><![CDATA[<&]]><?p q?><b/></a><!-- c --> <?p?>\n",
          "<a b='&#9;&#10;&#13;>'>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</a>", "<a b='1' B='2' p:b='3'><c b='1'/></a>",
          "<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&e;'>&e;</a>", "<p:a q:b='1'><r:c/></p:a>",
          "<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>"}) {
        EXPECT_TRUE(wellFormed(text)) << text;
    }
}

TEST(XmlParse, BrokenMarkupIsRefused) {
    for (const std::string& text :
         {""s, " "s, "text"s, "<a>"s, "</a>"s, "<a></A>"s, "<a><b></a></b>"s, "<a b=1/>"s, "<a b='<'/>"s, "<a>&</a>"s,
          "<a>]]></a>"s, "<a><![CDATA[</a>"s, "<a><!-- x -- y --></a>"s, "<a><?p </a>"s, "<1/>"s,
          // declarations in the wrong place or form
          "<?xml version='1.0'?>"s, "<?xml encoding='UTF-8'?><a/>"s, "<a><?xml version='1.0'?></a>"s,
          "\n<?xml version='1.0'?><a/>"s,
          // what may not follow the document element
          "<a/>x"s, "<a/><b/>"s, "<a/>\0"s, "<a/><!DOCTYPE a>"s, "<a/>&#32;"s, "<a/><![CDATA[]]>"s, "<a/>\xe2\x82"s,
          // doubled attributes
          "<a b='1' b='1'/>"s, "<r><a x='1' p:b='1' y='2' p:b='2'/></r>"s,
          // entities that are not declared, hold themselves or are not balanced
          "<a>&u;</a>"s, "<a b='&u;'/>"s, "<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&E;'/>"s,
          "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a b='&e;'/>"s,
          "<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>"s, "<!DOCTYPE a [<!ENTITY e '&#60;'>]><a b='&e;'/>"s}) {
        EXPECT_FALSE(wellFormed(text)) << text;
    }
}

TEST(XmlParse, ForbiddenCharactersAndBadUtf8AreRefusedWhereverTheyStand) {
    for (const std::string& bytes :
         {"\0"s, "\x01"s, "\x0b"s, "\x1f"s, "\xef\xbf\xbe"s, "\xef\xbf\xbf"s, "\x80"s, "\xc3"s, "\xc3("s, "\xc0\x80"s,
          "\xe2\x82"s, "\xe0\x9f\xbf"s, "\xed\xa0\x80"s, "\xed\xbf\xbf"s, "\xf0\x8f\xbf\xbf"s, "\xf0\x9f\x98"s,
          "\xf4\x90\x80\x80"s, "\xf8\x88\x80\x80\x80"s, "\xff"s}) {
        EXPECT_FALSE(wellFormed("<a>" + bytes + "</a>")) << bytes;
        EXPECT_FALSE(wellFormed("<a b='" + bytes + "'/>")) << bytes;
        EXPECT_FALSE(wellFormed("<a><!--" + bytes + "--></a>")) << bytes;
        EXPECT_FALSE(wellFormed("<a><![CDATA[" + bytes + "]]></a>")) << bytes;
        EXPECT_FALSE(wellFormed("<a><?p " + bytes + "?></a>")) << bytes;
        EXPECT_FALSE(wellFormed("<?xml version='1.0' encoding='UTF-8'?><a>" + bytes + "</a>")) << bytes;
    }
    for (const std::string reference : {"&#0;", "&#1;", "&#xD800;", "&#xFFFE;", "&#x110000;", "&#x100000041;"}) {
        EXPECT_FALSE(wellFormed("<a>" + reference + "</a>")) << reference;
        EXPECT_FALSE(wellFormed("<a b='" + reference + "'/>")) << reference;
    }
}

TEST(XmlParse, EveryOtherCharacterPasses) {
    for (const std::string& character :
         {"\t"s, "\n"s, "\r"s, "\x7f"s, "\xc2\x80"s, "\xc2\x85"s, "\xe2\x80\xa8"s, "\xed\x9f\xbf"s, "\xee\x80\x80"s,
          "\xef\xb7\x90"s, "\xef\xbf\xbd"s, "\xf0\x90\x80\x80"s, "\xf4\x8f\xbf\xbf"s, "&#x10FFFF;"s, "&#xFFFD;"s,
          "&#x0000000000041;"s}) {
        EXPECT_TRUE(wellFormed("<a b='" + character + "'>" + character + "</a>")) << character;
    }
}

TEST(XmlParse, WhateverIsWellFormedKeepsItsMeaningThroughWritingAndReading) {
    for (const std::string& text :
         {"<:a/>"s, "<a b:=''/>"s, "<a:b:c/>"s, "<a><?p:q x?></a>"s, "<!DOCTYPE a [<!ENTITY p:e 'E'>]><a>&p:e;</a>"s,
          "<!DOCTYPE a [<!ENTITY e '&#38;#10;'>]><a b='&e;'/>"s, "<!-- c --><!DOCTYPE a><!-- d --><a/><?p q?>"s,
          "<!DOCTYPE a [<!ENTITY e '" + std::string(5000, 'x') + "'>]><a>&e;</a>"}) {
        ASSERT_EQ(refusal(text), "") << text;
        const std::string written = serialiseXml(parsed(text)).toStdString();
        ASSERT_EQ(refusal(written), "") << written;
        EXPECT_EQ(treeText(parsed(written)), treeText(parsed(text)));
        EXPECT_EQ(serialiseXml(parsed(written)).toStdString(), written);
    }
}

TEST(XmlParse, ByteOrderMarksWithinTheDocumentAreText) {
    const std::string mark = "\xef\xbb\xbf";
    EXPECT_EQ(treeText(parsed("<a b='&#xfeff;x' c='" + mark + "'>" + mark + mark + "t<!--" + mark + "c--><![CDATA[" +
                              mark + "d]]><?p " + mark + "i?></a>")
                           .documentElement()),
              "<a b='" + mark + "x' c='" + mark + "'>\n [3 #text] " + mark + mark + "t\n [8 #comment] " + mark +
                  "c\n [4 #cdata-section] " + mark + "d\n [7 p] " + mark + "i\n");
}

TEST(XmlParse, EntitiesThatParameterEntitiesDeclareAreReplaced) {
    const std::string type = "<!DOCTYPE a [<!ENTITY % p \"<!ENTITY nm 'M 104'>\"> %p;]>";
    const QDomElement root = parsed(type + "<a b='X&nm;Y'>X&nm;Y</a>").documentElement();
    EXPECT_EQ(root.attribute("b").toStdString(), "XM 104Y");
    EXPECT_EQ(root.text().toStdString(), "XM 104Y");
}

TEST(XmlParse, ReplacedTextIsWhatWasDeclaredToTheLetter) {
    const QDomElement root =
        parsed("<!DOCTYPE a [<!ENTITY p '&#37;&#34;&#39;&#38;#38;&#38;#60;&#13;'><!ENTITY m '<i j=\"&p;\">&p;</i>'>]>"
               "<a b='&p;'>&p;&m;</a>")
            .documentElement();
    EXPECT_EQ(root.attribute("b").toStdString(), "%\"'&< ");
    EXPECT_EQ(root.firstChild().nodeValue().toStdString(), "%\"'&<\r");
    EXPECT_EQ(root.firstChildElement("i").attribute("j").toStdString(), "%\"'&< ");
}

TEST(XmlParse, WhatIsDeclaredForAttributesChangesNothing) {
    const std::string type = "<!DOCTYPE a [<!ATTLIST a b CDATA 'B' c NMTOKENS #IMPLIED d ID #FIXED 'D'>]>";
    EXPECT_EQ(treeText(parsed(type + "<a c='  x \n y '/>").documentElement()), "<a c='  x   y '>\n");
    EXPECT_EQ(treeText(parsed(type + "<a/>").documentElement()), "<a>\n");
}

TEST(XmlParse, EntityThatMayStandInAnotherFileIsRefusedWithThatReason) {
    for (const std::string type :
         {"<!DOCTYPE a SYSTEM 'x'>", "<!DOCTYPE a PUBLIC 'p' 'x' [<!ENTITY f '&e;'>]>",
          "<!DOCTYPE a [<!ENTITY % p SYSTEM 'x'>%p;]>", "<!DOCTYPE a [<!ENTITY % p SYSTEM 'x'>%p;<!ENTITY e 'E'>]>",
          "<!DOCTYPE a [%p;]>", "<?xml version='1.0' standalone='no'?><!DOCTYPE a SYSTEM 'x'>"}) {
        EXPECT_EQ(refusal(type + "<a>&e;</a>"), kUnknownEntity) << type;
        EXPECT_EQ(refusal(type + "<a><b c='&e;'/></a>"), kUnknownEntity) << type;
        EXPECT_EQ(refusal(type + "<a/>"), "") << type;
    }
    EXPECT_EQ(refusal("<!DOCTYPE a PUBLIC 'p' 'x' [<!ENTITY f '&e;'>]><a b='&f;'/>"), kUnknownEntity);
    EXPECT_EQ(refusal("<!DOCTYPE a [<!ENTITY e SYSTEM 'x'>]><a>&e;</a>"), kUnknownEntity);
    EXPECT_FALSE(wellFormed("<?xml version='1.0' standalone='yes'?><!DOCTYPE a SYSTEM 'x'><a>&e;</a>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e SYSTEM 'x'>]><a b='&e;'/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!NOTATION n SYSTEM 'x'><!ENTITY e SYSTEM 'x' NDATA n>]><a>&e;</a>"));
}

TEST(XmlParse, DeclarationKeepsAllThatItSays) {
    for (const std::string declaration : {"<?xml version='1.0'?>\n", "<?xml version='1.0' standalone='no'?>\n",
                                          "<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n"}) {
        EXPECT_EQ(serialiseXml(parsed(declaration + "<a/>")).toStdString(), declaration + "<a/>\n");
    }
    EXPECT_EQ(refusal("<?xml version='1.1'?><a/>"), "is written in version 1.1 of XML, and only 1.0 is read");
}

TEST(XmlParse, OnlyBlanksOfXmlAreBlank) {
    EXPECT_EQ(treeText(parsed("<a> \t\r\n&#32;&#9;&#13;&#10;<b>\xc2\xa0</b><c>\xe3\x80\x80</c></a>").documentElement()),
              "<a>\n <b>\n  [3 #text] \xc2\xa0\n <c>\n  [3 #text] \xe3\x80\x80\n");
    EXPECT_EQ(treeText(parsed("<a><![CDATA[ ]]><![CDATA[]]></a>").documentElement()),
              "<a>\n [4 #cdata-section]  \n [4 #cdata-section] \n");
}

TEST(XmlParse, PlaceOfAnErrorIsWhereReadingStops) {
    const auto offset = [](const std::string& text) {
        try {
            parseXml(QByteArray::fromStdString(text), "a.xml");
        } catch (const UnreadableXml& error) {
            return text.substr(0, static_cast<std::size_t>(error.offset()));
        }
        return std::string("(taken)");
    };
    EXPECT_EQ(offset("<a b=1/>"), "<a b=");
    EXPECT_EQ(offset("<!DOCTYPE a [<!ENTITY e 'x'>]>\n<a>\xc3\xa9&e;<b c=1/></a>"),
              "<!DOCTYPE a [<!ENTITY e 'x'>]>\n<a>\xc3\xa9&e;<b c=");
    EXPECT_EQ(offset("<!DOCTYPE a [</a>]><a/>"), "<!DOCTYPE a [<");
    EXPECT_EQ(offset("<a>&u;</a>"), "<a>");
    EXPECT_EQ(offset("<a><b></b>"), "<a><b></b>");
    EXPECT_EQ(offset("<?xml version='1.1'?><a/>"), "<?xml version='");
    EXPECT_EQ(offset("<!DOCTYPE a [<!ENTITY e SYSTEM 'f'>]><a>x&e;</a>"), "<!DOCTYPE a [<!ENTITY e SYSTEM 'f'>]><a>x");
}

TEST(XmlParse, ContentBeginsBehindTheDocumentType) {
    const auto begin = [](const std::string& text) {
        return parseXml(QByteArray::fromStdString(text), "a.xml").contentBegin;
    };
    EXPECT_EQ(begin("<!--c--><a/>"), 0);
    EXPECT_EQ(begin("<!--c--><!DOCTYPE a ><a/>"), 21);
    EXPECT_EQ(begin("<!DOCTYPE a SYSTEM '>' [<!ENTITY e ']>'> <?p ]>?> ] ><a/>"), 53);
}
