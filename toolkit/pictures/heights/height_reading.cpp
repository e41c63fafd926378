// SPDX-License-Identifier: MIT
#include "toolkit/pictures/heights/height_reading.h"

#include "toolkit/base/text.h"

#include <fmt/format.h>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr char const* kNone = "none";
constexpr char const* kAuto = "auto";

} // namespace

std::string text_of(HeightRange const& range)
{
    switch (range.how) {
    case HeightRange::How::kOwn:
        return kAuto;
    case HeightRange::How::kGiven:
        return fmt::format("{},{}", range.low, range.high);
    default:
        return kNone;
    }
}

std::optional<HeightRange> height_range_called(std::string const& text)
{
    if (text == kNone) {
        return HeightRange{};
    }
    if (text == kAuto) {
        return HeightRange{HeightRange::How::kOwn};
    }
    std::size_t const comma = text.find(',');
    if (comma == std::string::npos) {
        return std::nullopt;
    }
    std::optional<double> const low = number_in(std::string_view(text).substr(0, comma));
    std::optional<double> const high = number_in(std::string_view(text).substr(comma + 1));
    if (!low || !high || !(*low < *high)) {
        return std::nullopt;
    }
    return HeightRange{HeightRange::How::kGiven, *low, *high};
}

std::string text_of(InvalidTexels const& invalid)
{
    return invalid.replacement ? fmt::format("{}", *invalid.replacement) : kNone;
}

std::optional<InvalidTexels> invalid_texels_called(std::string const& text)
{
    if (text == kNone) {
        return InvalidTexels{};
    }
    std::optional<double> const number = number_in(text);
    return number ? std::optional(InvalidTexels{number}) : std::nullopt;
}

} // namespace umbrixlib::toolkit
