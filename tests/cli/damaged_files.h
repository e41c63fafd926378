// SPDX-License-Identifier: MIT
#pragma once

#include "picture_files.h"

namespace umbrixlib::test {

/// A Photoshop file of 7 x 5 packed texels that claims another size.
inline Bytes photoshop_file(std::uint32_t height, std::uint32_t width)
{
    Bytes file{'8', 'B', 'P', 'S', 0, 1, 0, 0, 0, 0, 0, 0, 0, 1};
    for (std::uint32_t const number : {height, width}) {
        for (unsigned shift = 32; shift > 0; shift -= 8) {
            file.push_back(static_cast<std::uint8_t>(number >> (shift - 8)));
        }
    }
    Bytes const rest{
        0, 8, 0, 1, 0, 0, 0, 0, 0, 0, 0,    0, 0,    0, 0,    0, 0,    1, // no blocks, packed rows
        0, 2, 0, 2, 0, 2, 0, 2, 0, 2, 0xfa, 7, 0xfa, 7, 0xfa, 7, 0xfa, 7, 0xfa, 7};
    file.insert(file.end(), rest.begin(), rest.end());
    file.resize(file.size() + 20);
    return file;
}

} // namespace umbrixlib::test
