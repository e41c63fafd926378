// SPDX-License-Identifier: MIT
#include "normal_row.h"

#include "vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "normal_row.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR
using Floats = hn::ScalableTag<float>;
#else
using Floats = hn::Rebind<float, hn::ScalableTag<double>>;
#endif
using Doubles = hn::Rebind<double, Floats>;
using Values = hn::Vec<Floats>;

constexpr std::size_t kLanes = hn::MaxLanes(Floats());

/// Each double rounded to the nearest float, an infinity where it is too large. The emulated sets of the
/// vector library would stop at the largest float.
HWY_INLINE Values narrowed(hn::Vec<Doubles> values)
{
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    HWY_ALIGN double from[kLanes];
    HWY_ALIGN float to[kLanes];
    hn::Store(values, Doubles(), from);
    for (std::size_t i = 0; i < kLanes; ++i) {
        to[i] = static_cast<float>(from[i]);
    }
    return hn::Load(Floats(), to);
#else
    return hn::DemoteTo(Floats(), values);
#endif
}

/// Normals of kLanes texels. @p row points at the left neighbour of the first.
HWY_INLINE void normal_block(float const* below, float const* row, float const* above, float3* normals)
{
    constexpr Floats d;
    constexpr Doubles wide;
    Values const x = hn::Sub(hn::LoadU(d, row), hn::LoadU(d, row + 2));
    Values const y = hn::Sub(hn::LoadU(d, below), hn::LoadU(d, above));
    // The squares of floats are exact in double, so fusing one with the sum changes no bit. What follows are
    // single operations on floats, which round as they do by way of double.
    auto const wide_x = hn::PromoteTo(wide, x);
    auto const wide_y = hn::PromoteTo(wide, y);
    auto const slope = hn::MulAdd(wide_x, wide_x, hn::Mul(wide_y, wide_y));
    Values const length = hn::Sqrt(narrowed(hn::Add(slope, hn::Set(wide, 1.0))));
    Values const inverse = hn::Div(hn::Set(d, 1.0f), length);
    hn::StoreInterleaved3(hn::Mul(inverse, x), hn::Mul(inverse, y), inverse, d, &normals->x);
}

/// The same for less than kLanes texels, by way of copies that have room for all.
HWY_INLINE void normal_rest(float const* below, float const* row, float const* above, float3* normals,
                            std::size_t count)
{
    float below_copy[kLanes] = {};
    float row_copy[kLanes + 2] = {};
    float above_copy[kLanes] = {};
    float3 result[kLanes];
    std::memcpy(below_copy, below, count * sizeof(float));
    std::memcpy(row_copy, row, (count + 2) * sizeof(float));
    std::memcpy(above_copy, above, count * sizeof(float));
    normal_block(below_copy, row_copy, above_copy, result);
    std::memcpy(normals, result, count * sizeof(float3));
}

void normal_row(float const* below, float const* row, float const* above, float3* normals, std::size_t width)
{
    std::size_t x = 0;
    for (; x + kLanes <= width; x += kLanes) {
        normal_block(below + x, row + x, above + x, normals + x);
    }
    if (x < width) {
        normal_rest(below + x, row + x, above + x, normals + x, width - x);
    }
}

} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace velloric {

HWY_EXPORT(normal_row);

void normal_row(float const* below, float const* row, float const* above, float3* normals, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(normal_row)(below, row, above, normals, width);
}

} // namespace velloric
#endif
