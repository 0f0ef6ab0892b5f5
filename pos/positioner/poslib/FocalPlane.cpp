#include "FocalPlane.h"

#include "angles.h"
#include "numberText.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <unordered_set>

namespace pos {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** Micrometres. */
constexpr double kWavelength = 0.6;
/** Zero of the Celsius scale, kelvin. */
constexpr double kCelsiusZero = 273.15;
/** One second of time, radians. */
constexpr double kHourAngleTolerance = 7.27220521664304e-05;
/** Sidereal days in a solar day. */
constexpr double kSiderealRate = 1.00273790934;
/**
 * An ordinary field takes one or two steps, a field within a fraction of a degree of the pole some 15,000. Where the
 * pole stands at the horizon limit, or the epoch is absurd, solves have converged after any number of steps up to this.
 */
constexpr int kMaxHourAngleSteps = 50000;
/**
 * An ordinary field takes some five steps. Close to the pole there are boundaries beyond which each step overshoots;
 * near one, the number of steps grows as one over the distance. Of the solves within five degrees of the pole that
 * succeed, one in 80,000 takes more than 50,000.
 */
constexpr int kMaxFieldCentreSteps = 1000000;
/** A target this near to its wanted place has arrived, mm². */
constexpr double kPlacementTolerance = 1e-8;
/** Angles this near to 0 or π count as equal to it. */
constexpr double kAngleEpsilon = 2.220446049250313e-16;

double squaredDistance(PlateCoordinates a, PlateCoordinates b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return dx * dx + dy * dy;
}

/** Two angles in ascending order, NaN last. */
std::pair<double, double> ascending(double a, double b) {
    return std::isnan(a) || b < a ? std::make_pair(b, a) : std::make_pair(a, b);
}

} // namespace

FocalPlane::FocalPlane(const Telescope& telescope, const Optics& optics, const PlateGeometry& plates,
                       Astrometric centre, double positionAngle, const Conditions& conditions)
    : telescope_(telescope), optics_(optics), plates_(plates), rotation_(positionAngle), centre_(centre),
      positionAngle_(positionAngle), conditions_(conditions), dateContext_(conditions.epoch) {
    putInForce();
    update();
}

FocalPlane::FocalPlane(const PosConfig& config, PlateName plate, Astrometric centre, double positionAngle,
                       const Conditions& conditions, double hourAngle)
    : FocalPlane(config, plate, centre, positionAngle, conditions) {
    setHourAngle(hourAngle);
}

void FocalPlane::setFieldCentre(Astrometric centre, double positionAngle) {
    centre_ = centre;
    positionAngle_ = wrapAngle(positionAngle);
    rotation_ = positionAngle;
    FocalPlaneCoordinates::setRotation(positionAngle);
    update();
}

void FocalPlane::setFieldCentre(Astrometric target, PlateCoordinates wanted) {
    const CIRS targetPlace = target.toCirs(dateContext_);
    centre_ = target;
    update();
    const PlateCoordinates origin = cirsToXy(centre_.toCirs(dateContext_));
    PlateCoordinates landed = cirsToXy(targetPlace);
    double previousError = std::numeric_limits<double>::infinity();
    double error = squaredDistance(landed, wanted);
    for (int steps = 0; !(error <= kPlacementTolerance); ++steps) {
        // Written so that NaN ends the solve too, in the first comparison as well.
        if (!(error < previousError) || steps == kMaxFieldCentreSteps) {
            throw std::runtime_error("Field centre not converging");
        }
        const PlateCoordinates shifted(origin.x - (wanted.x - landed.x), origin.y - (wanted.y - landed.y));
        centre_ = xyToCirs(shifted).toAstrometric(dateContext_);
        update();
        landed = cirsToXy(targetPlace);
        previousError = error;
        error = squaredDistance(landed, wanted);
    }
}

void FocalPlane::setHourAngle(double hourAngle) {
    // A step depends only on the date from which it starts, so once a date comes again the steps go in a circle.
    std::unordered_set<double> dates = {conditions_.epoch};
    double previousError = kNaN;
    double error = wrapAngle(hourAngle_ - hourAngle);
    for (int steps = 0; !dateAccepted_ || std::fabs(error) > kHourAngleTolerance; ++steps) {
        const double next = conditions_.epoch - error * 12 / kPi / 24 / kSiderealRate;
        // An hour angle so large that rounding swallows the field's own leaves the same error at every step.
        if (!dateAccepted_ || error == previousError || steps == kMaxHourAngleSteps || !dates.insert(next).second) {
            throw std::runtime_error("Hour angle not converging at MJD " +
                                     fixedText(conditions_.epoch, 2).toStdString());
        }
        setDate(next);
        previousError = error;
        error = wrapAngle(hourAngle_ - hourAngle);
    }
}

void FocalPlane::setDate(double mjdTai) {
    conditions_.epoch = mjdTai;
    update();
}

void FocalPlane::setDate(const DateContext& context) {
    dateContext_ = context;
    setDate(context.date);
}

void FocalPlane::setConditions(const Conditions& conditions) {
    conditions_ = conditions;
    update();
}

void FocalPlane::putInForce() const {
    FocalPlaneCoordinates::setOptics(optics_);
    FocalPlaneCoordinates::setRotation(rotation_);
    PlateCoordinates::setGeometry(plates_);
}

