#include "pageTemplate.h"

#include <kainjow/mustache.hpp>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;
using kainjow::mustache::data;

data dataOf(const Json& value) {
    if (value.is_object()) {
        data object;
        for (const auto& [name, member] : value.items()) {
            object.set(name, dataOf(member));
        }
        return object;
    }
    if (value.is_array()) {
        data list(data::type::list);
        for (const Json& member : value) {
            list.push_back(dataOf(member));
        }
        return list;
    }
    return value.is_string() ? data(value.get<std::string>()) : data(value == true);
}

} // namespace

std::string filledTemplate(const std::string& text, const Json& values) {
    kainjow::mustache::mustache page(text);
    if (!page.is_valid()) {
        throw std::runtime_error("The template of the page is wrong: " + page.error_message());
    }
    return page.render(dataOf(values));
}

std::string jsonForScript(const Json& values) {
    std::string safe;
    for (const char character : values.dump(-1, ' ', false, Json::error_handler_t::replace)) {
        if (character == '<') {
            safe += "\\u003c"; // stands nowhere but in texts
        } else {
            safe += character;
        }
    }
    return safe;
}

} // namespace pos
