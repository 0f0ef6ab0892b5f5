/**
 * @file
 * One pointing of the telescope with its targets and sky masks.
 */
#ifndef POS_FIELD_H
#define POS_FIELD_H

#include "CelestialPosition.h"
#include "SkyMask.h"
#include "Target.h"

#include <QDomElement>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace pos {

/**
 * A field: its centre, its targets in the groups of the document, its sky masks.
 *
 * Every target in it has a configure target id that is not 0, and the index holds the target's place by that id.
 */
class Field {
public:
    /** Place of a target: index of its group, index within the group. */
    using Place = std::pair<std::uint64_t, std::uint64_t>;

    /** An empty field, bound to no element. @param fieldCentre the centre, as in the document */
    explicit Field(Astrometric fieldCentre) : centre(fieldCentre) {}

    Astrometric centre;                           ///< where the telescope points
    std::map<std::uint64_t, Place> configidIndex; ///< places of the targets by configure target id
    std::vector<std::vector<Target>> groups{1};   ///< group 0 holds the targets that stand directly in the field
    std::uint64_t currentGroup = 0;               ///< the group that addTarget appends to
    std::uint64_t nextConfigid = 1;               ///< the id assigned last; assigned ids therefore begin with 2
    QDomElement element;                          ///< the field's element, when the field is bound to one
    std::vector<SkyMask> skyMasks;                ///< regions to avoid, in document order; the run does not use them

    /**
     * Adds a copy of a target to the current group.
     *
     * @param target gets the next free id, in the caller's record too, when its id is 0
     * @return the target's id
     * @throw std::runtime_error "Target configid already exists"; the field is unchanged
     */
    std::uint64_t addTarget(Target& target);

    /**
     * Overwrites the stored target of the same id.
     *
     * @throw std::out_of_range "map::at" when there is none
     */
    void replaceTarget(const Target& target);

    /**
     * Appends a mask. If the field is bound to an element, the mask is also written into that element's
     * "avoidance_list", which is created when missing.
     */
    void addSkyMask(const SkyMask& mask);

    /** The stored target of an id. @throw std::out_of_range "map::at" when there is none */
    const Target& targetById(std::uint64_t configid) const;
};

} // namespace pos

#endif
