// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/textures/texture_format.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// A texture as its file holds it: the largest level first, each with the top row of blocks first.
struct Texture {
    TextureForm form{};
    int width = 0; ///< Of the largest level.
    int height = 0;
    std::vector<std::vector<std::uint8_t>> levels;

    std::size_t size() const; ///< Of all levels, in bytes.
};

/// Makes a texture of @p picture, whose kind tells whether it is normals, and that has one, three or four
/// channels. Colours of normals, 0 to 1, stand for -1 to 1; what lies outside 0 to 1 is cut where whole
/// numbers are stored. The largest level of what is not packed has the picture's own samples, where it is as
/// deep. Other normals have unit length. The last texels of a side repeat in blocks that reach beyond it.
///
/// @param levels The largest one among them; there are no more than down to one texel.
/// @return Empty if the run was stopped. The same bytes with any number of threads and every instruction set.
std::optional<Texture> make_texture(Picture const& picture, TextureFormat format, int levels,
                                    RunControl* control = nullptr);

} // namespace umbrixlib::toolkit
