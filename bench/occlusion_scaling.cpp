// SPDX-License-Identifier: MIT
// Cost per texel of `GenerateRays` and `Height2DirectionalAO` over the number of rays, the radius and the
// side of the map, on one processor.
#include "measure/checksum.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/occlusion_cases.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"

namespace {

using namespace umbrixlib::bench;

constexpr float kScale = 0.1f;

void measure(char const* over, OcclusionCase& relief, int rays, float radius, Effort const& effort)
{
    Seconds const seconds =
        interleaved({{"ours", [&] { relief.run(rays, radius, kScale, true); }}}, effort, cpu_seconds);
    print({{"what", "scaling"},
           {"over", over},
           {"map", "terrain"},
           {"side", relief.side},
           {"rays", rays},
           {"radius", radius},
           {"seconds_per_texel", seconds.at("ours") / static_cast<double>(relief.heights.size())},
           {"checksum", checksum(relief.occlusion)}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    Effort effort = effort_of(count, words);
    effort.least_rounds = 1;
    effort.seconds = 1.0;
    for (int const side : {256, 512, 1024, 2048, 4096}) {
        if (side > 1024 && is_quick(count, words)) {
            break;
        }
        OcclusionCase relief("terrain", side, kScale);
        for (float const radius : {0.05f, 0.1f, 0.25f, 0.5f, 1.0f}) {
            measure("radius", relief, 64, radius, effort);
        }
        if (side == 512) {
            for (int const rays : {16, 32, 64, 128, 256, 512, 1024}) {
                measure("rays", relief, rays, 0.25f, effort);
            }
        }
    }
}
