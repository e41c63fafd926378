// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoded_image.h"

#include "toolkit/base/failure.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

struct Format {
    char const* name;
    Decoder const* decoder;
};

/// The first that takes the file decodes it. A long signature comes before a name, and that before a short
/// signature, which raw heights may begin with, too; TGA has none.
DecodedFile decoded(SourceFile& source)
{
    for (auto const& [name, decoder] :
         {Format{"PNG", &png_decoder()},         Format{"TIFF", &tiff_decoder()},
          Format{"OpenEXR", &exr_decoder()},     Format{"JPEG", &jpeg_decoder()},
          Format{"WebP", &webp_decoder()},       Format{"GIF", &gif_decoder()},
          Format{"raw heights", &raw_decoder()}, Format{"PNM", &pnm_decoder()},
          Format{"PFM", &pfm_decoder()},         Format{"BMP", &bmp_decoder()},
          Format{"DDS", &dds_decoder()},         Format{"ICO", &ico_decoder()},
          Format{"SGI", &sgi_decoder()},         Format{"PCX", &pcx_decoder()},
          Format{"Sun raster", &sun_decoder()},  Format{"Radiance HDR", &hdr_decoder()},
          Format{"PSD", &psd_decoder()},         Format{"FITS", &fits_decoder()},
          Format{"VTF", &vtf_decoder()},         Format{"refused", &refused_formats()},
          Format{"Alias PIX", &alias_decoder()}, Format{"Softimage", &softimage_decoder()},
          Format{"TGA", &tga_decoder()}}) {
        if (decoder->takes(source)) {
            try {
                return decoder->decode(source);
            } catch (TooManyTexels& failure) {
                failure.format = name;
                throw;
            }
        }
    }
    source.refuse_as_damaged();
}

DecodedFile decode_unchanged(std::filesystem::path const& file, std::string const& subject, double max_texels)
{
    SourceFile source(file, subject, max_texels);
    auto const check = [&] {
        if (source.has_changed()) {
            throw Failure(Fault::kChangedWhileRead, subject, "it changed while it was read");
        }
    };
    try {
        DecodedFile result = decoded(source);
        check();
        return result;
    } catch (Failure const&) {
        check();
        throw;
    }
}

} // namespace

std::string description_of(Picture const& picture)
{
    constexpr char const* kSamples[] = {"8-bit", "16-bit", "half-float", "float"};
    return fmt::format("{} {}{}", kSamples[static_cast<int>(picture.type)],
                       picture.channels < 3 ? "grey" : "colour", picture.has_alpha() ? " with alpha" : "");
}

DecodedImage::DecodedImage(std::filesystem::path const& file, std::string const& subject, double max_texels)
    : file_(decode_unchanged(file, subject, max_texels))
{
}

std::string DecodedImage::description() const
{
    if (file_.palette) {
        return "palette";
    }
    return description_of(file_.picture);
}

} // namespace umbrixlib::toolkit
