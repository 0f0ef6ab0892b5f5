#include "fieldDefinition.h"
#include "xml.h"

#include <vector>

// The limits of documents, each on both of its sides.

namespace {

constexpr const char* kTooManyEntities = "has entities that make it larger than 8 MiB and than twice its size";

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

std::string siblings(int count, const std::string& one) {
    return "<r>" + repeated(count, one) + "</r>";
}

std::string withAttributes(int count) {
    return "<r><a" + numbered(count, " a#=''") + "/></r>";
}

/** Entities of which each stands some times for the one before: that number to the power of the levels characters. */
std::string nestedEntities(int levels, int times) {
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int level = 1; level <= levels; ++level) {
        text += "<!ENTITY e" + std::to_string(level) + " '" + repeated(times, "&e" + std::to_string(level - 1) + ";") +
                "'>";
    }
    const std::string last = "&e" + std::to_string(levels) + ";";
    return text + "]><a b='" + last + "'>" + last + "</a>";
}

/** One entity of a length, used often. */
std::string repeatedEntity(int length, int times) {
    return "<!DOCTYPE a [<!ENTITY e '" + std::string(static_cast<std::size_t>(length), 'x') + "'>]><a>" +
           repeated(times, "&e;") + "</a>";
}

} // namespace

TEST(XmlLimits, ElementsMayBeNested256Deep) {
    EXPECT_EQ(refusal(nested(256)), "");
    EXPECT_EQ(refusal(nested(257)), "is nested more than 256 levels deep");
    EXPECT_EQ(refusal(nested(100'000)), "is nested more than 256 levels deep");
}

TEST(XmlLimits, DepthIsThatOfNestingNotOfNumber) {
    EXPECT_EQ(refusal(siblings(5000, "<a><b/></a>")), "");
}

TEST(XmlLimits, ElementsOutOfEntitiesCountTowardsTheDepth) {
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + nested(128) + "'>]>";
    const auto around = [](int depth) {
        std::string text = nested(depth);
        return text.insert(text.find("</a>"), "&e;");
    };
    EXPECT_EQ(refusal(entity + around(128)), "");
    EXPECT_EQ(refusal(entity + around(129)), "is nested more than 256 levels deep");
}

TEST(XmlLimits, TagMayHave256Attributes) {
    EXPECT_EQ(parsed(withAttributes(256)).documentElement().firstChildElement("a").attributes().size(), 256);
    EXPECT_EQ(refusal(withAttributes(257)), "has more than 256 attributes in one tag");
    EXPECT_EQ(refusal(withAttributes(100'000)), "has more than 256 attributes in one tag");
}

TEST(XmlLimits, NodesAreLimitedToOneForFourteenBytesBeyondTheFirst500000) {
    // The root and its elements are 1 + n nodes.
    EXPECT_EQ(refusal(siblings(499'999, "<a/>")), "");
    EXPECT_EQ(refusal(siblings(500'000, "<a/>")), "has more than 500000 elements, attributes and other nodes");
    // 14 bytes for each, and 14 for the root
    EXPECT_EQ(refusal("       " + siblings(600'000, "<abcdefghijk/>")), "");
    EXPECT_EQ(refusal("      " + siblings(600'000, "<abcdefghijk/>")),
              "has more than 600000 elements, attributes and other nodes");
}

TEST(XmlLimits, EveryKindOfNodeCounts) {
    const std::vector<std::pair<std::string, int>> nodes = {
        {"<a b=''/>", 3}, {"<a/>t", 2}, {"<a/><?p?>", 2}, {"<!---->", 1}, {"<a/><!---->", 2}, {"<?p?><![CDATA[]]>", 2}};
    for (const auto& [one, count] : nodes) {
        EXPECT_EQ(refusal(siblings(499'999 / count, one)), "") << one;
        EXPECT_EQ(refusal(siblings(499'999 / count + 1, one)),
                  "has more than 500000 elements, attributes and other nodes")
            << one;
    }
}

TEST(XmlLimits, NodesOutOfEntitiesCountToo) {
    const std::string entity = "<!DOCTYPE r [<!ENTITY e '" + repeated(1000, "<a/>") + "'>]>";
    EXPECT_EQ(refusal(entity + siblings(499, "&e;")), "");
    EXPECT_EQ(refusal(entity + siblings(500, "&e;")), "has more than 500000 elements, attributes and other nodes");
}

TEST(XmlLimits, DocumentTypeDeclaresAtMost64KiBWhereverItStands) {
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

TEST(XmlLimits, TagsTextsAndCommentsMayBeOfAnyLength) {
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

TEST(XmlLimits, DocumentMayGrowByItsEntitiesTo8MiBOrTwiceItsSize) {
    EXPECT_EQ(refusal(nestedEntities(3, 10)), "");
    EXPECT_EQ(refusal(nestedEntities(9, 10)), kTooManyEntities);
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

TEST(XmlLimits, DocumentMayDeclare256EntitiesEachWithinAnother) {
    EXPECT_EQ(refusal(nestedEntities(255, 1)), "");
    EXPECT_EQ(refusal(nestedEntities(256, 1)), "declares more than 256 entities");
    EXPECT_EQ(refusal(nestedEntities(2'000, 1)), "declares more than 256 entities");
    EXPECT_EQ(refusal("<!DOCTYPE a [" + numbered(300, "<!ENTITY % p# ''>") + "]><a/>"),
              "declares more than 256 entities");
}
