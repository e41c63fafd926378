// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

/// Adds "seam-x" or "seam-y" to @p findings where the opposite borders of @p picture do not meet, along the
/// axes that are asked for.
void find_seams(Picture const& picture, bool sideways, bool up_and_down, Findings& findings);

} // namespace umbrixlib::toolkit
