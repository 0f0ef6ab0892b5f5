// All numbers that a run reads, at once: of the configuration, the focal-plane map, the bundle, the field definition
// and the command line.

#include "PosConfig.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "fieldDefinition.h"

#include <QString>

namespace {

bool isNumber(const std::string& text) {
    bool ok = false;
    QString::fromStdString(text).toDouble(&ok);
    return ok;
}

/** Replaces the numbers of a document, or some of them, but for the versions that every run compares. */
std::string withNumbers(FuzzedDataProvider& bytes, const Node& document) {
    Node changed = document;
    for (Node* const node : nodesOf(changed)) {
        if (isNumber(node->text) && bytes.ConsumeBool()) {
            node->text = chosenNumber(bytes);
        }
        for (auto& [name, value] : node->attributes) {
            if (name != "datamver" && isNumber(value) && bytes.ConsumeBool()) {
                value = chosenNumber(bytes);
            }
        }
    }
    return xmlText(changed);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const Node configuration = nodeOf(bytesOf(folder.configuration()));
    static const Node map = nodeOf(bytesOf(folder.map()));
    static const Node bundle = nodeOf(bytesOf(folder.bundle()));
    FuzzedDataProvider bytes(data, size);
    const RunNumbers numbers = chosenNumbers(bytes);
    writeBytes(folder.configuration(), withNumbers(bytes, configuration));
    writeBytes(folder.map(), withNumbers(bytes, map));
    writeBytes(folder.bundle(), withNumbers(bytes, bundle));
    const std::vector<Node>& documents = fieldDefinitions();
    writeBytes(folder.input(),
               withNumbers(bytes, documents.at(bytes.ConsumeIntegralInRange<std::size_t>(0, documents.size() - 1))));
    endsOrExplains([&] {
        const pos::PosConfig config(folder.configuration().c_str(), pos::PosConfig::XML);
        folder.configure(config, numbers);
    });
    return 0;
}
