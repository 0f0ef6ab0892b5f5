// A field definition of elements, attributes and values that the bytes choose, through the whole run.

#include "PosConfig.h"
#include "checkedRun.h"
#include "documentFromBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const pos::PosConfig config(folder.configuration().c_str(), pos::PosConfig::XML);
    FuzzedDataProvider bytes(data, size);
    const RunNumbers numbers = chosenNumbers(bytes);
    writeBytes(folder.input(), editedDocument(bytes, fieldDefinitions()));
    folder.configure(config, numbers);
    return 0;
}
