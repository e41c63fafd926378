// SPDX-License-Identifier: MIT
#pragma once

#include "picture_files.h"

namespace umbrixlib::test {

/// A GIF of 128 greys. Its codes are all nine bits wide: the table is cleared before it would grow.
inline Bytes gif_bytes(int width, int height, Bytes const& greys)
{
    auto const low = [](int value) { return static_cast<std::uint8_t>(value & 255); };
    auto const high = [](int value) { return static_cast<std::uint8_t>(value >> 8); };
    Bytes file{'G', 'I', 'F', '8', '9', 'a', low(width), high(width), low(height), high(height), 0xf7, 0, 0};
    for (int grey = 0; grey < 256; ++grey) {
        file.insert(file.end(), 3, static_cast<std::uint8_t>(grey));
    }
    file.insert(file.end(), {',', 0, 0, 0, 0, low(width), high(width), low(height), high(height), 0, 8});
    Bytes codes;
    std::uint32_t pending = 0;
    unsigned bits = 0;
    auto const put = [&](std::uint32_t code) {
        pending |= code << bits;
        for (bits += 9; bits >= 8; bits -= 8) {
            codes.push_back(static_cast<std::uint8_t>(pending));
            pending >>= 8U;
        }
    };
    constexpr std::uint32_t kClear = 256;
    constexpr std::uint32_t kEnd = 257;
    for (std::size_t i = 0; i < greys.size(); ++i) {
        if (i % 200 == 0) {
            put(kClear);
        }
        put(greys[i]);
    }
    put(kEnd);
    put(0); // brings the last bits out
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        std::size_t const length = std::min<std::size_t>(255, codes.size() - at);
        file.push_back(static_cast<std::uint8_t>(length));
        file.insert(file.end(), codes.begin() + static_cast<std::ptrdiff_t>(at),
                    codes.begin() + static_cast<std::ptrdiff_t>(at + length));
    }
    file.insert(file.end(), {0, ';'});
    return file;
}

} // namespace umbrixlib::test
