#ifndef POS_TESTS_CHECKEDPROBLEMS_H
#define POS_TESTS_CHECKEDPROBLEMS_H

#include "Estimates.h"
#include "problemJson.h"

#include <QByteArray>
#include <vector>

namespace pos {
class PosConfig;
}

/** Whether a run on a document succeeds, up to the bytes of its output. */
bool isConfigured(const QByteArray& bytes, const pos::PosConfig& config, const pos::Estimates& estimates);

/** Whether one of the problems of a document is an error. */
bool hasError(const pos::CheckedFile& file);

/** Tells the problems of documents in every form. */
void tellProblems(const std::vector<pos::CheckedFile>& files);

#endif
