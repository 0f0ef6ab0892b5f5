#include "windowCommand.h"

#include "ConditionsXML.h"
#include "Instrument.h"
#include "PosConfig.h"
#include "TelescopeConfig.h"
#include "angles.h"
#include "nightOptions.h"
#include "positionAngles.h"
#include "sharedOptions.h"
#include "windowRecords.h"
#include "xmlStructure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>

namespace pos {

namespace {

/** What the arguments ask for. */
struct WindowArguments {
    std::vector<std::string> files;
    RunOptions run;
    double ra = 0.0; ///< degrees, as the other angles
    double dec = 0.0;
    double positionAngle = 0.0;
    double temperature = createConditionsXML({}).temperature; ///< kelvin
    double relativeHumidity = createConditionsXML({}).relativeHumidity;
    bool isPlace = false;
    std::string night;
    std::string from;
    std::string to;
    RequirementOptions requirements;
    std::string format = "table";
    std::string timeZone;
};

std::string refusalOfTimeZone(const std::string& text) {
    return QTimeZone(QByteArray::fromStdString(text)).isValid() ? "" : "the system knows no time zone '" + text + "'";
}

/** Finds the windows that the arguments ask for. */
class WindowFinder {
public:
    explicit WindowFinder(const WindowArguments& arguments)
        : arguments_(arguments), config_(arguments.run.configFile.c_str(), PosConfig::XML), instrument_(config_),
          telescope_(readTelescope(config_)) {
        tellOptions(arguments.run.estimates, instrument_);
    }

    const Telescope& telescope() const {
        return telescope_;
    }

    std::vector<FieldNight> ofPlace() {
        const Estimates estimates = arguments_.run.estimates;
        Conditions conditions = createConditionsXML({});
        conditions.temperature = arguments_.temperature;
        conditions.relativeHumidity = arguments_.relativeHumidity;
        conditions.epoch = resolveDate(estimates.epoch, conditions);
        conditions.pressure = resolvePressure(estimates.pressure, conditions);
        const ICRS place{degreesToRadians(arguments_.ra), degreesToRadians(arguments_.dec), 0, 0, 0, 0, 0};
        return of({{place}, degreesToRadians(arguments_.positionAngle), conditions, estimates.epoch != kNotGiven},
                  std::nullopt);
    }

    std::vector<FieldNight> ofFile(const std::string& name) {
        const QDomDocument document = loadXmlFile(name == "-" ? "/dev/stdin" : name);
        return of(readPlan(document, arguments_.run.estimates), name);
    }

private:
    std::vector<FieldNight> of(const Plan& plan, const std::optional<std::string>& file) {
        const std::vector<Night> nights = nightsOf(plan);
        const auto contexts = contexts_.try_emplace(nights.front().evening, nights.front().begin, nights.back().end);
        const FocalPlane pointing(config_, VEKO, Astrometric{}, 0.0, plan.conditions);
        return findFieldNights(pointing, telescope_, plan, file, nights, contexts.first->second,
                               arguments_.requirements.windowOptions(arguments_.run.estimates.zenithDistanceLimit));
    }

    std::vector<Night> nightsOf(const Plan& plan) const {
        const double longitude = telescope_.eastLongitude;
        if (!arguments_.night.empty()) {
            return {nightOf(dateOf(arguments_.night), longitude)};
        }
        std::vector<Night> nights;
        if (!arguments_.from.empty()) {
            for (QDate date = dateOf(arguments_.from); date <= dateOf(arguments_.to); date = date.addDays(1)) {
                nights.push_back(nightOf(date, longitude));
            }
            return nights;
        }
        if (!plan.hasEpoch) {
            throw std::runtime_error(
                "There is no epoch, so that the night is not known: give --night, or --from and --to");
        }
        const Night night = nightAround(plan.conditions.epoch, longitude);
        if (!areSunAndMoonKnown(night.evening)) {
            throw std::runtime_error(std::string("The epoch") + kNotOfKnownYears);
        }
        return {night};
    }

