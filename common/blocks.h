// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>

namespace umbrixlib::detail {

/// Runs @p body on blocks of @p count texels, on all threads: (first texel, number of texels). Too few texels
/// for two blocks stay with the calling thread.
template <typename Body>
void for_blocks(std::ptrdiff_t count, Body body)
{
    constexpr std::ptrdiff_t kBlock = 4096;
    std::ptrdiff_t const blocks = count < 1 ? 0 : (count - 1) / kBlock + 1;
#pragma omp parallel for schedule(static) if (blocks > 1)
    for (std::ptrdiff_t block = 0; block < blocks; ++block) {
        std::ptrdiff_t const begin = block * kBlock;
        body(begin, static_cast<std::size_t>(std::min(kBlock, count - begin)));
    }
}

} // namespace umbrixlib::detail
