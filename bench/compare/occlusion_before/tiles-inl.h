// SPDX-License-Identifier: MIT

/// @file
/// The lattice comparisons of one bundle with one tile, compiled once for each instruction set.
///
/// A group of 8 rows by one vector of texels looks at a block of consecutive steps at once. The block is
/// folded from its far end to its near end: M = max(M - rise, levels at the step) leaves the largest level
/// less climb over the block, in two instructions a vector.

// Highway includes this file once for each instruction set.
#if defined(OCCLUSION_BEFORE_TILES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OCCLUSION_BEFORE_TILES_INL_H
#undef OCCLUSION_BEFORE_TILES_INL_H
#else
#define OCCLUSION_BEFORE_TILES_INL_H
#endif

#include "compare/occlusion_before/settle.h"
#include "compare/occlusion_before/shift.h"
#include "compare/occlusion_before/tiles.h"

#include <algorithm>
#include <hwy/highway.h>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace occlusion_before {

using umbrixlib::detail::Relief;

namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

constexpr int kRows = kGroupRows;
static_assert(kTileRows % kRows == 0);

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
    using D = hn::CappedTag<std::int16_t, kMostGroupColumns>;
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
    using D = hn::CappedTag<std::uint8_t, kMostGroupColumns>;
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
#if HWY_TARGET <= HWY_AVX3
        return hn::VecFromMask(d, hn::Gt(most, own));
#else
        return hn::Not(hn::VecFromMask(d, hn::Eq(hn::Max(most, own), own)));
#endif
    }
};

/// A group of the tile that has a texel which is not open to every ray.
struct Group {
    int row; ///< On the map.
    int column;
    int at;         ///< Index of its first texel in the tile.
    int lowest_own; ///< Smallest own level.
};

/// One bundle over one tile.
template <class Form>
class TileCounter {
public:
    using Grid = typename Form::Grid;
    using Plane = LatticePlane<Grid>;

    HWY_INLINE TileCounter(Relief const& relief, Grid const& lattice, Plane const& plane,
                           RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
        : relief_(relief), plane_(plane), bundle_(bundle), tile_(tile), stride_(plane.stride()),
          above_top_(lattice.top() + 1), blocked_(&blocked[0][0])
    {
        find_own_levels();
        find_groups();
    }

    HWY_INLINE void count()
    {
        constexpr int kMostCount = std::numeric_limits<Count>::max();
        int counted = 0;
        for (ReducedRay const& ray : bundle_.rays) {
            for (int g = 0; g < groups_found_; ++g) {
                count_group(ray, groups_[g]);
            }
            if (++counted == kMostCount) {
                add_counts();
                counted = 0;
            }
        }
        add_counts();
    }

    static constexpr int columns() { return kColumns; }

private:
    using Level = typename Grid::Level;
    using D = typename Form::D;
    using Vector = typename Form::V;
    using Count = typename Form::Count;
    using Counts = hn::Rebind<Count, D>;

    static constexpr int kColumns = static_cast<int>(hn::MaxLanes(D()));
    static constexpr int kMostGroups = kTileRows / kRows * (kTileColumns / kColumns);
    static_assert(kTileColumns % kColumns == 0);

    HWY_INLINE void find_own_levels()
    {
        std::fill_n(own_, kTileRows * kTileColumns, static_cast<Level>(Grid::kAlwaysOpen));
        std::fill_n(counts_, kTileRows * kTileColumns, Count{0});
        float const top = relief_.top; // a store of bytes may change all but local variables
        for (int row = 0; row < tile_.rows; ++row) {
            float const* const heights = relief_.row(tile_.row + row) + tile_.column;
            Level const* const levels = plane_.at(tile_.row + row, tile_.column);
            Level* const own = own_ + row * kTileColumns;
            for (int column = 0; column < tile_.columns; ++column) {
                auto const level = static_cast<Level>(Form::own_level(levels[column]));
                own[column] = heights[column] < top ? level : static_cast<Level>(Grid::kAlwaysOpen);
            }
        }
    }

    HWY_INLINE void find_groups()
    {
        D const d;
        groups_found_ = 0;
        for (int row = 0; row < tile_.rows; row += kRows) {
            for (int column = 0; column < tile_.columns; column += kColumns) {
                Group group{tile_.row + row, tile_.column + column, row * kTileColumns + column, 0};
                Vector lowest = hn::Set(d, Form::kNoLane);
                for (int r = 0; r < kRows; ++r) {
                    lowest = hn::Min(lowest, own_levels(group, r));
                }
                group.lowest_own = smallest_lane(d, lowest);
                if (group.lowest_own != Grid::kAlwaysOpen) {
                    groups_[groups_found_++] = group;
                }
            }
        }
    }

    HWY_INLINE Vector own_levels(Group const& group, int row) const
    {
        return hn::Load(D(), own_ + group.at + row * kTileColumns);
    }

    HWY_INLINE void count_group(ReducedRay const& ray, Group const& group)
    {
        D const d;
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
            int const needed = lowest_own + block.climb + Form::kAbove; // smaller levels do not matter
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
            // heights. Compiled to a branch, so that the first loads of a whole block need not wait for it.
            float const useful = (static_cast<float>(room) + 0.01f) * ray.steps_per_level;
            int const steps =
                useful < static_cast<float>(block.steps) ? static_cast<int>(useful) + 1 : block.steps;
            fold(plane_.at(row, column), &bundle_.steps[static_cast<std::size_t>(block.first_step)], steps,
                 block.climb, most);
            folded = true;
            stale = true;
        }
        if (folded || all_in_doubt) {
            add_group(ray, group, most, all_in_doubt);
        }
    }

