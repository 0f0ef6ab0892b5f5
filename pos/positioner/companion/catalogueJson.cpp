#include "catalogueJson.h"

#include <nlohmann/json.hpp>

namespace pos {

std::string catalogueJson(const std::vector<const Rule*>& rules) {
    using Json = nlohmann::ordered_json;
    Json list = Json::array();
    for (const Rule* rule : rules) {
        list.push_back({{"code", rule->code},
                        {"severity", severityWord(rule->severity)},
                        {"title", rule->title},
                        {"explanation", rule->explanation},
                        {"wrong", rule->wrong},
                        {"right", rule->right}});
    }
    return Json{{"version", 1}, {"rules", list}}.dump(1) + '\n';
}

} // namespace pos
