/**
 * @file
 * Problems that follow from others.
 */
#ifndef POS_CONSEQUENCES_H
#define POS_CONSEQUENCES_H

#include "AppliedFixes.h"
#include "CheckedDocument.h"
#include "Problem.h"

#include <vector>

namespace pos {

// Where the run fails for a problem that is removed, its cause becomes an error that tells the message of the run.

/**
 * Removes the problems of places and pointing that follow from a value, where another problem tells what is wrong with
 * the value itself.
 */
void removeConsequences(std::vector<Problem>& problems, const CheckedDocument& document);

/**
 * Removes the problems that are gone once the fixes of others are applied.
 *
 * @param fixes those of the problems
 * @param left the problems of the text with the fixes
 */
void removeWhatFixesMend(std::vector<Problem>& problems, const AppliedFixes& fixes, const std::vector<Problem>& left);

} // namespace pos

#endif
