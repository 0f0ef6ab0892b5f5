#include "angles.h"
#include "comparisonRecords.h"
#include "numberText.h"
#include "positionAngles.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <cmath>
#include <erfa.h>
#include <map>

namespace pos {

namespace {

constexpr double kMicrometres = 1000.0; // in a millimetre

double arcseconds(double radians) {
    return radiansToDegrees(radians) * 3600;
}

/** Three digits, and no less than hundredths. */
std::string digits(double value) {
    const double size = std::fabs(value);
    return fixedText(value, size >= 100 ? 0 : size >= 10 ? 1 : 2).toStdString();
}

/** The least power of ten that is larger, at least a hundredth. */
std::string bound(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(std::max(value, 1e-3))) + 1);
    return QString::number(power, 'g', 3).toStdString();
}

std::string joined(const std::vector<std::string>& words, const std::string& last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == words.size() ? last : ", ") + words[i];
    }
    return text;
}

/** What moved the fibres of a field, in the units in which it is told. */
struct Movement {
    Similarity fit;
    double extent; ///< of the fibres about their centroid, as the shift
    double factor; ///< from the shift's unit to the one below
    const char* unit;
    double noticed; ///< what moves no fibre by so much is not worth a word, in that unit
    bool isOnSky;
};

/** "shifted by 3.20 µm, turned by 12.4 arcsec about its centre and …"; empty where nothing is noticed. */
std::string wordsOf(const Movement& movement) {
    const Similarity& fit = movement.fit;
    const double shift = std::hypot(fit.shift.x, fit.shift.y) * movement.factor;
    const double radius = movement.extent * movement.factor;
    std::vector<std::string> words;
    if (shift >= movement.noticed) {
        const double direction = radiansToDegrees(eraAnp(std::atan2(fit.shift.y, fit.shift.x)));
        words.push_back("shifted by " + digits(shift) + ' ' + movement.unit +
                        (movement.isOnSky ? " towards position angle " + digits(direction) : ""));
    }
    if (std::fabs(fit.rotation) * radius >= movement.noticed) {
        words.push_back("turned by " + digits(arcseconds(fit.rotation)) + " arcsec about its centre");
    }
    if (std::fabs(fit.scale) * radius >= movement.noticed) {
        words.push_back("scaled by " + digits(fit.scale * 1e6) + " ppm");
    }
    return joined(words, " and ");
}

/** "field 1 is turned by 12.4 arcsec about its centre; what remains is below 0.01 µm". */
std::string sentenceOf(const FieldComparison& field, const Movement& movement) {
    const std::string words = wordsOf(movement);
    const double remains = movement.fit.residualMax * movement.factor;
    return "field " + std::to_string(field.number) + (movement.isOnSky ? " on the sky " : " ") +
           (words.empty() ? "has fibres elsewhere, but moved in no common way" : "is " + words) + "; what remains is " +
           (remains < movement.noticed ? "below " + shortText(movement.noticed)
                                       : digits(movement.fit.residualRms * movement.factor)) +
           ' ' + movement.unit + (remains < movement.noticed ? "" : " (root mean square)");
}

/** What moved the fibres of a field on the plate, and on the sky; nothing where that is not noticed. */
std::vector<std::string> movementsOf(const FieldComparison& field) {
    constexpr double kNoticedOnPlate = 0.01; // µm
    constexpr double kNoticedOnSky = 0.01;   // arcsec: documents have places to 0.004
    std::vector<std::string> sentences;
    const auto plateFit = field.plateFit();
    if (plateFit && field.plate()->greatest * kMicrometres >= kNoticedOnPlate) {
        sentences.push_back(
            sentenceOf(field, {*plateFit, plateFit->extent, kMicrometres, "µm", kNoticedOnPlate, false}));
    }
    const auto skyFit = field.skyFit();
    if (skyFit && arcseconds(field.sky()->greatest) >= kNoticedOnSky) {
        sentences.push_back(
            sentenceOf(field, {*skyFit, skyFit->extent, arcseconds(1.0), "arcsec", kNoticedOnSky, true}));
    }
    return sentences;
}

