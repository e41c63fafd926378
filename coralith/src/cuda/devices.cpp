// SPDX-License-Identifier: MIT
#include "cuda/devices.h"

#include "cuda/module.h"
#include "device/shared_library.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace coralith {
namespace {

class CudaBackend final : public Backend {
public:
    CudaBackend(coralith_cuda_module const& module, int device, std::size_t memory)
        : module_(module), device_(device), memory_(memory)
    {
    }

    char const* kind() const override { return "CUDA"; }
    Limits limits() const override { return {memory_, true, true}; }

    bool allocate(std::size_t bytes, Memory& memory) override
    {
        void* handle = nullptr;
        if (!check("cudaMalloc", module_.allocate(device_, bytes, &handle))) {
            return false;
        }
        memory = {handle, bytes};
        return true;
    }

    void release(Memory& memory) override
    {
        module_.release(device_, memory.handle);
        memory = {};
    }

    bool upload(Memory const& memory, void const* from, std::size_t bytes) override
    {
        return check("cudaMemcpy", module_.upload(device_, memory.handle, from, bytes));
    }

    bool download(Memory const& memory, void* to, std::size_t bytes) override
    {
        return check("cudaMemcpy", module_.download(device_, memory.handle, to, bytes));
    }

    bool launch(Kernel kernel, Index items, Arguments arguments) override
    {
        std::vector<void*> values;
        values.reserve(arguments.size());
        for (Argument const& argument : arguments) {
            void const* const value = argument.is_memory() ? &argument.memory().handle : argument.bytes();
            values.push_back(const_cast<void*>(value)); // only read
        }
        return check("cudaLaunchKernel",
                     module_.launch(device_, static_cast<int>(kernel), items, values.data()));
    }

    bool finish() override { return check("cudaDeviceSynchronize", module_.finish(device_)); }

private:
    bool check(char const* function, int code)
    {
        if (code == 0) {
            return true;
        }
        return fail(code == module_.out_of_memory ? Failure::kMemory : Failure::kDevice,
                    std::string(function) + ": " + std::to_string(code) + " (" + module_.error_text(code) +
                        ")");
    }

    coralith_cuda_module const& module_;
    int device_;
    std::size_t memory_;
};

std::unique_ptr<Backend> open_cuda_backend(coralith_cuda_module const& module, int device, std::size_t memory,
                                           std::string& why)
{
    int const code = module.open(device);
    if (code != 0) {
        why = std::string("cudaSetDevice: ") + module.error_text(code);
        return nullptr;
    }
    return std::make_unique<CudaBackend>(module, device, memory);
}

} // namespace

Discovery discover_cuda(std::string const& path)
{
    Discovery found;
    SharedLibrary const library(path);
    if (!library.is_open()) {
        found.notes.push_back("no CUDA: " + library.fault());
        return found;
    }
    using Open = coralith_cuda_module const* (*)();
    auto const open = library.function<Open>(kCoralithCudaOpen);
    coralith_cuda_module const* const module = open != nullptr ? open() : nullptr;
    if (module == nullptr || module->version != kCoralithCudaVersion || module->kernel_count != kKernels) {
        found.notes.push_back("no CUDA: " + path + " is of another build");
        return found;
    }
    int count = 0;
    int const code = module->device_count(&count);
    if (code != 0 || count < 1) {
        found.notes.push_back(std::string("no CUDA: ") +
                              (code != 0 ? module->error_text(code) : "the driver knows no device"));
        return found;
    }
    for (int i = 0; i < count; ++i) {
        coralith_cuda_device description{};
        int const fault = module->describe(i, &description);
        if (fault != 0) {
            found.notes.push_back("CUDA device " + std::to_string(i) + ": " + module->error_text(fault));
            continue;
        }
        Device device;
        device.name = description.name;
        device.backend = "CUDA";
        device.is_graphics_card = true;
        device.address = PciAddress{description.pci_domain, description.pci_bus, description.pci_device};
        device.open = [module, i, memory = description.memory](std::string& why) {
            return open_cuda_backend(*module, i, memory, why);
        };
        found.devices.push_back(std::move(device));
    }
    return found;
}

char const* cuda_module_name()
{
#if defined(_WIN32)
    return "coralith_cuda.dll";
#else
    return "libcoralith_cuda.so";
#endif
}

} // namespace coralith
