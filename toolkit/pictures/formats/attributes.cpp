// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/attributes.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::string_view kStart = "umbrix: ";
constexpr std::string_view kBetween = ": ";
constexpr std::size_t kMost = 32;
constexpr std::size_t kLongestKey = 32;
constexpr std::size_t kLongestValue = 200;

bool is_key(std::string_view text)
{
    return !text.empty() && text.size() <= kLongestKey && std::ranges::all_of(text, [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-';
    });
}

bool is_value(std::string_view text)
{
    return text.size() <= kLongestValue &&
           std::ranges::all_of(text, [](char letter) { return letter >= ' ' && letter <= '~'; });
}

} // namespace

std::string value_of(Attributes const& attributes, std::string_view key)
{
    auto const found = std::ranges::find(attributes, key, &Attribute::key);
    return found == attributes.end() ? "" : found->value;
}

void set_value(Attributes& attributes, std::string_view key, std::string_view value)
{
    auto const found = std::ranges::find(attributes, key, &Attribute::key);
    if (found != attributes.end()) {
        found->value = value;
    } else if (!attributes.empty()) {
        attributes.push_back({std::string(key), std::string(value)});
    }
}

std::string attribute_text(Attributes const& attributes)
{
    std::string text;
    for (Attribute const& each : attributes) {
        text += fmt::format("{}{}{}\n", each.key, kBetween, each.value);
    }
    return text;
}

Attributes parse_attributes(std::string_view text)
{
    if (!text.starts_with(kStart) || text.size() > kMostAttributeText || !text.ends_with('\n')) {
        return {};
    }
    Attributes attributes;
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() + 1);
        std::size_t const between = line.find(kBetween);
        if (between == line.npos || attributes.size() == kMost) {
            return {};
        }
        std::string_view const key = line.substr(0, between);
        std::string_view const value = line.substr(between + kBetween.size());
        if (!is_key(key) || !is_value(value)) {
            return {};
        }
        attributes.push_back({std::string(key), std::string(value)});
    }
    return attributes;
}

} // namespace umbrixlib::toolkit
