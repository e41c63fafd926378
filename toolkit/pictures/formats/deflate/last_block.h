// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace umbrixlib::toolkit {

/// Where the last block of a Deflate stream begins and ends, in bits.
struct LastBlock {
    std::uint64_t begin;
    std::uint64_t end;
};

/// Walks through the blocks of @p stream, which nothing follows, without unpacking it. Empty if it is
/// damaged.
std::optional<LastBlock> find_last_block(std::span<std::uint8_t const> stream);

} // namespace umbrixlib::toolkit
