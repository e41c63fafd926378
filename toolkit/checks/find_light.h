// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Adds "impossible-light" to @p findings if texels of @p map, an Umbrix map of light in @p mode, are
/// brighter than any surface can be: occlusion only darkens, so a normal of unit length has to exist whose
/// light is at least as bright in all three channels. Floats of modes that are cut at 0 must not be negative,
/// either.
void find_impossible_light(Picture const& map, Modes mode, Findings& findings);

} // namespace umbrixlib::toolkit
