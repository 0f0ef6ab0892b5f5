#include "CommandLine.h"
#include "outputRun.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

const std::string kVersionLines = "VANTE veko_configure version 3.3.5\nVANTE data model version 8.00\n";
const std::string kBelowTheHorizon = "field is below the horizon limit\n";

/** A folder with a field definition, and runs in it that write "out.xml". */
class ProgramCommandLine : public testing::Test {
protected:
    ProgramCommandLine() {
        folder_.write("in.xml", kPlainField);
    }

    ProgramResult run(const std::vector<std::string>& arguments) const {
        ProgramOptions options;
        options.folder = folder_.name();
        return runVekoConfigure(arguments, options);
    }

    /** A run on the field definition that must succeed. @return the output's bytes */
    std::string configure(std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.end(), {"-i", "in.xml", "-o", "out.xml"});
        expectEnd(run(arguments), 0, "");
        return folder_.read("out.xml");
    }

    /** A run that ends with a message and nothing else. */
    void expectFailure(const std::vector<std::string>& arguments, const std::string& message) const {
        expectEnd(run(arguments), 1, message);
        EXPECT_FALSE(folder_.contains("out.xml")) << message;
    }

    void expectAnswer(const std::vector<std::string>& arguments, const std::string& answer) const {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, answer);
        EXPECT_EQ(result.err, "");
        EXPECT_FALSE(folder_.contains("out.xml"));
    }

    const TemporaryFolder folder_;
};

std::string listing() {
    std::ostringstream text;
    text << pos::describeOptions() << '\n';
    return text.str();
}

/** A text with one blank in the place of each run of blanks and line ends. */
std::string onOneLine(const std::string& text) {
    std::istringstream words(text);
    std::string word;
    std::string line;
    while (words >> word) {
        line += (line.empty() ? "" : " ") + word;
    }
    return line;
}

} // namespace

TEST_F(ProgramCommandLine, HelpListsEveryOptionWithItsTextAndDefault) {
    EXPECT_EQ(onOneLine(run({"--help"}).out), "Allowed options: "
                                              "-c [ --config_file ] arg (=:/configure.xml) name of configuration file "
                                              "--epoch arg estimated epoch of observation (yr) "
                                              "-h [ --help ] display all the command arguments "
                                              "--ha arg estimated hour angle of observation (hr) "
                                              "--horizon_limit arg (=25) horizon limit (deg) "
                                              "-i [ --input ] arg input configuration file name "
                                              "-o [ --output ] arg output configuration file name "
                                              "--pressure arg estimated pressure at time of observation (mBar) "
                                              "-v [ --version ] print version number");
}

TEST_F(ProgramCommandLine, HelpComesBeforeEverythingButTheParsing) {
    expectAnswer({"-h", "-c", "/nonexistent.xml"}, listing());
    expectAnswer({"-v", "-h", "-c", "/nonexistent.xml"}, listing());
    expectAnswer({"-i", "in.xml", "-o", "out.xml", "--help"}, listing());
    expectFailure({"-h", "--bogus"}, "unrecognised option '--bogus'\n");
    expectFailure({"-h", "--ha", "nan"}, "the argument ('nan') for option '--ha' is invalid\n");
}

TEST_F(ProgramCommandLine, VersionTellsBothVersions) {
    expectAnswer({"-v"}, kVersionLines);
    expectAnswer({"--version"}, kVersionLines);
    expectAnswer({"-v", "-i", "in.xml", "-o", "out.xml"}, kVersionLines);
}

TEST_F(ProgramCommandLine, VersionTellsTheDataModelOfTheGivenConfiguration) {
    folder_.write("c.xml", "<c datamver='7.25'><configure_version>3.3.5</configure_version></c>");
    expectAnswer({"-v", "-c", "c.xml"}, "VANTE veko_configure version 3.3.5\nVANTE data model version 7.25\n");
}

TEST_F(ProgramCommandLine, VersionFailsWithTheConfiguration) {
    folder_.write("other.xml", "<c datamver='8.00'><configure_version>3.3.4</configure_version></c>");
    folder_.write("none.xml", "<c datamver='8.00'/>");
    folder_.write("nodata.xml", "<c><configure_version>3.3.5</configure_version></c>");
    folder_.write("malformed.xml", "<c datamver='8.00'>\n<a");
    const std::pair<std::string, std::string> rows[] = {
        {"other.xml", "config file version mismatch\n"},
        {"none.xml", "No such node (configure_version)\n"},
        {"nodata.xml", "No such node (<xmlattr>.datamver)\n"},
        {"malformed.xml", "<unspecified file>(2): expected >\n"},
        {"missing.xml", "Unable to open config file: missing.xml\n"},
        {":/missing.xml", "Unable to open config file: :/missing.xml\n"},
    };
    for (const auto& [file, message] : rows) {
        expectFailure({"-v", "-c", file}, message);
        expectFailure({"-c", file, "-i", "in.xml", "-o", "out.xml"}, message);
        expectFailure({"-c", file}, message); // before the names of input and output are looked for
    }
}

TEST_F(ProgramCommandLine, ConfigurationOfTheEnvironmentIsNotUsed) {
    ProgramOptions options;
    options.environment = {"VANTE_POS_CONFIG=/nonexistent.xml"};
    const ProgramResult result = runVekoConfigure({"-v"}, options);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, kVersionLines);
}

TEST_F(ProgramCommandLine, InputAndOutputMustBeNamedInThisOrder) {
    expectFailure({}, "No input file\n");
    expectFailure({"-o", "out.xml"}, "No input file\n");
    expectFailure({"-i", "in.xml"}, "No output file\n");
}

TEST_F(ProgramCommandLine, SyntaxErrorsEndTheProgramBeforeTheRun) {
    const std::pair<std::vector<std::string>, std::string> rows[] = {
        {{"--bogus"}, "unrecognised option '--bogus'\n"},
        {{"--ha"}, "the required argument for option '--ha' is missing\n"},
        {{"--epoch", "soon"}, "the argument ('soon') for option '--epoch' is invalid\n"},
        {{"--pressure", "inf"}, "the argument ('inf') for option '--pressure' is invalid\n"},
        {{"--horizon_limit", "nan"}, "the argument ('nan') for option '--horizon_limit' is invalid\n"},
        {{"--input", "b.xml"}, "option '--input' cannot be specified more than once\n"},
        {{"c.xml"}, "the argument 'c.xml' does not belong to any option\n"},
    };
    for (const auto& [extra, message] : rows) {
        std::vector<std::string> arguments = {"-i", "in.xml", "-o", "out.xml"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        expectFailure(arguments, message);
    }
}

TEST_F(ProgramCommandLine, HorizonLimitIs25DegreesWhenItIsNotGiven) {
    // At an hour angle of 5 h the field stands 67.8 degrees from the zenith: an elevation of 22.2 degrees.
    expectFailure({"-i", "in.xml", "-o", "out.xml", "--ha", "5"}, kBelowTheHorizon);
    configure({"--ha", "5", "--horizon_limit", "22"});
    configure({"--ha", "4.7"}); // 63.9 degrees
}

TEST_F(ProgramCommandLine, ConfigurationOnDiskCanNameTheEmbeddedFiles) {
    folder_.write("c.xml", readBytes(POS_SOURCE_FOLDER "/pos/positioner/resources/configure.xml"));
    const std::string expected = configure();
    EXPECT_EQ(configure({"-c", "c.xml"}), expected);
    EXPECT_EQ(configure({"--config_file", ":/configure.xml"}), expected);
}
