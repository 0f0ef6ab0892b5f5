#include "FibreStatus.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace pos {

namespace {

/** The words in the order of FibreStatus::Value. */
constexpr std::array<std::string_view, 7> kWords = {"enabled",   "disabled", "broken", "bad ferrule",
                                                    "no magnet", "no prism", "absent"};
static_assert(kWords.size() == FibreStatus::Absent + 1 && kWords[FibreStatus::Enabled] == "enabled" &&
              kWords[FibreStatus::Disabled] == "disabled" && kWords[FibreStatus::Broken] == "broken" &&
              kWords[FibreStatus::BadFerrule] == "bad ferrule" && kWords[FibreStatus::NoMagnet] == "no magnet" &&
              kWords[FibreStatus::NoPrism] == "no prism" && kWords[FibreStatus::Absent] == "absent");

FibreStatus::Value parseStatus(const std::string& text) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    const auto* const found = std::find(kWords.begin(), kWords.end(), lower);
    return found == kWords.end() ? FibreStatus::Broken : static_cast<FibreStatus::Value>(found - kWords.begin());
}

} // namespace

FibreStatus::FibreStatus(const std::string& text) : value_(parseStatus(text)) {}

FibreStatus::operator std::string() const {
    return value_ < kWords.size() ? std::string(kWords.at(value_)) : std::string();
}

} // namespace pos
