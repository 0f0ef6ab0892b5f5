#include "positionAngles.h"

#include "Telescope.h"
#include "angles.h"
#include "numberText.h"

#include <algorithm>
#include <cmath>

namespace pos {

std::string degreesText(double radians) {
    return fixedText(radiansToDegrees(radians), 2).toStdString();
}

std::string shortText(double value) {
    return QString::number(value, 'g', 6).toStdString();
}

std::string positionAnglesInWords(const Telescope& telescope, double parallacticAngle, double present) {
    constexpr double kMarginDeg = 0.01;
    const double low = std::max(telescope.rotatorLowLimit, -kPi);
    const double high = std::min(telescope.rotatorHighLimit, kPi);
    const double presentDeg = radiansToDegrees(present);
    const double middle = radiansToDegrees((low + high) / 2 - telescope.rotatorOffset + parallacticAngle);
    const double nearestMiddle = middle + 360 * std::round((presentDeg - middle) / 360);
    const double halfWidth = radiansToDegrees((high - low) / 2) - kMarginDeg;
    const double from = std::ceil(nearestMiddle - halfWidth);
    const double to = std::floor(nearestMiddle + halfWidth);
    if (!(from <= to)) {
        return {};
    }
    const auto inTurn = [](double degrees) { return degrees - 360 * std::floor(degrees / 360); };
    const std::string through = inTurn(to) < inTurn(from) ? " through 0 to " : " to ";
    return "pa=\"" + shortText(std::clamp(presentDeg, from, to)) + "\", the nearest of the position angles from " +
           shortText(inTurn(from)) + through + shortText(inTurn(to)) + " degrees";
}

} // namespace pos
