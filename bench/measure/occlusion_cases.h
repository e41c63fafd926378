// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texture_kernels.h"
#include "common/vector_types.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace umbrixlib::bench {

/// What the occlusion is asked for.
struct OcclusionSet {
    char const* name;
    int rays;
    float radius;
    float h_scale;
};

constexpr std::array<OcclusionSet, 3> kOcclusionSets = {
    {{"i", 300, 1.0f, 1.0f}, {"ii", 64, 0.25f, 0.1f}, {"iii", 100, 0.5f, 0.02f}}};
constexpr float kAngleLimit = 120.0f; ///< Of azimuth and elevation, in every set.

/// The three bundles, made as a caller of the kernel makes them.
struct Bundles {
    std::vector<ray> a;
    std::vector<ray> b;
    std::vector<ray> c;

    Bundles(int side, int rays);
};

/// A map with what the kernel needs for it.
struct OcclusionCase {
    std::vector<float> heights;
    std::vector<float3> occlusion;
    int side;

    OcclusionCase(std::string const& map, int map_side, float h_scale);

    /// `GenerateRays` and `Height2DirectionalAO`.
    void run(int rays, float radius, float h_scale, bool tile);
};

/// About @p count rows of a map, one in each of as many strips, at uneven places, so that they do not keep
/// step with a pattern.
std::vector<int> spread_rows(int side, int count);

} // namespace umbrixlib::bench
