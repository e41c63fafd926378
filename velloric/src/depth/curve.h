// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The curve of `ChangeDepth`. The C library's powers differ in the last bit from version to version and from
/// processor to processor, and the heights must not.

#include "depth/double_double.h"

namespace velloric {

/// scale * sign(u) * |u|^(2^depth) with u = height / scale, rounded once, to the nearest float.
///
/// The value is computed in double first. One in some hundred thousand comes so close to the middle between
/// two floats that its rounding is in doubt; it is computed again in about 90 bits. What these bits cannot
/// tell from the middle counts as the middle, and goes to the float that is even.
class DepthCurve {
public:
    /// @param scale Not 0.
    DepthCurve(float depth, float scale);

    float operator()(float height) const;

private:
    float slow(float height) const;
    float at_the_limits(float height, double ratio) const;

    double scale_;          ///< Without its sign.
    DoubleDouble exponent_; ///< 2^depth.
};

} // namespace velloric
