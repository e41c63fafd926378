// SPDX-License-Identifier: MIT
#include "umbrix/layer_heights_internal.h"

#include <algorithm>
#include <utility>

namespace umbrixlib::detail {

/// The stack fills as many floats as its first layer has texels, which the caller's size need not be, and may
/// put an array of that many in the place of the one that it is given.
void blend_layer_heights(NLayers& stack, Buffer<float>& heights, std::size_t texels)
{
    auto const blended_texels =
        static_cast<std::size_t>(stack.GetLayerHeight(0)) * static_cast<std::size_t>(stack.GetLayerWidth(0));
    heights.reserve(std::max(texels, blended_texels));
    std::fill_n(heights.data.get(), heights.capacity, 0.0f);
    float const* const before = heights.data.get();
    float* blended = heights.data.release();
    stack.BlendHeightMap(blended);
    heights.data.reset(blended);
    if (blended != before) {
        heights.capacity = blended_texels;
    }
    if (heights.capacity < texels) {
        Buffer<float> whole;
        whole.reserve(texels);
        std::fill(std::copy_n(blended, blended_texels, whole.data.get()), whole.data.get() + texels, 0.0f);
        heights = std::move(whole);
    }
}

HeightRange find_height_range(float const* heights, std::ptrdiff_t texels)
{
    if (texels < 1) {
        return {};
    }
    float lowest = heights[0];
    float highest = heights[0];
    for (std::ptrdiff_t i = 1; i < texels; ++i) {
        lowest = heights[i] < lowest ? heights[i] : lowest;
        highest = heights[i] > highest ? heights[i] : highest;
    }
    return {lowest, narrow(wide(highest) - wide(lowest))};
}

} // namespace umbrixlib::detail
