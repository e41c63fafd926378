// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The devices that tests run on: all OpenCL devices of the machine, and its CUDA devices if the module was
/// built. The scripts install an OpenCL driver for the processor, so there is one everywhere.

#include "cuda/devices.h"
#include "host/backend.h"
#include "opencl/devices.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace coralith::test {

/// The driver for the processor keeps compiled kernels in a folder, and has no device if it cannot.
inline bool const has_kernel_cache = setenv("POCL_CACHE_DIR", CORALITH_KERNEL_CACHE, 1) == 0;

inline Discovery real_devices()
{
    Discovery found = discover_opencl("libOpenCL.so.1");
    EXPECT_FALSE(found.devices.empty()) << "no OpenCL device: install pocl-opencl-icd and ocl-icd-libopencl1";
#if defined(CORALITH_CUDA_MODULE)
    Discovery cuda = discover_cuda(CORALITH_CUDA_MODULE);
    for (Device& device : cuda.devices) {
        found.devices.push_back(std::move(device));
    }
#endif
    return found;
}

/// Calls @p body with every real device, opened once, and with the host.
inline void for_every_backend(std::function<void(Backend& backend, std::string const& name)> const& body)
{
    struct Opened {
        std::string name;
        std::unique_ptr<Backend> backend;
    };
    // Never destroyed: drivers may be gone by then.
    static std::vector<Opened>& opened = *[] {
        auto* const all = new std::vector<Opened>;
        for (Device const& device : real_devices().devices) {
            std::string why;
            all->push_back({device.name, device.open(why)});
            EXPECT_NE(all->back().backend, nullptr) << device.name << ": " << why;
        }
        all->push_back({"host", std::make_unique<HostBackend>()});
        return all;
    }();
    for (Opened const& each : opened) {
        ASSERT_NE(each.backend, nullptr);
        body(*each.backend, each.name);
    }
}

} // namespace coralith::test
