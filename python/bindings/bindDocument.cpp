#include "LibraryCall.h"
#include "Source.h"
#include "arrays.h"
#include "bindings.h"

#include "CelestialPositionXML.h"
#include "OutputFile.h"
#include "TargetWalk.h"
#include "TargetXML.h"
#include "angles.h"
#include "checkInstrument.h"
#include "configureDocument.h"
#include "fileAccess.h"
#include "numberText.h"
#include "problemJson.h"
#include "veko_configure.h"
#include "xmlKeywords.h"
#include "xmlSerialise.h"

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** A field. */
struct FieldRow {
    double ra; ///< degrees
    double dec;
    std::int32_t targets; ///< how many
};

/** A target. */
struct TargetRow {
    std::int32_t field; ///< from 1
    std::int32_t group; ///< of the field, from 1; 0 for a target that stands in none
    Target target;
    double ra; ///< degrees, as it is written
    double dec;
    double x; ///< mm; NaN where the document has none
    double y;
    std::string spaxel;
};

/** What a document holds. */
struct DocumentTables {
    double positionAngle = 0.0;               ///< degrees
    std::map<std::string, double> conditions; ///< those that it has, in its own units
    std::vector<FieldRow> fields;
    std::vector<TargetRow> targets;
};

/** NaN where there is none. */
double numberAt(const QDomElement& element, const QString& attribute) {
    return numberOf(element.attribute(attribute)).value_or(std::numeric_limits<double>::quiet_NaN());
}

TargetRow targetRow(const QDomElement& element, std::int32_t field, std::int32_t group) {
    return {field,
            group,
            createTargetXML(element),
            numberAt(element, attr::targra),
            numberAt(element, attr::targdec),
            numberAt(element, attr::targx),
            numberAt(element, attr::targy),
            element.attribute(attr::ifuSpaxel).toStdString()};
}

/** The conditions that a document has, by the names of the package. */
std::map<std::string, double> conditionsOf(const QDomElement& element) {
    std::map<std::string, double> conditions;
    for (const auto& [name, attribute] : {std::pair("epoch", attr::epoch),
                                          {"hour_angle", attr::ha},
                                          {"temperature", attr::temperature},
                                          {"pressure", attr::pressure},
                                          {"relative_humidity", attr::relativeHumidity}}) {
        const auto value = numberOf(element.attribute(attribute));
        if (value && (attribute != attr::epoch || *value != 0)) { // 0 is none
            conditions[name] = *value;
        }
    }
    return conditions;
}

void addTargets(const QDomElement& field, std::int32_t number, std::vector<TargetRow>& targets) {
    std::int32_t groups = 0;
    std::int32_t group = 0;
    TargetWalk walk(field);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::GroupEntered) {
            group = ++groups;
        } else if (step == TargetWalk::Step::LevelLeft) {
            group = 0;
        } else {
            targets.push_back(targetRow(walk.element(), number, group));
        }
    }
}

DocumentTables readTables(const Source& source, const std::string& configFile) {
    openConfig(configFile); // brings the data model version
    const QDomElement root = load(source).documentElement();
    DocumentTables tables;
    tables.positionAngle = findObservationElement(root).attribute(attr::pa).toDouble();
    tables.conditions = conditionsOf(findConditionsElement(root));
    std::int32_t number = 0;
    for (QDomElement field = findFieldElement(root, QDomElement()); !field.isNull();
         field = findFieldElement(root, field)) {
        static_cast<void>(createAstrometricXML("Field centre", field)); // refuses what the run refuses
        const std::size_t before = tables.targets.size();
        addTargets(field, ++number, tables.targets);
        tables.fields.push_back({numberAt(field, attr::raD), numberAt(field, attr::decD),
                                 static_cast<std::int32_t>(tables.targets.size() - before)});
    }
    return tables;
}

py::dict columnsOf(const std::vector<FieldRow>& rows) {
    py::dict result;
    result["ra"] = columnOf(rows, &FieldRow::ra);
    result["dec"] = columnOf(rows, &FieldRow::dec);
    result["targets"] = columnOf(rows, &FieldRow::targets);
    return result;
}

