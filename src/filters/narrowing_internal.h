// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "filters/narrowing.h"

#include <cstddef>

namespace umbrixlib::detail {

/// Values that are made into bytes at once: three colours of this many texels.
inline constexpr std::ptrdiff_t kByteBlock = 256;

/// Bytes of at most 3 * kByteBlock values of a map.
void to_map_bytes(float const* values, std::ptrdiff_t count, unsigned char* bytes);

/// normal_byte() of at most 3 * kByteBlock components.
void to_normal_bytes(float const* components, std::ptrdiff_t count, unsigned char* bytes);

/// -1..1 as 0..255, truncated. What lies outside wraps around.
inline unsigned char normal_byte(float component)
{
    return to_byte((wide(component) + 1.0) * 0.5 * 255.0);
}

/// Heights stretched from 0, the lowest one, to 1, the highest one.
class HeightStretch {
public:
    HeightStretch(float const* heights, std::ptrdiff_t texels)
    {
        if (texels > 0) {
            low_ = high_ = heights[0];
        }
        for (std::ptrdiff_t i = 0; i < texels; ++i) {
            low_ = low_ > heights[i] ? heights[i] : low_;
            high_ = heights[i] > high_ ? heights[i] : high_;
        }
        range_ = high_ - low_;
    }

    /// Not a number if all heights are alike.
    float operator()(float height) const
    {
        float const above_low = height - low_;
        return above_low / range_;
    }
    /// The same as a byte; 0 if all are alike.
    unsigned char byte(float height) const { return to_byte(wide((*this)(height)) * 255.0); }
    bool is_flat() const { return !(range_ > 0.0f); }

private:
    float low_ = 0.0f;
    float high_ = 0.0f;
    float range_;
};

} // namespace umbrixlib::detail
