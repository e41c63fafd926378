// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// OpenEXR files of each kind, written by OpenEXRCore into memory.

#include "picture_files.h"

#include <OpenEXR/openexr.h>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <string>

namespace umbrixlib::test {

struct ExrChannelKind {
    std::string name;
    exr_pixel_type_t type = EXR_PIXEL_HALF;
    int step = 1; ///< Texels for each of its samples, in both directions.
};

struct ExrKind {
    int width = 5;
    int height = 4;
    std::vector<ExrChannelKind> channels{{"Y"}}; ///< In the order of the alphabet.
    exr_compression_t compression = EXR_COMPRESSION_NONE;
    int tile = 0; ///< Texels a side; 0: rows.
    int left = 0; ///< Of the data window.
    int top = 0;
    int shown = 0; ///< Texels a side of the display window; 0: the data window.
    bool last_row_first = false;
};

/// The bits of all samples, channel by channel, texel by texel, the top row first.
using ExrNumbers = std::vector<std::uint32_t>;

namespace exr_detail {

inline void check(exr_result_t result)
{
    if (result != EXR_ERR_SUCCESS) {
        throw std::runtime_error("OpenEXRCore has not written the file");
    }
}

inline std::int64_t put(exr_const_context_t, void* to, void const* from, std::uint64_t size,
                        std::uint64_t offset, exr_stream_error_func_ptr_t)
{
    auto& file = *static_cast<Bytes*>(to);
    file.resize(std::max<std::size_t>(file.size(), offset + size));
    std::memcpy(file.data() + offset, from, size);
    return static_cast<std::int64_t>(size);
}

/// Encodes a chunk from texel @p left, @p top on, counted from the data window's corner.
inline void encode(exr_context_t file, ExrKind const& kind, exr_chunk_info_t const& chunk,
                   Bytes const& samples, int left, int top)
{
    exr_encode_pipeline_t steps{};
    check(exr_encoding_initialize(file, 0, &chunk, &steps));
    auto const channels = static_cast<std::size_t>(steps.channel_count);
    for (std::size_t i = 0; i < channels; ++i) {
        std::size_t const texel = static_cast<std::size_t>(top * kind.width + left);
        steps.channels[i].encode_from_ptr = &samples[(texel * channels + i) * 4];
        steps.channels[i].user_pixel_stride = static_cast<std::int32_t>(channels) * 4;
        steps.channels[i].user_line_stride = static_cast<std::int32_t>(channels) * 4 * kind.width;
    }
    check(exr_encoding_choose_default_routines(file, 0, &steps));
    check(exr_encoding_run(file, 0, &steps));
    check(exr_encoding_destroy(file, &steps));
}

inline std::uint64_t at(Bytes const& file, std::size_t offset)
{
    std::uint64_t number = 0;
    std::memcpy(&number, &file.at(offset + 7) - 7, 8);
    return number;
}

/// Puts the chunks of rows into the opposite order.
inline void turn_chunks(Bytes& file)
{
    std::size_t table = 0; // its first entry points behind its last
    while (at(file, table) <= table || at(file, table) > file.size() || (at(file, table) - table) % 8 != 0) {
        ++table;
    }
    std::size_t const first = at(file, table);
    Bytes turned(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(first));
    std::size_t end = file.size();
    for (std::size_t entry = first - 8; entry >= table; entry -= 8) {
        std::size_t const chunk = at(file, entry);
        std::uint64_t const place = turned.size();
        std::memcpy(&turned[entry], &place, 8);
        turned.insert(turned.end(), file.begin() + static_cast<std::ptrdiff_t>(chunk),
                      file.begin() + static_cast<std::ptrdiff_t>(end));
        end = chunk;
    }
    file = turned;
}

inline exr_attr_box2i_t box(int left, int top, int right, int bottom)
{
    exr_attr_box2i_t corners{};
    corners.min.x = left;
    corners.min.y = top;
    corners.max.x = right;
    corners.max.y = bottom;
    return corners;
}

} // namespace exr_detail

inline Bytes exr_file(ExrKind const& kind, ExrNumbers const& numbers)
{
    using namespace exr_detail;
    Bytes result;
    Bytes samples(numbers.size() * 4);
    std::memcpy(samples.data(), numbers.data(), samples.size()); // halves are the low bytes of their numbers
    exr_context_initializer_t start = EXR_DEFAULT_CONTEXT_INITIALIZER;
    start.user_data = &result;
    start.write_fn = put;
    exr_context_t file = nullptr;
    check(exr_start_write(&file, "made", EXR_WRITE_FILE_DIRECTLY, &start));
    int part = 0;
    check(exr_add_part(file, "made", kind.tile > 0 ? EXR_STORAGE_TILED : EXR_STORAGE_SCANLINE, &part));
    exr_attr_box2i_t const data =
        box(kind.left, kind.top, kind.left + kind.width - 1, kind.top + kind.height - 1);
    exr_attr_box2i_t const shown = kind.shown == 0 ? data : box(0, 0, kind.shown, kind.shown);
    exr_attr_v2f_t const centre{};
    check(exr_initialize_required_attr(
        file, part, &shown, &data, 1.0f, &centre, 1.0f,
        kind.last_row_first ? EXR_LINEORDER_DECREASING_Y : EXR_LINEORDER_INCREASING_Y, kind.compression));
    for (ExrChannelKind const& channel : kind.channels) {
        check(exr_add_channel(file, part, channel.name.c_str(), channel.type, EXR_PERCEPTUALLY_LOGARITHMIC,
                              channel.step, channel.step));
    }
    if (kind.tile > 0) {
        auto const side = static_cast<std::uint32_t>(kind.tile);
        check(exr_set_tile_descriptor(file, part, side, side, EXR_TILE_ONE_LEVEL, EXR_TILE_ROUND_DOWN));
    }
    check(exr_write_header(file));
    exr_chunk_info_t chunk{};
    if (kind.tile > 0) {
        for (int top = 0; top < kind.height; top += kind.tile) {
            for (int left = 0; left < kind.width; left += kind.tile) {
                check(exr_write_tile_chunk_info(file, part, left / kind.tile, top / kind.tile, 0, 0, &chunk));
                encode(file, kind, chunk, samples, left, top);
            }
        }
    } else {
        std::int32_t rows = 0;
        check(exr_get_scanlines_per_chunk(file, part, &rows));
        for (int top = 0; top < kind.height; top += rows) {
            check(exr_write_scanline_chunk_info(file, part, kind.top + top, &chunk));
            encode(file, kind, chunk, samples, 0, top);
        }
    }
    check(exr_finish(&file));
    if (kind.last_row_first) {
        turn_chunks(result);
    }
    return result;
}

} // namespace umbrixlib::test
