#include "Field.h"
#include "generators.h"
#include "thrown.h"

#include <map>
#include <rapidcheck/gtest.h>
#include <set>

using namespace pos;

namespace {

/** No id, or one of a few: among several targets some ask for the same, and for one that has been assigned. */
rc::Gen<std::uint64_t> anyRequestedId() {
    return rc::gen::oneOf(rc::gen::just(std::uint64_t{0}), rc::gen::cast<std::uint64_t>(wholeBetween(1, 12)),
                          rc::gen::cast<std::uint64_t>(wholeBetween(-3, -1)));
}

Target targetOf(std::uint64_t id, const std::string& name) {
    Target target;
    target.configid = id;
    target.name = name;
    return target;
}

/** That every target stands where the index says, that no id is 0, and that the index holds nothing else. */
void requireConsistent(const Field& field) {
    std::size_t count = 0;
    for (std::size_t group = 0; group < field.groups.size(); ++group) {
        for (std::size_t place = 0; place < field.groups.at(group).size(); ++place) {
            const std::uint64_t id = field.groups.at(group).at(place).configid;
            RC_ASSERT(id != 0U);
            RC_ASSERT(field.configidIndex.at(id) == Field::Place(group, place));
            ++count;
        }
    }
    // An id that two targets share would make the index the smaller one.
    RC_ASSERT(field.configidIndex.size() == count);
}

} // namespace

RC_GTEST_PROP(FieldIdsProperty, IdsStayUniqueWhateverIsAdded, ()) {
    const auto ids = *rc::gen::container<std::vector<std::uint64_t>>(anyRequestedId()).as("requested ids");
    Field field({0.0, 0.0});
    field.groups.resize(3);
    std::map<std::uint64_t, std::string> expected;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        field.currentGroup = static_cast<std::uint64_t>(*wholeBetween(0, 2));
        const std::string name = "target " + std::to_string(i);
        Target target = targetOf(ids.at(i), name);
        if (expected.contains(ids.at(i))) {
            RC_ASSERT(messageOf([&] { field.addTarget(target); }) == "Target configid already exists");
            RC_ASSERT(target.configid == ids.at(i));
        } else {
            const std::uint64_t id = field.addTarget(target);
            RC_ASSERT(target.configid == id);
            RC_ASSERT(ids.at(i) == 0U || id == ids.at(i));
            RC_ASSERT(expected.emplace(id, name).second);
            RC_ASSERT(field.groups.at(field.currentGroup).back().name == name);
        }
        requireConsistent(field);
    }
    RC_ASSERT(field.configidIndex.size() == expected.size());
    for (const auto& [id, name] : expected) {
        RC_ASSERT(field.targetById(id).name == name);
    }
}

RC_GTEST_PROP(FieldIdsProperty, AnAssignedIdIsTheSmallestFreeOneAboveTheLast, ()) {
    const auto taken = *rc::gen::container<std::set<std::uint64_t>>(rc::gen::cast<std::uint64_t>(wholeBetween(1, 40)));
    Field field({0.0, 0.0});
    for (const std::uint64_t id : taken) {
        Target target = targetOf(id, "taken");
        field.addTarget(target);
    }
    std::uint64_t last = 1;
    for (int i = 0; i < 20; ++i) {
        Target target = targetOf(0, "free");
        const std::uint64_t id = field.addTarget(target);
        RC_ASSERT(id > last);
        for (std::uint64_t passed = last + 1; passed < id; ++passed) {
            RC_ASSERT(taken.contains(passed));
        }
        last = id;
    }
    requireConsistent(field);
}
