#include "problemText.h"

#include <QString>
#include <algorithm>
#include <clocale>
#include <cwchar>

namespace pos {

namespace {

constexpr std::size_t kNumberWidth = 5;
constexpr int kGutter = kNumberWidth + 3; // the line's number and " | "

struct Colours {
    const char* severity;
    const char* bold;
    const char* off;
};

Colours coloursOf(const Problem& problem, const TextStyle& style) {
    if (!style.colour) {
        return {"", "", ""};
    }
    const char* const severity = problem.severity == Severity::Error     ? "\x1b[1;31m"
                                 : problem.severity == Severity::Warning ? "\x1b[1;35m"
                                                                         : "\x1b[1;36m";
    return {severity, "\x1b[1m", "\x1b[0m"};
}

/** How many columns a character takes on a terminal: 0, 1 or 2. */
int columnsOf(char32_t character) {
    // The locale of the process stays what it is: only its table of characters is asked.
    static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = ::uselocale(utf8);
    const int columns = ::wcwidth(static_cast<wchar_t>(character));
    ::uselocale(before);
    return std::max(columns, 0);
}

/** Whether a terminal would obey a character, or show the text around it in another order. */
bool isControl(char32_t character) {
    return character < 0x20 || (character >= 0x7f && character < 0xa0) ||
           (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069) ||
           character == 0x200e || character == 0x200f || character == 0x2028 || character == 0x2029;
}

char32_t shown(char32_t character) {
    constexpr char32_t kReplacement = 0xfffd;
    return character == '\t' ? U' ' : isControl(character) ? kReplacement : character;
}

/** The characters of a stretch. */
std::u32string charactersOf(const SourceText& text, Span span) {
    return QString::fromUtf8(text.utf8().mid(span.begin, span.end - span.begin)).toStdU32String();
}

int columnsOf(const std::u32string& characters) {
    int columns = 0;
    for (const char32_t character : characters) {
        columns += columnsOf(character);
    }
    return columns;
}

std::string utf8Of(const std::u32string& characters) {
    return QString::fromStdU32String(characters).toStdString();
}

/** The line of a problem in three pieces, so cut that they fit. */
struct ShownLine {
    std::u32string before;
    std::u32string marked;
    std::u32string after;
};

ShownLine shownLine(const Problem& problem, const SourceText& text, Span line, int width) {
    const int begin = std::min(problem.place.begin, line.end);
    const int end = std::clamp(problem.place.end, begin, line.end);
    const int mostBytes = 8 * width; // more cannot be shown, of characters with marks upon them either
    ShownLine shownParts{charactersOf(text, {std::max(line.begin, begin - mostBytes), begin}),
                         charactersOf(text, {begin, std::min(end, begin + mostBytes)}),
                         charactersOf(text, {end, std::min(line.end, end + mostBytes)})};
    for (std::u32string* part : {&shownParts.before, &shownParts.marked, &shownParts.after}) {
        std::transform(part->begin(), part->end(), part->begin(), shown);
    }
    bool isCutBefore = begin - mostBytes > line.begin;
    // What stands before the place gives way first, down to a third; then what stands behind it.
    int columns = columnsOf(shownParts.marked) + std::min(columnsOf(shownParts.after), width / 3);
    std::size_t cut = 0;
    int before = columnsOf(shownParts.before);
    while (cut < shownParts.before.size() && before > std::max(width / 3, width - columns - 1)) {
        before -= columnsOf(shownParts.before.at(cut++));
    }
    isCutBefore = isCutBefore || cut > 0;
    shownParts.before.erase(0, cut);
    if (isCutBefore) {
        shownParts.before.insert(shownParts.before.begin(), U'…');
        ++before;
    }
    for (std::u32string* part : {&shownParts.marked, &shownParts.after}) {
        columns = before + columnsOf(*part);
        const bool isTooLong = columns > width;
        while (!part->empty() && columns > width - 1 && isTooLong) {
            columns -= columnsOf(part->back());
            part->pop_back();
        }
        if (isTooLong && part == &shownParts.after) {
            part->push_back(U'…');
        }
        before = columns;
    }
    return shownParts;
}

std::string padded(const std::string& text) {
    return std::string(kNumberWidth - std::min(kNumberWidth, text.size()), ' ') + text;
}

} // namespace

std::string harmless(const std::string& utf8) {
    std::u32string characters = QString::fromStdString(utf8).toStdU32String();
    std::transform(characters.begin(), characters.end(), characters.begin(),
                   [](char32_t character) { return character == U'\n' ? character : shown(character); });
    return utf8Of(characters);
}

std::string harmlessLine(const std::string& utf8) {
    std::u32string characters = QString::fromStdString(utf8).toStdU32String();
    std::transform(characters.begin(), characters.end(), characters.begin(), shown);
    return utf8Of(characters);
}

std::string problemText(const Problem& problem, const SourceText& text, const std::string& file,
                        const TextStyle& style) {
    const Colours colours = coloursOf(problem, style);
    const LineColumn place = text.at(std::min(problem.place.begin, text.utf8().size()));
    const ShownLine line = shownLine(problem, text, text.line(place.line), style.width - kGutter);
    const int underlined = std::max(columnsOf(line.marked), 1);

    std::string result = colours.bold + harmless(file) + ':' + std::to_string(place.line) + ':' +
                         std::to_string(place.column) + ": " + colours.severity + severityWord(problem.severity) +
                         ": " + colours.off + colours.bold + harmless(problem.message) + colours.off + " [" +
                         problem.rule->code + "]\n";
    result += padded(std::to_string(place.line)) + " | " + utf8Of(line.before) + colours.severity +
              utf8Of(line.marked) + colours.off + utf8Of(line.after) + '\n';
    result += padded("") + " | " + std::string(static_cast<std::size_t>(columnsOf(line.before)), ' ') +
              colours.severity + '^' + std::string(static_cast<std::size_t>(underlined - 1), '~') + colours.off + '\n';
    if (!problem.help.empty()) {
        result += colours.bold + std::string("help: ") + colours.off + harmless(problem.help) + '\n';
    }
    return result;
}

} // namespace pos
