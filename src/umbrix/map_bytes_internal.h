// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"
#include "filters/narrowing_internal.h"

#include <cstddef>

namespace umbrixlib::detail {

/// The picture's size and its bytes per pixel.
struct MapShape {
    int rows;
    int cols;
    int channels;

    std::ptrdiff_t texels() const { return static_cast<std::ptrdiff_t>(rows) * cols; }
};

/// Whose are the bytes that a texel's three colours reach over into, with fewer than three bytes per pixel:
/// the next texel's, which has the last word on its own bytes, or, where nobody writes that texel, its own.
enum class Overhang { kOfNextTexel, kWritten };

/// At most kByteBlock texels, from @p first on, from colours and alphas that lie apart; else as
/// `store_bytes`.
void store_block(float3 const* colours, float const* alphas, std::ptrdiff_t first, std::ptrdiff_t count,
                 MapShape shape, unsigned char* bytes, Overhang overhang = Overhang::kOfNextTexel);

/// Texels @p first to @p last - 1 of a map as bytes, for every name but a ".vtf" one.
///
/// @param texels   Those texels alone.
/// @param bytes    Of the whole map.
/// @param overhang Of texel @p last - 1. The last texel of the map always writes all its colours.
void store_bytes(float4 const* texels, std::ptrdiff_t first, std::ptrdiff_t last, MapShape shape,
                 unsigned char* bytes, Overhang overhang = Overhang::kOfNextTexel);

/// All texels of @p map on the default team, to the same bytes.
void store_bytes(float4 const* map, MapShape shape, unsigned char* bytes);

/// What the rows of a reversed picture are counted from.
enum class RowsFrom {
    /// Contract: output row r comes from row cols - 1 - r, so the map is taken to be square. Counting from
    /// the number of rows is expected; on another shape rows outside the map come out black. Test:
    /// UmbrixFileStoring.AVtfPictureCountsItsRowsFromTheWidth
    kWidth,
    /// Output row r comes from row rows - 1 - r, which is right for every shape.
    kHeight,
};

/// All of @p map as bytes, rows reversed, as a ".vtf" picture needs it. @p progress goes from 0 to below
/// 1000.
void store_bytes_reversed(float4 const* map, MapShape shape, RowsFrom rows_from, unsigned char* bytes,
                          int* progress);

} // namespace umbrixlib::detail
