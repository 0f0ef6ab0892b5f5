#include "Field.h"

#include "SkyMaskXML.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <stdexcept>

namespace pos {

std::uint64_t Field::addTarget(Target& target) {
    if (target.configid == 0) {
        do {
            ++nextConfigid;
        } while (configidIndex.contains(nextConfigid));
        target.configid = nextConfigid;
    }
    std::vector<Target>& group = groups.at(currentGroup);
    if (!configidIndex.try_emplace(target.configid, currentGroup, group.size()).second) {
        throw std::runtime_error("Target configid already exists");
    }
    group.push_back(target);
    return target.configid;
}

void Field::replaceTarget(const Target& target) {
    const auto [group, position] = configidIndex.at(target.configid);
    groups.at(group).at(position) = target;
}

void Field::addSkyMask(const SkyMask& mask) {
    skyMasks.push_back(mask);
    if (!element.isNull()) {
        saveSkyMaskXML(mask, findOrCreateChild(element.ownerDocument(), element, tag::avoidanceList));
    }
}

const Target& Field::targetById(std::uint64_t configid) const {
    const auto [group, position] = configidIndex.at(configid);
    return groups.at(group).at(position);
}

} // namespace pos
