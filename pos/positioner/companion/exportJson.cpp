#include "exportedTargets.h"

#include <QLocale>
#include <cmath>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

QByteArray jsonText(const QString& text) {
    return QByteArray::fromStdString(Json(text.toStdString()).dump());
}

/** A value with no more digits than give the same number again. */
QByteArray tokenOf(const ExportColumn& column, const QString& value) {
    if (value.isNull()) {
        return "null";
    }
    if (column.type == ColumnType::Integer) {
        return value.toUtf8();
    }
    const double number = value.toDouble();
    if (column.type == ColumnType::Text || !std::isfinite(number)) {
        return jsonText(value); // JSON knows no infinite numbers
    }
    return QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
}

Json columnJson(const ExportColumn& column) {
    return {{"name", column.name.toStdString()},
            {"unit", column.unit.isEmpty() ? Json() : Json(column.unit.toStdString())},
            {"description", column.description.toStdString()}};
}

QByteArray rowText(const ExportedTargets& table, const ExportedTarget& target) {
    QByteArray text;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const ExportColumn& column = table.columns.at(i);
        text += (i == 0 ? "" : ",") + jsonText(column.name) + ':' + tokenOf(column, target.values.at(i));
    }
    return '{' + text + '}';
}

} // namespace

QByteArray exportJson(const ExportedTargets& table) {
    Json frame = {{"version", 1},
                  {"file", table.file.toStdString()},
                  {"observation", table.observation.toStdString()},
                  {"epoch", table.epoch ? Json(*table.epoch) : Json()},
                  {"columns", Json::array()}};
    for (const ExportColumn& column : table.columns) {
        frame["columns"].push_back(columnJson(column));
    }
    QByteArray text = QByteArray::fromStdString(frame.dump());
    text.chop(1); // its closing brace: the targets would take more memory as JSON than as text
    text += ",\n\"targets\":[";
    for (const ExportedTarget& target : table.targets) {
        text += (&target == &table.targets.front() ? "\n" : ",\n") + rowText(table, target);
    }
    return text + "]}\n";
}

} // namespace pos
