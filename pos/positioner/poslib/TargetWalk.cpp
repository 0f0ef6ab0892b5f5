#include "TargetWalk.h"

#include "xmlKeywords.h"

namespace pos {

TargetWalk::TargetWalk(const QDomElement& field) : pending_(field.firstChildElement()) {}

TargetWalk::Step TargetWalk::next() {
    while (!pending_.isNull()) {
        examined_ = pending_;
        parent_ = examined_.parentNode().toElement();
        if (examined_.tagName() == tag::group) {
            pending_ = examined_.firstChildElement();
            ++depth_;
            return Step::GroupEntered;
        }
        pending_ = examined_.nextSiblingElement();
        if (examined_.tagName() == tag::target) {
            return Step::Target;
        }
    }
    if (depth_ == 0) {
        return Step::End;
    }
    --depth_;
    pending_ = parent_.nextSiblingElement();
    parent_ = parent_.parentNode().toElement();
    return Step::LevelLeft;
}

} // namespace pos
