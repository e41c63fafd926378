// SPDX-License-Identifier: MIT

/// @file
/// Floats, as many as there are doubles in a register, and the way back from these; once per instruction set.

#if defined(VELLORIC_FLOAT_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLORIC_FLOAT_LANES_INL_H
#undef VELLORIC_FLOAT_LANES_INL_H
#else
#define VELLORIC_FLOAT_LANES_INL_H
#endif

#include <cstddef>
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

} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
