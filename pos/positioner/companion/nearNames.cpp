#include "nearNames.h"

#include <algorithm>
#include <vector>

namespace pos {

namespace {

/** Names that are longer than this are not compared letter by letter. No known name is half as long. */
constexpr int kLongestName = 64;
/** What begins or ends another name must have so many letters: fewer are found in many words. */
constexpr int kShortestPart = 4;
/** What begins a description must have so many letters: "a", "the" and "name" do not tell which is meant. */
constexpr int kShortestMeaning = 5;

/** Units that people write, up to "kelvin". */
constexpr int kLongestUnit = 6;
/** The unit of the known names is "d"; longer words behind a separator tell names apart. */
constexpr int kLongestKnownUnit = 1;

const QString kTargetPrefix = QStringLiteral("targ");

bool isSeparator(QChar character) {
    return character == '_' || character == '-' || character == '.';
}

/** A folded name without the prefix of a target's attributes. */
QString stemOf(const QString& folded) {
    const bool hasPrefix = folded.startsWith(kTargetPrefix) && folded.size() > kTargetPrefix.size();
    return hasPrefix ? folded.mid(kTargetPrefix.size()) : folded;
}

/** A name up to its last separator, folded; the whole name where it has none, or more letters than so many behind it.
 */
QString withoutUnit(const QString& name, int longestUnit) {
    const auto separator = std::find_if(name.crbegin(), name.crend(), isSeparator);
    const auto unit = static_cast<int>(std::distance(name.crbegin(), separator));
    const bool hasUnit = unit + 1 < name.size() && unit <= longestUnit;
    return foldedName(hasUnit ? name.left(name.size() - unit - 1) : name);
}

/**
 * The least number of letters to change, add, remove, or exchange with the next one, that makes one word another
 * (optimal string alignment distance).
 */
int slipsBetween(const QString& a, const QString& b) {
    std::vector<int> beforeLast;
    std::vector<int> last(static_cast<std::size_t>(b.size()) + 1);
    for (std::size_t j = 0; j < last.size(); ++j) {
        last[j] = static_cast<int>(j);
    }
    for (int i = 1; i <= a.size(); ++i) {
        std::vector<int> current(last.size(), i);
        for (int j = 1; j <= b.size(); ++j) {
            const auto k = static_cast<std::size_t>(j);
            const int changed = last[k - 1] + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            current[k] = std::min({changed, last[k] + 1, current[k - 1] + 1});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1)) {
                current[k] = std::min(current[k], beforeLast[k - 2] + 1);
            }
        }
        beforeLast = std::move(last);
        last = std::move(current);
    }
    return last.back();
}

/** How many slips a word may have and still be known: with more, short words would turn into one another. */
int slipsAllowed(int length) {
    return length >= 8 ? 2 : length >= 3 ? 1 : 0;
}

/** Whether two words of the same letters differ in the order of two neighbours. */
bool isExchanged(const QString& a, const QString& b) {
    return a.size() == b.size() && slipsBetween(a, b) == 1 && std::is_permutation(a.begin(), a.end(), b.begin());
}

bool isSlip(const QString& word, const QString& known) {
    const int allowed = slipsAllowed(known.size());
    if (std::abs(word.size() - known.size()) > allowed) {
        return false;
    }
    return slipsBetween(word, known) <= allowed || isExchanged(word, known);
}

bool isPart(const QString& part, const QString& whole) {
    return part.size() < whole.size() && (whole.startsWith(part) || whole.endsWith(part));
}

} // namespace

QString foldedName(const QString& name) {
    QString folded;
    folded.reserve(name.size());
    for (const QChar character : name) {
        if (!isSeparator(character)) {
            folded += character.toLower();
        }
    }
    return folded;
}

bool isSameWord(const QString& name, const QString& known) {
    const QString stem = stemOf(foldedName(name));
    const QString bareStem = stemOf(withoutUnit(name, kLongestUnit));
    const QString knownStem = stemOf(foldedName(known));
    const QString bareKnownStem = stemOf(withoutUnit(known, kLongestKnownUnit));
    return stem == knownStem || stem == bareKnownStem || bareStem == knownStem || bareStem == bareKnownStem;
}

bool isSimilar(const QString& name, const QString& known) {
    if (name.size() > kLongestName) {
        return false;
    }
    QString word = foldedName(name);
    QString knownWord = foldedName(known);
    int shortestPart = kShortestPart;
    if (word.startsWith(kTargetPrefix) && knownWord.startsWith(kTargetPrefix)) {
        // What many names share says nothing.
        word = stemOf(word);
        knownWord = stemOf(knownWord);
        shortestPart = 2;
    }
    const bool isOnePart = isPart(word, knownWord) || isPart(knownWord, word);
    return isSlip(word, knownWord) || (isOnePart && std::min(word.size(), knownWord.size()) >= shortestPart);
}

bool namesMeaning(const QString& name, const QString& meaning) {
    const QString word = stemOf(foldedName(name));
    // Blanks are fewer than letters.
    return word.size() >= kShortestMeaning && foldedName(meaning.left(2 * word.size())).remove(' ').startsWith(word);
}

} // namespace pos
