/**
 * @file
 * Mending a document by the fixes of its problems.
 */
#ifndef POS_FIXES_H
#define POS_FIXES_H

#include "AppliedFixes.h"
#include "checkDocument.h"

#include <QByteArray>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** A fix that was applied, and where. */
struct Mending {
    LineColumn place; ///< before it was applied, and those with it
    AppliedFix fix;
};

/** A document with its fixes applied. */
struct MendedDocument {
    QByteArray bytes;
    std::vector<Mending> mendings; ///< in the order in which they were applied
};

/**
 * A document with its certain fixes applied, again and again until there are none. Everything else stays byte for byte.
 *
 * @param bytes the whole document
 * @param result what checkDocument found in it
 * @param name, instrument, options for checking it again
 * @return the mended document; nothing where there is nothing to mend
 * @throw std::runtime_error name + " cannot be mended in its encoding", where the encoding does not have the characters
 *     of a fix, or writes the same text in another way
 */
std::optional<MendedDocument> mendedDocument(const QByteArray& bytes, const CheckResult& result,
                                             const std::string& name, Instrument& instrument,
                                             const CheckOptions& options);

/** What differs between a document and its mended form, which has as many lines, as a unified diff. */
QByteArray unifiedDiff(const QByteArray& before, const QByteArray& after, const std::string& name);

} // namespace pos

#endif
