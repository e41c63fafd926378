// SPDX-License-Identifier: MIT
#pragma once

#define CL_TARGET_OPENCL_VERSION 120
#include <CL/cl.h>

#include <memory>
#include <string>

namespace coralith {

#define CORALITH_OPENCL_FUNCTIONS(X)                                                                         \
    X(clGetPlatformIDs)                                                                                      \
    X(clGetPlatformInfo)                                                                                     \
    X(clGetDeviceIDs)                                                                                        \
    X(clGetDeviceInfo)                                                                                       \
    X(clCreateContext)                                                                                       \
    X(clReleaseContext)                                                                                      \
    X(clCreateCommandQueue)                                                                                  \
    X(clReleaseCommandQueue)                                                                                 \
    X(clCreateProgramWithSource)                                                                             \
    X(clBuildProgram)                                                                                        \
    X(clGetProgramBuildInfo)                                                                                 \
    X(clReleaseProgram)                                                                                      \
    X(clCreateKernel)                                                                                        \
    X(clReleaseKernel)                                                                                       \
    X(clSetKernelArg)                                                                                        \
    X(clCreateBuffer)                                                                                        \
    X(clReleaseMemObject)                                                                                    \
    X(clEnqueueWriteBuffer)                                                                                  \
    X(clEnqueueReadBuffer)                                                                                   \
    X(clEnqueueNDRangeKernel)                                                                                \
    X(clFinish)

/// The functions of the OpenCL loader that we call, opened at run time: a machine without it starts too.
struct OpenClApi {
#define CORALITH_MEMBER(name) decltype(&::name) name = nullptr;
    CORALITH_OPENCL_FUNCTIONS(CORALITH_MEMBER)
#undef CORALITH_MEMBER
};

/// Opens the loader, which then stays; null if that fails, and why.
std::shared_ptr<OpenClApi const> open_opencl(char const* library, std::string& why);

/// The loader's file name on this system.
char const* opencl_library_name();

/// "clFinish: -5 (out of resources)".
std::string opencl_error(char const* function, cl_int code);

} // namespace coralith
