// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Sizes and thread counts that the kernels are tried with.

#include <cstddef>
#include <omp.h>
#include <random>
#include <utility>
#include <vector>

namespace velloric::test {

struct Size {
    int height;
    int width;

    std::size_t texels() const { return static_cast<std::size_t>(height) * static_cast<std::size_t>(width); }
};

/// One texel, single rows and columns, sizes around those of registers, and random ones up to 67 a side.
inline std::vector<Size> sizes()
{
    std::vector<Size> result = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 15}, {4, 16}, {5, 17}, {2, 64}, {3, 65}};
    std::mt19937 generator(7);
    auto const side = [&] { return static_cast<int>(generator() % 67 + 1); };
    for (int i = 0; i < 8; ++i) {
        int const height = side();
        result.push_back({height, side()});
    }
    return result;
}

/// Runs @p body on teams of 1, 2 and 3 threads.
template <typename Body>
void for_every_team(Body&& body)
{
    int const usual = omp_get_max_threads();
    for (int const threads : {1, 2, 3}) {
        omp_set_num_threads(threads);
        std::forward<Body>(body)(threads);
    }
    omp_set_num_threads(usual);
}

} // namespace velloric::test
