#include "checkCommand.h"

#include "OutputFile.h"
#include "Progress.h"
#include "angles.h"
#include "catalogueJson.h"
#include "checkInstrument.h"
#include "fileAccess.h"
#include "fixes.h"
#include "problemJson.h"
#include "problemSarif.h"
#include "problemText.h"
#include "rules.h"
#include "sharedOptions.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace pos {

namespace {

/** What the arguments ask for. */
struct CheckArguments {
    std::vector<std::string> files;
    RunOptions run;
    double fieldRadius = CheckOptions{}.fieldRadius; ///< radians
    std::string format = "text";
    std::string colour = "auto";
    std::string explain;
    bool list = false;
    bool strict = false;
    bool fix = false;
    bool diff = false;
};

int list(const std::string& format) {
    if (format == "json") {
        std::cout << catalogueJson(allRules());
        return kGood;
    }
    for (const Rule* rule : allRules()) {
        std::cout << rule->code << "  " << severityWord(rule->severity)
                  << std::string(9 - std::string(severityWord(rule->severity)).size(), ' ') << rule->title << '\n';
    }
    return kGood;
}

int explain(const std::string& code, const std::string& format) {
    const std::vector<const Rule*> rules = allRules();
    const auto found = std::find_if(rules.begin(), rules.end(), [&](const Rule* rule) { return rule->code == code; });
    if (found == rules.end()) {
        std::cerr << "There is no rule " << code << "; veko check --list names all" << std::endl;
        return kTrouble;
    }
    const Rule& rule = **found;
    if (format == "json") {
        std::cout << catalogueJson({&rule});
        return kGood;
    }
    std::cout << rule.code << " (" << severityWord(rule.severity) << "): " << rule.title << "\n\n"
              << rule.explanation << '\n';
    if (*rule.wrong != '\0') {
        std::cout << "\nWrong:\n    " << rule.wrong << "\nRight:\n    " << rule.right << '\n';
    }
    return kGood;
}

/** The bytes of a file, or of the standard input for "-". @throw std::runtime_error where they cannot be had */
QByteArray bytesOf(const std::string& name, Progress& progress) {
    if (name == "-") {
        std::string all;
        // Someone may be typing it on the terminal.
        progress.interrupt([&] { all.assign(std::istreambuf_iterator<char>(std::cin), {}); });
        return QByteArray::fromStdString(all);
    }
    return loadFile(name);
}

/** Tells on the error stream what has been mended, a line a fix. */
void tellMendings(const std::string& name, const std::vector<Mending>& mendings) {
    for (const auto& [place, fix] : mendings) {
        std::cerr << harmless(name) << ':' << place.line << ':' << place.column
                  << ": mended: " << harmless(fix.before.toStdString()) << " -> " << harmless(fix.after.toStdString())
                  << " [" << fix.rule->code << "]\n";
    }
}

/** Shows what would be mended, and tells on the error stream where problems are and nothing would. */
void showDiff(const std::string& name, const QByteArray& bytes, const CheckResult& result,
              const std::optional<MendedDocument>& mended) {
    if (mended) {
        const QByteArray shown = unifiedDiff(bytes, mended->bytes, name);
        std::cout.write(shown.constData(), shown.size());
    } else if (countOf(Severity::Error, result.problems) + countOf(Severity::Warning, result.problems) > 0) {
        std::cerr << harmless(name) << " has problems, and none can be mended for certain" << std::endl;
    }
}

/** Checks a file. With --fix it is mended, and what is left is told; with --diff its mended form is shown. */
CheckResult checkFile(const std::string& name, const CheckArguments& arguments, Instrument& instrument,
                      const CheckOptions& options, Progress& progress) {
    const QByteArray bytes = bytesOf(name, progress);
    CheckResult result = checkDocument(bytes, name, instrument, options);
    if (!arguments.fix && !arguments.diff) {
        return result;
    }
    const std::optional<MendedDocument> mended = mendedDocument(bytes, result, name, instrument, options);
    if (arguments.diff) {
        progress.interrupt([&] { showDiff(name, bytes, result, mended); });
    }
    if (arguments.diff || !mended) {
        return result;
    }
    writeFile(name, mended->bytes);
    progress.interrupt([&] { tellMendings(name, mended->mendings); });
    return checkDocument(mended->bytes, name, instrument, options);
}

/** A file that cannot be checked. */
CheckedFile unchecked(const std::string& name, const std::string& trouble) {
    return {name, {SourceText({}), {}}, trouble};
}

/** Checks field definitions, and tells on the error stream which cannot be checked. */
void checkFiles(const CheckArguments& arguments, Instrument& instrument, const CheckOptions& options,
                std::vector<CheckedFile>& files) {
    Progress progress(arguments.files.size());
    for (const std::string& name : arguments.files) {
        progress.next();
        try {
            files.push_back({name, checkFile(name, arguments, instrument, options, progress)});
        } catch (const std::runtime_error& error) {
            progress.interrupt([&] { std::cerr << error.what() << std::endl; });
            files.push_back(unchecked(name, error.what()));
        }
    }
}

/** Opens the instrument. @param files where its documents are added to; where it cannot be opened, the configuration */
std::optional<CheckedInstrument> openInstrument(const CheckArguments& arguments, std::vector<CheckedFile>& files) {
    try {
        CheckedInstrument instrument = checkInstrument(arguments.run.configFile, arguments.fieldRadius);
        files = instrument.files;
        return instrument;
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << std::endl;
        files.push_back(unchecked(arguments.run.configFile, error.what()));
        return std::nullopt;
    }
}

/** Checks the instrument and all field definitions. */
std::vector<CheckedFile> checkAll(const CheckArguments& arguments) {
    std::vector<CheckedFile> files;
    if (const std::optional<CheckedInstrument> instrument = openInstrument(arguments, files)) {
        const CheckOptions options{arguments.run.estimates, arguments.fieldRadius, instrument->isSound};
        tellOptions(options.estimates, *instrument->instrument);
        checkFiles(arguments, *instrument->instrument, options, files);
    }
    return files;
}

bool isChecked(const CheckedFile& file) {
    return file.trouble.empty();
}

std::ptrdiff_t count(const std::vector<CheckedFile>& files, Severity severity) {
    std::ptrdiff_t number = 0;
    for (const CheckedFile& file : files) {
        number += countOf(severity, file.result.problems);
    }
    return number;
}

std::string plural(std::ptrdiff_t number, const std::string& noun) {
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

void printText(const std::vector<CheckedFile>& files, const TextStyle& style) {
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            std::cout << problemText(problem, file.result.text, file.name, style) << '\n';
        }
    }
    std::cout << plural(std::count_if(files.begin(), files.end(), isChecked), "file") << ": "
              << plural(count(files, Severity::Error), "error") << ", "
              << plural(count(files, Severity::Warning), "warning") << '\n';
}

