// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace umbrixlib::toolkit {

/// The orientation in @p exif, which begins with "II" or "MM". 1, upright, if it has none that makes sense.
int exif_orientation(std::span<std::uint8_t const> exif);

} // namespace umbrixlib::toolkit
