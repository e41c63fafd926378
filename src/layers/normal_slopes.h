// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Arithmetic of blended normals, over @p count vectors in a row. A normal is brought into a form in which a
/// blend of components means something, a slope (z = 1) or a colour (0..1), and back to a unit vector.
///
/// Nothing is checked. With z = 0 a slope is infinite or NaN, and its unit vector NaN. A normal that points
/// down comes out of a slope turned round.

#include "foundation/vector_types.h"

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

/// Slopes of the product of two reliefs, where a slope weighs as much as the other relief is high, faded in
/// by
/// @p fraction.
/// @param normals        What is blended so far; unit vectors in and out.
/// @param heights        The relief behind it.
/// @param layer          Normals that join.
/// @param layer_heights  The relief behind them.
void multiply_slopes(float3* normals, float const* heights, float3 const* layer, float const* layer_heights,
                     float fraction, std::size_t count);

/// Slopes of the sum of two reliefs, faded in by @p fraction.
void add_slopes(float3* normals, float3 const* layer, float fraction, std::size_t count);

} // namespace umbrixlib::detail
