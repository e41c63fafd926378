// SPDX-License-Identifier: MIT

/// @file
/// Comparisons of a group of texels with a block of steps, compiled once for each instruction set.

// Highway includes this file once for each instruction set.
#if defined(VELLORIC_OCCLUSION_COMPARISONS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLORIC_OCCLUSION_COMPARISONS_INL_H
#undef VELLORIC_OCCLUSION_COMPARISONS_INL_H
#else
#define VELLORIC_OCCLUSION_COMPARISONS_INL_H
#endif

#include "occlusion/bundle.h"
#include "occlusion/plane.h"
#include "occlusion/tiles.h"

#include <cstdint>
#include <hwy/highway.h>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace velloric {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

constexpr int kRows = kGroupRows;

/// The smallest lane of a vector whose lanes are not negative.
#if HWY_TARGET == HWY_SCALAR
template <class D>
HWY_INLINE int smallest_lane(D /*d*/, hn::Vec<D> v)
{
    return hn::GetLane(v);
}
#else
template <class D>
HWY_INLINE int smallest_lane(D /*d*/, hn::Vec<D> v)
{
    if constexpr (hn::MaxLanes(D()) * sizeof(hn::TFromD<D>) > 16) {
        hn::Half<D> const half;
        return smallest_lane(half, hn::Min(hn::LowerHalf(half, v), hn::UpperHalf(half, v)));
    } else {
        hn::Repartition<std::uint16_t, D> const du; // the form that some processors have an instruction for
        auto const words = hn::BitCast(du, v);
        if constexpr (sizeof(hn::TFromD<D>) == 1) {
            return hn::GetLane(
                hn::MinOfLanes(du, hn::Min(hn::And(words, hn::Set(du, 0xff)), hn::ShiftRight<8>(words))));
        } else {
            return hn::GetLane(hn::MinOfLanes(du, words));
        }
    }
}
#endif

/// Comparisons in 16-bit levels. Levels are at least 0 and rises below 2^15, so nothing wraps.
struct Words {
    using Grid = Lattice;
    using D = hn::CappedTag<std::int16_t, 32>;
    using V = hn::Vec<D>;
    using Count = std::uint16_t;
    static constexpr Lattice::Level kNoLane = 32767;
    /// A step matters if its level is at least own level + climb + kAbove.
    static constexpr int kAbove = 0;
    /// A step whose level, less its climb, is this far above the own level or further surely blocks the ray.
    static constexpr int kInDoubt = Lattice::kSurely + 1;

    /// Of a texel at @p level: less 1, since a step with that level more than the climb is not surely passed.
    static HWY_INLINE int own_level(int level) { return level - 1; }
    static HWY_INLINE V climb(V level, V rise) { return hn::Sub(level, rise); }
    static HWY_INLINE V climb_far(V level, int levels)
    {
        hn::RebindToUnsigned<D> const du;
        return hn::BitCast(
            D(), hn::SaturatedSub(hn::BitCast(du, level), hn::Set(du, static_cast<std::uint16_t>(levels))));
    }
    /// All bits of the lanes in which a step is above the own level, or in doubt.
    static HWY_INLINE V blocked(V own, V most)
    {
        D const d;
        return hn::VecFromMask(d, hn::Gt(hn::Sub(most, own), hn::Set(d, -1)));
    }
    /// The smaller of @p lowest and the own levels of lanes that are not surely blocked.
    static HWY_INLINE V lowest_undecided(V lowest, V own, V most)
    {
        D const d;
        auto const undecided = hn::Lt(hn::Sub(most, own), hn::Set(d, kInDoubt));
        return hn::Min(lowest, hn::IfThenElse(undecided, own, hn::Set(d, kNoLane)));
    }
};

/// Comparisons in 8-bit levels, which leave nothing in doubt. Subtractions saturate.
struct Bytes {
    using Grid = ByteLattice;
    using D = hn::CappedTag<std::uint8_t, 64>;
    using V = hn::Vec<D>;
    using Count = std::uint8_t;
    static constexpr ByteLattice::Level kNoLane = 255;
    static constexpr int kAbove = 1;

