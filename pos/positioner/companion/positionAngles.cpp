#include "positionAngles.h"

#include "Telescope.h"
#include "angles.h"
#include "numberText.h"

#include <algorithm>
#include <cmath>

namespace pos {

namespace {

constexpr int kWholeDegreesInATurn = 360;

/** Whether the rotator can follow, with some room at the limits. Angles are radians. */
bool isWithinLimits(const Telescope& telescope, double parallacticAngle, double positionAngle) {
    const double kMargin = degreesToRadians(0.01);
    const double angle = wrapAngle(telescope.rotatorOffset - parallacticAngle + positionAngle);
    return telescope.rotatorLowLimit + kMargin < angle && angle < telescope.rotatorHighLimit - kMargin;
}

/** Angles, whole degrees in ascending order, as ranges, of which one may go through 0. */
std::string rangesOf(const std::vector<int>& angles) {
    const auto isFirst = [&](int angle) {
        return !std::binary_search(angles.begin(), angles.end(),
                                   (angle + kWholeDegreesInATurn - 1) % kWholeDegreesInATurn);
    };
    std::string ranges = angles.size() == kWholeDegreesInATurn ? "from 0 to 359" : "";
    for (auto first = std::find_if(angles.begin(), angles.end(), isFirst); first != angles.end();
         first = std::find_if(first + 1, angles.end(), isFirst)) {
        int last = *first;
        while (std::binary_search(angles.begin(), angles.end(), (last + 1) % kWholeDegreesInATurn)) {
            last = (last + 1) % kWholeDegreesInATurn;
        }
        ranges += (ranges.empty() ? "from " : " or from ") + std::to_string(*first) +
                  (last < *first ? " through 0 to " : " to ") + std::to_string(last);
    }
    return ranges;
}

} // namespace

std::string degreesText(double radians) {
    return fixedText(radiansToDegrees(radians), 2).toStdString();
}

std::string shortText(double value) {
    return QString::number(value, 'g', 6).toStdString();
}

std::string positionAnglesInWords(const Telescope& telescope, const std::vector<double>& parallacticAngles,
                                  double present) {
    std::vector<int> does;
    for (int angle = 0; angle < kWholeDegreesInATurn; ++angle) {
        if (std::all_of(parallacticAngles.begin(), parallacticAngles.end(), [&](double parallacticAngle) {
                return isWithinLimits(telescope, parallacticAngle, degreesToRadians(angle));
            })) {
            does.push_back(angle);
        }
    }
    if (does.empty()) {
        return {};
    }
    const auto turnsBy = [&](int angle) { return std::fabs(wrapAngle(degreesToRadians(angle) - present)); };
    const int nearest =
        *std::min_element(does.begin(), does.end(), [&](int a, int b) { return turnsBy(a) < turnsBy(b); });
    return "pa=\"" + std::to_string(nearest) + "\", the nearest of the position angles " + rangesOf(does) + " degrees";
}

} // namespace pos
