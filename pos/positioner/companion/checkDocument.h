/**
 * @file
 * Finding every problem of a field definition.
 */
#ifndef POS_CHECKDOCUMENT_H
#define POS_CHECKDOCUMENT_H

#include "CheckedDocument.h"
#include "Problem.h"
#include "SourceText.h"

#include <QByteArray>
#include <string>
#include <vector>

namespace pos {

/** What a check found. */
struct CheckResult {
    SourceText text;               ///< the document, decoded as far as it can be
    std::vector<Problem> problems; ///< in document order
};

/**
 * Finds every problem of a field definition. A document with which the run fails, for whatever reason but the writing
 * of its output, has at least one error, whose message holds the run's own; a document that it configures has none. Of
 * a document that cannot be read to its end, what stands before that place is checked as far as that needs no pointing.
 *
 * The optical model and the plate geometry of the process are then those of the instrument.
 *
 * @param bytes the whole document
 * @param name of the file, for messages
 */
CheckResult checkDocument(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                          const CheckOptions& options);

} // namespace pos

#endif
