#include "CheckedDocument.h"
#include "OtherNotation.h"
#include "PosConfig.h"
#include "Version.h"
#include "angles.h"
#include "fileAccess.h"
#include "instrumentFiles.h"
#include "instrumentFinders.h"
#include "numberText.h"
#include "readByItself.h"
#include "xmlKeywords.h"
#include "xmlParse.h"

#include <cmath>
#include <map>
#include <set>

namespace pos {

namespace {

constexpr double kDegreesInATurn = 360.0;
/** The lowest shore and the highest mountain, metres. */
constexpr Range kHeights = {-430.0, 8900.0};
/** A rotator may turn by more than a turn, but hardly by more to one side. Degrees. */
constexpr Range kRotator = {-2 * kDegreesInATurn, 2 * kDegreesInATurn};
constexpr Range kTurns = {-kDegreesInATurn, kDegreesInATurn};
/** Distortion changes the scale on the axis by some per cent. */
constexpr Range kScales = {0.9, 1.1};

/** Ranges narrower than those of the schemas, by the name of the value. */
const std::map<QString, Range>& likelyRanges() {
    static const std::map<QString, Range> ranges = {{"height", kHeights},
                                                    {"default_epoch", rangeOf(Quantity::CatalogueEpoch)},
                                                    {"rotator_low_limit", kRotator},
                                                    {"rotator_high_limit", kRotator},
                                                    {"rotator_offset", kRotator},
                                                    {"plate_a", kRotator},
                                                    {"plate_b", kRotator},
                                                    {attr::r0, kTurns},
                                                    {attr::orientation, kTurns}};
    return ranges;
}

/** The number of a value; nothing where the run refuses it. */
std::optional<double> numberOf(const InstrumentValue* value) {
    const bool isNumber = value != nullptr && value->text && value->known->numbers && !value->refusal;
    return isNumber ? pos::numberOf(*value->text) : std::nullopt;
}

/** Such as ", in degrees"; empty for a value without unit. */
std::string inUnit(const KnownAttribute& known) {
    return known.unit.isEmpty() || known.unit == "-" ? "" : ", in " + known.unit.toStdString();
}

/** The same number as the run reads it. */
std::optional<QString> plainNumber(const InstrumentValue& value) {
    const Quantity quantity = value.known->unit == "degrees" ? Quantity::PositionAngle : Quantity::RadialVelocity;
    const auto notation = value.known->numbers ? otherNotation(value.text->trimmed(), quantity) : std::nullopt;
    return notation ? notation->number : std::nullopt;
}

/** The data model version of a built-in file; nothing where there is no such file. */
std::optional<std::string> versionOf(const std::string& file) {
    const std::optional<QByteArray> text = readFile(file);
    return text
               ? std::optional(parseXml(*text, file).document.documentElement().attribute(attr::datamver).toStdString())
               : std::nullopt;
}

/** Whether c1 is another scale than the focal length; not where they are no numbers. */
bool contradictsFocalLength(const Optics& optics) {
    const double scale = degreesToRadians(optics.nominalFocalLength); // mm/degree on the axis
    return scale > 0 && std::isfinite(optics.c1) && !kScales.contains(optics.c1 / scale);
}

/** The field angle up to a radius from which on the distortion shrinks, degrees; nothing where there is none. */
std::optional<double> turningAngle(const Optics& optics, double radius) {
    constexpr int kSteps = 100;
    for (int i = 0; i <= kSteps; ++i) {
        const double square = std::pow(radius * i / kSteps, 2);
        if (optics.c1 + 3 * optics.c3 * square + 5 * optics.c5 * square * square <= 0) {
            return std::sqrt(square);
        }
    }
    return std::nullopt;
}

} // namespace

void findInstrumentVersions(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    const std::string& wanted = document.facts.version;
    const SourceAttribute* version = document.root.attribute(attr::datamver);
    const std::string help = "Write the data model version into datamver of the document element";
    if (document.part == InstrumentPart::Configuration) {
        if (version == nullptr) {
            problems.add(rule, opening(document.root), "No such node (<xmlattr>.datamver): the configuration has none",
                         help);
        } else if (version->value.isEmpty()) {
            problems.add(rule, Severity::Warning, opening(document.root),
                         "datamver is empty, and the run compares no document with it", help);
        }
    } else if (!wanted.empty() && (version == nullptr || version->value.toStdString() != wanted)) {
        problems.add(rule, valueOrOpening(document.root, attr::datamver),
                     "Data model version mismatch: " +
                         (version == nullptr ? "the document element has no datamver"
                                             : "the document has " + version->value.toStdString()) +
                         ", the configuration " + wanted,
                     "Write " + wanted + ", if the document follows that version",
                     version != nullptr ? std::optional(QByteArray::fromStdString(wanted)) : std::nullopt);
    }
    for (const auto& [part, value] : filesNamed(document)) {
        const auto builtIn = value->text->startsWith(':') ? versionOf(value->text->toStdString()) : std::nullopt;
        if (factsOf(part).isReadByRun && !wanted.empty() && builtIn && *builtIn != wanted) {
            problems.add(rule, value->place,
                         "Data model version mismatch: the built-in file has " + *builtIn + ", the configuration " +
                             wanted,
                         "Name a file of that version, or write " + *builtIn + " into the configuration");
        }
    }
}

void findOtherProgram(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    const InstrumentValue* version = document.value("configure_version");
    if (version != nullptr && version->text && version->text->toStdString() != configure_version) {
        problems.add(rule, version->place,
                     "config file version mismatch: the configuration is for '" + version->text->toStdString() +
                         "', and the program is " + configure_version,
                     "Use the configuration that belongs to the program, or change a copy of the present one");
    }
}

void findMissingValues(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    std::set<std::pair<int, std::string>> told; // Several values of one missing element may say the same.
    for (const InstrumentValue& value : document.values) {
        if (value.text || (!value.refusal && value.known->absent != "required")) {
            continue;
        }
        const std::string name = value.known->name.toStdString();
        const bool isSaid = value.refusal && value.refusal->find("has no " + name) != std::string::npos;
        const std::string message = !value.refusal ? value.lack
                                    : isSaid       ? *value.refusal
                                                   : *value.refusal + ": " + value.lack;
        if (told.emplace(value.place.begin, message).second) {
            problems.add(rule, value.refusal ? Severity::Error : Severity::Warning, value.place, message,
                         "Add " + name + inUnit(*value.known));
        }
    }
}

void findBadValues(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    for (const InstrumentValue& value : document.values) {
        const KnownAttribute& known = *value.known;
        const bool isBad = value.text && (value.refusal || (known.numbers && !pos::numberOf(*value.text)));
        if (!isBad) {
            continue;
        }
        const std::string text = '\'' + value.text->trimmed().toStdString() + '\'';
        const std::optional<QString> plain = plainNumber(value);
        const QByteArray written = document.text.utf8().mid(value.place.begin, value.place.end - value.place.begin);
        const bool isWritten = QString::fromUtf8(written).trimmed() == value.text->trimmed();
        problems.add(rule, value.refusal ? Severity::Error : Severity::Warning, value.place,
                     (value.refusal ? *value.refusal + ": " : value.key + ' ') + text +
                         (known.numbers ? " is not a number" : ""),
                     known.numbers ? "Write a plain number" + inUnit(known) + (plain ? ": " + plain->toStdString() : "")
                                   : "Write one of its values: " + known.range.toStdString(),
                     plain && isWritten ? std::optional(plain->toUtf8()) : std::nullopt);
    }
}

void findMissingFiles(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    for (const auto& [part, value] : filesNamed(document)) {
        const std::string file = document.facts.configuration.filenameOf(value->text->toStdString());
        if (const auto failure = failureOf([&] { requireFile(file); })) {
            problems.add(rule, factsOf(part).isReadByRun ? Severity::Error : Severity::Warning, value->place, *failure,
                         "Name a file that exists; a name that does not begin with \"/\" counts from the folder of the "
                         "configuration");
        }
    }
}

void findUnlikelyNumbers(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    for (const InstrumentValue& value : document.values) {
        const std::optional<double> number = numberOf(&value);
        if (!number) {
            continue;
        }
        const KnownAttribute& known = *value.known;
        const std::string statement = value.key + " is " + value.text->trimmed().toStdString();
        const auto likely = likelyRanges().find(known.name);
        if (!std::isfinite(*number)) {
            problems.add(rule, value.place, statement + ", which is no finite number",
                         "Write a plain number" + inUnit(known));
        } else if (!known.numbers->contains(*number)) {
            problems.add(rule, value.place, statement + ", and its values are " + known.range.toStdString(),
                         "Correct it" + inUnit(known));
        } else if (likely != likelyRanges().end() && !likely->second.contains(*number)) {
            const auto limit = [](double end) { return QString::number(end).toStdString(); };
            problems.add(rule, value.place,
                         statement + ", and plausible values are " + limit(likely->second.low) + " to " +
                             limit(likely->second.high),
                         "Correct it" + inUnit(known));
        }
    }
}

void findCrossedLimits(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    const InstrumentValue* low = document.value("telescope.rotator_low_limit");
    const std::optional<double> lowest = numberOf(low);
    const std::optional<double> highest = numberOf(document.value("telescope.rotator_high_limit"));
    if (lowest && highest && *lowest >= *highest) {
        problems.add(rule, low->place,
                     "The rotator's lower limit, " + low->text->trimmed().toStdString() +
                         " degrees, is not below its upper one, and the run refuses every field",
                     "Exchange rotator_low_limit and rotator_high_limit, or correct them");
    }
}

void findOddDistortion(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    if (document.part != InstrumentPart::FocalPlaneMap || !document.facts.optics) {
        return;
    }
    const Optics& optics = *document.facts.optics;
    if (contradictsFocalLength(optics)) {
        const auto text = [](double value) { return QString::number(value).toStdString(); };
        problems.add(rule, document.value("c1")->place,
                     "c1 is " + text(optics.c1) + " mm a degree, and a focal length of " +
                         text(optics.nominalFocalLength) + " mm makes " +
                         text(degreesToRadians(optics.nominalFocalLength)),
                     "Give the focal length in millimetres, and c1 in millimetres a degree");
    } else if (const auto angle = turningAngle(optics, document.facts.plateRadius)) {
        problems.add(rule, document.value("c3")->place,
                     "The distortion turns back " + fixedText(*angle, 2).toStdString() +
                         " degrees from the axis, where two places on the sky fall onto one of the plate",
                     "Correct c3 and c5: millimetres for angles in degrees");
    }
}

std::optional<double> plateRadiusMm(const InstrumentFacts& facts) {
    if (!facts.optics || contradictsFocalLength(*facts.optics) || turningAngle(*facts.optics, facts.plateRadius)) {
        return std::nullopt;
    }
    const double square = facts.plateRadius * facts.plateRadius;
    return facts.plateRadius * (facts.optics->c1 + facts.optics->c3 * square + facts.optics->c5 * square * square);
}

} // namespace pos
