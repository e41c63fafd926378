/* SPDX-License-Identifier: MIT */
#pragma once

/// @file
/// What the CUDA module gives to libcoralith, which opens it at run time: plain functions, since a compiler
/// of its own may have made it. All that return int give 0 for success, else a code for `error_text`.

#include <cstddef>

extern "C" {

struct coralith_cuda_device {
    char name[256];
    unsigned pci_domain;
    unsigned pci_bus;
    unsigned pci_device;
    std::size_t memory; ///< Bytes.
};

struct coralith_cuda_module {
    int version;      ///< kCoralithCudaVersion of the build.
    int kernel_count; ///< Kernels that `launch` knows.
    int (*device_count)(int* count);
    int (*describe)(int device, coralith_cuda_device* description);
    int (*open)(int device);
    int (*allocate)(int device, std::size_t bytes, void** memory);
    int (*release)(int device, void* memory);
    int (*upload)(int device, void* memory, void const* from, std::size_t bytes);
    int (*download)(int device, void const* memory, void* to, std::size_t bytes);
    /// @param arguments Pointers to the values, as CUDA's own launch takes them.
    int (*launch)(int device, int kernel, long long items, void** arguments);
    int (*finish)(int device);
    char const* (*error_text)(int code);
    int out_of_memory; ///< The code for it.
};

} // extern "C"

/// Of this interface.
inline constexpr int kCoralithCudaVersion = 1;
/// The one exported function: `coralith_cuda_module const* coralith_cuda_open()`.
inline constexpr char kCoralithCudaOpen[] = "coralith_cuda_open";
