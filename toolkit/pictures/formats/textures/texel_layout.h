// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/plain/byte_reader.h"
#include "toolkit/pictures/formats/textures/block_texels.h"
#include "toolkit/pictures/picture.h"

#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// How the texels of a texture lie in its file, the top row first: of the members blocks, masks and samples
/// one counts.
struct TexelLayout {
    int width = 0;
    int height = 0;
    std::size_t pitch = 0; ///< Bytes of a row of texels with masks, as the header says; 0 if it does not.
    std::optional<BlockForm> blocks{};
    int bits = 0; ///< Of a texel with masks.
    std::vector<std::uint32_t> masks{};
    std::optional<SampleType> samples{}; ///< Whole samples, one a channel, the low byte first.
    int channels = 0;                    ///< Of samples.
    bool is_vectors = false;             ///< Two channels are red and green of normals.
    bool green_first = false;            ///< Of two channels, the first one is green.
    bool alpha_is_red = false;           ///< DXT5 with the red channel where it is most exact.
    bool premultiplied = false;
    std::vector<std::string> notes{};

    /// Bytes that the texels take, without padded rows.
    double size() const;
};

/// The texels at which @p reader stands, made a picture as the layout says. Notes how, in @p layout.
Picture read_texels(ByteReader& reader, TexelLayout& layout);

} // namespace umbrixlib::toolkit
