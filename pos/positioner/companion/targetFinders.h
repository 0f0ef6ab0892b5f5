/**
 * @file
 * What the rules of names find in the targets of a field.
 */
#ifndef POS_TARGETFINDERS_H
#define POS_TARGETFINDERS_H

#include "CheckedDocument.h"
#include "Problem.h"

namespace pos {

/**
 * Whether a field lacks the target of a use, and one stands in a group instead. Targets that a run has made are not
 * meant.
 *
 * @param use "T" or "G"
 */
bool isMeantInGroup(const CheckedField& field, const QString& use);

/** Finds uses in small letters. */
void findSmallUses(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds science targets and guide stars that do not count, because another does. */
void findSeveralTargets(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds science targets and guide stars inside groups. */
void findGroupedTargets(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds empty groups before targets of the first field. */
void findEmptyGroups(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds names of targets that stand twice in a field. */
void findRepeatedNames(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds ids of targets that stand twice in a field, where the run does not refuse them. */
void findRepeatedTargetIds(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds science targets on fibres that are not enabled, as far as the bundle is known. */
void findUnusableFibres(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds fibres of other targets that the bundle does not have, as far as it is known. */
void findUselessFibres(const Rule& rule, const CheckedDocument& document, Problems& problems);

/** Finds fields with targets that an earlier run has made. */
void findGeneratedTargets(const Rule& rule, const CheckedDocument& document, Problems& problems);

} // namespace pos

#endif
