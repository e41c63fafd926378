// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The blends of @p count values in a row. Operands are widened to double, the result is rounded once. @p
/// result may be @p first or @p second. A @p share of 0 gives @p first, 1 the full effect.

#include <cstddef>

namespace velloric {

void cross_fade_row(float const* first, float const* second, float* result, std::size_t count, double share);

/// Fades to the overlay of @p second on @p first: their product, doubled, where the first is at most one
/// half, else the complement of that of their complements.
void overlay_fade_row(float const* first, float const* second, float* result, std::size_t count,
                      double share);

} // namespace velloric
