// SPDX-License-Identifier: MIT

/// @file
/// The lattice comparisons of one bundle with one tile, compiled once for each instruction set.

// Highway includes this file once for each instruction set.
#if defined(VELLORIC_OCCLUSION_TILES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLORIC_OCCLUSION_TILES_INL_H
#undef VELLORIC_OCCLUSION_TILES_INL_H
#else
#define VELLORIC_OCCLUSION_TILES_INL_H
#endif

#include "occlusion/comparisons-inl.h"
#include "occlusion/settle.h"
#include "occlusion/shift.h"
#include "occlusion/tiles.h"

#include <algorithm>
#include <hwy/highway.h>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace velloric {

using umbrixlib::detail::Relief;

namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

static_assert(kTileRows % kRows == 0);

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
    using Met = typename MetFor<Form>::Type;

    static constexpr int kColumns = Met::kColumns;
    static_assert(kColumns <= kMostGroupColumns);
    static constexpr int kMostGroups = kTileRows / kRows * (kTileColumns / kColumns);
    static_assert(kTileColumns % kColumns == 0);

    HWY_INLINE void find_own_levels()
    {
        std::fill_n(own_, kTileRows * kTileColumns, static_cast<Level>(Grid::kAlwaysOpen));
        std::fill_n(counts_, kTileRows * kTileColumns, Count{0});
        float const top = relief_.top; // a store of bytes may change all but local variables
        int const columns = tile_.columns;
        for (int row = 0; row < tile_.rows; ++row) {
            float const* const HWY_RESTRICT heights = relief_.row(tile_.row + row) + tile_.column;
            Level const* const HWY_RESTRICT levels = plane_.at(tile_.row + row, tile_.column);
            Level* const HWY_RESTRICT own = own_ + row * kTileColumns;
            for (int column = 0; column < columns; ++column) {
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
                    lowest = hn::Min(lowest, hn::Load(d, own(group) + r * kTileColumns));
                }
                group.lowest_own = smallest_lane(d, lowest);
                if (group.lowest_own != Grid::kAlwaysOpen) {
                    groups_[groups_found_++] = group;
                }
            }
        }
    }

    HWY_INLINE Level const* own(Group const& group) const { return own_ + group.at; }

    HWY_INLINE void count_group(ReducedRay const& ray, Group const& group)
    {
        Met met;
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
                int const lowest_left = met.lowest_undecided(own(group));
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
            met.fold(own(group), plane_.at(row, column), stride_,
                     &bundle_.steps[static_cast<std::size_t>(block.first_step)], steps, block.climb);
            folded = true;
            stale = true;
        }
        if (folded || all_in_doubt) {
            bool const in_doubt = met.count(own(group), counts_ + group.at);
            if constexpr (Grid::kSettles) {
                if (in_doubt || all_in_doubt) {
                    settle(ray, group, met, all_in_doubt);
                }
            }
        }
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
    HWY_INLINE void settle(ReducedRay const& ray, Group const& group, Met const& met, bool all_in_doubt)
    {
        D const d;
        for (int r = 0; r < kRows; ++r) {
            Vector const above = met.above(own(group), r);
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
} // namespace velloric
HWY_AFTER_NAMESPACE();

#endif
