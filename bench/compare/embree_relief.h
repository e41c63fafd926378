// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texture_kernels.h"
#include "measure/occlusion_cases.h"

#include <embree3/rtcore.h>
#include <vector>

namespace umbrixlib::bench {

/// A height map as a mesh of two triangles between four texels, and its occlusion by Embree. The mesh ends
/// at the border of the map. Built by one thread, asked by one thread.
class EmbreeRelief {
public:
    EmbreeRelief(std::vector<float> const& heights, int side);
    ~EmbreeRelief();
    EmbreeRelief(EmbreeRelief const&) = delete;
    EmbreeRelief& operator=(EmbreeRelief const&) = delete;

    /// Share of open rays of each bundle for the texels of the rows, one after the other. Sixteen texels side
    /// by side ask for one ray together, which is Embree's fastest form here.
    std::vector<float3> occlusion(Bundles const& bundles, int rays, float radius,
                                  std::vector<int> const& rows) const;
    /// The same with one query for each ray.
    std::vector<float3> occlusion_one_by_one(Bundles const& bundles, int rays, float radius,
                                             std::vector<int> const& rows) const;

private:
    struct Reach {
        float first;
        float last;
    };
    Reach reach_of(ray const& step, float radius) const;

    std::vector<float> const& heights_;
    int side_;
    RTCDevice device_;
    RTCScene scene_;
};

} // namespace umbrixlib::bench
