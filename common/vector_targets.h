// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Include before the vector library. Vector code keeps registers in arrays and classes, so their size must
/// be known to the compiler. Machines with scalable registers run the fixed-size instruction set instead.

#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
