// SPDX-License-Identifier: MIT
#include "opencl/backend.h"

#include "opencl/kernel_sources.h"

#include <array>
#include <utility>

namespace coralith {
namespace {

constexpr std::size_t kGroup = 64; ///< Items of a work group; fixed, so that a kernel is compiled once.

class OpenClBackend final : public Backend {
public:
    OpenClBackend(std::shared_ptr<OpenClApi const> api, cl_device_id device, Limits const& limits,
                  cl_context context, cl_command_queue queue)
        : owner_(std::move(api)), api_(*owner_), device_(device), limits_(limits), context_(context),
          queue_(queue)
    {
    }

    ~OpenClBackend() override
    {
        for (cl_kernel const kernel : kernels_) {
            if (kernel != nullptr) {
                api_.clReleaseKernel(kernel);
            }
        }
        for (cl_program const program : programs_) {
            if (program != nullptr) {
                api_.clReleaseProgram(program);
            }
        }
        api_.clReleaseCommandQueue(queue_);
        api_.clReleaseContext(context_);
    }

    char const* kind() const override { return "OpenCL"; }
    Limits limits() const override { return limits_; }

    bool allocate(std::size_t bytes, Memory& memory) override
    {
        if (bytes > limits_.largest_buffer) {
            return fail(Failure::kMemory, "a buffer of " + std::to_string(bytes) +
                                              " bytes is above its limit of " +
                                              std::to_string(limits_.largest_buffer));
        }
        cl_int code = CL_SUCCESS;
        cl_mem const buffer = api_.clCreateBuffer(context_, CL_MEM_READ_WRITE, bytes, nullptr, &code);
        if (code != CL_SUCCESS) {
            return check("clCreateBuffer", code);
        }
        memory = {buffer, bytes};
        return true;
    }

    void release(Memory& memory) override
    {
        api_.clReleaseMemObject(static_cast<cl_mem>(memory.handle));
        memory = {};
    }

    bool upload(Memory const& memory, void const* from, std::size_t bytes) override
    {
        return check("clEnqueueWriteBuffer",
                     api_.clEnqueueWriteBuffer(queue_, static_cast<cl_mem>(memory.handle), CL_TRUE, 0, bytes,
                                               from, 0, nullptr, nullptr));
    }

    bool download(Memory const& memory, void* to, std::size_t bytes) override
    {
        return check("clEnqueueReadBuffer",
                     api_.clEnqueueReadBuffer(queue_, static_cast<cl_mem>(memory.handle), CL_TRUE, 0, bytes,
                                              to, 0, nullptr, nullptr));
    }

    bool launch(Kernel kernel, Index items, Arguments arguments) override
    {
        cl_kernel const function = function_of(kernel);
        if (function == nullptr) {
            return false;
        }
        cl_uint number = 0;
        for (Argument const& argument : arguments) {
            cl_mem const buffer = static_cast<cl_mem>(argument.memory().handle);
            cl_int const code =
                argument.is_memory()
                    ? api_.clSetKernelArg(function, number, sizeof buffer, &buffer)
                    : api_.clSetKernelArg(function, number, argument.size(), argument.bytes());
            if (code != CL_SUCCESS) {
                return check("clSetKernelArg", code);
            }
            ++number;
        }
        std::size_t const size = (static_cast<std::size_t>(items) + kGroup - 1) / kGroup * kGroup;
        return check(
            "clEnqueueNDRangeKernel",
            api_.clEnqueueNDRangeKernel(queue_, function, 1, nullptr, &size, &kGroup, 0, nullptr, nullptr));
    }

    bool finish() override { return check("clFinish", api_.clFinish(queue_)); }

private:
    bool check(char const* function, cl_int code)
    {
        if (code == CL_SUCCESS) {
            return true;
        }
        bool const no_room = code == CL_MEM_OBJECT_ALLOCATION_FAILURE || code == CL_OUT_OF_HOST_MEMORY ||
                             code == CL_INVALID_BUFFER_SIZE;
        return fail(no_room ? Failure::kMemory : Failure::kDevice, opencl_error(function, code));
    }

    cl_kernel function_of(Kernel kernel)
    {
        auto const index = static_cast<std::size_t>(kernel);
        if (kernels_[index] == nullptr) {
            cl_program const program = program_of(kKernelPrograms[index]);
            if (program == nullptr) {
                return nullptr;
            }
            cl_int code = CL_SUCCESS;
            cl_kernel const made = api_.clCreateKernel(program, kKernelNames[index], &code);
            if (code != CL_SUCCESS) {
                fail(Failure::kDevice, opencl_error("clCreateKernel", code));
                return nullptr;
            }
            kernels_[index] = made;
        }
        return kernels_[index];
    }

    cl_program program_of(Program which)
    {
        auto const index = static_cast<std::size_t>(which);
        if (programs_[index] != nullptr) {
            return programs_[index];
        }
        Text const& text = kProgramTexts[index];
        char const* texts[] = {kDialectText.first, text.first};
        std::size_t const sizes[] = {kDialectText.size, text.size};
        cl_int code = CL_SUCCESS;
        cl_program const program = api_.clCreateProgramWithSource(context_, 2, texts, sizes, &code);
        if (code != CL_SUCCESS) {
            fail(Failure::kDevice, opencl_error("clCreateProgramWithSource", code));
            return nullptr;
        }
        code = api_.clBuildProgram(program, 1, &device_, "-cl-std=CL1.2", nullptr, nullptr);
        if (code != CL_SUCCESS) {
            fail(Failure::kDevice, opencl_error("clBuildProgram", code) + first_line_of_log(program));
            api_.clReleaseProgram(program);
            return nullptr;
        }
        programs_[index] = program;
        return program;
    }

    std::string first_line_of_log(cl_program program)
    {
        std::size_t size = 0;
        api_.clGetProgramBuildInfo(program, device_, CL_PROGRAM_BUILD_LOG, 0, nullptr, &size);
        std::string log(size, '\0');
        api_.clGetProgramBuildInfo(program, device_, CL_PROGRAM_BUILD_LOG, size, log.data(), nullptr);
        log = log.substr(0, log.find_first_of(std::string("\n\0", 2)));
        return log.empty() ? log : ": " + log;
    }

    std::shared_ptr<OpenClApi const> owner_;
    OpenClApi const& api_;
    cl_device_id device_;
    Limits limits_;
    cl_context context_;
    cl_command_queue queue_;
    std::array<cl_program, kPrograms> programs_{};
    std::array<cl_kernel, kKernels> kernels_{};
};

} // namespace

std::unique_ptr<Backend> open_opencl_backend(std::shared_ptr<OpenClApi const> api, cl_device_id device,
                                             Limits const& limits, std::string& why)
{
    cl_int code = CL_SUCCESS;
    cl_context const context = api->clCreateContext(nullptr, 1, &device, nullptr, nullptr, &code);
    if (code != CL_SUCCESS) {
        why = opencl_error("clCreateContext", code);
        return nullptr;
    }
    cl_command_queue const queue = api->clCreateCommandQueue(context, device, 0, &code);
    if (code != CL_SUCCESS) {
        why = opencl_error("clCreateCommandQueue", code);
        api->clReleaseContext(context);
        return nullptr;
    }
    return std::make_unique<OpenClBackend>(std::move(api), device, limits, context, queue);
}

} // namespace coralith
