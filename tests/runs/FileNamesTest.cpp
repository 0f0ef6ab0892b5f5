#include "outputRun.h"

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;
using testing::PrintToString;

const std::string kLatin1 = "caf\xe9.xml";
const std::string kUtf8 = "caf\xc3\xa9 \xf0\x9f\x98\x80.xml";
const std::string kReplaced = "caf\xef\xbf\xbd.xml"; // what a decoder makes of the Latin-1 name

/** Runs that name their files in several encodings, whatever encoding the environment claims. */
class FileNames : public OutputRun {
protected:
    ProgramResult runIn(const std::string& locale, const std::vector<std::string>& arguments) const {
        ProgramOptions options;
        options.folder = folder_.path("out");
        options.environment = {"LC_ALL=" + locale, "LANG=" + locale};
        return runVekoConfigure(arguments, options);
    }

    const std::vector<std::string> locales_ = {"C", "POSIX", "C.UTF-8", "de_DE.ISO-8859-1", "nonsense"};
    const std::string configuration_ = readBytes(POS_SOURCE_FOLDER "/pos/positioner/resources/configure.xml");
};

} // namespace

TEST_F(FileNames, InUtf8OpenTheFilesThatTheyName) {
    write("in " + kUtf8, kPlainField);
    write("config " + kUtf8, configuration_);
    for (const std::string& locale : locales_) {
        expectEnd(runIn(locale, {"-c", "config " + kUtf8, "-i", "in " + kUtf8, "-o", kUtf8}), 0, "");
        EXPECT_EQ(outputs(), Names({"in " + kUtf8, "config " + kUtf8, kUtf8})) << locale;
        EXPECT_EQ(readBytes(path(kUtf8)), expected_) << locale;
        std::filesystem::remove(path(kUtf8));
    }
}

TEST_F(FileNames, InAnotherEncodingOpenNoOutput) {
    const Names neighbours = {kReplaced, "caf.xml", "caf?.xml", "caf\xc3\xa9.xml"};
    for (const std::string& neighbour : neighbours) {
        write(neighbour, "old");
    }
    for (const std::string& locale : locales_) {
        expectEnd(runIn(locale, {"-i", folder_.path("in.xml"), "-o", kLatin1}), 1, kNotOpened);
        EXPECT_EQ(outputs(), neighbours) << locale;
        for (const std::string& neighbour : neighbours) {
            EXPECT_EQ(readBytes(path(neighbour)), "old") << locale << PrintToString(neighbour);
        }
    }
}

TEST_F(FileNames, InAnotherEncodingOpenNoInput) {
    for (const std::string& neighbour : {kReplaced, std::string("caf.xml"), std::string("caf?.xml")}) {
        write(neighbour, kPlainField);
    }
    const Names before = outputs();
    for (const std::string& locale : locales_) {
        expectEnd(runIn(locale, {"-i", kLatin1, "-o", "out.xml"}), 1,
                  "Error parsing field definition file: " + kLatin1 + " could not be opened\n");
        EXPECT_EQ(outputs(), before) << locale;
    }
}

TEST_F(FileNames, InAnotherEncodingOpenNoConfiguration) {
    write(kReplaced, configuration_);
    for (const std::string& locale : locales_) {
        expectEnd(runIn(locale, {"-c", kLatin1, "-i", folder_.path("in.xml"), "-o", "out.xml"}), 1,
                  "Unable to open config file: " + kLatin1 + "\n");
        EXPECT_EQ(outputs(), Names({kReplaced})) << locale;
    }
}