std::string plural(std::size_t number, const std::string& noun) {
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

/** The largest distances in any field: mm, and radians. */
std::pair<double, double> greatest(const Comparison& comparison) {
    std::pair<double, double> all{0.0, 0.0};
    for (const FieldComparison& field : comparison.fields) {
        all.first = std::max(all.first, field.plate().value_or(Distances{}).greatest);
        all.second = std::max(all.second, field.sky().value_or(Distances{}).greatest);
    }
    return all;
}

/** Units of the attributes of an observation. */
std::string unitOf(const QString& name) {
    static const std::map<QString, std::string> units = {{attr::pa, "degrees"},       {attr::epoch, "years"},
                                                         {attr::temperature, "K"},    {attr::pressure, "mbar"},
                                                         {attr::tlr, "K/m"},          {attr::ha, "hours"},
                                                         {attr::latest, "hours"},     {attr::earliest, "hours"},
                                                         {attr::raD, "degrees"},      {attr::decD, "degrees"},
                                                         {attr::targra, "degrees"},   {attr::targdec, "degrees"},
                                                         {attr::targx, "mm"},         {attr::targy, "mm"},
                                                         {attr::targepoch, "years"},  {attr::targpmra, "mas/yr"},
                                                         {attr::targpmdec, "mas/yr"}, {attr::targparal, "arcsec"},
                                                         {attr::targrv, "km/s"},      {attr::eastLongitude, "degrees"},
                                                         {attr::latitude, "degrees"}, {attr::height, "m"},
                                                         {attr::focalLength, "mm"},   {attr::nominalFocalLength, "mm"},
                                                         {attr::ifuPa, "degrees"},    {attr::radius, "arcsec"}};
    const auto found = units.find(name);
    return found == units.end() ? "" : ' ' + found->second;
}

std::string lineOf(const Difference& difference) {
    const auto told = [](const std::optional<std::string>& value) { return value ? "\"" + *value + '"' : "missing"; };
    const std::string unit = unitOf(difference.name);
    std::string line = "  " + difference.place + ": " + told(difference.first) + ", " + told(difference.second) + unit;
    bool isFirst = false;
    bool isSecond = false;
    const double first = QString::fromStdString(difference.first.value_or("")).toDouble(&isFirst);
    const double second = QString::fromStdString(difference.second.value_or("")).toDouble(&isSecond);
    if (isFirst && isSecond && !unit.empty()) {
        line += " (" + QString::asprintf("%+.6g", second - first).toStdString() + ')';
    }
    return line + '\n';
}

std::string distanceText(const std::optional<Distances>& distances, double unit, const std::string& name) {
    if (!distances) {
        return "not in both documents";
    }
    return "at most " + digits(distances->greatest * unit) + ' ' + name + " (" + distances->worst->name +
           "), root mean square " + digits(distances->rms * unit) + ' ' + name;
}

std::string restOf(const Similarity& fit, double factor, const std::string& unit) {
    return "turn " + digits(arcseconds(fit.rotation)) + " arcsec; scale " + digits(fit.scale * 1e6) +
           " ppm; what remains " + digits(fit.residualRms * factor) + ' ' + unit + '\n';
}

std::string fieldText(const FieldComparison& field) {
    std::string text = "\nField " + std::to_string(field.number) + ", " + plural(field.targets.size(), "target") +
                       " in both\n  plate: " + distanceText(field.plate(), kMicrometres, "µm") +
                       "\n  sky: " + distanceText(field.sky(), arcseconds(1.0), "arcsec") + '\n';
    if (const auto fit = field.plateFit()) {
        text += "  on the plate: shift " + digits(fit->shift.x * kMicrometres) + ", " +
                digits(fit->shift.y * kMicrometres) + " µm; " + restOf(*fit, kMicrometres, "µm");
    }
    if (const auto fit = field.skyFit()) {
        text += "  on the sky: shift " + digits(arcseconds(fit->shift.y)) + " east, " +
                digits(arcseconds(fit->shift.x)) + " north arcsec; " + restOf(*fit, arcseconds(1.0), "arcsec");
    }
    for (const auto& [names, which] : {std::pair(field.onlyInFirst, "first"), {field.onlyInSecond, "second"}}) {
        if (!names.empty()) {
            text += "  only in the " + std::string(which) + ": " + joined(names, ", ") + '\n';
        }
    }
    return text;
}

} // namespace

std::string comparisonSentence(const Comparison& comparison) {
    const auto [plate, sky] = greatest(comparison);
    std::vector<std::string> sentences;
    for (const FieldComparison& field : comparison.fields) {
        const std::vector<std::string> movements = movementsOf(field);
        sentences.insert(sentences.end(), movements.begin(), movements.end());
        const std::size_t alone = field.onlyInFirst.size() + field.onlyInSecond.size();
        if (alone > 0) {
            sentences.push_back("field " + std::to_string(field.number) + " has " + plural(alone, "target") +
                                " in one document only");
        }
    }
    if (!comparison.differences.empty()) {
        sentences.push_back(plural(comparison.differences.size(), "other value") +
                            (comparison.differences.size() == 1 ? " differs" : " differ"));
    }
    if (!sentences.empty()) {
        return joined(sentences, "; ");
    }
    std::vector<std::string> bounds;
    if (plate > 0) {
        bounds.push_back(bound(plate * kMicrometres) + " µm");
    }
    if (sky > 0) {
        bounds.push_back(bound(arcseconds(sky)) + " arcsec");
    }
    return bounds.empty() ? "the same" : "the same within " + joined(bounds, " and ");
}

std::string comparisonText(const Comparison& comparison) {
    std::string text = comparisonSentence(comparison) + '\n';
    if (text == "the same\n") {
        return text;
    }
    for (const FieldComparison& field : comparison.fields) {
        text += fieldText(field);
    }
    if (!comparison.differences.empty()) {
        text += "\nOther values, of the first and of the second document\n";
    }
    for (const Difference& difference : comparison.differences) {
        text += lineOf(difference);
    }
    return text;
}

} // namespace pos
