#include "fixes.h"

#include "xmlEncoding.h"

#include <QList>
#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

/** A fix brings out another one at the most: a name that was mended is read, and its value then judged. */
constexpr int kMaxRounds = 8;

/** A stretch of lines, the last one behind it. */
struct Lines {
    int begin;
    int end;
};

/** The stretches of lines that differ, with three lines around them. */
std::vector<Lines> hunksOf(const QList<QByteArray>& before, const QList<QByteArray>& after) {
    constexpr int kContext = 3;
    std::vector<Lines> hunks;
    for (int i = 0; i < before.size(); ++i) {
        if (before.at(i) == after.at(i)) {
            continue;
        }
        const Lines lines{std::max(0, i - kContext), std::min(before.size(), i + kContext + 1)};
        if (!hunks.empty() && lines.begin <= hunks.back().end) {
            hunks.back().end = lines.end;
        } else {
            hunks.push_back(lines);
        }
    }
    return hunks;
}

/** The lines of a document with their ends. */
QList<QByteArray> linesOf(const QByteArray& text) {
    QList<QByteArray> lines = text.split('\n');
    for (int i = 0; i + 1 < lines.size(); ++i) {
        lines[i] += '\n';
    }
    if (lines.back().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

QByteArray diffLine(char mark, const QByteArray& line) {
    return mark + line + (line.endsWith('\n') ? "" : "\n\\ No newline at end of file\n");
}

} // namespace

std::optional<MendedDocument> mendedDocument(const QByteArray& bytes, const CheckResult& result,
                                             const std::string& name, Instrument& instrument,
                                             const CheckOptions& options) {
    MendedDocument mended;
    CheckResult present = result;
    for (int round = 0; round < kMaxRounds; ++round) {
        const AppliedFixes fixes(present.text.utf8(), present.problems);
        if (!fixes.changeText()) {
            return mended.mendings.empty() ? std::nullopt : std::optional(mended);
        }
        const std::optional<QByteArray> encoded = encodeXml(fixes.text(), bytes);
        if (!encoded) {
            throw std::runtime_error(name + " cannot be mended in its encoding");
        }
        mended.bytes = *encoded;
        for (const AppliedFix& fix : fixes.all()) {
            mended.mendings.push_back({present.text.at(fix.place.begin), fix});
        }
        present = checkDocument(mended.bytes, name, instrument, options);
    }
    return std::nullopt;
}

QByteArray unifiedDiff(const QByteArray& before, const QByteArray& after, const std::string& name) {
    const QList<QByteArray> oldLines = linesOf(before);
    const QList<QByteArray> newLines = linesOf(after);
    QByteArray diff = "--- " + QByteArray::fromStdString(name) + "\n+++ " + QByteArray::fromStdString(name) + '\n';
    for (const Lines& hunk : hunksOf(oldLines, newLines)) {
        const QByteArray range = QByteArray::number(hunk.begin + 1) + ',' + QByteArray::number(hunk.end - hunk.begin);
        diff += "@@ -" + range + " +" + range + " @@\n";
        for (int i = hunk.begin; i < hunk.end;) {
            if (oldLines.at(i) == newLines.at(i)) {
                diff += diffLine(' ', oldLines.at(i++));
                continue;
            }
            int changed = i;
            for (; changed < hunk.end && oldLines.at(changed) != newLines.at(changed); ++changed) {
                diff += diffLine('-', oldLines.at(changed));
            }
            for (; i < changed; ++i) {
                diff += diffLine('+', newLines.at(i));
            }
        }
    }
    return diff;
}

} // namespace pos
