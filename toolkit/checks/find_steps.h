// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

/// Adds "eight-bit-steps" to @p findings if @p picture has 16 bits or floats, and its samples the steps of
/// 8 bits, at least many of them; of heights also if they have no more levels than 8 bits, whatever these
/// are.
void find_steps(Picture const& picture, PictureKind kind, Findings& findings);

} // namespace umbrixlib::toolkit
