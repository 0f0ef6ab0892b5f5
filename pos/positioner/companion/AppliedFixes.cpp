#include "AppliedFixes.h"

#include <utility>

namespace pos {

namespace {

/** What is written in the place of what, by where it begins. */
std::map<int, std::pair<Span, QByteArray>> replacementsOf(const std::vector<Problem>& problems) {
    std::map<int, std::pair<Span, QByteArray>> replacements;
    int replaced = 0;
    for (const Problem& problem : problems) {
        if (problem.fix && problem.place.begin >= replaced) {
            for (const Span place : problem.fixedPlaces()) {
                replacements.try_emplace(place.begin, place, *problem.fix);
            }
            replaced = problem.place.end;
        }
    }
    return replacements;
}

} // namespace

AppliedFixes::AppliedFixes(const QByteArray& before, const std::vector<Problem>& problems) {
    int copied = 0;
    for (const auto& [begin, replacement] : replacementsOf(problems)) {
        const auto& [place, written] = replacement;
        text_ += before.mid(copied, begin - copied);
        replaced_[begin] = {place.end, text_.size(), text_.size() + written.size()};
        text_ += written;
        copied = place.end;
    }
    text_ += before.mid(copied);
    isChanged_ = text_ != before;
}

int AppliedFixes::placeOf(int offset) const {
    const auto next = replaced_.upper_bound(offset);
    if (next == replaced_.begin()) {
        return offset;
    }
    const Replaced& last = std::prev(next)->second;
    return offset < last.end ? last.beginAfter : offset - last.end + last.endAfter;
}

} // namespace pos
