#include "configNesting.h"

#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "thrown.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

class ConfigNesting : public ProcessWideState {};

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

/** An XML configuration whose root holds so many elements, each inside the one before. */
std::string nestedXml(int levels) {
    return "<c datamver=\"8.00\">" + repeated("<a>", levels) + repeated("</a>", levels) + "</c>";
}

std::string nestedInfo(int levels) {
    return repeated("a {\n", levels) + repeated("}\n", levels);
}

std::string tooDeep(const std::string& name) {
    return "The configuration file " + name + " is nested more than 1000 levels deep";
}

} // namespace

TEST_F(ConfigNesting, OfXmlCountsTheTagsThatAreOpen) {
    EXPECT_EQ(xmlNesting(""), 0);
    EXPECT_EQ(xmlNesting("text > without tags"), 0);
    EXPECT_EQ(xmlNesting("<?xml version='1.0'?><!DOCTYPE c><c><a/><a x='1'/></c>"), 1);
    EXPECT_EQ(xmlNesting("<c><a><b></b></a><a></a></c>"), 3);
    EXPECT_EQ(xmlNesting("<c><!-- <a><a> --><![CDATA[<a><a>]]></c>"), 1);
    EXPECT_EQ(xmlNesting("<c><a></b></c>"), 2);
    EXPECT_EQ(xmlNesting("<c <a <b"), 3);
    EXPECT_EQ(xmlNesting("<c><a\"><a\"></a>"), 3);
    EXPECT_EQ(xmlNesting("<c><a=\"><a=\"></a>"), 3);
    EXPECT_EQ(xmlNesting("<c><!-- <a>"), 1);
    EXPECT_EQ(xmlNesting("<a b='</x>'><a b='/>'><a b=\"<!--\" c='>'><a/>"), 3);
    EXPECT_EQ(xmlNesting("<a b='"), 1);
    EXPECT_EQ(xmlNesting(std::string(10'000'000, '<')), 1);
}

TEST_F(ConfigNesting, OfInfoCountsTheBracesThatAreOpen) {
    EXPECT_EQ(infoNesting(""), 0);
    EXPECT_EQ(infoNesting("a 1\nb { c 2 }\nd { e { f 3 } }\n"), 2);
    EXPECT_EQ(infoNesting("}}{"), 0);
    EXPECT_EQ(infoNesting("a {{ b }} c {"), 2);
}

TEST_F(ConfigNesting, OfInfoIsNotMisledByBracesThatCloseNothing) {
    EXPECT_EQ(infoNesting("a \"}\"\n{ b \"x } y\"\n{ c 1 ; }\n{ }\n"), 3);
    EXPECT_EQ(infoNesting("a b}\n{ c}\n{ }{"), 2);
    EXPECT_EQ(infoNesting("a{ {"), 2) << "a brace that opens nothing may count";
    const TemporaryFolder folder;
    for (const std::string level : {"a \"}\" {\n", "a { ; }\n", "a {\n}b {\n", "a x} {\n"}) {
        const std::string name = folder.write("deep.info", repeated(level, 100'000));
        EXPECT_EQ(messageOf([&] { PosConfig(name.c_str(), PosConfig::INFO); }), tooDeep(name)) << level;
    }
}

TEST_F(ConfigNesting, OfAThousandLevelsIsTaken) {
    const TemporaryFolder folder;
    const std::string xml = folder.write("deep.xml", nestedXml(999));
    EXPECT_NO_THROW(PosConfig(xml.c_str(), PosConfig::XML));
    const std::string info = folder.write("deep.info", nestedInfo(1000));
    EXPECT_NO_THROW(PosConfig(info.c_str(), PosConfig::INFO));
}

TEST_F(ConfigNesting, OfMoreIsRefusedBeforeTheParsersStackOverflows) {
    const TemporaryFolder folder;
    for (const int levels : {1000, 100'000}) {
        const std::string xml = folder.write("deep.xml", nestedXml(levels));
        EXPECT_EQ(messageOf([&] { PosConfig(xml.c_str(), PosConfig::XML); }), tooDeep(xml));
        const std::string info = folder.write("deep.info", nestedInfo(levels + 1));
        EXPECT_EQ(messageOf([&] { PosConfig(info.c_str(), PosConfig::INFO); }), tooDeep(info));
    }
}
