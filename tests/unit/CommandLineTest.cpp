#include "CommandLine.h"
#include "thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
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

std::string listingOf(const po::options_description& options) {
    std::ostringstream text;
    text << options;
    return text.str();
}

} // namespace

TEST(CommandLine, WithoutArgumentsHoldsTheDefaults) {
    const CommandLine commandLine = parse({});
    EXPECT_FALSE(commandLine.help);
    EXPECT_FALSE(commandLine.version);
    EXPECT_EQ(commandLine.configFile, ":/configure.xml");
    EXPECT_EQ(commandLine.input, std::nullopt);
    EXPECT_EQ(commandLine.output, std::nullopt);
    EXPECT_EQ(commandLine.epoch, 0.0);
    EXPECT_EQ(commandLine.hourAngle, 100.0);
    EXPECT_EQ(commandLine.pressure, 0.0);
    // 90 - 25 degrees
    EXPECT_EQ(commandLine.zenithDistanceLimit, 65.0 / 180 * 3.141592653589793);
}

TEST(CommandLine, WithoutEvenAProgramNameHoldsTheDefaults) {
    const char* const arguments[] = {nullptr};
    EXPECT_EQ(parseCommandLine(0, arguments, describeOptions()).configFile, ":/configure.xml");
}

TEST(CommandLine, TakesEveryLongOption) {
    const CommandLine commandLine =
        parse({"--config_file", "c.xml", "--epoch", "2020.5", "--help", "--ha", "1.25", "--horizon_limit", "30",
               "--input", "i.xml", "--output", "o.xml", "--pressure", "771.5", "--version"});
    EXPECT_TRUE(commandLine.help);
    EXPECT_TRUE(commandLine.version);
    EXPECT_EQ(commandLine.configFile, "c.xml");
    EXPECT_EQ(commandLine.input, "i.xml");
    EXPECT_EQ(commandLine.output, "o.xml");
    EXPECT_EQ(commandLine.epoch, 2020.5);
    EXPECT_EQ(commandLine.hourAngle, 1.25);
    EXPECT_EQ(commandLine.pressure, 771.5);
    EXPECT_EQ(commandLine.zenithDistanceLimit, 60.0 / 180 * 3.141592653589793);
}

TEST(CommandLine, TakesEveryShortOption) {
    const CommandLine commandLine = parse({"-c", "c.xml", "-h", "-i", "i.xml", "-o", "o.xml", "-v"});
    EXPECT_TRUE(commandLine.help);
    EXPECT_TRUE(commandLine.version);
    EXPECT_EQ(commandLine.configFile, "c.xml");
    EXPECT_EQ(commandLine.input, "i.xml");
    EXPECT_EQ(commandLine.output, "o.xml");
}

TEST(CommandLine, TakesValuesThatAreAttachedToTheirOption) {
    const CommandLine commandLine = parse({"-cc.xml", "--input=i.xml", "-oo.xml", "--epoch=2020"});
    EXPECT_EQ(commandLine.configFile, "c.xml");
    EXPECT_EQ(commandLine.input, "i.xml");
    EXPECT_EQ(commandLine.output, "o.xml");
    EXPECT_EQ(commandLine.epoch, 2020.0);
}

TEST(CommandLine, HelpAndVersionAreIndependent) {
    EXPECT_TRUE(parse({"-h"}).help);
    EXPECT_FALSE(parse({"-h"}).version);
    EXPECT_TRUE(parse({"-v"}).version);
    EXPECT_FALSE(parse({"-v"}).help);
}

TEST(CommandLine, KeepsFileNamesToTheByte) {
    // Blanks, a byte that is not UTF-8, and a name that is empty.
    const CommandLine commandLine = parse({"-i", " a b\xff.xml ", "-o", ""});
    EXPECT_EQ(commandLine.input, " a b\xff.xml ");
    EXPECT_EQ(commandLine.output, "");
}

TEST(CommandLine, TakesNegativeNumbersBehindABlankAndBehindAnEqualsSign) {
    EXPECT_EQ(parse({"--ha", "-1.5"}).hourAngle, -1.5);
    EXPECT_EQ(parse({"--ha=-1.5"}).hourAngle, -1.5);
    EXPECT_EQ(parse({"--ha", "-.5"}).hourAngle, -0.5);
    EXPECT_EQ(parse({"--ha", "-1e-3"}).hourAngle, -1e-3);
    EXPECT_EQ(parse({"--ha", "-0"}).hourAngle, 0.0);
    EXPECT_EQ(parse({"--epoch", "-4712"}).epoch, -4712.0);
    EXPECT_EQ(parse({"--pressure", "-1"}).pressure, -1.0);
    EXPECT_EQ(parse({"--horizon_limit", "-90"}).zenithDistanceLimit, 3.141592653589793);
}

