// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The tone operators as they are defined: one component after the other, formed in double, rounded at the
/// store. Each visits pixels @p first, @p first + @p step and so on.

#include "common/vector_types.h"

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace umbrixlib::test::reference {

template <typename Pixel>
inline constexpr int kComponents = static_cast<int>(sizeof(Pixel) / sizeof(float));
template <typename Pixel>
inline constexpr int kColours = kComponents<Pixel> == 4 ? 3 : kComponents<Pixel>;

template <typename Pixel, typename Change>
void change_colours(Pixel* pixels, std::int64_t count, std::int64_t first, std::int64_t step, Change&& change)
{
    for (std::int64_t i = first; i < count; i += step) {
        auto* const pixel = reinterpret_cast<float*>(pixels + i);
        for (int component = 0; component < kColours<Pixel>; ++component) {
            pixel[component] = change(pixel[component]);
        }
    }
}

inline float clamped(float r)
{
    if (r > 1.0f) {
        r = 1.0f;
    }
    if (r < 0.0f) {
        r = 0.0f;
    }
    return r;
}

inline float clamped_amount(float amount)
{
    if (amount > 1.0f) {
        amount = 1.0f;
    }
    if (amount < -1.0f) {
        amount = -1.0f;
    }
    return amount;
}

template <typename Pixel>
void brighten(Pixel* pixels, int height, int width, float amount, int first = 0, int step = 1)
{
    double const a = static_cast<double>(clamped_amount(amount));
    std::int64_t const count = std::is_same_v<Pixel, float> ? height : std::int64_t{height} * width;
    change_colours(pixels, count, first, step,
                   [a](float v) { return clamped(static_cast<float>(static_cast<double>(v) + a)); });
}

template <typename Pixel>
void change_contrast(Pixel* pixels, int height, int width, float amount, int first = 0, int step = 1)
{
    double const a = static_cast<double>(clamped_amount(amount));
    change_colours(pixels, std::int64_t{height} * width, first, step, [a](float v) {
        float const d = std::fabs(static_cast<float>(0.5 - static_cast<double>(v)));
        if (v > 0.5f) {
            return clamped(static_cast<float>(static_cast<double>(d) * a + static_cast<double>(v)));
        }
        return clamped(static_cast<float>(static_cast<double>(v) - static_cast<double>(d) * a));
    });
}

inline float color_level(int k)
{
    if (k > 255) {
        return 1.0f;
    }
    if (k < 0) {
        return 0.0f;
    }
    return static_cast<float>(static_cast<double>(static_cast<float>(k)) / 255.0);
}

template <typename Pixel>
void limit_color(Pixel* pixels, int height, int width, int low, int high, int first = 0, int step = 1)
{
    double const l = static_cast<double>(color_level(low));
    double const h = static_cast<double>(color_level(high));
    change_colours(pixels, std::int64_t{height} * width, first, step, [l, h](float v) {
        return static_cast<float>((1.0 - static_cast<double>(v)) * l + static_cast<double>(v) * h);
    });
}

template <typename Pixel>
void posterize(Pixel* pixels, float step, int height, int width)
{
    constexpr bool kSingle = std::is_same_v<Pixel, float>;
    if (!(kSingle ? step > 1.0f : step > 0.0f)) {
        return;
    }
    auto* const floats = reinterpret_cast<float*>(pixels);
    for (std::int64_t i = 0; i < std::int64_t{height} * width * kComponents<Pixel>; ++i) {
        double const e = static_cast<double>(floats[i]) * 255.0 / static_cast<double>(step) + 0.5;
        int const truncated = e > -2147483649.0 && e < 2147483648.0 ? static_cast<int>(e) : INT_MIN;
        double const q = static_cast<double>(static_cast<float>(truncated));
        floats[i] = static_cast<float>(kSingle ? q / 255.0 : q * static_cast<double>(step) / 255.0);
    }
}

/// One pass of the box filter.
template <typename Pixel>
std::vector<Pixel> smooth(std::vector<Pixel> const& source, int height, int width)
{
    auto const wrapped = [](int at, int side) {
        if (side == 1) {
            return 0;
        }
        while (at > side - 1) {
            at -= side - 1;
        }
        while (at < 0) {
            at += side - 1;
        }
        return at;
    };
    auto const component_of = [&](int y, int x, int component) {
        std::size_t const pixel =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
        return reinterpret_cast<float const*>(source.data() + pixel)[component];
    };
    std::vector<Pixel> result(source.size());
    auto* to = reinterpret_cast<float*>(result.data());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int component = 0; component < kColours<Pixel>; ++component) {
                float sum = 0.0f;
                for (int r = y - 1; r <= y + 1; ++r) {
                    for (int c = x - 1; c <= x + 1; ++c) {
                        float const tap = component_of(wrapped(r, height), wrapped(c, width), component);
                        sum = static_cast<float>(static_cast<double>(sum) + static_cast<double>(tap));
                    }
                }
                to[component] = static_cast<float>(static_cast<double>(sum) / 9.0);
            }
            if (kComponents<Pixel> == 4) {
                to[3] = component_of(y, x, 3);
            }
            to += kComponents<Pixel>;
        }
    }
    return result;
}

} // namespace umbrixlib::test::reference
