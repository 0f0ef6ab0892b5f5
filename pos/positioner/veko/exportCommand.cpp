#include "exportCommand.h"

#include "ConditionsXML.h"
#include "Field.h"
#include "OutputFile.h"
#include "angles.h"
#include "exportedTargets.h"
#include "sharedOptions.h"
#include "soundDocument.h"
#include "xmlStructure.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>

namespace pos {

namespace {

/** What the arguments ask for. */
struct ExportArguments {
    std::string file;
    std::string format;
    std::string output;
    RunOptions run;
    double fieldRadius = CheckOptions{}.fieldRadius; ///< radians
};

using Exporter = std::function<QByteArray(const ExportedTargets&)>;

/** The formats by name. */
const std::map<std::string, Exporter>& exporters() {
    static const std::map<std::string, Exporter> all = {
        {"ds9", exportDs9}, {"votable", exportVotable}, {"csv", exportCsv}, {"json", exportJson}};
    return all;
}

ExportedTargets tableOf(const QDomDocument& document, const std::string& file, Instrument& instrument) {
    try {
        const Conditions conditions = createConditionsXML(findConditionsElement(document.documentElement()));
        const Veko& bundle = instrument.pointedVeko(Field(Astrometric{0.0, 0.0}), conditions);
        return exportedTargets(document, file, bundle.fibres);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
}

int exportTargets(const ExportArguments& arguments) {
    const Estimates estimates = arguments.run.estimates;
    const CheckedInstrument checked = openSoundInstrument(arguments.run.configFile, arguments.fieldRadius);
    tellOptions(estimates, *checked.instrument);
    const QByteArray bytes = readInput(arguments.file);
    const QDomDocument document =
        openConfigured(bytes, arguments.file, *checked.instrument, {estimates, arguments.fieldRadius, true});
    const QByteArray text = exporters().at(arguments.format)(tableOf(document, arguments.file, *checked.instrument));
    if (arguments.output.empty()) {
        std::cout.write(text.constData(), text.size());
    } else {
        refuseIfRead(arguments.output, documentsRead(arguments.file, bytes, *checked.config));
        writeFile(arguments.output, text);
    }
    return kGood;
}

} // namespace

Command addExportCommand(CLI::App& program) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App* const command = program.add_subcommand("export", "write the targets in formats of other tools");
    command->add_option("FILE", arguments->file, "field definition; - is the standard input")
        ->required()
        ->type_name("");
    command->add_option("--format", arguments->format, "format to write")
        ->required()
        ->check(CLI::IsMember({"ds9", "votable", "csv", "json"}))
        ->type_name("ds9|votable|csv|json");
    command->add_option("-o,--output", arguments->output, "file to write to; default: the standard output")
        ->type_name("FILE");
    addFieldRadiusOption(*command, arguments->fieldRadius);
    addRunOptions(*command, arguments->run);
    return {command, [arguments] { return exportTargets(*arguments); }};
}

} // namespace pos
