#include "xmlParse.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "thrown.h"
#include "xml.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

using namespace pos;
using namespace std::string_literals;

namespace {

bool wellFormed(const std::string& text) {
    return parseXml(QByteArray::fromStdString(text)).has_value();
}

std::string repeated(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

/** A text many times over, with the number of each in place of its "#". */
std::string numbered(int count, const std::string& text) {
    const std::size_t mark = text.find('#');
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text.substr(0, mark) + std::to_string(i) + text.substr(mark + 1);
    }
    return all;
}

std::string nested(int depth) {
    return repeated(depth, "<a>") + repeated(depth, "</a>");
}

std::string withAttributes(int count) {
    return "<r><a" + numbered(count, " a#=''") + "/></r>";
}

/** Entities of which each stands ten times for the one before: 10^levels characters. */
std::string nestedEntities(int levels) {
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int level = 1; level <= levels; ++level) {
        const std::string previous = "&e" + std::to_string(level - 1) + ";";
        text += "<!ENTITY e" + std::to_string(level) + " '";
        for (int i = 0; i < 10; ++i) {
            text += previous;
        }
        text += "'>";
    }
    return text + "]><a>&e" + std::to_string(levels) + ";</a>";
}

/** One entity of a length, used often. */
std::string repeatedEntity(int length, int times) {
    return "<!DOCTYPE a [<!ENTITY e '" + std::string(static_cast<std::size_t>(length), 'x') + "'>]><a>" +
           repeated(times, "&e;") + "</a>";
}

} // namespace

TEST(XmlParse, OrdinaryDocumentsPass) {
    for (const std::string text :
         {"<a/>", "<a></a>", "\n<a/>\n", "<?xml version='1.0'?><a/>", "<?xml version=\"1.0\" standalone='yes'?><a/>",
          "<!-- c --><?p q?><!DOCTYPE a><a b='1' c=\"2\">t<!-- c --><![CDATA[<&]]><?p q?><b/></a><!-- c --><?p?>",
          "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</a>", "<a b='&#9;&#10;&#13;>'/>"}) {
        EXPECT_TRUE(wellFormed(text)) << text;
    }
}

TEST(XmlParse, BrokenMarkupIsRefused) {
    for (const std::string text : {"",
                                   " ",
                                   "text",
                                   "<a>",
                                   "</a>",
                                   "<a></b>",
                                   "<a></A>",
                                   "<a><b></a></b>",
                                   "<a b/>",
                                   "<a b=1/>",
                                   "<a b='1'c='2'/>",
                                   "<a b='<'/>",
                                   "<a b='1/>",
                                   "<a>&</a>",
                                   "<a>&amp</a>",
                                   "<a>&#;</a>",
                                   "<a>&#X41;</a>",
                                   "<a>]]></a>",
                                   "<a><![CDATA[</a>",
                                   "<a><!-- x -- y --></a>",
                                   "<a><!-- x ---></a>",
                                   "<a><!-- x </a>",
                                   "<a><?p </a>",
                                   "< a/>",
                                   "<1/>",
                                   "<a></a b='1'>",
                                   "<?xml version='1.0'?>",
                                   "<?xml encoding='UTF-8'?><a/>",
                                   "<?xml version='1.0' other='1'?><a/>",
                                   "<a><?xml version='1.0'?></a>"}) {
        EXPECT_FALSE(wellFormed(text)) << text;
    }
}

TEST(XmlParse, NothingButCommentsAndInstructionsMayFollowTheDocumentElement) {
    EXPECT_TRUE(wellFormed("<a/><!-- c --> <?p q?>\n"));
    for (const std::string& text : {"<a/>x"s, "<a/><b/>"s, "<a/></a>"s, "<a/>\0"s, "<a/>\x1a"s, "<a/><!DOCTYPE a>"s,
                                    "<a/>&#32;"s, "<a/><![CDATA[]]>"s}) {
        EXPECT_FALSE(wellFormed(text)) << text;
    }
}