TEST(CommandLine, TakesEveryNotationOfAFiniteNumber) {
    EXPECT_EQ(parse({"--ha", "+2"}).hourAngle, 2.0);
    EXPECT_EQ(parse({"--ha", "2."}).hourAngle, 2.0);
    EXPECT_EQ(parse({"--ha", ".25"}).hourAngle, 0.25);
    EXPECT_EQ(parse({"--ha", "0.15E1"}).hourAngle, 1.5);
    EXPECT_EQ(parse({"--ha", "0.1"}).hourAngle, 0.1);
    EXPECT_EQ(parse({"--epoch", "1.7976931348623157e308"}).epoch, 1.7976931348623157e308);
}

TEST(CommandLine, ExplicitMarksAreThoseOfOptionsNotGiven) {
    const CommandLine absent = parse({});
    const CommandLine marks = parse({"--ha", "100", "--epoch", "0", "--pressure", "0", "--horizon_limit", "25"});
    EXPECT_EQ(marks.hourAngle, absent.hourAngle);
    EXPECT_EQ(marks.epoch, absent.epoch);
    EXPECT_EQ(marks.pressure, absent.pressure);
    EXPECT_EQ(marks.zenithDistanceLimit, absent.zenithDistanceLimit);
}

TEST(CommandLine, HorizonLimitOf90LeavesOnlyTheZenith) {
    EXPECT_EQ(parse({"--horizon_limit", "90"}).zenithDistanceLimit, 0.0);
}

TEST(CommandLine, HorizonLimitConvertsInTheStatedOrderOfOperations) {
    // 6.5 / 180 * pi; with a precomputed pi / 180, or multiplied first, it ends in ...43.
    EXPECT_EQ(parse({"--horizon_limit", "83.5"}).zenithDistanceLimit, 0.11344640137963141);
    EXPECT_EQ(parse({"--horizon_limit", "0"}).zenithDistanceLimit, 90.0 / 180 * 3.141592653589793);
}

TEST(CommandLine, RefusesWhatIsNotAFiniteNumber) {
    for (const std::string option : {"--epoch", "--ha", "--horizon_limit", "--pressure"}) {
        for (const std::string value : {"nan", "-nan", "NAN", "inf", "-inf", "+infinity", "1e400", "-1e400", "abc",
                                        "1.5h", "1,5", " 1", "1 ", "1 2", "0x10", "12:30", "-"}) {
            EXPECT_EQ(refusalOf({option.c_str(), value.c_str()}),
                      "the argument ('" + value + "') for option '" + option + "' is invalid");
        }
    }
}

TEST(CommandLine, RefusesAnEmptyNumber) {
    EXPECT_EQ(refusalOf({"--ha", ""}), "the argument for option '--ha' is invalid");
    EXPECT_EQ(refusalOf({"--ha="}), "the argument for option '--ha' should follow immediately after the equal sign");
}

TEST(CommandLine, RefusesAMalformedNumberEvenWithHelp) {
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
    EXPECT_EQ(refusalOf({"--bogus", "-o", "out%value%.xml"}), "unrecognised option '--bogus'");
    EXPECT_EQ(refusalOf({"-o", "%original_token%", "--bogus"}), "unrecognised option '--bogus'");
    EXPECT_EQ(refusalOf({"-o%option%", "--epoch", "soon"}), "the argument ('soon') for option '--epoch' is invalid");
    EXPECT_EQ(refusalOf({"-o", "%canonical_option%", "--ha"}), "the required argument for option '--ha' is missing");
    EXPECT_EQ(refusalOf({"-o", "a", "-o", "%prefix%"}), "option '--output' cannot be specified more than once");
    // Of several that hold one it is the argument at fault, with what the user wrote of it.
    EXPECT_EQ(refusalOf({"-o", "%value%", "--epoch=%value%"}), "the argument '--epoch=%value%' is not valid");
    EXPECT_EQ(refusalOf({"-o", "%value%", "--epoch", "2%value%"}), "the argument '2%value%' is not valid");
    EXPECT_EQ(refusalOf({"-o", "%value%", "--bogus%value%"}), "the argument '--bogus%value%' is not valid");
    EXPECT_EQ(refusalOf({"-o", "%value%", "-hx%value%"}), "the argument '-hx%value%' is not valid");
}

