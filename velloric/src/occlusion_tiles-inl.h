// SPDX-License-Identifier: MIT

/// @file
/// The lattice comparisons of one bundle with one tile, compiled once for each instruction set.
///
/// A group of 8 rows by one vector of texels looks at a block of consecutive steps at once. The block is
/// folded from its far end to its near end: M = max(M - rise, levels at the step) leaves the largest level
/// less climb over the block, in two instructions a vector. Levels are at least 0 and rises below 2^15, so
/// nothing wraps.

// Highway includes this file once for each instruction set.
#if defined(VELLORIC_OCCLUSION_TILES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLORIC_OCCLUSION_TILES_INL_H
#undef VELLORIC_OCCLUSION_TILES_INL_H
#else
#define VELLORIC_OCCLUSION_TILES_INL_H
#endif

#include "occlusion_settle.h"
#include "occlusion_shift.h"
#include "occlusion_tiles.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace velloric {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Levels = hn::CappedTag<std::int16_t, LatticePlane::kMostGroupColumns>;
using Unsigned = hn::RebindToUnsigned<Levels>;
using Vector = hn::Vec<Levels>;

constexpr int kRows = LatticePlane::kGroupRows;
constexpr int kColumns = static_cast<int>(hn::MaxLanes(Levels()));
constexpr int kGroupsAcross = kTileColumns / kColumns;
constexpr int kMostGroups = kTileRows / kRows * kGroupsAcross;
constexpr std::int16_t kNoLane = 32767;
static_assert(kTileColumns % kColumns == 0 && kTileRows % kRows == 0);

/// A group of the tile that has a texel which is not open to every ray.
struct Group {
    int row; ///< On the map.
    int column;
    int at;         ///< Index of its first texel in the tile.
    int lowest_own; ///< Smallest own level.
};

/// The smallest lane of a vector whose lanes are not negative.
#if HWY_TARGET == HWY_SCALAR
HWY_INLINE int smallest_lane(Levels /*d*/, Vector v)
{
    return hn::GetLane(v);
}
#else
template <class D>
HWY_INLINE int smallest_lane(D /*d*/, hn::Vec<D> v)
{
    if constexpr (hn::MaxLanes(D()) > 8) {
        hn::Half<D> const half;
        return smallest_lane(half, hn::Min(hn::LowerHalf(half, v), hn::UpperHalf(half, v)));
    } else {
        hn::RebindToUnsigned<D> const du; // the form that some processors have an instruction for
        return hn::GetLane(hn::MinOfLanes(du, hn::BitCast(du, v)));
    }
}
#endif

/// One bundle over one tile.
class TileCounter {
public:
    HWY_INLINE TileCounter(Relief const& relief, Lattice const& lattice, LatticePlane const& plane,
                           RayBundle const& bundle, Tile const& tile, std::uint16_t* blocked)
        : relief_(relief), plane_(plane), bundle_(bundle), tile_(tile), stride_(plane.stride()),
          above_top_(lattice.top() + 1), blocked_(blocked)
    {
        find_own_levels();
        find_groups();
    }

    HWY_INLINE void count()
    {
        for (ReducedRay const& ray : bundle_.rays) {
            for (int g = 0; g < groups_found_; ++g) {
                count_group(ray, groups_[g]);
            }
        }
    }

private:
    /// Own levels, less 1: a step with a level of own + climb or more is not surely passed.
    HWY_INLINE void find_own_levels()
    {
        for (int row = 0; row < kTileRows; ++row) {
            for (int column = 0; column < kTileColumns; ++column) {
                int own = Lattice::kAlwaysOpen;
                if (row < tile_.rows && column < tile_.columns) {
                    float const h = relief_.height_at(tile_.row + row, tile_.column + column);
                    if (h < relief_.top) {
                        own = *plane_.at(tile_.row + row, tile_.column + column) - 1;
                    }
                }
                own_[row * kTileColumns + column] = static_cast<std::int16_t>(own);
                blocked_[row * kTileColumns + column] = 0;
            }
        }
    }