TEST(XmlParse, NothingMayPrecedeTheDeclaration) {
    EXPECT_FALSE(wellFormed(" <?xml version='1.0'?><a/>"));
    EXPECT_FALSE(wellFormed("\n<?xml version='1.0'?><a/>"));
}

TEST(XmlParse, DoubledAttributesAreRefused) {
    EXPECT_FALSE(wellFormed("<a b='1' b='2'/>"));
    EXPECT_FALSE(wellFormed("<a b='1' b='1'/>"));
    EXPECT_FALSE(wellFormed("<r><a x='1' p:b='1' y='2' p:b='2'/></r>"));
    EXPECT_TRUE(wellFormed("<a b='1' B='2' p:b='3'><c b='1'/></a>"));
}

TEST(XmlParse, ForbiddenCharactersAreRefusedWhereverTheyStand) {
    for (const std::string& character : {"\0"s, "\x01"s, "\x08"s, "\x0b"s, "\x0c"s, "\x0e"s, "\x1f"s, "\xef\xbf\xbe"s,
                                         "\xef\xbf\xbf"s, "&#0;"s, "&#1;"s, "&#x1f;"s, "&#xD800;"s, "&#xDFFF;"s,
                                         "&#xFFFE;"s, "&#xFFFF;"s, "&#x110000;"s, "&#x100000041;"s, "&#4294967361;"s}) {
        EXPECT_FALSE(wellFormed("<a>" + character + "</a>")) << character;
        EXPECT_FALSE(wellFormed("<a b='" + character + "'/>")) << character;
        if (character[0] != '&') {
            EXPECT_FALSE(wellFormed("<a><!--" + character + "--></a>")) << character;
            EXPECT_FALSE(wellFormed("<a><![CDATA[" + character + "]]></a>")) << character;
            EXPECT_FALSE(wellFormed("<a><?p " + character + "?></a>")) << character;
        }
    }
}

TEST(XmlParse, EveryOtherCharacterPasses) {
    for (const std::string& character :
         {"\t"s, "\n"s, "\r"s, "\x7f"s, "\xc2\x80"s, "\xc2\x85"s, "\xc2\xa0"s, "\xe2\x80\xa8"s, "\xed\x9f\xbf"s,
          "\xee\x80\x80"s, "\xef\xb7\x90"s, "\xef\xbf\xbd"s, "\xf0\x90\x80\x80"s, "\xf4\x8f\xbf\xbf"s, "&#x10FFFF;"s,
          "&#xFFFD;"s, "&#x0000000000041;"s}) {
        EXPECT_TRUE(wellFormed("<a b='" + character + "'>" + character + "</a>")) << character;
    }
}

TEST(XmlParse, BadUtf8IsRefusedWhereverItStands) {
    for (const std::string& bytes :
         {"\x80"s, "\xbf"s, "\xc3"s, "\xc3("s, "\xc0\x80"s, "\xc1\xbf"s, "\xe2\x82"s, "\xe0\x80\x80"s, "\xe0\x9f\xbf"s,
          "\xed\xa0\x80"s, "\xed\xbf\xbf"s, "\xf0\x80\x80\x80"s, "\xf0\x8f\xbf\xbf"s, "\xf0\x9f\x98"s,
          "\xf4\x90\x80\x80"s, "\xf8\x88\x80\x80\x80"s, "\xfe"s, "\xff"s, "\xe9"s}) {
        EXPECT_FALSE(wellFormed("<a>" + bytes + "</a>")) << bytes;
        EXPECT_FALSE(wellFormed("<a b='" + bytes + "'/>")) << bytes;
        EXPECT_FALSE(wellFormed("<a><!--" + bytes + "--></a>")) << bytes;
        EXPECT_FALSE(wellFormed("<?xml version='1.0' encoding='UTF-8'?><a>" + bytes + "</a>")) << bytes;
    }
    EXPECT_FALSE(wellFormed("<a/>\xe2\x82"));
}