TEST(CommandLine, RefusesUnknownOptions) {
    EXPECT_EQ(refusalOf({"--bogus"}), "unrecognised option '--bogus'");
    EXPECT_EQ(refusalOf({"-x"}), "unrecognised option '-x'");
    EXPECT_EQ(refusalOf({"-h", "--bogus=1"}), "unrecognised option '--bogus=1'");
}

TEST(CommandLine, RefusesAMissingValue) {
    for (const std::string option :
         {"--config_file", "--epoch", "--ha", "--horizon_limit", "--input", "--output", "--pressure"}) {
        EXPECT_EQ(refusalOf({option.c_str()}), "the required argument for option '" + option + "' is missing");
    }
    // A short option is not taken for a value.
    EXPECT_EQ(refusalOf({"--ha", "-h"}), "the required argument for option '--ha' is missing");
    EXPECT_EQ(refusalOf({"-i", "-o", "o.xml"}), "the required argument for option '--input' is missing");
}

TEST(CommandLine, RefusesAValueForASwitch) {
    EXPECT_EQ(refusalOf({"--help=1"}), "option '--help' does not take any arguments");
    EXPECT_EQ(refusalOf({"--version=1"}), "option '--version' does not take any arguments");
}

TEST(CommandLine, RefusesAnOptionThatIsGivenTwice) {
    EXPECT_EQ(refusalOf({"-i", "a", "--input", "b"}), "option '--input' cannot be specified more than once");
    EXPECT_EQ(refusalOf({"--ha", "1", "--ha", "1"}), "option '--ha' cannot be specified more than once");
    EXPECT_EQ(refusalOf({"--horizon_limit", "1", "--horizon_limit", "2"}),
              "option '--horizon_limit' cannot be specified more than once");
}

TEST(CommandLine, NamesTheFirstArgumentThatIsLeftOver) {
    EXPECT_EQ(refusalOf({"-i", "a.xml", "-o", "b.xml", "c.xml", "d.xml"}),
              "the argument 'c.xml' does not belong to any option");
    EXPECT_EQ(refusalOf({"c.xml", "-i", "a.xml", "-o", "b.xml"}), "the argument 'c.xml' does not belong to any option");
    EXPECT_EQ(refusalOf({"--", "--help"}), "the argument '--help' does not belong to any option");
    EXPECT_EQ(refusalOf({"-h", "c.xml"}), "the argument 'c.xml' does not belong to any option");
    EXPECT_EQ(refusalOf({"-"}), "the argument '-' does not belong to any option");
    EXPECT_EQ(refusalOf({""}), "the argument '' does not belong to any option");
}

TEST(CommandLine, TakesAnUnambiguousBeginningOfALongOption) {
    EXPECT_EQ(parse({"--conf", "c.xml"}).configFile, "c.xml");
    EXPECT_EQ(parse({"--horizon", "90"}).zenithDistanceLimit, 0.0);
    EXPECT_EQ(messageOf<po::ambiguous_option>([] { parse({"--h"}); }).substr(0, 26), "option '--h' is ambiguous ");
}

TEST(CommandLine, ListsTheOptionsAsPlainNumbersAndTextsOfTheParserAreListed) {
    po::options_description expected("Allowed options", 80, 40);
    // clang-format off
    expected.add_options()
        ("config_file,c", po::value<std::string>()->default_value(":/configure.xml"), "name of configuration file")
        ("epoch", po::value<double>(), "estimated epoch of observation (yr)")
        ("help,h", "display all the command arguments")
        ("ha", po::value<double>(), "estimated hour angle of observation (hr)")
        ("horizon_limit", po::value<double>()->default_value(25), "horizon limit (deg)")
        ("input,i", po::value<std::string>(), "input configuration file name")
        ("output,o", po::value<std::string>(), "output configuration file name")
        ("pressure", po::value<double>(), "estimated pressure at time of observation (mBar)")
        ("version,v", "print version number");
    // clang-format on
    EXPECT_EQ(listingOf(describeOptions()), listingOf(expected));
}
