// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The three directions from which an Umbrix map is lit. A and B are unit vectors at azimuths 120 and 240 and
/// an elevation of 35.26 degrees; C points to azimuth 0 and has the squared length 11/6.

#include "common/vector_types.h"

namespace umbrixlib::detail {

inline constexpr double kInverseSqrt2 = 0.70710678118654752440;
inline constexpr double kInverseSqrt3 = 0.57735026918962576451;
inline constexpr double kInverseSqrt6 = 0.40824829046386301637;
inline constexpr double kSqrtThreeHalves = 1.22474487139158904910;

inline constexpr float3 kBasisA = {static_cast<float>(-kInverseSqrt6), static_cast<float>(kInverseSqrt2),
                                   static_cast<float>(kInverseSqrt3)};
inline constexpr float3 kBasisB = {static_cast<float>(-kInverseSqrt6), static_cast<float>(-kInverseSqrt2),
                                   static_cast<float>(kInverseSqrt3)};
inline constexpr float3 kBasisC = {static_cast<float>(kSqrtThreeHalves), 0.0f,
                                   static_cast<float>(kInverseSqrt3)};
/// kBasisC divided by its length: (3, 0, sqrt(2)) / sqrt(11).
inline constexpr float3 kUnitBasisC = {0.904534033733290872f, 0.0f, 0.426401432711220868f};

} // namespace umbrixlib::detail
