/**
 * @file
 * A document of the instrument as the rules see it.
 */
#ifndef POS_INSTRUMENTDOCUMENT_H
#define POS_INSTRUMENTDOCUMENT_H

#include "Optics.h"
#include "PlateGeometry.h"
#include "SourceTree.h"
#include "Veko.h"
#include "documentVocabulary.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pos {

class PosConfig;

/** What a document of the instrument describes. */
enum class InstrumentPart { Configuration, FocalPlaneMap, Bundle, PlateA, PlateB };

/** What there is to know of a part before one reads its document. */
struct PartFacts {
    const char* key;      ///< with which the configuration names the file; empty for the configuration itself
    const char* schema;   ///< name of the schema that describes the document
    const char* rootName; ///< of the document element
    bool isReadByRun;     ///< whether a run reads the document
    PlateName plate;      ///< on whose axis its fibres count
};

const PartFacts& factsOf(InstrumentPart part);

/** What the documents of an instrument tell of one another. */
struct InstrumentFacts {
    const PosConfig& configuration;        ///< without any value where the run cannot read it
    std::string version;                   ///< data model version of the configuration; empty where it has none
    std::optional<Optics> optics;          ///< nothing where the map has none
    std::optional<PlateGeometry> geometry; ///< nothing where the map has none
    double plateRadius;                    ///< field angle up to which fibres may stand, degrees
    std::vector<std::pair<InstrumentPart, std::string>> files; ///< that the configuration names, as it writes them
};

/** A value that a document should or may hold: an attribute, or the text of an element of the configuration. */
struct InstrumentValue {
    const KnownAttribute* known;
    std::string key; ///< the attribute's name; of the configuration the names of elements with dots between
    std::optional<QString> text;
    Span place;                         ///< of the text; where there is none of the element that lacks it
    std::string lack;                   ///< what is missing, such as "telescope has no latitude"
    std::optional<std::string> refusal; ///< with which the run refuses the text, or that there is none
};

/** A fibre that can be read. */
struct PlacedFibre {
    const SourceElement* element = nullptr;
    SatelliteFibre<Veko::VekoCentre> fibre; ///< its centre is null
    PlateCoordinates place = {0.0, 0.0};
};

/** A document of the instrument, and what a run would take from it. */
struct InstrumentDocument {
    InstrumentPart part;
    const SourceText& text;
    const SourceElement& root;
    const DocumentVocabulary& vocabulary;
    const QString rootName; ///< the name that the vocabulary has for the document element
    const InstrumentFacts& facts;
    /** The element that the run reads: the document element, or in a map the one of the right name; null without. */
    const SourceElement* content = nullptr;
    std::vector<InstrumentValue> values = {};
    std::vector<PlacedFibre> fibres = {};

    /** The value of a key; null where the document has none. */
    const InstrumentValue* value(const std::string& key) const;
};

/** The first child element of a name; null where there is none. */
const SourceElement* firstChild(const SourceElement& element, const QString& name);

/** Finds what the run takes from a document, as the run finds it. */
void findParts(InstrumentDocument& document);

} // namespace pos

#endif
