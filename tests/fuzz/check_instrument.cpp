// veko check on an instrument: whatever the configuration, the focal-plane map or the bundle, it finds an error exactly
// where no run can use the instrument, and with an instrument that runs can use an error in a field definition exactly
// where the run fails. The bytes are the files themselves, or edits that they choose.

#include "Instrument.h"
#include "PosConfig.h"
#include "Version.h"
#include "angles.h"
#include "checkInstrument.h"
#include "checkedProblems.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "fieldDefinition.h"

#include <algorithm>
#include <map>

namespace {

using namespace pos;

/** The files of an instrument, and what they hold before the bytes change it. */
std::map<std::string, std::string> filesOf(const RunFolder& folder) {
    std::map<std::string, std::string> files;
    for (const std::string& name : {folder.configuration(), folder.map(), folder.bundle()}) {
        files[name] = bytesOf(name);
    }
    return files;
}

/** Writes the files, one or several of them changed. */
void writeInstrument(FuzzedDataProvider& bytes, const std::map<std::string, std::string>& files) {
    const int changed = bytes.ConsumeIntegralInRange<int>(1, (1 << files.size()) - 1); // a bit for each
    const bool isText = bytes.ConsumeIntegralInRange<int>(0, 3) == 0;
    int file = 1;
    for (const auto& [name, content] : files) {
        const bool isChanged = (changed & file) != 0;
        writeBytes(name, !isChanged ? content
                         : isText   ? bytes.ConsumeRandomLengthString()
                                    : editedDocument(bytes, {nodeOf(content)}));
        file *= 2;
    }
}

/** Checks a field definition with an instrument that runs can use. */
void checkField(CheckedInstrument& instrument) {
    const CheckOptions options;
    const QByteArray document = QByteArray::fromStdString(kPlainField);
    const CheckedFile file{"field.xml", checkDocument(document, "field.xml", *instrument.instrument, options)};
    require(hasError(file) != isConfigured(document, *instrument.config, options.estimates),
            "an error stands where the run fails");
    tellProblems({file});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const std::map<std::string, std::string> files = filesOf(folder);
    FuzzedDataProvider bytes(data, size);
    datamver.clear();
    writeInstrument(bytes, files);
    CheckedInstrument instrument = checkInstrument(folder.configuration(), degreesToRadians(1.0));
    tellProblems(instrument.files);
    require(std::any_of(instrument.files.begin(), instrument.files.end(), hasError) != instrument.isSound,
            "an error stands where no run can use the instrument");
    if (instrument.isSound) {
        checkField(instrument);
    }
    return 0;
}
