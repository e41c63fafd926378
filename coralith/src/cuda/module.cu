// SPDX-License-Identifier: MIT
#include "cuda/module.h"

#include "device/kernel_list.h"
#include "kernels/bilateral.h"
#include "kernels/gaussian.h"
#include "kernels/light.h"
#include "kernels/normals.h"
#include "kernels/occlusion.h"
#include "kernels/tone.h"

#include <cstring>
#include <cuda_runtime.h>

namespace {

constexpr unsigned kBlock = 64;

void const* const kFunctions[] = {
#define CORALITH_FUNCTION(constant, name, program) reinterpret_cast<void const*>(&name),
    CORALITH_KERNELS(CORALITH_FUNCTION)
#undef CORALITH_FUNCTION
};

int device_count(int* count)
{
    return cudaGetDeviceCount(count);
}

int describe(int device, coralith_cuda_device* description)
{
    cudaDeviceProp properties;
    cudaError_t const code = cudaGetDeviceProperties(&properties, device);
    if (code == cudaSuccess) {
        std::strncpy(description->name, properties.name, sizeof description->name - 1);
        description->name[sizeof description->name - 1] = '\0';
        description->pci_domain = static_cast<unsigned>(properties.pciDomainID);
        description->pci_bus = static_cast<unsigned>(properties.pciBusID);
        description->pci_device = static_cast<unsigned>(properties.pciDeviceID);
        description->memory = properties.totalGlobalMem;
    }
    return code;
}

int open(int device)
{
    int const code = cudaSetDevice(device);
    return code != cudaSuccess ? code : cudaFree(nullptr); // makes the context
}

int allocate(int device, std::size_t bytes, void** memory)
{
    int const code = cudaSetDevice(device);
    if (code != cudaSuccess) {
        return code;
    }
    int const result = cudaMalloc(memory, bytes);
    if (result == cudaErrorMemoryAllocation) {
        cudaGetLastError(); // this one does not stay
    }
    return result;
}

int release(int device, void* memory)
{
    int const code = cudaSetDevice(device);
    return code != cudaSuccess ? code : cudaFree(memory);
}

int upload(int device, void* memory, void const* from, std::size_t bytes)
{
    int const code = cudaSetDevice(device);
    return code != cudaSuccess ? code : cudaMemcpy(memory, from, bytes, cudaMemcpyHostToDevice);
}

int download(int device, void const* memory, void* to, std::size_t bytes)
{
    int const code = cudaSetDevice(device);
    return code != cudaSuccess ? code : cudaMemcpy(to, memory, bytes, cudaMemcpyDeviceToHost);
}

int launch(int device, int kernel, long long items, void** arguments)
{
    int const code = cudaSetDevice(device);
    if (code != cudaSuccess) {
        return code;
    }
    long long const blocks = (items + kBlock - 1) / kBlock;
    if (blocks > 0x7fffffffLL) {
        return cudaErrorInvalidConfiguration;
    }
    return cudaLaunchKernel(kFunctions[kernel], dim3(static_cast<unsigned>(blocks)), dim3(kBlock), arguments,
                            0, nullptr);
}

int finish(int device)
{
    int const code = cudaSetDevice(device);
    return code != cudaSuccess ? code : cudaDeviceSynchronize();
}

char const* error_text(int code)
{
    return cudaGetErrorString(static_cast<cudaError_t>(code));
}

} // namespace

extern "C" __attribute__((visibility("default"))) coralith_cuda_module const* coralith_cuda_open()
{
    static coralith_cuda_module const module = {kCoralithCudaVersion,
                                                coralith::kKernels,
                                                device_count,
                                                describe,
                                                open,
                                                allocate,
                                                release,
                                                upload,
                                                download,
                                                launch,
                                                finish,
                                                error_text,
                                                cudaErrorMemoryAllocation};
    return &module;
}
