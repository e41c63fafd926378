// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

/// @p picture as it is to be seen. @p orientation is the tag's number in TIFF and EXIF: 1 upright, 2 to 4
/// mirrored, turned by half, or both, 5 to 8 with rows and columns exchanged; any other number counts as 1.
Picture oriented(Picture&& picture, int orientation);

} // namespace umbrixlib::toolkit
