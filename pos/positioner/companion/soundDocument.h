/**
 * @file
 * Documents that can be shown: those that a run configures, or has configured.
 */
#ifndef POS_SOUNDDOCUMENT_H
#define POS_SOUNDDOCUMENT_H

#include "CheckedDocument.h"
#include "checkInstrument.h"

#include <QByteArray>
#include <QDomDocument>
#include <string>
#include <vector>

namespace pos {

/** A field definition, and what is wrong with it. */
struct SoundDocument {
    QDomDocument document;
    bool isConfigured; ///< whether it came with the targets of the fibres; if so, the problems are those of doing it
                       ///< again
    CheckedFile checked;
};

/** A document that was read. */
struct DocumentRead {
    std::string what;
    std::string name;   ///< of the file
    std::string sha256; ///< hexadecimal; empty for what can be read only once
};

/** The bytes of a file; "-" is the standard input. @throw std::runtime_error name + " could not be opened" */
QByteArray readInput(const std::string& name);

/**
 * Opens an instrument that runs can use.
 *
 * @throw std::runtime_error with each error and its place on a line of its own; what checkInstrument throws
 */
CheckedInstrument openSoundInstrument(const std::string& configFile, double fieldRadius);

/**
 * Reads and checks a document.
 *
 * @param bytes the whole document
 * @param name of the file, for messages
 * @throw std::runtime_error for one that is not configured and that the run refuses, with each error and its place on a
 *     line of its own; for one of another data model version
 */
SoundDocument openSoundDocument(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                                const CheckOptions& options);

/**
 * A document with the targets of the fibres: one that has them as it is, unchecked, any other as the run configures it.
 * Parameters and errors as openSoundDocument, and what configureDocument throws.
 */
QDomDocument openConfigured(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                            const CheckOptions& options);

/** The fields of a document. */
std::vector<QDomElement> fieldsOf(const QDomDocument& document);

/** A field definition with the documents of its instrument. */
std::vector<DocumentRead> documentsRead(const std::string& name, const QByteArray& bytes, const PosConfig& config);

/** Refuses an output that would replace one of them. @throw std::runtime_error */
void refuseIfRead(const std::string& output, const std::vector<DocumentRead>& documents);

} // namespace pos

#endif
