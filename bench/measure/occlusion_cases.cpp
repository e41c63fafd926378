// SPDX-License-Identifier: MIT
#include "occlusion_cases.h"

#include "maps.h"

#include <cmath>

namespace umbrixlib::bench {

Bundles::Bundles(int side, int rays)
    : a(2 * static_cast<std::size_t>(rays)), b(2 * static_cast<std::size_t>(rays)),
      c(2 * static_cast<std::size_t>(rays))
{
    ray* first = a.data();
    ray* second = b.data();
    ray* third = c.data();
    GenerateRays(side, side, first, second, third, rays, kAngleLimit, kAngleLimit);
}

OcclusionCase::OcclusionCase(std::string const& map, int map_side, float h_scale)
    : heights(heights_of(map, map_side, h_scale)), occlusion(heights.size()), side(map_side)
{
}

void OcclusionCase::run(int rays, float radius, float h_scale, bool tile)
{
    Bundles bundles(side, rays);
    Height2DirectionalAO(occlusion.data(), heights.data(), side, side, bundles.a.data(), bundles.b.data(),
                         bundles.c.data(), rays, h_scale, radius, tile, tile, tile, nullptr);
}

std::vector<int> spread_rows(int side, int count)
{
    std::vector<int> rows;
    for (int i = 0; i < count; ++i) {
        double const place = i + std::fmod(i * 0.6180339887498949, 1.0);
        rows.push_back(static_cast<int>(place * side / count));
    }
    return rows;
}

} // namespace umbrixlib::bench
