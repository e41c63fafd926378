// SPDX-License-Identifier: MIT
#pragma once

#include "layers/nlayers.h"

#include <cstddef>
#include <memory>

namespace umbrixlib::detail {

/// How a record joins the layer after its own; any other value adds.
enum LayerBlend { kLayerBlend = 0, kLayerOverlay = 1, kLayerMultiply = 2 };

constexpr std::ptrdiff_t texels_of(layer_size size)
{
    return static_cast<std::ptrdiff_t>(size.height) * size.width;
}

constexpr bool same_size(layer_size a, layer_size b)
{
    return a.height == b.height && a.width == b.width;
}

/// One layer's entries in the lists of a stack. Its buffers, where it has them, have room for its size.
struct Layer {
    float3* normals;
    float* heights;
    layer_size size;

    std::ptrdiff_t texels() const { return texels_of(size); }
};

inline bool is_layer(NLayers const& stack, int index)
{
    return index >= 0 && index < stack.normals.count;
}

/// Layer @p index; a blank one if there is none.
inline Layer layer_at(NLayers const& stack, int index)
{
    if (!is_layer(stack, index)) {
        return {};
    }
    return {stack.normals.Get(index), stack.heights.Get(index), stack.sizes.Get(index)};
}

/// The caller's record of layer @p index, or null if there is none.
inline n_layer* record_at(NLayers const& stack, int index)
{
    bool const listed = stack.records != nullptr && index >= 0 && index < stack.records->count;
    return listed ? stack.records->GetRef(index) : nullptr;
}

/// Zeros for a layer of @p size.
template <typename T>
std::unique_ptr<T[]> make_layer_buffer(layer_size size)
{
    return std::make_unique<T[]>(static_cast<std::size_t>(texels_of(size)));
}

/// Puts a layer behind the last one; null stands for a buffer that it has not.
inline void append_layer(NLayers& stack, std::unique_ptr<float3[]> normals, std::unique_ptr<float[]> heights,
                         layer_size size)
{
    stack.normals.Add(normals.release());
    stack.heights.Add(heights.release());
    stack.sizes.Add(size);
}

inline void set_regenerate(NLayers const& stack, int index, bool regenerate)
{
    if (n_layer* const record = record_at(stack, index)) {
        record->regenerate = regenerate;
    }
}

} // namespace umbrixlib::detail
