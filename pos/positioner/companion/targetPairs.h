/**
 * @file
 * The targets of a field beside those of another one.
 */
#ifndef POS_TARGETPAIRS_H
#define POS_TARGETPAIRS_H

#include <QDomElement>
#include <string>
#include <utility>
#include <vector>

namespace pos {

/** "fibre 304", else the target's name, else "configid 7", else "target". */
std::string nameOfTarget(const QDomElement& target);

/** A target of a field. */
struct PlacedTarget {
    QDomElement element;
    std::string groups; ///< where it stands in its field: "", "/group 2", "/group 2/group 1", …
};

/** Targets that belong together, in the order of the first document. */
struct TargetPairs {
    std::vector<std::pair<PlacedTarget, PlacedTarget>> pairs;
    std::vector<PlacedTarget> onlyInFirst;
    std::vector<PlacedTarget> onlyInSecond;
};

/**
 * Matches the targets of two fields, those of groups too: by the fibre; else those that no run has made by the
 * configid, else by the name. Those that have the same are taken in their order.
 */
TargetPairs matchTargets(const QDomElement& first, const QDomElement& second);

} // namespace pos

#endif
