#include "CommandLine.h"
#include "thrown.h"

#include <gtest/gtest.h>
#include <vector>

using namespace pos;

namespace po = boost::program_options;

namespace {

CommandLine parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "veko_configure");
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data(), describeOptions());
}

std::string refusalOf(const std::vector<const char*>& arguments) {
    return messageOf<po::error>([&] { parse(arguments); });
}

/** Arguments that are refused, and the message. */
struct Refusal {
    std::vector<const char*> arguments;
    const char* message;
};

} // namespace

TEST(CommandLine, WithoutArgumentsHoldsTheDefaults) {
    const CommandLine commandLine = parse({});
    EXPECT_FALSE(commandLine.help);
    EXPECT_FALSE(commandLine.version);
    EXPECT_EQ(commandLine.configFile, ":/configure.xml");
    EXPECT_EQ(commandLine.input, std::nullopt);
    EXPECT_EQ(commandLine.output, std::nullopt);
    EXPECT_EQ(commandLine.estimates.epoch, 0.0);
    EXPECT_EQ(commandLine.estimates.hourAngle, 100.0);
    EXPECT_EQ(commandLine.estimates.pressure, 0.0);
    // 90 - 25 degrees
    EXPECT_EQ(commandLine.estimates.zenithDistanceLimit, 65.0 / 180 * 3.141592653589793);
}

TEST(CommandLine, WithoutEvenAProgramNameHoldsTheDefaults) {
    const char* const arguments[] = {nullptr};
    EXPECT_EQ(parseCommandLine(0, arguments, describeOptions()).configFile, ":/configure.xml");
}

TEST(CommandLine, TakesEveryLongAndEveryShortOption) {
    const std::vector<const char*> numbers = {
        "--epoch", "2020.5", "--ha", "1.25", "--pressure", "771.5", "--horizon_limit=83.5"};
    const std::vector<const char*> words = {"--config_file", "c.xml", "--input", "i.xml", "--output=o.xml"};
    const std::vector<const char*> letters = {"-cc.xml", "-i", "i.xml", "-o", "o.xml"};
    for (std::vector<const char*> arguments : {words, letters}) {
        arguments.insert(arguments.end(), numbers.begin(), numbers.end());
        const CommandLine commandLine = parse(arguments);
        EXPECT_EQ(commandLine.configFile, "c.xml");
        EXPECT_EQ(commandLine.input, "i.xml");
        EXPECT_EQ(commandLine.output, "o.xml");
        EXPECT_EQ(commandLine.estimates.epoch, 2020.5);
        EXPECT_EQ(commandLine.estimates.hourAngle, 1.25);
        EXPECT_EQ(commandLine.estimates.pressure, 771.5);
        // 6.5 / 180 * pi; with a precomputed pi / 180, or multiplied first, it ends in ...43.
        EXPECT_EQ(commandLine.estimates.zenithDistanceLimit, 0.11344640137963141);
    }
}

TEST(CommandLine, HelpAndVersionAreIndependent) {
    for (const char* help : {"-h", "--help"}) {
        EXPECT_TRUE(parse({help}).help);
        EXPECT_FALSE(parse({help}).version);
    }
    for (const char* version : {"-v", "--version"}) {
        EXPECT_TRUE(parse({version}).version);
        EXPECT_FALSE(parse({version}).help);
    }
}

TEST(CommandLine, KeepsFileNamesToTheByte) {
    // Blanks, a byte that is not UTF-8, and a name that is empty.
    const CommandLine commandLine = parse({"-i", " a b\xff.xml ", "-o", ""});
    EXPECT_EQ(commandLine.input, " a b\xff.xml ");
    EXPECT_EQ(commandLine.output, "");
}

TEST(CommandLine, TakesEveryNotationOfAFiniteNumber) {
    struct Row {
        const char* text;
        double value;
    };
    for (const auto& [text, value] :
         {Row{"-1.5", -1.5}, Row{"-.5", -0.5}, Row{"-1e-3", -1e-3}, Row{"-0", 0.0}, Row{"+2", 2.0}, Row{"2.", 2.0},
          Row{".25", 0.25}, Row{"0.15E1", 1.5}, Row{"1.7976931348623157e308", 1.7976931348623157e308}}) {
        EXPECT_EQ(parse({"--ha", text}).estimates.hourAngle, value);
        EXPECT_EQ(parse({(std::string("--ha=") + text).c_str()}).estimates.hourAngle, value);
    }
    EXPECT_EQ(parse({"--horizon_limit", "90"}).estimates.zenithDistanceLimit, 0.0);
    EXPECT_EQ(parse({"--horizon_limit", "-90"}).estimates.zenithDistanceLimit, 3.141592653589793);
}

