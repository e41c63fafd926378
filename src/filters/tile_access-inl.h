// SPDX-License-Identifier: MIT

/// @file
/// Copies a bundle of lines out of an image into a tile and back, once per instruction set. In the tile the
/// lines lie side by side: position by position, within it component by component, within it line by line. On
/// the way back the results of the two directions are added.

#if defined(UMBRIX_FILTERS_TILE_ACCESS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef UMBRIX_FILTERS_TILE_ACCESS_INL_H
#undef UMBRIX_FILTERS_TILE_ACCESS_INL_H
#else
#define UMBRIX_FILTERS_TILE_ACCESS_INL_H
#endif

#include "filters/recursive_gaussian_tile.h"

#include <cstddef>
#include <cstring>
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// A tile's place in its pass.
struct TileLines {
    std::size_t first;    ///< The line in lane 0.
    std::size_t count;    ///< Lines of the pass in the tile, 1 to `capacity`.
    std::size_t capacity; ///< Lanes per component.

    /// The line in @p lane; lanes beyond the pass repeat its last line.
    HWY_INLINE std::size_t line(std::size_t lane) const { return first + HWY_MIN(lane, count - 1); }
};

// Neighbouring columns of single floats: a row of the tile is a piece of a row of the image.

/// Copies a tile that is full. The rows lie too far apart for the processor to see them coming, so they are
/// asked for in advance. A call of memcpy for so few floats would cost a fifth of the filter.
HWY_INLINE void gather_full(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    constexpr hn::ScalableTag<float> d;
    constexpr std::size_t kRowsAhead = 8;
    constexpr std::size_t kCacheLine = 16; // floats that come into the cache together
    for (std::size_t position = 0; position < pass.length; ++position) {
        float const* const from = pass.input + lines.first + position * pass.position_step;
        if (position + kRowsAhead < pass.length) {
            for (std::size_t lane = 0; lane < lines.capacity; lane += kCacheLine) {
                hwy::Prefetch(from + kRowsAhead * pass.position_step + lane);
            }
        }
        for (std::size_t lane = 0; lane < lines.capacity; lane += hn::Lanes(d)) {
            hn::Store(hn::LoadU(d, from + lane), d, tile + lane);
        }
        tile += lines.capacity;
    }
}

HWY_INLINE void gather_adjacent(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    if (lines.count == lines.capacity) {
        gather_full(pass, lines, tile);
        return;
    }
    for (std::size_t position = 0; position < pass.length; ++position) {
        float const* const from = pass.input + lines.first + position * pass.position_step;
        std::memcpy(tile, from, lines.count * sizeof(float));
        std::memset(tile + lines.count, 0, (lines.capacity - lines.count) * sizeof(float));
        tile += lines.capacity;
    }
}

HWY_INLINE void scatter_adjacent(GaussianPass const& pass, TileLines lines, float const* HWY_RESTRICT forward,
                                 float const* HWY_RESTRICT backward)
{
    constexpr hn::ScalableTag<float> d;
    for (std::size_t position = 0; position < pass.length; ++position) {
        float* const to = pass.output + lines.first + position * pass.position_step;
        std::size_t lane = 0;
        for (; lane + hn::Lanes(d) <= lines.count; lane += hn::Lanes(d)) {
            hn::StoreU(hn::Add(hn::LoadU(d, forward + lane), hn::LoadU(d, backward + lane)), d, to + lane);
        }
        for (; lane < lines.count; ++lane) {
            to[lane] = forward[lane] + backward[lane];
        }
        forward += lines.capacity;
        backward += lines.capacity;
    }
}

// Rows: a line's floats lie in one piece, and the tile is their transposition.

