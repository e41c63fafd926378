// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <cstddef>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What one channel of a picture holds, in its own numbers: 0 to 255, 0 to 65535, or any.
struct ChannelRange {
    std::string name; ///< "grey", "red", "green", "blue" or "alpha".
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    std::size_t levels = 0;  ///< Different numbers; at most kMostLevels are told apart.
    std::size_t invalid = 0; ///< NaN and infinite ones, which count in none of the above.

    bool operator==(ChannelRange const&) const = default;
};

/// As many as 16 bits have.
inline constexpr std::size_t kMostLevels = 65536;

/// All channels of @p picture, in their order.
std::vector<ChannelRange> channel_ranges(Picture const& picture);

/// Whether @p picture has 16 bits or floats, and no number in its colours that 8 bits do not have: k * 257,
/// k * 256 or k / 255.
bool has_8_bit_steps(Picture const& picture);

} // namespace umbrixlib::toolkit
