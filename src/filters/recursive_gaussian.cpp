// SPDX-License-Identifier: MIT
#include "filters/recursive_gaussian.h"

#include "common/gaussian_coefficients.h"
#include "filters/recursive_gaussian_tile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <hwy/aligned_allocator.h>
#include <new>
#include <omp.h>
#include <type_traits>

namespace umbrixlib::detail {
namespace {

/// Which lines of an image a pass filters.
enum class Lines { kColumns, kRows };

/// Lines @p first, first + every, and so on.
struct Selection {
    int first = 0, every = 1;
};

/// Feeds and feedbacks of both directions, in the order of the exported signatures.
struct Gains {
    float a0, a1, a2, a3, b1, b2;
};

template <typename Pixel>
GaussianPass make_pass(Pixel const* input, Pixel* output, int width, int height, Lines kind,
                       Selection selection, Gains const& gains)
{
    constexpr std::size_t kComponents = sizeof(Pixel) / sizeof(float);
    auto const columns = static_cast<std::size_t>(width);
    auto const rows = static_cast<std::size_t>(height);
    auto const first = static_cast<std::size_t>(selection.first);
    auto const every = static_cast<std::size_t>(selection.every);
    bool const down = kind == Lines::kColumns;
    std::size_t const all = down ? columns : rows;
    std::size_t const line_step = (down ? 1 : columns) * kComponents;

    GaussianPass pass{};
    pass.input = reinterpret_cast<float const*>(input) + first * line_step;
    pass.output = reinterpret_cast<float*>(output) + first * line_step;
    pass.rounding = std::is_same_v<Pixel, float> ? Rounding::kOnce : Rounding::kEveryOperation;
    pass.forward = {gains.a0, gains.a1, gains.b1, gains.b2};
    pass.backward = {gains.a2, gains.a3, gains.b1, gains.b2};
    pass.components = kComponents;
    pass.lines = first < all ? (all - first - 1) / every + 1 : 0;
    pass.line_step = line_step * every;
    pass.length = down ? rows : columns;
    pass.position_step = (down ? columns : 1) * kComponents;
    if (down && every == 1) {
        // Components are filtered alike, so whole columns of pixels are that many columns of floats.
        pass.components = 1;
        pass.lines *= kComponents;
        pass.line_step = 1;
    }
    return pass;
}

/// Filters the lines of @p pass on at most @p most_threads threads.
void run_pass(GaussianPass const& pass, int most_threads)
{
    std::size_t const tile = gaussian_tile_lines(pass);
    auto const tiles = static_cast<std::int64_t>((pass.lines + tile - 1) / tile);
    auto const threads = static_cast<int>(std::min<std::int64_t>(most_threads, tiles));
    constexpr std::size_t kAlignment = HWY_ALIGNMENT / sizeof(float);
    std::size_t const workspace =
        (gaussian_workspace_floats(pass) + kAlignment - 1) / kAlignment * kAlignment;
    auto const memory = hwy::AllocateAligned<float>(workspace * static_cast<std::size_t>(threads));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    // No if clause for a single thread: LLVM's runtime would keep its number for the next region of the
    // caller.
#pragma omp parallel for schedule(static) num_threads(threads)
    for (std::int64_t i = 0; i < tiles; ++i) {
        auto const thread = static_cast<std::size_t>(omp_get_thread_num());
        gaussian_filter_tile(pass, static_cast<std::size_t>(i) * tile, memory.get() + workspace * thread);
    }
}

template <typename Pixel>
void filter_lines(Pixel const* input, Pixel* output, int width, int height, Lines kind, Gains const& gains)
{
    if (width < 1 || height < 1) {
        return;
    }
    run_pass(make_pass(input, output, width, height, kind, {}, gains), omp_get_max_threads());
}

template <typename Pixel>
void filter_share(Pixel const* input, Pixel* output, int width, int height, Lines kind, Gains const& gains,
                  Selection selection)
{
    if (width < 1 || height < 1 || selection.first < 0 || selection.every < 1) {
        return;
    }
    GaussianPass const pass = make_pass(input, output, width, height, kind, selection, gains);
    if (pass.lines != 0) {
        run_pass(pass, 1);
    }
}

template <typename Pixel>
void gaussian_filter(Pixel* source, Pixel* destination, Pixel* scratch, int width, int height, float sigma)
{
    GaussianCoefficients const c = gaussian_coefficients(sigma);
    recursiveGaussian_rgba(source, scratch, width, height, c.a0, c.a1, c.a2, c.a3, c.b1, c.b2, c.edge_forward,
                           c.edge_backward);
    recursiveGaussianY_rgba(scratch, destination, width, height, c.a0, c.a1, c.a2, c.a3, c.b1, c.b2,
                            c.edge_forward, c.edge_backward);
}

} // namespace
} // namespace umbrixlib::detail

using umbrixlib::detail::filter_lines;
using umbrixlib::detail::filter_share;
using umbrixlib::detail::gaussian_filter;
using umbrixlib::detail::Lines;

inline namespace umbrix_v0 {

// The exported overloads of one pixel type.
#define UMBRIX_RECURSIVE_GAUSSIAN(Pixel)                                                                     \
    void gaussianFilterRGBA(Pixel* source, Pixel* destination, Pixel* scratch, int width, int height,        \
                            float sigma)                                                                     \
    {                                                                                                        \
        gaussian_filter(source, destination, scratch, width, height, sigma);                                 \
    }                                                                                                        \
    void recursiveGaussian_rgba(Pixel* input, Pixel* output, int width, int height, float a0, float a1,      \
                                float a2, float a3, float b1, float b2, float, float)                        \
    {                                                                                                        \
        filter_lines(input, output, width, height, Lines::kColumns, {a0, a1, a2, a3, b1, b2});               \
    }                                                                                                        \
    void recursiveGaussian_rgba(Pixel* input, Pixel* output, int width, int height, float a0, float a1,      \
                                float a2, float a3, float b1, float b2, float, float, int thread,            \
                                int threads)                                                                 \
    {                                                                                                        \
        filter_share(input, output, width, height, Lines::kColumns, {a0, a1, a2, a3, b1, b2},                \
                     {thread, threads});                                                                     \
    }                                                                                                        \
    void recursiveGaussianY_rgba(Pixel* input, Pixel* output, int width, int height, float a0, float a1,     \
                                 float a2, float a3, float b1, float b2, float, float)                       \
    {                                                                                                        \
        filter_lines(input, output, width, height, Lines::kRows, {a0, a1, a2, a3, b1, b2});                  \
    }                                                                                                        \
    void recursiveGaussianY_rgba(Pixel* input, Pixel* output, int width, int height, float a0, float a1,     \
                                 float a2, float a3, float b1, float b2, float, float, int thread,           \
                                 int threads)                                                                \
    {                                                                                                        \
        filter_share(input, output, width, height, Lines::kRows, {a0, a1, a2, a3, b1, b2},                   \
                     {thread, threads});                                                                     \
    }

UMBRIX_RECURSIVE_GAUSSIAN(float)
UMBRIX_RECURSIVE_GAUSSIAN(float3)
UMBRIX_RECURSIVE_GAUSSIAN(float4)
#undef UMBRIX_RECURSIVE_GAUSSIAN

} // namespace umbrix_v0
