// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

/// Adds "jpeg-blocks" to @p findings if the blocks of 8 x 8 texels of @p picture, of whole numbers, have been
/// through JPEG with steps of 3 of 255 or more, wherever their grid begins.
///
/// Method: the coefficients of a block's cosine transform that JPEG keeps are multiples of a step, one for
/// each frequency. 1 less four times the mean distance to the next multiple, in steps, of those that are not
/// 0 is near 1 then, and near 0 in all other pictures. A grid that is shifted against the blocks must not
/// show it: pictures of few levels do in all.
void find_jpeg_blocks(Picture const& picture, Findings& findings);

} // namespace umbrixlib::toolkit
