// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/platform.h"
#include "boundary/texel_array.h"

#include <cstddef>
#include <cstdint>

namespace umbrixlib::detail {

template <typename T>
using LargeArray = TexelArray<T>;

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
