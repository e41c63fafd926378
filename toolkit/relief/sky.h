// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/relief/padded_heights.h"

#include <optional>
#include <umbrixlib.h>
#include <vector>

/// @file
/// What relief leaves of the sky over each texel, by the horizon in directions all around. The sky is the
/// half of all directions that lie above the plane of the texture, weighted with the cosine to its z.
///
/// Heights are in texels. A horizon is the steepest place of a walk (HorizonWalk) from the texel on, and not
/// below the plane. Where a side repeats the walk goes on in the repetition, else it ends at the border.
///
/// The same to the bit with any number of threads, and for every instruction set. Errors: std::bad_alloc.
/// Method: the horizon in place of rays, N. Max, Horizon mapping: shadows for bump-mapped surfaces, The
/// Visual Computer 4, 1988; above it the sky is summed up in closed form.

namespace umbrixlib::toolkit {

/// One of each for each texel, row by row.
struct SkyMap {
    std::vector<float3> bent; ///< Mean free direction, of length 1; y goes with the rows.
    std::vector<float> open;  ///< Share of the sky that is free, 0 to 1.
};

/// @param reach      How far a horizon is looked for, in texels.
/// @param directions How many there are around, at least 1.
/// @param control    Watches the run, and may stop it; null for none.
/// @return Empty if the run was stopped.
std::optional<SkyMap> sky_over(HeightPlane const& plane, double reach, int directions,
                               RunControl* control = nullptr);

/// The sines of the horizon's elevation in four of eight directions that are evenly spread, from x to y, for
/// each texel side by side. All places of these walks are texels.
/// @param first Number of the first direction: 0, along x, or 4.
/// @return Empty if the run was stopped.
std::optional<std::vector<float>> horizon_sines(HeightPlane const& plane, double reach, int first,
                                                RunControl* control = nullptr);

} // namespace umbrixlib::toolkit
