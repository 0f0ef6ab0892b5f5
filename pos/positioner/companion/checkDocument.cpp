#include "checkDocument.h"

#include "AppliedFixes.h"
#include "Field.h"
#include "Instrument.h"
#include "LimitsCalc.h"
#include "ReadDocument.h"
#include "RunMessages.h"
#include "configureDocument.h"
#include "consequences.h"
#include "pointDocument.h"
#include "rules.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

// With no more than this, the output is known to be within all limits without having been made.
constexpr int kPlainSize = 1024 * 1024; ///< bytes
constexpr std::size_t kPlainAttributes = 200;
constexpr int kPlainDepth = 240;

bool isPlain(const SourceElement& element, int depth) {
    return element.attributes.size() <= kPlainAttributes && depth <= kPlainDepth &&
           std::all_of(element.children.begin(), element.children.end(),
                       [depth](const auto& child) { return isPlain(*child, depth + 1); });
}

/** The message of the run's failure on a document, which it changes; nothing where it succeeds or cannot begin. */
std::optional<std::string> failureOfRun(CheckedDocument& document, QDomDocument tree) {
    if (!document.options.isInstrumentSound) {
        return std::nullopt;
    }
    try {
        requireDataModelVersion(tree);
        const PlacedDocument placed = placeDocument(document.instrument, tree, document.options.estimates);
        document.pointing = placed.veko.focalPlane;
        document.pointed = document.pointing->conditions();
        if (document.text.utf8().size() > kPlainSize || !isPlain(document.root, 1)) {
            saveTargets(placed);
            static_cast<void>(serialiseXml(tree));
        }
    } catch (const std::exception& error) {
        return error.what();
    }
    return std::nullopt;
}

void applyRules(const CheckedDocument& document, Problems& problems) {
    for (const auto* group :
         {&rulesOfTheRun(), &rulesOfNames(), &rulesOfValues(), &rulesOfPlaces(), &rulesOfPointing()}) {
        for (const RuleEntry& entry : *group) {
            entry.find(entry.rule, document, problems);
        }
    }
    const auto tellsFailure = [&](const Problem& problem) {
        return problem.severity == Severity::Error && problem.message.find(*document.failure) != std::string::npos;
    };
    if (document.failure && std::none_of(problems.all().begin(), problems.all().end(), tellsFailure)) {
        problems.add(kRunFails, document.root.namePlace, *document.failure, whatToDo(*document.failure));
    }
}

/** Reads the bundle and the telescope, if they have not been read and can be. */
void readInstrument(Instrument& instrument) {
    if (instrument.fibres() != nullptr) {
        return;
    }
    try {
        static_cast<void>(instrument.pointedVeko(Field({}), {}));
        static_cast<void>(instrument.limits(0.0));
    } catch (const std::exception&) {
        // The run on a document will fail with the same.
    }
}

/** Checks what could be read of a document. */
void checkTree(const ReadDocument& read, Instrument& instrument, const CheckOptions& options, Problems& problems) {
    CheckedDocument document{read.text, *read.root, options, instrument};
    if (options.isInstrumentSound) {
        readInstrument(instrument);
    }
    findParts(document);
    if (!read.fault) {
        document.failure = failureOfRun(document, read.parsed.document.cloneNode().toDocument());
    }
    pointDocument(document);
    applyRules(document, problems);
    read.removeUncertain(problems.all());
    removeConsequences(problems.all(), document);
}

/** Finds every problem of a document, those too that are gone once others are mended. */
std::vector<Problem> problemsOf(const ReadDocument& read, Instrument& instrument, const CheckOptions& options) {
    Problems problems;
    if (read.root != nullptr) {
        checkTree(read, instrument, options, problems);
    }
    if (read.fault) {
        problems.add(kUnreadable, read.faultPlace(), read.faultMessage(), whatToDo(read.fault->what()));
    }
    return std::move(problems).sorted();
}

} // namespace

CheckResult checkDocument(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                          const CheckOptions& options) {
    const ReadDocument read = readDocument(bytes, name);
    std::vector<Problem> problems = problemsOf(read, instrument, options);
    const AppliedFixes fixes(read.text.utf8(), problems);
    if (fixes.changeText() && read.isDecoded) {
        removeWhatFixesMend(problems, fixes, problemsOf(readText(fixes.text(), name), instrument, options));
    }
    return {read.text, std::move(problems)};
}

} // namespace pos
