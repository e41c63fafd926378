// SPDX-License-Identifier: MIT
#include "umbrix/map_bytes_internal.h"

#include "common/rounding.h"

#include <algorithm>
#include <vector>

namespace umbrixlib::detail {

void store_block(float3 const* colours, float const* alphas, std::ptrdiff_t first, std::ptrdiff_t count,
                 MapShape shape, unsigned char* bytes, Overhang overhang)
{
    unsigned char* target = bytes + first * shape.channels;
    if (shape.channels == 3) {
        to_map_bytes(&colours->x, 3 * count, target);
        return;
    }
    unsigned char of_colours[3 * kByteBlock];
    unsigned char of_alphas[kByteBlock];
    to_map_bytes(&colours->x, 3 * count, of_colours);
    to_map_bytes(alphas, count, of_alphas);
    bool const is_end = overhang == Overhang::kWritten || first + count == shape.texels();
    int const own = std::min(shape.channels, 3);
    for (std::ptrdiff_t i = 0; i < count; ++i, target += shape.channels) {
        std::copy_n(of_colours + 3 * i, is_end && i + 1 == count ? 3 : own, target);
        if (shape.channels > 3) {
            target[3] = of_alphas[i];
        }
    }
}

void store_bytes(float4 const* texels, std::ptrdiff_t first, std::ptrdiff_t last, MapShape shape,
                 unsigned char* bytes, Overhang overhang)
{
    float3 colours[kByteBlock];
    float alphas[kByteBlock];
    for (std::ptrdiff_t at = first; at < last; at += kByteBlock, texels += kByteBlock) {
        std::ptrdiff_t const count = std::min(kByteBlock, last - at);
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            colours[i] = {texels[i].x, texels[i].y, texels[i].z};
            alphas[i] = texels[i].w;
        }
        store_block(colours, alphas, at, count, shape, bytes,
                    at + count == last ? overhang : Overhang::kOfNextTexel);
    }
}

void store_bytes(float4 const* map, MapShape shape, unsigned char* bytes)
{
    constexpr std::ptrdiff_t kShare = 16 * kByteBlock; // texels that a thread takes at once
    std::ptrdiff_t const texels = shape.texels();
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t first = 0; first < texels; first += kShare) {
        store_bytes(map + first, first, std::min(first + kShare, texels), shape, bytes);
    }
}

void store_bytes_reversed(float4 const* map, MapShape shape, RowsFrom rows_from, unsigned char* bytes,
                          int* progress)
{
    std::vector<float4> const black(static_cast<std::size_t>(std::max(shape.cols, 0)));
    int const last_row = (rows_from == RowsFrom::kWidth ? shape.cols : shape.rows) - 1;
    for (int row = 0; row < shape.rows; ++row) {
        int const source_row = last_row - row;
        bool const inside = source_row >= 0 && source_row < shape.rows;
        float4 const* const source =
            inside ? map + static_cast<std::ptrdiff_t>(source_row) * shape.cols : black.data();
        std::ptrdiff_t const first = static_cast<std::ptrdiff_t>(row) * shape.cols;
        store_bytes(source, first, first + shape.cols, shape, bytes);
        *progress = to_int(wide(static_cast<float>(row)) /
                           wide(static_cast<float>(static_cast<unsigned>(shape.rows))) * 1000.0);
    }
}

} // namespace umbrixlib::detail
