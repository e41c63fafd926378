// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/byte_reader.h"

namespace umbrixlib::toolkit {

/// The header of a picture as Windows and OS/2 have it in memory: what a BMP file holds, and an icon.
struct DibHeader {
    int width = 0;
    int height = 0;
    bool top_first = false;
    int bits = 0;
    unsigned compression = 0;
    std::size_t colours = 0;     ///< Of the palette, as far as the header tells.
    std::size_t colour_size = 4; ///< Bytes of one.
    std::uint32_t masks[4] = {}; ///< Red, green, blue, alpha, of texels that have masks.
    bool is_of_icon = false;     ///< A mask of one bit a texel follows: set where nothing shows.
};

/// The header at which @p reader stands, and the masks behind it. Looks at the size.
DibHeader read_dib_header(ByteReader& reader, bool is_of_icon);

/// The palette at which @p reader stands, and the texels, which begin @p texels_at bytes behind the start of
/// the file, or at once behind the palette if that is farther.
DecodedFile read_dib(ByteReader& reader, DibHeader const& header, std::size_t texels_at);

} // namespace umbrixlib::toolkit
