// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/grading.h"

namespace umbrixlib::detail {

/// Whether `PostProcess` changes anything with @p options.
bool grades_map(umbrix_options const& options);

/// `PreProcess` and `PostProcess`, with the same result for every team.
void grade_heights(float* heights, int rows, int cols, umbrix_options const& options);
void grade_map(float4* map, int rows, int cols, umbrix_options const& options);

} // namespace umbrixlib::detail
