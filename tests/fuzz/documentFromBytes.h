#ifndef POS_TESTS_DOCUMENTFROMBYTES_H
#define POS_TESTS_DOCUMENTFROMBYTES_H

#include "checkedRun.h"
#include "documentTree.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

/** The text of a number as a fuzzer's bytes choose it: small, large, of few decimals or of all. */
std::string chosenNumber(FuzzedDataProvider& bytes);

/** A value as a fuzzer's bytes choose it: an ordinary number, one of a list of bad values, or bytes of its own. */
std::string chosenValue(FuzzedDataProvider& bytes);

/**
 * Changes a document as a fuzzer's bytes choose: elements and attributes of the system's own names are set, removed,
 * renamed, copied and nested, with values from chosenValue.
 */
void editDocument(FuzzedDataProvider& bytes, Node& root);

/**
 * One of several documents, edited, as text behind a declaration and in an encoding that the bytes choose.
 *
 * @param documents to begin with
 */
std::string editedDocument(FuzzedDataProvider& bytes, const std::vector<Node>& documents);

/** A number that was not given, in most cases, or an ordinary or extreme one. */
RunNumbers chosenNumbers(FuzzedDataProvider& bytes);

/** The field definitions from which the edits begin: the shipped examples, and a bare document element. */
const std::vector<Node>& fieldDefinitions();

#endif
