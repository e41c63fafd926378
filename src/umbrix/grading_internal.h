// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/grading.h"

namespace umbrixlib::detail {

/// Whether `PostProcess` changes anything with @p options.
bool grades_map(umbrix_options const& options);

} // namespace umbrixlib::detail
