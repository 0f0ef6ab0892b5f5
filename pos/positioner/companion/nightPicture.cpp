#include "nightPicture.h"

#include "Report.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "pageText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <utility>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

// Pixels of the picture's own: the altitude above, the rotator angle below.
constexpr double kWidth = 760;
constexpr double kLeft = 58;
constexpr double kRight = kWidth - 50;
constexpr double kRowOfWindow = 22;
constexpr double kAltitudeHeight = 270;
constexpr double kBetween = 34;
constexpr double kRotatorHeight = 150;
constexpr double kBelow = 40;
/** Half the room that the label of a window takes. */
constexpr double kHalfLabel = 165;

// Degrees.
constexpr double kLowestShown = -20;
constexpr double kHighestShown = 90;

constexpr double kHour = 1.0 / 24;

/** The axes of a night's picture. */
class NightView {
public:
    NightView(std::pair<double, double> shown, std::size_t windows)
        : shown_(std::move(shown)), top_(kRowOfWindow * static_cast<double>(std::max<std::size_t>(windows, 1)) + 10) {}

    double x(double mjdTai) const {
        return kLeft + (mjdTai - shown_.first) / (shown_.second - shown_.first) * (kRight - kLeft);
    }
    bool shows(double mjdTai) const {
        return mjdTai >= shown_.first && mjdTai <= shown_.second;
    }
    double altitudeY(double radians) const {
        return top_ + (kHighestShown - radiansToDegrees(radians)) / (kHighestShown - kLowestShown) * kAltitudeHeight;
    }
    double rotatorY(double radians) const {
        return rotatorTop() + (180 - radiansToDegrees(radians)) / 360 * kRotatorHeight;
    }
    double top() const {
        return top_;
    }
    double rotatorTop() const {
        return top_ + kAltitudeHeight + kBetween;
    }
    double bottom() const {
        return rotatorTop() + kRotatorHeight;
    }

private:
    std::pair<double, double> shown_; ///< MJD, TAI
    double top_;
};

using Height = std::function<double(const NightSample&)>;

/** The path of a curve; where it jumps, it begins anew. @param jump pixels */
std::string pathOf(const NightView& view, const std::vector<NightSample>& night, const Height& height, double jump) {
    std::string path;
    double before = 0.0;
    for (const NightSample& sample : night) {
        const double y = height(sample);
        const bool isNew = path.empty() || std::fabs(y - before) > jump;
        path += isNew ? 'M' : ' ';
        path += pictureText(view.x(sample.mjdTai), 1) + ' ' + pictureText(y, 1);
        before = y;
    }
    return path;
}

/** How dark it is: the altitude of the Sun below which a name holds, degrees. */
constexpr std::array<std::pair<double, const char*>, 4> kDarkness = {
    {{-18, "night"}, {-12, "astronomical"}, {-6, "nautical"}, {0, "civil"}}};

const char* darknessAt(double sunAltitude) {
    const auto* const found = std::find_if(kDarkness.begin(), kDarkness.end(), [&](const auto& darkness) {
        return radiansToDegrees(sunAltitude) < darkness.first;
    });
    return found == kDarkness.end() ? "day" : found->second;
}

/** Stretches of the same darkness; samples are near enough to each other for their ends. */
Json bandsOf(const NightView& view, const std::vector<NightSample>& night) {
    Json bands = Json::array();
    double begin = night.front().mjdTai;
    for (std::size_t i = 1; i < night.size(); ++i) {
        const std::string here = darknessAt(night.at(i - 1).sunAltitude);
        const bool isLast = i + 1 == night.size();
        if (isLast || darknessAt(night.at(i).sunAltitude) != here) {
            const double end = night.at(i).mjdTai;
            bands.push_back(
                {{"kind", here}, {"x", pixels(view.x(begin))}, {"width", pixels(view.x(end) - view.x(begin))}});
            begin = end;
        }
    }
    return bands;
}

bool isFullHour(const NightSample& sample) {
    return clockText(sample.mjdTai).substr(3) == "00";
}

/** Every full hour, every other one of a long night. */
Json hoursOf(const NightView& view, const std::vector<NightSample>& night) {
    const bool isLong = night.back().mjdTai - night.front().mjdTai > 15 * kHour;
    Json hours = Json::array();
    for (const NightSample& sample : night) {
        const std::string hour = clockText(sample.mjdTai).substr(0, 2);
        if (isFullHour(sample) && (!isLong || std::stoi(hour) % 2 == 0)) {
            hours.push_back({{"x", pixels(view.x(sample.mjdTai))}, {"label", hour}});
        }
    }
    return hours;
}

Json altitudesOf(const NightView& view) {
    Json lines = Json::array();
    for (const int degrees : {0, 15, 30, 45, 60, 75, 90}) {
        const double altitude = degreesToRadians(degrees);
        lines.push_back({{"y", pixels(view.altitudeY(altitude))},
                         {"labelY", pixels(view.altitudeY(altitude) + 4)},
                         {"label", std::to_string(degrees) + "°"},
                         {"airmass", degrees == 0 ? "" : numberText(airmass(altitude), 2)}});
    }
    return lines;
}

