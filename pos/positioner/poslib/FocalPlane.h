/**
 * @file
 * One pointing of the telescope, and the projection of the sky onto the plate in use.
 */
#ifndef POS_FOCALPLANE_H
#define POS_FOCALPLANE_H

#include "CelestialPosition.h"
#include "Conditions.h"
#include "Optics.h"
#include "PlateCoordinates.h"
#include "Telescope.h"
#include "angles.h"

#include <erfa.h>
#include <optional>
#include <utility>

namespace pos {

class PosConfig;

/**
 * A field centre, its position angle, the site, the date and the weather, with everything derived from them.
 *
 * From sky to plate: CIRS place → observed place (refraction included) → standard coordinates about the observed place
 * of the field centre → FocalPlaneCoordinates → PlateCoordinates; from plate to sky the same steps backwards. The
 * wavelength is 0.6 µm; UT1−UTC and polar motion are taken as 0.
 *
 * Every setter ends in update(), so that the derived values always match the inputs. The optical model and the plate
 * geometry in force are process-wide: each constructor replaces them by those of its pointing. To use several pointings
 * in turn, put those of one in force with PointingInForce.
 *
 * With a date that the astronomy library refuses (not finite, or outside the calendar's range) the derived values are
 * NaN.
 */
class FocalPlane {
public:
    /**
     * Points the telescope.
     *
     * @param telescope the site, its horizon limit and its rotator offset
     * @param optics the optical model
     * @param plates the plate geometry
     * @param centre field centre at the date of the conditions
     * @param positionAngle position angle of the field, from north through east, radians; kept as it is, unwrapped
     * @param conditions date and weather
     */
    FocalPlane(const Telescope& telescope, const Optics& optics, const PlateGeometry& plates, Astrometric centre,
               double positionAngle, const Conditions& conditions);

    /**
     * Points the telescope of a configuration, with optical model and plate geometry from its focal-plane map.
     *
     * @param config site ("telescope.east_longitude", "telescope.latitude", "telescope.height"),
     *     "telescope.horizon_limit", "telescope.rotator_offset", "telescope.focal_plane_map"
     * @param plate the plate in use
     * @param centre, positionAngle, conditions as above
     * @throw std::runtime_error and the configuration's errors, for a missing key or a bad focal-plane map
     */
    FocalPlane(const PosConfig& config, PlateName plate, Astrometric centre, double positionAngle,
               const Conditions& conditions);

    /** As the one before, then setHourAngle(hourAngle). */
    FocalPlane(const PosConfig& config, PlateName plate, Astrometric centre, double positionAngle,
               const Conditions& conditions, double hourAngle);

    /**
     * Points at a centre.
     *
     * @param centre field centre at the present date
     * @param positionAngle radians; kept wrapped into [−π, π]
     */
    void setFieldCentre(Astrometric centre, double positionAngle);

    /**
     * Points so that a target lands at a wanted position on the plate, to 1e-4 mm. The position angle stays.
     *
     * @param target a place at the present date
     * @param wanted plate position, mm
     * @throw std::runtime_error "Field centre not converging" when a step does not bring the target nearer, after a
     *     million steps, or with NaN; the model keeps the last trial centre. Also what cirsToStd and xyToCirs throw
     */
    void setFieldCentre(Astrometric target, PlateCoordinates wanted);

    /**
     * Changes the date so that the field centre has an observed hour angle, to one second of time.
     *
     * @param hourAngle radians; NaN and the infinities leave the date as it is
     * @throw std::runtime_error "Hour angle not converging at MJD …" after 50,000 steps, when a step leads back to an
     *     earlier date or leaves the same error, or when the astronomy library refuses the date
     */
    void setHourAngle(double hourAngle);

    /** Changes the date; centre and position angle stay. @param mjdTai MJD, TAI */
    void setDate(double mjdTai);

    /** The same, with a context for that date. */
    void setDate(const DateContext& context);

    /** Takes over date and weather. */
    void setConditions(const Conditions& conditions);

    /** Date and weather as they are now. */
    Conditions conditions() const {
        return conditions_;
    }

    /** Makes optical model, plate geometry and rotation of this pointing those of the process. */
    void putInForce() const;

    /** Recomputes everything derived. Below the horizon limit refraction is off, for the centre and all targets. */
    void update();

    /**
     * The standard coordinates of a place about the tangent point (ERFA eraAtioq, eraTpxes).
     *
     * @throw std::runtime_error "celestial position not in the tangent plane", from 90 degrees off the tangent point on
     */
    StandardCoordinates cirsToStd(CIRS place) const;

