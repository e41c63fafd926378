// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/told_heights.h"

#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::string_view kRange = "height-range";
constexpr std::string_view kLimits = "height-limits";

using How = HeightRange::How;

/// Anyone may have written what a file tells.
constexpr double kLongestRange = 1e6;

/// Two numbers that a picture tells; without them the default, whose `how` is not How::kGiven.
HeightRange told(Attributes const& attributes, std::string_view key)
{
    auto const range = height_range_called(value_of(attributes, key));
    bool const good = range && range->how == How::kGiven && range->high - range->low <= kLongestRange;
    return good ? *range : HeightRange{};
}

} // namespace

void tell_range(Attributes& attributes, HeightRange const& range)
{
    set_value(attributes, kRange, text_of({How::kGiven, range.low, range.high}));
}

void tell_limits(Attributes& attributes, double low, double high)
{
    set_value(attributes, kLimits, text_of({How::kGiven, low, high}));
}

ToldHeights told_heights(Attributes const& attributes, HeightReading const& asked)
{
    ToldHeights result{asked};
    if (asked.range.how != How::kAsIs) {
        return result;
    }
    if (HeightRange const limits = told(attributes, kLimits); limits.how == How::kGiven) {
        result.reading.range = limits;
        result.unit = limits.high - limits.low;
    }
    HeightRange const range = told(attributes, kRange);
    result.unit *= range.high - range.low;
    return result;
}

Settings in_unit(Settings settings, double unit)
{
    auto const grow = [unit](float& scale) { scale = static_cast<float>(static_cast<double>(scale) * unit); };
    grow(settings.relief);
    for (std::optional<float>* const scale : {&settings.h_scale, &settings.n_scale}) {
        if (*scale) {
            grow(**scale);
        }
    }
    return settings;
}

} // namespace umbrixlib::toolkit
