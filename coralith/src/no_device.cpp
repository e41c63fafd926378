// SPDX-License-Identifier: MIT
// The build without any graphics backend: there is no device, every stage says so by returning false, and no
// caller's buffer is touched.
#include "boundary/gpu_library.h"

void SetDevice(int) {}

void SetDest(float*, int, int) {}
void SetDest(float3*, int, int) {}
void SetDest(float4*, int, int) {}
void SetSrc(float*, int, int) {}
void SetSrc(float3*, int, int) {}
void GetDest(float*, int, int) {}
void GetDest(float3*, int, int) {}
void GetDest(float4*, int, int) {}
void DeleteDest() {}
void DeleteSrc() {}

bool PreProcess_GPU(GPU_opt, float*, int, int, umbrix_options&)
{
    return false;
}

bool PostProcess_GPU(GPU_opt, float4*, int, int, umbrix_options&)
{
    return false;
}

bool HeightToNormal_GPU(GPU_opt, float*, int, int, float, float, float, float, std::string*, int*)
{
    return false;
}

void UmbrixNormal_GPU(GPU_opt, float3*, int, int, int) {}

void DirectionalAO_GPU(float*, int, int, int, float, float, float, int, bool, bool, bool, int, int*) {}

int DeviceCount()
{
    return 0;
}

char const* DeviceName(int)
{
    return nullptr;
}

char const* ActiveBackend()
{
    return "none";
}

char const* LastError()
{
    return "";
}
