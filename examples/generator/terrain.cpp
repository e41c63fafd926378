// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

namespace umbrixlib::examples {

/// Mountains: ridges that carry finer ridges, over valleys that stay smooth.
double terrain(Point p)
{
    Point const place = warped(p, 0.06, 4, 3, 17);
    double sum = 0.0;
    double strength = 0.5;
    double carried = 1.0;
    for (int octave = 0; octave < 8; ++octave) {
        int const cells = 3 << octave;
        double const ridge =
            square(1.0 - std::abs(gradient_noise(place, cells, cells, 200U + static_cast<unsigned>(octave))));
        sum += strength * carried * ridge;
        carried = unit_clamp(carried * ridge * 1.6);
        strength *= 0.55;
    }
    return sum;
}

} // namespace umbrixlib::examples