/// Floats from @p begin on, one by one.
HWY_INLINE void gather_row_ends(GaussianPass const& pass, TileLines lines, std::size_t begin,
                                float* HWY_RESTRICT tile)
{
    for (std::size_t lane = 0; lane < lines.capacity; ++lane) {
        float const* const from = pass.input + lines.line(lane) * pass.line_step;
        for (std::size_t k = begin; k < pass.length * pass.components; ++k) {
            tile[k * lines.capacity + lane] = from[k];
        }
    }
}

HWY_INLINE void scatter_row_ends(GaussianPass const& pass, TileLines lines, std::size_t begin,
                                 float const* HWY_RESTRICT forward, float const* HWY_RESTRICT backward)
{
    for (std::size_t lane = 0; lane < lines.count; ++lane) {
        float* const to = pass.output + (lines.first + lane) * pass.line_step;
        for (std::size_t k = begin; k < pass.length * pass.components; ++k) {
            to[k] = forward[k * lines.capacity + lane] + backward[k * lines.capacity + lane];
        }
    }
}

#if HWY_TARGET == HWY_SCALAR

HWY_INLINE void gather_rows(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    gather_row_ends(pass, lines, 0, tile);
}

HWY_INLINE void scatter_rows(GaussianPass const& pass, TileLines lines, float const* HWY_RESTRICT forward,
                             float const* HWY_RESTRICT backward)
{
    scatter_row_ends(pass, lines, 0, forward, backward);
}

#else

inline constexpr std::size_t kQuad = 4;       ///< Side of the blocks that are transposed in registers.
inline constexpr std::size_t kCacheLine = 16; ///< Floats that come into the cache together.
using Quad = hn::FixedTag<float, kQuad>;

/// Transposes four rows of four floats in place.
HWY_INLINE void transpose(hn::Vec<Quad>& row0, hn::Vec<Quad>& row1, hn::Vec<Quad>& row2, hn::Vec<Quad>& row3)
{
    constexpr Quad d;
    auto const low01 = hn::InterleaveLower(d, row0, row1);
    auto const low23 = hn::InterleaveLower(d, row2, row3);
    auto const high01 = hn::InterleaveUpper(d, row0, row1);
    auto const high23 = hn::InterleaveUpper(d, row2, row3);
    row0 = hn::ConcatLowerLower(d, low23, low01);
    row1 = hn::ConcatUpperUpper(d, low23, low01);
    row2 = hn::ConcatLowerLower(d, high23, high01);
    row3 = hn::ConcatUpperUpper(d, high23, high01);
}

/// Takes a whole cache line of every row before it moves on: rows of a power of two share their cache sets.
HWY_INLINE void gather_rows(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    constexpr Quad d;
    std::size_t const whole = pass.length * pass.components / kQuad * kQuad;
    for (std::size_t begin = 0; begin < whole; begin += kCacheLine) {
        std::size_t const end = HWY_MIN(begin + kCacheLine, whole);
        for (std::size_t lane = 0; lane < lines.capacity; lane += kQuad) {
            float const* const from0 = pass.input + lines.line(lane) * pass.line_step;
            float const* const from1 = pass.input + lines.line(lane + 1) * pass.line_step;
            float const* const from2 = pass.input + lines.line(lane + 2) * pass.line_step;
            float const* const from3 = pass.input + lines.line(lane + 3) * pass.line_step;
            for (std::size_t k = begin; k < end; k += kQuad) {
                auto row0 = hn::LoadU(d, from0 + k);
                auto row1 = hn::LoadU(d, from1 + k);
                auto row2 = hn::LoadU(d, from2 + k);
                auto row3 = hn::LoadU(d, from3 + k);
                transpose(row0, row1, row2, row3);
                float* const to = tile + k * lines.capacity + lane;
                hn::Store(row0, d, to);
                hn::Store(row1, d, to + lines.capacity);
                hn::Store(row2, d, to + 2 * lines.capacity);
                hn::Store(row3, d, to + 3 * lines.capacity);
            }
        }
    }
    gather_row_ends(pass, lines, whole, tile);
}

