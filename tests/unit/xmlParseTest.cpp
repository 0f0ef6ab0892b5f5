#include "xmlParse.h"

#include "xml.h"
#include "xmlSerialise.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

using namespace pos;
using namespace std::string_literals;

namespace {

/** How a document is refused, without its name; empty when it is taken. */
std::string refusal(const std::string& text) {
    const std::string name = "a.xml";
    try {
        parseXml(QByteArray::fromStdString(text), name);
        return {};
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, name.size() + 1), name + ' ');
        return std::string(error.what()).substr(name.size() + 1);
    }
}

/** Fails the test for a document that is refused for another reason. */
bool wellFormed(const std::string& text) {
    const std::string reason = refusal(text);
    EXPECT_TRUE(reason.empty() || reason == "is not valid XML") << reason;
    return reason.empty();
}

QDomDocument parsed(const std::string& text) {
    return parseXml(QByteArray::fromStdString(text), "a.xml").document;
}

constexpr const char* kUnknownEntity = "refers to an entity that cannot be known without reading another file";
constexpr const char* kTooManyEntities = "has entities that make it larger than 8 MiB and than twice its size";

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

TEST(XmlParse, ElementsMayBeNested256Deep) {
    EXPECT_EQ(refusal(nested(256)), "");
    EXPECT_EQ(refusal(nested(257)), "is nested more than 256 levels deep");
    EXPECT_EQ(refusal(nested(100'000)), "is nested more than 256 levels deep");
}

TEST(XmlParse, DepthIsThatOfNestingNotOfNumber) {
    std::string text = "<r>";
    for (int i = 0; i < 5000; ++i) {
        text += "<a><b/></a>";
    }
    EXPECT_TRUE(wellFormed(text + "</r>"));
}

TEST(XmlParse, ElementsOutOfEntitiesCountTowardsTheDepth) {
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + nested(128) + "'>]>";
    const auto around = [](int depth) {
        std::string text = nested(depth);
        return text.insert(text.find("</a>"), "&e;");
    };
    EXPECT_EQ(refusal(entity + around(128)), "");
    EXPECT_EQ(refusal(entity + around(129)), "is nested more than 256 levels deep");
}

TEST(XmlParse, TagMayHave256Attributes) {
    EXPECT_EQ(parsed(withAttributes(256)).documentElement().firstChildElement("a").attributes().size(), 256);
    EXPECT_EQ(refusal(withAttributes(257)), "has more than 256 attributes in one tag");
    EXPECT_EQ(refusal(withAttributes(100'000)), "has more than 256 attributes in one tag");
}

TEST(XmlParse, NodesAreLimitedToOneForFourteenBytesBeyondTheFirst500000) {
    // The root and its elements are 1 + n nodes.
    const auto siblings = [](int count, const std::string& one) { return "<r>" + repeated(count, one) + "</r>"; };
    EXPECT_EQ(refusal(siblings(499'999, "<a/>")), "");
    EXPECT_EQ(refusal(siblings(500'000, "<a/>")), "has more than 500000 elements, attributes and other nodes");
    // 14 bytes for each, and 14 for the root
    EXPECT_EQ(refusal("       " + siblings(600'000, "<abcdefghijk/>")), "");
    EXPECT_EQ(refusal("      " + siblings(600'000, "<abcdefghijk/>")),
              "has more than 600000 elements, attributes and other nodes");
}

TEST(XmlParse, EveryKindOfNodeCounts) {
    const auto siblings = [](int count, const std::string& one) { return "<r>" + repeated(count, one) + "</r>"; };
    const std::vector<std::pair<std::string, int>> nodes = {
        {"<a b=''/>", 3}, {"<a/>t", 2}, {"<a/><?p?>", 2}, {"<!---->", 1}, {"<a/><!---->", 2}, {"<?p?><![CDATA[]]>", 2}};
    for (const auto& [one, count] : nodes) {
        EXPECT_EQ(refusal(siblings(499'999 / count, one)), "") << one;
        EXPECT_EQ(refusal(siblings(499'999 / count + 1, one)),
                  "has more than 500000 elements, attributes and other nodes")
            << one;
    }
}

TEST(XmlParse, NodesOutOfEntitiesCountToo) {
    const std::string entity = "<!DOCTYPE r [<!ENTITY e '" + repeated(1000, "<a/>") + "'>]>";
    EXPECT_EQ(refusal(entity + "<r>" + repeated(499, "&e;") + "</r>"), "");
    EXPECT_EQ(refusal(entity + "<r>" + repeated(500, "&e;") + "</r>"),
              "has more than 500000 elements, attributes and other nodes");
}

TEST(XmlParse, DocumentTypeDeclaresAtMost64KiBWhereverItStands) {
    const std::string tooMuch = "declares more than 64 KiB in its document type";
    // What the parser reports of each: the name and the value of an entity, all of the other declaration, the brackets.
    const auto entity = [](int length) {
        return "<!DOCTYPE a [<!ENTITY e '" + std::string(static_cast<std::size_t>(length), 'x') + "'>]><a>&e;</a>";
    };
    EXPECT_EQ(refusal(entity(65'000)), "");
    EXPECT_EQ(refusal(entity(65'536)), tooMuch);
    const auto attributes = [](int count) {
        return "<!DOCTYPE a [<!ATTLIST a" + numbered(count, " a# CDATA ''") + ">]><a/>";
    };
    EXPECT_EQ(refusal(attributes(4'000)), "");
    EXPECT_EQ(refusal(attributes(6'000)), tooMuch);
    const std::string parameter = "<!DOCTYPE a [<!ENTITY % p '" + repeated(1000, "<!ELEMENT b ANY>") + "'>";
    EXPECT_EQ(refusal(parameter + "%p;%p;]><a/>"), "");
    EXPECT_EQ(refusal(parameter + "%p;%p;%p;%p;]><a/>"), tooMuch);
    const std::string comment = "<!--" + std::string(100'000, 'x') + "-->";
    EXPECT_EQ(refusal(comment + "<!DOCTYPE a [" + comment + "]>" + comment + "<a/>"), "");
}

TEST(XmlParse, TagsTextsAndCommentsMayBeOfAnyLength) {
    const std::string text(3'000'000, 'x');
    for (const auto& [begin, end] :
         std::vector<std::pair<std::string, std::string>>{{"<r><a b='", "'/></r>"},
                                                          {"<r><!--", "--></r>"},
                                                          {"<r><?p ", "?></r>"},
                                                          {"<", "/>"},
                                                          {"<r", "/>"},
                                                          {"<r>", "</r>"},
                                                          {"<r><![CDATA[", "]]></r>"},
                                                          {"<!DOCTYPE r [<!--", "-->]><r/>"}}) {
        EXPECT_EQ(refusal(begin + text + end), "") << begin;
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

TEST(XmlParse, DocumentTypeKeepsItsNameAndIdentifiers) {
    const auto written = [](const std::string& text) { return serialiseXml(parsed(text)).toStdString(); };
    EXPECT_EQ(written("<!DOCTYPE a><a/>"), "<!DOCTYPE a>\n<a/>\n");
    EXPECT_EQ(written("<!DOCTYPE a SYSTEM 'b.dtd'><a/>"), "<!DOCTYPE a SYSTEM 'b.dtd'>\n<a/>\n");
    EXPECT_EQ(written("<!DOCTYPE a PUBLIC 'p' 'b.dtd' [<!-- c --><?p?>]><a/>"),
              "<!DOCTYPE a PUBLIC 'p' 'b.dtd'>\n<a/>\n");
    EXPECT_EQ(written("<!DOCTYPE p:a SYSTEM 'b?c=1&d=<2'><p:a/>"), "<!DOCTYPE p:a SYSTEM 'b?c=1&d=<2'>\n<p:a/>\n");
}

TEST(XmlParse, DocumentMayGrowByItsEntitiesTo8MiBOrTwiceItsSize) {
    EXPECT_EQ(refusal(nestedEntities(3)), "");
    EXPECT_EQ(refusal(nestedEntities(9)), kTooManyEntities);
    EXPECT_EQ(refusal(repeatedEntity(10'000, 800)), "");
    EXPECT_EQ(refusal(repeatedEntity(10'000, 900)), kTooManyEntities);
    // Behind padding that makes half of the whole, in attributes as well.
    const auto padded = [](int times) {
        const std::string entity(10'000, 'x');
        return "<!DOCTYPE a [<!ENTITY e '" + entity + "'>]><!--" + std::string(10'000'000, 'x') + "--><a b='" +
               repeated(times, "&e;") + "'/>";
    };
    EXPECT_EQ(refusal(padded(990)), "");
    EXPECT_EQ(refusal(padded(1010)), kTooManyEntities);
}

TEST(XmlParse, DocumentMayDeclare256EntitiesEachWithinAnother) {
    const auto chain = [](int length) {
        std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
        for (int i = 1; i < length; ++i) {
            text += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
        }
        const std::string last = "&e" + std::to_string(length - 1) + ";";
        return text + "]><a b='" + last + "'>" + last + "</a>";
    };
    EXPECT_EQ(refusal(chain(256)), "");
    EXPECT_EQ(refusal(chain(257)), "declares more than 256 entities");
    EXPECT_EQ(refusal(chain(2'000)), "declares more than 256 entities");
    EXPECT_EQ(refusal("<!DOCTYPE a [" + numbered(300, "<!ENTITY % p# ''>") + "]><a/>"),
              "declares more than 256 entities");
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

TEST(XmlParse, PlaceOfAnErrorIsWhereTheDocumentCeasesToBeWellFormed) {
    const auto offset = [](const std::string& text) {
        try {
            parseXml(QByteArray::fromStdString(text), "a.xml");
        } catch (const MalformedXml& error) {
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
}

TEST(XmlParse, ContentBeginsBehindTheDocumentType) {
    const auto begin = [](const std::string& text) {
        return parseXml(QByteArray::fromStdString(text), "a.xml").contentBegin;
    };
    EXPECT_EQ(begin("<!--c--><a/>"), 0);
    EXPECT_EQ(begin("<!--c--><!DOCTYPE a ><a/>"), 21);
    EXPECT_EQ(begin("<!DOCTYPE a SYSTEM '>' [<!ENTITY e ']>'> <?p ]>?> ] ><a/>"), 53);
}
