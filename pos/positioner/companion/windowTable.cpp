#include "angles.h"
#include "numberText.h"
#include "positionAngles.h"
#include "windowRecords.h"

#include <QDateTime>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace pos {

namespace {

constexpr int kLineWidth = 79;
constexpr int kLabelWidth = 23;
constexpr int kMomentWidth = 19;

/** The date, and the time of the day, in a text by ISO 8601. */
QString dateOf(const std::string& iso) {
    return QString::fromStdString(iso).left(10);
}
QString clockOf(const std::string& iso) {
    return QString::fromStdString(iso).mid(11, 12);
}

/** Without a sign where all digits are 0. */
QString decimalText(double value, int number) {
    const QString text = fixedText(value, number);
    return text.startsWith('-') && text.toDouble() == 0 ? text.mid(1) : text;
}

QString threeDecimals(double radians) {
    return decimalText(radiansToDegrees(radians), 3);
}

/** Hours as "21:04:05". */
QString sexagesimal(double radians) {
    constexpr qint64 kSecondsOfADay = 86400;
    const qint64 seconds = std::llround(radiansToHours(radians) * 3600) % kSecondsOfADay;
    return QString::asprintf("%02lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

QString duration(double days) {
    const qint64 minutes = std::llround(days * 24 * 60);
    return QString::asprintf("%lld h %02lld min", minutes / 60, minutes % 60);
}

/** A line of columns, without blanks at its end. */
QString lineOf(const QStringList& cells, const std::vector<int>& widths) {
    QString line;
    for (int i = 0; i < cells.size(); ++i) {
        line += cells.at(i).leftJustified(widths.at(static_cast<std::size_t>(i)));
    }
    while (line.endsWith(' ')) {
        line.chop(1);
    }
    return line + '\n';
}

/** A text in lines, indented. */
QString wrapped(const QString& text, int indent) {
    const QString margin(indent, ' ');
    QString all;
    QString line = margin;
    for (const QString& word : text.split(' ')) {
        if (line.size() > indent && line.size() + word.size() > kLineWidth) {
            all += line.trimmed().prepend(margin) + '\n';
            line = margin;
        }
        line += word + ' ';
    }
    return all + line.trimmed().prepend(margin) + '\n';
}

/** A line of a window's table: its label, and its value at a moment. */
using Row = std::pair<QString, std::function<QString(const Moment&)>>;

std::vector<Row> rowsOf(const WindowStyle& style) {
    const auto utc = [](const Moment& moment) { return utcText(moment.mjdTai, 3); };
    std::vector<Row> rows = {{"date", [utc](const Moment& moment) { return dateOf(utc(moment)); }},
                             {"UTC", [utc](const Moment& moment) { return clockOf(utc(moment)); }}};
    if (style.timeZone) {
        const auto local = [zone = *style.timeZone](const Moment& moment) { return localText(moment.mjdTai, zone); };
        rows.insert(rows.end(), {{"local date", [local](const Moment& moment) { return dateOf(local(moment)); }},
                                 {"local time", [local](const Moment& moment) { return clockOf(local(moment)); }}});
    }
    rows.insert(
        rows.end(),
        {{"MJD (TAI)", [](const Moment& moment) { return fixedText(moment.mjdTai, 8); }},
         {"epoch (--epoch)", [](const Moment& moment) { return fixedText(julianEpochOf(moment.mjdTai), 12); }},
         {"hour angle, h", [](const Moment& moment) { return decimalText(radiansToHours(moment.hourAngle), 5); }},
         {"of field 1 (--ha)",
          [](const Moment& moment) { return decimalText(radiansToHours(moment.runHourAngle), 5); }},
         {"sidereal time", [](const Moment& moment) { return sexagesimal(moment.siderealTime); }},
         {"altitude, deg", [](const Moment& moment) { return threeDecimals(moment.altitude); }},
         {"airmass",
          [](const Moment& moment) { return std::isfinite(moment.airmass) ? fixedText(moment.airmass, 3) : "-"; }},
         {"azimuth, deg", [](const Moment& moment) { return threeDecimals(moment.azimuth); }},
         {"parallactic, deg", [](const Moment& moment) { return threeDecimals(moment.parallacticAngle); }},
         {"rotator, deg", [](const Moment& moment) { return threeDecimals(moment.rotatorAngle); }},
         {"  above low limit", [low = style.telescope.rotatorLowLimit](
                                   const Moment& moment) { return threeDecimals(moment.rotatorAngle - low); }},
         {"  below high limit", [high = style.telescope.rotatorHighLimit](const Moment& moment) {
              return threeDecimals(high - moment.rotatorAngle);
          }}});
    return rows;
}

QString tableOf(const Window& window, const WindowStyle& style) {
    const std::vector<int> widths = {2, kLabelWidth, kMomentWidth, kMomentWidth, kMomentWidth};
    QString table = lineOf({"", "", "start", "best", "end"}, widths);
    for (const auto& [label, value] : rowsOf(style)) {
        table += lineOf({"", label, value(window.start), value(window.best), value(window.end)}, widths);
    }
    return table;
}

/** All about the windows of one night. */
QString nightText(const NightWindows& night, const WindowStyle& style) {
    if (night.windows.empty()) {
        return wrapped(QString::fromStdString("No window. " + night.reason + '.'), 2);
    }
    QString text;
    for (const Window& window : night.windows) {
        const bool isOneOfSeveral = night.windows.size() > 1 && window.isLongest;
        text += QString(text.isEmpty() ? "" : "\n") + "  " + (isOneOfSeveral ? "The longest: " : "") +
                duration(window.length()) + ", from " + wordOf(window.startLimit) + " to " + wordOf(window.endLimit) +
                "\n\n" + tableOf(window, style);
    }
    return text;
}

const std::vector<int> kSeasonWidths = {2, 13, 13, 13, 13, 13, 6, 8, 14, 1};

QString seasonHead(const WindowStyle& style) {
    QStringList names = {"", "night", "start (UTC)", "from", "end (UTC)", "to", "hours", "highest"};
    return lineOf(style.timeZone ? names << "start (local)"
                                         << "end (local)"
                                 : names,
                  kSeasonWidths);
}

/** One line a window. */
QString seasonText(const NightWindows& night, const WindowStyle& style) {
    const QString date = night.night.evening.toString(Qt::ISODate);
    if (night.windows.empty()) {
        return "  " + date + "  -  " + wrapped(QString::fromStdString(night.reason), 17).trimmed() + '\n';
    }
    QString text;
    for (const Window& window : night.windows) {
        const bool isMarked = night.windows.size() > 1 && window.isLongest;
        QStringList cells = {"",
                             date + (isMarked ? " *" : ""),
                             clockOf(utcText(window.start.mjdTai, 3)),
                             wordOf(window.startLimit),
                             clockOf(utcText(window.end.mjdTai, 3)),
                             wordOf(window.endLimit),
                             fixedText(window.length() * 24, 2).rightJustified(5),
                             fixedText(radiansToDegrees(window.best.altitude), 2)};
        if (style.timeZone) {
            cells << clockOf(localText(window.start.mjdTai, *style.timeZone))
                  << clockOf(localText(window.end.mjdTai, *style.timeZone));
        }
        text += lineOf(cells, kSeasonWidths);
    }
    return text;
}

QString titleOf(const FieldNight& night, const WindowStyle& style) {
    const QString zone = style.timeZone ? "\n  Local times are those of " + QString(style.timeZone->id()) + '.' : "";
    const QString date = style.isSeason ? "" : ", night of " + night.found.night.evening.toString(Qt::ISODate);
    return QString::fromStdString(night.file ? *night.file + ", field " + std::to_string(night.field) : style.place) +
           date + zone + "\n\n";
}

bool areOfOneField(const FieldNight& a, const FieldNight& b) {
    return a.file == b.file && a.field == b.field;
}

} // namespace

std::string windowTable(const std::vector<FieldNight>& nights, const WindowStyle& style) {
    QString text;
    for (auto first = nights.begin(); first != nights.end();) {
        const auto last =
            std::find_if(first, nights.end(), [&](const FieldNight& night) { return !areOfOneField(night, *first); });
        text += text.isEmpty() ? "" : "\n";
        text += titleOf(*first, style) + (style.isSeason ? seasonHead(style) : "");
        std::for_each(first, last, [&](const FieldNight& night) {
            text += style.isSeason ? seasonText(night.found, style) : nightText(night.found, style);
        });
        first = last;
    }
    return text.toStdString();
}

std::string localText(double mjdTai, const QTimeZone& timeZone) {
    constexpr double kMjdOf1970 = 40587.0;
    constexpr double kMillisecondsOfADay = 86400000.0;
    const qint64 milliseconds = std::llround((utcOf(mjdTai) - kMjdOf1970) * kMillisecondsOfADay);
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds, timeZone);
    const int minutes = time.offsetFromUtc() / 60;
    return time.toString("yyyy-MM-ddTHH:mm:ss.zzz").toStdString() +
           QString::asprintf("%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60, std::abs(minutes) % 60)
               .toStdString();
}

} // namespace pos
