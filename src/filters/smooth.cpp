// SPDX-License-Identifier: MIT
#include "filters/tone.h"

#include "common/vector_types.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace umbrixlib::detail {
namespace {

/// The row or column that stands for @p position, which is in -1..@p side.
///
/// Contract: the period is one less than the side; the side itself is expected. Row -1 is row side - 2 and
/// row `side` is row 1, as in a tile whose border is shared. A side of 1, which has no period, stays at 0.
/// Test: Smooth.WrapsOneShortOfTheSide
std::ptrdiff_t wrapped(std::ptrdiff_t position, std::ptrdiff_t side)
{
    if (side == 1) {
        return 0;
    }
    if (position < 0) {
        return position + side - 1;
    }
    return position >= side ? position - (side - 1) : position;
}

/// Sums of three rows of floats around float @p at, three columns apart by @p left and @p right.
float mean_of_nine(float const* const (&rows)[3], std::ptrdiff_t left, std::ptrdiff_t at,
                   std::ptrdiff_t right)
{
    float sum = 0.0f;
    for (float const* row : rows) {
        sum += row[left];
        sum += row[at];
        sum += row[right];
    }
    return sum / 9.0f; // one quotient of floats rounds as it does by way of double
}

template <typename Pixel>
void smooth_row(Pixel const* source, Pixel* destination, std::ptrdiff_t y, std::ptrdiff_t height,
                std::ptrdiff_t width)
{
    constexpr auto kComponents = static_cast<std::ptrdiff_t>(sizeof(Pixel) / sizeof(float));
    float const* const rows[3] = {reinterpret_cast<float const*>(source + wrapped(y - 1, height) * width),
                                  reinterpret_cast<float const*>(source + y * width),
                                  reinterpret_cast<float const*>(source + wrapped(y + 1, height) * width)};
    auto* const to = reinterpret_cast<float*>(destination + y * width);
    std::ptrdiff_t const last = width - 1;
    for (std::ptrdiff_t i = 0; i < kComponents; ++i) {
        to[i] =
            mean_of_nine(rows, wrapped(-1, width) * kComponents + i, i, wrapped(1, width) * kComponents + i);
    }
    for (std::ptrdiff_t i = kComponents; i < last * kComponents; ++i) {
        to[i] = mean_of_nine(rows, i - kComponents, i, i + kComponents);
    }
    for (std::ptrdiff_t i = last * kComponents; i < width * kComponents; ++i) {
        std::ptrdiff_t const component = i - last * kComponents;
        to[i] = mean_of_nine(rows, wrapped(last - 1, width) * kComponents + component, i,
                             wrapped(last + 1, width) * kComponents + component);
    }
    if constexpr (std::is_same_v<Pixel, float4>) {
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            destination[y * width + x].w = source[y * width + x].w;
        }
    }
}

template <typename Pixel>
void smooth_image(Pixel* pixels, int height, int width, int passes)
{
    std::ptrdiff_t const rows = std::max(height, 0);
    std::ptrdiff_t const columns = std::max(width, 0);
    Pixel* source = pixels;
    Pixel* destination = new Pixel[static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)];
    for (int pass = 0; pass < passes; ++pass) {
        if (columns > 0) {
#pragma omp parallel for schedule(static)
            for (std::ptrdiff_t y = 0; y < rows; ++y) {
                smooth_row(source, destination, y, rows, columns);
            }
        }
        std::swap(source, destination);
    }
    // Contract: the buffer that would be written next is released, which after an odd number of passes is the
    // caller's own; the scratch buffer is expected. Callers pass an even number.
    // Test: Smooth.AnOddNumberOfPassesReleasesTheCallersBuffer
    delete[] destination;
}

} // namespace
} // namespace umbrixlib::detail

using umbrixlib::detail::smooth_image;

inline namespace umbrix_v0 {

void smooth(float* pixels, int height, int width, int passes)
{
    smooth_image(pixels, height, width, passes);
}

void smooth(float3* pixels, int height, int width, int passes)
{
    smooth_image(pixels, height, width, passes);
}

void smooth(float4* pixels, int height, int width, int passes)
{
    smooth_image(pixels, height, width, passes);
}

} // namespace umbrix_v0
