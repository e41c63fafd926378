// SPDX-License-Identifier: MIT
// Wall time of `GenerateRays` and `Height2DirectionalAO` with one thread and with two, on two processors.
#include "measure/checksum.h"
#include "measure/clocks.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/occlusion_cases.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"

#include <omp.h>

int main(int count, char** words)
{
    using namespace umbrixlib::bench;
    int const processors = keep_to_processors(2, words);
    if (processors < 2) {
        return 0;
    }
    for (OcclusionSet const& set : kOcclusionSets) {
        if (set.radius == 1.0f && is_quick(count, words)) {
            continue;
        }
        for (char const* const map : maps_of(count, words, 2)) {
            OcclusionCase relief(map, 1024, set.h_scale);
            auto const run = [&](int threads) {
                omp_set_num_threads(threads);
                relief.run(set.rays, set.radius, set.h_scale, true);
            };
            OthersWatch const others;
            Seconds const seconds = interleaved({{"one", [&] { run(1); }}, {"two", [&] { run(2); }}},
                                                effort_of(count, words), wall_seconds);
            print({{"what", "threads"},
                   {"map", map},
                   {"set", set.name},
                   {"side", 1024},
                   {"seconds", seconds},
                   {"others", others.share()},
                   {"checksum", checksum(relief.occlusion)}});
        }
    }
}
