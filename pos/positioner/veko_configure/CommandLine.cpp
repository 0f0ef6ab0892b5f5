#include "CommandLine.h"

#include "veko_configure.h"

#include "EmbeddedResources.h"
#include "PosConfig.h"
#include "Version.h"

#include <boost/lexical_cast/try_lexical_convert.hpp>
#include <cmath>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace pos {

namespace {

namespace po = boost::program_options;

/** The value of an option that must be a finite number; the parser takes "nan" and "inf" for a plain double. */
struct FiniteNumber {
    double value;
};

/** Called by the option parser for a value of this type. */
void validate(boost::any& target, const std::vector<std::string>& texts, FiniteNumber* /*type*/, int /*overload*/) {
    po::validators::check_first_occurrence(target);
    const std::string& text = po::validators::get_single_string(texts);
    double value = 0.0;
    if (!boost::conversion::try_lexical_convert(text, value) || !std::isfinite(value)) {
        throw po::invalid_option_value(text);
    }
    target = FiniteNumber{value};
}

double optionalNumber(const po::variables_map& values, const std::string& option, double absent) {
    return values.count(option) == 0 ? absent : values[option].as<FiniteNumber>().value;
}

std::optional<std::string> optionalText(const po::variables_map& values, const std::string& option) {
    return values.count(option) == 0 ? std::nullopt : std::optional(values[option].as<std::string>());
}

/** Refuses an argument that belongs to no option; the parser by itself would drop it. */
void refuseLeftOver(const po::parsed_options& parsed) {
    const auto leftOver = po::collect_unrecognized(parsed.options, po::include_positional);
    if (!leftOver.empty()) {
        throw po::error("the argument '" + leftOver.front() + "' does not belong to any option");
    }
}

/** Gives access to the texts that an error of the parser puts into its message in the place of placeholders. */
struct MessageTexts : po::error_with_option_name {
    /** The texts by placeholder: the argument as the user wrote it, the value in it or behind it. */
    static const std::map<std::string, std::string>& of(const po::error_with_option_name& error) {
        return error.*(&MessageTexts::m_substitutions);
    }
};

/**
 * Rethrows an error of the parser. Its message replaces placeholders such as "%value%" by what the user wrote, and then
 * placeholders in that too, without end. So an argument that holds one gets a message of its own.
 */
[[noreturn]] void rethrowParserError(const po::error_with_option_name& error) {
    for (const auto& [name, text] : MessageTexts::of(error)) {
        for (const char* placeholder : {"%canonical_option%", "%option%", "%original_token%", "%prefix%", "%value%"}) {
            if (text.find(placeholder) != std::string::npos) {
                throw po::error("the argument '" + text + "' is not valid");
            }
        }
    }
    throw;
}

po::variables_map parseOptions(int argc, const char* const* argv, const po::options_description& options) {
    po::variables_map values;
    try {
        const po::parsed_options parsed = po::command_line_parser(argc, argv).options(options).run();
        refuseLeftOver(parsed);
        po::store(parsed, values);
    } catch (const po::error_with_option_name& error) {
        rethrowParserError(error);
    }
    return values;
}

/** Makes sure that the output has left the program. */
int finishStandardOutput() {
    std::cout.flush();
    if (!std::cout) {
        throw std::runtime_error("The standard output could not be written");
    }
    return 0;
}

int printVersions() {
    std::cout << "VANTE veko_configure version " << configure_version << '\n'
              << "VANTE data model version " << datamver << std::endl;
    return finishStandardOutput();
}

} // namespace

po::options_description describeOptions() {
    po::options_description options("Allowed options");
    options.add_options()
        // clang-format off
        ("config_file,c", po::value<std::string>()->default_value(":/configure.xml"), "name of configuration file")
        ("epoch", po::value<FiniteNumber>(), "estimated epoch of observation (yr)")
        ("help,h", "display all the command arguments")
        ("ha", po::value<FiniteNumber>(), "estimated hour angle of observation (hr)")
        ("horizon_limit", po::value<FiniteNumber>()->default_value({kHorizonLimitDeg}, "25"), "horizon limit (deg)")
        ("input,i", po::value<std::string>(), "input configuration file name")
        ("output,o", po::value<std::string>(), "output configuration file name")
        ("pressure", po::value<FiniteNumber>(), "estimated pressure at time of observation (mBar)")
        ("version,v", "print version number");
    // clang-format on
    return options;
}

CommandLine parseCommandLine(int argc, const char* const* argv, const po::options_description& options) {
    const po::variables_map values = parseOptions(argc, argv, options);

    CommandLine commandLine{};
    commandLine.help = values.count("help") != 0;
    commandLine.version = values.count("version") != 0;
    commandLine.configFile = values["config_file"].as<std::string>();
    commandLine.input = optionalText(values, "input");
    commandLine.output = optionalText(values, "output");
    Estimates& estimates = commandLine.estimates;
    estimates.hourAngle = optionalNumber(values, "ha", kHourAngleNotGiven);
    estimates.epoch = optionalNumber(values, "epoch", kNotGiven);
    estimates.pressure = optionalNumber(values, "pressure", kNotGiven);
    estimates.zenithDistanceLimit = zenithDistanceOf(values["horizon_limit"].as<FiniteNumber>().value);
    return commandLine;
}

int runCommandLine(int argc, const char* const* argv) {
    const po::options_description options = describeOptions();
    const CommandLine commandLine = parseCommandLine(argc, argv, options);
    if (commandLine.help) {
        std::cout << options << std::endl;
        return finishStandardOutput();
    }
    const PosConfig config("configure_version", configure_version, commandLine.configFile.c_str(), PosConfig::XML);
    if (commandLine.version) {
        return printVersions();
    }
    if (!commandLine.input) {
        std::cerr << "No input file" << std::endl;
        return 1;
    }
    if (!commandLine.output) {
        std::cerr << "No output file" << std::endl;
        return 1;
    }
    qInitResources_config_files();
    qInitResources_plate_files();
    const Estimates& estimates = commandLine.estimates;
    return veko_configure(config, *commandLine.input, *commandLine.output, estimates.epoch, estimates.hourAngle,
                          estimates.pressure, estimates.zenithDistanceLimit);
}

} // namespace pos
