// SPDX-License-Identifier: MIT
// `Height2DirectionalAO` with `GenerateRays` against the plain ray walk of the tests and against Embree, on
// one processor. The plain walk and Embree do some rows, and their time stands for all of them.
#include "directional_ao_reference.h"
#include "embree_relief.h"
#include "measure/checksum.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/occlusion_cases.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/same_bits.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace umbrixlib::bench;

std::vector<float3> plain_rows(velloric::reference::Occlusion const& walk, int side,
                               std::vector<int> const& rows)
{
    std::vector<float3> shares;
    for (int const y : rows) {
        for (int x = 0; x < side; ++x) {
            shares.push_back(walk.at(y, x));
        }
    }
    return shares;
}

/// Index into an axis of @p period + 1 texels that tiles as the plain walk has it.
int wrapped(int index, int period)
{
    if (index > period) {
        return (index - 1) % period + 1;
    }
    return index < 0 ? (index % period + period) % period : index;
}

/// How many heights the plain walk with tiling compares on one ray from texel (@p x, @p y).
int comparisons_of(OcclusionCase const& map, velloric::reference::StepTable const& table, int x, int y,
                   float ceiling)
{
    int const length = static_cast<int>(table.size());
    auto const height_at = [&](int row, int column) {
        return map.heights[static_cast<std::size_t>(row * map.side + column)];
    };
    float const own = height_at(y, x);
    int comparisons = 0;
    for (float3 const& step : table) {
        int const dy = static_cast<int>(step.y);
        if (dy > length || dy < -length) {
            break;
        }
        float const height = step.z + own;
        int const column = wrapped(x + static_cast<int>(step.x), map.side - 1);
        ++comparisons;
        if (height_at(wrapped(y + dy, map.side - 1), column) >= height || height >= ceiling) {
            break;
        }
    }
    return comparisons;
}

/// The same for all rays of a texel, on average over the rows. The highest texels ask for none.
double comparisons_per_texel(OcclusionCase const& map, Bundles const& bundles, OcclusionSet const& set,
                             std::vector<int> const& rows)
{
    using velloric::reference::StepTable;
    int const length = velloric::reference::ray_length(map.side, set.radius);
    float const top = *std::max_element(map.heights.begin(), map.heights.end());
    double comparisons = 0.0;
    for (std::vector<ray> const* const bundle : {&bundles.a, &bundles.b, &bundles.c}) {
        for (int i = 0; i < set.rays; ++i) {
            ray const& direction = (*bundle)[static_cast<std::size_t>(i)];
            StepTable const table = velloric::reference::step_table(direction, map.side, map.side, length);
            for (int const y : rows) {
                for (int x = 0; x < map.side; ++x) {
                    float const own = map.heights[static_cast<std::size_t>(y * map.side + x)];
                    if (own != top) {
                        comparisons += comparisons_of(map, table, x, y, std::min(top, own + set.radius));
                    }
                }
            }
        }
    }
    return comparisons / (static_cast<double>(rows.size()) * map.side);
}

std::vector<float3> same_rows(OcclusionCase const& map, std::vector<int> const& rows)
{
    std::vector<float3> shares;
    for (int const y : rows) {
        auto const first = map.occlusion.begin() + static_cast<std::ptrdiff_t>(y) * map.side;
        shares.insert(shares.end(), first, first + map.side);
    }
    return shares;
}

double mean_difference(std::vector<float3> const& a, std::vector<float3> const& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += static_cast<double>(std::fabs(a[i].x - b[i].x) + std::fabs(a[i].y - b[i].y) +
                                   std::fabs(a[i].z - b[i].z));
    }
    return sum / static_cast<double>(3 * a.size());
}

void measure(char const* map, OcclusionSet const& set, int side, int row_count, Effort const& effort)
{
    OcclusionCase tiled(map, side, set.h_scale);
    OcclusionCase untiled(map, side, set.h_scale);
    Bundles const bundles(side, set.rays);
    velloric::reference::Occlusion const walk(tiled.heights, side, side, bundles.a.data(), bundles.b.data(),
                                              bundles.c.data(), set.rays, set.radius, true, true, true);
    EmbreeRelief const relief(untiled.heights, side);
    std::vector<int> const rows = spread_rows(side, row_count);
    double const whole = static_cast<double>(side) / static_cast<double>(rows.size());
    std::vector<float3> plain;
    std::vector<float3> embree;
    std::vector<float3> embree_one;
    Seconds const seconds = interleaved(
        {
            {"ours", [&] { tiled.run(set.rays, set.radius, set.h_scale, true); }},
            {"ours_untiled", [&] { untiled.run(set.rays, set.radius, set.h_scale, false); }},
            {"plain", [&] { plain = plain_rows(walk, side, rows); }, whole},
            {"embree", [&] { embree = relief.occlusion(bundles, set.rays, set.radius, rows); }, whole},
            {"embree_one_by_one",
             [&] { embree_one = relief.occlusion_one_by_one(bundles, set.rays, set.radius, rows); }, whole},
        },
        effort, cpu_seconds);
    print({{"what", "occlusion"},
           {"map", map},
           {"set", set.name},
           {"side", side},
           {"seconds", seconds},
           {"comparisons_per_texel", comparisons_per_texel(tiled, bundles, set, rows)},
           {"checksum", checksum(tiled.occlusion)},
           {"equals_plain", same_bits(plain, same_rows(tiled, rows))},
           {"embree_difference", mean_difference(embree, same_rows(untiled, rows))},
           {"embree_one_difference", mean_difference(embree_one, same_rows(untiled, rows))}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    Effort const effort = effort_of(count, words);
    for (int const side : {512, 1024}) {
        for (OcclusionSet const& set : kOcclusionSets) {
            for (char const* const map : maps_of(count, words, 2)) {
                measure(map, set, side, is_quick(count, words) ? 2 : 16, effort);
            }
        }
    }
}
