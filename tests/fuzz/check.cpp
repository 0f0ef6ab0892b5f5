// veko check on a field definition: it finds an error exactly where the run fails, tells every problem in every form,
// and what it mends needs no mending again. The bytes are those of the target field_definition.

#include "Instrument.h"
#include "PosConfig.h"
#include "angles.h"
#include "checkedProblems.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "fixes.h"

#include <algorithm>

namespace {

using namespace pos;

/** Mends a document that has a fix, and looks whether that leaves nothing to mend. */
void requireOneMendingIsEnough(const QByteArray& document, const CheckResult& result, Instrument& instrument,
                               const CheckOptions& options) {
    std::optional<MendedDocument> mended;
    const bool isWritable =
        endsOrExplains([&] { mended = mendedDocument(document, result, "field.xml", instrument, options); });
    const bool hasFix = std::any_of(result.problems.begin(), result.problems.end(),
                                    [](const Problem& problem) { return problem.fix.has_value(); });
    require(!isWritable || mended.has_value() == hasFix, "a document with a fix is mended");
    if (mended) {
        const CheckResult again = checkDocument(mended->bytes, "field.xml", instrument, options);
        require(!mendedDocument(mended->bytes, again, "field.xml", instrument, options),
                "a mended document has no fix");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const RunFolder folder;
    static const PosConfig config(folder.configuration().c_str(), PosConfig::XML);
    static Instrument instrument(config);
    FuzzedDataProvider bytes(data, size);
    const bool isText = bytes.ConsumeIntegralInRange<int>(0, 3) == 0;
    const RunNumbers numbers = chosenNumbers(bytes);
    const QByteArray document = QByteArray::fromStdString(isText ? bytes.ConsumeRemainingBytesAsString()
                                                                 : editedDocument(bytes, fieldDefinitions()));
    const CheckOptions options{
        {numbers.epoch, numbers.hourAngle, numbers.pressure, zenithDistanceOf(numbers.horizonLimit)}};
    const CheckedFile file{"field.xml", checkDocument(document, "field.xml", instrument, options)};
    require(hasError(file) != isConfigured(document, config, options.estimates), "an error stands where the run fails");
    tellProblems({file});
    requireOneMendingIsEnough(document, file.result, instrument, options);
    return 0;
}
