#include "checkEstimates.h"

#include "CheckedDocument.h"
#include "ReadDocument.h"
#include "rules.h"
#include "xmlKeywords.h"

#include <QLocale>

namespace pos {

namespace {

/** An attribute with a number as a person would write it; empty where it is not given. */
QString attributeOf(const QString& name, double value, double notGiven) {
    return value == notGiven ? QString()
                             : ' ' + name + "='" + QString::number(value, 'g', QLocale::FloatingPointShortest) + '\'';
}

/** A document with these estimates in its conditions. */
QString documentWith(const Estimates& estimates) {
    return "<field_definition><observation><configure><conditions" +
           attributeOf(attr::epoch, estimates.epoch, kNotGiven) +
           attributeOf(attr::ha, estimates.hourAngle, kHourAngleNotGiven) +
           attributeOf(attr::pressure, estimates.pressure, kNotGiven) +
           "/></configure></observation></field_definition>";
}

} // namespace

std::vector<EstimateProblem> checkEstimates(const Estimates& estimates, Instrument& instrument) {
    const ReadDocument read = readText(documentWith(estimates).toUtf8(), "");
    const CheckOptions options;
    CheckedDocument document{read.text, *read.root, options, instrument};
    findParts(document);
    Problems problems;
    for (const RuleEntry& entry : rulesOfValues()) {
        entry.find(entry.rule, document, problems);
    }
    std::vector<EstimateProblem> found;
    for (const SourceAttribute& attribute : document.conditions->attributes) {
        for (const Problem& problem : problems.all()) {
            if (problem.place == attribute.valuePlace && problem.severity != Severity::Note) {
                found.push_back({attribute.name.toStdString(), problem});
            }
        }
    }
    return found;
}

} // namespace pos
