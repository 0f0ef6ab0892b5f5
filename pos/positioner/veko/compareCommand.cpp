#include "compareCommand.h"

#include "OutputFile.h"
#include "angles.h"
#include "comparisonRecords.h"
#include "sharedOptions.h"
#include "xmlStructure.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace pos {

namespace {

/** What the arguments ask for. */
struct CompareArguments {
    std::string first;
    std::string second;
    double plateTolerance = 0.0; ///< micrometres
    double skyTolerance = 0.0;   ///< arcsec
    std::vector<std::string> ignored;
    std::string format = "text";
    std::string picture;
};

/** The exit statuses of the command. */
enum Status { kSame = 0, kDifferent = 1 };

int compare(const CompareArguments& arguments) {
    CompareOptions options{arguments.plateTolerance / 1000, degreesToRadians(arguments.skyTolerance / 3600)};
    for (const std::string& name : arguments.ignored) {
        options.ignored.insert(QString::fromStdString(name));
    }
    const QDomDocument first = loadXmlFile(arguments.first);
    const Comparison comparison = compareDocuments(first, loadXmlFile(arguments.second), options);
    if (!arguments.picture.empty()) {
        writeFile(arguments.picture, QByteArray::fromStdString(comparisonPicture(comparison)));
    }
    std::cout << (arguments.format == "json" ? comparisonJson(comparison) : comparisonText(comparison));
    return comparison.isSame ? kSame : kDifferent;
}

} // namespace

Command addCompareCommand(CLI::App& program) {
    const auto arguments = std::make_shared<CompareArguments>();
    CLI::App* const command = program.add_subcommand("compare", "tell what is different between two documents");
    command->add_option("FIRST", arguments->first, "a document")->required()->type_name("");
    command->add_option("SECOND", arguments->second, "another one")->required()->type_name("");
    command->add_option("--plate-tolerance", arguments->plateTolerance, "distance on the plate that is none")
        ->check(within(0, 1e6))
        ->type_name("UM")
        ->capture_default_str();
    command->add_option("--sky-tolerance", arguments->skyTolerance, "distance on the sky that is none")
        ->check(within(0, 3600))
        ->type_name("ARCSEC")
        ->capture_default_str();
    command->add_option("--ignore", arguments->ignored, "attribute or element that may differ; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command->add_option("--format", arguments->format, "form of what is found")
        ->check(CLI::IsMember({"text", "json"}))
        ->type_name("text|json")
        ->capture_default_str();
    command->add_option("--picture", arguments->picture, "picture of what moved on the plate, as SVG")
        ->type_name("FILE");
    return {command, [arguments] { return compare(*arguments); }};
}

} // namespace pos
