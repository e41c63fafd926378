// SPDX-License-Identifier: MIT
#include "toolkit/relief/sky.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/run_progress.h"
#include "toolkit/relief/horizon_tile.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace umbrixlib::toolkit {

namespace {

constexpr int kSides = 4; ///< Directions of a picture of horizons.

int ceiling(double texels)
{
    return static_cast<int>(std::ceil(texels));
}

std::vector<HorizonWalk> walks_around(int directions, int first, int count, double reach)
{
    std::vector<HorizonWalk> walks;
    for (int i = first; i < first + count; ++i) {
        walks.emplace_back(i, directions, reach);
    }
    return walks;
}

HorizonTile tile_of(HeightPlane const& plane, int column, int row)
{
    HorizonTile tile{column * kGroupColumns, row * HorizonTile::kMostRows, 0, 0, {}};
    tile.columns = std::min(kGroupColumns, plane.width - tile.x);
    tile.rows = std::min(HorizonTile::kMostRows, plane.height - tile.y);
    for (int y = 0; y < tile.rows; ++y) {
        float const* const own =
            plane.heights + static_cast<std::ptrdiff_t>(tile.y + y) * plane.width + tile.x;
        tile.lowest[static_cast<std::size_t>(y)] = *std::min_element(own, own + tile.columns);
    }
    return tile;
}

/// Calls @p body with each tile and a place to work in, on all threads. False if the run was stopped.
template <typename Place, typename Body>
bool for_tiles(HeightPlane const& plane, RunControl* control, Body const& body)
{
    int const across = (plane.width - 1) / kGroupColumns + 1;
    int const down = (plane.height - 1) / HorizonTile::kMostRows + 1;
    auto const count = static_cast<std::size_t>(across) * static_cast<std::size_t>(down);
    RunProgress progress(control, count);
    on_all_threads(count, [&](auto const& next) {
        auto const place = std::make_unique<Place>();
        for (std::size_t i = next(); i < count && !progress.stopping(); i = next()) {
            auto const columns = static_cast<std::size_t>(across);
            body(tile_of(plane, static_cast<int>(i % columns), static_cast<int>(i / columns)), *place);
            progress.add_piece();
        }
    });
    return !progress.stopping();
}

/// Calls @p body with the place of each texel of @p tile in the picture and in the tile.
template <typename Body>
void for_texels(HeightPlane const& plane, HorizonTile const& tile, Body const& body)
{
    for (int y = 0; y < tile.rows; ++y) {
        for (int x = 0; x < tile.columns; ++x) {
            body(static_cast<std::size_t>(tile.y + y) * static_cast<std::size_t>(plane.width) +
                     static_cast<std::size_t>(tile.x + x),
                 static_cast<std::size_t>(y * kGroupColumns + x));
        }
    }
}

struct SkyPlace {
    TileNumbers tangents{};
    SkySums sums;
};

} // namespace

std::optional<SkyMap> sky_over(HeightPlane const& plane, double reach, int directions, RunControl* control)
{
    PaddedHeights const heights(plane, ceiling(reach));
    std::vector<HorizonWalk> const walks = walks_around(directions, 0, directions, reach);
    auto const texels = static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height);
    SkyMap made{std::vector<float3>(texels), std::vector<float>(texels)};
    auto const share = 1.0f / static_cast<float>(directions);
    bool const done = for_tiles<SkyPlace>(plane, control, [&](HorizonTile const& tile, SkyPlace& place) {
        place.sums = {};
        for (HorizonWalk const& walk : walks) {
            find_horizons(heights, walk, tile, place.tangents);
            add_sky(place.tangents, walk, place.sums);
        }
        for_texels(plane, tile, [&](std::size_t texel, std::size_t i) {
            auto const x = static_cast<double>(place.sums.x[i]);
            auto const y = static_cast<double>(place.sums.y[i]);
            auto const z = static_cast<double>(place.sums.z[i]);
            double const length = std::sqrt(x * x + y * y + z * z);
            made.bent[texel] = {static_cast<float>(x / length), static_cast<float>(y / length),
                                static_cast<float>(z / length)};
            made.open[texel] = std::min(place.sums.open[i] * share, 1.0f);
        });
    });
    return done ? std::optional(std::move(made)) : std::nullopt;
}

std::optional<std::vector<float>> horizon_sines(HeightPlane const& plane, double reach, int first,
                                                RunControl* control)
{
    PaddedHeights const heights(plane, ceiling(reach));
    std::vector<HorizonWalk> const walks = walks_around(2 * kSides, first, kSides, reach);
    std::vector<float> sines(kSides * static_cast<std::size_t>(plane.width) *
                             static_cast<std::size_t>(plane.height));
    bool const done =
        for_tiles<TileNumbers>(plane, control, [&](HorizonTile const& tile, TileNumbers& tangents) {
            for (std::size_t side = 0; side < kSides; ++side) {
                find_horizons(heights, walks[side], tile, tangents);
                make_sines(tangents);
                for_texels(plane, tile, [&](std::size_t texel, std::size_t i) {
                    sines[kSides * texel + side] = tangents[i];
                });
            }
        });
    return done ? std::optional(std::move(sines)) : std::nullopt;
}

} // namespace umbrixlib::toolkit
