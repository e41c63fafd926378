// SPDX-License-Identifier: MIT
#include "blend/row.h"

#include "common/vector_targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blend/row.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using namespace umbrixlib::detail::HWY_NAMESPACE;
using Wide = hn::Vec<Doubles>;

HWY_INLINE Wide load(float const* from)
{
    return widened(hn::LoadU(HalfFloats(), from));
}

HWY_INLINE void store(Wide values, float* to)
{
    hn::StoreU(narrowed(values), HalfFloats(), to);
}

struct CrossFade {
    HWY_INLINE Wide operator()(Wide /*first*/, Wide second) const { return second; }
};

struct Overlay {
    HWY_INLINE Wide operator()(Wide below, Wide above) const
    {
        constexpr Doubles d;
        Wide const one = hn::Set(d, 1.0);
        Wide const two = hn::Set(d, 2.0);
        Wide const product = hn::Mul(hn::Mul(two, below), above);
        Wide const screen = hn::Sub(one, hn::Mul(hn::Mul(two, hn::Sub(one, below)), hn::Sub(one, above)));
        return hn::IfThenElse(hn::Le(below, hn::Set(d, 0.5)), product, screen);
    }
};

/// The products have a factor that is no float: not fused.
template <class Second>
HWY_INLINE void fade_row(float const* first, float const* second, float* result, std::size_t count,
                         double share)
{
    constexpr Doubles d;
    auto const part = hn::Set(d, share);
    auto const rest = hn::Set(d, 1.0 - share);
    by_registers<kHalfLanes>(
        first, second, result, count, [&](float const* a, float const* b, float* to) HWY_ATTR {
            Wide const from = load(a);
            store(hn::Add(hn::Mul(Second()(from, load(b)), part), hn::Mul(from, rest)), to);
        });
}

void cross_fade(float const* first, float const* second, float* result, std::size_t count, double share)
{
    fade_row<CrossFade>(first, second, result, count, share);
}

void overlay_fade(float const* first, float const* second, float* result, std::size_t count, double share)
{
    fade_row<Overlay>(first, second, result, count, share);
}

} // namespace
} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace velloric {

HWY_EXPORT(cross_fade);
HWY_EXPORT(overlay_fade);

void cross_fade_row(float const* first, float const* second, float* result, std::size_t count, double share)
{
    HWY_DYNAMIC_DISPATCH(cross_fade)(first, second, result, count, share);
}

void overlay_fade_row(float const* first, float const* second, float* result, std::size_t count, double share)
{
    HWY_DYNAMIC_DISPATCH(overlay_fade)(first, second, result, count, share);
}

} // namespace velloric
#endif
