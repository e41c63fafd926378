// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace umbrixlib::toolkit {

/// A block of 4 x 4 texels of red, green, blue and alpha, 0 to 255, row by row from the top.
using ColourBlock = std::array<std::array<float, 4>, 16>;

/// The same as BC7 has it in its mode 6: two colours of 7 bits a channel with a common last bit each, and for
/// each texel which of 16 colours from one to the other it is.
using CodedColours = std::array<std::uint8_t, 16>;

/// Packs @p block. The line that the colours lie along is their principal axis; colours and choices are then
/// fitted to each other by least squares, for each pair of last bits, as long as the error falls. The error
/// is the sum of squares over all channels. A block whose alpha is 255 throughout stays so, and then no other
/// channel reaches 0: 1 is the least.
CodedColours encode_colours(ColourBlock const& block);

} // namespace umbrixlib::toolkit
