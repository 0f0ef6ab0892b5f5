#include "Version.h"
#include "exportedTargets.h"

#include <QStringList>

namespace pos {

namespace {

/** A text in one line: a region, and a comment, ends with its line. */
QString inOneLine(QString text) {
    for (QChar& character : text) {
        if (character.category() == QChar::Other_Control) {
            character = ' ';
        }
    }
    return text;
}

/** A text in delimiters that it does not hold; ds9 knows no escapes, so one that holds all gets ) for }. */
QString delimited(const QString& text) {
    const QString line = inOneLine(text);
    for (const QString delimiters : {"{}", "\"\"", "''"}) {
        if (!line.contains(delimiters.at(1))) {
            return delimiters.at(0) + line + delimiters.at(1);
        }
    }
    return '{' + QString(line).replace('}', ')') + '}';
}

QString colourOf(const QString& kind) {
    static const std::map<QString, QString> colours = {
        {"science", "cyan"},     {"sky", "orange"},         {"broken", "red"},
        {"disabled", "magenta"}, {kScienceTarget, "green"}, {kGuideStar, "yellow"},
    };
    const auto found = colours.find(kind);
    return found == colours.end() ? "white" : found->second;
}

QString shapeOf(const QString& kind) {
    return kind == kScienceTarget ? "cross" : kind == kGuideStar ? "diamond" : "x";
}

/** What a region tells of itself behind its place. */
QString properties(const ExportedTarget& target, const QString& kind, const QString& text, const QString& more = {}) {
    return " #" + more + " color=" + colourOf(kind) + " text=" + delimited(text) + " tag={field " +
           QString::number(target.field) + "} tag={" + kind + "}\n";
}

QString regionsOf(const ExportedTarget& target) {
    if (!target.place) {
        return "# " + inOneLine(target.name) + " has no place\n";
    }
    const QString place = target.place->ra + ',' + target.place->dec;
    QString lines;
    if (!target.fibreKind.isNull()) {
        lines += (target.fibreRadius.isNull() ? "point(" + place : "circle(" + place + ',' + target.fibreRadius + '"') +
                 ')' + properties(target, target.fibreKind, target.spaxel);
    }
    if (target.kind != kFibre) {
        lines +=
            "point(" + place + ')' + properties(target, target.kind, target.name, " point=" + shapeOf(target.kind));
    }
    return lines;
}

} // namespace

QByteArray exportDs9(const ExportedTargets& table) {
    QString text = "# Region file format: DS9 version 4.1\n"
                   "# Targets of " +
                   inOneLine(table.file) + ", by veko " + QString::fromStdString(configure_version) + '\n';
    text += "# Places: ICRS, at the date of the observation. Radius of a fibre: " + kFibreRadiusMeaning + ".\nicrs\n";
    for (const ExportedTarget& target : table.targets) {
        text += regionsOf(target);
    }
    return text.toUtf8();
}

} // namespace pos
