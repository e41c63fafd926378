// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"

#include <atomic>
#include <string>

namespace umbrixlib::test {

/// Stands in for the texture kernels in an executable that links `kernels_fake.cpp`: records every call. A
/// kernel does the least that lets a test see where its result goes:
///   BilateralFilter     copies the source, plus `kFiltered`
///   Height2Normal       float: (0, 0, height); float3: leaves the image
///   Normal2Umbrix       adds `kLight` to x of its share
///   Height2DirectionalAO  writes (`kOpenX`, `kOpenY`, `kOpenZ`)
///   ChangeDepth         adds the depth
///   NormalScale         multiplies x by the scale
///   BlendNormal         `faded` of the second and the first argument
///   Blend               `faded` of the first and the second argument
/// All others change nothing.
struct KernelsFake {
    static constexpr float kFiltered = 0.125f;
    static constexpr float kLight = 0.25f;
    static constexpr float kOpenX = 0.5f;
    static constexpr float kOpenY = 0.25f;
    static constexpr float kOpenZ = 1.0f;

    /// If set, the stage text and number that a polling front end would see are recorded with the occlusion
    /// and light calls of thread 0.
    std::string const* status = nullptr;
    int const* progress = nullptr;

    /// Calls of the whole-image kernels of a blend that are going on, and whether two ever met.
    std::atomic<int> callers = 0;
    std::atomic<bool> callers_met = false;

    static KernelsFake& instance();

    static float faded(float from, float to, float percent)
    {
        return from + (to - from) * (percent / 100.0f);
    }
    static float3 faded(float3 from, float3 to, float percent)
    {
        return {faded(from.x, to.x, percent), faded(from.y, to.y, percent), faded(from.z, to.z, percent)};
    }
};

} // namespace umbrixlib::test
