// SPDX-License-Identifier: MIT
#include "layers/height_overlay.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "layers/height_overlay.cpp"
#include <hwy/foreach_target.h>

#include "filters/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {

using Wide = hn::Vec<Doubles>;

constexpr std::size_t kLanes = hn::MaxLanes(HalfFloats());

/// One register of heights. Products whose factors are not both floats are not fused with their sum.
HWY_INLINE void overlay_lanes(float* blend, float const* layer, double fraction)
{
    constexpr Doubles d;
    Wide const one = hn::Set(d, 1.0);
    Wide const b = widened(hn::LoadU(HalfFloats(), blend));
    Wide const l = widened(hn::LoadU(HalfFloats(), layer));
    Wide const rest = hn::Sub(one, b);
    Wide const screen = widened(narrowed(hn::Sub(one, hn::Mul(hn::Sub(one, l), rest))));
    Wide const product = widened(narrowed(hn::Mul(l, b)));
    Wide const overlaid = widened(narrowed(hn::Add(hn::Mul(screen, b), hn::Mul(product, rest))));
    Wide const faded =
        hn::Add(hn::Mul(overlaid, hn::Set(d, fraction)), hn::Mul(b, hn::Set(d, 1.0 - fraction)));
    hn::StoreU(narrowed(faded), HalfFloats(), blend);
}

void overlay_all(float* blend, float const* layer, float fraction, std::size_t count)
{
    auto const wide_fraction = static_cast<double>(fraction);
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        overlay_lanes(blend + i, layer + i, wide_fraction);
    }
    if (i < count) {
        float last_blend[kLanes] = {};
        float last_layer[kLanes] = {};
        std::memcpy(last_blend, blend + i, (count - i) * sizeof(float));
        std::memcpy(last_layer, layer + i, (count - i) * sizeof(float));
        overlay_lanes(last_blend, last_layer, wide_fraction);
        std::memcpy(blend + i, last_blend, (count - i) * sizeof(float));
    }
}

} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(overlay_all);

void overlay_heights(float* blend, float const* layer, float fraction, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(overlay_all)(blend, layer, fraction, count);
}

} // namespace umbrixlib::detail
#endif
