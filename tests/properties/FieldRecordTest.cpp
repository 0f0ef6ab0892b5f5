#include "FieldXML.h"
#include "ProcessWideState.h"
#include "SkyMaskXML.h"
#include "records.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class FieldRecordProperty : public ProcessWideState {};

/** No more: what is looked for is how targets and groups stand to each other. */
constexpr int kMostGroups = 3;
constexpr int kMostTargets = 3;

void addTargets(Field& field, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        Target target = anyTarget();
        if (!field.configidIndex.contains(target.configid)) {
            field.addTarget(target);
        }
    }
}

/** A field with targets of its own, or none, and with groups. A group is never empty: reading ends at one that is. */
Field anyField() {
    Field field(anyPlace());
    addTargets(field, *wholeBetween(0, kMostTargets).as("targets"));
    const auto groups = static_cast<std::size_t>(*wholeBetween(0, kMostGroups).as("groups"));
    for (std::size_t group = 0; group < groups; ++group) {
        field.currentGroup = field.groups.size();
        field.groups.emplace_back();
        addTargets(field, *wholeBetween(1, kMostTargets).as("targets of the group"));
        RC_PRE(!field.groups.back().empty());
    }
    return field;
}

/** Reads the only field of a document as it comes back from a file. */
Field readBack(const QDomDocument& document) {
    const QDomDocument loaded = writtenAndLoaded(document);
    return *createFieldXML(loaded.documentElement().firstChildElement("field"));
}

Field throughDocument(const Field& field) {
    const QDomDocument document = emptyDocument("fields");
    document.documentElement().appendChild(saveFieldXML(field, document));
    return readBack(document);
}

void requireWritten(const Field& actual, const Field& expected) {
    ::requireWritten(actual.centre, expected.centre);
    RC_ASSERT(actual.configidIndex == expected.configidIndex);
    RC_ASSERT(actual.groups.size() == expected.groups.size());
    for (std::size_t group = 0; group < expected.groups.size(); ++group) {
        const std::vector<Target>& targets = expected.groups.at(group);
        RC_ASSERT(actual.groups.at(group).size() == targets.size());
        for (std::size_t place = 0; place < targets.size(); ++place) {
            ::requireWritten(actual.groups.at(group).at(place), targets.at(place));
        }
    }
}

} // namespace

RC_GTEST_FIXTURE_PROP(FieldRecordProperty, AFieldKeepsItsTargetsInTheirGroups, ()) {
    const Field field = anyField();
    const Field first = throughDocument(field);
    requireWritten(first, field);
    const Field second = throughDocument(first);
    requireWritten(second, first);
    RC_ASSERT(second.centre.ra == first.centre.ra);
    RC_ASSERT(second.centre.dec == first.centre.dec);
}
