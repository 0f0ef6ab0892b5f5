#include "CelestialPosition.h"

#include "angles.h"

#include <cmath>

namespace pos {

namespace {

/** One milliarcsecond in radians. */
constexpr double kMilliarcsecond = 4.8481368110953594e-9;

/** A date in two parts whose sum is the Julian Date. */
struct JulianDate {
    double jd1 = 0.0;
    double jd2 = 0.0;
};

JulianDate ttFromTai(double mjdTai) {
    JulianDate tt;
    // The status is always 0: TT − TAI is a constant.
    static_cast<void>(eraTaitt(kMjdZero, mjdTai, &tt.jd1, &tt.jd2));
    return tt;
}

/** The library takes a context by a pointer to non-const but only reads it. */
eraASTROM* readOnly(const DateContext& context) {
    return const_cast<eraASTROM*>(&context.astrom); // NOLINT(cppcoreguidelines-pro-type-const-cast): see above
}

/** Milliarcseconds to radians by way of arcseconds and degrees. */
double milliarcsecondsToRadians(double mas) {
    return mas / 1000 / 3600 / 180 * kPi;
}

} // namespace

DateContext::DateContext(double mjdTai) : date(mjdTai) {
    const JulianDate tt = ttFromTai(mjdTai);
    double equationOfOrigins = 0.0;
    eraApci13(tt.jd1, tt.jd2, &astrom, &equationOfOrigins);
}

CIRS Astrometric::toCirs(double date) const {
    const JulianDate tt = ttFromTai(date);
    CIRS place{};
    double equationOfOrigins = 0.0;
    eraAtci13(ra, dec, 0.0, 0.0, 0.0, 0.0, tt.jd1, tt.jd2, &place.ra, &place.dec, &equationOfOrigins);
    return place;
}

CIRS Astrometric::toCirs(const DateContext& context) const {
    CIRS place{};
    eraAtciq(ra, dec, 0.0, 0.0, 0.0, 0.0, readOnly(context), &place.ra, &place.dec);
    return place;
}

Astrometric CIRS::toAstrometric(double date) const {
    const JulianDate tt = ttFromTai(date);
    Astrometric place{};
    double equationOfOrigins = 0.0;
    eraAtic13(ra, dec, tt.jd1, tt.jd2, &place.ra, &place.dec, &equationOfOrigins);
    return place;
}

Astrometric CIRS::toAstrometric(const DateContext& context) const {
    Astrometric place{};
    eraAticq(ra, dec, readOnly(context), &place.ra, &place.dec);
    return place;
}

std::pair<double, double> ICRS::pmAsRadYr() const {
    const double cosDec = std::cos(dec);
    const double raRate = cosDec > kMilliarcsecond ? milliarcsecondsToRadians(pmRa) / cosDec : 0.0;
    return {raRate, milliarcsecondsToRadians(pmDec)};
}

Astrometric ICRS::toAstrometric(double date) const {
    if (!(epoch > 0)) {
        return {ra, dec};
    }
    const JulianDate tt = ttFromTai(date);
    JulianDate start;
    eraEpj2jd(epoch, &start.jd1, &start.jd2);
    const auto [raRate, decRate] = pmAsRadYr();
    Astrometric place{};
    double raRateAfter = 0.0;
    double decRateAfter = 0.0;
    double parallaxAfter = 0.0;
    double rvAfter = 0.0;
    // The status warns of distances and speeds that the routine had to replace; its place still counts.
    static_cast<void>(eraPmsafe(ra, dec, raRate, decRate, parallax, rv, start.jd1, start.jd2, tt.jd1, tt.jd2, &place.ra,
                                &place.dec, &raRateAfter, &decRateAfter, &parallaxAfter, &rvAfter));
    return place;
}

} // namespace pos
