// SPDX-License-Identifier: MIT
#include "filters/tone_sweep.h"

#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/tone_sweep.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace {

using Values = hn::Vec<HalfFloats>;

/// Above 1 becomes 1, then below 0 becomes 0; NaN and -0 stay.
HWY_INLINE Values clamped(Values values)
{
    constexpr HalfFloats d;
    auto const capped = hn::IfThenElse(hn::Gt(values, hn::Set(d, 1.0f)), hn::Set(d, 1.0f), values);
    return hn::IfThenElse(hn::Lt(capped, hn::Zero(d)), hn::Zero(d), capped);
}

/// The steps with their operands spread over registers.
class Sweep {
public:
    explicit HWY_INLINE Sweep(ToneSteps const& steps)
        : steps_(steps), contrast_(spread(steps.contrast)), low_(spread(steps.low)),
          high_(spread(steps.high)), brightness_(hn::Set(HalfFloats(), steps.brightness))
    {
    }

    HWY_INLINE Values operator()(Values values) const
    {
        constexpr HalfFloats d;
        if (steps_.changes_contrast) {
            // With s = v - 0.5 rounded to float, v + s * amount serves values above and below mid-grey alike.
            // The product is exact in double, so fusing it changes no bit.
            auto const s = hn::Sub(values, hn::Set(d, 0.5f));
            values = clamped(narrowed(hn::MulAdd(widened(s), contrast_, widened(values))));
        }
        if (steps_.limits) {
            auto const v = widened(values);
            auto const from_low = hn::Mul(hn::Sub(hn::Set(Doubles(), 1.0), v), low_);
            values = narrowed(hn::MulAdd(v, high_, from_low)); // v * high is exact, from_low is not
        }
        if (steps_.brightens) {
            values =
                clamped(hn::Add(values, brightness_)); // one sum of floats rounds as it does by way of double
        }
        return values;
    }

private:
    static HWY_INLINE hn::Vec<Doubles> spread(float value)
    {
        return hn::Set(Doubles(), static_cast<double>(value));
    }

    ToneSteps steps_;
    hn::Vec<Doubles> contrast_, low_, high_;
    Values brightness_;
};

/// Four registers, which hold a whole number of pixels however few lanes one has.
template <bool kKeepsAlpha>
class Chunk {
public:
    static constexpr std::size_t kFloats = 4 * kHalfLanes;

    static HWY_INLINE void apply(Sweep const& sweep, float* floats)
    {
        constexpr HalfFloats d;
        HWY_UNROLL(4)
        for (std::size_t begin = 0; begin < kFloats; begin += kHalfLanes) {
            Values const before = hn::LoadU(d, floats + begin);
            Values after = sweep(before);
            if constexpr (kKeepsAlpha) {
                HWY_ALIGN static constexpr float kAlpha[16] = {0, 0, 0, 1, 0, 0, 0, 1,
                                                               0, 0, 0, 1, 0, 0, 0, 1};
                auto const is_alpha = hn::Gt(hn::LoadU(d, kAlpha + begin % 4), hn::Zero(d));
                after = hn::IfThenElse(is_alpha, before, after);
            }
            hn::StoreU(after, d, floats + begin);
        }
    }
};

template <bool kKeepsAlpha>
HWY_INLINE void sweep_floats(float* floats, std::size_t count, ToneSteps const& steps)
{
    using Piece = Chunk<kKeepsAlpha>;
    Sweep const sweep(steps);
    for (; count >= Piece::kFloats; count -= Piece::kFloats) {
        Piece::apply(sweep, floats);
        floats += Piece::kFloats;
    }
    HWY_ALIGN float rest[Piece::kFloats] = {};
    std::memcpy(rest, floats, count * sizeof(float));
    Piece::apply(sweep, rest);
    std::memcpy(floats, rest, count * sizeof(float));
}

void sweep_all(float* floats, std::size_t count, ToneSteps const& steps)
{
    sweep_floats<false>(floats, count, steps);
}

void sweep_colours(float* floats, std::size_t count, ToneSteps const& steps)
{
    sweep_floats<true>(floats, count, steps);
}

} // namespace
} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(sweep_all);
HWY_EXPORT(sweep_colours);

void sweep_tone(float* floats, std::size_t count, ToneSteps const& steps)
{
    HWY_DYNAMIC_DISPATCH(sweep_all)(floats, count, steps);
}

void sweep_tone_keeping_alpha(float* floats, std::size_t count, ToneSteps const& steps)
{
    HWY_DYNAMIC_DISPATCH(sweep_colours)(floats, count, steps);
}

} // namespace umbrixlib::detail
#endif
