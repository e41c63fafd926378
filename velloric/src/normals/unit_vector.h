// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "common/vector_types.h"

#include <cmath>

namespace velloric {

/// (@p x, @p y, @p z) brought to unit length; a vector without a length as it is.
inline float3 unit_vector(double x, double y, double z)
{
    using umbrixlib::detail::narrow;
    double const length = std::sqrt(y * y + x * x + z * z);
    double const divisor = length == 0.0 ? 1.0 : length;
    return {narrow(x / divisor), narrow(y / divisor), narrow(z / divisor)};
}

} // namespace velloric
