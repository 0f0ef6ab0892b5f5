// A field definition, through the whole run: the bytes themselves, or elements, attributes and values that they choose.

#include "PosConfig.h"
#include "checkedRun.h"
#include "documentFromBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const pos::PosConfig config(folder.configuration().c_str(), pos::PosConfig::XML);
    FuzzedDataProvider bytes(data, size);
    // A seed of text ends with "0".
    const bool isText = bytes.ConsumeIntegralInRange<int>(0, 3) == 0;
    const RunNumbers numbers = chosenNumbers(bytes);
    writeBytes(folder.input(),
               isText ? bytes.ConsumeRemainingBytesAsString() : editedDocument(bytes, fieldDefinitions()));
    folder.configure(config, numbers);
    return 0;
}
