// SPDX-License-Identifier: MIT
#include "graphics_fake.h"

#include "call_log.h"

#include <algorithm>
#include <cstddef>
#include <omp.h>

namespace umbrixlib::test {

namespace {

std::size_t texels(int rows, int cols)
{
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
}

GraphicsFake& fake()
{
    return GraphicsFake::instance();
}

void fault(std::string const& text)
{
    fake().faults.push_back(text);
}

template <typename... Arguments>
void record_graphics(char const* name, Arguments... arguments)
{
    if (fake().caller != std::thread::id() && std::this_thread::get_id() != fake().caller) {
        fault(std::string(name) + " from another thread");
    }
    if (omp_in_parallel() != 0) {
        fault(std::string(name) + " inside a parallel region");
    }
    record_call(name, arguments...);
}

void record_polled()
{
    if (fake().status != nullptr) {
        CallLog::instance().record("polled: " + *fake().status + " " + std::to_string(*fake().progress));
    }
}

template <typename T>
void put(GraphicsFake::Slot<T>& slot, T const* buffer, int rows, int cols)
{
    slot = {{buffer, buffer + texels(rows, cols)}, rows, cols, true};
}

template <typename T>
void check(GraphicsFake::Slot<T> const& slot, int rows, int cols, char const* who)
{
    if (!slot.taken || slot.rows != rows || slot.cols != cols) {
        fault(std::string(who) + " without a slot of its size");
    }
}

template <typename T>
void get(GraphicsFake::Slot<T> const& slot, T* buffer, int rows, int cols)
{
    check(slot, rows, cols, "GetDest");
    if (slot.elements.size() == texels(rows, cols)) {
        std::copy(slot.elements.begin(), slot.elements.end(), buffer);
    }
}

GraphicsStages& marking_stages()
{
    static GraphicsStages stages;
    return stages;
}

GraphicsStages& stages()
{
    return fake().stages == nullptr ? marking_stages() : *fake().stages;
}

/// The fields of a GPU_opt among the arguments.
struct Fields {
    GPU_opt gpu;
};

std::string text(Fields const& fields)
{
    using umbrixlib::test::text;
    return text(fields.gpu.ao_flag) + "/" + text(fields.gpu.device) + "/" + text(fields.gpu.ao_value);
}

} // namespace

GraphicsFake& GraphicsFake::instance()
{
    static GraphicsFake the_fake;
    return the_fake;
}

void GraphicsFake::reset(GraphicsStages* chosen)
{
    *this = {};
    stages = chosen;
    caller = std::this_thread::get_id();
}

void GraphicsStages::pre_process(float* heights, int rows, int cols, umbrix_options&)
{
    std::for_each_n(heights, texels(rows, cols), [](float& height) { height += kPre; });
}

void GraphicsStages::normals(float3* result, float* heights, int rows, int cols, float, float, float)
{
    std::transform(heights, heights + texels(rows, cols), result, [](float height) {
        return float3{0.0f, 0.0f, height};
    });
}

void GraphicsStages::light(float3* normals, int rows, int cols, int)
{
    std::for_each_n(normals, texels(rows, cols), [](float3& normal) { normal.x += kLight; });
}

void GraphicsStages::occlusion(float3* result, float*, int rows, int cols, Occlusion const&, int* progress)
{
    std::fill_n(result, texels(rows, cols), float3{kOpenX, kOpenY, kOpenZ});
    *progress = 1000;
}

void GraphicsStages::post_process(float4* map, int rows, int cols, umbrix_options&)
{
    std::for_each_n(map, texels(rows, cols), [](float4& texel) { texel.x *= 0.5f; });
}

} // namespace umbrixlib::test

using namespace umbrixlib::test;

void SetDevice(int device)
{
    record_graphics("SetDevice", device);
    fake().device = device;
}

void SetDest(float* buffer, int rows, int cols)
{
    record_graphics("SetDest:float", static_cast<void*>(buffer), rows, cols);
    put(fake().dest1, buffer, rows, cols);
}

void SetDest(float3* buffer, int rows, int cols)
{
    record_graphics("SetDest:float3", static_cast<void*>(buffer), rows, cols);
    put(fake().dest3, buffer, rows, cols);
}

