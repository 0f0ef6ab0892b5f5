/**
 * @file
 * What the fibres of a bundle see in a configured field.
 */
#ifndef POS_REPORTEDFIBRE_H
#define POS_REPORTEDFIBRE_H

#include "FibreStatus.h"
#include "PlateCoordinates.h"

#include <QDomElement>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pos {

class Veko;

/** What a fibre sees, or why it sees nothing. */
enum class FibreKind { Science, Sky, Broken, Disabled, Absent };

/** All of them, in the order in which people want to read of them. */
inline constexpr std::array kFibreKinds = {FibreKind::Science, FibreKind::Sky, FibreKind::Broken, FibreKind::Disabled,
                                           FibreKind::Absent};

/** "science", "sky", … */
const char* wordOf(FibreKind kind);

/** A fibre in a field. */
struct ReportedFibre {
    std::uint32_t id;
    std::string spaxel; ///< UTF-8
    FibreKind kind;
    PlateCoordinates plate; ///< mm
    double raDeg;           ///< of the place on the sky, ICRS
    double decDeg;
};

/**
 * The fibres of a bundle in ascending identifier, each where the targets of a configured field have it. An absent
 * fibre, which has no target, and one without its target stand where the bundle has them now.
 *
 * @param field configured
 * @param veko pointed at the field, its optical model and plates in force
 */
std::vector<ReportedFibre> reportedFibres(const QDomElement& field, const Veko& veko);

/** The fibre of a target, without the sign that tells whether it is enabled; nothing for a target without one. */
std::optional<std::uint32_t> fibreOf(const QDomElement& target);

/** Whether a target has been put on a fibre. */
bool isOnFibre(const QDomElement& target);

/**
 * The kind of the fibre of a target. Where a run has made the target, the document tells whether the fibre sees
 * something.
 *
 * @param status of the fibre in the bundle of today
 */
FibreKind kindOfTarget(const QDomElement& target, FibreStatus status);

/** Whether a run has made a target, for a fibre. */
bool isGenerated(const QDomElement& target);

/** Whether a run has written the targets of the fibres into a field. */
bool hasGeneratedTargets(const QDomElement& field);

} // namespace pos

#endif
