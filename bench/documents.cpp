/**
 * @file
 * Times of the readers and writers of documents and of the records in them.
 */
#include "pointing.h"
#include "repeatedField.h"

#include "ConditionsXML.h"
#include "FibreTargets.h"
#include "FieldTargets.h"
#include "FieldXML.h"
#include "FocalPlaneXML.h"
#include "TargetXML.h"
#include "Veko.h"
#include "VekoXML.h"
#include "fileAccess.h"
#include "placeVeko.h"
#include "xmlParse.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <benchmark/benchmark.h>

namespace {

using namespace pos;

constexpr double kGeneratedEpoch = 2016.0;

/** The example with one field, its bundle pointed at it. */
struct Observation {
    PosConfig config = embeddedConfig();
    QDomDocument document = parseXml(QByteArray::fromStdString(repeatedField(1)), "the example").document;
    QDomElement configure = findConfigureElement(document.documentElement());
    QDomElement field = findFieldElement(document.documentElement(), QDomElement());
    FieldTargets targets = findFieldTargets(field);
    Target science = createTargetXML(targets.science);
    std::unique_ptr<Veko> veko = createVekoXML(config, ":/VEKO.xml", *createFieldXML(field), kWinterNight);

    Observation() {
        placeVeko(*veko, science, scienceFibre(science));
    }
    void saveTargets() {
        const FibreTargets fibres(*veko, kGeneratedEpoch);
        fibres.save(field, targets.science, scienceFibre(science));
    }
};

/** Times a reader or writer, which is given the observation. */
template <typename Work> void timeWork(benchmark::State& state, Work work) {
    Observation observation;
    for (auto iteration : state) {
        benchmark::DoNotOptimize(work(observation));
    }
}

void loadFile(benchmark::State& state, const char* name) {
    const PosConfig config = embeddedConfig(); // for the data model version
    for (auto iteration : state) {
        benchmark::DoNotOptimize(loadXmlFile(name));
    }
}

void parseDocument(benchmark::State& state, bool checked) {
    const QByteArray text = readFile(":/VEKO.xml").value();
    for (auto iteration : state) {
        QDomDocument document;
        if (checked) {
            document = parseXml(text, "the example").document;
        } else {
            document.setContent(text);
        }
        benchmark::DoNotOptimize(document);
    }
}

void saveAllTargets(benchmark::State& state) {
    for (auto iteration : state) {
        state.PauseTiming();
        auto observation = std::make_unique<Observation>();
        state.ResumeTiming();
        observation->saveTargets();
        state.PauseTiming();
        observation.reset();
        state.ResumeTiming();
    }
}

void serialise(benchmark::State& state, bool plainly) {
    Observation observation;
    observation.saveTargets();
    for (auto iteration : state) {
        benchmark::DoNotOptimize(plainly ? observation.document.toByteArray(1) : serialiseXml(observation.document));
    }
}

BENCHMARK_CAPTURE(loadFile, FocalPlaneMap, ":/focal_plane_map.xml");
BENCHMARK_CAPTURE(loadFile, Bundle, ":/VEKO.xml");
// What checking a document costs beside the XML library's own reading.
BENCHMARK_CAPTURE(parseDocument, BundleChecked, true);
BENCHMARK_CAPTURE(parseDocument, BundleByTheLibrary, false);

BENCHMARK_CAPTURE(timeWork, LoadConfiguration, [](Observation&) { return embeddedConfig(); });
BENCHMARK_CAPTURE(timeWork, ReadBundle, [](Observation& o) {
    return createVekoXML(o.config, ":/VEKO.xml", Field(kHighField), kWinterNight);
});
BENCHMARK_CAPTURE(timeWork, ReadField, [](Observation& o) { return createFieldXML(o.field); });
BENCHMARK_CAPTURE(timeWork, ReadTarget, [](Observation& o) { return createTargetXML(o.targets.science); });
BENCHMARK_CAPTURE(timeWork, ReadConditions,
                  [](Observation& o) { return createConditionsXML(findConditionsElement(o.configure)); });
BENCHMARK_CAPTURE(timeWork, WriteConditions, [](Observation& o) {
    saveConditionsXML(kWinterNight, 0.1, o.document, o.configure);
    return o.configure;
});
BENCHMARK_CAPTURE(timeWork, WriteFocalPlaneRecord, [](Observation& o) {
    QDomElement parent = o.document.createElement("configure");
    saveFocalPlaneXML(o.veko->focalPlane, o.document, parent);
    return parent;
});
BENCHMARK_CAPTURE(timeWork, WriteTargetAndTakeItOut, [](Observation& o) {
    return o.field.removeChild(saveTargetXML(o.science, o.field, o.targets.science));
});
BENCHMARK_CAPTURE(timeWork, WriteGuideStar, [](Observation& o) {
    saveGuideStar(*o.veko, o.targets.guide);
    return o.targets.guide;
});
BENCHMARK(saveAllTargets)->Name("WriteAllTargetsOfAField")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(serialise, ConfiguredField, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(serialise, ConfiguredFieldByTheLibrary, true)->Unit(benchmark::kMillisecond);

} // namespace