void SetDest(float4* buffer, int rows, int cols)
{
    record_graphics("SetDest:float4", static_cast<void*>(buffer), rows, cols);
    put(fake().dest4, buffer, rows, cols);
}

void SetSrc(float* buffer, int rows, int cols)
{
    record_graphics("SetSrc:float", static_cast<void*>(buffer), rows, cols);
    put(fake().src1, buffer, rows, cols);
}

void SetSrc(float3* buffer, int rows, int cols)
{
    record_graphics("SetSrc:float3", static_cast<void*>(buffer), rows, cols);
    put(fake().src3, buffer, rows, cols);
}

void GetDest(float* buffer, int rows, int cols)
{
    record_graphics("GetDest:float", static_cast<void*>(buffer), rows, cols);
    get(fake().dest1, buffer, rows, cols);
}

void GetDest(float3* buffer, int rows, int cols)
{
    record_graphics("GetDest:float3", static_cast<void*>(buffer), rows, cols);
    get(fake().dest3, buffer, rows, cols);
}

void GetDest(float4* buffer, int rows, int cols)
{
    record_graphics("GetDest:float4", static_cast<void*>(buffer), rows, cols);
    get(fake().dest4, buffer, rows, cols);
}

void DeleteDest()
{
    record_graphics("DeleteDest");
    fake().dest1 = {};
    fake().dest3 = {};
    fake().dest4 = {};
}

void DeleteSrc()
{
    record_graphics("DeleteSrc");
    fake().src1 = {};
    fake().src3 = {};
}

bool PreProcess_GPU(GPU_opt gpu, float* heights, int rows, int cols, umbrix_options& options)
{
    record_graphics("PreProcess_GPU", Fields{gpu}, static_cast<void*>(heights), rows, cols);
    record_polled();
    check(fake().dest1, rows, cols, "PreProcess_GPU");
    stages().pre_process(fake().dest1.elements.data(), rows, cols, options);
    return false;
}

bool PostProcess_GPU(GPU_opt gpu, float4* map, int rows, int cols, umbrix_options& options)
{
    record_graphics("PostProcess_GPU", Fields{gpu}, static_cast<void*>(map), rows, cols);
    record_polled();
    check(fake().dest4, rows, cols, "PostProcess_GPU");
    stages().post_process(fake().dest4.elements.data(), rows, cols, options);
    return false;
}

bool HeightToNormal_GPU(GPU_opt gpu, float* heights, int rows, int cols, float n_scale, float gaussian,
                        float L_Detail, float depth, std::string* status, int* progress)
{
    record_graphics("HeightToNormal_GPU", Fields{gpu}, static_cast<void*>(heights), rows, cols, n_scale,
                    gaussian, L_Detail, depth);
    record_polled();
    if (fake().status != nullptr && (status != fake().status || progress != fake().progress)) {
        fault("HeightToNormal_GPU with another text or number");
    }
    check(fake().dest3, rows, cols, "HeightToNormal_GPU");
    stages().normals(fake().dest3.elements.data(), heights, rows, cols, n_scale, gaussian, L_Detail);
    return false;
}

void UmbrixNormal_GPU(GPU_opt gpu, float3* normals, int mode, int rows, int cols)
{
    record_graphics("UmbrixNormal_GPU", Fields{gpu}, static_cast<void*>(normals), mode, rows, cols);
    record_polled();
    check(fake().dest3, rows, cols, "UmbrixNormal_GPU");
    put(fake().dest3, normals, rows, cols);
    stages().light(fake().dest3.elements.data(), rows, cols, mode);
}

void DirectionalAO_GPU(float* heights, int rows, int cols, int rays, float alpha_limit, float theta_limit,
                       float radius, int device, bool h_tile, bool v_tile, bool at_once, int ao_value,
                       int* progress)
{
    record_graphics("DirectionalAO_GPU", static_cast<void*>(heights), rows, cols, rays, alpha_limit,
                    theta_limit, radius, device, h_tile, v_tile, at_once, ao_value);
    record_polled();
    check(fake().dest3, rows, cols, "DirectionalAO_GPU");
    check(fake().src1, rows, cols, "DirectionalAO_GPU");
    stages().occlusion(fake().dest3.elements.data(), fake().src1.elements.data(), rows, cols,
                       {rays, alpha_limit, theta_limit, radius, h_tile, v_tile}, progress);
}
