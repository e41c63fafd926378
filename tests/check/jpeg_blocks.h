// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

namespace umbrixlib::test {

/// @p picture, of 8 bits and one channel or three, as it comes back from JPEG of @p quality without fewer
/// texels of colour: the standard's own tables and cosine transform, in plain loops.
toolkit::Picture through_jpeg(toolkit::Picture const& picture, int quality);

} // namespace umbrixlib::test
