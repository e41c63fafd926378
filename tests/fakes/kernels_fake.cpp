// SPDX-License-Identifier: MIT
#include "kernels_fake.h"

#include "boundary/texture_kernels.h"
#include "call_log.h"

#include <cstddef>

namespace umbrixlib::test {

KernelsFake& KernelsFake::instance()
{
    static KernelsFake fake;
    return fake;
}

namespace {

std::ptrdiff_t texels(int height, int width)
{
    return static_cast<std::ptrdiff_t>(height) * width;
}

/// Records what a front end would poll at this moment.
void record_polled()
{
    KernelsFake const& fake = KernelsFake::instance();
    if (fake.status != nullptr) {
        CallLog::instance().record("polled: " + *fake.status + " " + std::to_string(*fake.progress));
    }
}

template <typename Pixel>
void copy(Pixel const* source, Pixel* destination, int height, int width, int thread, int threads)
{
    for (std::ptrdiff_t i = thread; i < texels(height, width); i += threads) {
        destination[i] = source[i];
        *reinterpret_cast<float*>(destination + i) += KernelsFake::kFiltered;
    }
}

/// Notes when two callers are inside at the same time.
class OneCaller {
public:
    OneCaller()
    {
        if (KernelsFake::instance().callers.fetch_add(1) != 0) {
            KernelsFake::instance().callers_met = true;
        }
    }
    OneCaller(OneCaller const&) = delete;
    OneCaller& operator=(OneCaller const&) = delete;
    ~OneCaller() { KernelsFake::instance().callers.fetch_sub(1); }
};

} // namespace

} // namespace umbrixlib::test

using namespace umbrixlib::test;

void GenerateExp(float sigma, float* table)
{
    record_call("GenerateExp", sigma, static_cast<void*>(table));
}

void GenerateExp(float sigma, float* table, int thread, int threads)
{
    record_call("GenerateExp", sigma, static_cast<void*>(table), thread, threads);
}

void BilateralFilter(float* source, float* destination, int height, int width, float radius, float* spatial,
                     float* range)
{
    record_call("BilateralFilter", static_cast<void*>(source), static_cast<void*>(destination), height, width,
                radius, static_cast<void*>(spatial), static_cast<void*>(range));
    copy(source, destination, height, width, 0, 1);
}

void BilateralFilter(float3* source, float3* destination, int height, int width, float radius, float* spatial,
                     float* range)
{
    record_call("BilateralFilter3", static_cast<void*>(source), static_cast<void*>(destination), height,
                width, radius, static_cast<void*>(spatial), static_cast<void*>(range));
    copy(source, destination, height, width, 0, 1);
}

void BilateralFilter(float* source, float* destination, int height, int width, float radius, float* spatial,
                     float* range, int thread, int threads)
{
    record_call("BilateralFilter", static_cast<void*>(source), static_cast<void*>(destination), height, width,
                radius, static_cast<void*>(spatial), static_cast<void*>(range), thread, threads);
    copy(source, destination, height, width, thread, threads);
}

void ChangeDepth(float* heights, int height, int width, float depth, float n_scale)
{
    record_call("ChangeDepth", static_cast<void*>(heights), height, width, depth, n_scale);
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        heights[i] += depth;
    }
}

void Height2Normal(float* heights, float3* normals, int height, int width)
{
    record_call("Height2Normal", static_cast<void*>(heights), static_cast<void*>(normals), height, width);
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        normals[i] = {0.0f, 0.0f, heights[i]};
    }
}

void Height2Normal(float3* image, int height, int width, float n_scale)
{
    record_call("Height2Normal3", static_cast<void*>(image), height, width, n_scale);
}

void NormalEdges(float3* normals, float* heights, int height, int width, float edge_a, float edge_b)
{
    record_call("NormalEdges", static_cast<void*>(normals), static_cast<void*>(heights), height, width,
                edge_a, edge_b);
}

void NormalScale(float3* normals, int height, int width, float scale)
{
    OneCaller const caller;
    record_call("NormalScale", static_cast<void*>(normals), height, width, scale);
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        normals[i].x *= scale;
    }
}

void BlendNormal(float opacity, float3* first, float3* second, float3* result, int height, int width)
{
    OneCaller const caller;
    record_call("BlendNormal", opacity, static_cast<void*>(first), static_cast<void*>(second),
                static_cast<void*>(result), height, width);
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        result[i] = KernelsFake::faded(second[i], first[i], opacity);
    }
}

void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result, int height,
           int width)
{
    OneCaller const caller;
    record_call("Blend", static_cast<int>(type), opacity, static_cast<void*>(first),
                static_cast<void*>(second), static_cast<void*>(result), height, width);
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        result[i] = KernelsFake::faded(first[i], second[i], opacity);
    }
}

void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result, int height,
           int width, int thread, int threads)
{
    record_call("Blend", static_cast<int>(type), opacity, static_cast<void*>(first),
                static_cast<void*>(second), static_cast<void*>(result), height, width, thread, threads);
}

void Normal2Umbrix(float3* image, int height, int width, Modes mode, int thread, int threads)
{
    record_call("Normal2Umbrix", static_cast<void*>(image), height, width, static_cast<int>(mode), thread,
                threads);
    if (thread == 0) {
        record_polled();
    }
    for (std::ptrdiff_t i = thread; i < texels(height, width); i += threads) {
        image[i].x += KernelsFake::kLight;
    }
}

void GenerateRays(int height, int width, ray*& rays_a, ray*& rays_b, ray*& rays_c, int rays,
                  float theta_limit, float alpha_limit)
{
    record_call("GenerateRays", height, width, static_cast<void*>(rays_a), static_cast<void*>(rays_b),
                static_cast<void*>(rays_c), rays, theta_limit, alpha_limit);
    for (int i = 0; i < 2 * rays; ++i) {
        rays_a[i] = rays_b[i] = rays_c[i] = {};
    }
}

void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a, ray* rays_b,
                          ray* rays_c, int rays, float h_scale, float radius, bool tile, bool h_tile,
                          bool v_tile, int* progress)
{
    record_call("Height2DirectionalAO", static_cast<void*>(occlusion), static_cast<void*>(heights), height,
                width, static_cast<void*>(rays_a), static_cast<void*>(rays_b), static_cast<void*>(rays_c),
                rays, h_scale, radius, tile, h_tile, v_tile);
    record_polled();
    for (std::ptrdiff_t i = 0; i < texels(height, width); ++i) {
        occlusion[i] = {KernelsFake::kOpenX, KernelsFake::kOpenY, KernelsFake::kOpenZ};
    }
    *progress = 1000;
}
