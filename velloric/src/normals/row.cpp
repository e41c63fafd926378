// SPDX-License-Identifier: MIT
#include "normals/row.h"

#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "normals/row.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using namespace umbrixlib::detail::HWY_NAMESPACE;
using Values = hn::Vec<HalfFloats>;

/// Normals of kHalfLanes texels. @p row points at the left neighbour of the first.
HWY_INLINE void normal_block(float const* below, float const* row, float const* above, float3* normals)
{
    constexpr HalfFloats d;
    Values const x = hn::Sub(hn::LoadU(d, row), hn::LoadU(d, row + 2));
    Values const y = hn::Sub(hn::LoadU(d, below), hn::LoadU(d, above));
    // The squares of floats are exact in double, so fusing one with the sum changes no bit. What follows are
    // single operations on floats, which round as they do by way of double.
    auto const wide_x = widened(x);
    auto const wide_y = widened(y);
    auto const slope = hn::MulAdd(wide_x, wide_x, hn::Mul(wide_y, wide_y));
    Values const length = hn::Sqrt(narrowed(hn::Add(slope, hn::Set(Doubles(), 1.0))));
    Values const inverse = hn::Div(hn::Set(d, 1.0f), length);
    hn::StoreInterleaved3(hn::Mul(inverse, x), hn::Mul(inverse, y), inverse, d, &normals->x);
}

/// The same for less than kHalfLanes texels, by way of copies that have room for all.
HWY_INLINE void normal_rest(float const* below, float const* row, float const* above, float3* normals,
                            std::size_t count)
{
    float below_copy[kHalfLanes] = {};
    float row_copy[kHalfLanes + 2] = {};
    float above_copy[kHalfLanes] = {};
    float3 result[kHalfLanes];
    std::memcpy(below_copy, below, count * sizeof(float));
    std::memcpy(row_copy, row, (count + 2) * sizeof(float));
    std::memcpy(above_copy, above, count * sizeof(float));
    normal_block(below_copy, row_copy, above_copy, result);
    std::memcpy(normals, result, count * sizeof(float3));
}

void normal_row(float const* below, float const* row, float const* above, float3* normals, std::size_t width)
{
    std::size_t x = 0;
    for (; x + kHalfLanes <= width; x += kHalfLanes) {
        normal_block(below + x, row + x, above + x, normals + x);
    }
    if (x < width) {
        normal_rest(below + x, row + x, above + x, normals + x, width - x);
    }
}

} // namespace
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
