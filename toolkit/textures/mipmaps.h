// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <cstddef>
#include <vector>

namespace umbrixlib::toolkit {

/// A level of a texture before it is stored. The top row is the first one, as in the files of textures.
struct TextureLevel {
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<float> texels; ///< 0 to 1 for whole numbers; of normals, the colours are -1 to 1.

    std::size_t row_size() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    }
};

/// @p picture as the largest level. The colours of normals are 0 to 1 in samples of all types.
TextureLevel first_level(Picture const& picture);

/// How many levels there are down to one texel, the largest among them.
int all_levels(int width, int height);

/// The level below: half as wide and as high, rounded down, at least one texel. Each texel is the mean over
/// the area that it covers: of two along an even side, of three along an odd one, of which the outer ones
/// count as far as they are covered.
///
/// The same to the bit with any number of threads.
TextureLevel smaller_level(TextureLevel const& level);

/// @p level with vectors of unit length; those without a length point straight up. An alpha stays.
TextureLevel with_unit_vectors(TextureLevel level);

} // namespace umbrixlib::toolkit
