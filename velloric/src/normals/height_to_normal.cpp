// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "normals/row.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

void normals_of(float const* heights, float3* normals, std::size_t rows, std::size_t columns)
{
#pragma omp parallel
    {
        std::vector<float> wrapped(columns + 2);
#pragma omp for schedule(static)
        for (std::size_t y = 0; y < rows; ++y) {
            float const* const row = heights + y * columns;
            float const* const below = heights + (y == 0 ? rows - 1 : y - 1) * columns;
            float const* const above = heights + (y == rows - 1 ? 0 : y + 1) * columns;
            wrapped.front() = row[columns - 1];
            std::copy_n(row, columns, wrapped.begin() + 1);
            wrapped.back() = row[0];
            velloric::normal_row(below, wrapped.data(), above, normals + y * columns, columns);
        }
    }
}

} // namespace

void Height2Normal(float* heights, float3* normals, int height, int width)
{
    if (height < 1 || width < 1) {
        return;
    }
    normals_of(heights, normals, static_cast<std::size_t>(height), static_cast<std::size_t>(width));
}

void Height2Normal(float3* image, int height, int width, float n_scale)
{
    if (height < 1 || width < 1) {
        return;
    }
    auto const rows = static_cast<std::size_t>(height);
    auto const columns = static_cast<std::size_t>(width);
    std::size_t const count = rows * columns;
    std::unique_ptr<float[]> const heights(new float[count]);
#pragma omp parallel for schedule(static)
    for (std::size_t i = 0; i < count; ++i) {
        float3 const& colour = image[i];
        heights[i] = narrow((wide(colour.x) + wide(colour.y) + wide(colour.z)) / 3.0 * wide(n_scale));
    }
    normals_of(heights.get(), image, rows, columns);
}