    /// Folds the first @p count steps of a block into @p most.
    HWY_INLINE void fold(Level const* first, RayStep const* steps, int count, int climb,
                         Vector (&most)[kRows]) const
    {
        D const d;
        hn::Repartition<std::uint32_t, D> const repeated;
        Vector m[kRows];
        for (int r = 0; r < kRows; ++r) {
            m[r] = hn::Zero(d);
        }
        RayStep const* step = steps + count;
        do {
            --step;
            Vector const rise = hn::BitCast(d, hn::Set(repeated, step->rise));
            Level const* const levels = first + step->offset;
            for (int r = 0; r < kRows; ++r) {
                m[r] = hn::Max(Form::climb(m[r], rise), hn::LoadU(d, levels + r * stride_));
            }
        } while (step != steps);
        for (int r = 0; r < kRows; ++r) {
            most[r] = hn::Max(most[r], Form::climb_far(m[r], climb));
        }
    }

    /// The smallest own level among the texels that are not surely blocked, or kNoLane.
    HWY_INLINE int lowest_undecided(Group const& group, Vector const (&most)[kRows]) const
    {
        Vector lowest = hn::Set(D(), Form::kNoLane);
        for (int r = 0; r < kRows; ++r) {
            lowest = Form::lowest_undecided(lowest, own_levels(group, r), most[r]);
        }
        return smallest_lane(D(), lowest);
    }

    /// Counts one ray.
    HWY_INLINE void add_group(ReducedRay const& ray, Group const& group, Vector const (&most)[kRows],
                              bool all_in_doubt)
    {
        D const d;
        Counts const dc;
        if constexpr (Grid::kSettles) {
            auto closest = hn::Set(dc, 65535);
            for (int r = 0; r < kRows; ++r) {
                Vector const above = hn::Sub(most[r], own_levels(group, r));
                add_mask(group, r, hn::BitCast(dc, hn::VecFromMask(d, hn::Gt(above, hn::Set(d, -1)))));
                closest = hn::Min(closest, hn::BitCast(dc, above));
            }
            if (all_in_doubt || !hn::AllFalse(dc, hn::Lt(closest, hn::Set(dc, Form::kInDoubt)))) {
                settle(ray, group, most, all_in_doubt);
            }
        } else {
            for (int r = 0; r < kRows; ++r) {
                add_mask(group, r, Form::blocked(own_levels(group, r), most[r]));
            }
        }
    }

