// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/large_array_internal.h"
#include "common/vector_types.h"
#include "foundation/picture_view.h"

namespace umbrixlib::detail {

/// Texels that are added at each end of a row and of a column.
struct Margins {
    int columns = 0;
    int rows = 0;
};

/// The margins that keep filters from looking across the borders that do not repeat. @p reach: how far they
/// look, in texels. None is as wide as the picture.
Margins margins_for(Borders const& borders, int height, int width, double reach);

/// How far a blur of that sigma and a bilateral filter of that radius look, and the difference after them.
double reach_of(float gaussian, float bilateral_radius);

/// @p picture, of floats or colours, with its margins: each texel there mirrors one of the picture about the
/// texel on the border, in place and in value. So a slope goes on as it is, and the difference across the
/// border is that at its inner side.
LargeArray<float> with_margins(float const* picture, int height, int width, Margins const& margins);
LargeArray<float3> with_margins(float3 const* picture, int height, int width, Margins const& margins);

/// Copies what lies between the margins of @p extended, which is @p height x @p width texels.
void copy_without_margins(float3 const* extended, float3* picture, int height, int width,
                          Margins const& margins);

} // namespace umbrixlib::detail
