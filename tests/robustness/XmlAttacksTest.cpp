#include "xmlAttacks.h"
#include "measuredRun.h"

#include <gtest/gtest.h>

// Documents and configurations made to fill the memory or to take for ever, through the executable.

namespace {

/** Larger ones, of up to 1 MiB, take longer, and those are refused unread. */
constexpr std::size_t kLargeConfiguration = 200'000;

class XmlAttacks : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const std::string output_ = folder_.write("out.xml", "old");

    MeasuredRun runOn(const std::string& document) const {
        return finish(measuredRun({"-i", folder_.write("in.xml", document), "-o", output_}));
    }
    MeasuredRun runWithConfiguration(const std::string& configuration) const {
        const std::string name = folder_.write("configure.xml", configuration);
        return finish(measuredRun({"-c", name, "-i", "nothing.xml", "-o", output_}));
    }

private:
    MeasuredRun finish(MeasuredRun run) const {
        EXPECT_EQ(run.result.status, 1);
        EXPECT_EQ(run.result.out, "");
        EXPECT_EQ(folder_.read("out.xml"), "old");
        expectLittleMemory(run);
        return run;
    }
};

} // namespace

TEST_F(XmlAttacks, AreRefusedAsDocumentsInLittleMemory) {
    const std::string refusal =
        "Error parsing field definition file: " + folder_.path("in.xml") + " is not valid XML\n";
    for (const XmlAttack& attack : refusedAttacks()) {
        SCOPED_TRACE(attack.name);
        const std::string text = attack.text();
        EXPECT_LE(text.size(), 11'000'000);
        EXPECT_EQ(runOn(text).result.err, refusal);
    }
}

TEST_F(XmlAttacks, TakeLittleMemoryEvenWhereTheyLoad) {
    for (const XmlAttack& attack : loadedAttacks()) {
        SCOPED_TRACE(attack.name);
        const std::string text = attack.text();
        EXPECT_LE(text.size(), 10'000'000);
        EXPECT_EQ(runOn(text).result.err, "Configure element not found\n");
    }
}

TEST_F(XmlAttacks, TakeLittleMemoryInTheLargestConfigurationToo) {
    const std::string text = "<c datamver='8.00'>" + times(260'000, "<a/>") + "</c>";
    EXPECT_EQ(runWithConfiguration(text).result.err, "No such node (configure_version)\n");
}

// The configuration's parser passes over a document type, and the rest is no different.
TEST_F(XmlAttacks, EndWithAMessageAsConfigurations) {
    int count = 0;
    for (const XmlAttack& attack : refusedAttacks()) {
        const std::string text = attack.text().substr(0, kLargeConfiguration);
        if (text.find("<!DOCTYPE") == std::string::npos) {
            SCOPED_TRACE(attack.name);
            EXPECT_NE(runWithConfiguration(text).result.err, "");
            ++count;
        }
    }
    EXPECT_GT(count, 20);
}
