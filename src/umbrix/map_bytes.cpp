// SPDX-License-Identifier: MIT
#include "umbrix/map_bytes_internal.h"

#include "foundation/rounding.h"

#include <algorithm>

namespace umbrixlib::detail {

namespace {

unsigned char map_byte(float value)
{
    if (value > 1.0f) {
        return 255;
    }
    return value < 0.0f ? 0 : to_byte(wide(value) * 255.0);
}

/// @p count bytes of one texel, at most four.
void store_texel(float4 const& texel, unsigned char* bytes, int count)
{
    float const components[] = {texel.x, texel.y, texel.z, texel.w};
    for (int c = 0; c < count; ++c) {
        bytes[c] = map_byte(components[c]);
    }
}

/// How many bytes of a texel are written: its colours, and alpha if the pixel has room for it.
int stored_channels(int channels)
{
    return channels > 3 ? 4 : 3;
}

/// Texel @p i of the map. With fewer bytes per pixel than colours only the last texel writes them all.
void store_texel_of(float4 const* map, MapShape shape, unsigned char* bytes, std::ptrdiff_t i)
{
    int const stored = stored_channels(shape.channels);
    int const own = std::min(stored, shape.channels);
    store_texel(map[i], bytes + i * shape.channels, i + 1 < shape.texels() ? own : stored);
}

} // namespace

void store_bytes(float4 const* map, MapShape shape, unsigned char* bytes, int thread, int threads)
{
    std::ptrdiff_t const texels = shape.texels();
    for (std::ptrdiff_t i = thread; i < texels; i += threads) {
        store_texel_of(map, shape, bytes, i);
    }
}

void store_bytes(float4 const* map, MapShape shape, unsigned char* bytes)
{
    std::ptrdiff_t const texels = shape.texels();
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        store_texel_of(map, shape, bytes, i);
    }
}

void store_bytes_reversed(float4 const* map, MapShape shape, RowsFrom rows_from, unsigned char* bytes,
                          int* progress)
{
    int const last_row = (rows_from == RowsFrom::kWidth ? shape.cols : shape.rows) - 1;
    for (int row = 0; row < shape.rows; ++row) {
        int const source_row = last_row - row;
        bool const inside = source_row >= 0 && source_row < shape.rows;
        for (int col = 0; col < shape.cols; ++col) {
            float4 const texel =
                inside ? map[static_cast<std::ptrdiff_t>(source_row) * shape.cols + col] : float4{};
            std::ptrdiff_t const target = static_cast<std::ptrdiff_t>(row) * shape.cols + col;
            store_texel(texel, bytes + target * shape.channels, stored_channels(shape.channels));
        }
        *progress = to_int(wide(static_cast<float>(row)) /
                           wide(static_cast<float>(static_cast<unsigned>(shape.rows))) * 1000.0);
    }
}

} // namespace umbrixlib::detail
