#include "nightOptions.h"

#include "Night.h"
#include "angles.h"
#include "sharedOptions.h"

namespace pos {

namespace {

/** Why a text is no twilight; empty where it is one. */
std::string refusalOfTwilight(const std::string& text) {
    return twilights().contains(text) ? "" : within(-90, 0)(text);
}

/** The altitude below which the Sun must be, radians. */
std::optional<double> sunAltitude(const std::string& twilight) {
    const auto known = twilights().find(twilight);
    const auto degrees = known != twilights().end() ? known->second : std::stod(twilight);
    return degrees ? std::optional(degreesToRadians(*degrees)) : std::nullopt;
}

} // namespace

WindowOptions RequirementOptions::windowOptions(double zenithDistanceLimit) const {
    WindowOptions options{zenithDistanceLimit, sunAltitude(twilight)};
    if (airmass > 0) {
        options.largestAirmass = airmass;
    }
    if (moon > 0) {
        options.moonDistance = degreesToRadians(moon);
    }
    options.shortest = minimum / (24 * 60);
    options.margin = kMarginOfRuns;
    return options;
}

void addRequirementOptions(CLI::App& command, RequirementOptions& options) {
    command.add_option("--twilight", options.twilight, "or the altitude of the Sun, degrees")
        ->check(refusalOfTwilight, "")
        ->type_name("civil|nautical|astronomical|none")
        ->capture_default_str();
    command.add_option("--airmass", options.airmass, "greatest airmass")->check(within(1, 40))->type_name("NUMBER");
    command.add_option("--moon", options.moon, "least distance from the Moon while it is up")
        ->check(within(0, 180))
        ->type_name("DEGREES");
    command.add_option("--minimum", options.minimum, "length of the shortest window that counts")
        ->check(within(0, 1440))
        ->type_name("MINUTES");
}

QDate dateOf(const std::string& text) {
    return QDate::fromString(QString::fromStdString(text), Qt::ISODate);
}

std::string refusalOfNight(const std::string& text) {
    const QDate date = dateOf(text);
    if (!date.isValid() || text.size() != std::string("YYYY-MM-DD").size()) {
        return "'" + text + "' is not a date YYYY-MM-DD";
    }
    return areSunAndMoonKnown(date) ? "" : "'" + text + '\'' + kNotOfKnownYears;
}

} // namespace pos
