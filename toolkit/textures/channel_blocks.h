// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace umbrixlib::toolkit {

/// One channel of some blocks of 4 x 4 texels, side by side: a row for each texel of a block, row by row from
/// the top, and in it a number for each block.
struct ChannelBlocks {
    static constexpr std::size_t kTexels = 16;
    static constexpr std::size_t kCount = 16;

    alignas(64) float texels[kTexels][kCount]; ///< 0 to 255, not only whole numbers.
};

/// The same as BC4 has it, 8 bytes a block: two bytes, and for each texel which of eight values it is nearest
/// to: six between the two, or four between them and 0 and 255.
using CodedChannels = std::array<std::array<std::uint8_t, 8>, ChannelBlocks::kCount>;

/// Packs @p blocks. The two bytes are looked for in both forms: the ends of the block's values and some
/// inside of them, the line of least squares through the values' places, and the neighbours of the best of
/// these; the error is the sum of squares with values between that are not rounded, as graphics processors
/// have them. A block of values that both forms can hold exactly is exact. The same bytes with every
/// instruction set.
CodedChannels encode_channels(ChannelBlocks const& blocks);

} // namespace umbrixlib::toolkit
