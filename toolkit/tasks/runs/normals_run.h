// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"

#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// The library's normals of @p heights, with the blur and the borders of @p settings.
/// @param file What messages call the heights.
NormalsResult normals_of_heights(Picture const& heights, float n_scale, Settings const& settings,
                                 std::string const& file, Observer& observer);

} // namespace umbrixlib::toolkit
