// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace umbrixlib::test {

/// Of an image, in texels.
struct ImageSize {
    int width, height;

    std::size_t columns() const { return static_cast<std::size_t>(width); }
    std::size_t rows() const { return static_cast<std::size_t>(height); }
    std::size_t pixels() const { return columns() * rows(); }
};

} // namespace umbrixlib::test
