#include "AppliedFixes.h"

#include <utility>

namespace pos {

AppliedFixes::AppliedFixes(const QByteArray& before, const std::vector<Problem>& problems) {
    std::map<int, std::pair<Span, QByteArray>> replacements; // by where they begin
    int replaced = 0;
    for (const Problem& problem : problems) {
        if (!problem.fix || problem.place.begin < replaced) {
            continue;
        }
        for (const Span place : problem.fixedPlaces()) {
            replacements.try_emplace(place.begin, place, *problem.fix);
        }
        replaced = problem.place.end;
        fixes_.push_back({problem.rule, problem.place,
                          before.mid(problem.place.begin, problem.place.end - problem.place.begin), *problem.fix});
    }
    int copied = 0;
    for (const auto& [begin, replacement] : replacements) {
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
