// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "foundation/retained_buffer_internal.h"
#include "layers/nlayers.h"

#include <cstddef>

namespace umbrixlib::detail {

/// Heights from the layers in @p heights, which has room for @p texels of them. Where the stack is smaller
/// than the map, zeros follow its last texel.
void blend_layer_heights(NLayers& stack, Buffer<float>& heights, std::size_t texels);

/// Where heights lie: the lowest one, and the distance from it to the highest one.
struct HeightRange {
    float lowest = 0.0f;
    float range = 0.0f;

    /// @p height on a scale of 0, the lowest one, to 1, the highest one.
    ///
    /// Contract: heights all alike divide by a range of 0; zeros are expected. They come out as NaN. Test:
    /// UmbrixFileLayers.AFlatStackDividesByZero
    float stretched(float height) const { return narrow((wide(height) - wide(lowest)) / wide(range)); }
};

/// The range of @p texels heights; all zero for none.
HeightRange find_height_range(float const* heights, std::ptrdiff_t texels);

} // namespace umbrixlib::detail
