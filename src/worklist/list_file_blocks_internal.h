// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The parts of a list file. All numbers are little-endian; a text is its length in four bytes, then its
/// characters. A file is the version, the number of jobs and the jobs; a job is a block of numbers, its
/// source, its pattern, the number of its layers and the layers; a layer is its file name, its name and a
/// block of numbers. Blocks are written field by field, so they do not depend on how records lie in memory.

#include "foundation/n_layer.h"
#include "worklist/umbrix_data.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace umbrixlib::detail {

inline constexpr float kListVersion = 5.2f;

using DataBlock = std::array<unsigned char, 92>;
using LayerBlock = std::array<unsigned char, 40>;
using NumberBlock = std::array<unsigned char, 4>;

/// What a job and a layer take at least, with empty texts and no layers.
inline constexpr std::size_t kLeastJobBytes = sizeof(DataBlock) + 3 * sizeof(NumberBlock);
inline constexpr std::size_t kLeastLayerBytes = sizeof(LayerBlock) + 2 * sizeof(NumberBlock);

/// Bytes of a block between its fields are zero.
DataBlock to_block(umbrix_data const& data);
LayerBlock to_block(n_layer const& layer);

/// Every pattern of bytes is a value; a bool is true unless its byte is zero.
void from_block(DataBlock const& block, umbrix_data& data);
/// Leaves the names and `regenerate` alone.
void from_block(LayerBlock const& block, n_layer& layer);

inline NumberBlock to_block(std::uint32_t bits)
{
    NumberBlock block;
    for (unsigned i = 0; i < block.size(); ++i) {
        block[i] = static_cast<unsigned char>(bits >> (8U * i) & 0xffU);
    }
    return block;
}

inline std::uint32_t from_block(NumberBlock const& block)
{
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < block.size(); ++i) {
        bits |= static_cast<std::uint32_t>(block[i]) << (8U * i);
    }
    return bits;
}

} // namespace umbrixlib::detail
