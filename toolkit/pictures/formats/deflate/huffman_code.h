// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// The bits that each symbol takes in a Huffman code for @p counts: 0 where the count is, and at most
/// @p limit, for which the counts are made more alike as long as it needs. A single symbol takes 1 bit.
std::vector<std::uint8_t> code_lengths(std::span<std::uint32_t const> counts, unsigned limit);

/// The codes of these lengths as Deflate has them, the first bit the lowest.
std::vector<std::uint16_t> codes_of(std::span<std::uint8_t const> lengths);

/// Whether codes of these lengths can be told apart.
bool is_prefix_code(std::span<std::uint8_t const> lengths);

} // namespace umbrixlib::toolkit
