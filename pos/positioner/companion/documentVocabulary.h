/**
 * @file
 * The elements and attributes that a document may have, as its schema has them.
 */
#ifndef POS_DOCUMENTVOCABULARY_H
#define POS_DOCUMENTVOCABULARY_H

#include "Quantity.h"

#include <QString>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** An attribute, or the text of an element, and what its schema says about it. Each text but the name may be empty. */
struct KnownAttribute {
    QString name;
    QString unit;
    QString absent;                              ///< the value that holds where the attribute is absent
    QString range;                               ///< its values, for people
    QString run;                                 ///< what a run does with it
    QString meaning;                             ///< sentences
    std::optional<Range> numbers = std::nullopt; ///< its values; nothing where it is no number

    /** Whether what a run does depends on the value. */
    bool isRead() const {
        return !run.isEmpty() && run != QLatin1String("kept") && !run.startsWith(QLatin1String("written")) &&
               !run.startsWith(QLatin1String("ignored"));
    }
};

/** An element: what all elements of its name may have. */
struct KnownElement {
    KnownAttribute value;                         ///< its own text; without a name where it has none
    std::map<QString, KnownAttribute> attributes; ///< by name
    std::map<QString, bool> children;             ///< by name: whether several may stand side by side
    bool isOpen = false;                          ///< whether anything may stand in it
    bool isRead = false; ///< whether what a run does depends on an attribute of it, or of an element that it may hold
};

/** What a document may hold; a field definition also what a run writes. */
struct DocumentVocabulary {
    KnownElement document;                    ///< a document element of any name, where it may have any
    std::map<QString, KnownElement> elements; ///< by name

    /** The element of a name; null where there is none. */
    const KnownElement* find(const QString& element) const;

    /** The elements on which a run reads an attribute, in the order of their names. */
    std::vector<QString> elementsThatRead(const QString& attribute) const;
};

/** The vocabulary of a schema that the program is compiled with, read once. @param schema its name, as "plate" */
const DocumentVocabulary& vocabularyOf(const std::string& schema);

/** The vocabulary of field definitions. */
const DocumentVocabulary& documentVocabulary();

} // namespace pos

#endif
