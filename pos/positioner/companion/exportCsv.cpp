#include "exportedTargets.h"

#include <QRegularExpression>

namespace pos {

namespace {

/** A text as RFC 4180 writes it: in quotes where it holds what means something; blanks at its ends are kept by them. */
QString cell(const QString& text) {
    static const QRegularExpression special(R"([,"\r\n]|^\s|\s$)");
    return text.contains(special) ? '"' + QString(text).replace('"', "\"\"") + '"' : text;
}

QString columnTitle(const ExportColumn& column) {
    return column.unit.isEmpty() ? column.name : column.name + " [" + column.unit + ']';
}

} // namespace

QByteArray exportCsv(const ExportedTargets& table) {
    QByteArray text;
    const auto addLine = [&](const auto& list, const auto& textOf) {
        bool isFirst = true;
        for (const auto& item : list) {
            text += (isFirst ? "" : ",") + cell(textOf(item)).toUtf8();
            isFirst = false;
        }
        text += "\r\n";
    };
    addLine(table.columns, columnTitle);
    for (const ExportedTarget& target : table.targets) {
        addLine(target.values, [](const QString& value) { return value; });
    }
    return text;
}

} // namespace pos
