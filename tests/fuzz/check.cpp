// veko check on a field definition: it finds an error exactly where the run fails, tells every problem in every form,
// and what it mends needs no mending again. The bytes are those of the target field_definition.

#include "Instrument.h"
#include "PosConfig.h"
#include "Version.h"
#include "angles.h"
#include "checkedRun.h"
#include "configureDocument.h"
#include "documentFromBytes.h"
#include "fixes.h"
#include "problemJson.h"
#include "problemSarif.h"
#include "problemText.h"
#include "xmlEncoding.h"
#include "xmlKeywords.h"
#include "xmlParse.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <algorithm>

namespace {

using namespace pos;

/** Whether a run on a document succeeds, up to the bytes of its output. */
bool isConfigured(const QByteArray& bytes, const PosConfig& config, const Estimates& estimates) {
    return endsOrExplains([&] {
        const QDomDocument document = parseXml(decodeXml(bytes, "field.xml"), "field.xml").document;
        requireDataModelVersion(document);
        configureDocument(config, document, estimates);
        serialiseXml(document);
    });
}

void tellEveryProblem(const CheckedFile& file) {
    for (const Problem& problem : file.result.problems) {
        require(!problem.message.empty(), "a problem has a message");
        problemText(problem, file.result.text, file.name, {});
    }
    problemJson({file});
    problemSarif({file});
}

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
        {numbers.epoch, numbers.hourAngle, numbers.pressure, degreesToRadians(90 - numbers.horizonLimit)},
        degreesToRadians(1.0)};
    const CheckedFile file{"field.xml", checkDocument(document, "field.xml", instrument, options)};
    const bool hasError = std::any_of(file.result.problems.begin(), file.result.problems.end(),
                                      [](const Problem& problem) { return problem.severity == Severity::Error; });
    require(hasError != isConfigured(document, config, options.estimates), "an error stands where the run fails");
    tellEveryProblem(file);
    requireOneMendingIsEnough(document, file.result, instrument, options);
    return 0;
}