int check(const CheckArguments& arguments) {
    if (arguments.list) {
        return list(arguments.format);
    }
    if (!arguments.explain.empty()) {
        return explain(arguments.explain, arguments.format);
    }
    const std::vector<CheckedFile> files = checkAll(arguments);
    const bool isTrouble = !std::all_of(files.begin(), files.end(), isChecked);
    if (arguments.diff) {
        return isTrouble ? kTrouble : kGood;
    }
    if (arguments.format == "json") {
        std::cout << problemJson(files);
    } else if (arguments.format == "sarif") {
        std::cout << problemSarif(files);
    } else {
        printText(files, {terminalWidth(), useColour(arguments.colour)});
    }
    const bool isBad = count(files, Severity::Error) > 0 || (arguments.strict && count(files, Severity::Warning) > 0);
    return isTrouble ? kTrouble : isBad ? kBad : kGood;
}

} // namespace

Command addCheckCommand(CLI::App& program) {
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command = program.add_subcommand("check", "find every problem of field definitions");
    CLI::Option* const file =
        command->add_option("FILE", arguments->files, "field definitions; - is the standard input")->type_name("");
    addRunOptions(*command, arguments->run);
    addFieldRadiusOption(*command, arguments->fieldRadius);
    command->add_option("--format", arguments->format, "form of what is found")
        ->check(CLI::IsMember({"text", "json", "sarif"}))
        ->type_name("text|json|sarif")
        ->capture_default_str();
    addColourOption(*command, arguments->colour);
    command->add_flag("--strict", arguments->strict, "count warnings as errors");
    CLI::Option* const fix = command->add_flag("--fix", arguments->fix, "mend in place what can be mended for certain");
    command->add_flag("--diff", arguments->diff, "show what --fix would change")->excludes(fix);
    CLI::Option* const listing = command->add_flag("--list", arguments->list, "list every rule")->excludes(file);
    command->add_option("--explain", arguments->explain, "explain a rule")
        ->type_name("CODE")
        ->excludes(file)
        ->excludes(listing);
    command->callback([arguments] {
        const bool isAboutRules = arguments->list || !arguments->explain.empty();
        if (arguments->files.empty() && !isAboutRules) {
            throw CLI::RequiredError("FILE");
        }
        const std::vector<std::string>& files = arguments->files;
        if (arguments->fix && std::find(files.begin(), files.end(), "-") != files.end()) {
            throw CLI::ValidationError("--fix", "the standard input cannot be mended in place");
        }
        if (isAboutRules && arguments->format == "sarif") {
            throw CLI::ValidationError("--format", "the rules are printed as text or json");
        }
    });
    return {command, [arguments] { return check(*arguments); }};
}

} // namespace pos
