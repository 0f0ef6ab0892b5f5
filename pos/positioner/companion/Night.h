/**
 * @file
 * Nights at a site, and dates as texts.
 */
#ifndef POS_NIGHT_H
#define POS_NIGHT_H

#include <QDate>
#include <string>

namespace pos {

/** A night, from mean local noon at a longitude to the next. */
struct Night {
    QDate evening;      ///< the date of the evening at the site
    double begin = 0.0; ///< MJD, TAI
    double end = 0.0;   ///< MJD, TAI
};

/** @param eastLongitude radians */
Night nightOf(QDate evening, double eastLongitude);

/** The night to which an instant belongs; that of the evening before, at most, at an instant without a date. */
Night nightAround(double mjdTai, double eastLongitude);

/** Whether it is known where Sun and Moon stand at a date: from 1900 to 2100. */
bool areSunAndMoonKnown(QDate date);

/** The end of a sentence about a date at which that is not known. */
inline constexpr const char* kNotOfKnownYears =
    " is not between 1900 and 2100, the years in which Sun and Moon are known";

/** MJD, UTC. */
double utcOf(double mjdTai);

/** An instant in UTC by ISO 8601, with "Z". @param decimals of the second */
std::string utcText(double mjdTai, int decimals);

/** The Julian epoch with which a run is given an instant to the microsecond: what `--epoch` takes. */
double julianEpochOf(double mjdTai);

} // namespace pos

#endif
