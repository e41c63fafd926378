// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <optional>

namespace umbrixlib::toolkit {

/// Writes one format, or several. Has no state.
class Encoder {
public:
    virtual ~Encoder() = default;

    /// Writes @p picture to @p file, whose extension is that of the format. An alpha that the format has no
    /// place for is left out, and greys become three equal channels where it has none. The same picture gives
    /// the same bytes. False if the file could not be written to its end, or the format has not the picture's
    /// sample type; each below tells its types.
    virtual bool encode(std::filesystem::path const& file, Picture const& picture) const = 0;

    /// The same with a compression that formats without a choice do not look at.
    virtual bool encode_as(std::filesystem::path const& file, Picture const& picture,
                           Compression /*compression*/) const
    {
        return encode(file, picture);
    }

    /// A quicker look than a decoder's at what encode() wrote: whether @p file is whole and holds
    /// @p picture. Empty if there is none for the format.
    virtual std::optional<bool> holds(std::filesystem::path const& /*file*/, Picture const& /*picture*/) const
    {
        return std::nullopt;
    }
};

Encoder const& bmp_encoder(); ///< 8 bits, no alpha.
Encoder const& dds_encoder(); ///< 8 bits in blocks of DXT1, no alpha.
Encoder const& hdr_encoder(); ///< Floats, made of any type; no alpha, values below 0 are 0.
Encoder const& pcx_encoder(); ///< 8 bits.
Encoder const& pfm_encoder(); ///< Floats, made of any type; no alpha.
Encoder const& png_encoder(); ///< 8 or 16 bits.
Encoder const& ppm_encoder(); ///< 8 or 16 bits, no alpha; greys are PGM.
Encoder const& psd_encoder(); ///< 8 or 16 bits, or floats.
Encoder const& raw_encoder(); ///< Squares of one channel: .r16 of 16 bits, .r32 of floats.
Encoder const& sgi_encoder(); ///< 8 or 16 bits.
Encoder const& tga_encoder(); ///< 8 bits.
Encoder const& vtf_encoder(); ///< 8 bits.

// These take pictures of each sample type and of 1 to 4 channels.
Encoder const& exr_encoder();
Encoder const& jpeg_encoder();
Encoder const& tiff_encoder();

} // namespace umbrixlib::toolkit
