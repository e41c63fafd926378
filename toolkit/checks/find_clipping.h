// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

/// Adds "clipped" to @p findings for each end of the scale at which @p heights were cut off: many lie there,
/// and those beside it are about as many as further inside. Flat ground with slopes that lead straight to it
/// looks the same.
void find_clipping(Picture const& heights, Findings& findings);

} // namespace umbrixlib::toolkit
