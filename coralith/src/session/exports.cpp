// SPDX-License-Identifier: MIT
#include "boundary/gpu_library.h"
#include "session/session.h"

using coralith::session;

namespace {

float* floats(float* buffer)
{
    return buffer;
}

template <typename Pixel>
float* floats(Pixel* buffer)
{
    return reinterpret_cast<float*>(buffer);
}

} // namespace

void SetDevice(int device)
{
    session().runner().select(device);
}

void SetDest(float* buffer, int rows, int cols)
{
    session().set(session().destination_1, floats(buffer), rows, cols);
}

void SetDest(float3* buffer, int rows, int cols)
{
    session().set(session().destination_3, floats(buffer), rows, cols);
}

void SetDest(float4* buffer, int rows, int cols)
{
    session().set(session().destination_4, floats(buffer), rows, cols);
}

void SetSrc(float* buffer, int rows, int cols)
{
    session().set(session().source_1, floats(buffer), rows, cols);
}

void SetSrc(float3* buffer, int rows, int cols)
{
    session().set(session().source_3, floats(buffer), rows, cols);
}

void GetDest(float* buffer, int rows, int cols)
{
    session().get(session().destination_1, floats(buffer), rows, cols);
}

void GetDest(float3* buffer, int rows, int cols)
{
    session().get(session().destination_3, floats(buffer), rows, cols);
}

void GetDest(float4* buffer, int rows, int cols)
{
    session().get(session().destination_4, floats(buffer), rows, cols);
}

void DeleteDest()
{
    session().delete_destinations();
}

void DeleteSrc()
{
    session().delete_sources();
}

bool PreProcess_GPU(GPU_opt, float* heights, int rows, int cols, umbrix_options& options)
{
    return session().pre_process(heights, rows, cols, options);
}

bool PostProcess_GPU(GPU_opt, float4* map, int rows, int cols, umbrix_options& options)
{
    return session().post_process(floats(map), rows, cols, options);
}

bool HeightToNormal_GPU(GPU_opt, float* heights, int rows, int cols, float n_scale, float gaussian,
                        float L_Detail, float, std::string* status, int* progress)
{
    if (status != nullptr) {
        *status = "Generating Normal";
    }
    if (progress != nullptr) {
        *progress = 0;
    }
    return session().height_to_normal(heights, rows, cols, n_scale, gaussian, L_Detail);
}

void UmbrixNormal_GPU(GPU_opt, float3* normals, int mode, int rows, int cols)
{
    session().umbrix_normal(floats(normals), mode, rows, cols);
}

void DirectionalAO_GPU(float* heights, int rows, int cols, int rays, float alpha_limit, float theta_limit,
                       float radius, int device, bool h_tile, bool v_tile, bool at_once, int ao_value,
                       int* progress)
{
    session().runner().select(device);
    session().directional_occlusion(heights, rows, cols,
                                    {rays, alpha_limit, theta_limit, radius, h_tile, v_tile},
                                    coralith::PortionRule::of(at_once, ao_value), progress);
}

int DeviceCount()
{
    return session().runner().device_count();
}

char const* DeviceName(int device)
{
    return session().runner().device_name(device);
}

char const* ActiveBackend()
{
    return session().runner().active_backend();
}

char const* LastError()
{
    return session().runner().reports().last();
}

report_handler SetReportHandler(report_handler handler)
{
    return coralith::set_report_handler(handler);
}
