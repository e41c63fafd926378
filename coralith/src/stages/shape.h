// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"

#include <cstddef>

namespace coralith {

/// Size of a map; both sides above 0.
struct Shape {
    int rows;
    int cols;

    Index texels() const { return Index{rows} * cols; }
    /// Bytes of a buffer with @p components four-byte numbers a texel.
    std::size_t bytes(int components) const
    {
        return static_cast<std::size_t>(texels()) * static_cast<std::size_t>(components) * sizeof(float);
    }
};

} // namespace coralith
