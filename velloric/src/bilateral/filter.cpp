// SPDX-License-Identifier: MIT
//
// Source: C. Tomasi and R. Manduchi, Bilateral Filtering for Gray and Color Images, ICCV 1998.
//
// What fixes the result to the bit: the difference of two values is rounded to float; its product with 255 is
// exact, and the nearest integer is taken of that (the one tie, 127.5, goes to 128; 255 stands for all above
// and for NaN). The two spatial weights are multiplied first, then the range weight, then the value, each
// product rounded to float, and the taps are added in float row by row from the window's first to its last. A
// texel whose weights do not sum up to more than 0 keeps its value. Values that are not numbers spread over
// the windows that hold them.
#include "bilateral/row.h"
#include "bilateral/sheet.h"
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "common/thread_share.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <omp.h>
#include <vector>

namespace velloric {
namespace {

using umbrixlib::detail::to_int;
using umbrixlib::detail::wide;

/// An image of @p kChannels interleaved floats, of which one at a time is looked at.
template <std::size_t kChannels, typename Float>
struct Channel {
    Float* first;
    std::size_t height;
    std::size_t width;

    Float* row(std::size_t y) const { return first + y * width * kChannels; }
};

/// Products of the spatial weights: `radius` + 1 rows, by |dy|, of 2 * `radius` + 1, by dx.
std::vector<float> spatial_weights(float const* spatial, std::size_t radius)
{
    std::vector<float> weights;
    weights.reserve((radius + 1) * (2 * radius + 1));
    for (std::size_t dy = 0; dy <= radius; ++dy) {
        for (std::size_t column = 0; column <= 2 * radius; ++column) {
            std::size_t const dx = column < radius ? radius - column : column - radius;
            weights.push_back(spatial[dx] * spatial[dy]);
        }
    }
    return weights;
}

/// Copies a row, continued by wrapping on both sides.
template <std::size_t kChannels>
void copy_wrapped(float const* row, std::size_t width, std::size_t border, float* copy)
{
    for (std::size_t x = 0; x < width; ++x) {
        copy[border + x] = row[x * kChannels];
    }
    for (std::size_t i = 0; i < border; ++i) {
        copy[border + width + i] = copy[border + i];
    }
    for (std::size_t i = border; i-- > 0;) {
        copy[i] = copy[i + width];
    }
}

/// Filters rows @p begin to @p end - 1 by way of wrapped copies of a few rows at a time.
template <std::size_t kChannels>
void filter_rows(Channel<kChannels, float const> source, Channel<kChannels, float> destination,
                 std::size_t begin, std::size_t end, std::size_t radius, float const* spatial,
                 float const* range)
{
    std::size_t const width = source.width;
    std::size_t const padded_width = (width + kBilateralBlock - 1) / kBilateralBlock * kBilateralBlock;
    std::size_t const border = 2 * radius;
    std::size_t const stride = padded_width + 2 * border + kBilateralBlock;
    // Many times the rows that are only read by the windows' edges; for large windows, memory counts more.
    std::size_t const worth_while = std::max<std::size_t>(std::min<std::size_t>(8 * radius, 80), 2 * radius);
    std::size_t const rows_at_once = std::min(end - begin, std::max<std::size_t>(worth_while, 32));
    std::vector<float> const weights = spatial_weights(spatial, radius);
    std::vector<float> copies((rows_at_once + 2 * radius) * stride);
    std::vector<float> results(rows_at_once * padded_width);
    BilateralWindow window = {copies.data(), stride, radius, weights.data(), range, is_gaussian_range(range)};

    for (std::size_t first = begin; first < end; first += rows_at_once) {
        std::size_t const count = std::min(rows_at_once, end - first);
        std::size_t const rows_before = source.height - radius % source.height;
        for (std::size_t i = 0; i < count + 2 * radius; ++i) {
            copy_wrapped<kChannels>(source.row((first + rows_before + i) % source.height), width, border,
                                    copies.data() + i * stride);
        }
        bool const done =
            window.range_is_gaussian && filter_sheet({copies.data(), stride, radius, weights.data(), count,
                                                      width, results.data(), padded_width});
        for (std::size_t i = 0; i < count; ++i) {
            float* const result = &results[i * padded_width];
            if (!done) {
                window.texels = copies.data() + i * stride + radius;
                filter_row(window, result, width);
            }
            float* const row = destination.row(first + i);
            for (std::size_t x = 0; x < width; ++x) {
                row[x * kChannels] = result[x];
            }
        }
    }
}

/// The share of one thread is a band of rows.
template <std::size_t kChannels>
void filter_band(float const* source, float* destination, int height, int width, float radius,
                 float const* spatial, float const* range, int thread, int threads)
{
    if (height < 1 || width < 1 || !umbrixlib::detail::has_share(thread, threads)) {
        return;
    }
    auto const rows = static_cast<std::size_t>(height);
    auto const columns = static_cast<std::size_t>(width);
    std::size_t const begin = rows * static_cast<std::size_t>(thread) / static_cast<std::size_t>(threads);
    std::size_t const end = rows * static_cast<std::size_t>(thread + 1) / static_cast<std::size_t>(threads);
    if (begin == end) {
        return;
    }
    int const reach = to_int(std::ceil(wide(radius)));
    if (reach < 0) { // no window, so no weights
        std::memcpy(destination + begin * columns * kChannels, source + begin * columns * kChannels,
                    (end - begin) * columns * kChannels * sizeof(float));
        return;
    }
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
        filter_rows<kChannels>({source + channel, rows, columns}, {destination + channel, rows, columns},
                               begin, end, static_cast<std::size_t>(reach), spatial, range);
    }
}

template <std::size_t kChannels>
void filter_all(float const* source, float* destination, int height, int width, float radius,
                float const* spatial, float const* range)
{
#pragma omp parallel
    filter_band<kChannels>(source, destination, height, width, radius, spatial, range, omp_get_thread_num(),
                           omp_get_num_threads());
}

} // namespace
} // namespace velloric

void BilateralFilter(float* source, float* destination, int height, int width, float radius, float* spatial,
                     float* range)
{
    velloric::filter_all<1>(source, destination, height, width, radius, spatial, range);
}

void BilateralFilter(float3* source, float3* destination, int height, int width, float radius, float* spatial,
                     float* range)
{
    velloric::filter_all<3>(reinterpret_cast<float*>(source), reinterpret_cast<float*>(destination), height,
                            width, radius, spatial, range);
}

void BilateralFilter(float* source, float* destination, int height, int width, float radius, float* spatial,
                     float* range, int thread, int threads)
{
    velloric::filter_band<1>(source, destination, height, width, radius, spatial, range, thread, threads);
}