    HWY_INLINE void find_groups()
    {
        groups_found_ = 0;
        for (int row = 0; row < tile_.rows; row += kRows) {
            for (int column = 0; column < tile_.columns; column += kColumns) {
                Group group{tile_.row + row, tile_.column + column, row * kTileColumns + column, 0};
                Vector lowest = hn::Set(Levels(), kNoLane);
                for (int r = 0; r < kRows; ++r) {
                    lowest = hn::Min(lowest, hn::Load(Levels(), own_ + group.at + r * kTileColumns));
                }
                group.lowest_own = smallest_lane(Levels(), lowest);
                if (group.lowest_own != Lattice::kAlwaysOpen) {
                    groups_[groups_found_++] = group;
                }
            }
        }
    }

    HWY_INLINE void count_group(ReducedRay const& ray, Group const& group)
    {
        Levels const d;
        Unsigned const du;
        Vector most[kRows]; // largest level less climb so far
        for (int r = 0; r < kRows; ++r) {
            most[r] = hn::Zero(d);
        }
        AxisShift rows(relief_.rows, relief_.rows_wrap, kRows);
        AxisShift columns(relief_.cols, relief_.columns_wrap, kColumns);
        int lowest_own = group.lowest_own; // of the texels that are not surely blocked
        bool const all_in_doubt = ray.end_certain != ray.end_block;
        bool stale = false;
        bool folded = false;
        for (std::int32_t b = ray.first_block; b != ray.end_certain; ++b) {
            RayBlock const& block = bundle_.blocks[static_cast<std::size_t>(b)];
            int const needed = lowest_own + block.climb; // no smaller level is of interest
            if (needed >= above_top_) {
                break;
            }
            int const row = rows.onto_map(group.row + block.row);
            int const column = columns.onto_map(group.column + block.column);
            if (row == AxisShift::kGone || column == AxisShift::kGone) {
                break;
            }
            int const largest =
                plane_.largest_in_window(row + block.north, column + block.west, block.rows_spanned + kRows);
            int room = largest + 1 - needed;
            if (room <= 0) {
                continue;
            }
            if (stale) {
                int const lowest_left = lowest_undecided(group, most);
                room -= lowest_left - lowest_own;
                lowest_own = lowest_left;
                stale = false;
                if (room <= 0) {
                    continue;
                }
            }
            // Steps that climb `room` levels or more are of no use; 0.01 covers the rounding of the steps'
            // heights.
            float const useful = (static_cast<float>(room) + 0.01f) * ray.steps_per_level;
            int const steps =
                useful < static_cast<float>(block.steps) ? static_cast<int>(useful) + 1 : block.steps;
            fold(plane_.at(row, column), &bundle_.steps[static_cast<std::size_t>(block.first_step)], steps,
                 static_cast<std::uint16_t>(block.climb), most);
            folded = true;
            stale = true;
        }

        if (!folded && !all_in_doubt) {
            return;
        }
        auto closest = hn::Set(du, 65535);
        for (int r = 0; r < kRows; ++r) {
            Vector const above = hn::Sub(most[r], hn::Load(d, own_ + group.at + r * kTileColumns));
            std::uint16_t* const blocked = blocked_ + group.at + r * kTileColumns;
            auto const not_open = hn::BitCast(du, hn::VecFromMask(d, hn::Gt(above, hn::Set(d, -1))));
            hn::Store(hn::Sub(hn::Load(du, blocked), not_open), du, blocked);
            closest = hn::Min(closest, hn::BitCast(du, above));
        }
        if (all_in_doubt || !hn::AllFalse(du, hn::Lt(closest, hn::Set(du, kInDoubt)))) {
            settle(ray, group, most, all_in_doubt);
        }
    }

    /// Folds the first @p count steps of a block into @p most.
    HWY_INLINE void fold(std::int16_t const* first, RayStep const* steps, int count, std::uint16_t climb,
                         Vector (&most)[kRows]) const
    {
        Levels const d;
        Unsigned const du;
        hn::RepartitionToWide<Unsigned> const twice;
        Vector m[kRows];
        for (int r = 0; r < kRows; ++r) {
            m[r] = hn::Zero(d);
        }
        RayStep const* step = steps + count;
        do {
            --step;
            Vector const rise = hn::BitCast(d, hn::Set(twice, step->rise));
            std::int16_t const* const levels = first + step->offset;
            for (int r = 0; r < kRows; ++r) {
                m[r] = hn::Max(hn::Sub(m[r], rise), hn::LoadU(d, levels + r * stride_));
            }
        } while (step != steps);
        auto const climbed = hn::Set(du, climb);
        for (int r = 0; r < kRows; ++r) {
            most[r] = hn::Max(most[r], hn::BitCast(d, hn::SaturatedSub(hn::BitCast(du, m[r]), climbed)));
        }
    }

