#include "LibraryCall.h"
#include "PointedPlate.h"
#include "arrays.h"
#include "bindings.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
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
#include "xmlStructure.h"

#include <limits>
#include <optional>
#include <pybind11/stl.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** Fields, column by column. */
struct FieldColumns {
    std::vector<double> ra; ///< degrees
    std::vector<double> dec;
    std::vector<std::int32_t> targets; ///< how many
};

/** Targets, column by column. */
struct TargetColumns {
    std::vector<std::int32_t> field; ///< from 1
    std::vector<std::int32_t> group; ///< of the field, from 1; 0 for a target that stands in none
    std::vector<Target> target;
    std::vector<double> ra; ///< degrees, as they are written
    std::vector<double> dec;
    std::vector<double> x; ///< mm; NaN where the document has none
    std::vector<double> y;
    std::vector<std::string> spaxel;
};

/** What a document holds. */
struct DocumentColumns {
    double positionAngle = 0.0; ///< degrees
    FieldColumns fields;
    TargetColumns targets;
};

double numberAt(const QDomElement& element, const QString& attribute, double absent) {
    return numberOf(element.attribute(attribute)).value_or(absent);
}

void addTarget(const QDomElement& element, std::int32_t field, std::int32_t group, TargetColumns& columns) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    columns.target.push_back(createTargetXML(element));
    columns.field.push_back(field);
    columns.group.push_back(group);
    columns.ra.push_back(numberAt(element, attr::targra, kNaN));
    columns.dec.push_back(numberAt(element, attr::targdec, kNaN));
    columns.x.push_back(numberAt(element, attr::targx, kNaN));
    columns.y.push_back(numberAt(element, attr::targy, kNaN));
    columns.spaxel.push_back(element.attribute(attr::ifuSpaxel).toStdString());
}

/** @return how many targets the field has */
std::int32_t addTargets(const QDomElement& field, std::int32_t number, TargetColumns& columns) {
    const std::size_t before = columns.target.size();
    std::int32_t groups = 0;
    std::int32_t group = 0;
    TargetWalk walk(field);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::GroupEntered) {
            group = ++groups;
        } else if (step == TargetWalk::Step::LevelLeft) {
            group = 0;
        } else {
            addTarget(walk.element(), number, group, columns);
        }
    }
    return static_cast<std::int32_t>(columns.target.size() - before);
}

DocumentColumns readColumns(const QByteArray& bytes, const std::string& name, const std::string& configFile) {
    openConfig(configFile); // brings the data model version
    const QDomElement root = loadXmlBytes(bytes, name).documentElement();
    DocumentColumns columns;
    columns.positionAngle = findObservationElement(root).attribute(attr::pa).toDouble();
    std::int32_t number = 0;
    for (QDomElement field = findFieldElement(root, QDomElement()); !field.isNull();
         field = findFieldElement(root, field)) {
        static_cast<void>(createAstrometricXML("Field centre", field)); // refuses what the run refuses
        columns.fields.ra.push_back(numberAt(field, attr::raD, 0.0));
        columns.fields.dec.push_back(numberAt(field, attr::decD, 0.0));
        columns.fields.targets.push_back(addTargets(field, ++number, columns.targets));
    }
    return columns;
}

/** One member of all targets. */
template <typename Get> auto columnOf(const std::vector<Target>& targets, Get get) {
    std::vector<decltype(get(targets.front()))> values;
    values.reserve(targets.size());
    for (const Target& target : targets) {
        values.push_back(get(target));
    }
    return values;
}

