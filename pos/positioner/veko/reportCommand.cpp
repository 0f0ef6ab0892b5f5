#include "reportCommand.h"

#include "OutputFile.h"
#include "Report.h"
#include "angles.h"
#include "nightOptions.h"
#include "reportPage.h"
#include "sharedOptions.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <memory>

namespace pos {

namespace {

/** What the arguments ask for. */
struct ReportArguments {
    std::string file;
    std::string output;
    RunOptions run;
    std::string night;
    RequirementOptions requirements;
    double fieldRadius = CheckOptions{}.fieldRadius; ///< radians
    double exposure = 60.0;                          ///< minutes
};

/** The words of the command line. */
std::vector<std::string> commandLine() {
    std::ifstream words("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> line;
    for (std::string word; std::getline(words, word, '\0');) {
        line.push_back(word);
    }
    return line;
}

int writeReport(const ReportArguments& arguments) {
    const Estimates estimates = arguments.run.estimates;
    const Report report = makeReport({arguments.file, readInput(arguments.file), arguments.run.configFile, estimates,
                                      arguments.night.empty() ? std::nullopt : std::optional(dateOf(arguments.night)),
                                      arguments.requirements.windowOptions(estimates.zenithDistanceLimit),
                                      arguments.fieldRadius, arguments.exposure / (24 * 60), commandLine()});
    refuseIfRead(arguments.output, report.documents);
    writeFile(arguments.output, reportPage(report));
    return 0;
}

} // namespace

Command addReportCommand(CLI::App& program) {
    const auto arguments = std::make_shared<ReportArguments>();
    CLI::App* const command = program.add_subcommand("report", "make a page to see a field definition on");
    command->add_option("FILE", arguments->file, "field definition, configured or not; - is the standard input")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", arguments->output, "file to write the page to")->required()->type_name("FILE");
    command
        ->add_option("--night", arguments->night, "date of the evening at the site; default: that of the observation")
        ->check(refusalOfNight, "")
        ->type_name("YYYY-MM-DD");
    addRequirementOptions(*command, arguments->requirements);
    command->add_option("--exposure", arguments->exposure, "length of the exposure, for refraction")
        ->check(within(0, 1440))
        ->type_name("MINUTES")
        ->capture_default_str();
    addFieldRadiusOption(*command, arguments->fieldRadius);
    addRunOptions(*command, arguments->run);
    return {command, [arguments] { return writeReport(*arguments); }};
}

} // namespace pos
