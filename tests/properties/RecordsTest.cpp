#include "records.h"
#include "ConditionsXML.h"
#include "ProcessWideState.h"
#include "SkyMaskXML.h"
#include "TargetXML.h"

#include <rapidcheck/gtest.h>

using namespace pos;

// Each record is written, read from the file, written and read again. The first reading has what the stated decimals
// keep; the second has the same to the bit.

namespace {

class RecordsProperty : public ProcessWideState {};

Conditions throughDocument(const Conditions& conditions) {
    const QDomDocument document = emptyDocument("configure");
    saveConditionsXML(conditions, *anyAngle().as("hour angle"), document, document.documentElement());
    const QDomDocument loaded = writtenAndLoaded(document);
    return createConditionsXML(loaded.documentElement().firstChildElement("conditions"));
}

SkyMask throughDocument(const SkyMask& mask) {
    const QDomDocument document = emptyDocument("avoidance_list");
    saveSkyMaskXML(mask, document.documentElement());
    const QDomDocument loaded = writtenAndLoaded(document);
    const std::vector<SkyMask> masks = createSkyMasksXML(loaded.documentElement());
    RC_ASSERT(masks.size() == 1U);
    return masks.front();
}

Target throughDocument(const Target& target) {
    const QDomDocument document = emptyDocument("field");
    saveTargetXML(target, document.documentElement(), QDomElement());
    const QDomDocument loaded = writtenAndLoaded(document);
    return createTargetXML(loaded.documentElement().firstChildElement("target"));
}

} // namespace

RC_GTEST_FIXTURE_PROP(RecordsProperty, ConditionsKeepTheWeatherExactlyAndTheEpochToTwoDecimals, ()) {
    const Conditions conditions{*between(-20000.0, 90000.0).as("MJD"), *between(-1e3, 1e3).as("temperature"),
                                *between(0.0, 2000.0).as("pressure"), *between(-1.0, 2.0).as("humidity")};
    const Conditions first = throughDocument(conditions);
    // Days to years.
    requireToDecimals(first.epoch / 365.25, conditions.epoch / 365.25, 2);
    RC_ASSERT(first.temperature == conditions.temperature);
    RC_ASSERT(first.pressure == conditions.pressure);
    RC_ASSERT(first.relativeHumidity == conditions.relativeHumidity);
    const Conditions second = throughDocument(first);
    RC_ASSERT(second.epoch == first.epoch);
    RC_ASSERT(second.temperature == first.temperature);
    RC_ASSERT(second.pressure == first.pressure);
    RC_ASSERT(second.relativeHumidity == first.relativeHumidity);
}

RC_GTEST_FIXTURE_PROP(RecordsProperty, ASkyMaskKeepsItsRadiusExactly, ()) {
    const SkyMask mask = anyMask();
    const SkyMask first = throughDocument(mask);
    requireWritten(first.centre, mask.centre);
    RC_ASSERT(first.radius == mask.radius);
    const SkyMask second = throughDocument(first);
    RC_ASSERT(second.centre.ra == first.centre.ra);
    RC_ASSERT(second.centre.dec == first.centre.dec);
    RC_ASSERT(second.radius == first.radius);
}

RC_GTEST_FIXTURE_PROP(RecordsProperty, ATargetKeepsEverythingButThePositionsLastDecimals, ()) {
    const Target target = anyTarget();
    const Target first = throughDocument(target);
    requireWritten(first, target);
    const Target second = throughDocument(first);
    requireWritten(second, first);
    requireSettled(second.position, first.position);
}
