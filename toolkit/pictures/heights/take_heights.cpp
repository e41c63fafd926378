// SPDX-License-Identifier: MIT
#include "toolkit/pictures/heights/take_heights.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <mutex>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

using How = HeightRange::How;

/// Lowest and highest of finite numbers, 0 if there are none, and how many are not.
struct NumberSpan {
    double low = 0.0;
    double high = 0.0;
    std::size_t invalid = 0;
};

/// Place of a channel in a texel; that of red for the mean of greys.
std::size_t place_of(Picture const& picture, HeightChannel channel)
{
    std::size_t const next = picture.channels < 3 ? 0 : 1;
    switch (channel) {
    case HeightChannel::kGreen:
        return next;
    case HeightChannel::kBlue:
        return 2 * next;
    case HeightChannel::kAlpha:
        return static_cast<std::size_t>(picture.channels) - 1;
    default:
        return 0;
    }
}

bool is_one_channel(HeightChannel channel)
{
    return channel != HeightChannel::kMean && channel != HeightChannel::kLuma;
}

/// The heights of a texel whose first three numbers are its colours.
double height_of(std::array<double, 3> const& colours, HeightChannel channel)
{
    auto const [red, green, blue] = colours;
    return channel == HeightChannel::kLuma ? 0.2126 * red + 0.7152 * green + 0.0722 * blue
                                           : (red + green + blue) / 3.0;
}

/// As the library has them: samples as floats, and their mean, too.
TexelNumbers<float> heights_of(Picture const& picture, HeightChannel channel)
{
    TexelNumbers<float> heights(picture.texels());
    double const full = full_scale(picture.type);
    with_samples(picture, [&](auto samples) {
        auto const step = static_cast<std::size_t>(picture.channels);
        auto const number = [&](std::size_t at) {
            return static_cast<double>(static_cast<float>(to_number(samples[at]) / full));
        };
        bool const one = is_one_channel(channel) || picture.channels < 3;
        std::size_t const place = place_of(picture, channel);
        for_pieces(heights.size(), [&](std::size_t first, std::size_t end) {
            for (std::size_t i = first; i < end; ++i) {
                std::size_t const at = i * step;
                double const height = one ? number(at + place)
                                          : height_of({number(at), number(at + 1), number(at + 2)}, channel);
                heights[i] = static_cast<float>(height);
            }
        });
    });
    return heights;
}

NumberSpan span_of(TexelNumbers<float> const& numbers)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    std::mutex mutex;
    float low = kInfinity;
    float high = -kInfinity;
    std::size_t invalid = 0;
    for_pieces(numbers.size(), [&](std::size_t first, std::size_t end) {
        float least = kInfinity;
        float most = -kInfinity;
        std::size_t others = 0;
        for (std::size_t i = first; i < end; ++i) {
            bool const finite = std::abs(numbers[i]) < kInfinity;
            least = std::min(least, finite ? numbers[i] : kInfinity);
            most = std::max(most, finite ? numbers[i] : -kInfinity);
            others += finite ? 0 : 1;
        }
        std::lock_guard const lock(mutex);
        low = std::min(low, least);
        high = std::max(high, most);
        invalid += others;
    });
    low += 0.0f; // -0 is 0, whichever of the two was met first
    high += 0.0f;
    return invalid < numbers.size() ? NumberSpan{static_cast<double>(low), static_cast<double>(high), invalid}
                                    : NumberSpan{0.0, 0.0, invalid};
}

void replace_invalid(TexelNumbers<float>& heights, double replacement, NumberSpan& span)
{
    for (float& height : heights) {
        height = std::isfinite(height) ? height : static_cast<float>(replacement);
    }
    span = span_of(heights);
}

void check_invalid(std::size_t texels, std::string const& name)
{
    if (texels > 0) {
        throw Failure(Fault::kInvalidTexels, name,
                      fmt::format("{} of its texels {} NaN or infinite", texels, texels == 1 ? "is" : "are"));
    }
}

/// The two heights that become 0 and 1. With @p bounded, none may lie outside if these are 0 and 1.
HeightRange limits_of(NumberSpan const& span, HeightRange const& range, bool bounded, std::string const& name)
{
    switch (range.how) {
    case How::kOwn:
        return {How::kGiven, span.low, span.high};
    case How::kGiven:
        return range;
    default:
        if (bounded && (span.low < 0.0 || span.high > 1.0)) {
            auto const low = static_cast<float>(span.low); // which they were, so all digits are told
            auto const high = static_cast<float>(span.high);
            throw Failure(Fault::kHeightsOutsideRange, name,
                          fmt::format("its heights are {} to {}, not 0 to 1", low, high),
                          fmt::format("{},{}", low, high));
        }
        return range;
    }
}