HWY_INLINE void scatter_rows(GaussianPass const& pass, TileLines lines, float const* HWY_RESTRICT forward,
                             float const* HWY_RESTRICT backward)
{
    constexpr Quad d;
    std::size_t const whole = pass.length * pass.components / kQuad * kQuad;
    for (std::size_t begin = 0; begin < whole; begin += kCacheLine) {
        std::size_t const end = HWY_MIN(begin + kCacheLine, whole);
        for (std::size_t lane = 0; lane < lines.count; lane += kQuad) {
            float* const to = pass.output + (lines.first + lane) * pass.line_step;
            std::size_t const rows = HWY_MIN(kQuad, lines.count - lane);
            for (std::size_t k = begin; k < end; k += kQuad) {
                auto const sum = [&](std::size_t i) HWY_ATTR {
                    std::size_t const at = (k + i) * lines.capacity + lane;
                    return hn::Add(hn::Load(d, forward + at), hn::Load(d, backward + at));
                };
                auto row0 = sum(0);
                auto row1 = sum(1);
                auto row2 = sum(2);
                auto row3 = sum(3);
                transpose(row0, row1, row2, row3);
                hn::StoreU(row0, d, to + k);
                if (HWY_LIKELY(rows > 1)) {
                    hn::StoreU(row1, d, to + pass.line_step + k);
                }
                if (HWY_LIKELY(rows > 2)) {
                    hn::StoreU(row2, d, to + 2 * pass.line_step + k);
                }
                if (HWY_LIKELY(rows > 3)) {
                    hn::StoreU(row3, d, to + 3 * pass.line_step + k);
                }
            }
        }
    }
    scatter_row_ends(pass, lines, whole, forward, backward);
}

#endif

// Lines with a stride: some of the columns, or pixels with several components.

HWY_INLINE void gather_apart(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    for (std::size_t position = 0; position < pass.length; ++position) {
        float const* const from = pass.input + position * pass.position_step;
        for (std::size_t component = 0; component < pass.components; ++component) {
            for (std::size_t lane = 0; lane < lines.capacity; ++lane) {
                *tile++ = from[lines.line(lane) * pass.line_step + component];
            }
        }
    }
}

HWY_INLINE void scatter_apart(GaussianPass const& pass, TileLines lines, float const* HWY_RESTRICT forward,
                              float const* HWY_RESTRICT backward)
{
    for (std::size_t position = 0; position < pass.length; ++position) {
        float* const to = pass.output + position * pass.position_step;
        for (std::size_t component = 0; component < pass.components; ++component) {
            for (std::size_t lane = 0; lane < lines.count; ++lane) {
                to[(lines.first + lane) * pass.line_step + component] = forward[lane] + backward[lane];
            }
            forward += lines.capacity;
            backward += lines.capacity;
        }
    }
}

// Whichever of the three fits.

HWY_INLINE bool lies_adjacent(GaussianPass const& pass)
{
    return pass.components == 1 && pass.line_step == 1;
}

HWY_INLINE bool lies_in_rows(GaussianPass const& pass)
{
    return pass.position_step == pass.components;
}

HWY_INLINE void gather(GaussianPass const& pass, TileLines lines, float* HWY_RESTRICT tile)
{
    if (lies_adjacent(pass)) {
        gather_adjacent(pass, lines, tile);
    } else if (lies_in_rows(pass)) {
        gather_rows(pass, lines, tile);
    } else {
        gather_apart(pass, lines, tile);
    }
}

HWY_INLINE void scatter(GaussianPass const& pass, TileLines lines, float const* HWY_RESTRICT forward,
                        float const* HWY_RESTRICT backward)
{
    if (lies_adjacent(pass)) {
        scatter_adjacent(pass, lines, forward, backward);
    } else if (lies_in_rows(pass)) {
        scatter_rows(pass, lines, forward, backward);
    } else {
        scatter_apart(pass, lines, forward, backward);
    }
}

} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