    static HWY_INLINE int own_level(int level) { return level; }
    static HWY_INLINE V climb(V level, V rise) { return hn::SaturatedSub(level, rise); }
    static HWY_INLINE V climb_far(V level, int levels)
    {
        return hn::SaturatedSub(level, hn::Set(D(), static_cast<std::uint8_t>(levels)));
    }
    static HWY_INLINE V lowest_undecided(V lowest, V own, V most)
    {
        return hn::Min(lowest, hn::Or(own, blocked(own, most)));
    }
    /// All bits of the lanes in which a step is above the own level.
    static HWY_INLINE V blocked(V own, V most)
    {
        D const d;
        return hn::Not(hn::VecFromMask(d, hn::Eq(hn::Max(most, own), own)));
    }
};

/// What a ray has met so far above each texel of a group: the largest level less climb.
///
/// A block is folded from its far end to its near end: M = max(M - rise, levels at the step) leaves the
/// largest level less climb over the block, in two instructions a vector.
template <class Form>
class LargestLevels {
public:
    using Level = typename Form::Grid::Level;
    using D = typename Form::D;
    using V = typename Form::V;
    using Counts = hn::Rebind<typename Form::Count, D>;

    static constexpr int kColumns = static_cast<int>(hn::MaxLanes(D()));

    HWY_INLINE LargestLevels()
    {
        for (int r = 0; r < kRows; ++r) {
            most_[r] = hn::Zero(D());
        }
    }

    /// Folds the first @p count steps of a block whose first step is that from @p first.
    HWY_INLINE void fold(Level const* /*own*/, Level const* first, std::ptrdiff_t stride,
                         RayStep const* steps, int count, int climb)
    {
        D const d;
        hn::Repartition<std::uint32_t, D> const repeated;
        V m[kRows];
        for (int r = 0; r < kRows; ++r) {
            m[r] = hn::Zero(d);
        }
        RayStep const* step = steps + count;
        do {
            --step;
            V const rise = hn::BitCast(d, hn::Set(repeated, step->rise));
            Level const* const levels = first + step->offset;
            for (int r = 0; r < kRows; ++r) {
                m[r] = hn::Max(Form::climb(m[r], rise), hn::LoadU(d, levels + r * stride));
            }
        } while (step != steps);
        for (int r = 0; r < kRows; ++r) {
            most_[r] = hn::Max(most_[r], Form::climb_far(m[r], climb));
        }
    }

    /// The smallest own level among the texels that are not surely blocked, or kNoLane.
    HWY_INLINE int lowest_undecided(Level const* own) const
    {
        V lowest = hn::Set(D(), Form::kNoLane);
        for (int r = 0; r < kRows; ++r) {
            lowest = Form::lowest_undecided(lowest, own_levels(own, r), most_[r]);
        }
        return smallest_lane(D(), lowest);
    }

    /// Counts the ray at the texels where it is blocked, or in doubt.
    /// @return Whether it is in doubt at any texel.
    HWY_INLINE bool count(Level const* own, typename Form::Count* counts) const
    {
        Counts const d;
        auto closest = hn::Set(d, std::numeric_limits<typename Form::Count>::max());
        for (int r = 0; r < kRows; ++r) {
            V const own_level = own_levels(own, r);
            auto* const at = counts + r * kTileColumns;
            auto const blocked = hn::BitCast(d, Form::blocked(own_level, most_[r]));
            hn::Store(hn::Sub(hn::Load(d, at), blocked), d, at);
            if constexpr (Form::Grid::kSettles) {
                closest = hn::Min(closest, hn::BitCast(d, hn::Sub(most_[r], own_level)));
            }
        }
        if constexpr (Form::Grid::kSettles) {
            return !hn::AllFalse(d, hn::Lt(closest, hn::Set(d, Form::kInDoubt)));
        }
        return false;
    }