/// @return How many lie outside and are cut.
std::size_t stretch(TexelNumbers<float>& heights, HeightRange const& limits)
{
    double const length = limits.high - limits.low;
    std::size_t cut = 0;
    for (float& height : heights) {
        double const share = length > 0.0 ? (static_cast<double>(height) - limits.low) / length : 0.0;
        cut += share < 0.0 || share > 1.0 ? 1 : 0;
        height = static_cast<float>(std::clamp(share, 0.0, 1.0));
    }
    return cut;
}

void turn_over(TexelNumbers<float>& heights)
{
    for (float& height : heights) {
        height = 1.0f - height;
    }
}

/// Does with @p heights what @p reading asks for. False if they stay as they are.
bool bring_in(TexelNumbers<float>& heights, HeightReading const& reading, bool bounded,
              std::string const& name, HeightRange& limits, Observer& observer)
{
    NumberSpan span = span_of(heights);
    bool const replaced = span.invalid > 0 && reading.invalid.replacement.has_value();
    if (replaced) {
        replace_invalid(heights, *reading.invalid.replacement, span);
    }
    if (bounded || reading.range.how != How::kAsIs) {
        check_invalid(span.invalid, name);
    }
    limits = limits_of(span, reading.range, bounded, name);
    if (limits.how != How::kAsIs) {
        if (std::size_t const cut = stretch(heights, limits); cut > 0) {
            observer.note(name, {fmt::format("{} of {} heights lie outside {:.6g} to {:.6g} and are cut", cut,
                                             heights.size(), limits.low, limits.high)});
        }
    }
    if (reading.invert) {
        turn_over(heights);
    }
    return replaced || limits.how != How::kAsIs || reading.invert;
}

/// Puts @p heights into @p count channels of each texel, from @p first on. The picture has floats then.
void put(TexelNumbers<float> const& heights, Picture& picture, std::size_t first, std::size_t count)
{
    picture = in_floats(picture);
    auto const samples = picture.samples<float>();
    auto const step = static_cast<std::size_t>(picture.channels);
    for (std::size_t i = 0; i < heights.size(); ++i) {
        std::fill_n(&samples[i * step + first], count, heights[i]);
    }
}

/// Turns @p count channels of each texel over, from @p first on.
template <typename Whole>
void turn_over(std::span<Whole> samples, int channels, std::size_t first, std::size_t count)
{
    constexpr Whole kOne = std::numeric_limits<Whole>::max();
    for (std::size_t at = first; at < samples.size(); at += static_cast<std::size_t>(channels)) {
        for (std::size_t c = 0; c < count; ++c) {
            samples[at + c] = static_cast<Whole>(kOne - samples[at + c]);
        }
    }
}

/// Copies one channel to the first @p count ones of each texel.
template <typename Whole>
void spread(std::span<Whole> samples, int channels, std::size_t from, std::size_t count)
{
    for (std::size_t at = 0; at < samples.size(); at += static_cast<std::size_t>(channels)) {
        std::fill_n(&samples[at], count, Whole{samples[at + from]});
    }
}

template <typename Body>
void with_whole_samples(Picture& picture, Body&& body)
{
    if (picture.type == SampleType::kUint8) {
        body(picture.samples<std::uint8_t>());
    } else {
        body(picture.samples<std::uint16_t>());
    }
}

/// The colours of all texels, each by itself.
TexelNumbers<float> colours_of(Picture const& picture)
{
    std::size_t const step = static_cast<std::size_t>(picture.channels);
    std::size_t const colours = step < 3 ? 1 : 3;
    TexelNumbers<float> numbers(picture.texels() * colours);
    Picture const floats = in_floats(picture);
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        std::copy_n(&floats.samples<float>()[i * step], colours, &numbers[i * colours]);
    }
    return numbers;
}

void check_channel(Picture const& picture, HeightChannel channel, std::string const& name)
{
    if (channel == HeightChannel::kAlpha && !picture.has_alpha()) {
        throw Failure(Fault::kNoSuchChannel, name, "it has no alpha");
    }
}

/// What needs no floats: whole numbers are finite, and 0 to 1.
bool stays_whole(Picture const& picture, HeightReading const& reading)
{
    return is_whole(picture.type) && reading.range.how == How::kAsIs &&
           reading.channel != HeightChannel::kLuma;
}

std::optional<HeightRange> if_changed(HeightRange const& limits)
{
    return limits.how == How::kAsIs ? std::nullopt : std::optional(limits);
}

} // namespace

