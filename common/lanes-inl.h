// SPDX-License-Identifier: MIT

/// @file
/// What vector code adds to the vector library, once per instruction set.

#if defined(UMBRIX_COMMON_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef UMBRIX_COMMON_LANES_INL_H
#undef UMBRIX_COMMON_LANES_INL_H
#else
#define UMBRIX_COMMON_LANES_INL_H
#endif

#include <cstddef>
#include <cstring>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;       ///< A register of doubles.
using HalfFloats = hn::Rebind<float, Doubles>; ///< As many floats as there are doubles in a register.
using Floats = hn::ScalableTag<float>;         ///< A register of floats.

constexpr std::size_t kHalfLanes = hn::MaxLanes(HalfFloats()); ///< Lanes of Doubles and of HalfFloats.

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
    HWY_ALIGN double from[kHalfLanes];
    HWY_ALIGN float to[kHalfLanes];
    hn::Store(values, Doubles(), from);
    for (std::size_t i = 0; i < kHalfLanes; ++i) {
        to[i] = static_cast<float>(from[i]);
    }
    return hn::Load(d, to);
#else
    return hn::DemoteTo(HalfFloats(), values);
#endif
}

/// Runs @p operation, (first, second, result), on @p kAtOnce elements at a time; the last few on copies that
/// have room for all. @p result may be either input.
template <std::size_t kAtOnce, typename Operation>
HWY_INLINE void by_registers(float const* first, float const* second, float* result, std::size_t count,
                             Operation operation)
{
    std::size_t i = 0;
    for (; i + kAtOnce <= count; i += kAtOnce) {
        operation(first + i, second + i, result + i);
    }
    if (i < count) {
        float last_first[kAtOnce] = {};
        float last_second[kAtOnce] = {};
        std::memcpy(last_first, first + i, (count - i) * sizeof(float));
        std::memcpy(last_second, second + i, (count - i) * sizeof(float));
        operation(last_first, last_second, last_first);
        std::memcpy(result + i, last_first, (count - i) * sizeof(float));
    }
}

} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
