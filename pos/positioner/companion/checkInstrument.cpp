#include "checkInstrument.h"

#include "Field.h"
#include "FocalPlaneMapXML.h"
#include "LimitsCalc.h"
#include "ReadDocument.h"
#include "RunMessages.h"
#include "Version.h"
#include "angles.h"
#include "fileAccess.h"
#include "instrumentFiles.h"
#include "readByItself.h"
#include "rules.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>

namespace pos {

namespace {

/** Takes nothing from a file. */
constexpr auto kUnread = static_cast<PosConfig::format>(-1);

/** A night like any other. */
constexpr Conditions kAnyConditions = {51544.5, 280.0, 770.0, 0.25};

/** Opens an instrument as each run does, before it has looked at the field definition. */
void openAsTheRun(const std::string& configFile, CheckedInstrument& checked) {
    checked.config = std::make_unique<PosConfig>(configFile.c_str(), PosConfig::XML);
    checked.instrument = std::make_unique<Instrument>(*checked.config);
    static_cast<void>(PosConfig("configure_version", configure_version, configFile.c_str(), PosConfig::XML));
    static_cast<void>(checked.config->get<double>("default_epoch"));
    checked.instrument->pointedVeko(Field(Astrometric{}), kAnyConditions);
    static_cast<void>(checked.instrument->limits(0.0));
}

/** Checks the documents of one instrument. */
class DocumentsCheck {
public:
    DocumentsCheck(const PosConfig& config, double plateRadius) : facts_{config, "", {}, {}, plateRadius, {}} {}

    /**
     * Checks the configuration and the files that it names.
     *
     * @param failure why every run fails, if it does
     * @param isConfigRead whether the run can read the configuration
     */
    std::vector<CheckedFile> check(const std::optional<std::string>& failure, bool isConfigRead) {
        unreadableConfig_ = isConfigRead ? std::nullopt : failure;
        std::vector<CheckedFile> files;
        const std::string& configFile = facts_.configuration.name();
        files.push_back({configFile, checkPart(InstrumentPart::Configuration, configFile)});
        std::set<std::pair<std::filesystem::path, std::string>> checked; // Several keys may name one file.
        for (const auto& [part, name] : std::vector(facts_.files)) {
            const std::string file = facts_.configuration.filenameOf(name);
            if (isPlainFile(file) && checked.emplace(std::filesystem::canonical(file), factsOf(part).schema).second) {
                files.push_back({fileBeside(configFile, name), checkPart(part, file)});
            }
        }
        if (failure && !isTold(*failure, files)) {
            std::vector<Problem>& problems = files.front().result.problems;
            problems.insert(problems.begin(),
                            {&kInstrumentFails, Severity::Error, start_, *failure, whatToDo(*failure), {}});
        }
        return files;
    }

private:
    CheckResult checkPart(InstrumentPart part, const std::string& file) {
        Problems problems;
        const ReadDocument read = readPart(file);
        if (read.root != nullptr) {
            checkTree(part, read, problems);
        }
        if (read.fault) {
            addUnreadable(part, read, problems);
        }
        std::vector<Problem> sorted = std::move(problems).sorted();
        for (Problem& problem : sorted) {
            if (problem.severity == Severity::Error && !factsOf(part).isReadByRun) {
                problem.severity = Severity::Warning;
            }
        }
        return {read.text, std::move(sorted)};
    }

    /** Reads a document; one that is too large has nothing but a fault. */
    static ReadDocument readPart(const std::string& file) {
        try {
            return readDocument(readFile(file).value_or(QByteArray()), file);
        } catch (const std::runtime_error& error) {
            return {SourceText({}), {}, UnreadableXml(error.what(), 0), false, nullptr};
        }
    }

    void addUnreadable(InstrumentPart part, const ReadDocument& read, Problems& problems) {
        const bool isConfig = part == InstrumentPart::Configuration;
        // The configuration store has a reader of its own.
        const bool isOwnMessage = !isConfig || !unreadableConfig_ || *unreadableConfig_ == read.fault->what();
        problems.add(kInstrumentUnreadable, isConfig && !unreadableConfig_ ? Severity::Warning : Severity::Error,
                     read.faultPlace(),
                     read.faultMessage() + (isOwnMessage ? "" : "; the run says: " + *unreadableConfig_),
                     whatToDo(read.fault->what()));
    }

    void checkTree(InstrumentPart part, const ReadDocument& read, Problems& problems) {
        InstrumentDocument document{
            part, read.text, *read.root, vocabularyOf(factsOf(part).schema), factsOf(part).rootName, facts_};
        findParts(document);
        takeFacts(document, read.parsed.document);
        for (const InstrumentRuleEntry& entry : rulesOfTheInstrument()) {
            entry.find(entry.rule, document, problems);
        }
        read.removeUncertain(problems.all());
    }

    void takeFacts(const InstrumentDocument& document, const QDomDocument& tree) {
        if (document.part == InstrumentPart::Configuration) {
            start_ = document.root.namePlace;
            facts_.version = document.root.node.attribute(attr::datamver).toStdString();
            for (const auto& [part, value] : filesNamed(document)) {
                facts_.files.emplace_back(part, value->text->toStdString());
            }
        } else if (document.part == InstrumentPart::FocalPlaneMap) {
            failureOf([&] { facts_.optics = createOpticsXML(tree); });
            failureOf([&] { facts_.geometry = createPlateGeometryXML(tree, VEKO); });
        }
    }

    static bool isTold(const std::string& failure, const std::vector<CheckedFile>& files) {
        const auto tells = [&](const Problem& problem) {
            return problem.severity == Severity::Error && problem.message.find(failure) != std::string::npos;
        };
        return std::any_of(files.begin(), files.end(), [&](const CheckedFile& file) {
            return std::any_of(file.result.problems.begin(), file.result.problems.end(), tells);
        });
    }

    InstrumentFacts facts_;
    std::optional<std::string> unreadableConfig_; ///< why the run cannot read the configuration
    Span start_{0, 1};                            ///< of the configuration
};

} // namespace

CheckedInstrument checkInstrument(const std::string& configFile, double fieldRadius) {
    CheckedInstrument checked;
    if (!isPlainFile(configFile)) {
        checked.config =
            std::make_unique<PosConfig>("configure_version", configure_version, configFile.c_str(), PosConfig::XML);
        checked.instrument = std::make_unique<Instrument>(*checked.config);
        return checked;
    }
    // Stands in for a configuration that cannot be read, and throws where the file cannot be opened.
    checked.config = std::make_unique<PosConfig>(configFile.c_str(), kUnread);
    const std::optional<std::string> failure = failureOf([&] { openAsTheRun(configFile, checked); });
    const bool isConfigRead = checked.instrument != nullptr;
    if (!isConfigRead) {
        checked.instrument = std::make_unique<Instrument>(*checked.config);
    }
    checked.isSound = !failure;
    checked.files =
        DocumentsCheck(*checked.config, std::max(1.0, radiansToDegrees(fieldRadius))).check(failure, isConfigRead);
    return checked;
}

} // namespace pos
