// SPDX-License-Identifier: MIT
#include "toolkit/pictures/saving.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Halves hold directions and light to the last digit that shows, but not heights.
SampleType usual_depth(OutputFormat const& format, PictureKind kind)
{
    if (kind != PictureKind::kHeights && !format.holds(SampleType::kUint8) &&
        format.holds(SampleType::kHalf)) {
        return SampleType::kHalf;
    }
    for (SampleType const depth : {SampleType::kUint8, SampleType::kFloat, SampleType::kUint16}) {
        if (format.holds(depth)) {
            return depth;
        }
    }
    return SampleType::kHalf;
}

std::string depths_of(OutputFormat const& format)
{
    std::string all;
    for (char const* const name : kDepthNames) {
        if (format.holds(*depth_called(name))) {
            all += fmt::format("{}{}", all.empty() ? "" : " or ", name);
        }
    }
    return all;
}

/// 0 to 1, evenly spread: one of 2^24 numbers for each place. A step of SplitMix64 (Steele, Lea and Flood,
/// "Fast splittable pseudorandom number generators", 2014).
double noise_at(std::size_t place)
{
    std::uint64_t bits = (place + 1) * 0x9e3779b97f4a7c15U;
    bits = (bits ^ bits >> 30U) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ bits >> 27U) * 0x94d049bb133111ebU;
    return static_cast<double>((bits ^ bits >> 31U) >> 40U) / 16777216.0;
}

/// What is added before the part behind the point is cut off.
double rounding_at(std::size_t place, SavedAs const& as)
{
    if (as.depth == SampleType::kUint16) {
        return 0.5;
    }
    return as.dither ? noise_at(place) : as.rounding == Rounding::kNearest ? 0.5 : 0.0;
}

template <typename Whole>
void to_whole(Picture const& floats, SavedAs const& as, Picture& result)
{
    bool const normals = floats.kind == PictureKind::kNormals;
    bool const alpha = floats.has_alpha();
    double const full = full_scale(result.type);
    auto const channels = static_cast<std::size_t>(floats.channels);
    auto const from = floats.samples<float>();
    auto const to = result.samples<Whole>();
    for_pieces(from.size(), [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            bool const is_direction = normals && !(alpha && i % channels == channels - 1);
            double const value = static_cast<double>(from[i]);
            double const share = is_direction ? (value + 1.0) / 2.0 : value;
            // Rounded to a float, the product of k / 255 is k again, and cutting it off keeps it.
            double const steps = static_cast<double>(static_cast<float>(std::min(share, 1.0) * full));
            to[i] = share > 0.0 ? static_cast<Whole>(std::min(steps + rounding_at(i, as), full)) : Whole{0};
        }
    });
}

} // namespace

SavedAs saved_as(Saving const& saving, OutputFormat const& format, PictureKind kind, std::string const& name)
{
    if (format.heights_only && (kind == PictureKind::kNormals || kind == PictureKind::kLight)) {
        throw no_heights(format, name);
    }
    SampleType const depth = saving.depth.value_or(usual_depth(format, kind));
    if (!format.holds(depth)) {
        throw Failure(Fault::kDepthNotInFormat, name,
                      fmt::format("{} files have no samples of depth {}", format.extension, name_of(depth)),
                      depths_of(format));
    }
    return {depth, saving.rounding, saving.dither};
}

SavedAs saved_as_deep(SampleType source, Saving saving, OutputFormat const& format, PictureKind kind,
                      std::string const& name)
{
    saving.depth = saving.depth.value_or(nearest_depth(format, source));
    return saved_as(saving, format, kind, name);
}

Picture in_samples(Picture floats, SavedAs const& as)
{
    if (as.depth == SampleType::kFloat) {
        return floats;
    }
    Picture result = make_alike(floats, floats.channels, as.depth);
    switch (as.depth) {
    case SampleType::kUint8:
        to_whole<std::uint8_t>(floats, as, result);
        break;
    case SampleType::kUint16:
        to_whole<std::uint16_t>(floats, as, result);
        break;
    default:
        std::ranges::transform(floats.samples<float>(), result.samples<Half>().begin(), to_half);
    }
    return result;
}

SampleType nearest_depth(OutputFormat const& format, SampleType type)
{
    using enum SampleType;
    constexpr SampleType kOrders[][4] = {{kUint8, kUint16, kFloat, kHalf},
                                         {kUint16, kFloat, kHalf, kUint8},
                                         {kHalf, kFloat, kUint16, kUint8},
                                         {kFloat, kHalf, kUint16, kUint8}};
    return *std::ranges::find_if(kOrders[static_cast<int>(type)],
                                 [&](SampleType each) { return format.holds(each); });
}

Picture converted(Picture const& picture, SavedAs const& as)
{
    if (picture.type == as.depth) {
        return picture;
    }
    constexpr unsigned kBytesInWord = 65535 / 255;
    Picture result = make_picture(picture.width, picture.height, picture.channels, as.depth);
    result.kind = picture.kind;
    if (picture.type == SampleType::kUint8 && as.depth == SampleType::kUint16) {
        std::ranges::transform(
            picture.samples<std::uint8_t>(), result.samples<std::uint16_t>().begin(),
            [](std::uint8_t byte) { return static_cast<std::uint16_t>(byte * kBytesInWord); });
        return result;
    }
    if (picture.type == SampleType::kUint16 && as.as_the_library_does()) {
        std::ranges::transform(
            picture.samples<std::uint16_t>(), result.samples<std::uint8_t>().begin(),
            [](std::uint16_t word) { return static_cast<std::uint8_t>(word / kBytesInWord); });
        return result;
    }
    return in_samples(in_floats(picture), as);
}

} // namespace umbrixlib::toolkit
