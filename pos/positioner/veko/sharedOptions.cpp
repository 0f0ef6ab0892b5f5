#include "sharedOptions.h"

#include "CheckedDocument.h"
#include "checkEstimates.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace pos {

namespace {

/** Refuses "nan" and "inf". */
const CLI::Validator& finite() {
    static const CLI::Validator validator(
        [](const std::string& text) {
            double value = 0.0;
            const bool isFinite = CLI::detail::lexical_cast(text, value) && std::isfinite(value);
            return isFinite ? std::string() : "'" + text + "' is not a finite number";
        },
        "");
    return validator;
}

/** Why a text is no radius of a field; empty where it is one. */
std::string refusalOfRadius(const std::string& text) {
    double degrees = 0.0;
    const bool isRadius = CLI::detail::lexical_cast(text, degrees) && degrees > 0.0 && degrees <= 90.0;
    return isRadius ? "" : "'" + text + "' is not above 0 and at most 90 degrees";
}

constexpr const char* kGroup = "As in veko_configure";

void addNumber(CLI::App& command, const std::string& name, double& value, const std::string& description,
               const std::string& unit) {
    command.add_option(name, value, description)->check(finite())->type_name(unit)->group(kGroup);
}

} // namespace

void addRunOptions(CLI::App& command, RunOptions& options) {
    command.add_option("-c,--config_file", options.configFile, "configuration file")
        ->type_name("FILE")
        ->capture_default_str()
        ->group(kGroup);
    Estimates& estimates = options.estimates;
    addNumber(command, "--epoch", estimates.epoch, "Julian epoch of the observation; 0: the document's", "YEARS");
    addNumber(command, "--ha", estimates.hourAngle, "hour angle of the observation; 100: the document's", "HOURS");
    addNumber(command, "--pressure", estimates.pressure, "pressure at the telescope; 0: the document's", "MBAR");
    command
        .add_option_function<double>(
            "--horizon_limit",
            [&estimates](double degrees) { estimates.zenithDistanceLimit = zenithDistanceOf(degrees); },
            "lowest elevation of a field")
        ->check(finite())
        ->type_name("DEGREES")
        ->default_str(CLI::detail::to_string(kHorizonLimitDeg))
        ->group(kGroup);
}

void addRunOptionsOfNights(CLI::App& command, RunOptions& options) {
    addRunOptions(command, options);
    command.remove_option(command.get_option("--ha"));
}

void tellOptions(const Estimates& estimates, Instrument& instrument) {
    for (const auto& [name, problem] : checkEstimates(estimates, instrument)) {
        std::cerr << "--" << name << ": " << severityWord(problem.severity) << ": " << problem.message << " ["
                  << problem.rule->code << "]\nhelp: " << problem.help << '\n';
    }
}

void addFieldRadiusOption(CLI::App& command, double& radius) {
    command
        .add_option_function<double>(
            "--field_radius", [&radius](double degrees) { radius = degreesToRadians(degrees); },
            "how far apart places may be, up to 90")
        ->check(refusalOfRadius, "")
        ->type_name("DEGREES")
        ->default_str(CLI::detail::to_string(kFieldRadiusDeg));
}

CLI::Validator within(double low, double high) {
    return {[low, high](const std::string& text) {
                double value = 0.0;
                const bool isWithin = CLI::detail::lexical_cast(text, value) && value >= low && value <= high;
                std::ostringstream range;
                range << "from " << low << " to " << high;
                return isWithin ? std::string() : "'" + text + "' is not a number " + range.str();
            },
            ""};
}

void addColourOption(CLI::App& command, std::string& colour) {
    command.add_option("--color", colour, "when to colour the text")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("auto|always|never")
        ->capture_default_str();
}

bool useColour(const std::string& colour) {
    const char* const noColour = std::getenv("NO_COLOR");
    const bool isPlain = noColour != nullptr && *noColour != '\0';
    return colour == "always" || (colour == "auto" && !isPlain && ::isatty(STDOUT_FILENO) == 1);
}

int terminalWidth() {
    constexpr int kNoTerminal = 100;
    struct winsize size {};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kNoTerminal;
}

} // namespace pos
