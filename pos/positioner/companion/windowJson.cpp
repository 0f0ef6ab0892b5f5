#include "angles.h"
#include "windowRecords.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

Json textOrNull(const char* text) {
    return text == nullptr ? Json() : Json(text);
}

Json numberOrNull(double value) {
    return std::isfinite(value) ? Json(value) : Json();
}

Json jsonOf(const Moment& moment, const char* limit, const WindowStyle& style) {
    Json json = Json::object();
    json["utc"] = utcText(moment.mjdTai, 3);
    if (style.timeZone) {
        json["local"] = localText(moment.mjdTai, *style.timeZone);
    }
    json.update({{"mjdTai", moment.mjdTai},
                 {"epoch", julianEpochOf(moment.mjdTai)},
                 {"lstHours", radiansToHours(moment.siderealTime)},
                 {"hourAngleHours", radiansToHours(moment.hourAngle)},
                 {"runHourAngleHours", radiansToHours(moment.runHourAngle)},
                 {"altitudeDeg", radiansToDegrees(moment.altitude)},
                 {"airmass", numberOrNull(moment.airmass)},
                 {"azimuthDeg", radiansToDegrees(moment.azimuth)},
                 {"parallacticDeg", radiansToDegrees(moment.parallacticAngle)},
                 {"rotatorDeg", radiansToDegrees(moment.rotatorAngle)},
                 {"rotatorAboveLowDeg", radiansToDegrees(moment.rotatorAngle - style.telescope.rotatorLowLimit)},
                 {"rotatorBelowHighDeg", radiansToDegrees(style.telescope.rotatorHighLimit - moment.rotatorAngle)},
                 {"limit", textOrNull(limit)}});
    return json;
}

Json jsonOf(const Window& window, const WindowStyle& style) {
    return {{"start", jsonOf(window.start, wordOf(window.startLimit), style)},
            {"end", jsonOf(window.end, wordOf(window.endLimit), style)},
            {"best", jsonOf(window.best, nullptr, style)},
            {"longest", window.isLongest}};
}

Json jsonOf(const FieldNight& night) {
    return {{"file", night.file ? Json(*night.file) : Json()},
            {"field", night.field},
            {"night", night.found.night.evening.toString(Qt::ISODate).toStdString()}};
}

Json reasonOf(const FieldNight& night) {
    return night.found.windows.empty() ? Json(night.found.reason) : Json();
}

std::string textOf(const Json& json, int indent) {
    // Names of files need not be UTF-8.
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

/** The members of an object one after the other, those of a member that is an object joined to its name by a dot. */
void flatten(const Json& object, const std::string& prefix, Json& flat) {
    for (const auto& [name, value] : object.items()) {
        if (value.is_object()) {
            flatten(value, prefix + name + '.', flat);
        } else {
            flat[prefix + name] = value;
        }
    }
}

/** A cell of a table by RFC 4180. */
std::string cellOf(const Json& value) {
    if (value.is_null()) {
        return "";
    }
    if (!value.is_string()) {
        return textOf(value, -1);
    }
    auto text = value.get<std::string>();
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    return QString::fromStdString(text).replace('"', "\"\"").prepend('"').append('"').toStdString();
}

std::string lineOf(const Json& cells) {
    std::string line;
    for (const Json& cell : cells) {
        line += cellOf(cell) + ',';
    }
    line.back() = '\n';
    return line;
}

/** All of a line of the CSV, by name. @param window of the night; nothing where it has none */
Json rowOf(const FieldNight& night, const Window* window, const WindowStyle& style) {
    Json ofWindow;
    flatten(jsonOf(window != nullptr ? *window : Window{}, style), "", ofWindow);
    Json row = jsonOf(night);
    for (const auto& [name, value] : ofWindow.items()) {
        row[name] = window != nullptr ? value : Json();
    }
    row["reason"] = reasonOf(night);
    return row;
}

} // namespace

std::string windowJson(const std::vector<FieldNight>& nights, const WindowStyle& style) {
    Json all = Json::array();
    for (const FieldNight& night : nights) {
        Json windows = Json::array();
        for (const Window& window : night.found.windows) {
            windows.push_back(jsonOf(window, style));
        }
        Json json = jsonOf(night);
        json["windows"] = windows;
        json["reason"] = reasonOf(night);
        all.push_back(json);
    }
    return textOf({{"version", 1}, {"nights", all}}, 1) + '\n';
}

std::string windowCsv(const std::vector<FieldNight>& nights, const WindowStyle& style) {
    Json names = Json::array();
    const Json anyRow = rowOf({}, nullptr, style);
    for (const auto& [name, value] : anyRow.items()) {
        names.push_back(name);
    }
    std::string text = lineOf(names);
    for (const FieldNight& night : nights) {
        if (night.found.windows.empty()) {
            text += lineOf(rowOf(night, nullptr, style));
        }
        for (const Window& window : night.found.windows) {
            text += lineOf(rowOf(night, &window, style));
        }
    }
    return text;
}

} // namespace pos
