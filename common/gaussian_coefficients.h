// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::detail {

/// What the recursive Gaussian derives from a standard deviation.
struct GaussianCoefficients {
    float a0, a1, a2, a3; ///< Feed-forward: the first two run forward, the others backward.
    float b1, b2;         ///< Feedback, of both directions.
    float edge_forward;   ///< Gain of a start from the edge pixel; handed over, never read by the passes.
    float edge_backward;  ///< The same for the backward direction.
};

/// The coefficients for @p sigma, in pixels; below 0.1 it counts as 0.1. NaN gives NaN throughout.
///
/// Method: second-order recursion, R. Deriche, Fast Algorithms for Low-Level Vision, IEEE PAMI 12(1), 1990.
GaussianCoefficients gaussian_coefficients(float sigma);

} // namespace umbrixlib::detail
