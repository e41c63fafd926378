// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Pixels of a tone operator, and shares of them.

#include "common/blocks.h"
#include "common/vector_types.h"
#include "filters/tone_sweep.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace umbrixlib::detail {

/// Pixels that a tone operator covers; not above 0 if there are none.
constexpr std::int64_t tone_pixels(int height, int width)
{
    return std::int64_t{height} * width;
}

/// Pixels that `brighten` covers.
template <typename Pixel>
constexpr std::int64_t brightened_pixels(int height, int width)
{
    if constexpr (std::is_same_v<Pixel, float>) {
        // Contract: the first `height` elements, however wide the image; all of them are expected. The
        // height-side brightness of a run depends on it. Test:
        // Brighten.OnFloatsReachesTheFirstHeightElementsOnly
        return height;
    } else {
        return tone_pixels(height, width);
    }
}

/// An amount of contrast or brightness limited to -1..1; NaN stays.
constexpr float tone_amount(float amount)
{
    float const capped = amount > 1.0f ? 1.0f : amount;
    return capped < -1.0f ? -1.0f : capped;
}

/// The level that @p value steps of 1/255 stand for, within 0..1.
constexpr float tone_level(int value)
{
    if (value > 255) {
        return 1.0f;
    }
    return value < 0 ? 0.0f : static_cast<float>(static_cast<double>(value) / 255.0);
}

/// Pixels @p thread, @p thread + @p threads, and so on.
struct Share {
    int thread, threads;
};

/// Runs @p steps over @p count pixels in one piece.
template <typename Pixel>
void sweep_pixels(Pixel* pixels, std::int64_t count, ToneSteps const& steps)
{
    std::size_t const floats = static_cast<std::size_t>(count) * (sizeof(Pixel) / sizeof(float));
    if constexpr (std::is_same_v<Pixel, float4>) {
        sweep_tone_keeping_alpha(reinterpret_cast<float*>(pixels), floats, steps);
    } else {
        sweep_tone(reinterpret_cast<float*>(pixels), floats, steps);
    }
}

/// Runs @p steps over those of the pixels @p begin to @p end - 1 that belong to @p share, and touches no
/// other: its neighbours may be at work at the same time.
template <typename Pixel>
void sweep_share(Pixel* pixels, std::int64_t begin, std::int64_t end, ToneSteps const& steps, Share share)
{
    if (share.thread < 0 || share.threads < 1) {
        return;
    }
    std::int64_t const stride = share.threads;
    std::int64_t i = share.thread;
    if (i < begin) {
        i += (begin - i + stride - 1) / stride * stride;
    }
    if (i >= end) {
        return;
    }
    if (stride == 1) {
        sweep_pixels(pixels + i, end - i, steps);
        return;
    }
    constexpr std::size_t kComponents = sizeof(Pixel) / sizeof(float);
    constexpr std::size_t kColours = std::min<std::size_t>(kComponents, 3);
    constexpr std::int64_t kPixels = 256;
    float colours[static_cast<std::size_t>(kPixels) * kColours];
    while (i < end) {
        auto const count = static_cast<std::size_t>(std::min(kPixels, (end - i - 1) / stride + 1));
        auto* const first = reinterpret_cast<float*>(pixels + i);
        std::size_t const step = static_cast<std::size_t>(stride) * kComponents;
        for (std::size_t pixel = 0; pixel < count; ++pixel) {
            std::copy_n(first + pixel * step, kColours, colours + pixel * kColours);
        }
        sweep_tone(colours, count * kColours, steps);
        for (std::size_t pixel = 0; pixel < count; ++pixel) {
            std::copy_n(colours + pixel * kColours, kColours, first + pixel * step);
        }
        i += static_cast<std::int64_t>(count) * stride;
    }
}

/// Runs @p steps over @p count pixels on all threads.
template <typename Pixel>
void sweep_image(Pixel* pixels, std::int64_t count, ToneSteps const& steps)
{
    for_blocks(count, [&](std::ptrdiff_t begin, std::size_t pixels_of_block) {
        sweep_pixels(pixels + begin, static_cast<std::int64_t>(pixels_of_block), steps);
    });
}

} // namespace umbrixlib::detail
