/**
 * @file
 * What is wrong with the numbers that take the place of a document's.
 */
#ifndef POS_CHECKESTIMATES_H
#define POS_CHECKESTIMATES_H

#include "Estimates.h"
#include "Problem.h"

#include <string>
#include <vector>

namespace pos {

class Instrument;

/** A problem of an estimate. */
struct EstimateProblem {
    std::string name; ///< of the attribute whose place the estimate takes, and of its option: "epoch", "ha", "pressure"
    Problem problem;  ///< its place means nothing
};

/** What the rules of values warn of where a document has these numbers in its conditions. */
std::vector<EstimateProblem> checkEstimates(const Estimates& estimates, Instrument& instrument);

} // namespace pos

#endif
