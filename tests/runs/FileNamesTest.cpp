#include "outputRun.h"

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

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

TEST_F(FileNames, InAnotherEncodingOpenNoFile) {
    // Everything that a decoder could make of the name stands there.
    const Names neighbours = {kReplaced, "caf.xml", "caf?.xml", "caf\xc3\xa9.xml"};
    const std::string input = folder_.path("in.xml");
    const struct {
        std::string content;
        std::vector<std::string> arguments;
        std::string message;
    } rows[] = {
        {"old", {"-i", input, "-o", kLatin1}, kNotOpened},
        {kPlainField,
         {"-i", kLatin1, "-o", "out.xml"},
         "Error parsing field definition file: " + kLatin1 + " could not be opened\n"},
        {configuration_,
         {"-c", kLatin1, "-i", input, "-o", "out.xml"},
         "Unable to open config file: " + kLatin1 + "\n"},
    };
    for (const auto& [content, arguments, message] : rows) {
        for (const std::string& neighbour : neighbours) {
            write(neighbour, content);
        }
        for (const std::string& locale : locales_) {
            SCOPED_TRACE(locale + " " + message);
            expectEnd(runIn(locale, arguments), 1, message);
            EXPECT_EQ(outputs(), neighbours);
            for (const std::string& neighbour : neighbours) {
                EXPECT_EQ(readBytes(path(neighbour)), content) << testing::PrintToString(neighbour);
            }
        }
    }
}
