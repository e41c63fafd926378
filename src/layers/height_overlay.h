// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace umbrixlib::detail {

/// Fades @p blend to the overlay of @p layer on it, by @p fraction, over @p count heights in a row. The
/// overlay is weighted by the blend itself, which is not limited to 0..1.
void overlay_heights(float* blend, float const* layer, float fraction, std::size_t count);

} // namespace umbrixlib::detail
