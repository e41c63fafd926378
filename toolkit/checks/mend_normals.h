// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/find_normals.h"

namespace umbrixlib::toolkit {

/// Does the fixes of @p findings to @p normals; all texels that they are not about stay as they are to the
/// bit. Lengths that are next to nothing have no direction and stay, too. Returns what was done.
std::vector<std::string> mend_normals(Picture& normals, NormalCode const& code, NormalSums const& sums,
                                      Findings const& findings);

} // namespace umbrixlib::toolkit
