// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

namespace umbrixlib::toolkit {

/// Whether @p value is a whole number; infinity and NaN are none.
inline bool is_whole(double value)
{
    return std::fmod(value, 1.0) == 0.0;
}

} // namespace umbrixlib::toolkit
