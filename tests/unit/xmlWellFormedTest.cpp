#include "xmlWellFormed.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "thrown.h"
#include "xmlStructure.h"

#include <gtest/gtest.h>

using namespace pos;
using namespace std::string_literals;

namespace {

bool wellFormed(const std::string& text) {
    return isWellFormedXml(QByteArray::fromStdString(text));
}

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += "<a>";
    }
    for (int i = 0; i < depth; ++i) {
        text += "</a>";
    }
    return text;
}

std::string withAttributes(int count) {
    std::string text = "<r><a";
    for (int i = 0; i < count; ++i) {
        text += " a" + std::to_string(i) + "=''";
    }
    return text + "/></r>";
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
    std::string text = "<!DOCTYPE a [<!ENTITY e '" + std::string(static_cast<std::size_t>(length), 'x') + "'>]><a>";
    for (int i = 0; i < times; ++i) {
        text += "&e;";
    }
    return text + "</a>";
}

} // namespace

TEST(XmlWellFormed, OrdinaryDocumentsPass) {
    for (const std::string text :
         {"<a/>", "<a></a>", "\n<a/>\n", "<?xml version='1.0'?><a/>", "<?xml version=\"1.0\" standalone='yes'?><a/>",
          "<!-- c --><?p q?><!DOCTYPE a><a b='1' c=\"2\">t<!-- c --><![CDATA[<&]]><?p q?><b/></a><!-- c --><?p?>",
          "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</a>", "<a b='&#9;&#10;&#13;>'/>"}) {
        EXPECT_TRUE(wellFormed(text)) << text;
    }
}

TEST(XmlWellFormed, BrokenMarkupIsRefused) {
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

TEST(XmlWellFormed, NothingButCommentsAndInstructionsMayFollowTheDocumentElement) {
    EXPECT_TRUE(wellFormed("<a/><!-- c --> <?p q?>\n"));
    for (const std::string& text : {"<a/>x"s, "<a/><b/>"s, "<a/></a>"s, "<a/>\0"s, "<a/>\x1a"s, "<a/><!DOCTYPE a>"s,
                                    "<a/>&#32;"s, "<a/><![CDATA[]]>"s}) {
        EXPECT_FALSE(wellFormed(text)) << text;
    }
}

TEST(XmlWellFormed, NothingMayPrecedeTheDeclaration) {
    EXPECT_FALSE(wellFormed(" <?xml version='1.0'?><a/>"));
    EXPECT_FALSE(wellFormed("\n<?xml version='1.0'?><a/>"));
}

TEST(XmlWellFormed, DoubledAttributesAreRefused) {
    EXPECT_FALSE(wellFormed("<a b='1' b='2'/>"));
    EXPECT_FALSE(wellFormed("<a b='1' b='1'/>"));
    EXPECT_FALSE(wellFormed("<r><a x='1' p:b='1' y='2' p:b='2'/></r>"));
    EXPECT_TRUE(wellFormed("<a b='1' B='2' p:b='3'><c b='1'/></a>"));
}

TEST(XmlWellFormed, ForbiddenCharactersAreRefusedWhereverTheyStand) {
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

TEST(XmlWellFormed, EveryOtherCharacterPasses) {
    for (const std::string& character :
         {"\t"s, "\n"s, "\r"s, "\x7f"s, "\xc2\x80"s, "\xc2\x85"s, "\xc2\xa0"s, "\xe2\x80\xa8"s, "\xed\x9f\xbf"s,
          "\xee\x80\x80"s, "\xef\xb7\x90"s, "\xef\xbf\xbd"s, "\xf0\x90\x80\x80"s, "\xf4\x8f\xbf\xbf"s, "&#x10FFFF;"s,
          "&#xFFFD;"s, "&#x0000000000041;"s}) {
        EXPECT_TRUE(wellFormed("<a b='" + character + "'>" + character + "</a>")) << character;
    }
}

TEST(XmlWellFormed, BadUtf8IsRefusedWhereverItStands) {
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

TEST(XmlWellFormed, UndeclaredEntitiesAreRefusedInTextAndInAttributes) {
    EXPECT_FALSE(wellFormed("<a>&u;</a>"));
    EXPECT_FALSE(wellFormed("<a b='&u;'/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&E;'/>"));
    EXPECT_FALSE(wellFormed("<a>&nbsp;</a>"));
    EXPECT_TRUE(wellFormed("<!DOCTYPE a [<!ENTITY e 'E'>]><a b='&e;'>&e;</a>"));
}

TEST(XmlWellFormed, EntitiesMustBeBalancedAndMustNotHoldThemselves) {
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a b='&e;'/>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>"));
    EXPECT_FALSE(wellFormed("<!DOCTYPE a [<!ENTITY e '&#60;'>]><a b='&e;'/>"));
}

TEST(XmlWellFormed, PrefixesThatNothingDeclaresPass) {
    EXPECT_TRUE(wellFormed("<p:a q:b='1'><r:c/></p:a>"));
    EXPECT_TRUE(wellFormed("<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>"));
}

TEST(XmlWellFormed, ElementsMayBeNestedAThousandDeep) {
    EXPECT_TRUE(wellFormed(nested(1000)));
    EXPECT_FALSE(wellFormed(nested(1001)));
    EXPECT_FALSE(wellFormed(nested(100000)));
}

TEST(XmlWellFormed, DepthIsThatOfNestingNotOfNumber) {
    std::string text = "<r>";
    for (int i = 0; i < 5000; ++i) {
        text += "<a><b/></a>";
    }
    EXPECT_TRUE(wellFormed(text + "</r>"));
}

TEST(XmlWellFormed, ElementsOutOfEntitiesCountTowardsTheDepth) {
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + nested(500) + "'>]>";
    std::string fits = nested(500);
    fits.insert(fits.find("</a>"), "&e;");
    EXPECT_TRUE(wellFormed(entity + fits));
    std::string tooDeep = nested(501);
    tooDeep.insert(tooDeep.find("</a>"), "&e;");
    EXPECT_FALSE(wellFormed(entity + tooDeep));
}

TEST(XmlWellFormed, ElementMayHaveAThousandAttributes) {
    EXPECT_TRUE(wellFormed(withAttributes(1000)));
    EXPECT_FALSE(wellFormed(withAttributes(1001)));
    EXPECT_FALSE(wellFormed(withAttributes(100000)));
}

TEST(XmlWellFormed, FloodsOfEntitiesAreRefused) {
    EXPECT_TRUE(wellFormed(nestedEntities(3)));
    EXPECT_FALSE(wellFormed(nestedEntities(9)));
    EXPECT_TRUE(wellFormed(repeatedEntity(1000, 100)));
    EXPECT_FALSE(wellFormed(repeatedEntity(100000, 1000)));
}

TEST(XmlWellFormed, LongChainsOfEntitiesDoNotOverflowTheStack) {
    constexpr int kLength = 100000;
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

TEST(XmlWellFormed, DeclaredDefaultsThatBlowASmallDocumentUpAreRefused) {
    const auto document = [](int elements) {
        QByteArray text = "<!DOCTYPE r [<!ATTLIST z d CDATA \"" + QByteArray(50'000, 'x') + "\">]><r>";
        for (int i = 0; i < elements; ++i) {
            text += "<z/>";
        }
        return text + "</r>";
    };
    EXPECT_TRUE(isWellFormedXml(document(100)));
    EXPECT_FALSE(isWellFormedXml(document(2'000)));
}
