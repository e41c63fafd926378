// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

// Colours for the eye are coded as sRGB (IEC 61966-2-1) in files of whole numbers, and linear in those of
// floats. All else that this library makes is linear, whatever holds it.

/// The colours of @p picture as light: three linear floats a texel, without alpha.
Picture linear_colours(Picture const& picture);

/// Codes linear @p floats as sRGB. What lies outside 0 to 1 is cut.
void code_as_srgb(Picture& floats);

} // namespace umbrixlib::toolkit