    /**
     * Where a place lands on the plate.
     *
     * @return plate position, mm
     * @throw std::runtime_error as cirsToStd
     */
    PlateCoordinates cirsToXy(CIRS place) const;

    /**
     * The place that lands at a position on the plate (ERFA eraTpsts, eraAtoiq).
     *
     * @return the place; right ascension in [0, 2π)
     * @throw std::runtime_error "Inverse distortion not converging at a radius of … mm"
     */
    CIRS xyToCirs(PlateCoordinates position) const;

    /**
     * The hour angles at which the field centre has a parallactic angle.
     *
     * From the four-part (cotangent) formula of the triangle pole, zenith, field centre, with the latitude φ, the
     * observed declination δ, the parallactic angle q and the hour angle H:
     *     tan q · (tan φ · cos δ − sin δ · cos H) = sin H.
     * Multiplied by cos φ · cos q, this becomes
     *     cos φ · r · sin(H + a) = sin φ · cos δ · sin q, r² = cos² q + sin² q · sin² δ, tan a = tan q · sin δ,
     * solved for H by an arcsine; a solution on the wrong side of the meridian is dropped. Where q is 0 or π, so is H;
     * the larger of φ and δ decides which.
     *
     * @param parallacticAngle radians, of any turn
     * @return at most two hour angles in [−π, π] in ascending order; NaN in the second place, or both, where there are
     *     fewer
     */
    std::pair<double, double> parallacticToHour(double parallacticAngle) const;

    /** The field centre at the present date, as last given or found. */
    Astrometric fieldCentre() const {
        return centre_;
    }
    /** Position angle of the field, from north through east, radians; setFieldCentre wraps it into [−π, π]. */
    double positionAngle() const {
        return positionAngle_;
    }
    /** Radians. */
    double eastLongitude() const {
        return telescope_.eastLongitude;
    }
    /** Radians. */
    double latitude() const {
        return telescope_.latitude;
    }
    /** Height of the site above mean sea level, metres. */
    double height() const {
        return telescope_.height;
    }
    /** Offset between parallactic and rotator angle, radians. */
    double rotatorOffset() const {
        return telescope_.rotatorOffset;
    }
    /** MJD, TAI. */
    double date() const {
        return conditions_.epoch;
    }
    /** The context for conversions at the present date. */
    const DateContext& dateContext() const {
        return dateContext_;
    }
    /** Observed declination of the field centre, radians, in [−π/2, π/2]. */
    double tangentDec() const {
        return tangentDec_;
    }
    /** Observed zenith distance of the field centre, radians, in [0, π]. */
    double zenithDistance() const {
        return zenithDistance_;
    }
    /** Observed altitude of the field centre, radians, in [−π/2, π/2]. */
    double altitude() const {
        return kPi / 2 - zenithDistance_;
    }
    /** Observed hour angle of the field centre, radians, in [−π, π], positive west of the meridian. */
    double hourAngle() const {
        return hourAngle_;
    }
    /** Observed azimuth of the field centre, radians, in [0, 2π], from north through east. */
    double azimuth() const {
        return azimuth_;
    }
    /** Parallactic angle of the field centre (ERFA eraHd2pa), radians, in [−π, π]. */
    double parallacticAngle() const {
        return parallacticAngle_;
    }

private:
    void updateContexts();
    bool fillObserverContext();
    void observeCentre(CIRS centre);
    eraASTROM* readOnlyContext() const;

    Telescope telescope_;
    Optics optics_;
    PlateGeometry plates_;
    double rotation_; ///< the position angle as it was given, radians
    Astrometric centre_;
    double positionAngle_;
    Conditions conditions_;

    DateContext dateContext_;
    std::optional<Conditions> contextConditions_; ///< those of the observer's context
    bool dateAccepted_ = false;                   ///< by the astronomy library
    eraASTROM observerContext_{};
    eraASTROM context_{};     ///< the observer's, without refraction where the centre is below the horizon limit
    double tangentRa_ = 0.0;  ///< observed right ascension (CIO-based) of the field centre, radians
    double tangentDec_ = 0.0; ///< observed declination of the field centre, radians
    double azimuth_ = 0.0;
    double zenithDistance_ = 0.0;
    double hourAngle_ = 0.0;
    double parallacticAngle_ = 0.0;
};

} // namespace pos

#endif
