// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Arithmetic of blended normals, over @p count vectors in a row. A normal is brought into a form in which a
/// blend of components means something, a slope (z = 1) or a colour (0..1), and back to a unit vector.
///
/// Nothing is checked. With z = 0 a slope is infinite or NaN, and its unit vector NaN. A normal that points
/// down comes out of a slope turned round.

#include "common/vector_types.h"

#include <cstddef>

namespace umbrixlib::detail {

/// Unit vectors become slopes: (x / z, y / z, 1).
void normals_to_slopes(float3* normals, std::size_t count);
/// Vectors become unit vectors.
void slopes_to_normals(float3* slopes, std::size_t count);

/// Components of -1..1 become colours of 0..1, limited to that.
void normals_to_colours(float3 const* normals, float3* colours, std::size_t count);
/// Colours, limited to 0..1, become unit vectors.
void colours_to_normals(float3 const* colours, float3* normals, std::size_t count);

/// A layer that joins by its slopes.
struct SlopeStep {
    float3 const* layer;
    /// Null to fade to the slopes of the sum of two reliefs. Else the relief behind the layer, to fade to
    /// those of the product, where a slope weighs as much as the other relief is high.
    float const* layer_heights;
    float fraction; ///< Of the other slopes in the cross-fade.
};

/// Unit vectors of @p from, after all of @p steps in turn.
/// @param steps   @p step_count of them, at least one.
/// @param heights The relief behind @p from; may be null if no step multiplies.
/// @param at      Element of all the arrays at which to begin.
void join_slopes(SlopeStep const* steps, std::size_t step_count, float3 const* from, float const* heights,
                 float3* to, std::ptrdiff_t at, std::size_t count);

} // namespace umbrixlib::detail
