#include "Night.h"

#include "CelestialPosition.h"
#include "angles.h"

#include <QString>
#include <array>
#include <cmath>
#include <erfa.h>

namespace pos {

namespace {

/** Zero of the Modified Julian Date among the day numbers of the calendar. */
constexpr qint64 kDayOfMjdZero = 2400001;

/** MJD, TAI. */
double taiOf(double mjdUtc) {
    double zero = 0.0;
    double tai = 0.0;
    static_cast<void>(eraUtctai(kMjdZero, mjdUtc, &zero, &tai)); // as above
    return tai;
}

/** The noon of a date by mean local time, MJD, UTC. */
double noonOf(QDate date, double eastLongitude) {
    return static_cast<double>(date.toJulianDay() - kDayOfMjdZero) + 0.5 - eastLongitude / (2 * kPi);
}

} // namespace

bool areSunAndMoonKnown(QDate date) {
    return date.year() >= 1900 && date.year() <= 2100;
}

double utcOf(double mjdTai) {
    double zero = 0.0;
    double utc = 0.0;
    // A positive status only says that leap seconds are not known for the date.
    static_cast<void>(eraTaiutc(kMjdZero, mjdTai, &zero, &utc));
    return utc;
}

Night nightOf(QDate evening, double eastLongitude) {
    return {evening, taiOf(noonOf(evening, eastLongitude)), taiOf(noonOf(evening.addDays(1), eastLongitude))};
}

Night nightAround(double mjdTai, double eastLongitude) {
    const double localDays = std::floor(utcOf(mjdTai) + eastLongitude / (2 * kPi) - 0.5);
    return nightOf(QDate::fromJulianDay(static_cast<qint64>(localDays) + kDayOfMjdZero), eastLongitude);
}

std::string utcText(double mjdTai, int decimals) {
    std::array<int, 4> time{};
    int year = 0;
    int month = 0;
    int day = 0;
    static_cast<void>(eraD2dtf("UTC", decimals, kMjdZero, utcOf(mjdTai), &year, &month, &day, time.data())); // as above
    QString text = QString::asprintf("%04d-%02d-%02dT%02d:%02d:%02d", year, month, day, time[0], time[1], time[2]);
    if (decimals > 0) {
        text += QString::asprintf(".%0*d", decimals, time[3]);
    }
    return text.toStdString() + 'Z';
}

double julianEpochOf(double mjdTai) {
    return eraEpj(kMjdZero, mjdTai);
}

} // namespace pos