    /// Counts the lanes of @p mask that have all bits.
    HWY_INLINE void add_mask(Group const& group, int row, hn::Vec<Counts> mask)
    {
        Counts const d;
        Count* const counts = counts_ + group.at + row * kTileColumns;
        hn::Store(hn::Sub(hn::Load(d, counts), mask), d, counts);
    }

    HWY_INLINE void add_counts()
    {
        for (int at = 0; at < kTileRows * kTileColumns; ++at) {
            blocked_[at] = static_cast<std::uint16_t>(blocked_[at] + counts_[at]);
            counts_[at] = 0;
        }
    }

    /// Decides in floats for the texels that the lattice leaves in doubt, or for all that are not surely
    /// blocked, and corrects their counts.
    HWY_INLINE void settle(ReducedRay const& ray, Group const& group, Vector const (&most)[kRows],
                           bool all_in_doubt)
    {
        D const d;
        for (int r = 0; r < kRows; ++r) {
            Vector const above = hn::Sub(most[r], own_levels(group, r));
            std::uint32_t const counted = bits(hn::Gt(above, hn::Set(d, -1)));
            std::uint32_t const surely_blocked = bits(hn::Gt(above, hn::Set(d, Form::kInDoubt - 1)));
            for (std::uint32_t lanes = (all_in_doubt ? kAllLanes : counted) & ~surely_blocked; lanes != 0;
                 lanes &= lanes - 1) {
                auto const c = static_cast<int>(hwy::Num0BitsBelowLS1Bit_Nonzero32(lanes));
                int const at = group.at + r * kTileColumns + c;
                if (own_[at] != Grid::kAlwaysOpen) {
                    int const blocked =
                        is_blocked(relief_, plane_, bundle_, ray, group.row + r, group.column + c) ? 1 : 0;
                    counts_[at] =
                        static_cast<Count>(counts_[at] + blocked - static_cast<int>(counted >> c & 1));
                }
            }
        }
    }

    /// A bit a lane.
    static HWY_INLINE std::uint32_t bits(hn::Mask<D> mask)
    {
        // g++ 12 spills a mask register in its own width and reads it back in the width that it is used in.
        // Where masks have registers of their own, both must be 32 bits.
        static_assert(HWY_TARGET > HWY_AVX3 || kColumns == 32);
        std::uint8_t bytes[8] = {};
        hn::StoreMaskBits(D(), mask, bytes);
        std::uint32_t lanes;
        hwy::CopyBytes<sizeof lanes>(bytes, &lanes);
        return lanes & kAllLanes;
    }

    static constexpr std::uint32_t kAllLanes = 0xffffffffU >> (32 - kColumns);

    Relief const& relief_;
    Plane const& plane_;
    RayBundle const& bundle_;
    Tile const& tile_;
    std::ptrdiff_t stride_;
    int above_top_;
    std::uint16_t* blocked_;
    int groups_found_;
    Group groups_[kMostGroups];
    alignas(64) Level own_[kTileRows * kTileColumns];
    alignas(64) Count counts_[kTileRows * kTileColumns];
};

int GroupColumns()
{
    return TileCounter<Words>::columns();
}

int ByteGroupColumns()
{
    return TileCounter<Bytes>::columns();
}

void CountBlocked(Relief const& relief, Lattice const& lattice, LatticePlane<Lattice> const& plane,
                  RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
{
    TileCounter<Words>(relief, lattice, plane, bundle, tile, blocked).count();
}

void CountBytesBlocked(Relief const& relief, ByteLattice const& lattice,
                       LatticePlane<ByteLattice> const& plane, RayBundle const& bundle, Tile const& tile,
                       TileCounts& blocked)
{
    TileCounter<Bytes>(relief, lattice, plane, bundle, tile, blocked).count();
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace occlusion_before
HWY_AFTER_NAMESPACE();

#endif
