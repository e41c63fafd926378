// SPDX-License-Identifier: MIT
#include "toolkit/relief/curvature.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/run_progress.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace umbrixlib::toolkit {

namespace {

/// The two places whose difference is the slope at one place of an axis.
struct Neighbours {
    std::size_t before;
    std::size_t behind;
};

Neighbours neighbours_of(std::size_t at, std::size_t length, bool repeats)
{
    if (repeats) {
        return {at == 0 ? length - 1 : at - 1, at + 1 == length ? 0 : at + 1};
    }
    if (length < 3) { // no texel has an inner neighbour
        return {0, length - 1};
    }
    std::size_t const inner = std::clamp<std::size_t>(at, 1, length - 2);
    return {inner - 1, inner + 1};
}

} // namespace

std::vector<float> mean_curvature(float3 const* normals, int width, int height, Borders const& borders,
                                  RunControl* control)
{
    auto const columns = static_cast<std::size_t>(width);
    auto const rows = static_cast<std::size_t>(height);
    std::vector<float> curvatures(columns * rows);
    RunProgress progress(control, rows);
    on_all_threads(rows, [&](auto const& next) {
        for (std::size_t y = next(); y < rows; y = next()) {
            if (progress.stopping()) {
                return;
            }
            auto const [below, above] = neighbours_of(y, rows, borders.v_tile);
            float3 const* const row = normals + y * columns;
            for (std::size_t x = 0; x < columns; ++x) {
                auto const [left, right] = neighbours_of(x, columns, borders.h_tile);
                float const along = row[right].x - row[left].x;
                float const across = normals[above * columns + x].y - normals[below * columns + x].y;
                curvatures[y * columns + x] = (along + across) / 4.0f;
            }
            progress.add_piece();
        }
    });
    return curvatures;
}

double common_curvature(std::vector<float> const& curvatures)
{
    if (curvatures.empty()) {
        return 0.0;
    }
    std::vector<float> sizes(curvatures.size());
    std::ranges::transform(curvatures, sizes.begin(), [](float each) { return std::abs(each); });
    auto const at = sizes.begin() + static_cast<std::ptrdiff_t>((sizes.size() - 1) * 99 / 100);
    std::ranges::nth_element(sizes, at);
    return static_cast<double>(*at);
}

} // namespace umbrixlib::toolkit
