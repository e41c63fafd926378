// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace umbrixlib::test {

/// Stands in for the texture kernels and the graphics library in an executable that links `kernels_fake.cpp`:
/// records every call. A kernel does the least that lets a test see where its result goes:
///   BilateralFilter     copies the source, plus `kFiltered`
///   Height2Normal       float: (0, 0, height); float3: leaves the image
///   Normal2Umbrix       adds `kLight` to x of its share
///   Height2DirectionalAO  writes (`kOpenX`, `kOpenY`, `kOpenZ`)
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

    static KernelsFake& instance();
};

} // namespace umbrixlib::test
