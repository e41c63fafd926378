// SPDX-License-Identifier: MIT
#include "commands/pack/pack_source.h"

#include "terminal/complaint.h"
#include "toolkit/base/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>
#include <optional>
#include <string_view>

namespace umbrix_cli {

namespace {

constexpr char const* kInvert = "invert";

/// Takes in one of the words between the colon and the equals sign.
void take_part(std::string_view part, PackSource& source)
{
    if (part == kInvert) {
        source.channel.invert = true;
        return;
    }
    auto const* const found = std::ranges::find(kHeightChannelNames, part);
    if (found == std::end(kHeightChannelNames)) {
        throw UsageError(source.word, fmt::format("'{}' is no part of a picture", part),
                         fmt::format("give {} or {}", fmt::join(kHeightChannelNames, ", "), kInvert));
    }
    source.channel.from = static_cast<HeightChannel>(found - std::begin(kHeightChannelNames));
}

void take_parts(std::string_view parts, PackSource& source)
{
    while (true) {
        std::size_t const comma = parts.find(',');
        take_part(parts.substr(0, comma), source);
        if (comma == std::string_view::npos) {
            return;
        }
        parts.remove_prefix(comma + 1);
    }
}

void take_number(double number, std::string_view text, bool has_parts, PackSource& source)
{
    if (has_parts) {
        throw UsageError(source.word, "a number has no parts",
                         fmt::format("give the number alone, or ./{} for a file of that name", text));
    }
    if (!(number >= 0.0 && number <= 1.0)) {
        throw UsageError(source.word, fmt::format("{} is out of range", text),
                         fmt::format("give 0 to 1, or ./{} for a file of that name", text));
    }
    source.channel.value = number;
}

} // namespace

PackSource parse_pack_source(std::string const& word)
{
    PackSource source{word, {}, {}};
    std::string_view const all = word;
    std::size_t const equals = all.find('=');
    if (equals == std::string_view::npos || equals + 1 == all.size()) {
        throw UsageError(word, "it does not say what goes where", "give a channel and a file: R=rough.png");
    }
    std::string_view const left = all.substr(0, equals);
    std::string_view const right = all.substr(equals + 1);
    std::size_t const colon = left.find(':');
    source.place = left.substr(0, colon);
    bool const has_parts = colon != std::string_view::npos;
    if (has_parts) {
        take_parts(left.substr(colon + 1), source);
    }
    if (std::optional<double> const number = number_in(right)) {
        take_number(*number, right, has_parts, source);
    } else {
        source.channel.file = right;
    }
    return source;
}

} // namespace umbrix_cli
