// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace umbrixlib::test {

inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Bits of a float; every value that is not a number counts as the same one.
inline std::uint32_t bits_of(float value)
{
    if (std::isnan(value)) {
        return 0x7fc00000U;
    }
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace umbrixlib::test
