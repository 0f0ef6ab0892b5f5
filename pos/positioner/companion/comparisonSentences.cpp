#include "angles.h"
#include "comparisonRecords.h"
#include "comparisonUnits.h"
#include "pageText.h"

#include <algorithm>
#include <cmath>
#include <erfa.h>

namespace pos {

namespace {

/** What moves no fibre by as much is not worth a word: µm, arcsec. Documents have places to 0.004 arcsec. */
constexpr double kNoticed = 0.01;

/** What a value does not pass, with two digits, at least the least that is noticed. */
std::string bound(double value) {
    const double step = std::pow(10.0, std::floor(std::log10(std::max(value, kNoticed))) - 1);
    return pictureText(std::max(std::ceil(value / step - 1e-6) * step, kNoticed), 3);
}

/** What moved the fibres of a field, on the plate or on the sky. */
struct Movement {
    const Distances& distances;
    const std::optional<Similarity>& fit; ///< nothing for fibres all over the sky
    const LengthUnit& unit;
};

/** The position angle of a shift on the sky, in degrees. */
std::string directionOf(Point shift) {
    const std::string degrees = digits(radiansToDegrees(eraAnp(std::atan2(shift.y, shift.x))));
    return degrees == "360" ? digits(0.0) : degrees;
}

/**
 * "shifted by 3.20 µm, turned by 12.4 arcsec about its centre and …"; empty where nothing is noticed. Five times what
 * noise does to the mean of so many fibres is no motion in common; nor is what a few of them do.
 *
 * @param least by how much a motion must move a fibre, µm or arcsec
 */
std::string wordsOf(const Movement& movement, double least) {
    if (!movement.fit) {
        return "";
    }
    const Similarity& fit = *movement.fit;
    const auto told = [&](double size) { return movement.unit.of(size); };
    const double noise = 5 * fit.residualRms / std::sqrt(fit.count);
    const auto isNoticed = [&](double greatest, double rms) {
        return std::fabs(told(greatest)) >= least && std::fabs(rms) >= noise;
    };
    const double shift = std::hypot(fit.shift.x, fit.shift.y);
    std::vector<std::string> words;
    if (isNoticed(shift, shift)) {
        words.push_back("shifted by " + lengthText(shift, movement.unit) +
                        (movement.unit.isSky ? " towards position angle " + directionOf(fit.shift) : ""));
    }
    if (isNoticed(fit.rotation * fit.extent, fit.rotation * fit.extentRms)) {
        words.push_back("turned by " + lengthText(fit.rotation, kOnSky) + " about its centre");
    }
    if (isNoticed(fit.scale * fit.extent, fit.scale * fit.extentRms)) {
        words.push_back("scaled by " + digits(fit.scale * 1e6) + " ppm");
    }
    return joined(words, " and ");
}

/** "what remains is below 0.01 µm", or how much it is. */
std::string remainderOf(const Movement& movement) {
    const bool isNoticed = movement.unit.of(movement.fit->residualMax) >= kNoticed;
    return "what remains is " + (isNoticed
                                     ? lengthText(movement.fit->residualRms, movement.unit) + " (root mean square)"
                                     : "below " + bound(kNoticed) + ' ' + movement.unit.name);
}

/** "by 3.20 µm (fibre 17)" for one target, and for several the greatest distance. */
std::string greatestOf(const Distances& distances, const LengthUnit& unit) {
    return std::string(distances.moved > 1 ? "by at most " : "by ") + lengthText(distances.greatest, unit) + " (" +
           distances.worst.name + ')';
}

/** "field 1 is turned by 12.4 arcsec about its centre; what remains is below 0.01 µm". */
std::string sentenceOf(const std::string& field, const Movement& movement) {
    std::string words = wordsOf(movement, kNoticed);
    if (words.empty()) { // several may be noticed together
        words = wordsOf(movement, kNoticed / 10);
    }
    return words.empty() ? field + " has " + plural(movement.distances.moved, "fibre") + " elsewhere" +
                               (movement.distances.moved > 1 ? ", moved in no common way, " : ", ") +
                               greatestOf(movement.distances, movement.unit)
                         : field + " is " + words + "; " + remainderOf(movement);
}

bool isNoticed(const std::optional<Distances>& distances, const LengthUnit& unit) {
    return distances && distances->moved > 0 && unit.of(distances->greatest) >= kNoticed;
}

/** What moved the fibres of a field on the plate and on the sky, where that is noticed. */
std::vector<std::string> movementsOf(const FieldComparison& field, const CompareOptions& options) {
    const std::string name = "field " + std::to_string(field.number);
    const auto plate = plateDistances(field.fibres, options.plateTolerance);
    const auto sky = skyDistances(field.fibres, options.skyTolerance);
    std::vector<std::string> sentences;
    if (isNoticed(plate, kOnPlate)) {
        sentences.push_back(sentenceOf(name, {*plate, plateFit(field.fibres), kOnPlate}));
    }
    if (isNoticed(sky, kOnSky)) {
        sentences.push_back(sentenceOf("on the sky " + name, {*sky, skyFit(field.fibres), kOnSky}));
    }
    return sentences;
}

/** "field 1 has 2 targets without a fibre elsewhere on the plate, by at most 4.00 µm (HD 1)". */
std::vector<std::string> otherTargetsOf(const FieldComparison& field, const CompareOptions& options) {
    std::vector<std::string> sentences;
    for (const auto& [distances, unit] : {std::pair(plateDistances(field.others, options.plateTolerance), kOnPlate),
                                          {skyDistances(field.others, options.skyTolerance), kOnSky}}) {
        if (isNoticed(distances, unit)) {
            sentences.push_back("field " + std::to_string(field.number) + " has " + plural(distances->moved, "target") +
                                " without a fibre elsewhere " + unit.where + ", " + greatestOf(*distances, unit));
        }
    }
    return sentences;
}

/** "temperature and ha", or how many values if their names are many; empty for none. */
std::string differingValues(const Comparison& comparison, int field) {
    constexpr std::size_t kNamed = 4;
    std::vector<std::string> names;
    std::size_t values = 0;
    for (const Difference& difference : comparison.differences) {
        if (difference.field == field) {
            ++values;
            if (std::find(names.begin(), names.end(), difference.name) == names.end()) {
                names.push_back(difference.name);
            }
        }
    }
    return names.size() > kNamed ? plural(values, "value") : joined(names, " and ");
}

void append(std::vector<std::string>& sentences, const std::vector<std::string>& more) {
    sentences.insert(sentences.end(), more.begin(), more.end());
}

std::vector<std::string> sentencesOf(const Comparison& comparison, const FieldComparison& field) {
    std::vector<std::string> sentences = movementsOf(field, comparison.options);
    append(sentences, otherTargetsOf(field, comparison.options));
    const std::string name = "field " + std::to_string(field.number);
    for (const auto& [alone, which] :
         {std::pair(field.onlyInFirst.size(), "first"), {field.onlyInSecond.size(), "second"}}) {
        if (alone > 0) {
            sentences.push_back(name + " has " + plural(alone, "target") + " in the " + which + " document only");
        }
    }
    const std::string values = differingValues(comparison, field.number);
    if (!values.empty()) {
        sentences.push_back(name + " differs in " + values);
    }
    return sentences;
}

/** What holds for the documents as a whole. */
std::vector<std::string> sentencesOfAll(const Comparison& comparison) {
    std::vector<std::string> sentences;
    const auto [first, second] = comparison.areConfigured;
    if (first != second) {
        sentences.push_back(std::string("only the ") + (first ? "first" : "second") +
                            " document is configured: configure the other one too, to compare what the fibres see");
    }
    const auto [fields, otherFields] = comparison.fieldCounts;
    if (fields != otherFields) {
        sentences.push_back("the first document has " + plural(fields, "field") + ", the second " +
                            plural(otherFields, "field"));
    }
    return sentences;
}

/** "the same within 0.01 µm". */
std::string sameWithin(const Comparison& comparison) {
    double plate = 0.0;
    double sky = 0.0;
    for (const FieldComparison& field : comparison.fields) {
        for (const auto& targets : {field.fibres, field.others}) {
            plate = std::max(plate, plateDistances(targets).value_or(Distances()).greatest);
            sky = std::max(sky, skyDistances(targets).value_or(Distances()).greatest);
        }
    }
    std::vector<std::string> bounds;
    if (plate > 0) {
        bounds.push_back(bound(kOnPlate.of(plate)) + ' ' + kOnPlate.name);
    }
    if (sky > 0) {
        bounds.push_back(bound(kOnSky.of(sky)) + ' ' + kOnSky.name);
    }
    return "the same" + (bounds.empty() ? "" : " within " + joined(bounds, " and ")) +
           (comparison.isSame ? "" : ", but not within the tolerances");
}

} // namespace

std::vector<std::string> comparisonSentences(const Comparison& comparison) {
    if (comparison.isSame) {
        return {sameWithin(comparison)};
    }
    std::vector<std::string> sentences = sentencesOfAll(comparison);
    for (const FieldComparison& field : comparison.fields) {
        append(sentences, sentencesOf(comparison, field));
    }
    const std::string values = differingValues(comparison, 0);
    if (!values.empty()) {
        sentences.push_back((comparison.fields.empty() ? "the documents differ in "
                             : sentences.empty()       ? "only the observation differs, in "
                                                       : "the observation differs in ") +
                            values);
    }
    return sentences.empty() ? std::vector{sameWithin(comparison)} : sentences;
}

} // namespace pos