Json rotatorLinesOf(const NightView& view) {
    Json lines = Json::array();
    for (const int degrees : {-180, -90, 0, 90, 180}) {
        const double y = view.rotatorY(degreesToRadians(degrees));
        lines.push_back({{"y", pixels(y)}, {"labelY", pixels(y + 4)}, {"label", numberText(degrees, 0) + "°"}});
    }
    return lines;
}

/** The limits of the rotator that it can come to, and the stretch beyond each. */
Json rotatorLimitsOf(const NightView& view, const Telescope& telescope) {
    const double low = std::max(telescope.rotatorLowLimit, -kPi);
    const double high = std::min(telescope.rotatorHighLimit, kPi);
    return {{"highY", pixels(view.rotatorY(high))},
            {"lowY", pixels(view.rotatorY(low))},
            {"top", pixels(view.rotatorTop())},
            {"highHeight", pixels(view.rotatorY(high) - view.rotatorTop())},
            {"lowHeight", pixels(view.bottom() - view.rotatorY(low))},
            {"low", degreesText(telescope.rotatorLowLimit, 0)},
            {"high", degreesText(telescope.rotatorHighLimit, 0)}};
}

Json windowsOf(const NightView& view, const std::vector<Window>& windows) {
    Json marks = Json::array();
    double row = 0.0;
    for (const Window& window : windows) {
        const double begin = view.x(window.start.mjdTai);
        const double end = view.x(window.end.mjdTai);
        marks.push_back({{"x", pixels(begin)},
                         {"end", pixels(end)},
                         {"width", pixels(std::max(end - begin, 1.0))},
                         {"labelX", pixels(std::clamp((begin + end) / 2, kLeft + kHalfLabel, kRight - kHalfLabel))},
                         {"labelY", pixels(17 + row)},
                         {"start", clockText(window.start.mjdTai)},
                         {"startLimit", wordOf(window.startLimit)},
                         {"stop", clockText(window.end.mjdTai)},
                         {"stopLimit", wordOf(window.endLimit)}});
        row += kRowOfWindow;
    }
    return marks;
}

Json momentOf(const NightView& view, double mjdTai) {
    if (!view.shows(mjdTai)) {
        return false;
    }
    const double x = view.x(mjdTai);
    const bool isRight = x > kWidth * 3 / 4;
    return {{"x", pixels(x)},
            {"label", "chosen " + clockText(mjdTai)},
            {"labelX", pixels(x + (isRight ? -5 : 5))},
            {"anchor", isRight ? "end" : "start"}};
}

Json tableOf(const std::vector<NightSample>& night) {
    Json rows = Json::array();
    for (const NightSample& sample : night) {
        if (isFullHour(sample)) {
            rows.push_back({{"utc", clockText(sample.mjdTai)},
                            {"altitude", degreesText(sample.altitude, 2)},
                            {"airmass", sample.altitude > 0 ? numberText(airmass(sample.altitude), 2) : "–"},
                            {"rotator", degreesText(sample.rotatorAngle, 2)},
                            {"parallactic", degreesText(sample.parallacticAngle, 2)},
                            {"sun", degreesText(sample.sunAltitude, 2)},
                            {"moon", degreesText(sample.moonAltitude, 2)}});
        }
    }
    return rows;
}

} // namespace

Json nightPicture(const Report& report, const ReportedField& field) {
    constexpr double kHalfATurn = kRotatorHeight / 2;
    const NightView view(report.shown, field.windows.windows.size());
    const std::vector<NightSample>& night = field.night;
    const auto altitude = [&](double NightSample::*which) {
        return pathOf(
            view, night, [&](const NightSample& sample) { return view.altitudeY(sample.*which); }, kWidth);
    };
    const auto rotator = [&](const NightSample& sample) { return view.rotatorY(sample.rotatorAngle); };
    return {{"width", pixels(kWidth)},
            {"height", pixels(view.bottom() + kBelow)},
            {"left", pixels(kLeft)},
            {"right", pixels(kRight)},
            {"innerWidth", pixels(kRight - kLeft)},
            {"top", pixels(view.top())},
            {"altitudeHeight", pixels(kAltitudeHeight)},
            {"altitudeBottom", pixels(view.top() + kAltitudeHeight)},
            {"rotatorTop", pixels(view.rotatorTop())},
            {"rotatorTitleY", pixels(view.rotatorTop() - 7)},
            {"rotatorHeight", pixels(kRotatorHeight)},
            {"bottom", pixels(view.bottom())},
            {"hourY", pixels(view.bottom() + 16)},
            {"axisY", pixels(view.bottom() + 34)},
            {"momentY", pixels(view.top() + kAltitudeHeight - 7)},
            {"bands", bandsOf(view, night)},
            {"hours", hoursOf(view, night)},
            {"altitudes", altitudesOf(view)},
            {"rotatorLines", rotatorLinesOf(view)},
            {"limits", rotatorLimitsOf(view, report.telescope)},
            {"horizonY", pixels(view.altitudeY(kPi / 2 - report.request.windows.zenithDistanceLimit))},
            {"field", altitude(&NightSample::altitude)},
            {"sun", altitude(&NightSample::sunAltitude)},
            {"moon", altitude(&NightSample::moonAltitude)},
            {"rotator", pathOf(view, night, rotator, kHalfATurn)},
            {"windows", windowsOf(view, field.windows.windows)},
            {"moment", momentOf(view, report.conditions.epoch)},
            {"rows", tableOf(night)}};
}

} // namespace pos
