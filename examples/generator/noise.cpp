// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

namespace umbrixlib::examples {

/// Nine octaves of gradient noise: relief at every scale down to the texel.
double noise(Point p)
{
    return fractal_noise(p, 4, 9, 401);
}

} // namespace umbrixlib::examples
