/**
 * @file
 * A text with the fixes of its problems applied.
 */
#ifndef POS_APPLIEDFIXES_H
#define POS_APPLIEDFIXES_H

#include "Problem.h"

#include <QByteArray>
#include <map>
#include <vector>

namespace pos {

/** A fix that stands in its place. */
struct AppliedFix {
    const Rule* rule;
    Span place; ///< in the text before
    QByteArray before;
    QByteArray after;
};

/** A text in which each fix of its problems stands in its places, but for those that overlap one before. */
class AppliedFixes {
public:
    /**
     * @param before the text, UTF-8
     * @param problems in document order
     */
    AppliedFixes(const QByteArray& before, const std::vector<Problem>& problems);

    /** The text afterwards. */
    const QByteArray& text() const {
        return text_;
    }

    /** Whether the text is another one. */
    bool changeText() const {
        return isChanged_;
    }

    /** The fixes in document order. */
    const std::vector<AppliedFix>& all() const {
        return fixes_;
    }

    /** Where a byte of the text before stands afterwards; for one that was replaced, where its replacement begins. */
    int placeOf(int offset) const;

private:
    /** A stretch of the text before, and where its replacement begins afterwards. */
    struct Replaced {
        int end;
        int beginAfter;
        int endAfter;
    };

    QByteArray text_;
    bool isChanged_;
    std::vector<AppliedFix> fixes_;
    std::map<int, Replaced> replaced_; ///< by their beginnings
};

} // namespace pos

#endif