TEST(XmlParse, UndeclaredEntitiesAreRefusedInTextAndInAttributes) {
    EXPECT_FALSE(wellFormed("<a>&u;</a>"));
    EXPECT_FALSE(wellFormed("<a b='&u;'/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&E;'/>"));
    EXPECT_FALSE(wellFormed("<a>&nbsp;</a>"));
    EXPECT_TRUE(wellFormed("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&e;'>&e;</a>"));
}

TEST(XmlParse, EntitiesMustBeBalancedAndMustNotHoldThemselves) {
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a b='&e;'/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&#60;'>]><a b='&e;'/>"));
}

TEST(XmlParse, PrefixesThatNothingDeclaresPass) {
    EXPECT_TRUE(wellFormed("<p:a q:b='1'><r:c/></p:a>"));
    EXPECT_TRUE(wellFormed("<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>"));
}

TEST(XmlParse, ElementsMayBeNestedAThousandDeep) {
    EXPECT_TRUE(wellFormed(nested(1000)));
    EXPECT_FALSE(wellFormed(nested(1001)));
    EXPECT_FALSE(wellFormed(nested(100000)));
}

TEST(XmlParse, DepthIsThatOfNestingNotOfNumber) {
    std::string text = "<r>";
    for (int i = 0; i < 5000; ++i) {
        text += "<a><b/></a>";
    }
    EXPECT_TRUE(wellFormed(text + "</r>"));
}

TEST(XmlParse, ElementsOutOfEntitiesCountTowardsTheDepth) {
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + nested(500) + "'>]>";
    std::string fits = nested(500);
    fits.insert(fits.find("</a>"), "&e;");
    EXPECT_TRUE(wellFormed(entity + fits));
    std::string tooDeep = nested(501);
    tooDeep.insert(tooDeep.find("</a>"), "&e;");
    EXPECT_FALSE(wellFormed(entity + tooDeep));
}

