// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <array>
#include <cstdint>
#include <span>

namespace umbrixlib::toolkit {

/// Red, green and blue from cyan, magenta, yellow and black of 8 or 16 bits, without a profile: a colour is
/// what neither its ink nor black takes away. 0 is no ink. A fifth channel stays, as alpha.
Picture from_inks(Picture const& inks);

/// X, Y and Z of the CIE, in floats, become linear red, green and blue of Rec. 709 with the white of D65.
void make_rgb_of_xyz(Picture& picture);

/// Colours that were multiplied with their alpha as they were before. Those of no alpha stay; halves become
/// floats.
Picture divided_by_alpha(Picture&& picture);

/// The colours of a palette by the numbers in @p indexes, of 8 or 16 bits. Each of @p palette's three spans
/// holds a colour for every number. Colours that 8 bits can hold are of 8 bits.
Picture colours_of(Picture const& indexes, std::array<std::span<std::uint16_t const>, 3> const& palette);

} // namespace umbrixlib::toolkit
