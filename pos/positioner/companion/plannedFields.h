/**
 * @file
 * The fields that a document plans to observe, with the windows of each.
 */
#ifndef POS_PLANNEDFIELDS_H
#define POS_PLANNEDFIELDS_H

#include "CelestialPosition.h"
#include "Conditions.h"
#include "Estimates.h"
#include "windows.h"

#include <QDomDocument>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** What a document plans. */
struct Plan {
    /** The centre of the first field, and of each other its science target, which the run takes for it. */
    std::vector<ICRS> fields;
    double positionAngle = 0.0; ///< radians
    Conditions conditions{};
    bool hasEpoch = false; ///< without one the date of the conditions is none that is meant
};

/** One field in one night. */
struct FieldNight {
    std::optional<std::string> file; ///< of its document; nothing for a place that is none of a document
    int field = 1;                   ///< its number in the document
    NightWindows found;
};

/** @throw std::runtime_error and what else the run throws, for what it cannot read either */
Plan readPlan(const QDomDocument& document, const Estimates& estimates);

/**
 * The windows of all fields of a plan in some nights, field by field.
 *
 * @param pointing of the bundle's plate, at any place and date
 * @param telescope site, and limits of the rotator
 * @param nights at least one, one after the other
 * @param contexts of a span that holds them
 */
std::vector<FieldNight> findFieldNights(FocalPlane pointing, const Telescope& telescope, const Plan& plan,
                                        const std::optional<std::string>& file, const std::vector<Night>& nights,
                                        const DateContexts& contexts, const WindowOptions& options);

} // namespace pos

#endif
