// SPDX-License-Identifier: MIT
// `Height2DirectionalAO` with `GenerateRays` against the kernel as it was before, on one processor: how many
// times as fast it has become, from one run.
#include "compare/occlusion_before/map.h"
#include "measure/checksum.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/occlusion_cases.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/same_bits.h"

namespace {

using namespace umbrixlib::bench;

constexpr int kSide = 1024;

/// The same as OcclusionCase::run.
void run_before(OcclusionCase& map, OcclusionSet const& set)
{
    Bundles const bundles(map.side, set.rays);
    auto const relief =
        umbrixlib::detail::relief_over(map.heights.data(), map.side, map.side, true, true, set.radius);
    occlusion_before::Progress progress(nullptr);
    occlusion_before::map_occlusion(relief, {bundles.c.data(), bundles.b.data(), bundles.a.data()}, set.rays,
                                    map.occlusion.data(), progress);
}

void measure(char const* name, OcclusionSet const& set, Effort const& effort)
{
    OcclusionCase now(name, kSide, set.h_scale);
    OcclusionCase before(name, kSide, set.h_scale);
    Seconds const seconds = interleaved(
        {
            {"ours", [&] { now.run(set.rays, set.radius, set.h_scale, true); }},
            {"before", [&] { run_before(before, set); }},
        },
        effort, cpu_seconds);
    print({{"what", "occlusion_before"},
           {"map", name},
           {"set", set.name},
           {"side", kSide},
           {"seconds", seconds},
           {"times_as_fast", seconds.at("before") / seconds.at("ours")},
           {"equals_before", same_bits(now.occlusion, before.occlusion)},
           {"checksum", checksum(now.occlusion)}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    for (OcclusionSet const& set : kOcclusionSets) {
        for (char const* const map : kMaps) {
            measure(map, set, effort_of(count, words));
        }
    }
}
