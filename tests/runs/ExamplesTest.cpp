#include "Program.h"
#include "TemporaryFolder.h"
#include "xml.h"

#include <gtest/gtest.h>

namespace {

const std::string kExamples = std::string(POS_SOURCE_FOLDER) + "/examples/";

struct Example {
    std::string file;
    int fields;
};

void PrintTo(const Example& value, std::ostream* stream) {
    *stream << value.file;
}

class ExampleRun : public testing::TestWithParam<Example> {};

/** How many of a field's own targets carry the name of a spaxel. */
int spaxelTargets(const QDomElement& field) {
    int count = 0;
    for (QDomElement target = field.firstChildElement("target"); !target.isNull();
         target = target.nextSiblingElement("target")) {
        count += target.attribute("ifu_spaxel").isEmpty() ? 0 : 1;
    }
    return count;
}

} // namespace

TEST_P(ExampleRun, ConfiguresEveryFibreOfEveryField) {
    const TemporaryFolder folder;
    const ProgramResult result = runVekoConfigure({"-i", kExamples + GetParam().file, "-o", folder.path("out.xml")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "");
    const QDomNodeList fields = parseDocument(folder.read("out.xml")).elementsByTagName("field");
    ASSERT_EQ(fields.count(), GetParam().fields);
    for (int i = 0; i < fields.count(); ++i) {
        EXPECT_EQ(spaxelTargets(fields.at(i).toElement()), 603);
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleRun,
                         testing::Values(Example{"sombrero_south.xml", 1}, Example{"m81_north.xml", 1},
                                         Example{"virgo_two_fields.xml", 2}, Example{"m74_groups.xml", 1}),
                         [](const auto& tested) { return tested.param.file.substr(0, tested.param.file.find('.')); });

TEST(Examples, NorthOfTheZenithTheRotatorNeedsAPositionAngleNear180Degrees) {
    const TemporaryFolder folder;
    std::string text = readBytes(kExamples + "m81_north.xml");
    const std::string turned = R"( pa="180")";
    ASSERT_NE(text.find(turned), std::string::npos);
    text.replace(text.find(turned), turned.size(), R"( pa="0")");
    const ProgramResult result = runVekoConfigure({"-i", folder.write("in.xml", text), "-o", folder.path("out.xml")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "field position angle is outside the rotator limits\n");
    EXPECT_FALSE(folder.contains("out.xml"));
}
