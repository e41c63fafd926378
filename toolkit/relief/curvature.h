// SPDX-License-Identifier: MIT
#pragma once

#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// The mean curvature of the surface that @p normals are of, for each texel: half the divergence of their x
/// and y, which is the mean of the curvatures in any two directions at right angles. In 1 / texel; above 0 on
/// ridges, below 0 in hollows, 1 / r on a ball of radius r.
///
/// A component's slope is half its difference over two texels, so the result lies in -1 to 1. A texel on a
/// border that does not repeat has the slope of its inner neighbour.
///
/// @param normals `width * height` unit vectors, row by row; y goes with the rows.
/// @param control Watches the run, and may stop it: the rest is 0 then. Null for none.
///
/// The same to the bit with any number of threads. Errors: std::bad_alloc.
/// Method: M. do Carmo, Differential Geometry of Curves and Surfaces, 1976, section 3-3.
std::vector<float> mean_curvature(float3 const* normals, int width, int height, Borders const& borders,
                                  RunControl* control = nullptr);

/// The curvature, without its sign, that a hundredth of @p curvatures are beyond; 0 if they are flat.
double common_curvature(std::vector<float> const& curvatures);

} // namespace umbrixlib::toolkit
