/**
 * @file
 * The targets that the fibres of a bundle see.
 */
#ifndef POS_FIBRETARGETS_H
#define POS_FIBRETARGETS_H

#include "PlateCoordinates.h"
#include "TargetUse.h"

#include <QDomElement>
#include <QString>
#include <cstdint>
#include <vector>

namespace pos {

class Veko;

/**
 * Writes the targets of a bundle's fibres, the same on every field except for what they see there. Absent fibres get
 * none.
 */
class FibreTargets {
public:
    /**
     * Takes over fibres, names and plate positions.
     *
     * @param veko the bundle, which must outlive this object; of its later changes only those of its pointing take
     *     effect
     * @param epoch Julian epoch of the positions written, years
     * @throw std::out_of_range "map::at" for a fibre without a name, which the reader of the bundle never makes
     */
    FibreTargets(const Veko& veko, double epoch);

    /** The fewest bytes that the new targets of a field (all but the science target) take in a document. */
    qint64 leastSize() const;

    /**
     * Makes sure that save() will succeed, wherever on the sky the bundle is placed.
     *
     * @param scienceFibre the fibre on the science target, whose place is known
     * @throw std::runtime_error "Inverse distortion not converging at a radius of … mm", as FocalPlane::xyToCirs, for
     *     another fibre too far from the optical axis
     */
    void requirePlaces(std::uint32_t scienceFibre) const;

    /**
     * Writes one record per fibre, in ascending identifier.
     *
     * The science fibre's record goes onto the science target's own element. Every other fibre gets a new target, the
     * last child of the field, that begins as a copy of the science target's element. A fibre that is not enabled is
     * marked by a negative "fibreid". What the fibres see, and "ifu_pa", follow from the pointing and date of the
     * bundle's focal plane at the time of the call.
     *
     * @param field receives the new targets
     * @param science the science target's element
     * @param scienceFibre the science target's fibre
     * @throw std::runtime_error as requirePlaces(); the fibres before that one are written
     */
    void save(QDomElement field, QDomElement science, std::uint32_t scienceFibre) const;

private:
    /** A fibre, and the attribute values that are the same in all its targets. */
    struct Record {
        std::uint32_t id;
        PlateCoordinates position;
        bool isSky;
        QString configid;
        QString fibreid; ///< negative for a fibre that is not enabled
        QString targx;
        QString targy;
        QString spaxel;
    };

    QDomElement commonTarget(TargetUse use, const QDomElement& science) const;

    const Veko& veko_;
    double epoch_;
    std::vector<Record> records_; ///< in ascending identifier
};

} // namespace pos

#endif
