// SPDX-License-Identifier: MIT
#include "stages/normals.h"

#include "common/exp_table.h"
#include "common/exponential.h"
#include "common/rounding.h"
#include "stages/gaussian_blur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace coralith {
namespace {

using umbrixlib::detail::to_int;
using umbrixlib::detail::wide;

constexpr Index kMostTapsOfLaunch = Index{1} << 27;

/// Filters @p source, whose size is @p shape, into @p destination.
bool filter_bilateral(Backend& backend, Memory const& source, Memory const& destination, Shape shape,
                      int radius, float sigma)
{
    std::vector<float> spatial(static_cast<std::size_t>(radius) + 1);
    std::vector<float> range(256);
    umbrixlib::detail::exp_table(sigma, spatial.data(), 0, 1);
    umbrixlib::detail::exp_table(umbrixlib::detail::kRangeSigma, range.data(), 0, 1);
    DeviceArray spatial_table(backend);
    DeviceArray range_table(backend);
    if (!spatial_table.fill(spatial.data(), spatial.size()) ||
        !range_table.fill(range.data(), range.size())) {
        return false;
    }
    double const side = 2.0 * radius + 1.0;
    auto const most =
        std::max<Index>(static_cast<Index>(static_cast<double>(kMostTapsOfLaunch) / (side * side)), 64);
    for (Index first = 0; first < shape.texels(); first += most) {
        Index const count = std::min(most, shape.texels() - first);
        if (!backend.launch(Kernel::kFilterBilateral, count,
                            {source, destination, spatial_table, range_table, shape.rows, shape.cols, radius,
                             first, count}) ||
            !backend.finish()) {
            return false;
        }
    }
    return true;
}

} // namespace

bool height_to_normal(Backend& backend, Shape shape, NormalSettings const& settings, float const* heights,
                      float* normals)
{
    DeviceArray source(backend);
    DeviceArray filtered(backend);
    DeviceArray result(backend);
    auto const count = static_cast<std::size_t>(shape.texels());
    if (!source.fill(heights, count) || !result.reserve(shape.bytes(3))) {
        return false;
    }
    DeviceArray const* map = &source;
    // A radius that is too large for an int has no window, and the filter changes nothing.
    int const radius = settings.L_Detail > 1.0f ? to_int(std::ceil(wide(settings.L_Detail))) : 0;
    if (radius > 0) {
        if (!filtered.reserve(shape.bytes(1)) ||
            !filter_bilateral(backend, source.memory(), filtered.memory(), shape, radius,
                              settings.L_Detail)) {
            return false;
        }
        map = &filtered;
    }
    return backend.launch(Kernel::kScaleHeights, shape.texels(), {*map, shape.texels(), settings.n_scale}) &&
           (!(settings.gaussian > 0.0f) || gaussian_blur(backend, *map, shape, 1, settings.gaussian)) &&
           backend.launch(Kernel::kMakeNormals, shape.texels(), {*map, result, shape.rows, shape.cols}) &&
           backend.finish() && backend.download(result.memory(), normals, shape.bytes(3));
}

} // namespace coralith
