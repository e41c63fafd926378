// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Reads the mode 6 of BC7, bit by bit as Khronos defines it (Data Format 1.3, BPTC).

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace umbrixlib::test {

using ModeSixTexels = std::array<std::array<int, 4>, 16>;

inline ModeSixTexels read_mode_six(std::span<std::uint8_t const> block)
{
    std::size_t at = 0;
    auto const take = [&](int bits) {
        int number = 0;
        for (int i = 0; i < bits; ++i, ++at) {
            number |= (block[at / 8] >> at % 8 & 1) << i;
        }
        return number;
    };
    if (take(7) != 64) {
        throw std::runtime_error("not of mode 6");
    }
    std::array<std::array<int, 4>, 2> ends{};
    for (std::size_t c = 0; c < 4; ++c) {
        ends[0][c] = take(7) << 1;
        ends[1][c] = take(7) << 1;
    }
    for (auto& end : ends) {
        int const last = take(1);
        for (int& channel : end) {
            channel |= last;
        }
    }
    constexpr int kSixtyFourths[] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};
    ModeSixTexels texels{};
    for (std::size_t i = 0; i < texels.size(); ++i) {
        int const part = kSixtyFourths[take(i == 0 ? 3 : 4)];
        for (std::size_t c = 0; c < 4; ++c) {
            texels[i][c] = ((64 - part) * ends[0][c] + part * ends[1][c] + 32) >> 6;
        }
    }
    return texels;
}

} // namespace umbrixlib::test
