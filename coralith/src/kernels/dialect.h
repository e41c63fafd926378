// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The words that make one text a kernel in OpenCL C 1.2, in CUDA C++ and in plain C++.
///
/// A kernel handles one item, whose number it gets from GID0. Launches round the number of items up, so every
/// kernel compares that number with its own count first. Buffers hold scalars. No sum or product is fused.
///
///     BEGIN_KERNELS
///     KERNEL double_all(ITEM GLOBAL float* values, Index count) { ... GID0 ... }
///     END_KERNELS

#if defined(__OPENCL_VERSION__)

#pragma OPENCL FP_CONTRACT OFF
#if defined(cl_khr_fp64)
#pragma OPENCL EXTENSION cl_khr_fp64 : enable
#endif
typedef long Index;
#define BEGIN_KERNELS
#define END_KERNELS
#define KERNEL __kernel void
#define FN static
#define GLOBAL __global
#define RESTRICT restrict
#define ITEM
#define GID0 ((Index)get_global_id(0))
#define SQRT sqrt

#elif defined(__CUDACC__)

typedef long long Index;
#define BEGIN_KERNELS
#define END_KERNELS
#define KERNEL extern "C" __global__ void
#define FN static __device__
#define GLOBAL
#define RESTRICT __restrict__
#define ITEM
#define GID0 ((Index)blockIdx.x * blockDim.x + threadIdx.x)
#define SQRT sqrt

#else

#include <cmath>
#include <cstdint>

#define BEGIN_KERNELS                                                                                        \
    namespace coralith::kernels {                                                                            \
    using Index = std::int64_t;
#define END_KERNELS }
#define KERNEL inline void
#define FN inline
#define GLOBAL
#define RESTRICT __restrict
#define ITEM Index item,
#define GID0 item
#define SQRT std::sqrt

#endif
