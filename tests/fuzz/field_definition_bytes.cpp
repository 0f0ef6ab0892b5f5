// The bytes themselves as a field definition, through the whole run.

#include "PosConfig.h"
#include "checkedRun.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const pos::PosConfig config(folder.configuration().c_str(), pos::PosConfig::XML);
    RunNumbers anywhere;
    anywhere.horizonLimit = -90;
    writeBytes(folder.input(), textOf(data, size));
    folder.configure(config, anywhere);
    return 0;
}