py::dict columnsOf(const std::vector<TargetRow>& rows) {
    const auto ofTarget = [&](auto get) {
        return columnOf(rows, [get](const TargetRow& row) { return get(row.target); });
    };
    py::dict result;
    result["field"] = columnOf(rows, &TargetRow::field);
    result["group"] = columnOf(rows, &TargetRow::group);
    result["name"] = ofTarget([](const Target& t) { return t.name; });
    result["survey"] = ofTarget([](const Target& t) { return t.survey; });
    result["use"] = ofTarget([](const Target& t) { return std::string(t.use); });
    result["priority"] = ofTarget([](const Target& t) { return t.priority; });
    result["configid"] = ofTarget([](const Target& t) { return static_cast<std::int64_t>(t.configid); });
    result["fibre"] = ofTarget([](const Target& t) { return t.fibreid == kNoFibre ? 0 : t.fibreid; });
    result["automatic"] = ofTarget([](const Target& t) { return t.automatic; });
    result["ra"] = columnOf(rows, &TargetRow::ra);
    result["dec"] = columnOf(rows, &TargetRow::dec);
    result["epoch"] = ofTarget([](const Target& t) { return t.position.epoch; });
    result["pm_ra"] = ofTarget([](const Target& t) { return t.position.pmRa; });
    result["pm_dec"] = ofTarget([](const Target& t) { return t.position.pmDec; });
    result["parallax"] = ofTarget([](const Target& t) { return t.position.parallax; });
    result["rv"] = ofTarget([](const Target& t) { return t.position.rv; });
    result["x"] = columnOf(rows, &TargetRow::x);
    result["y"] = columnOf(rows, &TargetRow::y);
    result["spaxel"] = columnOf(rows, &TargetRow::spaxel);
    return result;
}

py::dict document(const Source& source, const std::string& configFile) {
    const DocumentTables tables = inLibrary([&] { return readTables(source, configFile); });
    py::dict result;
    result["pa"] = tables.positionAngle;
    result["conditions"] = tables.conditions;
    result["fields"] = columnsOf(tables.fields);
    result["targets"] = columnsOf(tables.targets);
    return result;
}

py::bytes bytesOf(const QByteArray& content) {
    return {content.constData(), static_cast<std::size_t>(content.size())};
}

// Files need nothing that is process-wide, and a pipe may take its time.

py::bytes readBytes(const std::string& name) {
    return bytesOf(withoutInterpreter([&] { return loadFile(name); }));
}

void writeBytes(const std::string& name, const std::string& bytes) {
    withoutInterpreter([&] { writeFile(name, QByteArray::fromStdString(bytes)); });
}

/** The document in a file, or as it is. */
Source sourceOf(const std::variant<Source, std::string>& input) {
    if (const auto* const source = std::get_if<Source>(&input)) {
        return *source;
    }
    const auto& name = std::get<std::string>(input);
    const QByteArray text = withoutInterpreter([&] { return loadingFieldDefinition([&] { return loadFile(name); }); });
    return {text.toStdString(), name};
}

/** @param input the name of a file, or a document */
py::bytes configure(const std::variant<Source, std::string>& input, const std::optional<std::string>& output,
                    const std::string& configFile, const Estimates& estimates) {
    // A configuration that cannot be read is told before an input that cannot be.
    inLibrary([&] { static_cast<void>(openConfig(configFile).get<double>("default_epoch")); });
    const Source source = sourceOf(input);
    const QByteArray configured = inLibrary([&] {
        const PosConfig config = openConfig(configFile);
        const QDomDocument document = loadingFieldDefinition([&] { return load(source); });
        configureDocument(config, document, estimates);
        if (output) {
            checkOutput(config, *output);
        }
        return serialiseXml(document);
    });
    if (output) {
        withoutInterpreter([&] { writeFile(*output, configured); });
    }
    return bytesOf(configured);
}

/** The problems of the instrument and of documents, as JSON. */
std::string check(const std::vector<Source>& sources, const std::string& configFile, const Estimates& estimates,
                  double fieldRadiusDeg) {
    return inLibrary([&] {
        const double fieldRadius = degreesToRadians(fieldRadiusDeg);
        CheckedInstrument instrument = checkInstrument(configFile, fieldRadius);
        const CheckOptions options{estimates, fieldRadius, instrument.isSound};
        for (const auto& [xml, name] : sources) {
            instrument.files.push_back(
                {name, checkDocument(QByteArray::fromStdString(xml), name, *instrument.instrument, options)});
        }
        return problemJson(instrument.files);
    });
}

/** Values for an observation, as the command line takes them. */
Estimates estimatesOf(std::optional<double> epoch, std::optional<double> hourAngle, std::optional<double> pressure,
                      double horizonLimitDeg) {
    return {epoch.value_or(kNotGiven), hourAngle.value_or(kHourAngleNotGiven), pressure.value_or(kNotGiven),
            zenithDistanceOf(horizonLimitDeg)};
}

} // namespace

void bindDocument(py::module_& module) {
    py::class_<Estimates>(module, "Estimates").def(py::init(&estimatesOf));
    module.def("document", &document);
    module.def("read_bytes", &readBytes);
    module.def("write_bytes", &writeBytes);
    module.def("configure", &configure);
    module.def("check", &check);
}

} // namespace pos
