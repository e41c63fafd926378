// SPDX-License-Identifier: MIT
#include "filters/tile_height.h"

#include "common/rounding.h"

#include <cstddef>
#include <vector>

namespace umbrixlib::detail {

namespace {

float sum_of(float a, float b)
{
    return narrow(wide(a) + wide(b));
}

float column_mean(float const* top, int height, int width)
{
    float sum = 0.0f;
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        sum = sum_of(sum, top[y * width]);
    }
    return narrow(wide(sum) / wide(static_cast<float>(height)));
}

/// What each column is raised by, from the left one to the right one.
std::vector<float> make_ramp(float left, float right, int width)
{
    float offset = narrow((wide(right) - wide(left)) * 0.5);
    double const step = wide(narrow(wide(offset) / (wide(static_cast<float>(width)) * 0.5)));
    std::vector<float> ramp;
    ramp.reserve(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x) {
        ramp.push_back(offset);
        offset = narrow(wide(offset) - step);
    }
    return ramp;
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

void TileHeight(float* heights, int height, int width)
{
    using namespace umbrixlib::detail;
    if (height < 1 || width < 1) {
        return;
    }
    std::vector<float> const ramp = make_ramp(column_mean(heights, height, width),
                                              column_mean(heights + width - 1, height, width), width);
    float* row = heights;
    for (int y = 0; y < height; ++y, row += width) {
        for (std::size_t x = 0; x < ramp.size(); ++x) {
            row[x] = sum_of(row[x], ramp[x]);
        }
    }
}

} // namespace umbrix_v0
