// SPDX-License-Identifier: MIT
#include "occlusion_map.h"

#include "foundation/rounding.h"
#include "occlusion_bundle.h"
#include "occlusion_lattice.h"
#include "occlusion_plane.h"
#include "occlusion_tiles.h"
#include "occlusion_walk.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cstdint>
#include <omp.h>
#include <optional>

namespace velloric {
namespace {

constexpr int kLongestSide = 1 << 24; ///< Of a map that fits the plane's 32-bit offsets.

constexpr int kWorthThreads = 1000; ///< So many rays are reduced sooner by several threads.

/// The bundle of one band in one round.
struct Turn {
    RayBundle bundle;
    bool pending; ///< The band still had rays.
    bool first;
    bool last;

    int rays() const { return static_cast<int>(bundle.rays.size() + bundle.odd.size()); }
};

/// Everything that the tiles have in common.
class Mapper {
public:
    Mapper(Relief const& relief, std::array<ray const*, 3> const& bands, int rays, float3* occlusion,
           Progress& progress)
        : relief_(relief), rays_(rays), occlusion_(occlusion),
          progress_(progress), reducers_{RayReducer(bands[0], rays), RayReducer(bands[1], rays),
                                         RayReducer(bands[2], rays)},
          tiles_across_((relief.cols + kTileColumns - 1) / kTileColumns),
          tiles_down_((relief.rows + kTileRows - 1) / kTileRows)
    {
        bool const fits =
            relief.magnitude <= FLT_MAX && relief.rows < kLongestSide && relief.cols < kLongestSide;
        if (fits) {
            lattice_.emplace(relief);
            plane_.emplace(relief, *lattice_, group_columns());
        }
        progress.expect(static_cast<long long>(tiles()) * 3 * rays);
    }

    bool done() const
    {
        return std::all_of(reducers_.begin(), reducers_.end(),
                           [](RayReducer const& each) { return each.done(); });
    }

    /// Walks the next bundle of each band. The counts of a band whose rays take several rounds wait in its
    /// channel of the result.
    void next_round(bool first)
    {
        std::array<Turn, 3> turns;
        bool const many = rays_ > kWorthThreads;
#pragma omp parallel for schedule(dynamic) if (many)
        for (std::size_t band = 0; band < 3; ++band) {
            RayReducer& reducer = reducers_[band];
            Turn& turn = turns[band];
            turn.pending = !reducer.done();
            turn.bundle =
                reducer.next(relief_, lattice_ ? &*lattice_ : nullptr, plane_ ? plane_->stride() : 0);
            turn.first = first;
            turn.last = reducer.done();
        }
#pragma omp parallel for schedule(dynamic)
        for (int part = 0; part < tiles() * 3; ++part) {
            Turn const& turn = turns[static_cast<std::size_t>(part % 3)];
            if (turn.pending) {
                finish_tile(tile(part / 3), turn, part % 3);
                progress_.add(turn.rays(), omp_get_thread_num() == 0);
            }
        }
    }

private:
    int tiles() const
    {
        return tiles_across_ * tiles_down_;
    }

    Tile tile(int index) const
    {
        int const row = index / tiles_across_ * kTileRows;
        int const column = index % tiles_across_ * kTileColumns;
        return {row, column, std::min(kTileRows, relief_.rows - row),
                std::min(kTileColumns, relief_.cols - column)};
    }

    void finish_tile(Tile const& tile, Turn const& turn, int channel) const
    {
        alignas(64) TileCounts blocked;
        if (turn.bundle.rays.empty()) {
            std::fill_n(&blocked[0][0], kTileRows * kTileColumns, std::uint16_t{0});
        } else {
            count_blocked(relief_, *lattice_, *plane_, turn.bundle, tile, blocked);
        }
        for (int row = 0; row < tile.rows; ++row) {
            for (int column = 0; column < tile.columns; ++column) {
                int const y = tile.row + row;
                int const x = tile.column + column;
                float3& texel = occlusion_[static_cast<long long>(y) * relief_.cols + x];
                float& result = channel == 0 ? texel.x : channel == 1 ? texel.y : texel.z;
                std::uint32_t count = turn.first ? 0 : std::bit_cast<std::uint32_t>(result);
                count += blocked[row][column];
                for (ray const& odd : turn.bundle.odd) {
                    count += ray_escapes(relief_, odd, y, x) ? 0 : 1;
                }
                result = turn.last ? share_of_open(count) : std::bit_cast<float>(count);
            }
        }
    }

    float share_of_open(std::uint32_t blocked) const
    {
        return umbrixlib::detail::narrow(static_cast<double>(rays_ - static_cast<int>(blocked)) /
                                         static_cast<double>(rays_));
    }

    Relief const& relief_;
    int rays_;
    float3* occlusion_;
    Progress& progress_;
    std::array<RayReducer, 3> reducers_;
    std::optional<Lattice> lattice_;
    std::optional<LatticePlane> plane_;
    int tiles_across_;
    int tiles_down_;
};

} // namespace

void map_occlusion(Relief const& relief, std::array<ray const*, 3> const& bands, int rays, float3* occlusion,
                   Progress& progress)
{
    bool const all_at_top = !(relief.lowest < relief.top); // or not numbers
    if (all_at_top) {
        std::fill_n(occlusion, static_cast<long long>(relief.rows) * relief.cols, float3{1.0f, 1.0f, 1.0f});
        return;
    }
    Mapper mapper(relief, bands, rays, occlusion, progress);
    for (bool first = true; !mapper.done(); first = false) {
        mapper.next_round(first);
    }
}

} // namespace velloric