py::dict dictOf(const TargetColumns& columns) {
    const std::vector<Target>& targets = columns.target;
    py::dict result;
    result["field"] = arrayOf(columns.field);
    result["group"] = arrayOf(columns.group);
    result["name"] = columnOf(targets, [](const Target& t) { return t.name; });
    result["survey"] = columnOf(targets, [](const Target& t) { return t.survey; });
    result["use"] = columnOf(targets, [](const Target& t) { return std::string(t.use); });
    result["priority"] = arrayOf(columnOf(targets, [](const Target& t) { return t.priority; }));
    result["configid"] =
        arrayOf(columnOf(targets, [](const Target& t) { return static_cast<std::int64_t>(t.configid); }));
    result["fibre"] = arrayOf(columnOf(targets, [](const Target& t) { return t.fibreid == kNoFibre ? 0 : t.fibreid; }));
    result["automatic"] = columnOf(targets, [](const Target& t) { return t.automatic; });
    result["ra"] = arrayOf(columns.ra);
    result["dec"] = arrayOf(columns.dec);
    result["epoch"] = arrayOf(columnOf(targets, [](const Target& t) { return t.position.epoch; }));
    result["pm_ra"] = arrayOf(columnOf(targets, [](const Target& t) { return t.position.pmRa; }));
    result["pm_dec"] = arrayOf(columnOf(targets, [](const Target& t) { return t.position.pmDec; }));
    result["parallax"] = arrayOf(columnOf(targets, [](const Target& t) { return t.position.parallax; }));
    result["rv"] = arrayOf(columnOf(targets, [](const Target& t) { return t.position.rv; }));
    result["x"] = arrayOf(columns.x);
    result["y"] = arrayOf(columns.y);
    result["spaxel"] = columns.spaxel;
    return result;
}

py::dict document(const std::string& xml, const std::string& name, const std::string& configFile) {
    const DocumentColumns columns =
        inLibrary([&] { return readColumns(QByteArray::fromStdString(xml), name, configFile); });
    py::dict fields;
    fields["ra"] = arrayOf(columns.fields.ra);
    fields["dec"] = arrayOf(columns.fields.dec);
    fields["targets"] = arrayOf(columns.fields.targets);
    py::dict result;
    result["pa"] = columns.positionAngle;
    result["fields"] = fields;
    result["targets"] = dictOf(columns.targets);
    return result;
}

py::bytes readBytes(const std::string& name) {
    const auto content = inLibrary([&] { return readFile(name); });
    if (!content) {
        throw std::runtime_error(name + " could not be opened");
    }
    return {content->constData(), static_cast<std::size_t>(content->size())};
}

py::bytes configure(const std::string& input, const std::optional<std::string>& output, const std::string& configFile,
                    const Estimates& estimates) {
    const QByteArray bytes = inLibrary([&] {
        const PosConfig config = openConfig(configFile);
        static_cast<void>(config.get<double>("default_epoch")); // told before an input that cannot be read
        const QDomDocument document = loadFieldDefinition(input);
        configureDocument(config, document, estimates);
        if (output) {
            checkOutput(config, *output);
        }
        QByteArray text = serialiseXml(document);
        if (output) {
            writeFile(*output, text);
        }
        return text;
    });
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/** The problems of the instrument and of a document, as JSON. */
std::string check(const std::string& xml, const std::string& name, const std::string& configFile,
                  const Estimates& estimates, double fieldRadiusDeg) {
    return inLibrary([&] {
        const double fieldRadius = degreesToRadians(fieldRadiusDeg);
        CheckedInstrument instrument = checkInstrument(configFile, fieldRadius);
        const CheckOptions options{estimates, fieldRadius, instrument.isSound};
        instrument.files.push_back(
            {name, checkDocument(QByteArray::fromStdString(xml), name, *instrument.instrument, options)});
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
    py::class_<Estimates>(module, "Estimates")
        .def(py::init(&estimatesOf), py::arg("epoch"), py::arg("hour_angle"), py::arg("pressure"),
             py::arg("horizon_limit"));
    module.def("document", &document, py::arg("xml"), py::arg("name"), py::arg("config"));
    module.def("read_bytes", &readBytes, py::arg("name"));
    module.def("configure", &configure, py::arg("input"), py::arg("output"), py::arg("config"), py::arg("estimates"));
    module.def("check", &check, py::arg("xml"), py::arg("name"), py::arg("config"), py::arg("estimates"),
               py::arg("field_radius"));
}

} // namespace pos
