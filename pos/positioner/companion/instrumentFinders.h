/**
 * @file
 * What the rules of the instrument find.
 */
#ifndef POS_INSTRUMENTFINDERS_H
#define POS_INSTRUMENTFINDERS_H

#include "InstrumentDocument.h"
#include "Problem.h"

namespace pos {

// Values, in valuesOfTheInstrument.cpp.

/** Finds a data model version that is not that of the configuration. */
void findInstrumentVersions(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds a configuration that is for another version of the program. */
void findOtherProgram(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds values that are missing. */
void findMissingValues(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds values that cannot be read. */
void findBadValues(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds names of files that cannot be opened. */
void findMissingFiles(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds implausible numbers. */
void findUnlikelyNumbers(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds limits of the rotator that leave nothing between them. */
void findCrossedLimits(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds a distortion that contradicts the focal length, or that leads two angles to one place. */
void findOddDistortion(const Rule& rule, const InstrumentDocument& document, Problems& problems);

/** How far from the optical axis fibres may stand, mm; nothing where the distortion is implausible. */
std::optional<double> plateRadiusMm(const InstrumentFacts& facts);

// Names, in namesOfTheInstrument.cpp.

/** Finds names near known ones. */
void findNearInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds known names where they are not read. */
void findMisplacedInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds elements that stand twice. */
void findRepeatedInstrumentElements(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds other names. */
void findUnknownInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems);

// Fibres, in fibresOfTheInstrument.cpp.

/** Finds fibres with the number of another. */
void findRepeatedFibreIds(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds fibres with the name of another, or with none. */
void findRepeatedFibreNames(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds fibres on top of each other. */
void findFibresInOnePlace(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds fibres off the plate. */
void findFibresOffPlate(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds words that are no state of a fibre. */
void findUnknownStates(const Rule& rule, const InstrumentDocument& document, Problems& problems);
/** Finds a bundle without the fibre on which the run places science targets that ask for none. */
void findNoMiddleFibre(const Rule& rule, const InstrumentDocument& document, Problems& problems);

} // namespace pos

#endif
