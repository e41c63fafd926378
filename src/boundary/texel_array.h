// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"

#include <cstddef>
#include <memory>

namespace umbrixlib {

namespace detail {

/// Gives memory of @p bytes bytes back to the system.
UMBRIX_API void release_mapped(void* memory, std::size_t bytes);

} // namespace detail

/// Releases an array of texels, which comes from the array allocator or straight from the system.
struct ReleaseTexels {
    std::size_t mapped_bytes = 0; ///< 0 for the array allocator.

    /// Gives @p texels back to the system.
    template <typename T>
    void operator()(T* texels) const
    {
        if (mapped_bytes != 0) {
            detail::release_mapped(texels, mapped_bytes);
        } else {
            delete[] texels;
        }
    }
};

/// An array of a picture's size. It moves to its next owner and is never copied.
template <typename T>
using TexelArray = std::unique_ptr<T[], ReleaseTexels>;

} // namespace umbrixlib