TEST(XmlParse, ElementMayHaveThousandsOfAttributes) {
    const std::optional<QDomDocument> document = parseXml(QByteArray::fromStdString(withAttributes(50'000)));
    ASSERT_TRUE(document.has_value());
    EXPECT_EQ(document->documentElement().firstChildElement("a").attributes().size(), 50'000);
}

TEST(XmlParse, NodesAreLimitedToOneForFourteenBytesBeyondTheFirst500000) {
    // The root and its elements are 1 + n nodes.
    const auto siblings = [](int count, const std::string& one) { return "<r>" + repeated(count, one) + "</r>"; };
    EXPECT_TRUE(wellFormed(siblings(499'999, "<a/>")));
    EXPECT_FALSE(wellFormed(siblings(500'000, "<a/>")));
    // 14 bytes for each, and 14 for the root
    EXPECT_TRUE(wellFormed("       " + siblings(600'000, "<abcdefghijk/>")));
    EXPECT_FALSE(wellFormed("      " + siblings(600'000, "<abcdefghijk/>")));
}

TEST(XmlParse, EveryKindOfNodeCounts) {
    const auto siblings = [](int count, const std::string& one) { return "<r>" + repeated(count, one) + "</r>"; };
    const std::vector<std::pair<std::string, int>> nodes = {{"<a b=''/>", 3},   {"<a/>t", 2},
                                                            {"<a/><?p?>", 2},   {"<!---->", 1},
                                                            {"<a/><!---->", 2}, {"<?p?><![CDATA[c]]>", 2}};
    for (const auto& [one, count] : nodes) {
        EXPECT_TRUE(wellFormed(siblings(499'999 / count, one))) << one;
        EXPECT_FALSE(wellFormed(siblings(499'999 / count + 1, one))) << one;
    }
}

TEST(XmlParse, NodesOutOfEntitiesAndDeclaredDefaultsCountToo) {
    const std::string entity = "<!DOCTYPE r [<!ENTITY e '" + repeated(1000, "<a/>") + "'>]>";
    EXPECT_TRUE(wellFormed(entity + "<r>" + repeated(499, "&e;") + "</r>"));
    EXPECT_FALSE(wellFormed(entity + "<r>" + repeated(500, "&e;") + "</r>"));
    const std::string defaults = "<!DOCTYPE r [<!ATTLIST a" + numbered(998, " a# CDATA ''") + ">]>";
    EXPECT_TRUE(wellFormed(defaults + "<r>" + repeated(499, "<a/>") + "</r>"));
    EXPECT_FALSE(wellFormed(defaults + "<r>" + repeated(500, "<a/>") + "</r>"));
}

TEST(XmlParse, DocumentTypeEndsWithinTheFirst16KiB) {
    const auto withType = [](std::size_t length) {
        const std::string begin = "<!DOCTYPE a [<!--";
        const std::string end = "-->]>";
        return begin + std::string(length - begin.size() - end.size(), 'x') + end + "<a/>";
    };
    EXPECT_TRUE(wellFormed(withType(16'384)));
    EXPECT_FALSE(wellFormed(withType(16'385)));
    EXPECT_FALSE(wellFormed("<!--" + std::string(20'000, 'x') + "--><!DOCTYPE a><a/>"));
    // Declarations that cost time, or memory, out of proportion to their length.
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY % p ''>" + repeated(3'000'000, "%p;") + "]><a/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ATTLIST a" + numbered(400'000, " a# CDATA #IMPLIED") + ">]><a/>"));
}

TEST(XmlParse, SingleTagOrCommentIsLimitedToAboutOneMebibyte) {
    const auto kilobytes = [](int count) { return std::string(static_cast<std::size_t>(count) * 1000, 'x'); };
    for (const auto& [begin, end] : std::vector<std::pair<std::string, std::string>>{
             {"<r><a b='", "'/></r>"}, {"<r><!--", "--></r>"}, {"<r><?p ", "?></r>"}, {"<", "/>"}, {"<r", "/>"}}) {
        EXPECT_TRUE(wellFormed(begin + kilobytes(1000) + end)) << begin;
        EXPECT_FALSE(wellFormed(begin + kilobytes(1100) + end)) << begin;
    }
    EXPECT_TRUE(wellFormed("<r>" + kilobytes(5000) + "</r>"));
    EXPECT_TRUE(wellFormed("<r><![CDATA[" + kilobytes(5000) + "]]></r>"));
}

TEST(XmlParse, WhateverIsWellFormedKeepsItsMeaningThroughWritingAndReading) {
    for (const std::string& text :
         {"<:a/>"s, "<a b:=''/>"s, "<a:b:c/>"s, "<a><?p:q x?></a>"s, "<!DOCTYPE a [<!ENTITY p:e 'E'>]><a>&p:e;</a>"s,
          "<!DOCTYPE a [<!ENTITY e '&#38;#10;'>]><a b='&e;'/>"s, "<!-- c --><!DOCTYPE a><!-- d --><a/><?p q?>"s,
          "<!DOCTYPE a [<!ENTITY e '" + std::string(5000, 'x') + "'>]><a>&e;</a>"}) {
        const std::optional<QDomDocument> document = parseXml(QByteArray::fromStdString(text));
        ASSERT_TRUE(document.has_value()) << text;
        const QByteArray written = serialiseXml(*document);
        const std::optional<QDomDocument> again = parseXml(written);
        ASSERT_TRUE(again.has_value()) << written.toStdString();
        EXPECT_EQ(treeText(*again), treeText(*document));
        EXPECT_EQ(serialiseXml(*again), written);
    }
}

TEST(XmlParse, DocumentTypeKeepsItsNameAndIdentifiers) {
    const auto written = [](const std::string& text) {
        return serialiseXml(parseXml(QByteArray::fromStdString(text)).value()).toStdString();
    };
    EXPECT_EQ(written("<!DOCTYPE a><a/>"), "<!DOCTYPE a>\n<a/>\n");
    EXPECT_EQ(written("<!DOCTYPE a SYSTEM 'b.dtd'><a/>"), "<!DOCTYPE a SYSTEM 'b.dtd'>\n<a/>\n");
    EXPECT_EQ(written("<!DOCTYPE a PUBLIC 'p' 'b.dtd' [<!-- c --><?p?>]><a/>"),
              "<!DOCTYPE a PUBLIC 'p' 'b.dtd'>\n<a/>\n");
}

TEST(XmlParse, FloodsOfEntitiesAreRefused) {
    EXPECT_TRUE(wellFormed(nestedEntities(3)));
    EXPECT_FALSE(wellFormed(nestedEntities(9)));
    EXPECT_TRUE(wellFormed(repeatedEntity(1000, 100)));
    EXPECT_FALSE(wellFormed(repeatedEntity(10000, 1000)));
}

TEST(XmlParse, LongChainsOfEntitiesDoNotOverflowTheStack) {
    constexpr int kLength = 700; // as many as a document type may have
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int i = 1; i <= kLength; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    const std::string last = "&e" + std::to_string(kLength) + ";";
    EXPECT_TRUE(wellFormed(text + "]><a>" + last + "</a>"));
    EXPECT_TRUE(wellFormed(text + "]><a b='" + last + "'/>"));
}

class XmlWithEntities : public ProcessWideState {
protected:
    TemporaryFolder folder_;
};

TEST_F(XmlWithEntities, ExternalEntitiesAreNeverReadNorDroppedUnnoticed) {
    const std::string secret = folder_.write("secret.txt", "secret");
    const std::string declaration = "<!DOCTYPE a [<!ENTITY e SYSTEM '" + secret + "'>]>";
    const std::string inText = folder_.write("text.xml", declaration + "<a>x&e;y</a>");
    EXPECT_EQ(messageOf([&] { loadXmlFile(inText); }), inText + " is not valid XML");
    const std::string inAttribute = folder_.write("attribute.xml", declaration + "<a b='&e;'/>");
    EXPECT_EQ(messageOf([&] { loadXmlFile(inAttribute); }), inAttribute + " is not valid XML");
    const std::string unused = folder_.write("unused.xml", declaration + "<a>xy</a>");
    EXPECT_EQ(loadXmlFile(unused).documentElement().text().toStdString(), "xy");
}

TEST_F(XmlWithEntities, ExternalDocumentTypesAreNeverRead) {
    folder_.write("a.dtd", "<!ENTITY e 'E'><!ATTLIST a b CDATA 'B'>");
    const std::string declaration = "<!DOCTYPE a SYSTEM '" + folder_.path("a.dtd") + "'>";
    const std::string plain = folder_.write("plain.xml", declaration + "<a/>");
    EXPECT_FALSE(loadXmlFile(plain).documentElement().hasAttribute("b"));
    // The standard lets a reader that does not read the type pass these, but their text would be lost.
    for (const std::string content : {"<a>&e;</a>", "<a b='&e;'/>"}) {
        const std::string name = folder_.write("entity.xml", declaration + content);
        EXPECT_EQ(messageOf([&] { loadXmlFile(name); }), name + " is not valid XML") << content;
    }
}

TEST(XmlParse, DeclaredDefaultsThatBlowASmallDocumentUpAreRefused) {
    const auto document = [](int elements) {
        QByteArray text = "<!DOCTYPE r [<!ATTLIST z d CDATA \"" + QByteArray(10'000, 'x') + "\">]><r>";
        for (int i = 0; i < elements; ++i) {
            text += "<z/>";
        }
        return text + "</r>";
    };
    EXPECT_TRUE(parseXml(document(100)).has_value());
    EXPECT_FALSE(parseXml(document(2'000)).has_value());
}
