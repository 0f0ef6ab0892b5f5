/**
 * @file
 * The elements and attributes that a field definition may have, as its schema has them.
 */
#ifndef POS_DOCUMENTVOCABULARY_H
#define POS_DOCUMENTVOCABULARY_H

#include <QString>
#include <map>
#include <vector>

namespace pos {

/** An attribute and what its schema says about it. Each text but the name may be empty. */
struct KnownAttribute {
    QString name;
    QString unit;
    QString absent;  ///< the value that holds where the attribute is absent
    QString run;     ///< what a run does with it
    QString meaning; ///< sentences

    /** Whether what a run does depends on the value. */
    bool isRead() const {
        return !run.isEmpty() && run != QLatin1String("kept") && !run.startsWith(QLatin1String("written"));
    }
};

/** An element: what all elements of its name may have. */
struct KnownElement {
    std::map<QString, KnownAttribute> attributes; ///< by name
    std::map<QString, bool> children;             ///< by name: whether several may stand side by side
    bool isOpen = false;                          ///< whether anything may stand in it
    bool isRead = false; ///< whether what a run does depends on an attribute of it, or of an element that it may hold
};

/** What a field definition may hold, an output of a run included. */
struct DocumentVocabulary {
    KnownElement document;                    ///< a document element of any name
    std::map<QString, KnownElement> elements; ///< by name

    /** The element of a name; null where there is none. */
    const KnownElement* find(const QString& element) const;

    /** The elements on which a run reads an attribute, in the order of their names. */
    std::vector<QString> elementsThatRead(const QString& attribute) const;
};

/** The vocabulary of the schema that the program is compiled with, read once. */
const DocumentVocabulary& documentVocabulary();

} // namespace pos

#endif