std::size_t flatten_invalid_normals(Picture& normal_map, bool allowed, std::string const& name)
{
    if (is_whole(normal_map.type)) {
        return 0;
    }
    std::vector<std::size_t> invalid;
    with_samples(normal_map, [&](auto samples) {
        auto const step = static_cast<std::size_t>(normal_map.channels);
        for (std::size_t i = 0; i < normal_map.texels(); ++i) {
            auto const* const at = &samples[i * step];
            double const sum = to_number(at[0]) + to_number(at[1]) + to_number(at[2]);
            if (!std::isfinite(sum)) {
                invalid.push_back(i * step);
            }
        }
    });
    if (invalid.empty()) {
        return 0;
    }
    check_invalid(allowed ? 0 : invalid.size(), name);
    normal_map = in_floats(normal_map);
    for (std::size_t const at : invalid) {
        constexpr float kFlat[] = {0.5f, 0.5f, 1.0f};
        std::ranges::copy(kFlat, &normal_map.samples<float>()[at]);
    }
    return invalid.size();
}

std::optional<HeightRange> take_heights(Picture& height_map, HeightReading const& reading,
                                        std::string const& name, Observer& observer)
{
    check_channel(height_map, reading.channel, name);
    std::size_t const colours = height_map.channels < 3 ? 1 : 3;
    if (stays_whole(height_map, reading)) {
        with_whole_samples(height_map, [&](auto samples) {
            if (is_one_channel(reading.channel)) {
                spread(samples, height_map.channels, place_of(height_map, reading.channel), colours);
            }
            if (reading.invert) {
                turn_over(samples, height_map.channels, 0, colours);
            }
        });
        return std::nullopt;
    }
    TexelNumbers<float> heights = heights_of(height_map, reading.channel);
    HeightRange limits;
    if (bring_in(heights, reading, true, name, limits, observer) || reading.channel != HeightChannel::kMean) {
        put(heights, height_map, 0, colours);
    }
    return if_changed(limits);
}

std::optional<HeightRange> take_heights_in_alpha(Picture& normal_map, HeightReading const& reading,
                                                 std::string const& name, Observer& observer)
{
    if (!normal_map.has_alpha()) {
        return std::nullopt;
    }
    HeightReading in_alpha = reading;
    in_alpha.channel = HeightChannel::kAlpha;
    std::size_t const place = place_of(normal_map, HeightChannel::kAlpha);
    if (stays_whole(normal_map, in_alpha)) {
        if (reading.invert) {
            with_whole_samples(normal_map,
                               [&](auto samples) { turn_over(samples, normal_map.channels, place, 1); });
        }
        return std::nullopt;
    }
    TexelNumbers<float> heights = heights_of(normal_map, HeightChannel::kAlpha);
    HeightRange limits;
    if (bring_in(heights, in_alpha, true, name, limits, observer)) {
        put(heights, normal_map, place, 1);
    }
    return if_changed(limits);
}

std::optional<HeightRange> take_colours(Picture& picture, HeightReading const& reading, bool bounded,
                                        std::string const& name, Observer& observer)
{
    HeightReading each = reading;
    each.channel = HeightChannel::kMean;
    if (stays_whole(picture, each)) {
        return take_heights(picture, each, name, observer);
    }
    TexelNumbers<float> numbers = colours_of(picture);
    HeightRange limits;
    if (bring_in(numbers, each, bounded, name, limits, observer)) {
        picture = in_floats(picture);
        auto const step = static_cast<std::size_t>(picture.channels);
        std::size_t const colours = step < 3 ? 1 : 3;
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            std::copy_n(&numbers[i * colours], colours, &picture.samples<float>()[i * step]);
        }
    }
    return if_changed(limits);
}

Picture channel_of(Picture const& picture, HeightChannel channel, std::string const& name)
{
    check_channel(picture, channel, name);
    if (!is_one_channel(channel)) {
        Picture result = make_picture(picture.width, picture.height, 1, SampleType::kFloat);
        std::ranges::copy(heights_of(picture, channel), result.samples<float>().begin());
        return result;
    }
    Picture result = make_picture(picture.width, picture.height, 1, picture.type);
    std::size_t const size = sample_size(picture.type);
    std::size_t const step = size * static_cast<std::size_t>(picture.channels);
    std::size_t const place = size * place_of(picture, channel);
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        std::copy_n(&picture.bytes[i * step + place], size, &result.bytes[i * size]);
    }
    return result;
}

} // namespace umbrixlib::toolkit
