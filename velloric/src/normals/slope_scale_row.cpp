// SPDX-License-Identifier: MIT
#include "normals/slope_scale_row.h"

#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "normals/slope_scale_row.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using namespace umbrixlib::detail::HWY_NAMESPACE;
using Values = hn::Vec<HalfFloats>;

/// The vectors from @p normals on that fill a register.
HWY_INLINE void scale_block(float3* normals, hn::Vec<Doubles> factor)
{
    constexpr HalfFloats d;
    Values x, y, z;
    hn::LoadInterleaved3(d, &normals->x, x, y, z);
    auto const wide_x = hn::Mul(widened(x), factor);
    auto const wide_y = hn::Mul(widened(y), factor);
    auto const wide_z = widened(z);
    // The first two squares are not exact, so they are not fused with their sum; that of z is the square of a
    // float.
    auto const slope = hn::Add(hn::Mul(wide_y, wide_y), hn::Mul(wide_x, wide_x));
    auto const length = hn::Sqrt(hn::MulAdd(wide_z, wide_z, slope));
    auto const divisor = hn::IfThenElse(hn::Eq(length, hn::Zero(Doubles())), hn::Set(Doubles(), 1.0), length);
    hn::StoreInterleaved3(narrowed(hn::Div(wide_x, divisor)), narrowed(hn::Div(wide_y, divisor)),
                          narrowed(hn::Div(wide_z, divisor)), d, &normals->x);
}

void scale_row(float3* normals, std::size_t count, float factor)
{
    auto const wide_factor = hn::Set(Doubles(), static_cast<double>(factor));
    std::size_t i = 0;
    for (; i + kHalfLanes <= count; i += kHalfLanes) {
        scale_block(normals + i, wide_factor);
    }
    if (i < count) {
        float3 rest[kHalfLanes] = {};
        std::memcpy(rest, normals + i, (count - i) * sizeof(float3));
        scale_block(rest, wide_factor);
        std::memcpy(normals + i, rest, (count - i) * sizeof(float3));
    }
}

} // namespace
} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace velloric {

HWY_EXPORT(scale_row);

void scale_slopes(float3* normals, std::size_t count, float factor)
{
    HWY_DYNAMIC_DISPATCH(scale_row)(normals, count, factor);
}

} // namespace velloric
#endif
