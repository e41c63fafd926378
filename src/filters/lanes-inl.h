// SPDX-License-Identifier: MIT

/// @file
/// What the filters add to the vector library, once per instruction set.

#if defined(UMBRIX_FILTERS_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef UMBRIX_FILTERS_LANES_INL_H
#undef UMBRIX_FILTERS_LANES_INL_H
#else
#define UMBRIX_FILTERS_LANES_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;       ///< A register of doubles.
using HalfFloats = hn::Rebind<float, Doubles>; ///< As many floats as there are doubles in a register.
using Floats = hn::ScalableTag<float>;         ///< A register of floats.

HWY_INLINE hn::Vec<Doubles> widened(hn::Vec<HalfFloats> values)
{
    return hn::PromoteTo(Doubles(), values);
}

/// Each double rounded to the nearest float, an infinity where it is too large. The emulated sets of the
/// vector library would stop at the largest float.
HWY_INLINE hn::Vec<HalfFloats> narrowed(hn::Vec<Doubles> values)
{
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    constexpr HalfFloats d;
    HWY_ALIGN double from[hn::MaxLanes(Doubles())];
    HWY_ALIGN float to[hn::MaxLanes(d)];
    hn::Store(values, Doubles(), from);
    for (size_t i = 0; i < hn::Lanes(d); ++i) {
        to[i] = static_cast<float>(from[i]);
    }
    return hn::Load(d, to);
#else
    return hn::DemoteTo(HalfFloats(), values);
#endif
}

} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
