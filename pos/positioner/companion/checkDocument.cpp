#include "checkDocument.h"

#include "AppliedFixes.h"
#include "Field.h"
#include "Instrument.h"
#include "LimitsCalc.h"
#include "MalformedXml.h"
#include "RunMessages.h"
#include "configureDocument.h"
#include "consequences.h"
#include "pointDocument.h"
#include "rules.h"
#include "xmlEncoding.h"
#include "xmlParse.h"
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

/** A document that cannot be read, told where reading stopped, at a whole character. */
void addUnreadable(Problems& problems, const QByteArray& utf8, const UnreadableXml& error) {
    const auto isInCharacter = [&](int byte) { return byte < utf8.size() && (utf8.at(byte) & 0xC0) == 0x80; };
    const int begin = std::min(error.offset(), utf8.size());
    int end = begin + 1;
    while (isInCharacter(end)) {
        ++end;
    }
    const std::string message = error.what();
    problems.add(kUnreadable, {begin, end}, message + (error.reason().empty() ? "" : ": " + error.reason()),
                 whatToDo(message));
}

/** The message of the run's failure on a document, which it changes; nothing where it succeeds or cannot begin. */
std::optional<std::string> failureOf(CheckedDocument& document, QDomDocument tree) {
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

/**
 * Whether a problem may be none for what stands behind the place where reading stopped: where an open element lacks
 * something, or where its name may be meant for another. Nor is a value one in which it stopped.
 */
bool mayBeNone(const Problem& problem, const SourceElement& root, int end) {
    if (problem.rule != &kUnreadable && problem.place.begin <= end && end < problem.place.end) {
        return true;
    }
    for (const SourceElement* open = &root; open != nullptr && !open->isWhole;
         open = open->children.empty() ? nullptr : open->children.back().get()) {
        const bool isAtName = open->tag.begin <= problem.place.begin && problem.place.begin < open->namePlace.end;
        if (isAtName && problem.rule != &kUnreadable) {
            return true;
        }
    }
    return false;
}

/** Checks what could be read of a document. @param isReadable whether that is all of it */
void checkTree(const SourceText& text, const ParsedXml& parsed, bool isReadable, Instrument& instrument,
               const CheckOptions& options, Problems& problems) {
    const std::unique_ptr<SourceElement> root = locateElements(text.utf8(), parsed);
    CheckedDocument document{text, *root, options, instrument};
    if (options.isInstrumentSound) {
        readInstrument(instrument);
    }
    findParts(document);
    if (isReadable) {
        document.failure = failureOf(document, parsed.document.cloneNode().toDocument());
    }
    pointDocument(document);
    applyRules(document, problems);
    if (!isReadable) {
        const int end = problems.all().front().place.begin;
        std::erase_if(problems.all(), [&](const Problem& problem) { return mayBeNone(problem, *root, end); });
    }
    removeConsequences(problems.all(), document);
}

/** Finds every problem of a text, those that follow from others too. @param undecodable why it is not all decoded */
std::vector<Problem> problemsOf(const SourceText& text, const std::optional<UnreadableXml>& undecodable,
                                const std::string& name, Instrument& instrument, const CheckOptions& options) {
    Problems problems;
    ParsedXml parsed;
    try {
        if (undecodable) {
            throw UnreadableXml(*undecodable);
        }
        parsed = parseXml(text.utf8(), name);
    } catch (const UnreadableXml& error) {
        addUnreadable(problems, text.utf8(), error);
        parsed = parseXmlBeginning(text.utf8());
    }
    const bool isReadable = problems.all().empty();
    if (!parsed.document.documentElement().isNull()) {
        checkTree(text, parsed, isReadable, instrument, options, problems);
    }
    return std::move(problems).sorted();
}

} // namespace

CheckResult checkDocument(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                          const CheckOptions& options) {
    QByteArray utf8;
    std::optional<UnreadableXml> undecodable;
    try {
        utf8 = decodeXml(bytes, name);
    } catch (const UnreadableXml& error) {
        undecodable = error;
        utf8 = decodedForPeople(bytes);
    }
    SourceText text(utf8);
    std::vector<Problem> problems = problemsOf(text, undecodable, name, instrument, options);
    const AppliedFixes fixes(utf8, problems);
    if (fixes.changeText() && !undecodable) {
        removeWhatFixesMend(problems, fixes,
                            problemsOf(SourceText(fixes.text()), std::nullopt, name, instrument, options));
    }
    return {std::move(text), std::move(problems)};
}

} // namespace pos