    const WindowArguments& arguments_;
    PosConfig config_;
    Instrument instrument_;
    Telescope telescope_;
    std::map<QDate, DateContexts> contexts_; ///< by the first evening
};

std::string textOf(const std::vector<FieldNight>& nights, const std::string& format, const WindowStyle& style) {
    if (format == "json") {
        return windowJson(nights, style);
    }
    return format == "csv" ? windowCsv(nights, style) : windowTable(nights, style);
}

std::string titleOfPlace(const WindowArguments& arguments) {
    return "RA " + shortText(arguments.ra) + ", Dec " + shortText(arguments.dec) + ", position angle " +
           shortText(arguments.positionAngle);
}

/** A message that names its file. */
std::string sentenceOf(const std::string& file, const std::string& message) {
    return message.find(file) != std::string::npos ? message : file + ": " + message;
}

int findAndPrint(const WindowArguments& arguments) {
    WindowFinder finder(arguments);
    std::vector<FieldNight> nights;
    bool isTrouble = false;
    const auto add = [&](const std::vector<FieldNight>& more) {
        nights.insert(nights.end(), more.begin(), more.end());
    };
    if (arguments.isPlace) {
        add(finder.ofPlace());
    }
    for (const std::string& file : arguments.files) {
        try {
            add(finder.ofFile(file));
        } catch (const std::exception& error) {
            std::cerr << sentenceOf(file, error.what()) << std::endl;
            isTrouble = true;
        }
    }
    WindowStyle style{{}, finder.telescope(), titleOfPlace(arguments), !arguments.from.empty()};
    if (!arguments.timeZone.empty()) {
        style.timeZone = QTimeZone(QByteArray::fromStdString(arguments.timeZone));
    }
    if (!nights.empty() || arguments.format != "table") {
        std::cout << textOf(nights, arguments.format, style);
    }
    const bool hasOne =
        std::any_of(nights.begin(), nights.end(), [](const FieldNight& night) { return !night.found.windows.empty(); });
    return isTrouble ? kTrouble : hasOne ? kGood : kBad;
}

void addPlaceOptions(CLI::App& command, WindowArguments& arguments) {
    constexpr const char* kPlaceGroup = "A place instead of files";
    CLI::Option* const ra = command.add_option("--ra", arguments.ra, "right ascension")->check(within(0, 360));
    CLI::Option* const dec = command.add_option("--dec", arguments.dec, "declination")->check(within(-90, 90));
    ra->needs(dec)->type_name("DEGREES")->group(kPlaceGroup);
    dec->needs(ra)->type_name("DEGREES")->group(kPlaceGroup);
    command.add_option("--pa", arguments.positionAngle, "position angle")
        ->check(within(-360, 360))
        ->needs(ra)
        ->type_name("DEGREES")
        ->capture_default_str()
        ->group(kPlaceGroup);
    command.add_option("--temperature", arguments.temperature, "temperature at the telescope")
        ->check(within(150, 350))
        ->needs(ra)
        ->type_name("KELVIN")
        ->capture_default_str()
        ->group(kPlaceGroup);
    command.add_option("--relative_humidity", arguments.relativeHumidity, "humidity at the telescope, 0 to 1")
        ->check(within(0, 1))
        ->needs(ra)
        ->type_name("NUMBER")
        ->capture_default_str()
        ->group(kPlaceGroup);
}

void addNightOptions(CLI::App& command, WindowArguments& arguments) {
    CLI::Option* const night =
        command.add_option("--night", arguments.night, "date of the evening; by itself the epoch's");
    CLI::Option* const from = command.add_option("--from", arguments.from, "first night of a season");
    CLI::Option* const to = command.add_option("--to", arguments.to, "last night of a season");
    for (CLI::Option* const date : {night, from, to}) {
        date->check(refusalOfNight, "")->type_name("YYYY-MM-DD");
    }
    from->needs(to)->excludes(night);
    to->needs(from);
}

} // namespace

Command addWindowCommand(CLI::App& program) {
    const auto arguments = std::make_shared<WindowArguments>();
    CLI::App* const command = program.add_subcommand("window", "tell when fields can be observed, and what ends it");
    command->add_option("FILE", arguments->files, "field definitions; - is the standard input")->type_name("");
    addPlaceOptions(*command, *arguments);
    addNightOptions(*command, *arguments);
    addRequirementOptions(*command, arguments->requirements);
    addRunOptionsOfNights(*command, arguments->run);
    command->add_option("--format", arguments->format, "form of what is found")
        ->check(CLI::IsMember({"table", "csv", "json"}))
        ->type_name("table|csv|json")
        ->capture_default_str();
    command->add_option("--time-zone", arguments->timeZone, "time zone in which times are told beside UTC")
        ->check(refusalOfTimeZone, "")
        ->type_name("AREA/CITY");
    command->callback([arguments, command] {
        arguments->isPlace = command->count("--ra") > 0;
        if (arguments->files.empty() != arguments->isPlace) {
            throw arguments->isPlace
                ? CLI::ValidationError("--ra", "a place is given instead of files")
                : CLI::ValidationError("FILE", "field definitions, or a place with --ra and --dec, are required");
        }
        if (!arguments->from.empty() && dateOf(arguments->from) > dateOf(arguments->to)) {
            throw CLI::ValidationError("--to", "the last night is before the first");
        }
    });
    return {command, [arguments] { return findAndPrint(*arguments); }};
}

} // namespace pos
