// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace umbrixlib {

namespace detail {

/// @p bytes zeros straight from the system. Null if there is no such memory.
UMBRIX_API void* map_zeros(std::size_t bytes);

/// Gives back what map_zeros() has given for as many @p bytes.
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

/// @p count elements, all zero. A large array costs nothing before it is written to: its pages, large ones
/// where the system has them, come with the first access to each, so the threads that fill it share that
/// work, and what nobody touches takes no memory.
///
/// Errors: std::bad_alloc.
template <typename T>
TexelArray<T> make_texel_array(std::size_t count)
{
    constexpr std::size_t kLarge = (std::size_t{4} << 20) / sizeof(T);
    constexpr std::size_t kTooLarge = SIZE_MAX / 2 / sizeof(T);
    if (count >= kLarge && count <= kTooLarge) {
        if (void* const zeros = detail::map_zeros(count * sizeof(T))) {
            return TexelArray<T>(static_cast<T*>(zeros), {count * sizeof(T)});
        }
    }
    return TexelArray<T>(new T[count](), {});
}

} // namespace umbrixlib
