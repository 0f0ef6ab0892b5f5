/**
 * @file
 * The walk over the targets of a field that every reader and writer of a field shares.
 */
#ifndef POS_TARGETWALK_H
#define POS_TARGETWALK_H

#include <QDomElement>

namespace pos {

/**
 * Visits the target elements of a field in document order, without recursion, entering its groups.
 *
 * The walk passes over elements other than "target" and "group" with all that they hold. An empty group ends the walk
 * of its own level: the walk goes on after the group's parent, so that targets behind an empty group are not visited.
 * The element of a Target step may be removed from its parent before the next step.
 */
class TargetWalk {
public:
    /** What a step of the walk came to. */
    enum class Step {
        Target,       ///< element() is a target
        GroupEntered, ///< the walk went down into a group
        LevelLeft,    ///< the walk climbed out of a level
        End           ///< all done
    };

    /** A walk that stands before the first child of a field, or at its end for a null element. */
    explicit TargetWalk(const QDomElement& field);

    /** Goes one step on; at the end every further step is End. */
    Step next();

    /** The target element, if the last step was Target. */
    QDomElement element() const {
        return examined_;
    }

private:
    QDomElement examined_;
    QDomElement parent_;  ///< of the element last examined
    QDomElement pending_; ///< to be examined next; null at the end of a level
    int depth_ = 0;       ///< groups entered less levels left
};

} // namespace pos

#endif
