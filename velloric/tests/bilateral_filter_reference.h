// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The bilateral filter as it is defined: texel by texel, tap by tap.

#include "common/rounding.h"
#include "common/vector_types.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace velloric::reference {

/// Entry of the range table for two values @p difference apart.
inline int range_entry(float difference)
{
    double const steps = std::fabs(static_cast<double>(difference)) * 255.0;
    return steps < 255.0 ? static_cast<int>(steps + 0.5) : 255;
}

/// Positions @p first to @p first + @p count - 1, wrapped into 0..@p period - 1.
inline std::vector<std::size_t> wrapped_positions(long long first, long long count, long long period)
{
    std::vector<std::size_t> positions;
    for (long long i = first; i < first + count; ++i) {
        positions.push_back(static_cast<std::size_t>((i % period + period) % period));
    }
    return positions;
}

/// One channel of an image of @p channels interleaved floats. The radius is that of the window.
inline void bilateral_filter(float const* source, float* destination, int height, int width, int channels,
                             int radius, float const* spatial, float const* range)
{
    std::vector<std::size_t> const rows = wrapped_positions(-radius, height + 2LL * radius, height);
    std::vector<std::size_t> const columns = wrapped_positions(-radius, width + 2LL * radius, width);
    auto const pitch = static_cast<std::size_t>(channels);
    std::size_t const row_pitch = static_cast<std::size_t>(width) * pitch;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::size_t const texel =
                static_cast<std::size_t>(y) * row_pitch + static_cast<std::size_t>(x) * pitch;
            float const centre = source[texel];
            float sum = 0.0f;
            float weight_sum = 0.0f;
            for (int dy = -radius; dy <= radius; ++dy) {
                float const* const row = source + rows[static_cast<std::size_t>(y + dy + radius)] * row_pitch;
                for (int dx = -radius; dx <= radius; ++dx) {
                    float const tap = row[columns[static_cast<std::size_t>(x + dx + radius)] * pitch];
                    float const weight =
                        spatial[std::abs(dx)] * spatial[std::abs(dy)] * range[range_entry(tap - centre)];
                    sum += weight * tap;
                    weight_sum += weight;
                }
            }
            destination[texel] = weight_sum > 0.0f ? sum / weight_sum : centre;
        }
    }
}

} // namespace velloric::reference
