// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// zlib as the judge of what was packed.

#include <cstdint>
#include <span>
#include <vector>
#include <zlib.h>

namespace umbrixlib::test {

using Bytes = std::vector<std::uint8_t>;

struct Inflated {
    Bytes bytes;
    bool ended = false;           ///< The stream has its last block, and zlib found no fault in it.
    std::size_t left = 0;         ///< Bytes behind the end.
    std::uint64_t last_begin = 0; ///< Where the last block begins and ends, in bits; of bare Deflate only.
    std::uint64_t last_end = 0;
};

/// @param window_bits -15: bare Deflate; 15: in zlib's frame, whose check sum is looked at.
inline Inflated inflated(std::span<std::uint8_t const> packed, int window_bits)
{
    Inflated result;
    z_stream stream{};
    inflateInit2(&stream, window_bits);
    stream.next_in = const_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    Bytes room(1 << 16);
    std::uint64_t block = 0;
    int code = Z_OK;
    while (code == Z_OK) {
        stream.next_out = room.data();
        stream.avail_out = static_cast<uInt>(room.size());
        code = inflate(&stream, Z_BLOCK);
        result.bytes.insert(result.bytes.end(), room.begin(), room.end() - stream.avail_out);
        bool const between_blocks = (stream.data_type & 128) != 0;
        if (between_blocks) {
            result.last_begin = block;
            block = result.last_end = 8 * std::uint64_t{stream.total_in} - (stream.data_type & 7U);
        }
        if (code == Z_OK && stream.avail_in == 0 && stream.avail_out > 0 && !between_blocks) {
            break; // it wants more
        }
    }
    result.ended = code == Z_STREAM_END;
    result.left = stream.avail_in;
    inflateEnd(&stream);
    return result;
}

} // namespace umbrixlib::test
