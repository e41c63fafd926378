// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace umbrixlib::toolkit {

/// The compressions of graphics processors, which pack blocks of 4 x 4 texels: BC1 is DXT1, BC2 is DXT3, BC3
/// is DXT5.
enum class BlockForm { kBc1, kBc2, kBc3, kBc4, kBc4Signed, kBc5, kBc5Signed };

/// Bytes of a block.
constexpr std::size_t block_size(BlockForm form)
{
    return form == BlockForm::kBc1 || form == BlockForm::kBc4 || form == BlockForm::kBc4Signed ? 8 : 16;
}

/// Red, green, blue and alpha of the 16 texels of a block, row by row from the top. The numbers between its
/// two colours are rounded to the nearest.
std::array<std::uint8_t, 64> colour_block(std::span<std::uint8_t const> block, BlockForm form);

/// One channel of BC4 and BC5, of 8 bytes: 0 to 255.
std::array<std::uint8_t, 16> channel_block(std::span<std::uint8_t const> block);

/// The same with a sign: -1 to 1.
std::array<float, 16> signed_channel_block(std::span<std::uint8_t const> block);

} // namespace umbrixlib::toolkit
