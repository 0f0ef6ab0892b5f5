/**
 * @file
 * The two targets on which a field is configured.
 */
#ifndef POS_FIELDTARGETS_H
#define POS_FIELDTARGETS_H

#include <QDomElement>

namespace pos {

/** A field's science target and guide star. */
struct FieldTargets {
    QDomElement science; ///< the science target's element
    QDomElement guide;   ///< the guide star's element
};

/**
 * Finds the science target ("targuse" T) and the guide star (G) among a field's own targets, not those of its groups.
 *
 * The search ends as soon as it has seen both; of several science targets or guide stars seen by then, the last counts.
 * Only capital letters count.
 *
 * @throw std::runtime_error "No science target in field" when either is missing
 */
FieldTargets findFieldTargets(const QDomElement& field);

} // namespace pos

#endif
