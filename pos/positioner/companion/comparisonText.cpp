#include "comparisonRecords.h"
#include "comparisonUnits.h"
#include "problemText.h"

#include <cmath>
#include <map>
#include <tuple>

namespace pos {

namespace {

/** A line. Texts of a document make no line of their own. */
std::string lineOf(const std::string& text) {
    return harmlessLine(text) + '\n';
}

/** A line of a field's table: its label, and what it tells of the plate and of the sky. */
std::string row(const std::string& label, const std::string& plate, const std::string& sky) {
    const QString line = QString::fromStdString("  " + label).leftJustified(20) +
                         QString::fromStdString(plate).leftJustified(28) + QString::fromStdString(sky);
    return lineOf(line.toStdString());
}

std::string greatestText(const std::optional<Distances>& distances, const LengthUnit& unit) {
    const bool isMoved = distances && distances->greatest > 0;
    return distances ? lengthText(distances->greatest, unit) + (isMoved ? " (" + distances->worst.name + ')' : "")
                     : "-";
}

/** Applies a text to what moved the fibres; "-" where nothing is known. */
template <typename Text> std::string told(const std::optional<Similarity>& fit, const Text& text) {
    return fit ? text(*fit) : "-";
}

std::string shiftText(double first, const std::string& word, double second, const std::string& otherWord,
                      const LengthUnit& unit) {
    const LengthUnit& shown = readable(std::hypot(first, second), unit);
    return digits(shown.of(first)) + word + ", " + digits(shown.of(second)) + otherWord + ' ' + shown.name;
}

std::string turnText(const Similarity& fit) {
    return lengthText(fit.rotation, kOnSky);
}

std::string scaleText(const Similarity& fit) {
    return digits(fit.scale * 1e6) + " ppm";
}

std::string motionTable(const FieldComparison& field) {
    const auto plate = plateDistances(field.fibres);
    const auto sky = skyDistances(field.fibres);
    const auto onPlate = plateFit(field.fibres);
    const auto onSky = skyFit(field.fibres);
    return row("", "on the plate", "on the sky") +
           row("greatest", greatestText(plate, kOnPlate), greatestText(sky, kOnSky)) +
           row("root mean square", plate ? lengthText(plate->rms, kOnPlate) : "-",
               sky ? lengthText(sky->rms, kOnSky) : "-") +
           row("shift",
               told(onPlate, [](auto& fit) { return shiftText(fit.shift.x, " x", fit.shift.y, " y", kOnPlate); }),
               told(onSky, [](auto& fit) { return shiftText(fit.shift.y, " E", fit.shift.x, " N", kOnSky); })) +
           row("turn", told(onPlate, turnText), told(onSky, turnText)) +
           row("scale", told(onPlate, scaleText), told(onSky, scaleText)) +
           row("what remains", told(onPlate, [](auto& fit) { return lengthText(fit.residualRms, kOnPlate); }),
               told(onSky, [](auto& fit) { return lengthText(fit.residualRms, kOnSky); }));
}

/** "  only in the first: fibre 1, fibre 2, and 597 more"; empty for none. */
std::string aloneText(std::vector<std::string> names, const std::string& which) {
    constexpr std::size_t kShown = 5;
    if (names.empty()) {
        return "";
    }
    if (names.size() > kShown + 1) {
        const std::size_t more = names.size() - kShown;
        names.resize(kShown);
        names.push_back("and " + std::to_string(more) + " more");
    }
    return lineOf("  only in the " + which + ": " + joined(names, ", "));
}

/** What is said of fibres none of which has moved. */
std::string stillText(const std::optional<Distances>& plate, const std::optional<Distances>& sky) {
    if (!plate && !sky) {
        return "none has a place in both documents";
    }
    return std::string("no fibre has moved") + (plate && sky ? ""
                                                : plate
                                                    ? " on the plate; none has a place on the sky in both documents"
                                                    : " on the sky; none has a place on the plate in both documents");
}

std::string fieldText(const FieldComparison& field) {
    const auto plate = plateDistances(field.fibres);
    const auto sky = skyDistances(field.fibres);
    const bool isMoved = (plate && plate->moved > 0) || (sky && sky->moved > 0);
    std::string text = "\nField " + std::to_string(field.number) + ": " + plural(field.matched, "target") +
                       " in both, " + std::to_string(field.fibres.size()) + " of them on a fibre";
    text += isMoved || field.fibres.empty() ? "\n" : "; " + stillText(plate, sky) + '\n';
    text += isMoved ? motionTable(field) : "";
    return text + aloneText(field.onlyInFirst, "first") + aloneText(field.onlyInSecond, "second");
}

std::string valueText(const std::optional<std::string>& value) {
    return value ? "\"" + *value + "\"" : "missing";
}

/** "  place: "283", "284" kelvin (+1)". */
std::string differenceLine(const Difference& difference) {
    std::string line =
        "  " + difference.place + ": " + valueText(difference.first) + ", " + valueText(difference.second);
    if (difference.unit.empty()) {
        return lineOf(line);
    }
    const auto first = numberOf(QString::fromStdString(difference.first.value_or("")));
    const auto second = numberOf(QString::fromStdString(difference.second.value_or("")));
    line += ' ' + difference.unit;
    if (first && second) {
        const double step = *second - *first;
        const bool isAngle = difference.unit == "degrees";
        line += QString::asprintf(" (%+.6g)", isAngle ? std::remainder(step, 360.0) : step).toStdString();
    }
    return lineOf(line);
}

/** All differences; what is the same in many places of a field is told once. */
std::string differenceLines(const std::vector<Difference>& differences) {
    constexpr std::size_t kShown = 3;
    using Values = std::tuple<int, std::string, std::optional<std::string>, std::optional<std::string>>;
    std::map<Values, std::vector<const Difference*>> all;
    std::vector<Values> order;
    for (const Difference& difference : differences) {
        const Values values{difference.field, difference.name, difference.first, difference.second};
        if (all[values].empty()) {
            order.push_back(values);
        }
        all[values].push_back(&difference);
    }
    std::string lines;
    for (const Values& values : order) {
        const std::vector<const Difference*>& places = all[values];
        const std::size_t shown = places.size() > kShown ? 1 : places.size();
        for (std::size_t i = 0; i < shown; ++i) {
            lines += differenceLine(*places[i]);
        }
        if (shown < places.size()) {
            lines += "    the same in " + std::to_string(places.size() - shown) + " more places\n";
        }
    }
    return lines;
}

} // namespace

std::string comparisonText(const Comparison& comparison) {
    std::string text;
    for (const std::string& sentence : comparisonSentences(comparison)) {
        text += lineOf(sentence);
    }
    if (text == "the same\n") {
        return text;
    }
    for (const FieldComparison& field : comparison.fields) {
        text += fieldText(field);
    }
    if (!comparison.differences.empty()) {
        text += "\nOther values of the first document, and of the second\n";
    }
    return text + differenceLines(comparison.differences);
}

} // namespace pos