void FocalPlane::update() {
    updateContexts();
    context_ = observerContext_;
    if (!dateAccepted_) {
        tangentRa_ = tangentDec_ = azimuth_ = zenithDistance_ = hourAngle_ = parallacticAngle_ = kNaN;
        return;
    }
    const CIRS centre = centre_.toCirs(dateContext_);
    observeCentre(centre);
    if (zenithDistance_ > kPi / 2 - telescope_.horizonLimit) {
        context_.refa = 0.0;
        context_.refb = 0.0;
        observeCentre(centre);
    }
    parallacticAngle_ = eraHd2pa(hourAngle_, tangentDec_, telescope_.latitude);
}

/** Most updates are for another field centre; what depends only on date and weather stays until these change. */
void FocalPlane::updateContexts() {
    if (dateContext_.date != conditions_.epoch) {
        dateContext_ = DateContext(conditions_.epoch);
    }
    if (contextConditions_ != conditions_) {
        contextConditions_ = conditions_;
        dateAccepted_ = fillObserverContext();
    }
}

/**
 * Fills the context of the observer. Only eraAtioq and eraAtoiq see it. They read only the Earth rotation angle, the
 * site and the refraction constants. eraApio13 computes these by the same formulae in the same order as eraApco13, to
 * the bit, without the Earth's orbit and precession-nutation, on which eraApco13 spends nearly all of its time.
 *
 * @return whether the library takes the date
 */
bool FocalPlane::fillObserverContext() {
    double utc1 = kMjdZero;
    double utc2 = conditions_.epoch;
    // The library's calendar turns a date that is not finite into undefined integers.
    if (!std::isfinite(conditions_.epoch) || eraTaiutc(kMjdZero, conditions_.epoch, &utc1, &utc2) < 0) {
        return false;
    }
    const int status = eraApio13(utc1, utc2, 0.0, telescope_.eastLongitude, telescope_.latitude, telescope_.height, 0.0,
                                 0.0, conditions_.pressure, conditions_.temperature - kCelsiusZero,
                                 conditions_.relativeHumidity, kWavelength, &observerContext_);
    // The one difference: eraApco13 adds the observer's own speed to that of the Earth and leaves this at 0.
    observerContext_.diurab = 0.0;
    // A positive status only means that leap seconds are not known for the date.
    return status >= 0;
}

/** Observes the field centre: the tangent point and where it stands in the sky. */
void FocalPlane::observeCentre(CIRS centre) {
    eraAtioq(centre.ra, centre.dec, &context_, &azimuth_, &zenithDistance_, &hourAngle_, &tangentDec_, &tangentRa_);
}

/** The library takes the context by a pointer to non-const but only reads it. */
eraASTROM* FocalPlane::readOnlyContext() const {
    return const_cast<eraASTROM*>(&context_); // NOLINT(cppcoreguidelines-pro-type-const-cast): see above
}

StandardCoordinates FocalPlane::cirsToStd(CIRS place) const {
    double azimuth = 0.0;
    double zenithDistance = 0.0;
    double hourAngle = 0.0;
    double observedRa = 0.0;
    double observedDec = 0.0;
    eraAtioq(place.ra, place.dec, readOnlyContext(), &azimuth, &zenithDistance, &hourAngle, &observedDec, &observedRa);
    StandardCoordinates standard{};
    if (eraTpxes(observedRa, observedDec, tangentRa_, tangentDec_, &standard.xi, &standard.eta) != 0) {
        throw std::runtime_error("celestial position not in the tangent plane");
    }
    return standard;
}

CIRS FocalPlane::xyToCirs(PlateCoordinates position) const {
    const FocalPlaneCoordinates focal = position;
    const StandardCoordinates standard = focal;
    double observedRa = 0.0;
    double observedDec = 0.0;
    eraTpsts(standard.xi, standard.eta, tangentRa_, tangentDec_, &observedRa, &observedDec);
    CIRS place{};
    eraAtoiq("R", observedRa, observedDec, readOnlyContext(), &place.ra, &place.dec);
    return place;
}

PlateCoordinates FocalPlane::cirsToXy(CIRS place) const {
    const FocalPlaneCoordinates position = cirsToStd(place);
    return position;
}

std::pair<double, double> FocalPlane::parallacticToHour(double parallacticAngle) const {
    const double q = wrapAngle(parallacticAngle);
    if (std::fabs(q) < kAngleEpsilon) {
        return telescope_.latitude > tangentDec_ ? std::make_pair(0.0, kPi) : std::make_pair(kPi, kNaN);
    }
    if (std::fabs(wrapAngle(q - kPi)) < kAngleEpsilon) {
        return {tangentDec_ > telescope_.latitude ? 0.0 : kNaN, kNaN};
    }
    const double sinQ = std::sin(q);
    const double cosQ = std::cos(q);
    const double sinDec = std::sin(tangentDec_);
    const double k = std::sin(telescope_.latitude) * sinQ * std::cos(tangentDec_);
    const double r = std::sqrt(cosQ * cosQ + (sinQ * sinQ) * (sinDec * sinDec));
    const double scale = std::cos(telescope_.latitude) * r;
    if (std::fabs(k) > std::fabs(scale)) {
        return {kNaN, kNaN};
    }
    const double a = std::atan2(sinQ * sinDec, cosQ);
    const double s = std::asin(k / scale);
    const double h1 = wrapAngle(s - a);
    const double h2 = wrapAngle(kPi - (s + a));
    // The hour angle of the field centre has the sign of the parallactic angle.
    const auto keep = [q](double h) { return std::signbit(h) == std::signbit(q) ? h : kNaN; };
    return ascending(keep(h1), keep(h2));
}

} // namespace pos
