/**
 * @file
 * What is different between two field definitions.
 */
#ifndef POS_COMPAREDOCUMENTS_H
#define POS_COMPAREDOCUMENTS_H

#include "movedFibres.h"

#include <QDomDocument>
#include <QString>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pos {

/** What counts as different. */
struct CompareOptions {
    double plateTolerance = 0.0;    ///< mm
    double skyTolerance = 0.0;      ///< radians
    std::set<QString> ignored = {}; ///< names of attributes and elements that are not compared
};

/** The same of numbers as a user gives them. @param plateTolerance micrometres @param skyTolerance arcsec */
CompareOptions compareOptions(double plateTolerance, double skyTolerance, const std::vector<std::string>& ignored);

/** A value that is not the same in both documents. */
struct Difference {
    std::string place;                ///< where it stands: "field 1/fibre 304/targprio"
    std::string name;                 ///< of the attribute or element
    int field = 0;                    ///< the field in which it stands, from 1; 0 outside
    std::optional<std::string> first; ///< nothing where it is missing
    std::optional<std::string> second;
    std::string unit; ///< of a number, such as "degrees"; empty where there is none
};

/** One field in both documents. */
struct FieldComparison {
    int number = 0;          ///< from 1
    std::size_t matched = 0; ///< targets that are in both
    /** Targets that are in both, on a fibre. */
    std::vector<MovedTarget> fibres = {};
    /** Targets that are in both, at least once without a fibre. */
    std::vector<MovedTarget> others = {};
    std::vector<std::string> onlyInFirst = {};
    std::vector<std::string> onlyInSecond = {};
};

/** Two documents beside each other. */
struct Comparison {
    std::vector<FieldComparison> fields = {}; ///< those that are in both
    std::vector<Difference> differences = {}; ///< but the places of fibres
    std::pair<int, int> fieldCounts = {};
    std::pair<bool, bool> areConfigured = {}; ///< whether a run has written targets into each
    CompareOptions options = {};
    bool isSame = false; ///< within the tolerances
};

/**
 * Compares two field definitions. Fields are matched by their order, targets as matchTargets does; all other elements
 * by name and order. The order of attributes and targets, the form of numbers, blanks around texts, comments and
 * instructions make no difference, nor does a place within the tolerance.
 */
Comparison compareDocuments(const QDomDocument& first, const QDomDocument& second, const CompareOptions& options);

} // namespace pos

#endif
