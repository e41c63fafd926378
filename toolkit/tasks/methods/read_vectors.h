// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/tasks/methods/read_slopes.h"

namespace umbrixlib::toolkit {

/// The normals of @p source as vectors of floats with green up: floats below 0 are vectors already, all else
/// is 0 to 1 for -1 to 1. Those that are no numbers are a Failure unless the settings replace them: by flat
/// ground, with a note.
Picture read_vectors(SlopeSource const& source, Observer& observer);

} // namespace umbrixlib::toolkit
