/**
 * @file
 * What is different between two field definitions.
 */
#ifndef POS_COMPAREDOCUMENTS_H
#define POS_COMPAREDOCUMENTS_H

#include "CelestialPosition.h"
#include "similarity.h"

#include <QDomDocument>
#include <QString>
#include <cstdint>
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

/** A value that is not the same in both documents. */
struct Difference {
    std::string place;                ///< where it stands: "field 1/fibre 304/targprio"
    QString name;                     ///< of the attribute or element
    std::optional<std::string> first; ///< nothing where it is missing
    std::optional<std::string> second;
};

/** A place in the first document, and in the second. */
template <typename Place> using Moved = std::optional<std::pair<Place, Place>>;

/** A target in both documents. Where one of them has no place for it, there is none here. */
struct MovedTarget {
    std::string name;                  ///< "fibre 304", or the name of a target of the user
    std::optional<std::int64_t> fibre; ///< without a sign
    Moved<Point> plate;                ///< mm
    Moved<Astrometric> sky;
};

/** The distances of many targets. */
struct Distances {
    double greatest = 0.0;
    double rms = 0.0; ///< root mean square
    const MovedTarget* worst = nullptr;
};

/** One field in both documents. */
struct FieldComparison {
    int number;                       ///< from 1
    std::vector<MovedTarget> targets; ///< those that are in both
    std::vector<std::string> onlyInFirst;
    std::vector<std::string> onlyInSecond;

    /** On the plate, mm; nothing where no target has a place there in both. */
    std::optional<Distances> plate() const;
    /** On the sky, radians; nothing as above. */
    std::optional<Distances> sky() const;
    /** What moved the fibres on the plate, mm; nothing as above. */
    std::optional<Similarity> plateFit() const;
    /**
     * What moved the places that the fibres see, radians in the tangent plane about the middle of the first ones: x to
     * the north, y to the east, so that a turn is positive from north through east; nothing as above.
     */
    std::optional<Similarity> skyFit() const;
};

/** Two documents beside each other. */
struct Comparison {
    std::vector<FieldComparison> fields;
    std::vector<Difference> differences; ///< but the places of targets
    bool isSame;                         ///< within the tolerances
};

/**
 * Compares two field definitions. Fields are matched by their order, targets by the fibre, else by the configid, else
 * by the name; all other elements by name and order. The order of attributes, the form of numbers, blanks between
 * elements and comments make no difference.
 */
Comparison compareDocuments(const QDomDocument& first, const QDomDocument& second, const CompareOptions& options);

} // namespace pos

#endif
