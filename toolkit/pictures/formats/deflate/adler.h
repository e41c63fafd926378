// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace umbrixlib::toolkit {

/// The Adler-32 of two strings, one behind the other, of theirs and the length of the second.
constexpr std::uint32_t joined_adler(std::uint32_t first, std::uint32_t second, std::size_t second_length)
{
    constexpr std::uint64_t kBase = 65521;
    std::uint64_t const low = first & 0xffffU;
    std::uint64_t const joined_low = (low + (second & 0xffffU) + kBase - 1) % kBase;
    std::uint64_t const joined_high =
        ((first >> 16U) + (second >> 16U) + (low + kBase - 1) % kBase * (second_length % kBase)) % kBase;
    return static_cast<std::uint32_t>(joined_high << 16U | joined_low);
}

} // namespace umbrixlib::toolkit
