// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoded_image.h"

#include <string>

namespace umbrixlib::toolkit {

/// What a picture is taken for, and what speaks for it, as part of a sentence.
struct TakenFor {
    PictureKind kind;
    std::string because;
};

/// As @p image tells itself, or its name, or what it looks like: normals, heights, light of an Umbrix map,
/// or, as a map in a light, unknown. Coloured pictures that are nothing else are heights.
TakenFor taken_for(DecodedImage const& image, std::string const& file);

} // namespace umbrixlib::toolkit
