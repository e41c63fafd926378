// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

/// Texels of a picture, whose first row is the bottom one.
struct Cut {
    int left = 0;
    int bottom = 0;
    int width = 0;
    int height = 0;

    bool operator==(Cut const&) const = default;
};

/// These texels of @p picture, without its attributes. What lies beyond its borders is as if it repeated.
toolkit::Picture cut_out(toolkit::Picture const& picture, Cut const& cut);

/// The mean of each square of @p factor texels a side, at the right and the top of what there is of one. In
/// the same samples, whole numbers rounded to the nearest, without the attributes.
toolkit::Picture box_reduced(toolkit::Picture const& picture, int factor);

} // namespace umbrix_desktop
