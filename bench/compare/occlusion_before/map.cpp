// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/map.h"

#include "common/rounding.h"
#include "compare/occlusion_before/bundle.h"
#include "compare/occlusion_before/lattice.h"
#include "compare/occlusion_before/plane.h"
#include "compare/occlusion_before/tiles.h"
#include "compare/occlusion_before/walk.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cstdint>
#include <omp.h>
#include <optional>

namespace occlusion_before {
namespace {

constexpr int kLongestSide = 1 << 24; ///< Of a map that fits the plane's 32-bit offsets.

constexpr int kRaysForThreads = 1000; ///< Up to this number one thread reduces them faster.

/// The share of one band in one round.
struct Turn {
    RayShare share;
    bool pending; ///< The band still had rays.
    bool first;
    bool last;
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
            lattices_.words.emplace(relief);
            lattices_.bytes = ByteLattice::of(relief);
        }
        progress.expect(static_cast<long long>(tiles()) * 3 * rays);
    }

    bool done() const
    {
        return std::all_of(reducers_.begin(), reducers_.end(),
                           [](RayReducer const& each) { return each.done(); });
    }

    /// Walks the next share of each band. The counts of a band whose rays take several rounds wait in its
    /// channel of the result.
    void next_round(bool first)
    {
        std::array<Turn, 3> turns;
        bool const many = rays_ > kRaysForThreads;
#pragma omp parallel for schedule(dynamic) if (many)
        for (std::size_t band = 0; band < 3; ++band) {
            RayReducer& reducer = reducers_[band];
            Turn& turn = turns[band];
            turn.pending = !reducer.done();
            turn.share = reducer.next(relief_, lattices_, plane_stride(relief_));
            turn.first = first;
            turn.last = reducer.done();
        }
        if (progress_.is_stopped()) {
            return;
        }
        make_planes(turns);
#pragma omp parallel for schedule(dynamic)
        for (int part = 0; part < tiles() * 3; ++part) {
            Turn const& turn = turns[static_cast<std::size_t>(part % 3)];
            if (turn.pending && !progress_.is_stopped()) {
                finish_tile(tile(part / 3), turn, part % 3);
                progress_.add(static_cast<int>(turn.share.rays()), omp_get_thread_num() == 0);
            }
        }
    }

private:
    /// The planes that the shares need and that are not there yet.
    void make_planes(std::array<Turn, 3> const& turns)
    {
        auto const any = [&](RayBundle RayShare::*bundle) {
            return std::any_of(turns.begin(), turns.end(),
                               [&](Turn const& each) { return !(each.share.*bundle).rays.empty(); });
        };
        if (!words_ && any(&RayShare::words)) {
            words_.emplace(relief_, *lattices_.words, group_columns());
        }
        if (!bytes_ && any(&RayShare::bytes)) {
            bytes_.emplace(relief_, *lattices_.bytes, byte_group_columns());
        }
    }

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
        alignas(64) TileCounts blocked = {};
        if (!turn.share.words.rays.empty()) {
            count_blocked(relief_, *lattices_.words, *words_, turn.share.words, tile, blocked);
        }
        if (!turn.share.bytes.rays.empty()) {
            count_blocked(relief_, *lattices_.bytes, *bytes_, turn.share.bytes, tile, blocked);
        }
        if (!turn.share.unreduced.empty()) {
            add_unreduced(tile, turn.share.unreduced, blocked);
        }
        for (int row = 0; row < tile.rows; ++row) {
            float* const results =
                &occlusion_[static_cast<long long>(tile.row + row) * relief_.cols].x + channel;
            finish_row(blocked[row], results + 3 * static_cast<long long>(tile.column), tile.columns, turn);
        }
    }

    void add_unreduced(Tile const& tile, std::vector<ray> const& rays, TileCounts& blocked) const
    {
        for (int row = 0; row < tile.rows; ++row) {
            for (int column = 0; column < tile.columns; ++column) {
                for (ray const& each : rays) {
                    bool const escapes = ray_escapes(relief_, each, tile.row + row, tile.column + column);
                    blocked[row][column] =
                        static_cast<std::uint16_t>(blocked[row][column] + (escapes ? 0 : 1));
                }
            }
        }
    }

    /// Every third of @p results is one of the channel.
    void finish_row(std::uint16_t const* blocked, float* results, int columns, Turn const& turn) const
    {
        auto const rays = static_cast<float>(rays_);
        if (turn.first && turn.last) { // at most as many rays as floats can count
            for (int column = 0; column < columns; ++column) {
                results[3 * column] = static_cast<float>(rays_ - blocked[column]) / rays;
            }
            return;
        }
        for (int column = 0; column < columns; ++column) {
            float& result = results[3 * column];
            std::uint32_t const count =
                (turn.first ? 0 : std::bit_cast<std::uint32_t>(result)) + blocked[column];
            result = turn.last ? share_of_open(count) : std::bit_cast<float>(count);
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
    Lattices lattices_;
    std::optional<LatticePlane<Lattice>> words_;
    std::optional<LatticePlane<ByteLattice>> bytes_;
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
    for (bool first = true; !mapper.done() && !progress.is_stopped(); first = false) {
        mapper.next_round(first);
    }
}

} // namespace occlusion_before
