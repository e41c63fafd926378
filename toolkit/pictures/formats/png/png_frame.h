// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// @file
/// What stands around the rows in a file of our encoder: a start, a chunk for each piece of the rows, an end.
/// The pieces are one zlib stream.

namespace umbrixlib::toolkit {

/// All before the first piece, with the head of the zlib stream.
std::vector<std::uint8_t> png_start(Picture const& picture);

/// All behind the last piece, with the end of the zlib stream: a last block, which is empty, and the check
/// sum @p adler of the filtered rows.
std::vector<std::uint8_t> png_end(std::uint32_t adler);

/// Adds a chunk to a file, with its length and its check sum.
void append_png_chunk(std::vector<std::uint8_t>& to, std::string_view name,
                      std::span<std::uint8_t const> content);

/// What stands before @p size bytes of a piece.
std::array<std::uint8_t, 8> png_piece_head(std::size_t size);

/// What stands behind a piece: its check sum.
std::array<std::uint8_t, 4> png_piece_tail(std::vector<std::uint8_t> const& piece);

} // namespace umbrixlib::toolkit
