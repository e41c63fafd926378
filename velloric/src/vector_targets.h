// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Comes before the vector library. The kernels keep registers in arrays and classes, which registers of a
/// size that the compiler does not know cannot be in; machines that have such run the fixed-size set beside
/// it.

#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
