#include "SourceText.h"

#include <algorithm>

namespace pos {

namespace {

/** Whether a byte is the first of a character. */
bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

} // namespace

SourceText::SourceText(QByteArray utf8) : utf8_(std::move(utf8)), lineBegins_{0} {
    for (int i = 0; i < utf8_.size(); ++i) {
        const bool isBeforeLf = utf8_.at(i) == '\r' && i + 1 < utf8_.size() && utf8_.at(i + 1) == '\n';
        if (utf8_.at(i) == '\n' || (utf8_.at(i) == '\r' && !isBeforeLf)) {
            lineBegins_.push_back(i + 1);
        }
    }
}

LineColumn SourceText::at(int offset) const {
    while (offset < utf8_.size() && !beginsCharacter(utf8_.at(offset)) && offset > 0) {
        --offset;
    }
    const auto next = std::upper_bound(lineBegins_.begin(), lineBegins_.end(), offset);
    const int lineBegin = *std::prev(next);
    if (countedTo_ < lineBegin || countedTo_ > offset) {
        countedTo_ = lineBegin;
        countedCharacters_ = 0;
    }
    countedCharacters_ +=
        static_cast<int>(std::count_if(utf8_.begin() + countedTo_, utf8_.begin() + offset, beginsCharacter));
    countedTo_ = offset;
    return {static_cast<int>(next - lineBegins_.begin()), countedCharacters_ + 1};
}

int SourceText::lineOf(int offset) const {
    return static_cast<int>(std::upper_bound(lineBegins_.begin(), lineBegins_.end(), offset) - lineBegins_.begin());
}

Span SourceText::line(int line) const {
    const auto index = static_cast<std::size_t>(line);
    const int begin = lineBegins_.at(index - 1);
    int end = index < lineBegins_.size() ? lineBegins_.at(index) : utf8_.size();
    while (end > begin && (utf8_.at(end - 1) == '\n' || utf8_.at(end - 1) == '\r')) {
        --end;
    }
    return {begin, end};
}

} // namespace pos
