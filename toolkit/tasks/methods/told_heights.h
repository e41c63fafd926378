// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/heights/height_reading.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"

namespace umbrixlib::toolkit {

// A height map can tell that its numbers are not the heights that they stand for.

/// What the numbers 0 and 1 of a height map stand for, for its attributes.
void tell_range(Attributes& attributes, HeightRange const& range);

/// The lowest and the highest number of a height map of floats that leaves 0..1.
void tell_limits(Attributes& attributes, double low, double high);

/// How the heights of a picture are read that tells this of itself.
struct ToldHeights {
    HeightReading reading; ///< As asked for, with the range that the picture tells if none was asked for.
    double unit = 1.0;     ///< What 0 to 1, as they are read, spans of a height.
};

/// A range that is asked for counts more than what the picture tells.
ToldHeights told_heights(Attributes const& attributes, HeightReading const& asked);

/// @p settings for heights of which 0 to 1 span @p unit: the relief, the height scale and the strength of the
/// normals grow with it.
Settings in_unit(Settings settings, double unit);

} // namespace umbrixlib::toolkit
