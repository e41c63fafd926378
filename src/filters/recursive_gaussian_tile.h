// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The recursive Gaussian over a tile, a bundle of neighbouring lines. Lines are independent, so the lines of
/// a tile are the lanes of the vector registers. Written once, compiled for every instruction set.

#include <cstddef>

namespace umbrixlib::detail {

/// Where the recursion rounds to float.
enum class Rounding {
    kOnce,          ///< Formed in double, rounded once: `float` images.
    kEveryOperation ///< After each product, sum and difference: `float3` and `float4` images.
};

/// One of the two directions of the recursion: y = f1 * x1 + f2 * x2 - b1 * y1 - b2 * y2, from left to right,
/// y1 and y2 being the two results before. Running forward, x1 is the element itself and x2 the one before
/// it; running backward, x1 is the last element passed and x2 the one passed before that.
struct GaussianRecursion {
    float f1, f2, b1, b2;
};

/// One pass over an image: its lines, and what happens to them. Strides count floats.
struct GaussianPass {
    float const* input;
    float* output; ///< Not the input.
    Rounding rounding;
    GaussianRecursion forward, backward;
    std::size_t components;    ///< Floats in a row that make an element of a line: 1, 3 or 4.
    std::size_t lines;         ///< Number of lines.
    std::size_t line_step;     ///< From a line to the next.
    std::size_t length;        ///< Elements of a line.
    std::size_t position_step; ///< From an element of a line to the next.
};

/// How many lines make a tile of @p pass on this machine.
std::size_t gaussian_tile_lines(GaussianPass const& pass);

/// How many floats of workspace a tile of @p pass needs.
std::size_t gaussian_workspace_floats(GaussianPass const& pass);

/// Filters a tile of lines from @p first_line on; fewer lines where the pass ends.
void gaussian_filter_tile(GaussianPass const& pass, std::size_t first_line, float* workspace);

} // namespace umbrixlib::detail
