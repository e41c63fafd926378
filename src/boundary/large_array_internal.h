// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/platform.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace umbrixlib::detail {

/// Releases what `make_large_array` has made.
struct ReleaseLargeArray {
    std::size_t mapped_bytes = 0; ///< 0 for an array from the array allocator.

    template <typename T>
    void operator()(T* array) const
    {
        if (mapped_bytes != 0) {
            platform::unmap_zeros(array, mapped_bytes);
        } else {
            delete[] array;
        }
    }
};

/// An array of a picture's size that stays with the run which made it.
template <typename T>
using LargeArray = std::unique_ptr<T[], ReleaseLargeArray>;

/// @p count elements, all zero. A large array costs nothing before it is written to: its pages come with the
/// first access to each, so the threads that fill it share that work, and what nobody touches takes no
/// memory.
template <typename T>
LargeArray<T> make_large_array(std::size_t count)
{
    constexpr std::size_t kLarge = (std::size_t{4} << 20) / sizeof(T);
    constexpr std::size_t kTooLarge = SIZE_MAX / 2 / sizeof(T);
    if (count >= kLarge && count <= kTooLarge) {
        if (void* const zeros = platform::map_zeros(count * sizeof(T))) {
            return LargeArray<T>(static_cast<T*>(zeros), {count * sizeof(T)});
        }
    }
    return LargeArray<T>(new T[count](), {});
}

} // namespace umbrixlib::detail
