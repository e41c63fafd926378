// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/pictures/source_file.h"

namespace umbrixlib::toolkit {

/// What a decoder makes of a file: the picture in the file's own channels and sample type.
struct DecodedFile {
    Picture picture;
    bool palette = false; ///< The file has numbers of colours; the picture has these.
};

/// Reads one format, or several. Has no state.
class Decoder {
public:
    virtual ~Decoder() = default;

    /// Whether this is the decoder for @p source: by the bytes that it begins with, and by its name only in
    /// formats that these do not tell.
    virtual bool takes(SourceFile const& source) const = 0;

    /// Throws a Failure if the file is damaged or the picture is too large, and that before it takes memory
    /// for the picture.
    virtual DecodedFile decode(SourceFile& source) const = 0;
};

Decoder const& png_decoder();
Decoder const& pnm_decoder();
Decoder const& tga_decoder();

} // namespace umbrixlib::toolkit
