#include "compareCommand.h"

#include "OutputFile.h"
#include "ReadDocument.h"
#include "RunMessages.h"
#include "comparisonRecords.h"
#include "problemText.h"
#include "rules.h"
#include "sharedOptions.h"
#include "soundDocument.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>

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

/** A document; "-" is the standard input. @throw std::runtime_error with the place where it cannot be read */
QDomDocument documentOf(const std::string& name) {
    const ReadDocument read = readDocument(readInput(name), name);
    if (read.fault) {
        const std::string message = read.faultMessage();
        const Problem problem{&kUnreadable, kUnreadable.severity, read.faultPlace(), message, whatToDo(message), {}};
        std::string text = problemText(problem, read.text, name, {terminalWidth(), false});
        text.pop_back(); // the end of its last line
        throw std::runtime_error(text);
    }
    return read.parsed.document;
}

void writePicture(const CompareArguments& arguments, const Comparison& comparison) {
    refuseIfRead(arguments.picture,
                 {{"field definition", arguments.first, ""}, {"field definition", arguments.second, ""}});
    writeFile(arguments.picture, QByteArray::fromStdString(comparisonPicture(comparison)));
}

int compare(const CompareArguments& arguments) {
    if (arguments.first == "-" && arguments.second == "-") {
        throw std::runtime_error("Only one of the documents can be the standard input");
    }
    const CompareOptions options = compareOptions(arguments.plateTolerance, arguments.skyTolerance, arguments.ignored);
    const QDomDocument first = documentOf(arguments.first);
    const Comparison comparison = compareDocuments(first, documentOf(arguments.second), options);
    if (!arguments.picture.empty()) {
        writePicture(arguments, comparison);
    }
    std::cout << (arguments.format == "json" ? comparisonJson(comparison) : comparisonText(comparison));
    return comparison.isSame ? kGood : kBad;
}

} // namespace

Command addCompareCommand(CLI::App& program) {
    const auto arguments = std::make_shared<CompareArguments>();
    CLI::App* const command = program.add_subcommand("compare", "tell what differs between two field definitions");
    command->add_option("FIRST", arguments->first, "a field definition; - is the standard input")
        ->required()
        ->type_name("");
    command->add_option("SECOND", arguments->second, "another one")->required()->type_name("");
    command->add_option("--plate-tolerance", arguments->plateTolerance, "up to this, places on the plate are the same")
        ->check(within(0, 1e6))
        ->type_name("UM")
        ->capture_default_str();
    command->add_option("--sky-tolerance", arguments->skyTolerance, "up to this, places on the sky are the same")
        ->check(within(0, 3600))
        ->type_name("ARCSEC")
        ->capture_default_str();
    command->add_option("--ignore", arguments->ignored, "attribute or element to leave out; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command->add_option("--format", arguments->format, "form of what is told")
        ->check(CLI::IsMember({"text", "json"}))
        ->type_name("text|json")
        ->capture_default_str();
    command->add_option("--picture", arguments->picture, "file to draw what moved in, as SVG")->type_name("FILE");
    return {command, [arguments] { return compare(*arguments); }};
}

} // namespace pos