TEST(CommandLine, RefusesWhatIsNotAFiniteNumber) {
    for (const std::string option : {"--epoch", "--ha", "--horizon_limit", "--pressure"}) {
        for (const std::string value :
             {"nan", "-inf", "1e400", "abc", "1.5h", "1,5", " 1", "1 ", "0x10", "12:30", "-"}) {
            EXPECT_EQ(refusalOf({option.c_str(), value.c_str()}),
                      "the argument ('" + value + "') for option '" + option + "' is invalid");
        }
    }
    EXPECT_EQ(refusalOf({"--ha", ""}), "the argument for option '--ha' is invalid");
    EXPECT_EQ(refusalOf({"--help", "--ha", "x"}), "the argument ('x') for option '--ha' is invalid");
}

TEST(CommandLine, ArgumentThatHoldsAPlaceholderOfTheParsersMessagesIsRefusedToo) {
    for (const std::string argument :
         {"--x%original_token%", "--x%canonical_option%", "-x%option%", "--%prefix%", "--epoch=%value%"}) {
        EXPECT_EQ(refusalOf({argument.c_str()}), "the argument '" + argument + "' is not valid");
    }
    EXPECT_EQ(refusalOf({"--epoch", "%value%"}), "the argument '%value%' is not valid");
    EXPECT_EQ(parse({"-i", "%value%", "-o", "%prefix%"}).input, "%value%");
    EXPECT_EQ(refusalOf({"--x%other%"}), "unrecognised option '--x%other%'");
}

TEST(CommandLine, APlaceholderInAnotherArgumentThanTheWrongOneIsNotBlamed) {
    for (const auto& [arguments, message] : std::vector<Refusal>{
             {{"--bogus", "-o", "out%value%.xml"}, "unrecognised option '--bogus'"},
             {{"-o", "%original_token%", "--bogus"}, "unrecognised option '--bogus'"},
             {{"-o%option%", "--epoch", "soon"}, "the argument ('soon') for option '--epoch' is invalid"},
             {{"-o", "%canonical_option%", "--ha"}, "the required argument for option '--ha' is missing"},
             {{"-o", "a", "-o", "%prefix%"}, "option '--output' cannot be specified more than once"},
             // Of several that hold one it is the argument at fault, with what the user wrote of it.
             {{"-o", "%value%", "--epoch=%value%"}, "the argument '--epoch=%value%' is not valid"},
             {{"-o", "%value%", "--epoch", "2%value%"}, "the argument '2%value%' is not valid"},
             {{"-o", "%value%", "--bogus%value%"}, "the argument '--bogus%value%' is not valid"},
             {{"-o", "%value%", "-hx%value%"}, "the argument '-hx%value%' is not valid"}}) {
        EXPECT_EQ(refusalOf(arguments), message);
    }
}

TEST(CommandLine, RefusesWhatIsNoOptionAndWhatBelongsToNone) {
    for (const auto& [arguments, message] : std::vector<Refusal>{
             {{"-x"}, "unrecognised option '-x'"},
             {{"-h", "--bogus=1"}, "unrecognised option '--bogus=1'"},
             {{"--ha="}, "the argument for option '--ha' should follow immediately after the equal sign"},
             {{"-i", "-o", "o.xml"}, "the required argument for option '--input' is missing"},
             {{"--help=1"}, "option '--help' does not take any arguments"},
             {{"-i", "a", "--input", "b"}, "option '--input' cannot be specified more than once"},
             {{"--ha", "1", "--ha", "1"}, "option '--ha' cannot be specified more than once"},
             {{"-i", "a.xml", "-o", "b.xml", "c.xml", "d.xml"}, "the argument 'c.xml' does not belong to any option"},
             {{"c.xml", "-i", "a.xml", "-o", "b.xml"}, "the argument 'c.xml' does not belong to any option"},
             {{"--", "--help"}, "the argument '--help' does not belong to any option"},
             {{"-h", "c.xml"}, "the argument 'c.xml' does not belong to any option"},
             {{"-"}, "the argument '-' does not belong to any option"},
             {{""}, "the argument '' does not belong to any option"}}) {
        EXPECT_EQ(refusalOf(arguments), message);
    }
}

TEST(CommandLine, TakesAnUnambiguousBeginningOfALongOption) {
    EXPECT_EQ(parse({"--conf", "c.xml"}).configFile, "c.xml");
    EXPECT_EQ(messageOf<po::ambiguous_option>([] { parse({"--h"}); }).substr(0, 26), "option '--h' is ambiguous ");
}
