#include "Program.h"
#include "hostileRun.h"

#include <gtest/gtest.h>
#include <random>

// Every example document, cut at every byte.

namespace {

class Prefix : public HostileRun, public testing::WithParamInterface<std::string> {
protected:
    Prefix() {
        useThreeFibres();
    }
};

/** How many bytes of a document hold its document element. */
std::size_t lengthOfTheElement(const std::string& document) {
    return document.rfind('>') + 1;
}

} // namespace

TEST_P(Prefix, IsRefusedUnlessTheDocumentElementIsWhole) {
    const std::string document = example(GetParam());
    ASSERT_GT(document.size(), 500);
    const std::string refusal =
        "Error parsing field definition file: " + folder_.path("in.xml") + " is not valid XML\n";
    const pos::PosConfig config = smallConfig();
    for (std::size_t length = 0; length <= document.size(); ++length) {
        const RunEnd end = run(document.substr(0, length), [&] { return config; });
        judge(end, "the first " + std::to_string(length) + " bytes");
        const bool isWhole = length >= lengthOfTheElement(document);
        ASSERT_EQ(end.kind, isWhole ? RunEnd::Kind::Configured : RunEnd::Kind::Refused) << length << end.message;
        ASSERT_EQ(end.message, isWhole ? "" : refusal) << length;
    }
    EXPECT_EQ(cases(), document.size() + 1);
}

TEST_P(Prefix, IsRefusedByTheProgramToo) {
    constexpr unsigned int kSeed = 20;
    constexpr int kSamples = 15;
    const std::string document = example(GetParam());
    const TemporaryFolder folder;
    const std::string output = folder.write("out.xml", "old");
    std::mt19937 random(kSeed);
    for (int i = 0; i < kSamples; ++i) {
        const std::size_t length = random() % lengthOfTheElement(document);
        const std::string input = folder.write("in.xml", document.substr(0, length));
        const ProgramResult result = runVekoConfigure({"-i", input, "-o", output});
        EXPECT_EQ(result.status, 1) << length;
        EXPECT_EQ(result.err, "Error parsing field definition file: " + input + " is not valid XML\n") << length;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(folder.read("out.xml"), "old") << length;
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, Prefix, testing::ValuesIn(exampleNames()),
                         [](const auto& tested) { return tested.param; });
