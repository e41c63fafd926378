// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The weights of the bilateral filter. Both companions are built with this file.

namespace umbrixlib::detail {

/// One thread's share of the table for @p sigma, entries `thread`, `thread + threads`, ..., as `GenerateExp`
/// describes it.
void exp_table(float sigma, float* table, int thread, int threads);

} // namespace umbrixlib::detail