    /// The smallest own level among the texels that are not surely blocked, or kNoLane.
    HWY_INLINE int lowest_undecided(Group const& group, Vector const (&most)[kRows]) const
    {
        Levels const d;
        Vector lowest = hn::Set(d, kNoLane);
        for (int r = 0; r < kRows; ++r) {
            Vector const own = hn::Load(d, own_ + group.at + r * kTileColumns);
            auto const undecided = hn::Lt(hn::Sub(most[r], own), hn::Set(d, kInDoubt));
            lowest = hn::Min(lowest, hn::IfThenElse(undecided, own, hn::Set(d, kNoLane)));
        }
        return smallest_lane(d, lowest);
    }

    /// Decides in floats for the texels that the lattice leaves in doubt, or for all that are not surely
    /// blocked, and corrects their counts.
    HWY_INLINE void settle(ReducedRay const& ray, Group const& group, Vector const (&most)[kRows],
                           bool all_in_doubt)
    {
        Levels const d;
        for (int r = 0; r < kRows; ++r) {
            Vector const above = hn::Sub(most[r], hn::Load(d, own_ + group.at + r * kTileColumns));
            std::uint32_t const counted = bits(hn::Gt(above, hn::Set(d, -1)));
            std::uint32_t const surely_blocked = bits(hn::Gt(above, hn::Set(d, kInDoubt - 1)));
            for (std::uint32_t lanes = (all_in_doubt ? kAllLanes : counted) & ~surely_blocked; lanes != 0;
                 lanes &= lanes - 1) {
                auto const c = static_cast<int>(hwy::Num0BitsBelowLS1Bit_Nonzero32(lanes));
                int const at = group.at + r * kTileColumns + c;
                if (own_[at] != Lattice::kAlwaysOpen) {
                    int const blocked =
                        is_blocked(relief_, plane_, bundle_, ray, group.row + r, group.column + c) ? 1 : 0;
                    blocked_[at] = static_cast<std::uint16_t>(blocked_[at] + blocked -
                                                              static_cast<int>(counted >> c & 1));
                }
            }
        }
    }

    /// A bit a lane.
    static HWY_INLINE std::uint32_t bits(hn::Mask<Levels> mask)
    {
        // g++ 12 spills a mask register in its own width and reads it back in the width that it is used in.
        // Where masks have registers of their own, both must be 32 bits.
        static_assert(HWY_TARGET > HWY_AVX3 || kColumns == 32);
        std::uint8_t bytes[8] = {};
        hn::StoreMaskBits(Levels(), mask, bytes);
        std::uint32_t lanes;
        hwy::CopyBytes<sizeof lanes>(bytes, &lanes);
        return lanes & kAllLanes;
    }

    static constexpr std::uint32_t kAllLanes = 0xffffffffU >> (32 - kColumns);

    /// Levels above an own level, less 1, from which on a ray is surely blocked.
    static constexpr int kInDoubt = Lattice::kSurely + 1;

    Relief const& relief_;
    LatticePlane const& plane_;
    RayBundle const& bundle_;
    Tile const& tile_;
    std::ptrdiff_t stride_;
    int above_top_;
    std::uint16_t* blocked_;
    int groups_found_;
    Group groups_[kMostGroups];
    alignas(64) std::int16_t own_[kTileRows * kTileColumns];
};

int GroupColumns()
{
    return kColumns;
}

void CountBlocked(Relief const& relief, Lattice const& lattice, LatticePlane const& plane,
                  RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
{
    TileCounter(relief, lattice, plane, bundle, tile, &blocked[0][0]).count();
}

} // namespace HWY_NAMESPACE
} // namespace velloric
HWY_AFTER_NAMESPACE();

#endif
