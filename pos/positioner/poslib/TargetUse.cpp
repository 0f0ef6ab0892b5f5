#include "TargetUse.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <string_view>

namespace pos {

namespace {

/** The letters in the order of TargetUse::Value. */
constexpr std::array<std::string_view, 6> kLetters = {"T", "C", "G", "S", "E", "R"};
static_assert(kLetters.size() == TargetUse::R + 1 && kLetters[TargetUse::T] == "T" && kLetters[TargetUse::C] == "C" &&
              kLetters[TargetUse::G] == "G" && kLetters[TargetUse::S] == "S" && kLetters[TargetUse::E] == "E" &&
              kLetters[TargetUse::R] == "R");

TargetUse::Value parseUse(const std::string& text) {
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    const auto* const found = std::find(kLetters.begin(), kLetters.end(), upper);
    if (found == kLetters.end()) {
        throw std::runtime_error(text + " is not a valid target use");
    }
    return static_cast<TargetUse::Value>(found - kLetters.begin());
}

} // namespace

TargetUse::TargetUse(const std::string& text) : value_(parseUse(text)) {}

TargetUse::operator std::string() const {
    return value_ < kLetters.size() ? std::string(kLetters.at(value_)) : std::string();
}

} // namespace pos
