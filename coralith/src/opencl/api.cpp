// SPDX-License-Identifier: MIT
#include "opencl/api.h"

#include "device/shared_library.h"

namespace coralith {
namespace {

char const* error_text(cl_int code)
{
    switch (code) {
    case CL_DEVICE_NOT_FOUND:
        return "no device found";
    case CL_DEVICE_NOT_AVAILABLE:
        return "device not available";
    case CL_COMPILER_NOT_AVAILABLE:
        return "no compiler";
    case CL_MEM_OBJECT_ALLOCATION_FAILURE:
        return "no memory on the device";
    case CL_OUT_OF_RESOURCES:
        return "out of resources";
    case CL_OUT_OF_HOST_MEMORY:
        return "out of host memory";
    case CL_BUILD_PROGRAM_FAILURE:
        return "program does not build";
    case CL_INVALID_BUFFER_SIZE:
        return "invalid buffer size";
    case -1001: // of the loader
        return "no driver is installed";
    default:
        return "error";
    }
}

} // namespace

std::shared_ptr<OpenClApi const> open_opencl(char const* library, std::string& why)
{
    SharedLibrary const loader(library);
    if (!loader.is_open()) {
        why = loader.fault();
        return nullptr;
    }
    auto api = std::make_shared<OpenClApi>();
#define CORALITH_LOAD(name)                                                                                  \
    api->name = loader.function<decltype(&::name)>(#name);                                                   \
    if (api->name == nullptr) {                                                                              \
        why = std::string(library) + " lacks " #name;                                                        \
        return nullptr;                                                                                      \
    }
    CORALITH_OPENCL_FUNCTIONS(CORALITH_LOAD)
#undef CORALITH_LOAD
    return api;
}

char const* opencl_library_name()
{
#if defined(_WIN32)
    return "OpenCL.dll";
#elif defined(__APPLE__)
    return "/System/Library/Frameworks/OpenCL.framework/OpenCL";
#else
    return "libOpenCL.so.1";
#endif
}

std::string opencl_error(char const* function, cl_int code)
{
    return std::string(function) + ": " + std::to_string(code) + " (" + error_text(code) + ")";
}

} // namespace coralith
