// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// What a picture is taken for.
enum class Kind { kHeightMap, kNormalMap };

/// Direction of green in a normal map: kUp where green grows as the surface turns to the top of the picture.
enum class NormalY { kUp, kDown };

} // namespace umbrixlib::toolkit
