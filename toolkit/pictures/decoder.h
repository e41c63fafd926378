// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/pictures/source_file.h"

#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What a decoder makes of a file: the picture in the file's own channels and sample type.
struct DecodedFile {
    Picture picture;
    bool palette = false; ///< The file has numbers of colours; the picture has these.
    /// "PNG", "TIFF": what the file is, whatever its name.
    std::string format{};
    /// What a user has to know of how it was taken: "turned upright, as its orientation tag says".
    std::vector<std::string> notes{};
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

Decoder const& alias_decoder();
Decoder const& bmp_decoder();
Decoder const& dds_decoder();
Decoder const& fits_decoder();
Decoder const& hdr_decoder();
Decoder const& ico_decoder();
Decoder const& pcx_decoder();
Decoder const& pfm_decoder();
Decoder const& exr_decoder();
Decoder const& gif_decoder();
Decoder const& jpeg_decoder();
Decoder const& png_decoder();
Decoder const& pnm_decoder();
Decoder const& psd_decoder();
Decoder const& raw_decoder();
Decoder const& refused_formats();
Decoder const& sgi_decoder();
Decoder const& softimage_decoder();
Decoder const& sun_decoder();
Decoder const& tga_decoder();
Decoder const& vtf_decoder();
Decoder const& tiff_decoder();
Decoder const& webp_decoder();

} // namespace umbrixlib::toolkit
