// The focal-plane map or the bundle definition, through the whole run: the bytes themselves, or edits that they choose.

#include "PosConfig.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "fieldDefinition.h"

namespace {

/** What the bytes make up; a seed of text ends with the digit of its kind. */
enum Kind { kMapBytes, kBundleBytes, kMap, kBundle, kMapAndBundle, kKinds = 6 };

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const pos::PosConfig config(folder.configuration().c_str(), pos::PosConfig::XML);
    static const std::string map = bytesOf(folder.map());
    static const std::string bundle = bytesOf(folder.bundle());
    static const std::vector<Node> maps = {nodeOf(map)};
    static const std::vector<Node> bundles = {nodeOf(bundle)};
    FuzzedDataProvider bytes(data, size);
    const int kind = bytes.ConsumeIntegralInRange<int>(0, kKinds - 1);
    writeBytes(folder.map(), map);
    writeBytes(folder.bundle(), bundle);
    if (kind == kMap || kind >= kMapAndBundle) {
        writeBytes(folder.map(), editedDocument(bytes, maps));
    }
    if (kind == kBundle || kind >= kMapAndBundle) {
        writeBytes(folder.bundle(), editedDocument(bytes, bundles));
    }
    if (kind == kMapBytes || kind == kBundleBytes) {
        writeBytes(kind == kMapBytes ? folder.map() : folder.bundle(), bytes.ConsumeRemainingBytesAsString());
    }
    folder.configure(config, RunNumbers());
    return 0;
}
