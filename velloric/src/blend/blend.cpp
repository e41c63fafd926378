// SPDX-License-Identifier: MIT
#include "blend/row.h"
#include "boundary/texture_kernels.h"
#include "common/blocks.h"
#include "common/rounding.h"
#include "common/thread_share.h"

#include <cstddef>

namespace {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

/// @p percent as a factor in 0..1; NaN becomes 0.
double share(float percent)
{
    return percent > 0.0f ? wide(narrow(wide(percent < 100.0f ? percent : 100.0f) / 100.0)) : 0.0;
}

/// Both ends are exact: share 0 gives @p from and share 1 @p to.
float fade(double from, double to, double share)
{
    return narrow(to * share + from * (1.0 - share));
}

double overlay(double below, double above)
{
    return below <= 0.5 ? 2.0 * below * above : 1.0 - 2.0 * (1.0 - below) * (1.0 - above);
}

float cross_fade(float first, float second, double share)
{
    return fade(wide(first), wide(second), share);
}

float overlay_fade(float first, float second, double share)
{
    return fade(wide(first), overlay(wide(first), wide(second)), share);
}

using Combine = float (*)(float first, float second, double share);

/// Reads a pixel of both before it writes that of @p result, which may be either.
template <Combine combine>
void combine_pixel(float3 const& first, float3 const& second, float3& result, double share)
{
    result = {combine(first.x, second.x, share), combine(first.y, second.y, share),
              combine(first.z, second.z, share)};
}

using BlendRow = void (*)(float const* first, float const* second, float* result, std::size_t count,
                          double share);

/// Every channel is blended by itself, so the maps are rows of floats.
void combine_all(BlendRow blend_row, double share, float3 const* first, float3 const* second, float3* result,
                 int height, int width)
{
    if (height < 1 || width < 1) {
        return;
    }
    umbrixlib::detail::for_blocks(static_cast<std::ptrdiff_t>(height) * width,
                                  [&](std::ptrdiff_t at, std::size_t count) {
                                      blend_row(&first[at].x, &second[at].x, &result[at].x, 3 * count, share);
                                  });
}

template <Combine combine>
void combine_share(double share, float3 const* first, float3 const* second, float3* result, int height,
                   int width, int thread, int threads)
{
    if (height < 1 || width < 1 || !umbrixlib::detail::has_share(thread, threads)) {
        return;
    }
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
    for (auto i = static_cast<std::size_t>(thread); i < count; i += static_cast<std::size_t>(threads)) {
        combine_pixel<combine>(first[i], second[i], result[i], share);
    }
}

} // namespace

void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result, int height,
           int width)
{
    auto const row = type == BlendType_Overlay ? velloric::overlay_fade_row : velloric::cross_fade_row;
    combine_all(row, share(opacity), first, second, result, height, width);
}

void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result, int height,
           int width, int thread, int threads)
{
    auto const apply = type == BlendType_Overlay ? combine_share<overlay_fade> : combine_share<cross_fade>;
    apply(share(opacity), first, second, result, height, width, thread, threads);
}

// Contract: `opacity` is the weight of `first`, while that of `Blend` is the weight of `second`; the same
// direction is expected of both. The stack hands the upper layer as `first`. Test:
// BlendNormal.OpacityIsTheWeightOfFirst
void BlendNormal(float opacity, float3* first, float3* second, float3* result, int height, int width)
{
    combine_all(velloric::cross_fade_row, share(opacity), second, first, result, height, width);
}
