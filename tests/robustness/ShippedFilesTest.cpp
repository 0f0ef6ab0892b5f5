#include "badValues.h"
#include "hostileRun.h"
#include "xmlPlaces.h"

#include <gtest/gtest.h>
#include <random>

// The configuration, the focal-plane map and the bundle of 603 fibres that the program carries, copied into a folder:
// a sample of all values, elements and cuts.

namespace {

struct Sample {
    std::string file; ///< name of the resource without its extension
    int size;
};

void PrintTo(const Sample& value, std::ostream* stream) {
    *stream << value.file;
}

class ShippedFiles : public HostileRun, public testing::WithParamInterface<Sample> {
protected:
    static std::string shipped(const std::string& file) {
        return readBytes(std::string(POS_SOURCE_FOLDER) + "/pos/positioner/resources/" + file + ".xml");
    }
    /** The configuration with the data files beside it instead of the resources. */
    static std::string withOwnNames(std::string configuration) {
        for (std::size_t mark = configuration.find(">:/"); mark != std::string::npos;
             mark = configuration.find(">:/")) {
            configuration.erase(mark + 1, 2);
        }
        return configuration;
    }
    ShippedFiles() {
        put("configure.xml", withOwnNames(shipped("configure")));
        put("focal_plane_map.xml", shipped("focal_plane_map"));
        put("VEKO.xml", shipped("VEKO"));
    }
};

/** Something wrong with one element. */
std::string changed(const std::string& text, const ElementPlace& element, std::mt19937& random) {
    const auto pick = [&random](const std::vector<BadValue>& values) {
        return values.at(random() % values.size()).text;
    };
    const std::string whole = element.whole.in(text);
    switch (random() % 8) {
    case 0:
        return withReplaced(text, element.whole, "");
    case 1:
        return withReplaced(text, element.whole, whole + whole);
    case 2:
        return withReplaced(text, element.startName, "other");
    case 3:
        return text.substr(0, element.whole.begin + random() % whole.size());
    default:
        if (element.attributes.empty()) {
            return withReplaced(text, element.content, pick(badValues(element.content.in(text), 10'000)));
        }
        const Place value = element.attributes.at(random() % element.attributes.size()).value;
        return withReplaced(text, value, pick(badValues(value.in(text), 10'000)));
    }
}

} // namespace

TEST_P(ShippedFiles, MayBeWrongAnywhere) {
    constexpr unsigned int kSeed = 603;
    const std::string document = example("virgo_two_fields");
    const std::string text =
        GetParam().file == "configure" ? withOwnNames(shipped("configure")) : shipped(GetParam().file);
    const std::vector<ElementPlace> elements = elementPlaces(text);
    std::mt19937 random(kSeed);
    for (int i = 0; i < GetParam().size; ++i) {
        const ElementPlace& element = elements.at(random() % elements.size());
        const std::string sample = changed(text, element, random);
        put(GetParam().file + ".xml", sample);
        judge(runSmall(document), "sample " + std::to_string(i) + " " + element.whole.in(text));
    }
    EXPECT_GT(configured(), 0);
    EXPECT_LT(configured(), cases());
}

INSTANTIATE_TEST_SUITE_P(Files, ShippedFiles,
                         testing::Values(Sample{"configure", 40}, Sample{"focal_plane_map", 60}, Sample{"VEKO", 80}),
                         [](const auto& tested) { return tested.param.file; });
