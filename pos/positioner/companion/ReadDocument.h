/**
 * @file
 * A document as far as it can be read.
 */
#ifndef POS_READDOCUMENT_H
#define POS_READDOCUMENT_H

#include "MalformedXml.h"
#include "Problem.h"
#include "SourceText.h"
#include "SourceTree.h"
#include "xmlParse.h"

#include <QByteArray>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** A document as far as it can be read. */
struct ReadDocument {
    SourceText text;                     ///< decoded as far as it can be
    ParsedXml parsed;                    ///< up to the fault
    std::optional<UnreadableXml> fault;  ///< why it cannot be read to its end
    bool isDecoded = true;               ///< whether all its bytes are those of its encoding
    std::unique_ptr<SourceElement> root; ///< the document element; null where nothing of it can be read

    /** Where reading stopped, a whole character. Only where there is a fault. */
    Span faultPlace() const;
    /** Why reading stopped, with the reason that the reader of documents leaves out. Only where there is a fault. */
    std::string faultMessage() const;

    /**
     * Removes problems that may be none for what stands behind the fault: where an open element lacks something, or
     * where its name may be meant for another; and those of a value in which reading stopped.
     */
    void removeUncertain(std::vector<Problem>& problems) const;
};

/** Reads a document. @param name of the file, for messages */
ReadDocument readDocument(const QByteArray& bytes, const std::string& name);

/** Reads a document that is decoded. @param utf8 without a byte-order mark */
ReadDocument readText(const QByteArray& utf8, const std::string& name);

} // namespace pos

#endif
