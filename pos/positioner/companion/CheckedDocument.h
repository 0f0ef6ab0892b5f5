/**
 * @file
 * A field definition as the rules see it.
 */
#ifndef POS_CHECKEDDOCUMENT_H
#define POS_CHECKEDDOCUMENT_H

#include "CelestialPosition.h"
#include "Conditions.h"
#include "DocumentNumber.h"
#include "Estimates.h"
#include "FocalPlane.h"
#include "SourceTree.h"
#include "misusedNames.h"

#include <optional>
#include <string>
#include <vector>

namespace pos {

class Instrument;
class SourceText;

/** How far apart centre and targets of a field may be where nothing is given, degrees. */
inline constexpr double kFieldRadiusDeg = 1.0;

/** What a check takes for granted beside the document. */
struct CheckOptions {
    Estimates estimates = {};
    /** How far apart centre and targets of a field may be, radians. */
    double fieldRadius = degreesToRadians(kFieldRadiusDeg);
    bool isInstrumentSound = true; ///< without it each run fails for the instrument's sake, which is told elsewhere
};

/** One field of a document. */
struct CheckedField {
    const SourceElement* element;
    std::vector<const SourceElement*> targets;        ///< its own, in document order
    std::vector<const SourceElement*> groupedTargets; ///< those inside its groups
    const SourceElement* science = nullptr; ///< the target on which the run places the bundle, if there is one
    const SourceElement* guide = nullptr;   ///< the star that the run takes for the guide star
    // Places at the date of the run, where it is known. Nothing where they are missing or cannot be read.
    std::optional<Astrometric> centre = std::nullopt;
    std::optional<Astrometric> sciencePlace = std::nullopt;
    std::optional<Astrometric> guidePlace = std::nullopt;
};

/** Where a field stands at the date of the run. Angles are radians. */
struct FieldPointing {
    const CheckedField* field; ///< null for the pointing of a document without fields
    int number;                ///< 1 for the pointing that the run checks
    Astrometric centre;        ///< the first field's own centre; of the others the science target's place
    double zenithDistance;     ///< observed
    double hourAngle;          ///< observed
    double dec;                ///< observed
    double parallacticAngle;
};

/** A document and what the run would take from it. Every part may be missing. */
struct CheckedDocument {
    const SourceText& text;
    const SourceElement& root;
    const CheckOptions& options;
    Instrument& instrument;
    const SourceElement* observation = nullptr;
    const SourceElement* configure = nullptr;
    const SourceElement* conditions = nullptr;
    std::vector<CheckedField> fields = {};
    std::vector<MisusedName> misusedNames = {};         ///< names that are not known where they stand
    std::vector<const SourceElement*> targetsRead = {}; ///< all of the first field's walk, of other fields two
    std::vector<DocumentNumber> numbers = {};
    /** The date and weather of the run, after the solve for the hour angle; nothing where it does not come so far. */
    std::optional<Conditions> pointed = std::nullopt;
    std::optional<std::string> failure = std::nullopt; ///< why the run fails
    /** A pointing at the date and the position angle of the run; nothing where they cannot be found. */
    std::optional<FocalPlane> pointing = std::nullopt;
    std::optional<std::string> hourAngleFailure = std::nullopt; ///< why the hour angle leads to no date
    std::vector<FieldPointing> pointings = {};                  ///< of the fields that can be pointed at
};

/** Where a thing is missing: the `<` of the element that lacks it. */
inline Span opening(const SourceElement& element) {
    return {element.tag.begin, element.tag.begin + 1};
}

/** The value of an attribute, or the element that lacks it. */
inline Span valueOrOpening(const SourceElement& element, const QString& attribute) {
    const SourceAttribute* found = element.attribute(attribute);
    return found != nullptr ? found->valuePlace : opening(element);
}

/** Calls a function with every element at or below one, in document order. */
template <typename Visit> void visitElements(const SourceElement& element, const Visit& visit) {
    visit(element);
    for (const auto& child : element.children) {
        visitElements(*child, visit);
    }
}

/** Whether a run has made a target. */
bool isGenerated(const SourceElement& target);

/** Finds the parts of a document that the run reads, as the run finds them, and the names that it does not know. */
void findParts(CheckedDocument& document);

} // namespace pos

#endif
