// A configuration file, XML or INFO: the bytes themselves, looked up, or edits of the shipped one that the bytes
// choose, through the whole run.

#include "PosConfig.h"
#include "Version.h"
#include "checkedRun.h"
#include "documentFromBytes.h"

namespace {

using pos::PosConfig;

constexpr const char* kNumbers[] = {"default_epoch",
                                    "telescope.east_longitude",
                                    "telescope.latitude",
                                    "telescope.height",
                                    "telescope.horizon_limit",
                                    "telescope.rotator_offset",
                                    "telescope.rotator_low_limit",
                                    "telescope.rotator_high_limit",
                                    "telescope.optimum_rotator_angle.plate_a",
                                    "telescope.optimum_rotator_angle.plate_b"};

/** The shipped configuration, of the small bundle, without what no run reads. */
const Node& shippedConfiguration() {
    static const Node configuration = [] {
        Node node = nodeOf(sourceText("pos/positioner/resources/configure.xml"));
        std::erase_if(node.children, [](const Node& child) { return child.name.ends_with("_dither"); });
        for (Node* child : nodesOf(node)) {
            if (child->name == "veko_definition") {
                child->text = "data/bundle.xml";
            }
        }
        return node;
    }();
    return configuration;
}

/** Looks up every key. The files are not opened: the bytes may name any of the machine's. */
void lookUp(const PosConfig& config) {
    for (const char* key : kNumbers) {
        endsOrExplains([&] { config.get<double>(key); });
        endsOrExplains([&] { config.getAngle(key); });
    }
    for (const char* key : {"veko_definition", "telescope.focal_plane_map"}) {
        endsOrExplains([&] { require(!config.getFilename(key).empty(), "a file name that is found is not empty"); });
    }
}

std::string edited(FuzzedDataProvider& bytes, PosConfig::format format) {
    if (format == PosConfig::XML) {
        return editedDocument(bytes, {shippedConfiguration()});
    }
    Node configuration = shippedConfiguration();
    editDocument(bytes, configuration);
    return infoText(configuration);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    FuzzedDataProvider bytes(data, size);
    const int kind = bytes.ConsumeIntegralInRange<int>(0, 3);
    const PosConfig::format format = kind % 2 == 0 ? PosConfig::XML : PosConfig::INFO;
    pos::datamver.clear();
    writeBytes(folder.configuration(), kind < 2 ? bytes.ConsumeRemainingBytesAsString() : edited(bytes, format));
    endsOrExplains([&] {
        const PosConfig config(folder.configuration().c_str(), format);
        lookUp(config);
        if (kind >= 2) {
            folder.configure(config, RunNumbers());
        }
    });
    return 0;
}
