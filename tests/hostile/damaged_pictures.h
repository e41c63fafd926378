// SPDX-License-Identifier: MIT
#pragma once

#include "picture_files.h"

#include <random>

namespace umbrixlib::test {

/// A damaged copy of @p file: cut short, with bits turned over, or with bytes replaced. Half of the changes
/// fall into the first 64 bytes, where the formats keep sizes and counts.
inline Bytes corrupted(Bytes file, std::mt19937& random)
{
    auto const below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    auto const place = [&] {
        return below(random() % 2 == 0 ? std::min<std::size_t>(64, file.size()) : file.size());
    };
    auto const times = 1 + below(8);
    switch (random() % 3) {
    case 0:
        file.resize(below(file.size()));
        break;
    case 1:
        for (std::size_t i = 0; i < times; ++i) {
            file[place()] ^= static_cast<std::uint8_t>(1U << below(8));
        }
        break;
    default:
        for (std::size_t i = 0; i < times; ++i) {
            constexpr std::uint8_t kTelling[] = {0, 1, 0x7f, 0x80, 0xfe, 0xff};
            file[place()] = random() % 2 == 0 ? kTelling[below(6)] : static_cast<std::uint8_t>(random());
        }
    }
    return file;
}

} // namespace umbrixlib::test
