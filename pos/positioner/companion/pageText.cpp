#include "pageText.h"

#include "Night.h"
#include "angles.h"
#include "numberText.h"

#include <cmath>

namespace pos {

std::string numberText(double value, int decimals) {
    QString text = fixedText(value, decimals);
    if (text.startsWith('-')) {
        text = text.toDouble() == 0 ? text.mid(1) : QString(QChar(0x2212)) + text.mid(1);
    }
    return text.toStdString();
}

std::string pictureText(double value, int decimals) {
    QString text = fixedText(value, decimals);
    while (text.contains('.') && (text.endsWith('0') || text.endsWith('.'))) {
        text.chop(1);
    }
    return text == "-0" ? "0" : text.toStdString();
}

std::string pixels(double value) {
    return pictureText(value, 1);
}

std::string degreesText(double radians, int decimals) {
    return numberText(radiansToDegrees(radians), decimals);
}

std::string smallAngleText(double radians) {
    const double arcseconds = radiansToDegrees(radians) * 3600;
    return arcseconds < 60 ? numberText(arcseconds, 1) + "″" : numberText(arcseconds / 60, 1) + "′";
}

std::string clockText(double mjdTai) {
    constexpr double kHalfAMinute = 0.5 / 1440;
    return utcText(mjdTai + kHalfAMinute, 0).substr(11, 5);
}

std::string hourAngleText(double radians) {
    constexpr int kMinute = 60;
    const long seconds = std::lround(std::fabs(radiansToHours(radians)) * kMinute * kMinute);
    const QString sign = radians < 0 && seconds > 0 ? QString(QChar(0x2212)) : "";
    return (sign + QString::asprintf("%02ld:%02ld:%02ld", seconds / kMinute / kMinute, seconds / kMinute % kMinute,
                                     seconds % kMinute))
        .toStdString();
}

} // namespace pos
