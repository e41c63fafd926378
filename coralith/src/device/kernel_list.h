// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// All kernels, and the program that each belongs to: a program is built as one, at its first use.

namespace coralith {

/// X(constant, name of the function, program)
#define CORALITH_KERNELS(X)                                                                                  \
    X(kChangeTone, change_tone, kTone)                                                                       \
    X(kFilterForward, filter_forward, kGaussian)                                                             \
    X(kFilterBackward, filter_backward, kGaussian)                                                           \
    X(kFilterBilateral, filter_bilateral, kBilateral)                                                        \
    X(kScaleHeights, scale_heights, kNormals)                                                                \
    X(kMakeNormals, make_normals, kNormals)                                                                  \
    X(kLightNormals, light_normals, kLight)                                                                  \
    X(kCountOpenRays, count_open_rays, kOcclusion)                                                           \
    X(kCountsToShares, counts_to_shares, kOcclusion)

enum class Program { kTone, kGaussian, kBilateral, kNormals, kLight, kOcclusion };
inline constexpr int kPrograms = 6;

enum class Kernel {
#define CORALITH_CONSTANT(constant, name, program) constant,
    CORALITH_KERNELS(CORALITH_CONSTANT)
#undef CORALITH_CONSTANT
};

#define CORALITH_ONE(constant, name, program) +1
inline constexpr int kKernels = 0 CORALITH_KERNELS(CORALITH_ONE);
#undef CORALITH_ONE

inline constexpr char const* kKernelNames[] = {
#define CORALITH_NAME(constant, name, program) #name,
    CORALITH_KERNELS(CORALITH_NAME)
#undef CORALITH_NAME
};

inline constexpr Program kKernelPrograms[] = {
#define CORALITH_PROGRAM(constant, name, program) Program::program,
    CORALITH_KERNELS(CORALITH_PROGRAM)
#undef CORALITH_PROGRAM
};

} // namespace coralith