    /// The largest level less climb above the texels of a row less their own levels.
    HWY_INLINE V above(Level const* own, int row) const { return hn::Sub(most_[row], own_levels(own, row)); }

private:
    static HWY_INLINE V own_levels(Level const* own, int row)
    {
        return hn::Load(D(), own + row * kTileColumns);
    }

    V most_[kRows];
};

#if HWY_TARGET <= HWY_AVX3
/// The texels of a group at which a ray in 8-bit levels is still open, a bit each: where masks have registers
/// of their own, a step then takes an addition and a comparison, which two units do side by side.
class OpenTexels {
public:
    using Level = Bytes::Grid::Level;

    static constexpr int kColumns = 64;

    HWY_INLINE OpenTexels()
    {
        for (int r = 0; r < kRows; ++r) {
            open_[r] = ~std::uint64_t{0};
        }
    }

    /// Folds the first @p count steps of a block whose first step is that from @p first.
    HWY_INLINE void fold(Level const* own, Level const* first, std::ptrdiff_t stride, RayStep const* steps,
                         int count, int climb)
    {
        constexpr int kTogether = 4; ///< Rows: there are seven registers for masks.
        D const d;
        hn::Repartition<std::uint32_t, D> const repeated;
        V const climbed = hn::Set(d, static_cast<std::uint8_t>(climb));
        for (int top = 0; top < kRows; top += kTogether) {
            std::uint64_t open[kTogether];
            V height[kTogether]; // of the ray
            for (int r = 0; r < kTogether; ++r) {
                open[r] = open_[top + r];
                height[r] = hn::SaturatedAdd(hn::Load(d, own + (top + r) * kTileColumns), climbed);
            }
            Level const* const row = first + top * stride;
            RayStep const* step = steps;
            do {
                Level const* const levels = row + step->offset;
                for (int r = 0; r < kTogether; ++r) {
                    open[r] = _mm512_mask_cmple_epu8_mask(open[r], hn::LoadU(d, levels + r * stride).raw,
                                                          height[r].raw);
                }
                V const rise = hn::BitCast(d, hn::Set(repeated, step->rise));
                for (int r = 0; r < kTogether; ++r) {
                    height[r] = hn::SaturatedAdd(height[r], rise);
                }
            } while (++step != steps + count);
            for (int r = 0; r < kTogether; ++r) {
                open_[top + r] = open[r];
            }
        }
    }

    /// The smallest own level among the texels at which the ray is open, or kNoLane.
    HWY_INLINE int lowest_undecided(Level const* own) const
    {
        D const d;
        V lowest = hn::Set(d, Bytes::kNoLane);
        for (int r = 0; r < kRows; ++r) {
            V const level = hn::Load(d, own + r * kTileColumns);
            lowest.raw = _mm512_mask_min_epu8(lowest.raw, open_[r], lowest.raw, level.raw);
        }
        return smallest_lane(d, lowest);
    }

    /// Counts the ray at the texels where it is blocked. @return false: nothing is in doubt.
    HWY_INLINE bool count(Level const* /*own*/, std::uint8_t* counts) const
    {
        D const d;
        V const one = hn::Set(d, 1);
        for (int r = 0; r < kRows; ++r) {
            std::uint8_t* const at = counts + r * kTileColumns;
            V const before = hn::Load(d, at);
            hn::Store(V{_mm512_mask_add_epi8(before.raw, ~open_[r], before.raw, one.raw)}, d, at);
        }
        return false;
    }

private:
    using D = Bytes::D;
    using V = Bytes::V;

    std::uint64_t open_[kRows];
};
using BytesMet = OpenTexels;
#else
using BytesMet = LargestLevels<Bytes>;
#endif

/// What a ray has met in a group of texels.
template <class Form>
struct MetFor {
    using Type = LargestLevels<Form>;
};
template <>
struct MetFor<Bytes> {
    using Type = BytesMet;
};

} // namespace
} // namespace HWY_NAMESPACE
} // namespace velloric
HWY_AFTER_NAMESPACE();

#endif
