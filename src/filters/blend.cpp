// SPDX-License-Identifier: MIT
#include "filters/blend.h"

#include "boundary/texture_kernels.h"
#include "filters/blend_internal.h"

#include <cstddef>

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void blend(float* first, float* second, float percent, int height, int width)
{
    double const fraction = wide(limited_fraction_of(percent));
    std::ptrdiff_t const texels = static_cast<std::ptrdiff_t>(height) * width;
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        first[i] = cross_fade(wide(second[i]), first[i], fraction);
    }
}

void blend(float* first, float* second, float percent, int height, int width, int /*unread_a*/,
           int /*unread_b*/)
{
    blend(first, second, percent, height, width);
}

void blend(float3* first, float3* second, float percent, int height, int width)
{
    Blend(BlendType_Blend, percent, first, second, first, height, width);
}

void blend(float3* first, float3* second, float percent, int height, int width, int /*unread_a*/,
           int /*unread_b*/)
{
    blend(first, second, percent, height, width);
}

void blend(float3* image, float percent, int height, int width)
{
    constexpr float kWhite = 1.0f;
    double const fraction = wide(limited_fraction_of(percent));
    std::ptrdiff_t const components = static_cast<std::ptrdiff_t>(height) * width * 3;
    auto* const floats = reinterpret_cast<float*>(image);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < components; ++i) {
        floats[i] = cross_fade(wide(floats[i]), kWhite, fraction);
    }
}

void blend(float3* image, float percent, int height, int width, int /*unread_a*/, int /*unread_b*/)
{
    blend(image, percent, height, width);
}

void overlay(float3* first, float3* second, float percent, int height, int width)
{
    Blend(BlendType_Overlay, percent, first, second, first, height, width);
}

void overlay(float3* first, float3* second, float percent, int height, int width, int thread, int threads)
{
    Blend(BlendType_Overlay, percent, first, second, first, height, width, thread, threads);
}

float multiply(float a, float b)
{
    return product_of(a, b);
}

float screen(float a, float b)
{
    return screen_of(a, b);
}

} // namespace umbrix_v0
