// Single values as documents hold them: positions and their precision, vocabularies, conditions, targets, number texts,
// file names.

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "Estimates.h"
#include "FibreStatus.h"
#include "SkyMaskXML.h"
#include "TargetUse.h"
#include "TargetXML.h"
#include "angles.h"
#include "checkedRun.h"
#include "documentFromBytes.h"
#include "fileAccess.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <cmath>

namespace {

using namespace pos;

/** An element whose attributes of these names have the values that the bytes choose. */
QDomElement elementOf(FuzzedDataProvider& bytes, QDomDocument& document, const std::vector<QString>& names) {
    QDomElement element = document.createElement(QStringLiteral("e"));
    for (const QString& name : names) {
        if (bytes.ConsumeBool()) {
            std::string value = chosenValue(bytes);
            std::erase(value, '\0'); // no document holds one
            element.setAttribute(name, QString::fromStdString(value));
        }
    }
    return element;
}

/** An accepted angle is finite, and that of its text. */
void checkPosition(FuzzedDataProvider& bytes) {
    QDomDocument document;
    const QDomElement element = elementOf(bytes, document, {attr::raD, attr::decD});
    endsOrExplains([&] {
        const Astrometric position = createAstrometricXML("Field centre", element);
        require(std::isfinite(position.ra) && std::isfinite(position.dec), "an accepted position is finite");
        const QString text = element.attribute(attr::raD, QStringLiteral("0"));
        require(text == kMissingValue || degreesToRadians(text.toDouble()) == position.ra, "the angle is the text's");
        saveAstrometricXML(position, element);
    });
}

void checkRecords(FuzzedDataProvider& bytes) {
    QDomDocument document;
    const QDomElement target =
        elementOf(bytes, document,
                  {attr::targra, attr::targdec, attr::targepoch, attr::targpmra, attr::targpmdec, attr::targparal,
                   attr::targrv, attr::targprio, attr::targuse, attr::fibreid, attr::configid, attr::automatic});
    endsOrExplains([&] {
        const Target record = createTargetXML(target);
        const QDomElement saved = saveTargetXML(record, document, target);
        require(createTargetXML(saved).use == record.use, "a use comes back from its text");
        updateTargetXML(record, saved, nullptr);
        record.position.toAstrometric(60000.0).toCirs(60000.0);
    });
    const QDomElement mask = elementOf(bytes, document, {attr::raD, attr::decD, attr::radius});
    endsOrExplains([&] { saveSkyMaskXML(createSkyMaskXML(mask), document.createElement(tag::avoidanceList)); });
    const QDomElement conditions =
        elementOf(bytes, document, {attr::epoch, attr::temperature, attr::pressure, attr::relativeHumidity, attr::ha});
    endsOrExplains([&] {
        const Conditions record = createConditionsXML(conditions);
        saveConditionsXML(record, 0.0, document, document.createElement(tag::configure));
        require(std::isfinite(resolveHourAngle(kHourAngleNotGiven, conditions)),
                "an hour angle that is taken is finite");
    });
}

void checkVocabularies(const std::string& text) {
    const FibreStatus status(text);
    require(FibreStatus(std::string(status)) == status, "a status comes back from its text");
    endsOrExplains([&] {
        const TargetUse use(text);
        require(text.size() == 1 && TargetUse(std::string(use)) == use, "a use is one letter and comes back");
    });
}

void checkNumber(double value, int decimals) {
    const QString text = fixedText(value, decimals);
    bool ok = false;
    const double back = text.toDouble(&ok);
    require(ok || std::isnan(value), "a number's text is a number");
    if (std::isfinite(value)) {
        // Half of the last decimal, and the rounding of the double nearest to the text.
        const double tolerance = 0.5 * std::pow(10.0, -decimals) + 1e-15 * std::fabs(value);
        require(std::fabs(back - value) <= tolerance, "the text is the number to its decimals");
    }
    const double angle = wrapAngle(value);
    require(std::isfinite(value) ? std::fabs(angle) <= kPi : std::isnan(angle), "a wrapped angle is in its range");
}

void checkFileName(const std::string& text) {
    const std::optional<QString> name = fileNameFromBytes(text);
    require(!name || name->toUtf8().toStdString() == text, "a file name turns back into its bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider bytes(data, size);
    checkPosition(bytes);
    checkRecords(bytes);
    checkNumber(bytes.ConsumeFloatingPoint<double>(), bytes.ConsumeIntegralInRange<int>(0, 17));
    std::string word = bytes.ConsumeBool() ? chosenValue(bytes) : bytes.ConsumeRandomLengthString(12);
    std::erase(word, '\0');
    checkVocabularies(word);
    checkFileName(bytes.ConsumeRemainingBytesAsString());
    return 0;
}
